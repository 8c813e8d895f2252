// Encoding and testing of link packets, byte by byte so that the bytes are
// the same on a big-endian appliance and a little-endian host.
#include "system/Pixelworks/PWPacket.h"

#include "Common/OS/osAssert.h"

namespace {

constexpr std::size_t crcOffset  = 2;
constexpr std::size_t typeOffset = 4;
constexpr std::size_t ifOffset   = 7;

void putWordLowFirst(uint8_t *p, uint16_t w) {
    p[0] = static_cast<uint8_t>(w);
    p[1] = static_cast<uint8_t>(w >> 8);
}

uint16_t wordLowFirst(const uint8_t *p) {
    return static_cast<uint16_t>(p[0] | p[1] << 8);
}

} // namespace

uint16_t PWPacketCrc(const uint8_t *packet, std::size_t total) {
    OS_ASSERT(total >= pwHeaderSize && total <= pwBufferSize);
    // Sync, then the CRC field as zero, then the rest as it stands.
    static constexpr uint8_t zeroField[2] = {0, 0};
    uint16_t state                        = PWCrcUpdate(0xFFFF, packet, crcOffset);
    state                                 = PWCrcUpdate(state, zeroField, 2);
    state = PWCrcUpdate(state, packet + typeOffset, total - typeOffset);
    return PWSwap16(state);
}

std::size_t PWPacketEncode(const PWMsg &msg, int interface, uint8_t (&out)[pwBufferSize]) {
    std::size_t words   = msg.Length / 2u;
    out[0]              = pwSync0;
    out[1]              = pwSync1;
    out[crcOffset]      = 0;
    out[crcOffset + 1]  = 0;
    out[typeOffset]     = pwType;
    out[pwSizeOffset]   = PWPacketSizeByte(msg.Length);
    out[pwOpcodeOffset] = msg.Opcode;
    out[ifOffset]       = static_cast<uint8_t>(interface);
    for (std::size_t i = 0; i < words; ++i)
        putWordLowFirst(out + pwHeaderSize + 2 * i, msg.Payload[i]);
    std::size_t total  = PWPacketTotal(out[pwSizeOffset]);
    uint16_t crc       = PWPacketCrc(out, total);
    out[crcOffset]     = static_cast<uint8_t>(crc >> 8);
    out[crcOffset + 1] = static_cast<uint8_t>(crc);
    return total;
}

PWScan PWPacketScan(const uint8_t *buf, std::size_t held, int interface) {
    if ((held >= 1 && buf[0] != pwSync0) || (held >= 2 && buf[1] != pwSync1))
        return PWScan::badSync;
    if (held < pwHeaderSize)
        return PWScan::incomplete;
    if (buf[ifOffset] != static_cast<uint8_t>(interface))
        return PWScan::otherInterface;
    std::size_t total = PWPacketTotal(buf[pwSizeOffset]);
    if (held < total)
        return PWScan::incomplete;
    // A Size below 2 leaves no room for Opcode and Interface and would give
    // a negative Length: such a packet fails its check like a bad CRC.
    if (total < pwHeaderSize)
        return PWScan::badCrc;
    uint16_t stored = static_cast<uint16_t>(buf[crcOffset] << 8 | buf[crcOffset + 1]);
    return PWPacketCrc(buf, total) == stored ? PWScan::good : PWScan::badCrc;
}

uint16_t PWPacketSyncWord(const uint8_t *buf, std::size_t held) {
    uint16_t high = held >= 1 ? buf[0] : 0;
    uint16_t low  = held >= 2 ? buf[1] : 0;
    return static_cast<uint16_t>(high << 8 | low);
}

void PWPacketDecode(const uint8_t *packet, PWMsg &msg) {
    msg.Opcode        = packet[pwOpcodeOffset];
    msg.Length        = static_cast<uint8_t>(packet[pwSizeOffset] - 2);
    std::size_t words = msg.Length / 2u;
    for (std::size_t i = 0; i < words; ++i)
        msg.Payload[i] = wordLowFirst(packet + pwHeaderSize + 2 * i);
}
