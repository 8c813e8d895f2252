// pwsimd's modules in process, for what a link client can't see: timings,
// options, fault bytes, the request stream, the device's state and refusals.
#include "tools/pwsimd/simDevice.h"
#include "tools/pwsimd/simFaults.h"
#include "tools/pwsimd/simOptions.h"
#include "tools/pwsimd/simStream.h"
#include "tools/pwsimd/simTrace.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;

PWMsg message(uint8_t opcode, std::vector<uint16_t> words) {
    PWMsg msg{};
    msg.Opcode = opcode;
    msg.Length = static_cast<uint8_t>(2 * words.size());
    for (std::size_t i = 0; i < words.size(); ++i)
        msg.Payload[i] = words[i];
    return msg;
}

Bytes packet(const PWMsg &msg, int interface) {
    uint8_t buf[pwBufferSize];
    std::size_t n = PWPacketEncode(msg, interface, buf);
    return Bytes(buf, buf + n);
}

std::vector<uint16_t> words(const PWMsg &msg) {
    return std::vector<uint16_t>(msg.Payload, msg.Payload + msg.Length / 2);
}

struct TimingRow {
    const char *Text;
    uint16_t RefreshRate, TotalWidth, TotalHeight, ActiveWidth, ActiveHeight;
};

// clang-format off
// Text, RefreshRate (1/100 Hz), TotalWidth, TotalHeight, ActiveWidth, ActiveHeight
const TimingRow goodTimings[] = {
    {"1280x720@60",     6000,  1650, 750,  1280, 720},
    {"1920x1080@59.94", 5994,  2200, 1125, 1920, 1080},
    {"720x480@59.9",    5990,  858,  525,  720,  480},
    {"1000x500@50",     5000,  1160, 530,  1000, 500},
    {"8192x8192@655.35", 65535, 8352, 8222, 8192, 8192},
};
// clang-format on

TEST(PwsimdTiming, ReadsSizeAndRateWithTotals) {
    for (const TimingRow &row : goodTimings) {
        SimTiming t{};
        ASSERT_TRUE(SimParseTiming(row.Text, t)) << row.Text;
        EXPECT_EQ(t.Status, simStatusValid) << row.Text;
        EXPECT_EQ(t.RefreshRate, row.RefreshRate) << row.Text;
        EXPECT_EQ(t.TotalWidth, row.TotalWidth) << row.Text;
        EXPECT_EQ(t.TotalHeight, row.TotalHeight) << row.Text;
        EXPECT_EQ(t.ActiveWidth, row.ActiveWidth) << row.Text;
        EXPECT_EQ(t.ActiveHeight, row.ActiveHeight) << row.Text;
    }
}

TEST(PwsimdTiming, RefusesMalformedText) {
    for (const char *text :
         {"", "1280x720", "1280x720@", "x720@60", "1280x@60", "1280x720@60.", "1280x720@60.123",
          "1280x720@0", "0x720@60", "1280x0@60", "8193x720@60", "1280x720@60hz", "+1280x720@60",
          "1280x-720@60", "1280x720@655.36", "1280 x720@60"}) {
        SimTiming t{};
        EXPECT_FALSE(SimParseTiming(text, t)) << "'" << text << "'";
    }
}

// Options point into argv: the words stay until the next parse.
bool parse(std::vector<std::string> args, SimOptions &options, std::string &error) {
    static std::vector<std::string> kept;
    kept = std::move(args);
    std::vector<char *> argv{const_cast<char *>("pwsimd")};
    for (std::string &a : kept)
        argv.push_back(a.data());
    argv.push_back(nullptr);
    char text[200] = "";
    bool ok =
        SimParseOptions(static_cast<int>(argv.size() - 1), argv.data(), options, text, sizeof text);
    error = text;
    return ok;
}

