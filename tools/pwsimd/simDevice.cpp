// The device model of pwsimd: request kinds, timings and the answers of one
// simulated chip.
#include "tools/pwsimd/simDevice.h"

#include "Common/OS/osAssert.h"
#include "Common/OS/tableKeys.h"
#include "tools/pwsimd/simModes.h"

#include <array>
#include <charconv>

namespace {

// clang-format off
// Opcode, payload bytes of the request, name (for the trace)
constexpr std::array<SimRequestKind, 9> requestKinds{{
    {pwOpReset,       0,               "reset"},
    {pwOpQueryInput,  0,               "query-input"},
    {pwOpQueryOutput, 0,               "query-output"},
    {pwOpSetCable,    pwOneWordLength, "set-cable"},
    {pwOpSetMode,     pwOneWordLength, "set-mode"},
    {pwOpQueryVer,    0,               "query-version"},
    {pwOpSetAspect,   pwOneWordLength, "set-aspect"},
    {pwOpSetGains,    pwGainsLength,   "set-gains"},
    {pwOpSetGainsVga, pwGainsLength,   "set-gains-vga"},
}};
// clang-format on

static_assert(TableKeysUnique(requestKinds, [](const SimRequestKind &k) { return k.Opcode; }),
              "one row per opcode");

// Totals of common sizes, whatever the rate.
struct TotalsRow {
    uint16_t ActiveWidth;
    uint16_t ActiveHeight;
    uint16_t TotalWidth;
    uint16_t TotalHeight;
};

// clang-format off
// ActiveWidth, ActiveHeight, TotalWidth, TotalHeight (pixels, lines)
constexpr std::array<TotalsRow, 8> commonTotals{{
    {640,  480,  800,  525},
    {720,  480,  858,  525},
    {720,  576,  864,  625},
    {800,  600,  1056, 628},
    {1024, 768,  1344, 806},
    {1280, 720,  1650, 750},
    {1280, 1024, 1688, 1066},
    {1920, 1080, 2200, 1125},
}};
// clang-format on

// Blanking of a size that the table doesn't hold.
constexpr uint16_t otherBlankWidth  = 160;
constexpr uint16_t otherBlankHeight = 30;
// The largest active size accepted, so that the totals fit 16 bits.
constexpr unsigned maxActive = 8192;

const TotalsRow *findTotals(uint16_t width, uint16_t height) {
    for (const TotalsRow &row : commonTotals)
        if (row.ActiveWidth == width && row.ActiveHeight == height)
            return &row;
    return nullptr;
}

// Reads decimal digits at the front of `text` into `value`; false if none
// or above `max`.
bool takeNumber(std::string_view &text, unsigned max, unsigned &value) {
    const char *end = text.data() + text.size();
    auto [next, ec] = std::from_chars(text.data(), end, value);
    if (ec != std::errc() || next == text.data() || value > max)
        return false;
    text.remove_prefix(static_cast<std::size_t>(next - text.data()));
    return true;
}

bool takeChar(std::string_view &text, char c) {
    if (text.empty() || text.front() != c)
        return false;
    text.remove_prefix(1);
    return true;
}

} // namespace

const SimRequestKind *SimRequestFind(uint8_t opcode) {
    for (const SimRequestKind &kind : requestKinds)
        if (kind.Opcode == opcode)
            return &kind;
    return nullptr;
}

bool SimParseTiming(std::string_view text, PWTimingInfo &timing) {
    unsigned width = 0, height = 0, hertz = 0, hundredths = 0;
    if (text.empty() || text.front() < '0' || text.front() > '9')
        return false;
    if (!takeNumber(text, maxActive, width) || !takeChar(text, 'x'))
        return false;
    if (!takeNumber(text, maxActive, height) || !takeChar(text, '@'))
        return false;
    if (!takeNumber(text, 655, hertz))
        return false;
    if (takeChar(text, '.')) {
        // One or two decimals: "59.9" is 5990, "59.94" is 5994.
        std::size_t digits = text.size();
        if (digits < 1 || digits > 2 || !takeNumber(text, 99, hundredths))
            return false;
        if (digits == 1)
            hundredths *= 10;
    }
    unsigned rate = hertz * 100 + hundredths;
    if (!text.empty() || width == 0 || height == 0 || rate == 0 || rate > 0xFFFF)
        return false;

    timing              = {};
    timing.Status       = pwStatusValid;
    timing.RefreshRate  = static_cast<uint16_t>(rate);
    timing.ActiveWidth  = static_cast<uint16_t>(width);
    timing.ActiveHeight = static_cast<uint16_t>(height);
    if (const TotalsRow *row = findTotals(timing.ActiveWidth, timing.ActiveHeight)) {
        timing.TotalWidth  = row->TotalWidth;
        timing.TotalHeight = row->TotalHeight;
    } else {
        timing.TotalWidth  = static_cast<uint16_t>(width + otherBlankWidth);
        timing.TotalHeight = static_cast<uint16_t>(height + otherBlankHeight);
    }
    return true;
}

void SimDeviceInit(SimDevice &device, int chip, const SimDeviceConfig &config) {
    OS_ASSERT(static_cast<unsigned>(chip) < PW_MAX_CHIPS);
    SimDeviceConfig kept = config; // may be the device's own
    device               = {};
    device.Chip          = chip;
    device.Config        = kept;
    device.Cable         = -1;
    device.Mode          = -1;
    device.Aspect        = -1;
    device.GainsOpcode   = 0;
    device.Output        = kept.Output;
    device.Input         = kept.Input;
}

bool SimDeviceAnswer(SimDevice &device, const PWMsg &request, PWMsg &reply) {
    const SimRequestKind *kind = SimRequestFind(request.Opcode);
    if (kind == nullptr || request.Length != kind->Length)
        return false;

    reply        = {};
    reply.Opcode = request.Opcode;
    switch (request.Opcode) {
    case pwOpReset: {
        // Forgets what was set; only the count of resets stays.
        uint32_t resets = device.Resets;
        SimDeviceInit(device, device.Chip, device.Config);
        device.Resets = resets + 1;
        break;
    }
    case pwOpQueryInput:
    case pwOpQueryOutput:
        PWTimingToPayload(request.Opcode == pwOpQueryInput ? device.Input : device.Output, reply);
        break;
    case pwOpSetCable:
        device.Cable        = request.Payload[0];
        device.Input.Status = SimCableStatus(request.Payload[0], 0);
        break;
    case pwOpSetMode:
        device.Mode = request.Payload[0];
        // A mode the chip doesn't have leaves the output timing as it was.
        SimModeTiming(request.Payload[0], device.Output.InputSource, device.Output);
        break;
    case pwOpQueryVer:
        reply.Payload[0] = device.Config.Firmware;
        reply.Length     = 2;
        break;
    case pwOpSetAspect:
        device.Aspect = request.Payload[0];
        break;
    case pwOpSetGains:
    case pwOpSetGainsVga:
        device.GainsOpcode = request.Opcode;
        for (std::size_t i = 0; i < simGainWords; ++i)
            device.Gains[i] = request.Payload[i];
        // Gains before any set cable say nothing about the input.
        if (device.Cable >= 0)
            device.Input.Status =
                SimCableStatus(static_cast<uint16_t>(device.Cable), request.Opcode);
        break;
    default:
        OS_ASSERT(!"a request kind without an answer");
    }
    return true;
}
