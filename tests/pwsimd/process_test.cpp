// pwsimd as a program: its refusals, its help, a second daemon on the same
// pipes, stale pipes after a crash, and cleanup on a stop signal.
#include "tests/pwsimd/simProcess.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct Refusal {
    std::vector<std::string> Args;
    const char *Message; // part of the message on standard error
};

// clang-format off
const std::vector<Refusal> refusals = {
    {{"--firmware", "x"},                 "bad --firmware 'x'"},
    {{"--firmware", "65536"},             "bad --firmware '65536'"},
    {{"--firmware", "-1"},                "bad --firmware '-1'"},
    {{"--firmware", "12abc"},             "bad --firmware '12abc'"},
    {{"--output", "1280x720"},            "bad --output '1280x720'"},
    {{"--output", "0x720@60"},            "bad --output '0x720@60'"},
    {{"--output", "1280x720@60.123"},     "bad --output '1280x720@60.123'"},
    {{"--input", "1280x720@0"},           "bad --input '1280x720@0'"},
    {{"--fault", "slow"},                 "unknown fault 'slow'"},
    {{"--fault", "late"},                 "needs late=N"},
    {{"--fault", "late=0"},               "needs late=N"},
    {{"--fault", "status0=x@1"},          "needs status0=N"},
    {{"--fault", "crc=1"},                "crc takes no value"},
    {{"--fault", "never@3"},              "chip must be 0, 1 or 2"},
    {{"--fault", "never@"},               "chip must be 0, 1 or 2"},
    {{"--fault", "never@-1"},             "chip must be 0, 1 or 2"},
    {{"--fault", "late=10@1@2"},          "chip must be 0, 1 or 2"},
    {{"--fault", ""},                     "unknown fault ''"},
    {{"--frobnicate"},                    "unknown option '--frobnicate'"},
    {{"--dir"},                           "option '--dir' needs a value"},
    {{"stray"},                           "unexpected argument 'stray'"},
    {{"--dir", "/nonexistent/pws"},       "no folder /nonexistent/pws"},
    {{"--dir", "/tmp/" + std::string(45, 'x')}, "is too long: 50 characters, at most 49"},
};
// clang-format on

TEST(PwsimdProcess, RefusesBadCommandLinesWithAMessage) {
    for (const Refusal &r : refusals) {
        SimRunResult run = SimRun(r.Args);
        std::string args;
        for (const std::string &a : r.Args)
            args += a + " ";
        EXPECT_EQ(run.ExitStatus, 1) << args;
        EXPECT_NE(run.Err.find(r.Message), std::string::npos) << args << "\n" << run.Err;
        EXPECT_EQ(run.Out, "") << args;
    }
}

TEST(PwsimdProcess, HelpDocumentsReadyLineFaultsAndTrace) {
    SimRunResult run = SimRun({"--help"});
    EXPECT_EQ(run.ExitStatus, 0);
    for (const char *text : {"pwsimd: ready in DIR", "never", "late=MS", "status0=K", "split",
                             "crc", "garbage", "other-if", "frozen", "@CHIP",
                             "pwsimd: req chip=C if=IF op=0xOO name=NAME len=N note=- words=W"})
        EXPECT_NE(run.Out.find(text), std::string::npos) << text;
}

TEST(PwsimdProcess, AcceptsAFolderOfExactly49Characters) {
    std::string base = SimMakeTempDir();
    ASSERT_FALSE(base.empty());
    std::string dir = base + "/" + std::string(49 - base.size() - 1, 'd');
    ASSERT_EQ(dir.size(), 49u);
    ASSERT_EQ(mkdir(dir.c_str(), 0700), 0);
    {
        SimProcess sim;
        ASSERT_TRUE(SimStart(sim, {}, dir));
        EXPECT_TRUE(SimStop(sim));
    }
    EXPECT_EQ(rmdir(dir.c_str()), 0);
    EXPECT_EQ(rmdir(base.c_str()), 0);
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

TEST(PwsimdProcess, HoldsEveryRequestPipeForReading) {
    SimProcess sim;
    ASSERT_TRUE(SimStart(sim, {}));
    for (const char *name : {"PWWtCmd", "PWWtDiag"})
        for (int chip = 0; chip < 3; ++chip)
            EXPECT_TRUE(hasReader(SimPipePath(sim.Dir, name, chip))) << name << chip;
    EXPECT_TRUE(SimStop(sim));
}

TEST(PwsimdProcess, RefusesPipesOfARunningDaemonAndLeavesThem) {
    SimProcess first;
    ASSERT_TRUE(SimStart(first, {}));
    SimRunResult second = SimRun({"--dir", first.Dir});
    EXPECT_EQ(second.ExitStatus, 1);
    EXPECT_NE(second.Err.find("a running daemon holds the pipes in " + first.Dir),
              std::string::npos)
        << second.Err;
    // The refusal touched nothing: the first daemon still serves.
    EXPECT_TRUE(hasReader(SimPipePath(first.Dir, "PWWtCmd", 0)));
    EXPECT_TRUE(hasReader(SimPipePath(first.Dir, "PWWtDiag", 2)));
    EXPECT_TRUE(SimStop(first));
}

TEST(PwsimdProcess, ReplacesStalePipesAfterACrash) {
    SimProcess crashed;
    ASSERT_TRUE(SimStart(crashed, {}));
    ASSERT_TRUE(SimKill(crashed));
    std::string request = SimPipePath(crashed.Dir, "PWWtCmd", 0);
    struct stat st {};
    ASSERT_EQ(stat(request.c_str(), &st), 0) << "a killed daemon leaves its pipes";
    EXPECT_FALSE(hasReader(request));

    SimProcess next;
    ASSERT_TRUE(SimStart(next, {}, crashed.Dir));
    EXPECT_TRUE(hasReader(request));
    EXPECT_TRUE(SimStop(next));
}

TEST(PwsimdProcess, RefusesAFileInThePlaceOfAPipe) {
    std::string dir = SimMakeTempDir();
    ASSERT_FALSE(dir.empty());
    std::string file = SimPipePath(dir, "PWRdDiag", 2);
    int fd           = open(file.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_GE(fd, 0);
    close(fd);

    SimRunResult run = SimRun({"--dir", dir});
    EXPECT_EQ(run.ExitStatus, 1);
    EXPECT_NE(run.Err.find(file + " exists and is not a pipe"), std::string::npos) << run.Err;
    // Nothing was created, and the file is still there.
    EXPECT_NE(access(SimPipePath(dir, "PWWtCmd", 0).c_str(), F_OK), 0);
    EXPECT_EQ(unlink(file.c_str()), 0);
    EXPECT_EQ(rmdir(dir.c_str()), 0);
}

TEST(PwsimdProcess, RemovesItsPipesOnSigtermAndSigint) {
    for (int signal : {SIGTERM, SIGINT}) {
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

} // namespace
