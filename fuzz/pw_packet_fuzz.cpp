// Fuzz target for the link's packet reassembly: the input is a byte stream
// cut into reads the way a pipe might deliver it, fed to the receiver's
// buffer and tests exactly as the receiver does.
#include "system/Pixelworks/PWPacket.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

void check(bool condition) {
    if (!condition)
        std::abort();
}

// A packet found good must encode back to the same bytes, but for the Type
// byte (not looked at) and an odd last byte (not carried by 16-bit words).
void checkRoundTrip(const uint8_t *packet, int interface) {
    PWMsg msg{};
    PWPacketDecode(packet, msg);
    std::size_t total = packet[5] + 6u;
    check(msg.Length == packet[5] - 2);
    if (packet[4] != pwType || msg.Length % 2 != 0)
        return;
    uint8_t again[pwBufferSize];
    check(PWPacketEncode(msg, interface, again) == total);
    check(std::memcmp(again, packet, total) == 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size) {
    if (size < 2)
        return 0;
    // First byte: the receiver's interface; second: a seed for read sizes.
    const int interface = data[0] & 1;
    unsigned seed       = data[1];
    data += 2;
    size -= 2;

    uint8_t buf[pwBufferSize];
    std::size_t held = 0;
    std::size_t pos  = 0;
    while (pos < size) {
        seed              = seed * 1103515245u + 12345u;
        std::size_t chunk = 1 + (seed >> 16) % 300;
        std::size_t room  = sizeof buf - held;
        std::size_t got   = chunk < room ? chunk : room;
        if (got > size - pos)
            got = size - pos;
        if (got == 0) {
            // A full buffer reads nothing: the receiver resynchronises.
            held = 0;
            pos += chunk < size - pos ? chunk : size - pos;
            continue;
        }
        std::memcpy(buf + held, data + pos, got);
        held += got;
        pos += got;
        check(held <= sizeof buf);
        switch (PWPacketScan(buf, held, interface)) {
        case PWScan::incomplete:
        case PWScan::otherInterface:
            break;
        case PWScan::badSync:
            check(buf[0] != pwSync0 || (held >= 2 && buf[1] != pwSync1));
            (void)PWPacketSyncWord(buf, held);
            held = 0;
            break;
        case PWScan::badCrc:
            held = 0;
            break;
        case PWScan::good:
            check(held >= pwHeaderSize && buf[7] == interface);
            checkRoundTrip(buf, interface);
            held = 0;
            break;
        }
    }
    return 0;
}
