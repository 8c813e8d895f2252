// Packet encoding, CRC and scanning of the link, without pipes.
#include "pipeFixture.h"

#include "system/Pixelworks/PWPacket.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;
using Words = std::vector<uint16_t>;

struct PacketFixture {
    const char *meaning;
    uint8_t opcode;
    Words words;
    Bytes bytes;
};

// clang-format off
// A message to Cmd, its opcode and payload words, and the packet that carries it
const std::vector<PacketFixture> examplePackets = {
    {"Reset",          0x01, {},       {0xBE, 0xEF, 0x49, 0xB3, 0x1B, 0x02, 0x01, 0x01}},
    {"Query version",  0x23, {},       {0xBE, 0xEF, 0xE9, 0xAB, 0x1B, 0x02, 0x23, 0x01}},
    {"Set cable to 2", 0x04, {0x0002}, {0xBE, 0xEF, 0x6A, 0x3D, 0x1B, 0x04, 0x04, 0x01, 0x02, 0x00}},
};
// clang-format on

Words decode(const Bytes &packet, PWMsg &msg) {
    PWPacketDecode(packet.data(), msg);
    return Words(msg.Payload, msg.Payload + msg.Length / 2);
}

// The check value of the Modbus CRC, 0x4B37, which the routine hands back with its bytes
// exchanged; the CRC run in pieces, as a packet's is, shows in the example packets.
TEST(PWCrc, CheckValueOfModbus) {
    EXPECT_EQ(PWCrc16(reinterpret_cast<const uint8_t *>("123456789"), 9), 0x374B);
}

TEST(PWPacket, ExamplesEncodeByteForByteAndDecodeToTheirMessage) {
    for (const PacketFixture &f : examplePackets) {
        EXPECT_EQ(packetOf(f.opcode, f.words, PW_INTERFACE_CMD), f.bytes) << f.meaning;
        ASSERT_EQ(PWPacketScan(f.bytes.data(), f.bytes.size(), PW_INTERFACE_CMD), PWScan::good)
            << f.meaning;
        PWMsg msg{};
        EXPECT_EQ(decode(f.bytes, msg), f.words) << f.meaning;
        EXPECT_EQ(msg.Length, 2 * f.words.size()) << f.meaning;
        EXPECT_EQ(msg.Opcode, f.opcode) << f.meaning;
    }
}

TEST(PWPacket, LargestPayloadRoundTrips) {
    Words words(126);
    for (std::size_t i = 0; i < words.size(); ++i)
        words[i] = static_cast<uint16_t>(0x0101 * i + 3);
    Bytes b = packetOf(0x7F, words, PW_INTERFACE_CMD);
    ASSERT_EQ(b.size(), pwMaxPacket);
    ASSERT_EQ(PWPacketScan(b.data(), b.size(), PW_INTERFACE_CMD), PWScan::good);
    PWMsg back{};
    EXPECT_EQ(decode(b, back), words);
}

TEST(PWPacket, TypeByteIsNotLookedAtOnReceipt) {
    Bytes b = examplePackets[2].bytes;
    b[4]    = 0x00;
    // Seal the CRC again, so that only the Type differs from a sent packet.
    uint16_t crc = PWPacketCrc(b.data(), b.size());
    b[2]         = static_cast<uint8_t>(crc >> 8);
    b[3]         = static_cast<uint8_t>(crc);
    EXPECT_EQ(PWPacketScan(b.data(), b.size(), PW_INTERFACE_CMD), PWScan::good);
}

TEST(PWPacket, ScanFollowsTheReceiversOrderOfTests) {
    // clang-format off
    // What the receiver holds: bytes of the packet held, a byte changed (-1: none) and its new
    // value; the receiver's interface, and what the scan finds
    const std::tuple<const char *, std::size_t, int, uint8_t, int, PWScan> cases[] = {
        {"nothing yet",                  0,  -1, 0,    PW_INTERFACE_CMD,  PWScan::incomplete},
        {"first sync byte only",         1,  -1, 0,    PW_INTERFACE_CMD,  PWScan::incomplete},
        {"header not complete",          7,  -1, 0,    PW_INTERFACE_CMD,  PWScan::incomplete},
        {"payload not complete",         9,  -1, 0,    PW_INTERFACE_CMD,  PWScan::incomplete},
        {"whole packet",                 10, -1, 0,    PW_INTERFACE_CMD,  PWScan::good},
        {"wrong first byte, alone",      1,  0,  0x00, PW_INTERFACE_CMD,  PWScan::badSync},
        {"wrong second byte",            2,  1,  0xEE, PW_INTERFACE_CMD,  PWScan::badSync},
        {"bad sync beats other iface",   10, 0,  0xBF, PW_INTERFACE_DIAG, PWScan::badSync},
        {"other interface, header only", 8,  -1, 0,    PW_INTERFACE_DIAG, PWScan::otherInterface},
        {"other interface, whole",       10, -1, 0,    PW_INTERFACE_DIAG, PWScan::otherInterface},
        {"corrupt payload",              10, 9,  0x01, PW_INTERFACE_CMD,  PWScan::badCrc},
        {"corrupt CRC",                  10, 3,  0x3E, PW_INTERFACE_CMD,  PWScan::badCrc},
        {"Size below 2",                 10, 5,  0x01, PW_INTERFACE_CMD,  PWScan::badCrc},
        {"Size larger than held",        10, 5,  0x10, PW_INTERFACE_CMD,  PWScan::incomplete},
    };
    // clang-format on
    for (const auto &[what, held, offset, value, interface, expected] : cases) {
        Bytes b = examplePackets[2].bytes;
        if (offset >= 0)
            b[static_cast<std::size_t>(offset)] = value;
        EXPECT_EQ(PWPacketScan(b.data(), held, interface), expected) << what;
    }
}

} // namespace
