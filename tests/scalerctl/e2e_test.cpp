// scalerctl end to end: the real program against the real simulator over
// real pipes. Each case checks standard output exactly, the exit status, and
// the requests the simulator received, in order, from its trace.
#include "tests/pwsimd/simProcess.h"
#include "tests/pwsimd/toolModes.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using Words = std::vector<std::string>;

// The real scalerctl, run to its end.
ProgramRun RunScalerctl(const Words &args) {
    return RunProgram(SCALERCTL_EMULATOR, SCALERCTL_PATH, args);
}

// The requests of a trace, each as "op=0xOO words=WWWW,...".
Words requestsOf(const std::string &trace) {
    Words requests;
    std::istringstream lines(trace);
    std::string line;
    while (std::getline(lines, line)) {
        if (line.rfind("pwsimd: req ", 0) != 0)
            continue;
        std::size_t op    = line.find("op=");
        std::size_t words = line.find("words=");
        requests.push_back(line.substr(op, 7) + " " + line.substr(words));
    }
    return requests;
}

struct Outcome {
    ProgramRun Run;
    Words Requests;
};

// Runs scalerctl once for each of `runs`, in order, against one simulator
// started with `simArgs`, and stops the simulator afterwards. The requests
// of all the runs are in the last outcome; the others have none.
std::vector<Outcome> runSession(const std::vector<Words> &runs, const Words &simArgs = {}) {
    std::vector<Outcome> outcomes(runs.size());
    SimProcess sim;
    Words args = simArgs;
    args.push_back("--trace");
    EXPECT_TRUE(SimStart(sim, args, "", true));
    for (std::size_t i = 0; i < runs.size(); ++i) {
        Words withPath = {"--pipepath", sim.Dir};
        withPath.insert(withPath.end(), runs[i].begin(), runs[i].end());
        outcomes[i].Run = RunScalerctl(withPath);
    }
    EXPECT_TRUE(SimStop(sim));
    if (!outcomes.empty())
        outcomes.back().Requests = requestsOf(sim.ErrPending);
    return outcomes;
}

// One run of scalerctl with `toolArgs` against a simulator of its own.
Outcome runWithSim(const Words &toolArgs, const Words &simArgs = {}) {
    return runSession({toolArgs}, simArgs).front();
}

const std::string sixNone = "ffff,ffff,ffff,ffff,ffff,ffff";

// The output report of the simulator's default output, 1280 x 720 at 60 Hz.
const std::string report720p60 = "\nVideo output:\n"
                                 "  Status             = valid\n"
                                 "  Input source       = 0x0\n"
                                 "  Timing params:\n"
                                 "    Mode             = 1280 x 720 at 60.0 Hz\n"
                                 "    Total frame size = 1650 x 750\n";

// The same output while it still reports no signal (status0).
const std::string report720p60None = "\nVideo output:\n"
                                     "  Status             = none\n"
                                     "  Input source       = 0x0\n"
                                     "  Timing params:\n"
                                     "    Mode             = 1280 x 720 at 60.0 Hz\n"
                                     "    Total frame size = 1650 x 750\n";

const std::string timeoutLine  = "scalerctl: timeout (check camera source)\n";
const std::string mismatchLine = "scalerctl: output mode doesn't match request\n";
const std::string openFailed   = "scalerctl: open command failed\n";

// ---- the command line ----------------------------------------------------------

// A refused command line never reaches a pipe: these run with a folder that
// does not exist, so a run that got past the parser would say "open command
// failed" instead.
struct ParserRow {
    Words Args;
    std::string Out;
};

