// pwsimd's modules in process: timings, options, faults, the request stream,
// the device model and the trace line format.
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

TEST(PwsimdTiming, WordsAreInTheReplyOrder) {
    SimTiming t{1, 6000, 1650, 750, 1280, 720, 0x42};
    uint16_t w[simTimingWords];
    SimTimingToWords(t, w);
    EXPECT_EQ(std::vector<uint16_t>(w, w + simTimingWords),
              (std::vector<uint16_t>{1, 6000, 1650, 750, 1280, 720, 0, 0, 0x42}));
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

TEST(PwsimdFaults, ChipSelectionAndLastValueWins) {
    SimFaults f[PW_MAX_CHIPS]{};
    char error[200];
    ASSERT_TRUE(SimFaultParse("status0=3", f, error, sizeof error));
    ASSERT_TRUE(SimFaultParse("status0=7@2", f, error, sizeof error));
    ASSERT_TRUE(SimFaultParse("other-if@0", f, error, sizeof error));
    EXPECT_EQ(f[0].Mask, simFaultStatus0 | simFaultOtherIf);
    EXPECT_EQ(f[1].Mask, simFaultStatus0);
    EXPECT_EQ(f[0].Status0Left, 3u);
    EXPECT_EQ(f[2].Status0Left, 7u);
    EXPECT_FALSE(SimFaultParse("never@-1", f, error, sizeof error));
    EXPECT_FALSE(SimFaultParse("late=10@1@2", f, error, sizeof error));
    EXPECT_FALSE(SimFaultParse("", f, error, sizeof error));
}

TEST(PwsimdFaults, NamesJoinInTableOrder) {
    char names[80];
    SimFaultNames(0, names, sizeof names);
    EXPECT_STREQ(names, "-");
    SimFaultNames(simFaultSplit | simFaultLate | simFaultStatus0, names, sizeof names);
    EXPECT_STREQ(names, "late+status0+split");
}

SimReply shape(unsigned mask, const PWMsg &reply, int interface = PW_INTERFACE_CMD) {
    SimFaults f{mask, 250, 1};
    PWMsg copy = reply;
    SimReply out;
    SimFaultShape(f, interface, copy, out);
    return out;
}

TEST(PwsimdFaults, EachFaultShapesTheBytesAsNamed) {
    const PWMsg reply = message(simOpQueryVersion, {0x0102});
    const Bytes clean = packet(reply, PW_INTERFACE_CMD);

    SimReply out = shape(0, reply);
    EXPECT_TRUE(out.Send);
    EXPECT_EQ(Bytes(out.Bytes, out.Bytes + out.Size), clean);
    EXPECT_EQ(out.FirstPiece, out.Size);
    EXPECT_EQ(out.DelayMs, 0u);
    EXPECT_EQ(out.Applied, 0u);

    EXPECT_FALSE(shape(simFaultNever, reply).Send);
    EXPECT_EQ(shape(simFaultLate, reply).DelayMs, 250u);

    out = shape(simFaultCrc, reply);
    EXPECT_EQ(PWPacketScan(out.Bytes, out.Size, PW_INTERFACE_CMD), PWScan::badCrc);

    out = shape(simFaultOtherIf, reply, PW_INTERFACE_DIAG);
    EXPECT_EQ(PWPacketScan(out.Bytes, out.Size, PW_INTERFACE_DIAG), PWScan::otherInterface);
    EXPECT_EQ(PWPacketScan(out.Bytes, out.Size, PW_INTERFACE_CMD), PWScan::good);

    out = shape(simFaultGarbage, reply);
    EXPECT_EQ(out.Size, clean.size());
    for (std::size_t i = 0; i < out.Size; ++i)
        EXPECT_NE(out.Bytes[i], pwSync0) << "garbage must hold no sync, at " << i;

    out = shape(simFaultSplit, reply);
    EXPECT_GT(out.FirstPiece, 0u);
    EXPECT_LT(out.FirstPiece, out.Size);
    EXPECT_EQ(PWPacketScan(out.Bytes, out.FirstPiece, PW_INTERFACE_CMD), PWScan::incomplete);
    EXPECT_EQ(Bytes(out.Bytes, out.Bytes + out.Size), clean);
}

TEST(PwsimdFaults, Status0CountsDownOnQueryOutputOnly) {
    SimFaults f{simFaultStatus0, 0, 2};
    SimReply out;
    uint16_t w[simTimingWords];
    SimTimingToWords({simStatusValid, 6000, 1650, 750, 1280, 720, 0}, w);
    auto timingReply = [&](uint8_t opcode) {
        PWMsg m = message(opcode, std::vector<uint16_t>(w, w + simTimingWords));
        SimFaultShape(f, PW_INTERFACE_CMD, m, out);
        return m.Payload[0];
    };
    EXPECT_EQ(timingReply(simOpQueryInput), simStatusValid);
    EXPECT_EQ(timingReply(simOpQueryOutput), simStatusNone);
    EXPECT_EQ(out.Applied, simFaultStatus0);
    EXPECT_EQ(timingReply(simOpQueryInput), simStatusValid);
    EXPECT_EQ(timingReply(simOpQueryOutput), simStatusNone);
    EXPECT_EQ(timingReply(simOpQueryOutput), simStatusValid);
    EXPECT_EQ(out.Applied, 0u);
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

struct DeviceRow {
    const char *Meaning;
    PWMsg Request;
    bool Answered;
    std::vector<uint16_t> ReplyWords;
};

TEST(PwsimdDevice, AnswersEveryRequestKindAndRefusesOthers) {
    SimDeviceConfig config{
        0x1234, {1, 5000, 2200, 1125, 1920, 1080, 0}, {3, 5994, 858, 525, 720, 480, 0x11}};
    // clang-format off
    const std::vector<DeviceRow> rows = {
        {"reset",            message(0x01, {}),                 true,  {}},
        {"query input",      message(0x02, {}),                 true,  {3, 5994, 858, 525, 720, 480, 0, 0, 0x11}},
        {"query output",     message(0x03, {}),                 true,  {1, 5000, 2200, 1125, 1920, 1080, 0, 0, 0}},
        {"set cable",        message(0x04, {2}),                true,  {}},
        {"set mode",         message(0x05, {0}),                true,  {}},
        {"query version",    message(0x23, {}),                 true,  {0x1234}},
        {"set aspect",       message(0x25, {0}),                true,  {}},
        {"set gains",        message(0x2C, {1, 2, 3, 4, 5, 6}), true,  {}},
        {"set gains vga",    message(0x2D, {1, 2, 3, 4, 5, 6}), true,  {}},
        {"unknown opcode",   message(0x77, {}),                 false, {}},
        {"cable, no word",   message(0x04, {}),                 false, {}},
        {"version, a word",  message(0x23, {1}),                false, {}},
        {"gains, five",      message(0x2C, {1, 2, 3, 4, 5}),    false, {}},
    };
    // clang-format on
    SimDevice device;
    SimDeviceInit(device, 1, config);
    for (const DeviceRow &row : rows) {
        PWMsg reply = message(0xEE, {0xDEAD});
        EXPECT_EQ(SimDeviceAnswer(device, row.Request, reply), row.Answered) << row.Meaning;
        if (!row.Answered)
            continue;
        EXPECT_EQ(reply.Opcode, row.Request.Opcode) << row.Meaning;
        EXPECT_EQ(words(reply), row.ReplyWords) << row.Meaning;
    }
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

TEST(PwsimdTrace, LineFormat) {
    char line[simTraceLineSize];
    std::size_t n = SimTraceFormatMessage(line, sizeof line, false, 1, PW_INTERFACE_DIAG,
                                          message(simOpSetCable, {0x2A}), "-");
    EXPECT_EQ(std::string(line, n),
              "pwsimd: req chip=1 if=diag op=0x04 name=set-cable len=2 note=- words=002a\n");
    n = SimTraceFormatMessage(line, sizeof line, true, 0, PW_INTERFACE_CMD,
                              message(simOpQueryOutput, {0, 6000, 0xFFFF}), "late+status0");
    EXPECT_EQ(std::string(line, n), "pwsimd: rep chip=0 if=cmd op=0x03 name=query-output len=6 "
                                    "note=late+status0 words=0000,1770,ffff\n");
    n = SimTraceFormatMessage(line, sizeof line, false, 2, PW_INTERFACE_CMD, message(0xA0, {}),
                              "-");
    EXPECT_EQ(std::string(line, n),
              "pwsimd: req chip=2 if=cmd op=0xa0 name=? len=0 note=- words=-\n");
    n = SimTraceFormatSkipped(line, sizeof line, 0, PW_INTERFACE_CMD, 13);
    EXPECT_EQ(std::string(line, n), "pwsimd: bad chip=0 if=cmd skipped=13\n");

    // The longest request fits.
    PWMsg big{};
    big.Opcode = 0xFF;
    big.Length = 253;
    n          = SimTraceFormatMessage(line, sizeof line, true, 2, PW_INTERFACE_DIAG, big,
                                       "never+late+status0+split+crc+garbage+other-if+full");
    EXPECT_EQ(line[n - 1], '\n');
}

} // namespace
