// The link over real named pipes, against daemon ends held by the test.
#include "pipeFixture.h"

#include "Common/OS/clockSource.h"
#include "Common/OS/os.h"
#include "system/Pixelworks/PWApi.h"
#include "system/Pixelworks/PWReport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <dirent.h>
#include <syslog.h>
#include <thread>

namespace {

// The folder of this process: the link takes its folder once per process.
const PipeFolder &linkFolder() {
    static PipeFolder folder;
    static int initialised = PWInit(folder.path.c_str());
    EXPECT_EQ(initialised, PW_OK);
    return folder;
}

std::string handleText(const PWHandle *handle) {
    char text[64];
    std::snprintf(text, sizeof text, "PWApi: invalid PW handle %p\n",
                  static_cast<const void *>(handle));
    return text;
}

bool isTimeoutReport(const Report &r, int chip) {
    std::string head = "PWApi: TIMEOUT chip " + std::to_string(chip) + ", ms=";
    return r.priority == LOG_WARNING && r.text.rfind(head, 0) == 0 && r.text.back() == '\n';
}

int openDescriptors() {
    int count = 0;
    DIR *dir  = opendir("/proc/self/fd");
    while (dir != nullptr && readdir(dir) != nullptr)
        ++count;
    if (dir != nullptr)
        closedir(dir);
    return count;
}

class Link : public testing::Test {
  protected:
    void SetUp() override { linkFolder(); }
    void TearDown() override {
        if (handle != nullptr && handle->Magic == PW_HANDLE_MAGIC)
            PWReleaseHandle(handle);
    }
    PWHandle *openCmd(int chip) {
        handle = PWOpenCmdHandle(chip);
        EXPECT_NE(handle, nullptr);
        return handle;
    }

