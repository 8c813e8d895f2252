// The output modes and cable inputs of the simulated chip: tables and lookups.
#include "tools/pwsimd/simModes.h"

#include "avc/main/vidFormat.h"
#include "avc/main/vidTiming.h"
#include "Common/OS/osAssert.h"
#include "Common/OS/tableKeys.h"

#include <array>

namespace {

// The output modes of the simulated chip, each named by a mode string of the
// catalogue whose output record is the timing the chip then reports. This is
// the chip's own list, kept apart from the tool's mode table on purpose: the
// tool decides which mode a string asks for, the chip what a mode shows, and
// an end-to-end run compares the two. Every string that leads to the same
// PxwMode in the tool has the same active size (the tool compares only
// that). A PxwMode without a row is not a mode of the chip: set output mode
// with it leaves the output timing as it was.
// clang-format off
// PxwMode, representative mode string    other formats that lead to the PxwMode
constexpr std::array<SimModeRow, 39> modeRows{{
    {0,  "720p60"},        // 720p59
    {1,  "480p"},
    {3,  "half-sd-30"},
    {5,  "ntsc"},          // 480p30 (720x480, progressive)
    {6,  "576p"},
    {7,  "pal"},           // 576p25 (720x576, progressive)
    {8,  "640x480at72"},
    {9,  "640x480at75"},
    {10, "640x480at85"},
    {11, "640x480at60"},
    {12, "800x600at72"},
    {13, "800x600at75"},
    {14, "800x600at85"},
    {15, "800x600at60"},
    {16, "1024x768at70"},
    {17, "1024x768at75"},
    {18, "1024x768at85"},
    {19, "1024x768at60"},
    {20, "720p25"},
    {21, "720p30"},
    {22, "720p50"},
    {23, "1280x960at85"},
    {24, "1280x960at60"},
    {25, "1280x1024at75"},
    {26, "1280x1024at85"},
    {27, "1280x1024at60"},
    {28, "1600x1200at60"},
    {31, "1680x1050at60"},
    {33, "half-sd-25"},
    {34, "1280x720at60"},  // 1280x720at59, 1280x720at30
    {35, "1280x720at50"},  // 1280x720at25
    {36, "1080p30"},
    {37, "1080p25"},
    {38, "960x720at30"},
    {39, "960x720at25"},
    {40, "1440x1080at30"},
    {41, "1440x1080at25"},
    {42, "960x720at60"},
    {43, "960x720at50"},
}};
// clang-format on

constexpr bool modesAscending() {
    for (std::size_t i = 1; i < modeRows.size(); ++i)
        if (modeRows[i - 1].PxwMode >= modeRows[i].PxwMode)
            return false;
    return true;
}
static_assert(modesAscending(), "one row per PxwMode, in order");

// What feeds a chip's input behind a cable.
enum class InputKind : uint8_t {
    video, // analogue video: composite, S-video, component
    vga,   // the analogue computer input: DVI-A or VGA
    dvi,   // the DVI connector: DVI-A or DVI-D, told apart by the gains
};

struct CableRow {
    uint16_t PxwCable;
    InputKind Kind;
};

// The cables of the tool's route lists. A number means the same input on
// every chip, whichever devices the routes send it to. The DVI connector
// carries either signal; the tool loads its gains with the opcode of
// "dvi-a"/"vga" for an analogue one and with the ordinary opcode for
// "dvi-d", and on every system type it loads them on that device, so the
// last gain request after the set cable tells the two apart. Until one
// comes, the connector reports a digital signal, as the ordinary opcode
// would.
// clang-format off
// PxwCable, input kind   cables of the route lists
constexpr std::array<CableRow, 7> cableRows{{
    {0, InputKind::vga},   // dvi-a: camera 1 on device 0, camera 2 on device 1
    {1, InputKind::video}, // composite: cameras 1 to 3, devices 0 and 1
    {2, InputKind::video}, // svideo: cameras 1 to 3, devices 0 and 1
    {3, InputKind::video}, // composite: camera 3, devices 1 and 2
    {4, InputKind::video}, // svideo: camera 3, devices 1 and 2
    {5, InputKind::dvi},   // dvi-a and dvi-d: camera 4, device 2
    {6, InputKind::video}, // component: cameras 1 to 3, devices 0 and 1
}};
// clang-format on

static_assert(TableKeysUnique(cableRows, [](const CableRow &r) { return r.PxwCable; }),
              "one row per PxwCable");

// The largest value of a 16-bit word of a timing reply.
constexpr uint32_t maxWord = 0xFFFF;

} // namespace

std::span<const SimModeRow> SimModeRows() {
    return modeRows;
}

const SimModeRow *SimModeFind(uint16_t pxwMode) {
    for (const SimModeRow &row : modeRows)
        if (row.PxwMode == pxwMode)
            return &row;
    return nullptr;
}

bool SimModeTiming(uint16_t pxwMode, uint16_t inputSource, PWTimingInfo &timing) {
    const SimModeRow *row = SimModeFind(pxwMode);
    if (row == nullptr)
        return false;
    int32_t formatId = 0;
    uint32_t rate    = 0;
    VidTiming record{};
    bool known = VidFormatFromName(row->ModeName, &formatId, &rate) == 0 &&
                 VidTimingForOutput(formatId, &record) == 0;
    OS_ASSERT(known);
    OS_ASSERT(rate == 0); // the record's own rate is the one reported

    // Both fields of an interlaced record: the lines of a whole frame.
    uint32_t refresh     = record.FrameRateMilliHz / 10u; // hundredths of a hertz
    uint32_t totalHeight = record.VTotal + record.VTotal2;
    uint32_t height      = record.VActive + record.VActive2;
    OS_ASSERT(refresh <= maxWord && record.HTotal <= maxWord && totalHeight <= maxWord);

    timing              = {};
    timing.Status       = pwStatusValid;
    timing.RefreshRate  = static_cast<uint16_t>(refresh);
    timing.TotalWidth   = static_cast<uint16_t>(record.HTotal);
    timing.TotalHeight  = static_cast<uint16_t>(totalHeight);
    timing.ActiveWidth  = static_cast<uint16_t>(record.HActive);
    timing.ActiveHeight = static_cast<uint16_t>(height);
    timing.InputSource  = inputSource;
    return true;
}

uint16_t SimCableStatus(uint16_t pxwCable, uint8_t gainsOpcode) {
    for (const CableRow &row : cableRows) {
        if (row.PxwCable != pxwCable)
            continue;
        switch (row.Kind) {
        case InputKind::video:
            return pwStatusValid;
        case InputKind::vga:
            return pwStatusDviA;
        case InputKind::dvi:
            return gainsOpcode == pwOpSetGainsVga ? pwStatusDviA : pwStatusDviD;
        }
    }
    // A cable the chip doesn't have: nothing comes in.
    return pwStatusNone;
}