TEST(ScalerctlParser, RefusalsAndTheirOrder) {
    // clang-format off
    const ParserRow rows[] = {
        {{"-d", "9", "-h"},                       "scalerctl: --device must be in the range 0 - 2\n"},
        {{"-d", "-1", "-r"},                      "scalerctl: --device must be in the range 0 - 2\n"},
        {{"-d", "4294967296", "-r"},              "scalerctl: --device must be in the range 0 - 2\n"},
        {{"-d", "010", "-r"},                     "scalerctl: --device must be in the range 0 - 2\n"},
        {{"-d", "0", "-i", "5", "-r"},            "scalerctl: --camera must be in the range 1 - 4\n"},
        {{"-d", "0", "-i", "abc", "-r"},          "scalerctl: --camera must be in the range 1 - 4\n"},
        {{"-d", "0", "-i", "0x5", "-r"},          "scalerctl: --camera must be in the range 1 - 4\n"},
        {{"-x", "nosuch", "-d", "9"},             "scalerctl: unrecognized system type nosuch\n"},
        {{"-d", "0", "-c", "hdmi"},               "scalerctl: cable type 'hdmi' not recognized\n"},
        {{"-c", "hdmi", "-d", "9"},               "scalerctl: cable type 'hdmi' not recognized\n"},
        {{"-d", "0", "-m", "720p61"},             "scalerctl: mode '720p61' not recognized\n"},
        {{"-d", "0", "-m", "1080p60"},            "scalerctl: PixelWorks doesn't support mode '1080p60'\n"},
        {{"-d", "0", "-r", "stray", "-q"},        "scalerctl: unrecognized arguments starting at 'stray'\n"},
        {{"stray", "-d", "0", "-c", "hdmi"},      "scalerctl: cable type 'hdmi' not recognized\n"},
        {{"-V"},                                  "scalerctl: found no actions to take (try --help)\n"},
        {{"-d", "0", "-i", "1", "-F", "yes"},     "scalerctl: found no actions to take (try --help)\n"},
        {{"-r"},                                  "scalerctl: missing required options (try --help)\n"},
        {{"-m", "720p60", "-i", "2"},             "scalerctl: missing required options (try --help)\n"},
        {{"-d", "0", "-c", "svideo"},             "scalerctl: option --cable requires option --camera\n"},
        {{"-d", "0", "-c", "svideo", "-r", "-q"}, "scalerctl: option --cable requires option --camera\n"},
        {{"-d", "1", "-i", "1", "-c", "svideo", "-x", "elm"},
                                                  "scalerctl: unsupported PixelWorks device number\n"},
        {{"-x", "hazel", "-d", "0", "-i", "1", "-c", "svideo"},
                                                  "scalerctl: unsupported PixelWorks device number\n"},
        {{"-d", "0", "-i", "3", "-c", "svideo"},  "scalerctl: unsupported combination of camera, cable, and PixelWorks\n"},
        {{"-d", "0", "-i", "2", "-c", "dvi-a"},   "scalerctl: unsupported combination of camera, cable, and PixelWorks\n"},
        {{"-d", "2", "-i", "3", "-c", "component"},
                                                  "scalerctl: unsupported combination of camera, cable, and PixelWorks\n"},
        {{"-d", "0", "--bogus"},                  "Use option --help for usage\n"},
        {{"-d"},                                  "Use option --help for usage\n"},
        {{"--version", "-d", "9"},                "scalerctl version 0.1\n"},
        {{"-d", "0", "-r", "-v"},                 "scalerctl version 0.1\n"},
    };
    // clang-format on
    for (const ParserRow &row : rows) {
        Words args = {"-p", "/nonexistent/pipes"};
        args.insert(args.end(), row.Args.begin(), row.Args.end());
        ProgramRun run = RunScalerctl(args);
        std::string shown;
        for (const std::string &a : row.Args)
            shown += a + " ";
        EXPECT_EQ(run.Out, row.Out) << shown;
        EXPECT_EQ(run.ExitStatus, 1) << shown;
    }
}

TEST(ScalerctlParser, ModesOutsideTheTable) {
    // Strings the catalogue knows but the tool's mode table has not.
    const char *const unsupported[] = {"half-sd-60",
                                       "half-sd-50",
                                       "1080p60",
                                       "1080p59",
                                       "1080p50",
                                       "1080i60",
                                       "1080i30",
                                       "1080i50",
                                       "1080i25",
                                       "1080p_NTSC",
                                       "1080p_PAL",
                                       "1080i_NTSC",
                                       "1080i_PAL",
                                       "1920x1080at60",
                                       "1920x1080at59",
                                       "1920x1080at50",
                                       "1920x1080at60i",
                                       "1920x1080at50i",
                                       "1920x1080at30",
                                       "1920x1080at25",
                                       "60HZ1920x1080P_NTSC",
                                       "50HZ1920x1080P_PAL",
                                       "60HZ1920x1080I_NTSC",
                                       "50HZ1920x1080I_PAL",
                                       "30HZ1920x1080P_NTSC",
                                       "25HZ1920x1080P_PAL",
                                       "640x480at25",
                                       "640x480at30",
                                       "800x600at25",
                                       "800x600at30",
                                       "800x600at50",
                                       "1024x768at25",
                                       "1024x768at30",
                                       "1280x960at25",
                                       "1280x960at30",
                                       "1280x1024at25",
                                       "1280x1024at30",
                                       "1400x1050at60",
                                       "60HZ1400x1050_NTSC",
                                       "60HZ1400x1050_PAL",
                                       "1680x1050at25",
                                       "1680x1050at30",
                                       "1680x1050at60rb",
                                       "1680x1050at60r",
                                       "60HZ1680x1050_NTSC",
                                       "60HZ1680x1050_PAL",
                                       "1600x1200at25",
                                       "1600x1200at30"};
    // Names whose format has no timing record, read like unknown strings.
    const char *const untimed[] = {"1680x1050at75",      "1680x1050at85",      "1600x1200at65",
                                   "1600x1200at70",      "1600x1200at75",      "1600x1200at85",
                                   "65HZ1600x1200_NTSC", "65HZ1600x1200_PAL",  "70HZ1600x1200_NTSC",
                                   "70HZ1600x1200_PAL",  "75HZ1600x1200_NTSC", "75HZ1600x1200_PAL",
                                   "85HZ1600x1200_NTSC", "85HZ1600x1200_PAL",  "auto-ntsc-pal"};
    for (const char *mode : unsupported) {
        ProgramRun run = RunScalerctl({"-p", "/nonexistent/pipes", "-d", "0", "-m", mode});
        EXPECT_EQ(run.Out,
                  "scalerctl: PixelWorks doesn't support mode '" + std::string(mode) + "'\n");
        EXPECT_EQ(run.ExitStatus, 1) << mode;
    }
    for (const char *mode : untimed) {
        ProgramRun run = RunScalerctl({"-p", "/nonexistent/pipes", "-d", "0", "-m", mode});
        EXPECT_EQ(run.Out, "scalerctl: mode '" + std::string(mode) + "' not recognized\n");
        EXPECT_EQ(run.ExitStatus, 1) << mode;
    }
}