    ReportCatcher reports;
    PWHandle *handle = nullptr;
};

// ---- sending ------------------------------------------------------------

TEST_F(Link, SendsTheExamplePacketsByteForByte) {
    DaemonEnds daemon(linkFolder(), 0, PW_INTERFACE_CMD);
    ASSERT_NE(openCmd(0), nullptr);
    PWMsg msg{};
    msg.Opcode = 1;
    EXPECT_EQ(PWSendMsg(handle, &msg), PW_OK);
    msg.Opcode = 0x23;
    EXPECT_EQ(PWSendMsg(handle, &msg), PW_OK);
    msg.Opcode     = 4;
    msg.Length     = 2;
    msg.Payload[0] = 2;
    EXPECT_EQ(PWSendMsg(handle, &msg), PW_OK);
    const std::vector<uint8_t> expected = {
        0xBE, 0xEF, 0x49, 0xB3, 0x1B, 0x02, 0x01, 0x01, 0xBE, 0xEF, 0xE9, 0xAB, 0x1B,
        0x02, 0x23, 0x01, 0xBE, 0xEF, 0x6A, 0x3D, 0x1B, 0x04, 0x04, 0x01, 0x02, 0x00,
    };
    EXPECT_EQ(daemon.received(), expected);
    EXPECT_TRUE(reports.take().empty());
}

TEST_F(Link, DiagHandleSendsItsInterfaceByte) {
    DaemonEnds daemon(linkFolder(), 1, PW_INTERFACE_DIAG);
    handle = PWOpenDiagHandle(1);
    ASSERT_NE(handle, nullptr);
    PWMsg msg{};
    msg.Opcode = 0x23;
    EXPECT_EQ(PWSendMsg(handle, &msg), PW_OK);
    EXPECT_EQ(daemon.received(), packetOf(0x23, {}, PW_INTERFACE_DIAG));
}

TEST_F(Link, WriteWithNoReaderIsMinus17AndNoSignal) {
    DaemonEnds daemon(linkFolder(), 0, PW_INTERFACE_CMD);
    ASSERT_NE(openCmd(0), nullptr);
    daemon.closeFromClient(); // the daemon's reading end goes away
    PWMsg msg{};
    msg.Opcode = 1;
    // With SIGPIPE at its default the process would end here.
    ASSERT_EQ(signal(SIGPIPE, SIG_DFL), SIG_DFL);
    EXPECT_EQ(PWSendMsg(handle, &msg), PW_ERR_WRITE);
    sigset_t pending;
    sigpending(&pending);
    EXPECT_FALSE(sigismember(&pending, SIGPIPE));
    EXPECT_EQ(reports.take(),
              (std::vector<Report>{{LOG_WARNING, "PWApi: PW chip 0 write failure.\n"}}));
}

TEST_F(Link, FullPipeIsMinus17ThenRecovers) {
    DaemonEnds daemon(linkFolder(), 2, PW_INTERFACE_CMD);
    ASSERT_NE(openCmd(2), nullptr);
    PWMsg msg{};
    msg.Opcode = 5;
    msg.Length = 252;
    int sent   = 0;
    while (sent < 100000 && PWSendMsg(handle, &msg) == PW_OK)
        ++sent;
    ASSERT_LT(sent, 100000);
    EXPECT_GT(sent, 0);
    EXPECT_EQ(reports.take().back().text, "PWApi: PW chip 2 write failure.\n");
    // Every packet that went out went out whole.
    EXPECT_EQ(daemon.received().size(), static_cast<std::size_t>(sent) * 260);
    EXPECT_EQ(PWSendMsg(handle, &msg), PW_OK);
}

// ---- receiving ------------------------------------------------------------

TEST_F(Link, ReceivesATimingReplyInHostOrder) {
    DaemonEnds daemon(linkFolder(), 0, PW_INTERFACE_CMD);
    ASSERT_NE(openCmd(0), nullptr);
    const std::vector<uint16_t> timing = {1, 5994, 1650, 750, 1280, 720, 0, 0, 0x8003};
    daemon.send(packetOf(3, timing, PW_INTERFACE_CMD));
    PWMsg msg{};
    ASSERT_EQ(PWReceiveMsg(handle, 1000, &msg), PW_OK);
    EXPECT_EQ(msg.Opcode, 3);
    EXPECT_EQ(msg.Length, 18);
    for (std::size_t i = 0; i < timing.size(); ++i)
        EXPECT_EQ(msg.Payload[i], timing[i]) << "word " << i;
    EXPECT_TRUE(reports.take().empty());
}

TEST_F(Link, SizeTwoReplyLeavesPayloadAsItWas) {
    DaemonEnds daemon(linkFolder(), 0, PW_INTERFACE_CMD);
    ASSERT_NE(openCmd(0), nullptr);
    daemon.send(packetOf(4, {}, PW_INTERFACE_CMD));
    PWMsg msg{};
    msg.Length     = 2;
    msg.Payload[0] = 0x5555;
    ASSERT_EQ(PWReceiveMsg(handle, 1000, &msg), PW_OK);
    EXPECT_EQ(msg.Length, 0);
    EXPECT_EQ(msg.Payload[0], 0x5555);
}

TEST_F(Link, TimeoutZeroEndsAtOnceWithAPacketWaiting) {
    DaemonEnds daemon(linkFolder(), 0, PW_INTERFACE_CMD);
    ASSERT_NE(openCmd(0), nullptr);
    std::vector<uint8_t> reply = packetOf(1, {}, PW_INTERFACE_CMD);
    daemon.send(reply);
    PWMsg msg{};
    msg.Length = 8;
    EXPECT_EQ(PWReceiveMsg(handle, 0, &msg), PW_ERR_TIMEOUT);
    EXPECT_EQ(msg.Length, 0);
    EXPECT_EQ(daemon.pending(), static_cast<int>(reply.size()));
    std::vector<Report> seen = reports.take();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_TRUE(isTimeoutReport(seen[0], 0)) << seen[0].text;
}

TEST_F(Link, PacketInTwoPiecesIsPutTogether) {
    DaemonEnds daemon(linkFolder(), 1, PW_INTERFACE_CMD);
    ASSERT_NE(openCmd(1), nullptr);
    std::vector<uint8_t> reply = packetOf(0x23, {0x0107}, PW_INTERFACE_CMD);
    for (std::size_t cut : {1u, 2u, 7u, 8u, 9u}) {
        std::thread peer([&] {
            daemon.send({reply.begin(), reply.begin() + static_cast<long>(cut)});
            daemon.awaitDrained();
            daemon.send({reply.begin() + static_cast<long>(cut), reply.end()});
        });
        PWMsg msg{};
        EXPECT_EQ(PWReceiveMsg(handle, 5000, &msg), PW_OK) << "cut at " << cut;
        EXPECT_EQ(msg.Payload[0], 0x0107) << "cut at " << cut;
        peer.join();
    }
    EXPECT_TRUE(reports.take().empty());
}

TEST_F(Link, TwoPacketsInOneReadGiveTheFirstAndDropTheSecond) {
    DaemonEnds daemon(linkFolder(), 0, PW_INTERFACE_CMD);
    ASSERT_NE(openCmd(0), nullptr);
    std::vector<uint8_t> both   = packetOf(0x23, {7}, PW_INTERFACE_CMD);
    std::vector<uint8_t> second = packetOf(0x23, {8}, PW_INTERFACE_CMD);
    both.insert(both.end(), second.begin(), second.end());
    daemon.send(both);
    PWMsg msg{};
    ASSERT_EQ(PWReceiveMsg(handle, 1000, &msg), PW_OK);
    EXPECT_EQ(msg.Payload[0], 7);
    EXPECT_EQ(PWReceiveMsg(handle, 20, &msg), PW_ERR_TIMEOUT);
}

// A bad packet with nothing behind it: one report, the pipe emptied, and the
// call runs to its deadline.
struct BadPacketCase {
    const char *what;
    std::vector<uint8_t> bytes;
    std::vector<Report> reports; // before the timeout report
};

TEST_F(Link, BadPacketsAreReportedOnceAndEndInTimeout) {
    std::vector<uint8_t> badCrc = packetOf(4, {2}, PW_INTERFACE_CMD);
    badCrc[9] ^= 0x80;
    std::vector<uint8_t> bigGarbage(1000, 0x55);
    const BadPacketCase cases[] = {
        {"wrong first bytes",
         {0x12, 0x34, 0, 0, 0, 0, 0, 0},
         {{LOG_WARNING, "PWApi: chip = 0, invalid packet header = 0x1234\n"}}},
        {"one wrong byte",
         {0xBE, 0x00},
         {{LOG_WARNING, "PWApi: chip = 0, invalid packet header = 0xbe00\n"}}},
        {"zero header",
         {0x00, 0x00, 0x00},
         {{LOG_WARNING, "PWApi: chip = 0, invalid packet header = (nil)\n"}}},
        {"more garbage than the buffer",
         bigGarbage,
         {{LOG_WARNING, "PWApi: chip = 0, invalid packet header = 0x5555\n"}}},
        {"CRC error", badCrc, {{LOG_WARNING, "PWApi: CRC error; chip = 0, opcode = 0x4\n"}}},
        {"other interface", packetOf(4, {2}, PW_INTERFACE_DIAG), {}},
    };
    DaemonEnds daemon(linkFolder(), 0, PW_INTERFACE_CMD);
    ASSERT_NE(openCmd(0), nullptr);
    for (const BadPacketCase &c : cases) {
        daemon.send(c.bytes);
        PWMsg msg{};
        EXPECT_EQ(PWReceiveMsg(handle, 30, &msg), PW_ERR_TIMEOUT) << c.what;
        std::vector<Report> seen = reports.take();
        ASSERT_EQ(seen.size(), c.reports.size() + 1) << c.what;
        for (std::size_t i = 0; i < c.reports.size(); ++i)
            EXPECT_EQ(seen[i], c.reports[i]) << c.what;
        EXPECT_TRUE(isTimeoutReport(seen.back(), 0)) << c.what;
        if (!c.reports.empty()) {
            EXPECT_EQ(daemon.pending(), 0) << c.what << ": pipe not emptied";
        }
        daemon.received();
        // Whatever stayed behind, the handle still serves the next reply.
        char drain[512];
        while (read(daemon.toClient, drain, sizeof drain) > 0) {
        }
        daemon.send(packetOf(1, {}, PW_INTERFACE_CMD));
        EXPECT_EQ(PWReceiveMsg(handle, 1000, &msg), PW_OK) << c.what;
        EXPECT_TRUE(reports.take().empty());
    }
}

TEST_F(Link, OtherInterfaceFloodStaysInsideTheBuffer) {
    DaemonEnds daemon(linkFolder(), 0, PW_INTERFACE_CMD);
    ASSERT_NE(openCmd(0), nullptr);
    std::vector<uint8_t> flood;
    for (int i = 0; i < 40; ++i) {
        std::vector<uint8_t> p = packetOf(2, {static_cast<uint16_t>(i)}, PW_INTERFACE_DIAG);
        flood.insert(flood.end(), p.begin(), p.end());
    }
    daemon.send(flood);
    PWMsg msg{};
    EXPECT_EQ(PWReceiveMsg(handle, 30, &msg), PW_ERR_TIMEOUT);
    EXPECT_EQ(daemon.pending(), 0);
}

// The resynchronisation empties the pipe; a good packet that comes after it
// and before the deadline still ends the call with 0. The peer sends the good
// packet once the receiver is back at its deadline test, which it sees as the
// next reading of the clock after the report.
std::atomic<bool> badHeaderReported{false};
std::atomic<bool> backAtDeadlineTest{false};

uint32_t watchedCounter() {
    if (badHeaderReported.load())
        backAtDeadlineTest.store(true);
    return ClockPlatformSource().readCounter();
}

TEST_F(Link, GoodPacketAfterAResynchronisationEndsTheCallWithZero) {
    DaemonEnds daemon(linkFolder(), 0, PW_INTERFACE_CMD);
    ASSERT_NE(openCmd(0), nullptr);
    const ClockSource &host = ClockPlatformSource();
    const ClockSource watched{host.startCounter, watchedCounter, host.timeBaseUpper,
                              host.timeBaseLower};
    ClockSourceSet(&watched);
    PWReportSetHook([](int, const char *) { badHeaderReported.store(true); });
    std::thread peer([&] {
        daemon.send({0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A});
        while (!backAtDeadlineTest.load())
            std::this_thread::yield();
        daemon.send(packetOf(0x23, {0x0042}, PW_INTERFACE_CMD));
    });
    PWMsg msg{};
    EXPECT_EQ(PWReceiveMsg(handle, 10000, &msg), PW_OK);
    EXPECT_EQ(msg.Payload[0], 0x0042);
    peer.join();
    ClockSourceSet(nullptr);
}

TEST_F(Link, AllWritersGoneRunsToTheDeadline) {
    DaemonEnds daemon(linkFolder(), 2, PW_INTERFACE_CMD);
    ASSERT_NE(openCmd(2), nullptr);
    daemon.closeToClient(); // end-of-file on the client's read pipe from now on
    PWMsg msg{};
    EXPECT_EQ(PWReceiveMsg(handle, 30, &msg), PW_ERR_TIMEOUT);
    std::vector<Report> seen = reports.take();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_TRUE(isTimeoutReport(seen[0], 2));
}

// ---- the clock under the deadline ------------------------------------------

ClockStart failingStart() {
    return ClockStart::openFailed;
}
uint32_t unusedCounter() {
    return 0;
}
uint32_t nearWrapCounter() {
    return 0xFFFFFFF0u;
}
ClockStart goodStart() {
    return ClockStart::ok;
}

TEST_F(Link, ClockThatCannotBeReadLeavesTheWaitToSelect) {
    DaemonEnds daemon(linkFolder(), 0, PW_INTERFACE_CMD);
    ASSERT_NE(openCmd(0), nullptr);
    const ClockSource &host = ClockPlatformSource();
    const ClockSource dead{failingStart, unusedCounter, host.timeBaseUpper, host.timeBaseLower};
    ClockSourceSet(&dead);
    ASSERT_EQ(ClockMillis(), 0u);
    PWMsg msg{};
    // The deadline never passes by the clock: a packet is still taken ...
    daemon.send(packetOf(1, {}, PW_INTERFACE_CMD));
    EXPECT_EQ(PWReceiveMsg(handle, 30, &msg), PW_OK);
    // ... and with nothing coming the first select that runs out ends it.
    EXPECT_EQ(PWReceiveMsg(handle, 30, &msg), PW_ERR_TIMEOUT);
    ClockSourceSet(nullptr);
}

TEST_F(Link, DeadlinePastTheWrapEndsTheCallEarly) {
    DaemonEnds daemon(linkFolder(), 0, PW_INTERFACE_CMD);
    ASSERT_NE(openCmd(0), nullptr);
    const ClockSource &host = ClockPlatformSource();
    const ClockSource nearWrap{goodStart, nearWrapCounter, host.timeBaseUpper, host.timeBaseLower};
    ClockSourceSet(&nearWrap);
    daemon.send(packetOf(1, {}, PW_INTERFACE_CMD));
    PWMsg msg{};
    // 0xFFFFFFF0 + 100 wraps below the clock: the plain comparison sees
    // the deadline as passed.
    EXPECT_EQ(PWReceiveMsg(handle, 100, &msg), PW_ERR_TIMEOUT);
    ClockSourceSet(nullptr);
}

// ---- handles ---------------------------------------------------------------

TEST_F(Link, StaleBytesAreDrainedAtOpen) {
    DaemonEnds daemon(linkFolder(), 1, PW_INTERFACE_CMD);
    for (std::size_t stale : {1u, 99u, 100u, 101u, 200u, 4000u}) {
        daemon.send(std::vector<uint8_t>(stale, 0xBE));
        ASSERT_NE(openCmd(1), nullptr) << stale;
        EXPECT_EQ(daemon.pending(), 0) << stale << " stale bytes left";
        daemon.send(packetOf(0x23, {9}, PW_INTERFACE_CMD));
        PWMsg msg{};
        EXPECT_EQ(PWReceiveMsg(handle, 1000, &msg), PW_OK) << stale;
        EXPECT_EQ(PWReleaseHandle(handle), PW_OK);
    }
    EXPECT_TRUE(reports.take().empty());
}

TEST_F(Link, SecondOpenOfAnInterfaceIsRefusedAndTheFirstStaysGood) {
    DaemonEnds cmd(linkFolder(), 1, PW_INTERFACE_CMD);
    DaemonEnds diag(linkFolder(), 1, PW_INTERFACE_DIAG);
    ASSERT_NE(openCmd(1), nullptr);
    EXPECT_EQ(PWOpenCmdHandle(1), nullptr);
    EXPECT_EQ(
        reports.take(),
        (std::vector<Report>{{LOG_ERR, "PWApi: Cmd interface for PW chip 1 already in use\n"}}));
    PWHandle *diagHandle = PWOpenDiagHandle(1);
    ASSERT_NE(diagHandle, nullptr);
    EXPECT_NE(diagHandle, handle);
    EXPECT_EQ(PWOpenDiagHandle(1), nullptr);
    EXPECT_EQ(
        reports.take(),
        (std::vector<Report>{{LOG_ERR, "PWApi: Diag interface for PW chip 1 already in use\n"}}));
    PWMsg msg{};
    msg.Opcode = 1;
    EXPECT_EQ(PWSendMsg(handle, &msg), PW_OK);
    EXPECT_EQ(cmd.received(), packetOf(1, {}, PW_INTERFACE_CMD));
    EXPECT_EQ(PWReleaseHandle(diagHandle), PW_OK);
}

TEST_F(Link, ChipOutOfRangeIsRefused) {
    for (int chip : {3, -1, 100}) {
        EXPECT_EQ(PWOpenCmdHandle(chip), nullptr);
        EXPECT_EQ(PWOpenDiagHandle(chip), nullptr);
        std::string text = "PWApi: invalid PW chip " + std::to_string(chip) + ".\n";
        EXPECT_EQ(reports.take(), (std::vector<Report>{{LOG_ERR, text}, {LOG_ERR, text}}));
    }
}

TEST_F(Link, OpenWithoutADaemonNamesTheWritePipeAndLeavesNothingOpen) {
    int before = openDescriptors();
    EXPECT_EQ(PWOpenCmdHandle(2), nullptr);
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(reports.take(),
              (std::vector<Report>{{LOG_CRIT, "PWApi: pipe " + linkFolder().pipe("PWWtCmd", 2) +
                                                  " open err: No such device or address"}}));
    // The record stayed free: with the daemon there the open succeeds.
    DaemonEnds daemon(linkFolder(), 2, PW_INTERFACE_CMD);
    EXPECT_NE(openCmd(2), nullptr);
}

TEST_F(Link, MissingReadPipeIsNamed) {
    std::string pipe = linkFolder().pipe("PWRdDiag", 2);
    ASSERT_EQ(unlink(pipe.c_str()), 0);
    EXPECT_EQ(PWOpenDiagHandle(2), nullptr);
    EXPECT_EQ(reports.take(),
              (std::vector<Report>{
                  {LOG_CRIT, "PWApi: pipe " + pipe + " open err: No such file or directory"}}));
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
}

TEST_F(Link, ReleasedHandleIsRefusedEverywhere) {
    DaemonEnds daemon(linkFolder(), 0, PW_INTERFACE_CMD);
    ASSERT_NE(openCmd(0), nullptr);
    EXPECT_EQ(PWReleaseHandle(handle), PW_OK);
    EXPECT_TRUE(reports.take().empty());
    PWMsg msg{};
    EXPECT_EQ(PWReleaseHandle(handle), PW_ERR_INVALID);
    EXPECT_EQ(PWSendMsg(handle, &msg), PW_ERR_HANDLE);
    EXPECT_EQ(PWReceiveMsg(handle, 1000, &msg), PW_ERR_HANDLE);
    Report bad{LOG_ERR, handleText(handle)};
    EXPECT_EQ(reports.take(), (std::vector<Report>{bad, bad, bad}));
    EXPECT_TRUE(daemon.received().empty());
}

TEST(LinkDeathTest, NullArgumentsAreFatal) {
    PWMsg msg{};
    PWHandle handle{};
    EXPECT_DEATH(PWReleaseHandle(nullptr), "Assertion `handle' failed");
    EXPECT_DEATH(PWSendMsg(nullptr, &msg), "Assertion `handle' failed");
    EXPECT_DEATH(PWSendMsg(&handle, nullptr), "Assertion `pMsg' failed");
    EXPECT_DEATH(PWReceiveMsg(nullptr, 1, &msg), "Assertion `handle' failed");
    EXPECT_DEATH(PWReceiveMsg(&handle, 1, nullptr), "Assertion `pMsg' failed");
}

} // namespace
