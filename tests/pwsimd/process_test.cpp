// pwsimd as a program: its folder, its help, a second daemon on the same
// pipes, stale pipes after a crash, cleanup on each stop signal, and the trace
// lines of its replies, which the end-to-end tests don't read.
#include "system/Pixelworks/PWApi.h"
#include "tests/pwsimd/simProcess.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// What only the program checks: the folder, and what stands in it. A refusal
// goes to standard error with status 1 and creates nothing; the option
// refusals are tested in process.
TEST(PwsimdProcess, RefusesABadFolderAndTakesOneOf49Characters) {
    const std::string base = SimMakeTempDir();
    ASSERT_FALSE(base.empty());
    const std::string dir49 = base + "/" + std::string(49 - base.size() - 1, 'd');
    ASSERT_EQ(mkdir(dir49.c_str(), 0700), 0);
    const std::string file = SimPipePath(base, "PWRdDiag", 2);
    ASSERT_EQ(close(open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600)), 0);
    // clang-format off
    // A command line pwsimd refuses, and part of its message
    const std::pair<std::vector<std::string>, std::string> refusals[] = {
        {{"--fault", "slow"},             "unknown fault 'slow'"},
        {{"--dir", "/nonexistent/pws"},   "no folder /nonexistent/pws"},
        {{"--dir", dir49 + "x"},          "is too long: 50 characters, at most 49"},
        {{"--dir", base},                 file + " exists and is not a pipe"},
    };
    // clang-format on
    for (const auto &[args, message] : refusals) {
        ProgramRun run = SimRun(args);
        EXPECT_EQ(run.ExitStatus, 1) << message;
        EXPECT_NE(run.Err.find(message), std::string::npos) << run.Err;
        EXPECT_EQ(run.Out, "") << message;
    }
    {
        SimProcess sim;
        ASSERT_TRUE(SimStart(sim, {}, dir49));
        EXPECT_TRUE(SimStop(sim));
    }
    EXPECT_NE(access(SimPipePath(base, "PWWtCmd", 0).c_str(), F_OK), 0);
    EXPECT_EQ(unlink(file.c_str()), 0);
    EXPECT_EQ(rmdir(dir49.c_str()), 0);
    EXPECT_EQ(rmdir(base.c_str()), 0);
}

TEST(PwsimdProcess, HelpGoesToStandardOutputWithStatusZero) {
    ProgramRun run = SimRun({"--help"});
    EXPECT_EQ(run.ExitStatus, 0);
    EXPECT_EQ(run.Out.rfind("Usage: pwsimd [OPTION]...\n", 0), 0u) << run.Out;
    EXPECT_EQ(run.Err, "");
}

// True if something holds the request pipe open for reading: what a client's
// open for writing needs.
bool hasReader(const std::string &path) {
    int fd = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0)
        return false;
    close(fd);
    return true;
}

// A killed daemon leaves its pipes; the next one takes them over, and a
// daemon started beside a running one is refused and touches nothing.
TEST(PwsimdProcess, ReplacesStalePipesAndRefusesASecondDaemon) {
    SimProcess crashed;
    ASSERT_TRUE(SimStart(crashed, {}));
    ASSERT_TRUE(SimStop(crashed, SIGKILL));
    const std::string request = SimPipePath(crashed.Dir, "PWWtCmd", 0);
    ASSERT_EQ(access(request.c_str(), F_OK), 0) << "a killed daemon leaves its pipes";
    EXPECT_FALSE(hasReader(request));

    SimProcess next;
    ASSERT_TRUE(SimStart(next, {}, crashed.Dir));
    ProgramRun second = SimRun({"--dir", next.Dir});
    EXPECT_EQ(second.ExitStatus, 1);
    EXPECT_NE(second.Err.find("a running daemon holds the pipes in " + next.Dir), std::string::npos)
        << second.Err;
    // The running daemon still holds every request pipe for reading.
    for (const char *name : {"PWWtCmd", "PWWtDiag"})
        for (int chip = 0; chip < 3; ++chip)
            EXPECT_TRUE(hasReader(SimPipePath(next.Dir, name, chip))) << name << chip;
    EXPECT_TRUE(SimStop(next));
}