TEST(ScalerctlParser, HelpPrintsTheUsageAndEndsWithStatusOne) {
    for (const Words &args : {Words{"--help"}, Words{"-d", "0", "-r", "-h"}}) {
        ProgramRun run = RunScalerctl(args);
        EXPECT_EQ(run.ExitStatus, 1);
        EXPECT_EQ(run.Out.rfind("usage: scalerctl <option> ... <action> ...\n\n", 0), 0u);
        EXPECT_NE(run.Out.find("Configure the PixelWorks video input processor on Rowan.  Each "
                               "invocation of\nthis program can touch just one PixelWorks "
                               "device.  All specified actions are\n"),
                  std::string::npos);
        EXPECT_NE(run.Out.find("      480p    half-sd-30    720p60    720p30    720p59\n"
                               "      576p    half-sd-25    720p50    720p25\n"),
                  std::string::npos);
        std::size_t end = run.Out.size() - std::string("  -g, --pxwver\n    Query the PixelWorks "
                                                       "firmware version.\n")
                                               .size();
        EXPECT_EQ(run.Out.substr(end),
                  "  -g, --pxwver\n    Query the PixelWorks firmware version.\n");
        EXPECT_EQ(std::count(run.Out.begin(), run.Out.end(), '\n'), 51);
    }
}

TEST(ScalerctlParser, LinkFailuresAfterTheParser) {
    // Past the parser: the folder is given to the link as it stands.
    std::string fifty(50, 'p');
    ProgramRun tooLong = RunScalerctl({"-p", "/" + fifty.substr(1), "-d", "0", "-r"});
    EXPECT_EQ(tooLong.Out, "scalerctl: init command returned -3\n");
    EXPECT_EQ(tooLong.ExitStatus, 1);
    // "abc" reads as device 0 and passes.
    ProgramRun noDaemon = RunScalerctl({"-p", "/nonexistent", "-d", "abc", "-r"});
    EXPECT_EQ(noDaemon.Out, "scalerctl: open command failed\n");
    EXPECT_EQ(noDaemon.ExitStatus, 1);
    // The link's causes go to the system log, never to the terminal.
    EXPECT_EQ(noDaemon.Err, "");
}

// ---- reset ---------------------------------------------------------------------

TEST(ScalerctlReset, ResetAloneAndBeforeEverythingElse) {
    Outcome plain = runWithSim({"-d", "1", "--reset"});
    EXPECT_EQ(plain.Run.Out, "scalerctl: reset command returned 0\n");
    EXPECT_EQ(plain.Run.ExitStatus, 0);
    EXPECT_EQ(plain.Requests, Words{"op=0x01 words=-"});

    // Everything else is checked by the parser and then ignored.
    Outcome all =
        runWithSim({"-d", "0", "-i", "1", "-c", "svideo", "-m", "720p60", "-g", "-q", "-Q", "-r"});
    EXPECT_EQ(all.Run.Out, "scalerctl: reset command returned 0\n");
    EXPECT_EQ(all.Run.ExitStatus, 0);
    EXPECT_EQ(all.Requests, Words{"op=0x01 words=-"});
}

