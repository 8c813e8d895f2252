// Packet encoding, CRC and scanning of the link, without pipes.
#include "system/Pixelworks/PWPacket.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

Bytes encode(const PWMsg &msg, int interface) {
    uint8_t buf[pwBufferSize];
    std::size_t n = PWPacketEncode(msg, interface, buf);
    return Bytes(buf, buf + n);
}

// Packets as they travel, each beside the message it carries.
struct PacketFixture {
    const char *meaning;
    uint8_t length;
    uint8_t opcode;
    std::vector<uint16_t> words;
    Bytes bytes;
};

// clang-format off
const std::vector<PacketFixture> examplePackets = {
    {"Reset",          0, 0x01, {},       {0xBE, 0xEF, 0x49, 0xB3, 0x1B, 0x02, 0x01, 0x01}},
    {"Query version",  0, 0x23, {},       {0xBE, 0xEF, 0xE9, 0xAB, 0x1B, 0x02, 0x23, 0x01}},
    {"Set cable to 2", 2, 0x04, {0x0002}, {0xBE, 0xEF, 0x6A, 0x3D, 0x1B, 0x04, 0x04, 0x01, 0x02, 0x00}},
};
// clang-format on

PWMsg messageOf(const PacketFixture &f) {
    PWMsg msg{};
    msg.Length = f.length;
    msg.Opcode = f.opcode;
    for (std::size_t i = 0; i < f.words.size(); ++i)
        msg.Payload[i] = f.words[i];
    return msg;
}

TEST(PWCrc, CheckValueOfModbus) {
    const uint8_t text[] = {'1', '2', '3', '4', '5', '6', '7', '8', '9'};
    // The routine hands back the CRC with its bytes exchanged.
    EXPECT_EQ(PWCrc16(text, sizeof text), 0x374B);
    EXPECT_EQ(PWSwap16(PWCrc16(text, sizeof text)), 0x4B37);
}

TEST(PWCrc, UpdateInPiecesEqualsOnePass) {
    uint8_t data[300];
    for (std::size_t i = 0; i < sizeof data; ++i)
        data[i] = static_cast<uint8_t>(i * 37 + 11);
    for (std::size_t cut : {0u, 1u, 2u, 150u, 299u, 300u}) {
        uint16_t state = PWCrcUpdate(0xFFFF, data, cut);
        EXPECT_EQ(PWCrcUpdate(state, data + cut, sizeof data - cut), PWCrc16(data, sizeof data))
            << "cut at " << cut;
    }
}

TEST(PWSwap16, ExchangesBytes) {
    EXPECT_EQ(PWSwap16(0x1234), 0x3412);
    EXPECT_EQ(PWSwap16(0x00FF), 0xFF00);
    EXPECT_EQ(PWSwap16(PWSwap16(0xBEEF)), 0xBEEF);
}

TEST(PWPacket, ExamplesEncodeByteForByte) {
    for (const PacketFixture &f : examplePackets)
        EXPECT_EQ(encode(messageOf(f), PW_INTERFACE_CMD), f.bytes) << f.meaning;
}

TEST(PWPacket, ExamplesScanGoodAndDecodeToTheirMessage) {
    for (const PacketFixture &f : examplePackets) {
        ASSERT_EQ(PWPacketScan(f.bytes.data(), f.bytes.size(), PW_INTERFACE_CMD), PWScan::good)
            << f.meaning;
        PWMsg msg{};
        PWPacketDecode(f.bytes.data(), msg);
        EXPECT_EQ(msg.Length, f.length) << f.meaning;
        EXPECT_EQ(msg.Opcode, f.opcode) << f.meaning;
        for (std::size_t i = 0; i < f.words.size(); ++i)
            EXPECT_EQ(msg.Payload[i], f.words[i]) << f.meaning << " word " << i;
    }
}

TEST(PWPacket, PayloadWordsTravelLowByteFirst) {
    PWMsg msg{};
    msg.Length     = 4;
    msg.Opcode     = 0x2C;
    msg.Payload[0] = 0x1234;
    msg.Payload[1] = 0xFFFF;
    Bytes b        = encode(msg, PW_INTERFACE_DIAG);
    ASSERT_EQ(b.size(), 12u);
    EXPECT_EQ(b[5], 6); // Size: Length + 2
    EXPECT_EQ(b[7], 0); // Diag
    EXPECT_EQ(b[8], 0x34);
    EXPECT_EQ(b[9], 0x12);
    EXPECT_EQ(b[10], 0xFF);
    EXPECT_EQ(b[11], 0xFF);
}

TEST(PWPacket, LargestPayloadRoundTrips) {
    PWMsg msg{};
    msg.Length = 252;
    msg.Opcode = 0x7F;
    for (int i = 0; i < 126; ++i)
        msg.Payload[i] = static_cast<uint16_t>(0x0101 * i + 3);
    Bytes b = encode(msg, PW_INTERFACE_CMD);
    ASSERT_EQ(b.size(), pwMaxPacket);
    ASSERT_EQ(PWPacketScan(b.data(), b.size(), PW_INTERFACE_CMD), PWScan::good);
    PWMsg back{};
    PWPacketDecode(b.data(), back);
    EXPECT_EQ(back.Length, 252);
    EXPECT_EQ(std::memcmp(back.Payload, msg.Payload, 252), 0);
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

// What each prefix or alteration of a good Set cable packet amounts to.
struct ScanCase {
    const char *what;
    std::size_t held; // bytes of the (altered) packet received
    int offset;       // byte to change, -1 for none
    uint8_t value;    // its new value
    int interface;    // the receiver's interface
    PWScan expected;
};

TEST(PWPacket, ScanFollowsTheReceiversOrderOfTests) {
    // clang-format off
    const ScanCase cases[] = {
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
    for (const ScanCase &c : cases) {
        Bytes b = examplePackets[2].bytes;
        if (c.offset >= 0)
            b[static_cast<std::size_t>(c.offset)] = c.value;
        EXPECT_EQ(PWPacketScan(b.data(), c.held, c.interface), c.expected) << c.what;
    }
}

TEST(PWPacket, TrailingBytesDoNotSpoilAGoodPacket) {
    Bytes b = examplePackets[0].bytes;
    Bytes more(examplePackets[1].bytes);
    b.insert(b.end(), more.begin(), more.end());
    EXPECT_EQ(PWPacketScan(b.data(), b.size(), PW_INTERFACE_CMD), PWScan::good);
    PWMsg msg{};
    PWPacketDecode(b.data(), msg);
    EXPECT_EQ(msg.Opcode, 0x01);
}

TEST(PWPacket, SyncWordOfTheReport) {
    const uint8_t junk[] = {0x12, 0x34};
    EXPECT_EQ(PWPacketSyncWord(junk, 2), 0x1234);
    EXPECT_EQ(PWPacketSyncWord(junk, 1), 0x1200);
}

} // namespace
