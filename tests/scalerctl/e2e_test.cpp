// scalerctl end to end: the real program against the real simulator over
// real pipes, one run per scenario. Each case checks standard output
// exactly, the exit status, and the requests the simulator received, in
// order, from its trace. The parser and the word tables are swept in process
// (front_test.cpp).
#include "tests/pwsimd/simProcess.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

using Words = std::vector<std::string>;

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

// One run of scalerctl with `toolArgs` against a simulator of its own,
// started with `simArgs`.
Outcome runWithSim(const Words &toolArgs, const Words &simArgs = {}) {
    Outcome o;
    SimProcess sim;
    Words args = simArgs;
    args.push_back("--trace");
    EXPECT_TRUE(SimStart(sim, args, "", true));
    Words withPath = {"--pipepath", sim.Dir};
    withPath.insert(withPath.end(), toolArgs.begin(), toolArgs.end());
    o.Run = RunProgram(SCALERCTL_EMULATOR, SCALERCTL_PATH, withPath);
    EXPECT_TRUE(SimStop(sim));
    o.Requests = requestsOf(sim.Err);
    return o;
}

const std::string sixNone = "ffff,ffff,ffff,ffff,ffff,ffff";

// A report of the simulator's, for the input or the output.
std::string report(const char *port, const char *status, const char *mode, const char *totals) {
    return std::string("\nVideo ") + port + ":\n  Status             = " + status +
           "\n  Input source       = 0x0\n  Timing params:\n    Mode             = " + mode +
           "\n    Total frame size = " + totals + "\n";
}

// The simulator's default output, 1280 x 720 at 60 Hz, and the same while
// status0 holds its status at 0.
const std::string report720p60 = report("output", "valid", "1280 x 720 at 60.0 Hz", "1650 x 750");
const std::string report720p60None =
    report("output", "none", "1280 x 720 at 60.0 Hz", "1650 x 750");

const std::string timeoutLine  = "scalerctl: timeout (check camera source)\n";
const std::string mismatchLine = "scalerctl: output mode doesn't match request\n";

// Each run against a simulator of its own: what it prints, its exit status
// and the requests it sends, in the fixed order of the actions. Reset ends
// the run, whatever else the command line asks (the parser checked it); the
// output report follows --query-out or --verbose, and the output is polled
// until its status is not 0; an interlaced mode expects the lines of both
// fields; the first failed request ends the run.
TEST(ScalerctlRun, EachRunPrintsAndSendsItsRequestsInOrder) {
    const std::string reset0 = "scalerctl: reset command returned 0\n";
    const Words setMode0     = {"op=0x05 words=0000", "op=0x25 words=0000", "op=0x03 words=-"};
    const Words poll         = {"op=0x03 words=-"};
    // A cable change: set cable, the gains of the cable's key for the device
    // with the opcode of the system cable (none where the device has no row),
    // then the aspect ratio and the poll of the output.
    const auto cable = [](const std::string &payload, const std::string &gains) {
        Words requests = {"op=0x04 words=" + payload};
        if (!gains.empty())
            requests.push_back(gains);
        requests.insert(requests.end(), {"op=0x25 words=0000", "op=0x03 words=-"});
        return requests;
    };
    const std::string vga   = "op=0x2d words=0052,0054,0052,007f,007b,007a";
    const std::string comp1 = "op=0x2c words=0043,0040,0042,ffff,ffff,ffff";
    // clang-format off
    // Simulator arguments, tool arguments; what the run prints, its exit status, its requests
    const std::tuple<Words, Words, std::string, int, Words> rows[] = {
        {{}, {"-d", "0", "-i", "1", "-c", "svideo", "-m", "720p60", "-Q"}, report720p60, 0,
         {"op=0x04 words=0002", "op=0x2c words=" + sixNone, setMode0[0], setMode0[1], setMode0[2]}},
        {{}, {"-d", "1", "--reset"}, reset0, 0, {"op=0x01 words=-"}},
        {{}, {"-d", "0", "-i", "1", "-c", "svideo", "-m", "720p60", "-g", "-q", "-Q", "-r"}, reset0, 0,
         {"op=0x01 words=-"}},
        {{"--fault", "never"}, {"-d", "0", "-r"}, "scalerctl: reset command returned -35\n", 0,
         {"op=0x01 words=-"}},
        {{}, {"-d", "0", "-m", "ntsc", "-Q"},
         report("output", "valid", "720 x 480 at 29.97 Hz", "858 x 525"), 0,
         {"op=0x05 words=0005", "op=0x25 words=0000", "op=0x03 words=-"}},
        {{"--firmware", "513", "--input", "720x480@59.94"}, {"-d", "2", "-q", "-g"},
         "Firmware version 513\n" + report("input", "valid", "720 x 480 at 59.94 Hz", "858 x 525"), 0,
         {"op=0x23 words=-", "op=0x02 words=-"}},
        {{}, {"-d", "0", "-Q"}, report720p60, 0, poll},
        {{}, {"-d", "0", "-V", "-m", "720p60"}, report720p60, 0, setMode0},
        {{}, {"-d", "0", "-m", "720p60"}, "", 0, setMode0},
        {{"--fault", "status0=3"}, {"-d", "0", "-m", "720p60", "-Q"}, report720p60, 0,
         {setMode0[0], setMode0[1], poll[0], poll[0], poll[0], poll[0]}},
        {{"--fault", "never"}, {"-d", "0", "-i", "1", "-c", "svideo", "-m", "720p60", "-g", "-Q"},
         "scalerctl: set cable command returned -35\n", 1, {"op=0x04 words=0002"}},
        {{}, {"-d", "0", "-i", "2", "-c", "S_VIDEO"}, "", 0, cable("0002", "op=0x2c words=" + sixNone)},
        {{}, {"-d", "0", "-i", "2", "-c", "component"}, "", 0,
         cable("0006", "op=0x2c words=0043,003f,0040,ffff,ffff,ffff")},
        {{}, {"-d", "1", "-i", "2", "-c", "Component_YPbPr"}, "", 0, cable("0006", comp1)},
        {{}, {"-d", "1", "-i", "2", "-c", "vga"}, "", 0, cable("0000", "")},
        {{}, {"-d", "2", "-i", "3", "-c", "svideo"}, "", 0, cable("0004", "")},
        {{}, {"-d", "2", "-i", "4", "-c", "dvi-a"}, "", 0, cable("0005", vga)},
        {{}, {"-d", "2", "-i", "4", "-c", "DVI"}, "", 0, cable("0005", "op=0x2c" + vga.substr(7))},
        {{}, {"-x", "elm", "-d", "2", "-i", "4", "-c", "vga"}, "", 0, cable("0005", vga)},
        {{}, {"-x", "rowan_int", "-d", "1", "-i", "3", "-c", "component"}, "", 0, cable("0006", comp1)},
        // A later --pipepath wins: a refused command line ends before the link, whose causes go to
        // the system log, never to the terminal.
        {{}, {"-p", "/nonexistent", "-d", "3", "-i", "4", "-c", "dvi-d"},
         "scalerctl: --device must be in the range 0 - 2\n", 1, {}},
        {{}, {"-p", "/" + std::string(49, 'p'), "-d", "0", "-r"},
         "scalerctl: init command returned -3\n", 1, {}},
        {{}, {"-p", "/nonexistent", "-d", "0", "-r"}, "scalerctl: open command failed\n", 1, {}},
    };
    // clang-format on
    for (const auto &[simArgs, toolArgs, out, status, requests] : rows) {
        const Outcome o        = runWithSim(toolArgs, simArgs);
        const std::string what = testing::PrintToString(toolArgs);
        EXPECT_EQ(o.Run.Out, out) << what;
        EXPECT_EQ(o.Run.ExitStatus, status) << what;
        EXPECT_EQ(o.Run.Err, "") << what;
        EXPECT_EQ(o.Requests, requests) << what;
    }
}