TEST(ScalerctlReset, AFailedResetStillEndsWithStatusZero) {
    Outcome silent = runWithSim({"-d", "0", "-r"}, {"--fault", "never"});
    EXPECT_EQ(silent.Run.Out, "scalerctl: reset command returned -35\n");
    EXPECT_EQ(silent.Run.ExitStatus, 0);
    EXPECT_EQ(silent.Run.Err, "");
}

// ---- cables and their gains ----------------------------------------------------------

struct CableRow {
    const char *Type;
    const char *Device;
    const char *Camera;
    const char *Cable;
    std::string SetCable; // payload of the set cable request
    std::string Gains;    // the gain request, "" for none
};

TEST(ScalerctlCable, CableAndGainsByTypeDeviceAndCamera) {
    // clang-format off
    const CableRow rows[] = {
        {"rowan",     "0", "1", "svideo",          "0002", "op=0x2c words=" + sixNone},
        {"rowan",     "0", "2", "S_VIDEO",         "0002", "op=0x2c words=" + sixNone},
        {"rowan",     "0", "1", "composite",       "0001", "op=0x2c words=" + sixNone},
        {"rowan",     "0", "2", "component",       "0006", "op=0x2c words=0043,003f,0040,ffff,ffff,ffff"},
        {"rowan",     "1", "2", "Component_YPbPr", "0006", "op=0x2c words=0043,0040,0042,ffff,ffff,ffff"},
        {"rowan",     "0", "1", "dvi-a",           "0000", ""},
        {"rowan",     "1", "2", "vga",             "0000", ""},
        {"rowan",     "1", "3", "composite",       "0003", "op=0x2c words=" + sixNone},
        {"rowan",     "1", "3", "svideo",          "0004", "op=0x2c words=" + sixNone},
        {"rowan",     "2", "3", "composite",       "0003", ""},
        {"rowan",     "2", "3", "svideo",          "0004", ""},
        {"rowan",     "2", "4", "dvi-a",           "0005", "op=0x2d words=0052,0054,0052,007f,007b,007a"},
        {"rowan",     "2", "4", "dvi-d",           "0005", "op=0x2c words=0052,0054,0052,007f,007b,007a"},
        {"rowan",     "2", "4", "DVI",             "0005", "op=0x2c words=0052,0054,0052,007f,007b,007a"},
        {"elm",       "0", "1", "svideo",          "0002", "op=0x2c words=" + sixNone},
        {"elm",       "2", "4", "vga",             "0005", "op=0x2d words=0052,0054,0052,007f,007b,007a"},
        {"rowan_int", "0", "3", "composite",       "0001", "op=0x2c words=" + sixNone},
        {"rowan_int", "1", "3", "component",       "0006", "op=0x2c words=0043,0040,0042,ffff,ffff,ffff"},
        {"rowan_int", "2", "4", "dvi-d",           "0005", "op=0x2c words=0052,0054,0052,007f,007b,007a"},
    };
    // clang-format on
    for (const CableRow &row : rows) {
        std::string shown = std::string(row.Type) + " device " + row.Device + " camera " +
                            row.Camera + " " + row.Cable;
        Outcome o =
            runWithSim({"-x", row.Type, "-d", row.Device, "-i", row.Camera, "-c", row.Cable});
        Words expected = {"op=0x04 words=" + row.SetCable};
        if (!row.Gains.empty())
            expected.push_back(row.Gains);
        expected.push_back("op=0x25 words=0000");
        expected.push_back("op=0x03 words=-");
        EXPECT_EQ(o.Requests, expected) << shown;
        EXPECT_EQ(o.Run.Out, "") << shown;
        EXPECT_EQ(o.Run.ExitStatus, 0) << shown;
    }
}

TEST(ScalerctlCable, CameraWithoutCableIsAcceptedAndDoesNothing) {
    Outcome o = runWithSim({"-d", "0", "-i", "3", "-g"}, {"--firmware", "0x1234"});
    EXPECT_EQ(o.Run.Out, "Firmware version 4660\n");
    EXPECT_EQ(o.Run.ExitStatus, 0);
    EXPECT_EQ(o.Requests, Words{"op=0x23 words=-"});
}

// ---- output modes --------------------------------------------------------------------

struct ModeRow {
    Words Args;
    std::string SetMode; // payload of the set output mode request
};

