// scalerctl: its command line. The option table, the usage text and the
// parser with its checks; the short-option string is derived from the table.
#include "diags/video/pixelworks/scalerctl.h"

#include "avc/main/sysType.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <getopt.h>

namespace {

constexpr const char *progVersion = "0.1";

int gVerbose = 0;

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

// The short-option string of getopt_long: each option's letter, with a colon
// when it takes an argument.
constexpr auto shortOptions = [] {
    std::array<char, 2 * std::size(longOptions) + 1> text{};
    std::size_t at = 0;
    for (const option &o : longOptions) {
        if (o.name == nullptr)
            break;
        text[at++] = static_cast<char>(o.val);
        if (o.has_arg == required_argument)
            text[at++] = ':';
    }
    return text;
}();

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

} // namespace

UserOpts jDefaultUserOpts() {
    UserOpts opts{};
    opts.SysType  = sysTypeRowan;
    opts.PipePath = "/tmp";
    opts.DevIdx   = noDevice;
    opts.CamIdx   = noCamera;
    opts.SysCable = noSysCable;
    opts.PxwCable = noPxwCable;
    opts.PxwMode  = noPxwMode;
    return opts;
}

int jGetUserOpts(int argc, char **argv, UserOpts *pUserOpts) {
    int opt;
    while ((opt = getopt_long(argc, argv, shortOptions.data(), longOptions, nullptr)) != -1) {
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

int jVerbose() {
    return gVerbose;
}
