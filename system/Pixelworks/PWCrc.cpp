// CRC-16/MODBUS by the two-table method, and the byte exchange of the link.
#include "system/Pixelworks/PWPacket.h"

#include <array>

namespace {

// The reflected CRC table (polynomial 0xA001) split into its low and high
// bytes, built by the compiler.
struct CrcTables {
    std::array<uint8_t, 256> low{};
    std::array<uint8_t, 256> high{};
};

constexpr CrcTables makeCrcTables() {
    CrcTables t;
    for (unsigned i = 0; i < 256; ++i) {
        unsigned crc = i;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1u) != 0 ? (crc >> 1) ^ 0xA001u : crc >> 1;
        t.low[i]  = static_cast<uint8_t>(crc);
        t.high[i] = static_cast<uint8_t>(crc >> 8);
    }
    return t;
}

constexpr CrcTables crcTables = makeCrcTables();

static_assert(crcTables.low[1] == 0xC1 && crcTables.high[1] == 0xC0, "CRC table row 1");
static_assert(crcTables.low[255] == 0x40 && crcTables.high[255] == 0x40, "CRC table row 255");

} // namespace

uint16_t PWCrcUpdate(uint16_t state, const uint8_t *data, std::size_t count) {
    // A holds the low byte of the running CRC, B the high byte. Both live in
    // full-width registers so that no partial-register merge lengthens the
    // chain from one byte to the next.
    unsigned a = static_cast<unsigned>(state >> 8);
    unsigned b = static_cast<unsigned>(state & 0xFFu);
    for (std::size_t i = 0; i < count; ++i) {
        unsigned index = data[i] ^ a;
        a              = crcTables.low[index] ^ b;
        b              = crcTables.high[index];
    }
    return static_cast<uint16_t>(a << 8 | b);
}

extern "C" uint16_t PWCrc16(const uint8_t *data, uint32_t count) {
    return PWCrcUpdate(0xFFFF, data, count);
}

extern "C" uint16_t PWSwap16(uint16_t value) {
    return static_cast<uint16_t>(value << 8 | value >> 8);
}