TEST(ScalerctlMode, ModeStringsAliasesAndTheFullFpsFallback) {
    // clang-format off
    const ModeRow rows[] = {
        {{"-m", "720p60"},                    "0000"},
        {{"-m", "12x7at60-no-csc"},           "0000"},
        {{"-m", "480p"},                      "0001"},
        {{"-m", "480p30"},                    "0005"},
        {{"-m", "576p"},                      "0006"},
        {{"-m", "576p25"},                    "0007"},
        {{"-m", "720p30"},                    "0015"},
        {{"-F", "yes", "-m", "720p30"},       "0015"},
        {{"-m", "720p30", "-F", "no"},        "0015"},
        {{"-F", "1", "-m", "720p60"},         "0000"},
        {{"-F", "", "-m", "720p50"},          "0016"},
        {{"-m", "NTSC"},                      "0005"},
        {{"-m", "1280x720at60"},              "0022"},
        {{"-m", "1680x1050AT60"},             "001f"},
    };
    // clang-format on
    for (const ModeRow &row : rows) {
        Words args = {"-d", "0"};
        args.insert(args.end(), row.Args.begin(), row.Args.end());
        Outcome o = runWithSim(args);
        EXPECT_EQ(o.Requests,
                  (Words{"op=0x05 words=" + row.SetMode, "op=0x25 words=0000", "op=0x03 words=-"}))
            << row.Args.back();
        EXPECT_EQ(o.Run.ExitStatus, 0) << row.Args.back() << ": " << o.Run.Out;
    }
}

TEST(ScalerctlMode, TheTypicalRun) {
    Outcome o = runWithSim({"-d", "0", "-i", "1", "-c", "svideo", "-m", "720p60", "-Q"});
    EXPECT_EQ(o.Run.Out, report720p60);
    EXPECT_EQ(o.Run.ExitStatus, 0);
    EXPECT_EQ(o.Run.Err, "");
    EXPECT_EQ(o.Requests, (Words{"op=0x04 words=0002", "op=0x2c words=" + sixNone,
                                 "op=0x05 words=0000", "op=0x25 words=0000", "op=0x03 words=-"}));
}

TEST(ScalerctlMode, EveryModeStringSucceedsAgainstTheFollowingOutput) {
    // One simulator for all the runs: each set output mode changes what the
    // next query output reports, and the tool compares its size.
    std::vector<Words> runs;
    Words expected;
    for (const ModeString &mode : toolModes) {
        runs.push_back({"-d", "1", "-m", mode.Text, "-Q"});
        char word[8];
        std::snprintf(word, sizeof word, "%04x", mode.PxwMode);
        expected.insert(expected.end(), {std::string("op=0x05 words=") + word, "op=0x25 words=0000",
                                         "op=0x03 words=-"});
    }
    const std::vector<Outcome> outcomes = runSession(runs);
    for (std::size_t i = 0; i < outcomes.size(); ++i) {
        const ProgramRun &run = outcomes[i].Run;
        EXPECT_EQ(run.ExitStatus, 0) << toolModes[i].Text << ": " << run.Out;
        EXPECT_EQ(run.Out.rfind("\nVideo output:\n  Status             = valid\n", 0), 0u)
            << toolModes[i].Text << ": " << run.Out;
    }
    EXPECT_EQ(outcomes.back().Requests, expected);
}

TEST(ScalerctlMode, AnInterlacedModeExpectsTheLinesOfBothFields) {
    Outcome o = runWithSim({"-d", "0", "-m", "ntsc", "-Q"});
    EXPECT_EQ(o.Run.ExitStatus, 0) << o.Run.Out;
    EXPECT_NE(o.Run.Out.find("    Mode             = 720 x 480 at "), std::string::npos)
        << o.Run.Out;
}

// ---- queries -------------------------------------------------------------------------

TEST(ScalerctlQuery, FirmwareInputAndStatusInTheirOrder) {
    Outcome o =
        runWithSim({"-d", "2", "-q", "-g"}, {"--firmware", "513", "--input", "720x480@59.94"});
    EXPECT_EQ(o.Run.Out, "Firmware version 513\n"
                         "\nVideo input:\n"
                         "  Status             = valid\n"
                         "  Input source       = 0x0\n"
                         "  Timing params:\n"
                         "    Mode             = 720 x 480 at 59.94 Hz\n"
                         "    Total frame size = 858 x 525\n");
    EXPECT_EQ(o.Run.ExitStatus, 0);
    EXPECT_EQ(o.Requests, (Words{"op=0x23 words=-", "op=0x02 words=-"}));

    Outcome status = runWithSim({"-d", "0", "-C"});
    EXPECT_EQ(status.Run.Out, "valid\n");
    EXPECT_EQ(status.Requests, Words{"op=0x02 words=-"});
}

TEST(ScalerctlQuery, QueryOutAloneQueriesAndReports) {
    Outcome o = runWithSim({"-d", "0", "-Q"});
    EXPECT_EQ(o.Run.Out, report720p60);
    EXPECT_EQ(o.Run.ExitStatus, 0);
    EXPECT_EQ(o.Requests, Words{"op=0x03 words=-"});
}

