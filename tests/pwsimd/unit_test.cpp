// pwsimd's modules in process, for what a client of the link can't see or the
// end-to-end tests don't reach: option refusals, the request stream, refused
// requests, and the device model's one timing per output mode.
#include "avc/main/vidFormat.h"
#include "avc/main/vidTiming.h"
#include "tests/scalerctl/toolModes.h"
#include "tools/pwsimd/simDevice.h"
#include "tools/pwsimd/simFaults.h"
#include "tools/pwsimd/simOptions.h"
#include "tools/pwsimd/simStream.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;
using Words = std::vector<uint16_t>;

PWMsg message(uint8_t opcode, const Words &words) {
    PWMsg msg{};
    msg.Opcode = opcode;
    msg.Length = static_cast<uint8_t>(2 * words.size());
    std::copy(words.begin(), words.end(), msg.Payload);
    return msg;
}

Bytes packet(const PWMsg &msg, int interface) {
    uint8_t buf[pwBufferSize];
    return Bytes(buf, buf + PWPacketEncode(msg, interface, buf));
}

Words words(const PWMsg &msg) {
    return Words(msg.Payload, msg.Payload + msg.Length / 2);
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

// A command line the parser refuses, and part of its message; a malformed
// timing text is refused by the same check wherever it stands.
TEST(PwsimdOptions, RefusesBadCommandLinesWithAMessage) {
    // clang-format off
    const std::pair<std::vector<std::string>, const char *> refusals[] = {
        {{"--firmware", "x"},           "bad --firmware 'x'"},
        {{"--firmware", "65536"},       "bad --firmware '65536'"},
        {{"--fault", "late"},           "needs late=N"},
        {{"--fault", "status0=x@1"},    "needs status0=N"},
        {{"--fault", "crc=1"},          "crc takes no value"},
        {{"--fault", "never@3"},        "chip must be 0, 1 or 2"},
        {{"--frobnicate"},              "unknown option '--frobnicate'"},
        {{"--trace=1"},                 "option '--trace' takes no value"},
        {{"--dir"},                     "option '--dir' needs a value"},
        {{"stray"},                     "unexpected argument 'stray'"},
    };
    // clang-format on
    SimOptions o{};
    std::string error;
    for (const auto &[args, message] : refusals) {
        EXPECT_FALSE(parse(args, o, error)) << message;
        EXPECT_NE(error.find(message), std::string::npos) << error;
    }
    for (const char *text :
         {"", "1280x720", "x720@60", "1280x720@60.", "1280x720@60.123", "1280x720@0", "0x720@60",
          "8193x720@60", "1280x720@60hz", "+1280x720@60", "1280x720@655.36"}) {
        EXPECT_FALSE(parse({"--output", text}, o, error)) << "'" << text << "'";
        EXPECT_EQ(error.rfind(std::string("bad --output '") + text + "':", 0), 0u) << error;
        EXPECT_FALSE(parse({"--input", text}, o, error)) << "'" << text << "'";
    }
}

// Feeds `bytes` into a stream in pieces of `piece` bytes: the requests that
// come out, and the count of bytes skipped.
std::pair<std::vector<PWMsg>, std::size_t> feed(const Bytes &bytes, std::size_t piece) {
    SimStream stream;
    SimStreamInit(stream, PW_INTERFACE_CMD);
    std::pair<std::vector<PWMsg>, std::size_t> taken{{}, 0};
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
                taken.first.push_back(msg);
            else
                taken.second += skipped;
        }
    }
    return taken;
}

TEST(PwsimdStream, ResynchronisesOnGarbageAndBadPackets) {
    const PWMsg cable = message(pwOpSetCable, {2});
    const PWMsg gains = message(pwOpSetGains, {82, 84, 82, 127, 123, 0xFFFF});
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
    // A client died after the first four bytes of a request; the next one
    // sends a whole request, whose bytes make the first look long.
    const Bytes reset = packet(message(pwOpReset, {}), PW_INTERFACE_CMD);
    add({reset.begin(), reset.begin() + 4});
    add(reset);

    for (std::size_t piece : {std::size_t{1}, std::size_t{3}, std::size_t{7}, stream.size()}) {
        const auto [requests, skipped] = feed(stream, piece);
        ASSERT_EQ(requests.size(), 3u) << "piece " << piece;
        EXPECT_EQ(requests[0].Opcode, pwOpSetCable);
        EXPECT_EQ(words(requests[0]), words(cable));
        EXPECT_EQ(requests[1].Opcode, pwOpSetGains);
        EXPECT_EQ(words(requests[1]), words(gains));
        EXPECT_EQ(requests[2].Opcode, pwOpReset);
        EXPECT_EQ(skipped, 3u + 10u + 20u + 8u + 4u) << "piece " << piece;
    }
}

TEST(PwsimdDevice, RefusesUnknownOpcodesAndWrongLengths) {
    SimDevice device;
    SimDeviceInit(device, 0, SimDeviceConfig{});
    PWMsg reply{};
    for (const PWMsg &request :
         {message(0x77, {}), message(pwOpSetCable, {}), message(pwOpQueryVer, {1}),
          message(pwOpSetGains, {1, 2, 3, 4, 5})})
        EXPECT_FALSE(SimDeviceAnswer(device, request, reply))
            << "opcode " << int{request.Opcode} << ", length " << int{request.Length};
    EXPECT_EQ(device.Cable, -1) << "a refused set changes nothing";
}

// Each string's active size is checked end to end by the tool itself; what it
// can't see is that the chip has one timing per mode, with the rate and totals
// of a string that leads to that mode, not of another mode of the same size.
TEST(PwsimdModel, EachModeReportsTheTimingOfOneOfItsStrings) {
    // Status, Rate (1/100 Hz), TotalWidth, TotalHeight, ActiveWidth, ActiveHeight
    std::map<uint16_t, std::set<Words>> timingsOfMode;
    for (const ModeString &mode : toolModes) {
        int32_t formatId = 0;
        uint32_t rate    = 0;
        VidTiming r{};
        ASSERT_EQ(VidFormatFromName(mode.Text, &formatId, &rate), 0) << mode.Text;
        ASSERT_EQ(VidTimingForOutput(formatId, &r), 0) << mode.Text;
        timingsOfMode[mode.PxwMode].insert(
            Words{pwStatusValid, static_cast<uint16_t>(r.FrameRateMilliHz / 10),
                  static_cast<uint16_t>(r.HTotal), static_cast<uint16_t>(r.VTotal + r.VTotal2),
                  static_cast<uint16_t>(r.HActive), static_cast<uint16_t>(r.VActive + r.VActive2)});
    }
    for (const auto &[pxwMode, timings] : timingsOfMode) {
        SimDevice device;
        SimDeviceInit(device, 2, SimDeviceConfig{});
        PWMsg reply{};
        ASSERT_TRUE(SimDeviceAnswer(device, message(pwOpSetMode, {pxwMode}), reply));
        ASSERT_TRUE(SimDeviceAnswer(device, message(pwOpQueryOutput, {}), reply));
        const Words out = words(reply);
        EXPECT_EQ(timings.count(Words(out.begin(), out.begin() + 6)), 1u)
            << "PxwMode " << pxwMode << " reports " << testing::PrintToString(out);
    }
}

} // namespace
