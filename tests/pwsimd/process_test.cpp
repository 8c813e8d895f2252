// pwsimd as a program: its folder, its help, a second daemon on the same
// pipes, stale pipes after a crash and cleanup on each stop signal (SIGTERM
// in every test). Its trace of requests is read by the end-to-end tests.
#include "tests/pwsimd/simProcess.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// What only the program checks: --help, the folder and what stands in it. A
// refusal goes to standard error with status 1 and creates nothing; the
// option refusals are tested in process.
TEST(PwsimdProcess, HelpAndABadFolderEndItAndAFolderOf49CharactersIsTaken) {
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
    ProgramRun help = SimRun({"--help"}); // to standard output, with status 0
    EXPECT_EQ(help.ExitStatus, 0);
    EXPECT_EQ(help.Out.rfind("Usage: pwsimd [OPTION]...\n", 0), 0u) << help.Out;
    EXPECT_EQ(help.Err, "");
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

// SIGINT and SIGHUP end it as SIGTERM does, with its pipes removed.
TEST(PwsimdProcess, RemovesItsPipesOnEachStopSignal) {
    for (int signal : {SIGINT, SIGHUP}) {
        SimProcess sim;
        ASSERT_TRUE(SimStart(sim, {}));
        EXPECT_TRUE(SimStop(sim, signal)) << "signal " << signal;
    }
}

} // namespace