TEST(ScalerctlQuery, VerboseReportsAfterAChangeAndSilenceOtherwise) {
    Outcome verbose = runWithSim({"-d", "0", "-V", "-m", "720p60"});
    EXPECT_EQ(verbose.Run.Out, report720p60);
    Outcome quiet = runWithSim({"-d", "0", "-m", "720p60"});
    EXPECT_EQ(quiet.Run.Out, "");
    EXPECT_EQ(quiet.Run.ExitStatus, 0);
}

TEST(ScalerctlQuery, OutputIsPolledUntilItReports) {
    Outcome o = runWithSim({"-d", "0", "-m", "720p60", "-Q"}, {"--fault", "status0=3"});
    EXPECT_EQ(o.Run.Out, report720p60);
    EXPECT_EQ(o.Run.ExitStatus, 0);
    EXPECT_EQ(o.Requests, (Words{"op=0x05 words=0000", "op=0x25 words=0000", "op=0x03 words=-",
                                 "op=0x03 words=-", "op=0x03 words=-", "op=0x03 words=-"}));
}

TEST(ScalerctlQuery, PollTimeoutAfterACableChangeStillSucceeds) {
    Outcome o = runWithSim({"-d", "0", "-i", "1", "-c", "svideo"}, {"--fault", "status0=100"});
    EXPECT_EQ(o.Run.Out, timeoutLine);
    EXPECT_EQ(o.Run.ExitStatus, 0);
    Words expected = {"op=0x04 words=0002", "op=0x2c words=" + sixNone, "op=0x25 words=0000"};
    expected.insert(expected.end(), 25, "op=0x03 words=-");
    EXPECT_EQ(o.Requests, expected);
}

TEST(ScalerctlQuery, PollTimeoutWithAModeGoesOnToTheComparison) {
    // The last reply still has the requested size: timeout line, no mismatch.
    Outcome o = runWithSim({"-d", "0", "-m", "720p60", "-Q"}, {"--fault", "status0=100"});
    EXPECT_EQ(o.Run.Out, timeoutLine + report720p60None);
    EXPECT_EQ(o.Run.ExitStatus, 0);
}

struct StatusRow {
    const char *Type;
    const char *Device;
    const char *Camera;
    const char *Cable;
    const char *Status; // the word --query-in-cable prints
};

TEST(ScalerctlQuery, InputStatusFollowsTheCableSet) {
    // clang-format off
    const StatusRow rows[] = {
        {"rowan", "0", "1", "svideo",    "valid"},
        {"rowan", "1", "2", "component", "valid"},
        {"rowan", "0", "1", "dvi-a",     "dvi-a"},
        {"rowan", "2", "3", "composite", "valid"},
        {"rowan", "2", "4", "dvi-a",     "dvi-a"},
        {"rowan", "2", "4", "vga",       "dvi-a"},
        {"rowan", "2", "4", "dvi-d",     "dvi-d"},
        {"elm",   "2", "4", "DVI",       "dvi-d"},
    };
    // clang-format on
    for (const StatusRow &row : rows) {
        std::string shown = std::string(row.Type) + " device " + row.Device + " " + row.Cable;
        // The cable in one run, the status in the next: the chip remembers.
        const std::vector<Outcome> o =
            runSession({{"-x", row.Type, "-d", row.Device, "-i", row.Camera, "-c", row.Cable},
                        {"-x", row.Type, "-d", row.Device, "-C"}});
        EXPECT_EQ(o[0].Run.Out, "") << shown;
        EXPECT_EQ(o[1].Run.Out, std::string(row.Status) + "\n") << shown;
        EXPECT_EQ(o[1].Run.ExitStatus, 0) << shown;
        EXPECT_EQ(o[1].Requests.back(), "op=0x02 words=-") << shown;
    }
}

TEST(ScalerctlQuery, AnOutputThatIgnoresTheModeIsAMismatchReportedOnce) {
    // Under "frozen" the output stays 1280 x 720 at 60 Hz whatever is set.
    for (const Words &args :
         {Words{"-d", "0", "-m", "576p"}, Words{"-d", "0", "-m", "576p", "-Q", "-V"}}) {
        Outcome o = runWithSim(args, {"--fault", "frozen"});
        EXPECT_EQ(o.Run.Out, mismatchLine + report720p60) << args.back();
        EXPECT_EQ(o.Run.ExitStatus, 1) << args.back();
        EXPECT_EQ(o.Requests,
                  (Words{"op=0x05 words=0006", "op=0x25 words=0000", "op=0x03 words=-"}));
    }
    // Only the size is compared: 720p50 on a 720p60 output passes.
    Outcome sameSize = runWithSim({"-d", "0", "-m", "720p50", "-Q"}, {"--fault", "frozen"});
    EXPECT_EQ(sameSize.Run.Out, report720p60);
    EXPECT_EQ(sameSize.Run.ExitStatus, 0);
}

