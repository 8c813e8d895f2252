// The link's folder and its one-time initialisation. Each case runs in a
// fresh process, since the link takes its folder once per process.
#include "pipeFixture.h"

#include "system/Pixelworks/PWApi.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <syslog.h>
#include <unistd.h>

namespace {

// Runs `body` in a forked child and expects it to exit with 0; failures
// inside show up as its exit status. The parent never initialises the link,
// so every child starts with it uninitialised.
void inFreshProcess(const std::function<void()> &body) {
    EXPECT_EXIT(
        {
            body();
            std::exit(testing::Test::HasFailure() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}

TEST(PWInitOnce, FolderOf49IsTakenAnd50IsRefusedUntilAShorterOne) {
    inFreshProcess([] {
        ReportCatcher reports;
        PipeFolder fifty(50);
        PipeFolder fortyNine(49);
        EXPECT_EQ(PWInit(fifty.path.c_str()), PW_ERR_INVALID);
        EXPECT_EQ(reports.take(),
                  (std::vector<Report>{{LOG_ERR, "PWApi: path of 50 is too long; max = 49\n"}}));
        // The refusal left the link uninitialised, and an open says so.
        EXPECT_EQ(PWOpenCmdHandle(0), nullptr);
        EXPECT_EQ(reports.take(), (std::vector<Report>{{LOG_ERR, "PWApi: not initialized.\n"}}));
        EXPECT_EQ(PWInit(fortyNine.path.c_str()), PW_OK);
        DaemonEnds daemon(fortyNine, 0, PW_INTERFACE_CMD);
        PWHandle *handle = PWOpenCmdHandle(0);
        ASSERT_NE(handle, nullptr);
        PWMsg msg{};
        EXPECT_EQ(PWSendMsg(handle, &msg), PW_OK);
        EXPECT_EQ(daemon.received().size(), 8u);
    });
}

// A null path means the working folder; a second init keeps the first folder
// and the handles open in it.
TEST(PWInitOnce, NullPathMeansTheWorkingFolderAndASecondInitKeepsIt) {
    inFreshProcess([] {
        ReportCatcher reports;
        PipeFolder first;
        PipeFolder second;
        ASSERT_EQ(chdir(first.path.c_str()), 0);
        EXPECT_EQ(PWInit(nullptr), PW_OK);
        DaemonEnds firstDaemon(first, 0, PW_INTERFACE_CMD);
        PWHandle *handle = PWOpenCmdHandle(0);
        ASSERT_NE(handle, nullptr);
        EXPECT_EQ(PWInit(second.path.c_str()), PW_OK);
        EXPECT_EQ(handle->Magic, PW_HANDLE_MAGIC);
        // Only the second folder has a daemon for chip 1: the link still
        // looks in the first and fails on its write pipe.
        DaemonEnds secondDaemon(second, 1, PW_INTERFACE_CMD);
        EXPECT_EQ(PWOpenCmdHandle(1), nullptr);
        EXPECT_EQ(reports.take(),
                  (std::vector<Report>{
                      {LOG_CRIT, "PWApi: pipe .//PWWtCmd1 open err: No such device or address"}}));
    });
}

} // namespace
