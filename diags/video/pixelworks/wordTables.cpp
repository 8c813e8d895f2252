// scalerctl: the tables from words to device numbers, a cable word to a
// system cable, a system cable on a camera and device to a PixelWorks cable,
// a mode string to a PixelWorks output mode, and a PixelWorks cable to the
// capability key of its gains.
#include "diags/video/pixelworks/scalerctl.h"

#include "avc/main/vidFormat.h"
#include "Common/OS/osAssert.h"

#include <array>
#include <cstdio>
#include <strings.h>

namespace {

constexpr int32_t noFallback = 47; // no row of the mode table has it

// Cable words and their system cable numbers, searched in this order.
struct CableWord {
    const char *Word;
    int32_t SysCable;
};

// clang-format off
constexpr std::array<CableWord, 9> cableWords{{
    {"composite",       0},
    {"svideo",          1},
    {"S_Video",         1},
    {"component",       2},
    {"Component_YPbPr", 2},
    {"dvi-d",           4},
    {"dvi",             4},
    {"dvi-a",           3},
    {"vga",             3},
}};
// clang-format on

// One row of a route list: for the cameras of CameraMask (bit n: camera n),
// the system cable SysCable is the PixelWorks cable PxwCable. A mask of 0
// ends the list.
struct CableRoute {
    uint8_t CameraMask;
    int32_t SysCable;
    int32_t PxwCable;
};

// clang-format off
// CameraMask, SysCable (word), PxwCable
constexpr CableRoute routeList1[] = {
    {0x06, 0 /* composite */, 1},
    {0x06, 1 /* svideo    */, 2},
    {0x06, 2 /* component */, 6},
    {0x02, 3 /* dvi-a     */, 0},
    {0x00, 0,                 0},
};
constexpr CableRoute routeList2[] = {
    {0x06, 0 /* composite */, 1},
    {0x06, 1 /* svideo    */, 2},
    {0x06, 2 /* component */, 6},
    {0x04, 3 /* dvi-a     */, 0},
    {0x08, 0 /* composite */, 3},
    {0x08, 1 /* svideo    */, 4},
    {0x00, 0,                 0},
};
constexpr CableRoute routeList3[] = {
    {0x08, 0 /* composite */, 3},
    {0x08, 1 /* svideo    */, 4},
    {0x10, 3 /* dvi-a     */, 5},
    {0x10, 4 /* dvi-d     */, 5},
    {0x00, 0,                 0},
};
constexpr CableRoute routeList4[] = {
    {0x10, 3 /* dvi-a     */, 5},
    {0x10, 4 /* dvi-d     */, 5},
    {0x00, 0,                 0},
};
constexpr CableRoute routeList5[] = {
    {0x0E, 0 /* composite */, 1},
    {0x0E, 1 /* svideo    */, 2},
    {0x0E, 2 /* component */, 6},
    {0x00, 0,                 0},
};

// The route list of each PixelWorks device, by system type; null: no list.
struct DeviceRoutes {
    int32_t SysType;
    std::array<const CableRoute *, 3> Device;
};

// SysType, device 0, device 1, device 2
constexpr std::array<DeviceRoutes, 3> deviceRoutes{{
    {18 /* rowan     */, {routeList1, routeList2, routeList3}},
    {22 /* elm       */, {routeList1, nullptr,    routeList4}},
    {23 /* rowan_int */, {routeList5, routeList5, routeList4}},
}};

// One row of the mode table: the format id of a timing record and a rate
// (mHz, 0 for the format's own) give, with the --fullfps flag, a PixelWorks
// output mode. The comment names the mode strings that lead to the row.
struct ModeRow {
    int32_t FormatId;
    uint32_t Rate;
    int32_t FullFps;
    int32_t PxwMode;
};

// FormatId, Rate (mHz), FullFps, PxwMode
constexpr std::array<ModeRow, 45> modeTable{{
    {1,  0,     0, 5},  //  1 ntsc, ntsc_NTSC
    {59, 29970, 0, 5},  //  2 480p30, 480p29
    {59, 0,     1, 1},  //  3 480p, 480p60, 480p59, 480p_NTSC
    {2,  0,     0, 7},  //  4 pal, pal_PAL
    {60, 25000, 0, 7},  //  5 576p25
    {60, 0,     1, 6},  //  6 576p, 576p50, 576p_PAL
    {63, 0,     0, 3},  //  7 half-sd-30
    {64, 0,     0, 33}, //  8 half-sd-25
    {53, 0,     1, 0},  //  9 720p60, 12x7at60-no-csc
    {52, 0,     1, 0},  // 10 720p59, 720p_NTSC
    {51, 0,     1, 22}, // 11 720p50, 720p_PAL
    {50, 0,     0, 21}, // 12 720p30
    {49, 0,     0, 20}, // 13 720p25
    {43, 0,     0, 34}, // 14 1280x720at60, 60HZ1280x720_NTSC
    {42, 0,     0, 34}, // 15 1280x720at59
    {41, 0,     0, 35}, // 16 1280x720at50, 50HZ1280x720_PAL
    {83, 0,     0, 34}, // 17 1280x720at30
    {82, 0,     0, 35}, // 18 1280x720at25
    {85, 0,     1, 43}, // 19 960x720at50
    {84, 0,     1, 42}, // 20 960x720at60
    {87, 0,     0, 39}, // 21 960x720at25
    {86, 0,     0, 38}, // 22 960x720at30
    {89, 0,     0, 41}, // 23 1440x1080at25
    {88, 0,     0, 40}, // 24 1440x1080at30
    {55, 0,     0, 36}, // 25 1080p30
    {54, 0,     0, 37}, // 26 1080p25
    {4,  0,     0, 11}, // 27 640x480at60 and its _NTSC, _PAL names
    {5,  0,     0, 8},  // 28 640x480at72 ...
    {6,  0,     0, 9},  // 29 640x480at75 ...
    {7,  0,     0, 10}, // 30 640x480at85 ...
    {10, 0,     0, 15}, // 31 800x600at60 ...
    {11, 0,     0, 12}, // 32 800x600at72 ...
    {12, 0,     0, 13}, // 33 800x600at75 ...
    {13, 0,     0, 14}, // 34 800x600at85 ...
    {14, 0,     0, 19}, // 35 1024x768at60 ...
    {15, 0,     0, 16}, // 36 1024x768at70 ...
    {16, 0,     0, 17}, // 37 1024x768at75 ...
    {17, 0,     0, 18}, // 38 1024x768at85 ...
    {21, 0,     0, 24}, // 39 1280x960at60 ...
    {22, 0,     0, 23}, // 40 1280x960at85 ...
    {23, 0,     0, 27}, // 41 1280x1024at60 ...
    {24, 0,     0, 25}, // 42 1280x1024at75 ...
    {25, 0,     0, 26}, // 43 1280x1024at85 ...
    {35, 0,     0, 28}, // 44 1600x1200at60 ...
    {30, 0,     0, 31}, // 45 1680x1050at60
}};
// clang-format on

constexpr bool modeTableHasNoFallbackMark() {
    for (const ModeRow &row : modeTable)
        if (row.PxwMode == noFallback)
            return false;
    return true;
}
static_assert(modeTableHasNoFallbackMark(), "47 marks a missing fallback");

const CableRoute *jRouteList(int32_t sysType, int32_t devIdx) {
    for (const DeviceRoutes &row : deviceRoutes)
        if (row.SysType == sysType)
            return row.Device[static_cast<std::size_t>(devIdx)];
    return nullptr;
}

} // namespace