TEST(ScalerctlQuery, PollTimeoutThenMismatchOfTheLastReply) {
    Outcome o =
        runWithSim({"-d", "0", "-m", "576p"}, {"--fault", "frozen", "--fault", "status0=100"});
    EXPECT_EQ(o.Run.Out, timeoutLine + mismatchLine + report720p60None);
    EXPECT_EQ(o.Run.ExitStatus, 1);
    Words expected = {"op=0x05 words=0006", "op=0x25 words=0000"};
    expected.insert(expected.end(), 25, "op=0x03 words=-");
    EXPECT_EQ(o.Requests, expected);
}

// ---- failures of the daemon as the tool sees them --------------------------------------

struct FaultRow {
    Words SimArgs;
    Words ToolArgs;
    std::string Out;
    int Exit;
};

TEST(ScalerctlFaults, EachFaultOfTheSimulator) {
    const Words cable = {"-d", "0", "-i", "1", "-c", "svideo"};
    // clang-format off
    const FaultRow rows[] = {
        {{"--fault", "never"},     cable,             "scalerctl: set cable command returned -35\n",         1},
        {{"--fault", "crc"},       {"-d", "0", "-g"}, "scalerctl: query version command returned -35\n",     1},
        {{"--fault", "garbage"},   {"-d", "0", "-q"}, "scalerctl: query input mode command returned -35\n",  1},
        {{"--fault", "other-if"},  {"-d", "0", "-Q"}, "scalerctl: query output mode command returned -35\n", 1},
        {{"--fault", "late=1500"}, {"-d", "0", "-m", "576p"},
                                                      "scalerctl: set output mode command returned -35\n",   1},
        {{"--fault", "late=100"},  {"-d", "0", "-g"}, "Firmware version 258\n",                              0},
        {{"--fault", "split"},     {"-d", "0", "-C"}, "valid\n",                                             0},
        {{"--fault", "never@1"},   {"-d", "0", "-C"}, "valid\n",                                             0},
        {{"--fault", "never@0"},   {"-d", "1", "-C"}, "valid\n",                                             0},
    };
    // clang-format on
    for (const FaultRow &row : rows) {
        Outcome o = runWithSim(row.ToolArgs, row.SimArgs);
        EXPECT_EQ(o.Run.Out, row.Out) << row.SimArgs.back();
        EXPECT_EQ(o.Run.ExitStatus, row.Exit) << row.SimArgs.back();
        EXPECT_EQ(o.Run.Err, "") << row.SimArgs.back();
        EXPECT_FALSE(o.Requests.empty()) << row.SimArgs.back();
    }
}

TEST(ScalerctlFaults, AFailedRequestEndsTheRun) {
    // Set cable times out: nothing behind it is sent.
    Outcome o = runWithSim({"-d", "0", "-i", "1", "-c", "svideo", "-m", "720p60", "-g", "-Q"},
                           {"--fault", "never"});
    EXPECT_EQ(o.Run.Out, "scalerctl: set cable command returned -35\n");
    EXPECT_EQ(o.Run.ExitStatus, 1);
    EXPECT_EQ(o.Requests, Words{"op=0x04 words=0002"});
}

// ---- a hostile environment ----------------------------------------------------------

// What stands at a pipe's path.
enum class StandIn { pipe, zero, urandom, file };

const std::string fileText = "not for the tool\n";

bool makeStandIn(const std::string &path, StandIn what) {
    switch (what) {
    case StandIn::pipe:
        return mkfifo(path.c_str(), 0600) == 0;
    case StandIn::zero:
        return symlink("/dev/zero", path.c_str()) == 0;
    case StandIn::urandom:
        return symlink("/dev/urandom", path.c_str()) == 0;
    case StandIn::file:
        std::ofstream(path) << fileText;
        return access(path.c_str(), F_OK) == 0;
    }
    return false;
}