TEST(PwsimdProcess, RemovesItsPipesOnEachStopSignal) {
    for (int signal : {SIGTERM, SIGINT, SIGHUP}) {
        SimProcess sim;
        ASSERT_TRUE(SimStart(sim, {}));
        // A client that still holds its pipes doesn't keep them alive.
        int reply   = open(SimPipePath(sim.Dir, "PWRdCmd", 1).c_str(), O_RDONLY | O_NONBLOCK);
        int request = open(SimPipePath(sim.Dir, "PWWtCmd", 1).c_str(), O_WRONLY | O_NONBLOCK);
        EXPECT_GE(reply, 0);
        EXPECT_GE(request, 0);
        EXPECT_TRUE(SimStop(sim, signal)) << "signal " << signal;
        close(reply);
        close(request);
    }
}

// One exchange over the link (a PWMsg is Length in bytes, Opcode, Payload):
// the receive's result. The default timeout only guards against a hang.
int exchange(PWHandle *handle, PWMsg msg, uint32_t timeoutMs = 5000) {
    EXPECT_EQ(PWSendMsg(handle, &msg), PW_OK);
    return PWReceiveMsg(handle, timeoutMs, &msg);
}

// The exact lines in order, through the real link: the state of a chip is
// shared by its two interfaces and is its own (set output mode on chip 0
// leaves chip 2 as it was), the fault notes, bad bytes on a request pipe, and
// a refused request.
TEST(PwsimdProcess, TraceLinesTellEachRequestAndReply) {
    SimProcess sim;
    ASSERT_TRUE(
        SimStart(sim, {"--trace", "--fault", "status0=1@0", "--fault", "split@2"}, "", true));
    ASSERT_EQ(PWInit(sim.Dir.c_str()), PW_OK);
    PWHandle *cmd0  = PWOpenCmdHandle(0);
    PWHandle *diag0 = PWOpenDiagHandle(0);
    PWHandle *diag2 = PWOpenDiagHandle(2);
    ASSERT_NE(cmd0, nullptr);
    ASSERT_NE(diag0, nullptr);
    ASSERT_NE(diag2, nullptr);
    EXPECT_EQ(exchange(cmd0, {2, 0x05, {5}}), PW_OK);
    EXPECT_EQ(exchange(diag0, {0, 0x03, {}}), PW_OK);
    EXPECT_EQ(exchange(diag2, {12, 0x2C, {67, 63, 64, 0xFFFF, 0xFFFF, 0xFFFF}}), PW_OK);
    {
        int fd = open(SimPipePath(sim.Dir, "PWWtDiag", 2).c_str(), O_WRONLY | O_NONBLOCK);
        ASSERT_GE(fd, 0);
        const uint8_t junk[] = {'j', 'u', 'n', 'k'};
        EXPECT_EQ(write(fd, junk, sizeof junk), static_cast<ssize_t>(sizeof junk));
        close(fd);
    }
    EXPECT_EQ(exchange(diag2, {0, 0x03, {}}), PW_OK);
    EXPECT_EQ(exchange(cmd0, {0, 0x77, {}}, 300), PW_ERR_TIMEOUT);

    const std::vector<std::string> expected = {
        "pwsimd: req chip=0 if=cmd op=0x05 name=set-mode len=2 note=- words=0005",
        "pwsimd: rep chip=0 if=cmd op=0x05 name=set-mode len=0 note=- words=-",
        "pwsimd: req chip=0 if=diag op=0x03 name=query-output len=0 note=- words=-",
        "pwsimd: rep chip=0 if=diag op=0x03 name=query-output len=18 note=status0 "
        "words=0000,0bb5,035a,020d,02d0,01e0,0000,0000,0000",
        "pwsimd: req chip=2 if=diag op=0x2c name=set-gains len=12 note=- "
        "words=0043,003f,0040,ffff,ffff,ffff",
        "pwsimd: rep chip=2 if=diag op=0x2c name=set-gains len=0 note=split words=-",
        "pwsimd: bad chip=2 if=diag skipped=4",
        "pwsimd: req chip=2 if=diag op=0x03 name=query-output len=0 note=- words=-",
        "pwsimd: rep chip=2 if=diag op=0x03 name=query-output len=18 note=split "
        "words=0001,1770,0672,02ee,0500,02d0,0000,0000,0000",
        "pwsimd: req chip=0 if=cmd op=0x77 name=? len=0 note=- words=-",
        "pwsimd: rep chip=0 if=cmd op=0x77 name=? len=0 note=refused words=-",
    };
    for (PWHandle *h : {cmd0, diag0, diag2})
        EXPECT_EQ(PWReleaseHandle(h), PW_OK);
    EXPECT_TRUE(SimStop(sim));
    std::string all;
    for (const std::string &line : expected)
        all += line + "\n";
    EXPECT_EQ(sim.Err, all);
}

} // namespace