int jCableNameToSysCable(const char *word, int32_t *pSysCable) {
    for (const CableWord &row : cableWords) {
        if (strcasecmp(word, row.Word) == 0) {
            *pSysCable = row.SysCable;
            return 0;
        }
    }
    std::printf("%s: cable type '%s' not recognized\n", progName, word);
    return -1;
}

int jSysCableToPxwCable(UserOpts *pUserOpts) {
    OS_ASSERT(pUserOpts->DevIdx >= 0 && pUserOpts->DevIdx <= 2);
    const CableRoute *route = jRouteList(pUserOpts->SysType, pUserOpts->DevIdx);
    if (route == nullptr) {
        std::printf("%s: unsupported PixelWorks device number\n", progName);
        return -1;
    }
    for (; route->CameraMask != 0; ++route) {
        // Cameras count from 1 to 4: the camera's bit is always inside the mask.
        if ((route->CameraMask >> pUserOpts->CamIdx & 1u) != 0 &&
            route->SysCable == pUserOpts->SysCable) {
            pUserOpts->PxwCable = route->PxwCable;
            return 0;
        }
    }
    std::printf("%s: unsupported combination of camera, cable, and PixelWorks\n", progName);
    return -1;
}

int jModeToPxwMode(const char *text, UserOpts *pUserOpts) {
    int32_t fallback = noFallback;
    int32_t formatId = 0;
    uint32_t rate    = 0;
    if (VidFormatFromName(text, &formatId, &rate) != 0 ||
        VidTimingForOutput(formatId, &pUserOpts->Timing) != 0) {
        std::printf("%s: mode '%s' not recognized\n", progName, text);
        return -1;
    }
    // The record may be another format's, reached through the alias table:
    // its FormatId is the one the table is keyed by.
    for (const ModeRow &row : modeTable) {
        if (row.FormatId != pUserOpts->Timing.FormatId || row.Rate != rate)
            continue;
        if (row.FullFps == pUserOpts->FullFps) {
            pUserOpts->PxwMode = row.PxwMode;
            return 0;
        }
        fallback = row.PxwMode;
    }
    if (fallback != noFallback) {
        pUserOpts->PxwMode = fallback;
        return 0;
    }
    std::printf("%s: PixelWorks doesn't support mode '%s'\n", progName, text);
    return -1;
}

// Capability key of the gains and offsets of each PixelWorks cable.
const char *jCalibKeyFor(int32_t pxwCable) {
    switch (pxwCable) {
    case 0:
    case 5:
        return "VGAGains";
    case 1:
    case 2:
    case 3:
    case 4:
        return "SvideoGains";
    case 6:
        return "CompGains";
    default:
        return nullptr;
    }
}