TEST(PwsimdOptions, DefaultsAndValues) {
    SimOptions o{};
    std::string error;
    ASSERT_TRUE(parse({}, o, error)) << error;
    EXPECT_STREQ(o.Dir, "/tmp");
    EXPECT_EQ(o.Device.Firmware, 258);
    EXPECT_EQ(o.Device.Output.ActiveWidth, 1280);
    EXPECT_EQ(o.Device.Input.ActiveWidth, 1280) << "the input follows the output by default";
    EXPECT_FALSE(o.Trace);
    for (const SimFaults &f : o.Faults)
        EXPECT_EQ(f.Mask, 0u);

    ASSERT_TRUE(parse({"-f", "0x10", "--output", "1920x1080@50", "--input=720x576@50", "-t",
                       "--fault", "late=300@1", "--fault", "split", "-d", "/var/x"},
                      o, error))
        << error;
    EXPECT_EQ(o.Device.Firmware, 16);
    EXPECT_EQ(o.Device.Output.ActiveWidth, 1920);
    EXPECT_EQ(o.Device.Input.ActiveWidth, 720);
    EXPECT_TRUE(o.Trace);
    EXPECT_STREQ(o.Dir, "/var/x");
    EXPECT_EQ(o.Faults[0].Mask, simFaultSplit);
    EXPECT_EQ(o.Faults[1].Mask, simFaultSplit | simFaultLate);
    EXPECT_EQ(o.Faults[1].LateMs, 300u);
    EXPECT_EQ(o.Faults[2].Mask, simFaultSplit);

    ASSERT_TRUE(parse({"--firmware", "010"}, o, error));
    EXPECT_EQ(o.Device.Firmware, 8) << "a leading 0 is octal";
    // A second parse starts from the defaults again.
    EXPECT_EQ(o.Faults[1].Mask, 0u);
}

SimReply shape(unsigned mask, const PWMsg &reply, int interface = PW_INTERFACE_CMD) {
    SimFaults f{mask, 250, 1, {}};
    PWMsg copy = reply;
    SimReply out;
    SimFaultShape(f, interface, copy, out);
    return out;
}

// What a client sees of each fault is tested over the link; these are the
// properties it can't see.
TEST(PwsimdFaults, GarbageHoldsNoSyncAndSplitCutsAWholePacket) {
    const PWMsg reply = message(simOpQueryVersion, {0x0102});
    const Bytes clean = packet(reply, PW_INTERFACE_CMD);

    SimReply out = shape(simFaultGarbage, reply);
    EXPECT_EQ(out.Size, clean.size());
    for (std::size_t i = 0; i < out.Size; ++i)
        EXPECT_NE(out.Bytes[i], pwSync0) << "at " << i;

    out = shape(simFaultSplit | simFaultLate, reply);
    EXPECT_EQ(out.DelayMs, 250u);
    EXPECT_GT(out.FirstPiece, 0u);
    EXPECT_EQ(PWPacketScan(out.Bytes, out.FirstPiece, PW_INTERFACE_CMD), PWScan::incomplete);
    EXPECT_EQ(Bytes(out.Bytes, out.Bytes + out.Size), clean);
}

// Feeds `bytes` into a stream in pieces of `piece` bytes and collects what
// comes out: requests and the counts skipped.
struct Taken {
    std::vector<PWMsg> Requests;
    std::vector<std::size_t> Skipped;
};

Taken feed(const Bytes &bytes, std::size_t piece, int interface = PW_INTERFACE_CMD) {
    SimStream stream;
    SimStreamInit(stream, interface);
    Taken taken;
    for (std::size_t at = 0; at < bytes.size(); at += piece) {
        std::size_t room = 0;
        uint8_t *space   = SimStreamSpace(stream, room);
        std::size_t n    = std::min(piece, bytes.size() - at);
        EXPECT_GE(room, n);
        std::copy(bytes.begin() + static_cast<long>(at), bytes.begin() + static_cast<long>(at + n),
                  space);
        SimStreamAdd(stream, n);
        PWMsg msg{};
        std::size_t skipped = 0;
        for (SimTake t; (t = SimStreamTake(stream, msg, skipped)) != SimTake::none;) {
            if (t == SimTake::request)
                taken.Requests.push_back(msg);
            else
                taken.Skipped.push_back(skipped);
        }
    }
    return taken;
}

TEST(PwsimdStream, ResynchronisesOnGarbageAndBadPackets) {
    const PWMsg cable = message(simOpSetCable, {2});
    const PWMsg gains = message(simOpSetGains, {82, 84, 82, 127, 123, 0xFFFF});
    Bytes bad         = packet(cable, PW_INTERFACE_CMD);
    bad[3] ^= 0x01; // CRC
    Bytes stream;
    auto add = [&](const Bytes &b) { stream.insert(stream.end(), b.begin(), b.end()); };
    add({0x00, 0xBE, 0x11}); // garbage with a false sync start: 3 bytes
    add(packet(cable, PW_INTERFACE_CMD));
    add(bad);                                              // 10 bytes
    add(packet(gains, PW_INTERFACE_DIAG));                 // other interface: 20 bytes
    add({0xBE, 0xEF, 0x01, 0x02, 0x1B, 0x00, 0x01, 0x01}); // Size 0: 8 bytes
    add(packet(gains, PW_INTERFACE_CMD));

    for (std::size_t piece : {std::size_t{1}, std::size_t{3}, std::size_t{7}, stream.size()}) {
        Taken t = feed(stream, piece);
        ASSERT_EQ(t.Requests.size(), 2u) << "piece " << piece;
        EXPECT_EQ(t.Requests[0].Opcode, simOpSetCable);
        EXPECT_EQ(words(t.Requests[0]), words(cable));
        EXPECT_EQ(t.Requests[1].Opcode, simOpSetGains);
        EXPECT_EQ(words(t.Requests[1]), words(gains));
        std::size_t skipped = 0;
        for (std::size_t s : t.Skipped)
            skipped += s;
        EXPECT_EQ(skipped, 3u + 10u + 20u + 8u) << "piece " << piece;
    }
}