std::string contentOf(const std::string &path) {
    std::ifstream in(path);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

struct StandInRow {
    const char *What;
    StandIn Reads;  // at PWRdCmd0
    StandIn Writes; // at PWWtCmd0
};

// Paths that aren't named pipes are refused at open: a device never feeds
// the drain (it would read for ever), and no request lands in a file. A hang
// would show as a run killed by the guard, without exit status 1.
TEST(ScalerctlHostile, WhatIsNoNamedPipeIsRefusedAtOpen) {
    // clang-format off
    const StandInRow rows[] = {
        {"links to /dev/zero",              StandIn::zero,    StandIn::zero},
        {"links to /dev/urandom",           StandIn::urandom, StandIn::urandom},
        {"regular files",                   StandIn::file,    StandIn::file},
        {"a regular file for the requests", StandIn::pipe,    StandIn::file},
    };
    // clang-format on
    for (const StandInRow &row : rows) {
        const std::string dir = SimMakeTempDir();
        ASSERT_FALSE(dir.empty());
        const std::string reads  = SimPipePath(dir, "PWRdCmd", 0);
        const std::string writes = SimPipePath(dir, "PWWtCmd", 0);
        ASSERT_TRUE(makeStandIn(reads, row.Reads) && makeStandIn(writes, row.Writes)) << row.What;
        ProgramRun run = RunScalerctl({"-p", dir, "-d", "0", "-g"});
        EXPECT_EQ(run.Out, openFailed) << row.What;
        EXPECT_EQ(run.ExitStatus, 1) << row.What;
        for (const std::string &path : {reads, writes}) {
            struct stat st {};
            if (lstat(path.c_str(), &st) == 0 && S_ISREG(st.st_mode)) {
                EXPECT_EQ(contentOf(path), fileText) << row.What << ": " << path;
            }
            unlink(path.c_str());
        }
        rmdir(dir.c_str());
    }
}

// Replies carry no request number: a run that took another's reply would
// print a wrong answer. Two runs at once on one chip either get their own
// answers or fail with status 1 at the open, and one of the two always gets
// the chip. The two runs ask different questions, whose answers differ.
TEST(ScalerctlHostile, TwoRunsAtOnceOnOneChipGetTheirOwnAnswersOrFailAtOpen) {
    SimProcess sim;
    ASSERT_TRUE(SimStart(sim, {"--input", "720x480@59.94"}));
    const Words versionAndStatus          = {"-p", sim.Dir, "-d", "0", "-g", "-C"};
    const Words inputAndOutput            = {"-p", sim.Dir, "-d", "0", "-q", "-Q"};
    const std::string versionAndStatusOut = "Firmware version 258\nvalid\n";
    const std::string inputAndOutputOut   = "\nVideo input:\n"
                                            "  Status             = valid\n"
                                            "  Input source       = 0x0\n"
                                            "  Timing params:\n"
                                            "    Mode             = 720 x 480 at 59.94 Hz\n"
                                            "    Total frame size = 858 x 525\n" +
                                          report720p60;
    constexpr int rounds = 20;
    for (int round = 0; round < rounds; ++round) {
        ProgramRun first;
        std::thread other([&] { first = RunScalerctl(versionAndStatus); });
        ProgramRun second = RunScalerctl(inputAndOutput);
        other.join();
        int served = 0;
        for (const auto &[run, own] :
             {std::pair{&first, &versionAndStatusOut}, std::pair{&second, &inputAndOutputOut}}) {
            if (run->ExitStatus == 0 && run->Out == *own) {
                ++served;
                continue;
            }
            EXPECT_EQ(run->Out + " (exit status " + std::to_string(run->ExitStatus) + ")",
                      openFailed + " (exit status 1)")
                << "round " << round;
        }
        EXPECT_GE(served, 1) << "round " << round << ": neither run got the chip";
    }
    EXPECT_TRUE(SimStop(sim));
}

// The daemon dies while the tool waits for its reply: the run ends at its
// deadline, asleep meanwhile. Under load the wall time only grows, so half
// of it bounds the processor time safely; a run spinning on end-of-file uses
// the processor nearly throughout.
TEST(ScalerctlHostile, ADaemonKilledMidRunEndsTheRunAtItsDeadlineWithoutSpinning) {
    SimProcess sim;
    ASSERT_TRUE(SimStart(sim, {"--trace", "--fault", "never"}, "", true));
    ProgramRun run;
    std::thread tool([&] { run = RunScalerctl({"-p", sim.Dir, "-d", "0", "-g"}); });
    std::string request;
    const bool requested = SimReadLine(sim, request); // the tool now waits for the reply
    EXPECT_TRUE(SimKill(sim));
    tool.join();
    ASSERT_TRUE(requested);
    EXPECT_EQ(request, "pwsimd: req chip=0 if=cmd op=0x23 name=query-version len=0 note=- words=-");
    EXPECT_EQ(run.Out, "scalerctl: query version command returned -35\n");
    EXPECT_EQ(run.ExitStatus, 1);
    EXPECT_GE(run.WallSeconds, 0.99) << "ended before its deadline of 1000 ms";
    EXPECT_LT(run.ProcessorSeconds, run.WallSeconds / 2)
        << "processor " << run.ProcessorSeconds << " s in " << run.WallSeconds << " s";
}

} // namespace
