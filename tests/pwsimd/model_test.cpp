// pwsimd's device model in process: the output follows set output mode for
// every mode string the tool can send, the input follows set cable and the
// gains after it, and a reset brings both back.
#include "avc/main/vidFormat.h"
#include "avc/main/vidTiming.h"
#include "toolModes.h"
#include "tools/pwsimd/simDevice.h"
#include "tools/pwsimd/simModes.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <set>
#include <strings.h>
#include <vector>

namespace {

using Words = std::vector<uint16_t>;

// Sizes that no mode has, so that an output left alone shows.
constexpr const char *startTiming = "100x100@1";

SimDevice freshDevice(int chip = 0) {
    SimDeviceConfig config{};
    config.Firmware = 1;
    EXPECT_TRUE(SimParseTiming(startTiming, config.Output));
    EXPECT_TRUE(SimParseTiming("200x150@7.5", config.Input));
    SimDevice device;
    SimDeviceInit(device, chip, config);
    return device;
}

// One request to the device; the reply's words. A refusal fails the test.
Words ask(SimDevice &device, uint8_t opcode, const Words &payload = {}) {
    PWMsg request{};
    request.Opcode = opcode;
    request.Length = static_cast<uint8_t>(2 * payload.size());
    for (std::size_t i = 0; i < payload.size(); ++i)
        request.Payload[i] = payload[i];
    PWMsg reply{};
    EXPECT_TRUE(SimDeviceAnswer(device, request, reply)) << "opcode " << int{opcode};
    return Words(reply.Payload, reply.Payload + reply.Length / 2);
}

const Words vgaGains = {82, 84, 82, 127, 123, 122};

// Words of a timing reply.
enum : std::size_t { wStatus, wRate, wTotalW, wTotalH, wActiveW, wActiveH };

// The output record of a mode string, as the tool takes it.
VidTiming outputRecord(const char *text) {
    int32_t formatId = 0;
    uint32_t rate    = 0;
    VidTiming record{};
    EXPECT_EQ(VidFormatFromName(text, &formatId, &rate), 0) << text;
    EXPECT_EQ(VidTimingForOutput(formatId, &record), 0) << text;
    return record;
}

// Rate (1/100 Hz), TotalWidth, TotalHeight: what a reply says beyond the size.
using RateAndTotals = std::array<uint32_t, 3>;

TEST(PwsimdModel, EveryModeStringOfTheToolGetsTheActiveSizeItExpects) {
    // By PxwMode: the rate and totals of each string's record, and what the
    // chip reported.
    std::map<uint16_t, std::set<RateAndTotals>> recordsOfMode;
    std::map<uint16_t, RateAndTotals> reportedOfMode;
    for (const ModeString &mode : toolModes) {
        const VidTiming record = outputRecord(mode.Text);
        SimDevice device       = freshDevice();
        ask(device, simOpSetMode, {mode.PxwMode});
        Words out = ask(device, simOpQueryOutput);
        ASSERT_EQ(out.size(), simTimingWords) << mode.Text;
        EXPECT_EQ(out[wStatus], simStatusValid) << mode.Text;
        EXPECT_EQ(out[wActiveW], record.HActive) << mode.Text << ", PxwMode " << mode.PxwMode;
        EXPECT_EQ(out[wActiveH], record.VActive + record.VActive2)
            << mode.Text << ", PxwMode " << mode.PxwMode;

        recordsOfMode[mode.PxwMode].insert(
            {record.FrameRateMilliHz / 10, record.HTotal, record.VTotal + record.VTotal2});
        reportedOfMode[mode.PxwMode] = {out[wRate], out[wTotalW], out[wTotalH]};
    }
    // The chip has one timing per mode: that of one of the strings that lead
    // to it, not one of another mode of the same size.
    for (const auto &[pxwMode, reported] : reportedOfMode)
        EXPECT_EQ(recordsOfMode[pxwMode].count(reported), 1u)
            << "PxwMode " << pxwMode << " reports " << reported[0] << " (1/100 Hz), " << reported[1]
            << " x " << reported[2];
}

TEST(PwsimdModel, ModeRowsAreExactlyTheToolsModesWithOneOfTheirStrings) {
    std::map<uint16_t, std::vector<const char *>> stringsOfMode;
    for (const ModeString &mode : toolModes)
        stringsOfMode[mode.PxwMode].push_back(mode.Text);
    std::set<uint16_t> rowModes;
    for (const SimModeRow &row : SimModeRows()) {
        rowModes.insert(row.PxwMode);
        const auto &strings = stringsOfMode[row.PxwMode];
        bool among          = false;
        for (const char *text : strings)
            among = among || strcasecmp(text, row.ModeName) == 0;
        EXPECT_TRUE(among) << "PxwMode " << row.PxwMode << ": '" << row.ModeName
                           << "' is not a string the tool sends it for";
    }
    std::set<uint16_t> toolModeNumbers;
    for (const auto &entry : stringsOfMode)
        toolModeNumbers.insert(entry.first);
    EXPECT_EQ(rowModes, toolModeNumbers);
    EXPECT_EQ(toolModeNumbers.size(), 39u) << "distinct PxwModes of the tool's 45 rows";
}

TEST(PwsimdModel, AModeWithoutARowKeepsTheOutputAndAResetRestoresTheStart) {
    SimDevice device  = freshDevice(2);
    const Words start = ask(device, simOpQueryOutput);
    EXPECT_EQ(start[wActiveW], 100) << "the --output timing before any set output mode";
    ask(device, simOpSetMode, {0});
    const Words mode0 = ask(device, simOpQueryOutput);
    EXPECT_EQ(mode0[wActiveW], 1280);
    for (uint16_t unknown : {2, 4, 29, 30, 32, 44, 47, 0xFFFF}) {
        ask(device, simOpSetMode, {unknown});
        EXPECT_EQ(ask(device, simOpQueryOutput), mode0) << "PxwMode " << unknown;
    }
    ask(device, simOpReset);
    EXPECT_EQ(ask(device, simOpQueryOutput), start);
}

// One cable as the tool sets it on a device: the set cable, then the gain
// request it sends there (none when the device has no gain row for it).
struct CableCase {
    int Chip;
    uint16_t PxwCable;
    uint8_t GainsOpcode; // 0: no gain request
    uint16_t Status;
    const char *Meaning;
};

TEST(PwsimdModel, InputStatusFollowsTheCableAndItsGains) {
    // clang-format off
    const CableCase cases[] = {
        {0, 1,      simOpSetGains,    simStatusValid, "composite, device 0"},
        {0, 2,      simOpSetGains,    simStatusValid, "svideo, device 0"},
        {0, 6,      simOpSetGains,    simStatusValid, "component, device 0"},
        {0, 0,      0,                simStatusDviA,  "dvi-a, device 0"},
        {1, 0,      0,                simStatusDviA,  "dvi-a, device 1"},
        {1, 3,      simOpSetGains,    simStatusValid, "composite of camera 3, device 1"},
        {1, 4,      simOpSetGains,    simStatusValid, "svideo of camera 3, device 1"},
        {2, 3,      0,                simStatusValid, "composite of camera 3, device 2"},
        {2, 4,      0,                simStatusValid, "svideo of camera 3, device 2"},
        {2, 5,      simOpSetGainsVga, simStatusDviA,  "dvi-a, device 2"},
        {2, 5,      simOpSetGains,    simStatusDviD,  "dvi-d, device 2"},
        {0, 7,      0,                simStatusNone,  "no such cable"},
        {2, 0xFFFF, simOpSetGains,    simStatusNone,  "no such cable, with gains"},
    };
    // clang-format on
    for (const CableCase &c : cases) {
        SimDevice device   = freshDevice(c.Chip);
        const Words before = ask(device, simOpQueryInput);
        const Words output = ask(device, simOpQueryOutput);
        EXPECT_EQ(before[wStatus], simStatusValid) << "before any set cable";
        ask(device, simOpSetCable, {c.PxwCable});
        if (c.GainsOpcode != 0)
            ask(device, c.GainsOpcode, vgaGains);
        Words in = ask(device, simOpQueryInput);
        EXPECT_EQ(in[wStatus], c.Status) << c.Meaning;
        in[wStatus] = before[wStatus];
        EXPECT_EQ(in, before) << c.Meaning << ": only the status changes";
        EXPECT_EQ(ask(device, simOpQueryOutput), output) << c.Meaning;
    }
}

struct Step {
    uint8_t Opcode;
    Words Payload;
    uint16_t Status; // of the input afterwards
    const char *Meaning;
};

TEST(PwsimdModel, OnlyGainsAfterTheSetCableTellDviAFromDviD) {
    // clang-format off
    const Step steps[] = {
        {simOpSetGainsVga, vgaGains, simStatusValid, "gains before any cable say nothing"},
        {simOpSetCable,    {5},      simStatusDviD,  "DVI connector, no gains yet"},
        {simOpSetGainsVga, vgaGains, simStatusDviA,  "analogue gains"},
        {simOpQueryOutput, {},       simStatusDviA,  "a query changes nothing"},
        {simOpSetGains,    vgaGains, simStatusDviD,  "the last gains count"},
        {simOpSetGainsVga, vgaGains, simStatusDviA,  "analogue again"},
        {simOpSetCable,    {5},      simStatusDviD,  "gains before the cable don't count"},
        {simOpSetCable,    {2},      simStatusValid, "svideo"},
        {simOpSetGainsVga, vgaGains, simStatusValid, "gains don't change a video cable"},
        {simOpSetCable,    {0},      simStatusDviA,  "dvi-a"},
        {simOpSetGains,    vgaGains, simStatusDviA,  "gains don't change the analogue input"},
        {simOpReset,       {},       simStatusValid, "reset"},
        {simOpSetGainsVga, vgaGains, simStatusValid, "the reset forgot the cable"},
    };
    // clang-format on
    SimDevice device = freshDevice(2);
    for (const Step &step : steps) {
        ask(device, step.Opcode, step.Payload);
        EXPECT_EQ(ask(device, simOpQueryInput)[wStatus], step.Status) << step.Meaning;
    }
}

} // namespace
