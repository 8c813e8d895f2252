// The link: packet encoding, CRC and scanning without pipes, then the link
// over real named pipes, against daemon ends held by the test.
#include "pipeFixture.h"

#include "Common/OS/clockSource.h"
#include "system/Pixelworks/PWApi.h"
#include "system/Pixelworks/PWPacket.h"
#include "system/Pixelworks/PWPipe.h"
#include "system/Pixelworks/PWReport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/wait.h>
#include <syslog.h>
#include <thread>
#include <time.h>
#include <unistd.h>

namespace {

using Bytes = std::vector<uint8_t>;
using Words = std::vector<uint16_t>;

struct PacketFixture {
    const char *meaning;
    uint8_t opcode;
    Words words;
    Bytes bytes;
};

// clang-format off
// A message to Cmd, its opcode and payload words, and the packet that carries it
const std::vector<PacketFixture> examplePackets = {
    {"Reset",          0x01, {},       {0xBE, 0xEF, 0x49, 0xB3, 0x1B, 0x02, 0x01, 0x01}},
    {"Query version",  0x23, {},       {0xBE, 0xEF, 0xE9, 0xAB, 0x1B, 0x02, 0x23, 0x01}},
    {"Set cable to 2", 0x04, {0x0002}, {0xBE, 0xEF, 0x6A, 0x3D, 0x1B, 0x04, 0x04, 0x01, 0x02, 0x00}},
};
// clang-format on

Words decode(const Bytes &packet, PWMsg &msg) {
    PWPacketDecode(packet.data(), msg);
    return Words(msg.Payload, msg.Payload + msg.Length / 2);
}

// The check value of the Modbus CRC, 0x4B37, which the routine hands back with its bytes
// exchanged; the CRC run in pieces, as a packet's is, shows in the example packets.
TEST(PWCrc, CheckValueOfModbus) {
    EXPECT_EQ(PWCrc16(reinterpret_cast<const uint8_t *>("123456789"), 9), 0x374B);
}

TEST(PWPacket, ExamplesEncodeByteForByteAndDecodeToTheirMessage) {
    for (const PacketFixture &f : examplePackets) {
        EXPECT_EQ(packetOf(f.opcode, f.words, PW_INTERFACE_CMD), f.bytes) << f.meaning;
        ASSERT_EQ(PWPacketScan(f.bytes.data(), f.bytes.size(), PW_INTERFACE_CMD), PWScan::good)
            << f.meaning;
        PWMsg msg{};
        EXPECT_EQ(decode(f.bytes, msg), f.words) << f.meaning;
        EXPECT_EQ(msg.Length, 2 * f.words.size()) << f.meaning;
        EXPECT_EQ(msg.Opcode, f.opcode) << f.meaning;
    }
}

TEST(PWPacket, LargestPayloadRoundTrips) {
    Words words(126);
    for (std::size_t i = 0; i < words.size(); ++i)
        words[i] = static_cast<uint16_t>(0x0101 * i + 3);
    Bytes b = packetOf(0x7F, words, PW_INTERFACE_CMD);
    ASSERT_EQ(b.size(), pwMaxPacket);
    ASSERT_EQ(PWPacketScan(b.data(), b.size(), PW_INTERFACE_CMD), PWScan::good);
    PWMsg back{};
    EXPECT_EQ(decode(b, back), words);
}

TEST(PWPacket, TypeByteIsNotLookedAtOnReceipt) {
    Bytes b = examplePackets[2].bytes;
    b[4]    = 0x00;
    // Seal the CRC again, so that only the Type differs from a sent packet.
    uint16_t crc = PWPacketCrc(b.data(), b.size());
    b[2]         = static_cast<uint8_t>(crc >> 8);
    b[3]         = static_cast<uint8_t>(crc);
    EXPECT_EQ(PWPacketScan(b.data(), b.size(), PW_INTERFACE_CMD), PWScan::good);
}

TEST(PWPacket, ScanFollowsTheReceiversOrderOfTests) {
    // clang-format off
    // What the receiver holds: bytes of the packet held, a byte changed (-1: none) and its new
    // value; the receiver's interface, and what the scan finds
    const std::tuple<const char *, std::size_t, int, uint8_t, int, PWScan> cases[] = {
        {"nothing yet",                  0,  -1, 0,    PW_INTERFACE_CMD,  PWScan::incomplete},
        {"first sync byte only",         1,  -1, 0,    PW_INTERFACE_CMD,  PWScan::incomplete},
        {"header not complete",          7,  -1, 0,    PW_INTERFACE_CMD,  PWScan::incomplete},
        {"payload not complete",         9,  -1, 0,    PW_INTERFACE_CMD,  PWScan::incomplete},
        {"whole packet",                 10, -1, 0,    PW_INTERFACE_CMD,  PWScan::good},
        {"wrong first byte, alone",      1,  0,  0x00, PW_INTERFACE_CMD,  PWScan::badSync},
        {"wrong second byte",            2,  1,  0xEE, PW_INTERFACE_CMD,  PWScan::badSync},
        {"bad sync beats other iface",   10, 0,  0xBF, PW_INTERFACE_DIAG, PWScan::badSync},
        {"other interface, header only", 8,  -1, 0,    PW_INTERFACE_DIAG, PWScan::otherInterface},
        {"other interface, whole",       10, -1, 0,    PW_INTERFACE_DIAG, PWScan::otherInterface},
        {"corrupt payload",              10, 9,  0x01, PW_INTERFACE_CMD,  PWScan::badCrc},
        {"corrupt CRC",                  10, 3,  0x3E, PW_INTERFACE_CMD,  PWScan::badCrc},
        {"Size below 2",                 10, 5,  0x01, PW_INTERFACE_CMD,  PWScan::badCrc},
        {"Size larger than held",        10, 5,  0x10, PW_INTERFACE_CMD,  PWScan::incomplete},
    };
    // clang-format on
    for (const auto &[what, held, offset, value, interface, expected] : cases) {
        Bytes b = examplePackets[2].bytes;
        if (offset >= 0)
            b[static_cast<std::size_t>(offset)] = value;
        EXPECT_EQ(PWPacketScan(b.data(), held, interface), expected) << what;
    }
}

// The folder of this process: the link takes its folder once per process.
const PipeFolder &linkFolder() {
    static PipeFolder folder;
    static int initialised = PWInit(folder.path.c_str());
    EXPECT_EQ(initialised, PW_OK);
    return folder;
}

bool isTimeoutReport(const Report &r, int chip) {
    std::string head = "PWApi: TIMEOUT chip " + std::to_string(chip) + ", ms=";
    return r.priority == LOG_WARNING && r.text.rfind(head, 0) == 0 && r.text.back() == '\n';
}

long openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

// A Cmd handle of chip 0 with the daemon's ends of its pipes.
class Link : public testing::Test {
  protected:
    void SetUp() override {
        handle = PWOpenCmdHandle(0);
        ASSERT_NE(handle, nullptr);
    }
    void TearDown() override {
        if (handle != nullptr && handle->Magic == PW_HANDLE_MAGIC)
            PWReleaseHandle(handle);
    }

