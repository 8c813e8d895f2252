// scalerctl's parser and word tables in process: each refusal of a command
// line with its message, the limits of the numbers, the cable routes, and
// the sweep of every mode string of the catalogue. What reaches the daemon
// is tested end to end.
#include "avc/main/sysType.h"
#include "avc/main/vidFormatData.h"
#include "diags/video/pixelworks/scalerctl.h"
#include "tests/scalerctl/toolModes.h"

#include <gtest/gtest.h>

#include <getopt.h>
#include <map>
#include <string>
#include <vector>

namespace {

using Words = std::vector<std::string>;

struct Parsed {
    int Result;
    std::string Out;
    UserOpts Opts;
};

// The parser on `args` from the defaults, as main runs it, with what it
// printed on standard output.
Parsed parse(Words args) {
    args.insert(args.begin(), "scalerctl");
    std::vector<char *> argv;
    for (std::string &a : args)
        argv.push_back(a.data());
    argv.push_back(nullptr);
    optind = 0; // glibc: a fresh scan
    SysTypeSet(sysTypeRowan);
    Parsed p{0, "", jDefaultUserOpts()};
    testing::internal::CaptureStdout();
    p.Result = jGetUserOpts(static_cast<int>(args.size()), argv.data(), &p.Opts);
    p.Out    = testing::internal::GetCapturedStdout();
    return p;
}

// The first failure ends the parse, whatever stands behind it.
TEST(ScalerctlParser, RefusalsAndTheirOrder) {
    const std::string device = "scalerctl: --device must be in the range 0 - 2\n";
    const std::string camera = "scalerctl: --camera must be in the range 1 - 4\n";
    const std::string combo =
        "scalerctl: unsupported combination of camera, cable, and PixelWorks\n";
    // clang-format off
    const std::tuple<Words, std::string> rows[] = {
        {{"-d", "3", "-r"},                       device},
        {{"-d", "9", "-h"},                       device},
        {{"-d", "-1", "-r"},                      device},
        {{"-d", "4294967296", "-r"},              device},
        {{"-d", "010", "-r"},                     device}, // octal 8
        {{"-d", "0", "-i", "5", "-r"},            camera},
        {{"-d", "0", "-i", "0", "-r"},            camera},
        {{"-d", "0", "-i", "abc", "-r"},          camera},
        {{"-d", "0", "-i", "0x5", "-r"},          camera},
        {{"-x", "nosuch", "-d", "9"},             "scalerctl: unrecognized system type nosuch\n"},
        {{"-c", "hdmi", "-d", "9"},               "scalerctl: cable type 'hdmi' not recognized\n"},
        {{"-d", "0", "-m", "720p61"},             "scalerctl: mode '720p61' not recognized\n"},
        {{"-d", "0", "-r", "stray", "-q"},        "scalerctl: unrecognized arguments starting at 'stray'\n"},
        {{"stray", "-d", "0", "-c", "hdmi"},      "scalerctl: cable type 'hdmi' not recognized\n"},
        {{"-V"},                                  "scalerctl: found no actions to take (try --help)\n"},
        {{"-d", "0", "-i", "1", "-F", "yes"},     "scalerctl: found no actions to take (try --help)\n"},
        {{"-r"},                                  "scalerctl: missing required options (try --help)\n"},
        {{"-m", "720p60", "-i", "2"},             "scalerctl: missing required options (try --help)\n"},
        {{"-d", "0", "-c", "svideo", "-r", "-q"}, "scalerctl: option --cable requires option --camera\n"},
        {{"-d", "1", "-i", "1", "-c", "svideo", "-x", "elm"},
                                                  "scalerctl: unsupported PixelWorks device number\n"},
        {{"-x", "hazel", "-d", "0", "-i", "1", "-c", "svideo"},
                                                  "scalerctl: unsupported PixelWorks device number\n"},
        {{"-d", "0", "-i", "3", "-c", "svideo"},  combo},
        {{"-d", "0", "-i", "2", "-c", "dvi-a"},   combo},
        {{"-d", "2", "-i", "3", "-c", "component"}, combo},
        {{"-d", "0", "--bogus"},                  "Use option --help for usage\n"},
        {{"-d"},                                  "Use option --help for usage\n"},
        {{"--version", "-d", "9"},                "scalerctl version 0.1\n"},
        {{"-d", "0", "-r", "-v"},                 "scalerctl version 0.1\n"},
    };
    // clang-format on
    for (const auto &[args, out] : rows) {
        const Parsed p = parse(args);
        EXPECT_EQ(p.Result, -1) << testing::PrintToString(args);
        EXPECT_EQ(p.Out, out) << testing::PrintToString(args);
    }
}

// The usage text, by its head, two middle parts and its tail, ends the parse where it stands.
TEST(ScalerctlParser, HelpIsTheWholeUsageTextAndEndsTheParse) {
    const Parsed p = parse({"-d", "0", "-r", "-h", "-d", "9"});
    EXPECT_EQ(p.Result, -1);
    for (const char *part :
         {"usage: scalerctl <option> ... <action> ...\n\nConfigure the PixelWorks "
          "video input processor on Rowan.  Each invocation of\n",
          "    Choices are 0 - 2.\n  -i, --camera <num>\n",
          "      480p    half-sd-30    720p60    720p30    720p59\n"
          "      576p    half-sd-25    720p50    720p25\n",
          "  -g, --pxwver\n    Query the PixelWorks firmware version.\n"})
        EXPECT_NE(p.Out.find(part), std::string::npos) << part;
    EXPECT_EQ(p.Out.rfind("usage: ", 0), 0u);
    EXPECT_TRUE(p.Out.ends_with("  -g, --pxwver\n    Query the PixelWorks firmware version.\n"));
    EXPECT_EQ(std::count(p.Out.begin(), p.Out.end(), '\n'), 51);
}

TEST(ScalerctlParser, NumbersAtTheirLimitsAndTheStoredChoices) {
    // clang-format off
    // Arguments; DevIdx, CamIdx, PxwCable, PxwMode, FullFps
    const std::tuple<Words, int32_t, int32_t, int32_t, int32_t, int32_t> rows[] = {
        {{"-d", "2", "-r"},                                2, -1, 7, -1, 0},
        {{"-d", "0x2", "-r"},                              2, -1, 7, -1, 0},
        {{"-d", "02", "-r"},                               2, -1, 7, -1, 0},
        {{"-d", "abc", "-r"},                              0, -1, 7, -1, 0}, // strtol reads 0
        {{"-d", "1junk", "-r"},                            1, -1, 7, -1, 0},
        {{"-d", "0", "-i", "4", "-r"},                     0, 4,  7, -1, 0}, // a camera alone does nothing
        {{"-d", "0", "-i", "1", "-r"},                     0, 1,  7, -1, 0},
        {{"--device=1", "--camera", "0x3", "-C"},          1, 3,  7, -1, 0},
        {{"-d", "0", "-i", "1", "-c", "SVIDEO", "-Q"},     0, 1,  2, -1, 0},
        {{"-d", "0", "-F", "Y", "-m", "720p30"},           0, -1, 7, 21, 1},
        {{"-d", "0", "-F", "", "-m", "480p"},              0, -1, 7, 1,  1}, // the empty text's zero is in the set
        {{"-d", "0", "-F", "T", "-F", "no", "-m", "576p"}, 0, -1, 7, 6,  0},
        {{"-d", "0", "-m", "576p", "-F", "1"},             0, -1, 7, 6,  1},
        {{"-d", "0", "-i", "1", "-c", "svideo", "-r", "-c", "dvi-a"},
                                                           0, 1,  0, -1, 0}, // the last cable counts
    };
    // clang-format on
    for (const auto &[args, devIdx, camIdx, pxwCable, pxwMode, fullFps] : rows) {
        const Parsed p = parse(args);
        ASSERT_EQ(p.Result, 0) << testing::PrintToString(args) << p.Out;
        EXPECT_EQ(p.Out, "");
        EXPECT_EQ(std::vector<int32_t>({p.Opts.DevIdx, p.Opts.CamIdx, p.Opts.PxwCable,
                                        p.Opts.PxwMode, p.Opts.FullFps}),
                  std::vector<int32_t>({devIdx, camIdx, pxwCable, pxwMode, fullFps}))
            << testing::PrintToString(args);
    }
}

// Every camera and every system cable on every device of the three types
// with route lists (a type without lists is refused by the parser test).
TEST(ScalerctlWordTables, CableRoutesByTypeDeviceCameraAndCable) {
    // clang-format off
    // Type, device; camera 1: composite, svideo, component, dvi-a, dvi-d; camera 2: ...
    const std::tuple<int32_t, int32_t, std::vector<int32_t>> routes[] = {
        {18, 0, {1, 2, 6, 0, -1,  1, 2, 6, -1, -1,  -1, -1, -1, -1, -1,  -1, -1, -1, -1, -1}},
        {18, 1, {1, 2, 6, -1, -1, 1, 2, 6, 0, -1,   3, 4, -1, -1, -1,    -1, -1, -1, -1, -1}},
        {18, 2, {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 3, 4, -1, -1, -1, -1, -1, -1, 5, 5}},
        {22, 0, {1, 2, 6, 0, -1,  1, 2, 6, -1, -1,  -1, -1, -1, -1, -1,  -1, -1, -1, -1, -1}},
        {22, 2, {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 5, 5}},
        {23, 0, {1, 2, 6, -1, -1, 1, 2, 6, -1, -1,  1, 2, 6, -1, -1,     -1, -1, -1, -1, -1}},
        {23, 1, {1, 2, 6, -1, -1, 1, 2, 6, -1, -1,  1, 2, 6, -1, -1,     -1, -1, -1, -1, -1}},
        {23, 2, {-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 5, 5}},
    };
    // clang-format on
    for (const auto &[sysType, devIdx, pxwCables] : routes) {
        for (int32_t camera = 1; camera <= 4; ++camera) {
            for (int32_t cable = 0; cable <= 4; ++cable) {
                UserOpts o = jDefaultUserOpts();
                o.SysType  = sysType;
                o.DevIdx   = devIdx;
                o.CamIdx   = camera;
                o.SysCable = cable;
                testing::internal::CaptureStdout();
                const int result      = jSysCableToPxwCable(&o);
                const std::string out = testing::internal::GetCapturedStdout();
                const int32_t want = pxwCables[static_cast<std::size_t>((camera - 1) * 5 + cable)];
                EXPECT_EQ(result == 0 ? o.PxwCable : -1, want)
                    << "type " << sysType << " device " << devIdx << " camera " << camera
                    << " cable " << cable << ": " << out;
            }
        }
    }
}

// Every name of the catalogue's mode name space, with either --fullfps: the
// strings of the independent copy resolve to its PxwMode; every other name
// is refused, as unsupported when the catalogue has an output timing for it
// and as unknown when it has none.
TEST(ScalerctlWordTables, EveryModeStringOfTheCatalogue) {
    std::map<std::string, uint16_t> supported;
    for (const ModeString &m : toolModes)
        supported[m.Text] = m.PxwMode;
    std::size_t found = 0;
    for (const auto &row : vidFormat::VidFormatNameTable) {
        if ((row.Flags & FMT_MODE_NAME) == 0)
            continue;
        VidTiming output{};
        const bool timed = VidTimingForOutput(row.FormatId, &output) == 0;
        const auto mode  = supported.find(row.Name);
        found += mode != supported.end();
        for (int32_t fullFps : {0, 1}) {
            UserOpts o = jDefaultUserOpts();
            o.FullFps  = fullFps;
            testing::internal::CaptureStdout();
            const int result      = jModeToPxwMode(row.Name, &o);
            const std::string out = testing::internal::GetCapturedStdout();
            if (mode != supported.end()) {
                EXPECT_EQ(result, 0) << row.Name << ": " << out;
                EXPECT_EQ(o.PxwMode, mode->second) << row.Name << " fullfps " << fullFps;
            } else {
                EXPECT_EQ(out, std::string("scalerctl: ") +
                                   (timed ? "PixelWorks doesn't support mode '" : "mode '") +
                                   row.Name + (timed ? "'\n" : "' not recognized\n"));
                EXPECT_EQ(result, -1) << row.Name;
            }
        }
    }
    EXPECT_EQ(found, supported.size()) << "a string of the copy is no mode name";
}

} // namespace