TEST(PwsimdStream, AnUnfinishedPacketDoesNotSwallowTheNextRequest) {
    // A client died after the first four bytes of a request; the next one
    // sends a whole request, whose bytes make the first look long.
    const Bytes whole = packet(message(simOpReset, {}), PW_INTERFACE_CMD);
    Bytes stream(whole.begin(), whole.begin() + 4);
    stream.insert(stream.end(), whole.begin(), whole.end());
    Taken t = feed(stream, stream.size());
    ASSERT_EQ(t.Requests.size(), 1u);
    EXPECT_EQ(t.Requests[0].Opcode, simOpReset);
    EXPECT_EQ(t.Skipped, std::vector<std::size_t>{4});
}

TEST(PwsimdStream, LongestPacketsFitTheBuffer) {
    PWMsg big{};
    big.Opcode = 0x77;
    big.Length = 252;
    Bytes stream;
    for (int i = 0; i < 4; ++i) {
        Bytes b = packet(big, PW_INTERFACE_CMD);
        stream.insert(stream.end(), b.begin(), b.end());
    }
    Taken t = feed(stream, 200);
    EXPECT_EQ(t.Requests.size(), 4u);
    EXPECT_TRUE(t.Skipped.empty());
}

TEST(PwsimdDevice, RefusesUnknownOpcodesAndWrongLengths) {
    SimDevice device;
    SimDeviceInit(device, 0, SimDeviceConfig{});
    PWMsg reply{};
    for (const PWMsg &request :
         {message(0x77, {}), message(simOpSetCable, {}), message(simOpQueryVersion, {1}),
          message(simOpSetGains, {1, 2, 3, 4, 5})})
        EXPECT_FALSE(SimDeviceAnswer(device, request, reply))
            << "opcode " << int{request.Opcode} << ", length " << int{request.Length};
    EXPECT_EQ(device.Cable, -1) << "a refused set changes nothing";
}

TEST(PwsimdDevice, KeepsWhatWasSetUntilAReset) {
    SimDevice device;
    SimDeviceInit(device, 2, SimDeviceConfig{});
    PWMsg reply{};
    ASSERT_TRUE(SimDeviceAnswer(device, message(simOpSetCable, {5}), reply));
    ASSERT_TRUE(SimDeviceAnswer(device, message(simOpSetMode, {3}), reply));
    ASSERT_TRUE(SimDeviceAnswer(device, message(simOpSetAspect, {0}), reply));
    ASSERT_TRUE(SimDeviceAnswer(
        device, message(simOpSetGainsVga, {67, 63, 64, 0xFFFF, 0xFFFF, 0xFFFF}), reply));
    EXPECT_EQ(device.Cable, 5);
    EXPECT_EQ(device.Mode, 3);
    EXPECT_EQ(device.Aspect, 0);
    EXPECT_EQ(device.GainsOpcode, simOpSetGainsVga);
    EXPECT_EQ(device.Gains[5], 0xFFFF);

    ASSERT_TRUE(SimDeviceAnswer(device, message(simOpReset, {}), reply));
    EXPECT_EQ(device.Chip, 2);
    EXPECT_EQ(device.Resets, 1u);
    EXPECT_EQ(device.Cable, -1);
    EXPECT_EQ(device.Mode, -1);
    EXPECT_EQ(device.Aspect, -1);
    EXPECT_EQ(device.GainsOpcode, 0);
}

// The exact lines are tested on the daemon's standard error; here, that
// the longest possible line fits its buffer.
TEST(PwsimdTrace, TheLongestLineFits) {
    char line[simTraceLineSize];
    PWMsg big{};
    big.Opcode = 0xFF;
    big.Length = 253;
    std::size_t n =
        SimTraceFormatMessage(line, sizeof line, true, 2, PW_INTERFACE_DIAG, big,
                              "never+late+status0+split+crc+garbage+other-if+frozen+full");
    EXPECT_EQ(n, std::string(line).size());
    EXPECT_EQ(line[n - 1], '\n');
}

} // namespace