    ReportCatcher reports;
    DaemonEnds daemon{linkFolder(), 0, PW_INTERFACE_CMD};
    PWHandle *handle = nullptr;
};

TEST_F(Link, WriteWithNoReaderIsMinus17AndNoSignal) {
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

// A reply with Size 2 leaves the payload as it was; a timeout of 0 ends the
// call before the first read; of two packets read at once the first is taken
// and the second dropped.
TEST_F(Link, WhatTheCallTakesFromWhatWaits) {
    std::vector<uint8_t> two          = packetOf(0x23, {7}, PW_INTERFACE_CMD);
    const std::vector<uint8_t> second = packetOf(0x23, {8}, PW_INTERFACE_CMD);
    two.insert(two.end(), second.begin(), second.end());
    // clang-format off
    // What waits, the bytes in the pipe before the call, the timeout; the result, the message's
    // Length and first word (0x5555 before) and the bytes left in the pipe after it
    const std::tuple<const char *, std::vector<uint8_t>, uint32_t, int, uint8_t, uint16_t, int> cases[] = {
        {"Size 2",         packetOf(4, {}, PW_INTERFACE_CMD), 1000, PW_OK,          0, 0x5555, 0},
        {"timeout 0",      packetOf(1, {}, PW_INTERFACE_CMD), 0,    PW_ERR_TIMEOUT, 0, 0x5555, 8},
        {"two in one read", two,                             1000, PW_OK,          2, 7,      0},
    };
    // clang-format on
    for (const auto &[what, bytes, timeoutMs, result, length, word0, pendingAfter] : cases) {
        daemon.send(bytes);
        PWMsg msg{};
        msg.Length     = 2;
        msg.Payload[0] = 0x5555;
        EXPECT_EQ(PWReceiveMsg(handle, timeoutMs, &msg), result) << what;
        EXPECT_EQ(msg.Length, length) << what;
        EXPECT_EQ(msg.Payload[0], word0) << what;
        EXPECT_EQ(daemon.pending(), pendingAfter) << what;
        std::vector<Report> seen = reports.take();
        EXPECT_EQ(seen.size(), result == PW_OK ? 0u : 1u) << what;
        daemon.received();
        PWDrainPipe(handle->ReadFd, reinterpret_cast<uint8_t *>(&msg), sizeof msg);
    }
}

TEST_F(Link, PacketInTwoPiecesIsPutTogether) {
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

// Bytes that hold no valid packet: at most one report, the pipe emptied, the
// call runs to its deadline, and the handle still serves the next reply.
TEST_F(Link, BadPacketsAreReportedOnceAndEndInTimeout) {
    std::vector<uint8_t> badCrc = packetOf(4, {2}, PW_INTERFACE_CMD);
    badCrc[9] ^= 0x80;
    std::vector<uint8_t> flood; // more packets of the other interface than the buffer holds
    for (uint16_t i = 0; i < 40; ++i) {
        std::vector<uint8_t> p = packetOf(2, {i}, PW_INTERFACE_DIAG);
        flood.insert(flood.end(), p.begin(), p.end());
    }
    auto header = [](const char *word) {
        return std::vector<Report>{
            {LOG_WARNING, std::string("PWApi: chip = 0, invalid packet header = ") + word + "\n"}};
    };
    // clang-format off
    // What is sent, its bytes, and the reports before the timeout's
    const std::tuple<const char *, std::vector<uint8_t>, std::vector<Report>> cases[] = {
        {"wrong first bytes",            {0x12, 0x34, 0, 0, 0, 0, 0, 0},     header("0x1234")},
        {"one wrong byte alone",         {0x12},                             header("0x1200")},
        {"wrong second byte",            {0xBE, 0x00},                       header("0xbe00")},
        {"zero header",                  {0x00, 0x00, 0x00},                 header("(nil)")},
        {"more garbage than the buffer", std::vector<uint8_t>(1000, 0x55),   header("0x5555")},
        {"CRC error",                    badCrc,                             {{LOG_WARNING, "PWApi: CRC error; chip = 0, opcode = 0x4\n"}}},
        {"other interface",              packetOf(4, {2}, PW_INTERFACE_DIAG), {}},
        {"other interface flood",        flood,                              {}},
    };
    // clang-format on
    for (const auto &[what, bytes, before] : cases) {
        daemon.send(bytes);
        PWMsg msg{};
        EXPECT_EQ(PWReceiveMsg(handle, 30, &msg), PW_ERR_TIMEOUT) << what;
        std::vector<Report> seen = reports.take();
        ASSERT_EQ(seen.size(), before.size() + 1) << what;
        for (std::size_t i = 0; i < before.size(); ++i)
            EXPECT_EQ(seen[i], before[i]) << what;
        EXPECT_TRUE(isTimeoutReport(seen.back(), 0)) << what;
        ASSERT_EQ(daemon.pending(), 0) << what << ": pipe not emptied";
        daemon.send(packetOf(1, {}, PW_INTERFACE_CMD));
        EXPECT_EQ(PWReceiveMsg(handle, 1000, &msg), PW_OK) << what;
        EXPECT_TRUE(reports.take().empty()) << what;
    }
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
    badHeaderReported       = false;
    backAtDeadlineTest      = false;
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

double secondsOf(clockid_t clock) {
    timespec now{};
    clock_gettime(clock, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// With the daemon's writer gone the call waits out its deadline asleep: its
// thread's processor time stays far below the time it took, however loaded
// the machine, where a loop on end-of-file would use the processor throughout.
TEST_F(Link, DaemonGoneWaitsOutTheDeadlineWithoutSpinning) {
    daemon.closeToClient();
    PWMsg msg{};
    const double wallStart = secondsOf(CLOCK_MONOTONIC);
    const double cpuStart  = secondsOf(CLOCK_THREAD_CPUTIME_ID);
    EXPECT_EQ(PWReceiveMsg(handle, 300, &msg), PW_ERR_TIMEOUT);
    const double cpu  = secondsOf(CLOCK_THREAD_CPUTIME_ID) - cpuStart;
    const double wall = secondsOf(CLOCK_MONOTONIC) - wallStart;
    EXPECT_GE(wall, 0.29) << "ended before its deadline";
    EXPECT_LT(cpu, wall / 2) << "processor " << cpu << " s in " << wall << " s";
    std::vector<Report> seen = reports.take();
    ASSERT_EQ(seen.size(), 1u);
    EXPECT_TRUE(isTimeoutReport(seen[0], 0));
}

ClockStart failingStart() {
    return ClockStart::openFailed;
}
ClockStart goodStart() {
    return ClockStart::ok;
}
uint32_t nearWrapCounter() {
    return 0xFFFFFFF0u;
}

TEST_F(Link, DeadlineOfAClockThatCannotBeReadOrWraps) {
    // clang-format off
    // A clock (reading 0xFFFFFFF0 once started), whether a packet waits, what a receive of 100 ms returns
    const std::tuple<const char *, ClockStart (*)(), bool, int> cases[] = {
        {"unreadable clock: the deadline never passes",   failingStart, true,  PW_OK},
        {"unreadable clock: select's own wait ends it",   failingStart, false, PW_ERR_TIMEOUT},
        {"deadline past the wrap: ends early, plainly",   goodStart,    true,  PW_ERR_TIMEOUT},
    };
    // clang-format on
    const ClockSource &host = ClockPlatformSource();
    for (const auto &[what, start, packetWaiting, expected] : cases) {
        const ClockSource source{start, nearWrapCounter, host.timeBaseUpper, host.timeBaseLower};
        ClockSourceSet(&source);
        if (packetWaiting)
            daemon.send(packetOf(1, {}, PW_INTERFACE_CMD));
        PWMsg msg{};
        EXPECT_EQ(PWReceiveMsg(handle, 100, &msg), expected) << what;
        ClockSourceSet(nullptr);
    }
}

TEST_F(Link, StaleBytesAreDrainedAtOpen) {
    for (std::size_t stale : {1u, 99u, 100u, 101u, 200u, 4000u}) {
        EXPECT_EQ(PWReleaseHandle(handle), PW_OK);
        daemon.send(std::vector<uint8_t>(stale, 0xBE));
        handle = PWOpenCmdHandle(0);
        ASSERT_NE(handle, nullptr) << stale;
        EXPECT_EQ(daemon.pending(), 0) << stale << " stale bytes left";
        daemon.send(packetOf(0x23, {9}, PW_INTERFACE_CMD));
        PWMsg msg{};
        EXPECT_EQ(PWReceiveMsg(handle, 1000, &msg), PW_OK) << stale;
    }
    EXPECT_TRUE(reports.take().empty());
}

// The pair is held across processes. Another holder (here a lock taken on
// a description of the read pipe of our own, as another process's link takes
// it) gets the open refused before the drain, so the reply it waits for stays
// in the pipe; and a release ends the hold even while a child process still
// shares the handle's descriptors.
TEST_F(Link, ThePairIsHeldUntilReleased) {
    const std::string readPipe = linkFolder().pipe("PWRdCmd", 0);
    int other                  = open(readPipe.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(other, 0);
    EXPECT_NE(flock(other, LOCK_EX | LOCK_NB), 0) << "the open handle holds the pair";

    int gate[2];
    ASSERT_EQ(pipe(gate), 0);
    pid_t child = fork();
    if (child == 0) { // keeps its copies of the handle's descriptors until the gate closes
        close(gate[1]);
        char byte;
        [[maybe_unused]] ssize_t n = read(gate[0], &byte, 1);
        _exit(0);
    }
    ASSERT_GT(child, 0);
    close(gate[0]);
    EXPECT_EQ(PWReleaseHandle(handle), PW_OK);
    EXPECT_EQ(flock(other, LOCK_EX | LOCK_NB), 0) << "still held through the child's descriptor";
    close(gate[1]);
    waitpid(child, nullptr, 0);

    const std::vector<uint8_t> othersReply = packetOf(0x23, {1}, PW_INTERFACE_CMD);
    daemon.send(othersReply);
    EXPECT_EQ(PWOpenCmdHandle(0), nullptr);
    EXPECT_EQ(
        reports.take(),
        (std::vector<Report>{{LOG_ERR, "PWApi: Cmd interface for PW chip 0 already in use\n"}}));
    EXPECT_EQ(daemon.pending(), static_cast<int>(othersReply.size()));
    close(other);
    handle = PWOpenCmdHandle(0);
    EXPECT_NE(handle, nullptr) << "free again once the other holder has gone";
}

// Each refused open reports once and leaves no descriptor open; the handles
// already open stay good.
TEST_F(Link, RefusedOpensSayWhy) {
    const PipeFolder &folder = linkFolder();
    DaemonEnds diag(folder, 0, PW_INTERFACE_DIAG);
    PWHandle *diagHandle = PWOpenDiagHandle(0);
    ASSERT_NE(diagHandle, nullptr) << "Cmd and Diag of a chip are two records";
    const std::string missing = folder.pipe("PWRdDiag", 2);
    ASSERT_EQ(unlink(missing.c_str()), 0);
    const std::string noReader = folder.pipe("PWWtCmd", 2);
    // Chip 1: a device in place of the Cmd read pipe, a regular file in
    // place of the Diag write pipe.
    const std::string device = folder.pipe("PWRdCmd", 1);
    const std::string file   = folder.pipe("PWWtDiag", 1);
    ASSERT_EQ(unlink(device.c_str()), 0);
    ASSERT_EQ(symlink("/dev/zero", device.c_str()), 0);
    ASSERT_EQ(unlink(file.c_str()), 0);
    ASSERT_EQ(close(open(file.c_str(), O_WRONLY | O_CREAT, 0600)), 0);
    // clang-format off
    // Chip and interface of the open, and its report
    const std::tuple<int, int, Report> refusals[] = {
        {3,   PW_INTERFACE_CMD,  {LOG_ERR,  "PWApi: invalid PW chip 3.\n"}},
        {-1,  PW_INTERFACE_DIAG, {LOG_ERR,  "PWApi: invalid PW chip -1.\n"}},
        {0,   PW_INTERFACE_CMD,  {LOG_ERR,  "PWApi: Cmd interface for PW chip 0 already in use\n"}},
        {0,   PW_INTERFACE_DIAG, {LOG_ERR,  "PWApi: Diag interface for PW chip 0 already in use\n"}},
        {2,   PW_INTERFACE_CMD,  {LOG_CRIT, "PWApi: pipe " + noReader + " open err: No such device or address"}},
        {2,   PW_INTERFACE_DIAG, {LOG_CRIT, "PWApi: pipe " + missing + " open err: No such file or directory"}},
        {1,   PW_INTERFACE_CMD,  {LOG_CRIT, "PWApi: pipe " + device + " open err: not a named pipe"}},
        {1,   PW_INTERFACE_DIAG, {LOG_CRIT, "PWApi: pipe " + file + " open err: not a named pipe"}},
    };
    // clang-format on
    for (const auto &[chip, interface, report] : refusals) {
        long before = openDescriptors();
        EXPECT_EQ(PWOpenHandle(chip, interface), nullptr) << report.text;
        EXPECT_EQ(openDescriptors(), before) << report.text;
        EXPECT_EQ(reports.take(), std::vector<Report>{report});
    }
    // Put the folder back for the other tests; the handles already open still serve.
    for (const std::string &path : {device, file})
        ASSERT_EQ(unlink(path.c_str()), 0);
    for (const std::string &path : {missing, device, file})
        ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    PWMsg msg{};
    EXPECT_EQ(PWSendMsg(handle, &msg), PW_OK);
    EXPECT_EQ(PWReleaseHandle(diagHandle), PW_OK);
}

TEST_F(Link, ReleasedHandleIsRefusedEverywhere) {
    EXPECT_EQ(PWReleaseHandle(handle), PW_OK);
    EXPECT_TRUE(reports.take().empty());
    PWMsg msg{};
    EXPECT_EQ(PWReleaseHandle(handle), PW_ERR_INVALID);
    EXPECT_EQ(PWSendMsg(handle, &msg), PW_ERR_HANDLE);
    EXPECT_EQ(PWReceiveMsg(handle, 1000, &msg), PW_ERR_HANDLE);
    char text[64];
    std::snprintf(text, sizeof text, "PWApi: invalid PW handle %p\n", static_cast<void *>(handle));
    Report bad{LOG_ERR, text};
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