// A request without a reply in time ends the run with its message; a late or
// split reply within the second does not. After 25 polls without a status
// the comparison goes on with the last reply: a cable change alone succeeds,
// a mode of the same size too (only the size is compared, and under "frozen"
// the output stays 1280 x 720 at 60 Hz), another size is a mismatch.
TEST(ScalerctlFaults, EachFaultOfTheSimulator) {
    const Words cable  = {"-d", "0", "-i", "1", "-c", "svideo"};
    const Words never  = {"--fault", "status0=100"};
    const Words frozen = {"--fault", "status0=100", "--fault", "frozen"};
    // clang-format off
    // Simulator arguments, tool arguments; what the run prints, its exit status, and its query
    // output requests (-1: not counted)
    const std::tuple<Words, Words, std::string, int, long> rows[] = {
        {{"--fault", "never"},     cable,             "scalerctl: set cable command returned -35\n",        1, -1},
        {{"--fault", "garbage"},   {"-d", "0", "-q"}, "scalerctl: query input mode command returned -35\n", 1, -1},
        {{"--fault", "late=1500"}, {"-d", "0", "-m", "576p"},
                                                      "scalerctl: set output mode command returned -35\n",  1, -1},
        {{"--fault", "late=100"},  {"-d", "0", "-g"}, "Firmware version 258\n",                             0, -1},
        {{"--fault", "split"},     {"-d", "0", "-C"}, "valid\n",                                            0, -1},
        {{"--fault", "never@1"},   {"-d", "0", "-C"}, "valid\n",                                            0, -1},
        {never,                    cable,             timeoutLine,                                          0, 25},
        {never,                    {"-d", "0", "-m", "720p60", "-Q"},
                                                      timeoutLine + report720p60None,                       0, 25},
        {frozen,                   {"-d", "0", "-m", "576p"},
                                                      timeoutLine + mismatchLine + report720p60None,        1, 25},
        {frozen,                   {"-d", "0", "-m", "720p50"},
                                                      timeoutLine,                                          0, 25},
    };
    // clang-format on
    for (const auto &[simArgs, toolArgs, out, status, polls] : rows) {
        Outcome o              = runWithSim(toolArgs, simArgs);
        const std::string what = simArgs.back() + " " + toolArgs.back();
        EXPECT_EQ(o.Run.Out, out) << what;
        EXPECT_EQ(o.Run.ExitStatus, status) << what;
        EXPECT_EQ(o.Run.Err, "") << what;
        EXPECT_FALSE(o.Requests.empty()) << what;
        const long sent = std::count(o.Requests.begin(), o.Requests.end(), "op=0x03 words=-");
        EXPECT_TRUE(polls < 0 || sent == polls) << what << ": " << sent << " polls";
    }
}

} // namespace
