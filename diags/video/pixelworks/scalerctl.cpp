// scalerctl: configures and queries one PixelWorks video input processor
// through the PixelWorks daemon. Options, the tables from words to device
// numbers, the requests and the reports.
#include "avc/main/sysCaps.h"
#include "avc/main/sysType.h"
#include "avc/main/vidFormat.h"
#include "avc/main/vidTiming.h"
#include "Common/OS/osAssert.h"
#include "system/Pixelworks/PWApi.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <getopt.h>
#include <strings.h>
#include <syslog.h>
#include <unistd.h>

namespace {

constexpr const char *progName    = "scalerctl";
constexpr const char *progVersion = "0.1";

// ---- the options of one run -------------------------------------------------

struct UserOpts {
    int32_t SysType;
    const char *PipePath; // points into argv
    int32_t DevIdx;
    int32_t CamIdx;
    int32_t SysCable;
    int32_t PxwCable;
    int32_t PxwMode;
    VidTiming Timing;
    int32_t FullFps;
    int32_t Reset;
    int32_t QueryIn;
    int32_t QueryOut;
    int32_t QueryVer;
    int32_t StatusOnly;
};

constexpr int32_t sysTypeRowan = 18;
constexpr int32_t noDevice     = -1;
constexpr int32_t noCamera     = -1;
constexpr int32_t noSysCable   = 6;  // no cable given; no word maps to it
constexpr int32_t noPxwCable   = 7;  // no cable to set
constexpr int32_t noPxwMode    = -1; // no mode to set
constexpr int32_t noFallback   = 47; // no row of the mode table has it

int gVerbose = 0;

// ---- requests and replies ---------------------------------------------------

// Opcodes of the daemon's requests.
enum : uint8_t {
    opReset       = 1,
    opQueryInput  = 2,
    opQueryOutput = 3,
    opSetCable    = 4,
    opSetMode     = 5,
    opQueryVer    = 0x23,
    opSetAspect   = 0x25,
    opSetGains    = 0x2C, // gains and offsets of every cable but "dvi-a"/"vga"
    opSetGainsVga = 0x2D, // gains and offsets of "dvi-a"/"vga" (SysCable 3)
};

constexpr uint32_t replyTimeoutMs = 1000;
constexpr int pollTries           = 25;
constexpr useconds_t pollWaitUs   = 10000;

// The payload of a timing reply: nine 16-bit words in host order.
struct PWTimingInfo {
    uint16_t Status;
    uint16_t RefreshRate; // hundredths of a hertz
    uint16_t TotalWidth;
    uint16_t TotalHeight;
    uint16_t ActiveWidth;
    uint16_t ActiveHeight;
    uint16_t Reserved[2]; // carried by the daemon, never read: no meaning is given to them
    uint16_t InputSource;
};
static_assert(sizeof(PWTimingInfo) == 18, "a timing reply carries 18 bytes");

// ---- tables -------------------------------------------------------------------

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

// ---- cable and mode resolution --------------------------------------------------

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

const CableRoute *jRouteList(int32_t sysType, int32_t devIdx) {
    for (const DeviceRoutes &row : deviceRoutes)
        if (row.SysType == sysType)
            return row.Device[static_cast<std::size_t>(devIdx)];
    return nullptr;
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

// ---- requests ---------------------------------------------------------------------

// One request and its reply on the same message: the send's result is not
// looked at, the receive's decides.
int jExchange(PWHandle *handle, PWMsg *msg) {
    PWSendMsg(handle, msg);
    return PWReceiveMsg(handle, replyTimeoutMs, msg);
}

PWMsg jRequest(uint8_t opcode, uint8_t length) {
    PWMsg msg{};
    msg.Opcode = opcode;
    msg.Length = length;
    return msg;
}

int jSetCable(PWHandle *handle, UserOpts *pUserOpts) {
    PWMsg msg      = jRequest(opSetCable, 2);
    msg.Payload[0] = static_cast<uint16_t>(pUserOpts->PxwCable);
    int result     = jExchange(handle, &msg);
    if (result != 0) {
        std::printf("%s: set cable command returned %d\n", progName, result);
        return -1;
    }
    return 0;
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

int jSetInputCalib(PWHandle *handle, UserOpts *pUserOpts) {
    const char *pSysCapsKey = jCalibKeyFor(pUserOpts->PxwCable);
    OS_ASSERT(pSysCapsKey != ((void *)0));
    const char *text = reinterpret_cast<const char *>(
        SysCapsGet(SYS_CAPS_VIDEO, pSysCapsKey, pUserOpts->DevIdx, nullptr));
    if (text == nullptr)
        return 0; // no gains for this cable on this device: nothing to send
    int vals[6];
    int NumVals = std::sscanf(text, " %d,%d,%d,%d,%d,%d", &vals[0], &vals[1], &vals[2], &vals[3],
                              &vals[4], &vals[5]);
    OS_ASSERT(NumVals == 6);
    // The six words go out in the order of the table text, unnamed: what
    // each one trims is the daemon's business. The test is on the system
    // cable: "dvi-d" shares the key of "dvi-a" but not its opcode.
    PWMsg msg = jRequest(pUserOpts->SysCable == 3 ? opSetGainsVga : opSetGains, 12);
    for (int i = 0; i < 6; ++i)
        msg.Payload[i] = static_cast<uint16_t>(vals[i]); // -1 travels as 0xFFFF
    int result = jExchange(handle, &msg);
    if (result != 0) {
        std::printf("%s: set gain/offset command returned %d\n", progName, result);
        return -1;
    }
    return 0;
}

int jQueryVersion(PWHandle *handle) {
    PWMsg msg  = jRequest(opQueryVer, 0);
    int result = jExchange(handle, &msg);
    if (result != 0) {
        std::printf("%s: query version command returned %d\n", progName, result);
        return -1;
    }
    std::printf("Firmware version %u\n", static_cast<unsigned>(msg.Payload[0]));
    return 0;
}

const char *jDirection(int isOutput) {
    return isOutput ? "output" : "input";
}

// One query of the input, or a poll of the output until its status is not
// 0: 0, -1 when the poll ran out (pInfo then holds the last reply), -2 when
// a request failed.
int jQueryTiming(PWHandle *handle, int isOutput, PWTimingInfo *pInfo) {
    for (int tries = 0; tries < pollTries; ++tries) {
        PWMsg msg  = jRequest(isOutput ? opQueryOutput : opQueryInput, 0);
        int result = jExchange(handle, &msg);
        if (result != 0) {
            std::printf("%s: query %s mode command returned %d\n", progName, jDirection(isOutput),
                        result);
            return -2;
        }
        std::memcpy(pInfo, msg.Payload, sizeof *pInfo);
        if (!isOutput || pInfo->Status != 0)
            return 0;
        usleep(pollWaitUs);
    }
    std::printf("%s: timeout (check camera source)\n", progName);
    return -1;
}

const char *jStatusName(int status) {
    switch (status) {
    case 0:
        return "none";
    case 1:
        return "valid";
    case 2:
        return "dvi-a";
    case 3:
        return "dvi-d";
    default:
        return "error";
    }
}

int jPrintTiming(const PWTimingInfo *pInfo, int isOutput) {
    std::printf("\nVideo %s:\n", jDirection(isOutput));
    std::printf("  Status             = %s\n", jStatusName(pInfo->Status));
    std::printf("  Input source       = 0x%x\n", static_cast<unsigned>(pInfo->InputSource));
    std::printf("  Timing params:\n");
    std::printf(
        "    Mode             = %u x %u at %u.%u Hz\n", static_cast<unsigned>(pInfo->ActiveWidth),
        static_cast<unsigned>(pInfo->ActiveHeight), static_cast<unsigned>(pInfo->RefreshRate / 100),
        static_cast<unsigned>(pInfo->RefreshRate % 100));
    std::printf("    Total frame size = %u x %u\n", static_cast<unsigned>(pInfo->TotalWidth),
                static_cast<unsigned>(pInfo->TotalHeight));
    return 0;
}

int jQueryInput(PWHandle *handle, int statusOnly) {
    PWTimingInfo info{};
    if (jQueryTiming(handle, 0, &info) != 0)
        return -1;
    if (statusOnly)
        std::printf("%s\n", jStatusName(info.Status));
    else
        jPrintTiming(&info, 0);
    return 0;
}

int jCheckOutput(PWHandle *handle, UserOpts *pUserOpts) {
    PWTimingInfo info{};
    // A poll that ran out has printed its message; the comparison and the
    // report go on with the last reply.
    if (jQueryTiming(handle, 1, &info) == -2)
        return -1;
    if (pUserOpts->PxwMode != noPxwMode) {
        const VidTiming &t = pUserOpts->Timing;
        if (info.ActiveWidth != t.HActive || info.ActiveHeight != t.VActive + t.VActive2) {
            std::printf("%s: output mode doesn't match request\n", progName);
            jPrintTiming(&info, 1);
            return -1;
        }
    }
    if (pUserOpts->QueryOut || gVerbose)
        jPrintTiming(&info, 1);
    return 0;
}

// ---- command line -----------------------------------------------------------------

// clang-format off
constexpr option longOptions[] = {
    {"help",           no_argument,       nullptr, 'h'},
    {"version",        no_argument,       nullptr, 'v'},
    {"verbose",        no_argument,       nullptr, 'V'},
    {"type",           required_argument, nullptr, 'x'},
    {"pipepath",       required_argument, nullptr, 'p'},
    {"device",         required_argument, nullptr, 'd'},
    {"camera",         required_argument, nullptr, 'i'},
    {"fullfps",        required_argument, nullptr, 'F'},
    {"reset",          no_argument,       nullptr, 'r'},
    {"cable",          required_argument, nullptr, 'c'},
    {"mode",           required_argument, nullptr, 'm'},
    {"query-in",       no_argument,       nullptr, 'q'},
    {"query-in-cable", no_argument,       nullptr, 'C'},
    {"query-out",      no_argument,       nullptr, 'Q'},
    {"pxwver",         no_argument,       nullptr, 'g'},
    {nullptr,          0,                 nullptr, 0},
};
// clang-format on
constexpr const char *shortOptions = "c:Cd:F:ghi:m:p:qQrvVx:";

constexpr const char *usageText =
    "usage: %s <option> ... <action> ...\n"
    "\n"
    "Configure the PixelWorks video input processor on Rowan.  Each invocation of\n"
    "this program can touch just one PixelWorks device.  All specified actions are\n"
    "performed on that device.  At least one action must be specified.  Some\n"
    "options are required.\n"
    "\n"
    "Options:\n"
    "  -h, --help\n"
    "    Display this help text.\n"
    "  -v, --version\n"
    "    Print version info.\n"
    "  -V, --verbose\n"
    "    Print more messages when running.\n"
    "  -x, --type <name>\n"
    "    Select the system type <name>.  Default is rowan.\n"
    "  -p, --pipepath <path>\n"
    "    Set the path to the named pipes used to communicate with the PixelWorks\n"
    "    daemon.  Default is /tmp.\n"
    "  -d, --device <num>\n"
    "    Select the PixelWorks device.  Required for all actions.\n"
    "    Choices are 0 - 2.\n"
    "  -i, --camera <num>\n"
    "    Select the camera number.  Choices are 1 - 4.\n"
    "  -F, --fullfps { yes | no }\n"
    "    Specifies whether to allow the selected output video mode to run at its\n"
    "    full frame rate.  Default is no.\n"
    "\n"
    "Actions:\n"
    "  -r, --reset\n"
    "    Send a soft reset message to the selected PixelWorks.  All other actions\n"
    "    are ignored when this one is specified.\n"
    "  -c, --cable <spec>\n"
    "    Set the cable type.  Applies to system input only.  Requires the --camera\n"
    "    option.  Choices are: composite, svideo, component, dvi-a, dvi-d.\n"
    "  -m, --mode <spec>\n"
    "    Set the PixelWorks output timing mode.  Choices are:\n"
    "      480p    half-sd-30    720p60    720p30    720p59\n"
    "      576p    half-sd-25    720p50    720p25\n"
    "    Also supported are many VESA-like resolutions that are specified with\n"
    "    the syntax WIDTHxHEIGHTatREFRESH.\n"
    "  -q, --query-in\n"
    "    Query the PixelWorks input timing mode details.  When specified with\n"
    "    other actions, this one runs second to last.\n"
    "  -C, --query-in-cable\n"
    "    Same as -q, but print only the status field.\n"
    "  -Q, --query-out\n"
    "    Query the PixelWorks output timing mode details.  When specified with\n"
    "    other actions, this one runs last.\n"
    "  -g, --pxwver\n"
    "    Query the PixelWorks firmware version.\n";

// strtol with base 0; what follows the digits is ignored. The range test is
// made on the long before it is narrowed, so that a number beyond 32 bits is
// refused on a 64-bit host as it is on the appliance.
bool jNumberInRange(const char *text, long low, long high, int32_t *out) {
    long value = std::strtol(text, nullptr, 0);
    if (value < low || value > high)
        return false;
    *out = static_cast<int32_t>(value);
    return true;
}

int jGetUserOpts(int argc, char **argv, UserOpts *pUserOpts) {
    int opt;
    while ((opt = getopt_long(argc, argv, shortOptions, longOptions, nullptr)) != -1) {
        switch (opt) {
        case 'h':
            std::printf(usageText, progName);
            return -1;
        case 'v':
            std::printf("%s version %s\n", progName, progVersion);
            return -1;
        case 'V':
            gVerbose = 1;
            break;
        case 'x': {
            int32_t type = SysTypeFromName(optarg);
            if (type == 0) {
                std::printf("%s: unrecognized system type %s\n", progName, optarg);
                return -1;
            }
            pUserOpts->SysType = type;
            SysTypeSet(type);
            break;
        }
        case 'p':
            pUserOpts->PipePath = optarg;
            break;
        case 'd':
            if (!jNumberInRange(optarg, 0, 2, &pUserOpts->DevIdx)) {
                std::printf("%s: --device must be in the range %u - %u\n", progName, 0u, 2u);
                return -1;
            }
            break;
        case 'i':
            if (!jNumberInRange(optarg, 1, 4, &pUserOpts->CamIdx)) {
                std::printf("%s: --camera must be in the range %u - %u\n", progName, 1u, 4u);
                return -1;
            }
            break;
        case 'F':
            // One character decides; an empty argument finds its own
            // terminating zero in the set and counts as yes.
            pUserOpts->FullFps = std::strchr("yYtT1", optarg[0]) != nullptr ? 1 : 0;
            break;
        case 'r':
            pUserOpts->Reset = 1;
            break;
        case 'c':
            if (jCableNameToSysCable(optarg, &pUserOpts->SysCable) != 0)
                return -1;
            break;
        case 'm':
            if (jModeToPxwMode(optarg, pUserOpts) != 0)
                return -1;
            break;
        case 'q':
            pUserOpts->QueryIn = 1;
            break;
        case 'C':
            pUserOpts->QueryIn    = 1;
            pUserOpts->StatusOnly = 1;
            break;
        case 'Q':
            pUserOpts->QueryOut = 1;
            break;
        case 'g':
            pUserOpts->QueryVer = 1;
            break;
        default: // '?': getopt_long has said what was wrong on standard error
            std::printf("Use option --help for usage\n");
            return -1;
        }
    }

    if (optind < argc) {
        std::printf("%s: unrecognized arguments starting at '%s'\n", progName, argv[optind]);
        return -1;
    }
    if (pUserOpts->SysCable == noSysCable && pUserOpts->PxwMode == noPxwMode && !pUserOpts->Reset &&
        !pUserOpts->QueryIn && !pUserOpts->QueryOut && !pUserOpts->QueryVer) {
        std::printf("%s: found no actions to take (try --help)\n", progName);
        return -1;
    }
    if (pUserOpts->DevIdx == noDevice) {
        std::printf("%s: missing required options (try --help)\n", progName);
        return -1;
    }
    if (pUserOpts->SysCable != noSysCable) {
        if (pUserOpts->CamIdx == noCamera) {
            std::printf("%s: option --cable requires option --camera\n", progName);
            return -1;
        }
        if (jSysCableToPxwCable(pUserOpts) != 0)
            return -1;
    }
    return 0;
}

} // namespace

int main(int argc, char **argv) {
    UserOpts opts{};
    opts.SysType  = sysTypeRowan;
    opts.PipePath = "/tmp";
    opts.DevIdx   = noDevice;
    opts.CamIdx   = noCamera;
    opts.SysCable = noSysCable;
    opts.PxwCable = noPxwCable;
    opts.PxwMode  = noPxwMode;
    int Changed   = 0;
    SysTypeSet(sysTypeRowan);

    if (jGetUserOpts(argc, argv, &opts) != 0)
        return 1;

    PWMsg msg{};
    // The program's own openlog: it names the log and touches nothing of the
    // C library's, whose syslog the link's reports go to.
    openlog(argv[0], LOG_PERROR, 0);

    int result = PWInit(opts.PipePath);
    if (result != 0) {
        std::printf("%s: init command returned %d\n", progName, result);
        return 1;
    }
    PWHandle *handle = PWOpenCmdHandle(opts.DevIdx);
    if (handle == nullptr) {
        std::printf("%s: open command failed\n", progName);
        return 1;
    }

    if (opts.Reset) {
        // The reset ends the run with status 0, whatever the daemon said.
        msg.Opcode = opReset;
        msg.Length = 0;
        std::printf("%s: reset command returned %d\n", progName, jExchange(handle, &msg));
        return 0;
    }
    if (opts.PxwCable != noPxwCable) {
        if (jSetCable(handle, &opts) != 0 || jSetInputCalib(handle, &opts) != 0)
            return 1;
        Changed = 1;
    }
    if (opts.PxwMode != noPxwMode) {
        msg.Opcode     = opSetMode;
        msg.Length     = 2;
        msg.Payload[0] = static_cast<uint16_t>(opts.PxwMode);
        result         = jExchange(handle, &msg);
        if (result != 0) {
            std::printf("%s: set output mode command returned %d\n", progName, result);
            return 1;
        }
        Changed = 1;
    }
    if (Changed) {
        // Aspect word 0 is the one value the tool ever sends; the tool gives it
        // no name and expects the daemon to keep its default picture shape.
        msg.Opcode     = opSetAspect;
        msg.Length     = 2;
        msg.Payload[0] = 0;
        result         = jExchange(handle, &msg);
        if (result != 0) {
            std::printf("%s: set aspect ratio command returned %d\n", progName, result);
            return 1;
        }
    }
    if (opts.QueryVer && jQueryVersion(handle) != 0)
        return 1;
    if (opts.QueryIn && jQueryInput(handle, opts.StatusOnly) != 0)
        return 1;
    // The output step follows a change, and also a run whose action is
    // --query-out alone: its usage text promises the output report, and the
    // step compares nothing when no mode was requested.
    if ((Changed || opts.QueryOut) && jCheckOutput(handle, &opts) != 0)
        return 1;
    // The pipes close with the process.
    return 0;
}
