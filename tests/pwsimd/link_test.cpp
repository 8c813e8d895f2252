// The link's client against a running pwsimd over real pipes: every request
// kind, each fault as a client sees it, successive clients, bad bytes on a
// request pipe, and the trace lines.
#include "system/Pixelworks/PWApi.h"
#include "tests/pwsimd/simProcess.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace {

// Replies that come are read with this; it bounds a hang, nothing more.
constexpr uint32_t answerMs = 5000;
// Replies that must not come are waited for this long.
constexpr uint32_t silenceMs = 300;

PWMsg message(uint8_t opcode, std::vector<uint16_t> words) {
    PWMsg msg{};
    msg.Opcode = opcode;
    msg.Length = static_cast<uint8_t>(2 * words.size());
    for (std::size_t i = 0; i < words.size(); ++i)
        msg.Payload[i] = words[i];
    return msg;
}

std::vector<uint16_t> words(const PWMsg &msg) {
    return std::vector<uint16_t>(msg.Payload, msg.Payload + msg.Length / 2);
}

// One exchange: send `request`, receive into `reply`; the receive's result.
int exchange(PWHandle *handle, const PWMsg &request, PWMsg &reply, uint32_t timeoutMs = answerMs) {
    reply = request;
    EXPECT_EQ(PWSendMsg(handle, &reply), PW_OK);
    return PWReceiveMsg(handle, timeoutMs, &reply);
}

// The link keeps the first folder of the process: one folder serves every
// daemon that the tests of this program start in turn.
class PwsimdLink : public ::testing::Test {
  protected:
    static void SetUpTestSuite() {
        folder = SimMakeTempDir();
        ASSERT_FALSE(folder.empty());
        ASSERT_EQ(PWInit(folder.c_str()), PW_OK);
    }
    static void TearDownTestSuite() { rmdir(folder.c_str()); }
    static std::string folder;
};

std::string PwsimdLink::folder;

struct KindRow {
    const char *Meaning;
    PWMsg Request;
    std::vector<uint16_t> ReplyWords;
};

TEST_F(PwsimdLink, EveryRequestKindRoundTripsOnEveryChipAndInterface) {
    SimProcess sim;
    ASSERT_TRUE(
        SimStart(sim, {"--firmware", "0x1234", "--output", "1920x1080@50", "--input", "720x576@50"},
                 folder));
    // clang-format off
    const std::vector<KindRow> rows = {
        {"reset",         message(0x01, {}),        {}},
        {"query input",   message(0x02, {}),        {1, 5000, 864, 625, 720, 576, 0, 0, 0}},
        {"query output",  message(0x03, {}),        {1, 5000, 2200, 1125, 1920, 1080, 0, 0, 0}},
        {"set cable",     message(0x04, {2}),       {}},
        {"set mode",      message(0x05, {0}),       {}},
        {"query version", message(0x23, {}),        {0x1234}},
        {"set aspect",    message(0x25, {0}),       {}},
        {"set gains",     message(0x2C, {0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF}), {}},
        {"set gains vga", message(0x2D, {82, 84, 82, 127, 123, 122}), {}},
    };
    // clang-format on
    for (int chip = 0; chip < PW_MAX_CHIPS; ++chip) {
        for (bool cmd : {true, false}) {
            PWHandle *h = cmd ? PWOpenCmdHandle(chip) : PWOpenDiagHandle(chip);
            ASSERT_NE(h, nullptr) << "chip " << chip << (cmd ? " cmd" : " diag");
            for (const KindRow &row : rows) {
                PWMsg reply;
                ASSERT_EQ(exchange(h, row.Request, reply), PW_OK) << row.Meaning;
                EXPECT_EQ(reply.Opcode, row.Request.Opcode) << row.Meaning;
                EXPECT_EQ(words(reply), row.ReplyWords) << row.Meaning << ", chip " << chip;
            }
            EXPECT_EQ(PWReleaseHandle(h), PW_OK);
        }
    }
    EXPECT_TRUE(SimStop(sim));
}

// Faults after which a client gets no valid reply, each on chip 1 only.
TEST_F(PwsimdLink, LostRepliesTimeOutOnTheFaultyChipOnly) {
    for (const char *fault : {"never@1", "late=3000@1", "crc@1", "garbage@1", "other-if@1"}) {
        SimProcess sim;
        ASSERT_TRUE(SimStart(sim, {"--fault", fault}, folder));
        PWHandle *faulty = PWOpenCmdHandle(1);
        PWHandle *good   = PWOpenCmdHandle(0);
        ASSERT_NE(faulty, nullptr);
        ASSERT_NE(good, nullptr);
        PWMsg reply;
        EXPECT_EQ(exchange(faulty, message(0x23, {}), reply, silenceMs), PW_ERR_TIMEOUT) << fault;
        EXPECT_EQ(exchange(good, message(0x23, {}), reply), PW_OK) << fault;
        EXPECT_EQ(words(reply), std::vector<uint16_t>{258}) << fault;
        EXPECT_EQ(PWReleaseHandle(faulty), PW_OK);
        EXPECT_EQ(PWReleaseHandle(good), PW_OK);
        EXPECT_TRUE(SimStop(sim)) << fault;
    }
}

TEST_F(PwsimdLink, ALateReplyComesAfterTheDelay) {
    SimProcess sim;
    ASSERT_TRUE(SimStart(sim, {"--fault", "late=2000"}, folder));
    PWHandle *h = PWOpenCmdHandle(2);
    ASSERT_NE(h, nullptr);
    PWMsg reply;
    EXPECT_EQ(exchange(h, message(0x23, {}), reply, 100), PW_ERR_TIMEOUT);
    // The same reply, still on its way, is what the next receive gets.
    EXPECT_EQ(PWReceiveMsg(h, answerMs, &reply), PW_OK);
    EXPECT_EQ(reply.Opcode, 0x23);
    EXPECT_EQ(words(reply), std::vector<uint16_t>{258});
    EXPECT_EQ(PWReleaseHandle(h), PW_OK);
    EXPECT_TRUE(SimStop(sim));
}

TEST_F(PwsimdLink, ASplitReplyIsPutTogether) {
    SimProcess sim;
    ASSERT_TRUE(SimStart(sim, {"--fault", "split", "--trace"}, folder, true));
    PWHandle *h = PWOpenDiagHandle(0);
    ASSERT_NE(h, nullptr);
    PWMsg reply;
    ASSERT_EQ(exchange(h, message(0x03, {}), reply), PW_OK);
    EXPECT_EQ(words(reply), (std::vector<uint16_t>{1, 6000, 1650, 750, 1280, 720, 0, 0, 0}));
    std::string line;
    ASSERT_TRUE(SimReadLine(sim, line)); // the request
    ASSERT_TRUE(SimReadLine(sim, line));
    EXPECT_NE(line.find(" note=split "), std::string::npos) << line;
    EXPECT_EQ(PWReleaseHandle(h), PW_OK);
    EXPECT_TRUE(SimStop(sim));
}

TEST_F(PwsimdLink, OutputStatusIsNoneForTheFirstQueriesOfThatChip) {
    SimProcess sim;
    ASSERT_TRUE(SimStart(sim, {"--fault", "status0=3@2"}, folder));
    PWHandle *h     = PWOpenCmdHandle(2);
    PWHandle *other = PWOpenCmdHandle(0);
    ASSERT_NE(h, nullptr);
    ASSERT_NE(other, nullptr);
    PWMsg reply;
    ASSERT_EQ(exchange(other, message(0x03, {}), reply), PW_OK);
    EXPECT_EQ(reply.Payload[0], 1) << "other chips are not affected";
    std::vector<uint16_t> statuses;
    for (int i = 0; i < 5; ++i) {
        ASSERT_EQ(exchange(h, message(0x03, {}), reply), PW_OK);
        statuses.push_back(reply.Payload[0]);
        EXPECT_EQ(reply.Payload[4], 1280) << "only the status changes";
        if (i == 1) { // an input query in between doesn't count
            ASSERT_EQ(exchange(h, message(0x02, {}), reply), PW_OK);
            EXPECT_EQ(reply.Payload[0], 1);
        }
    }
    EXPECT_EQ(statuses, (std::vector<uint16_t>{0, 0, 0, 1, 1}));
    EXPECT_EQ(PWReleaseHandle(h), PW_OK);
    EXPECT_EQ(PWReleaseHandle(other), PW_OK);
    EXPECT_TRUE(SimStop(sim));
}

// The chip's state outlives a client, stays on its own chip, and what a fault
// does to a reply still applies to the new timing.
TEST_F(PwsimdLink, SetModeAndSetCableChangeWhatThatChipReports) {
    SimProcess sim;
    ASSERT_TRUE(SimStart(sim, {"--fault", "status0=1@1"}, folder));
    const std::vector<uint16_t> start = {1, 6000, 1650, 750, 1280, 720, 0, 0, 0};
    const std::vector<uint16_t> ntsc  = {1, 2997, 858, 525, 720, 480, 0, 0, 0};
    PWMsg reply;
    {
        PWHandle *h = PWOpenCmdHandle(1);
        ASSERT_NE(h, nullptr);
        ASSERT_EQ(exchange(h, message(0x05, {5}), reply), PW_OK);
        EXPECT_EQ(PWReleaseHandle(h), PW_OK);
    }
    PWHandle *diag  = PWOpenDiagHandle(1);
    PWHandle *other = PWOpenCmdHandle(0);
    ASSERT_NE(diag, nullptr);
    ASSERT_NE(other, nullptr);
    ASSERT_EQ(exchange(diag, message(0x03, {}), reply), PW_OK);
    std::vector<uint16_t> none = ntsc;
    none[0]                    = 0;
    EXPECT_EQ(words(reply), none) << "status0 on the new timing";
    ASSERT_EQ(exchange(diag, message(0x03, {}), reply), PW_OK);
    EXPECT_EQ(words(reply), ntsc);
    ASSERT_EQ(exchange(other, message(0x03, {}), reply), PW_OK);
    EXPECT_EQ(words(reply), start) << "chip 0 was not set";

    ASSERT_EQ(exchange(diag, message(0x04, {5}), reply), PW_OK);
    ASSERT_EQ(exchange(diag, message(0x2D, {82, 84, 82, 127, 123, 122}), reply), PW_OK);
    ASSERT_EQ(exchange(diag, message(0x02, {}), reply), PW_OK);
    std::vector<uint16_t> dviA = start;
    dviA[0]                    = 2;
    EXPECT_EQ(words(reply), dviA);

    ASSERT_EQ(exchange(diag, message(0x01, {}), reply), PW_OK);
    for (uint8_t query : {0x02, 0x03}) {
        ASSERT_EQ(exchange(diag, message(query, {}), reply), PW_OK);
        EXPECT_EQ(words(reply), start) << "after the reset, opcode " << int{query};
    }
    EXPECT_EQ(PWReleaseHandle(diag), PW_OK);
    EXPECT_EQ(PWReleaseHandle(other), PW_OK);
    EXPECT_TRUE(SimStop(sim));
}

TEST_F(PwsimdLink, SuccessiveClientsAreServed) {
    SimProcess sim;
    ASSERT_TRUE(SimStart(sim, {"--firmware", "7"}, folder));
    PWMsg reply;
    for (int client = 0; client < 3; ++client) {
        PWHandle *h = PWOpenCmdHandle(0);
        ASSERT_NE(h, nullptr) << "client " << client;
        ASSERT_EQ(exchange(h, message(0x23, {}), reply), PW_OK) << "client " << client;
        EXPECT_EQ(words(reply), std::vector<uint16_t>{7});
        EXPECT_EQ(PWReleaseHandle(h), PW_OK);
    }

    // A client that leaves without reading its reply: the next one gets its
    // own, as the open drains what was left.
    PWHandle *h = PWOpenCmdHandle(0);
    ASSERT_NE(h, nullptr);
    PWMsg query = message(0x03, {});
    ASSERT_EQ(PWSendMsg(h, &query), PW_OK);
    ASSERT_EQ(PWReceiveMsg(h, answerMs, &reply), PW_OK) << "the reply is there";
    ASSERT_EQ(PWSendMsg(h, &query), PW_OK);
    pollfd replyThere{h->ReadFd, POLLIN, 0};
    ASSERT_EQ(poll(&replyThere, 1, static_cast<int>(answerMs)), 1) << "the reply is waiting";
    EXPECT_EQ(PWReleaseHandle(h), PW_OK);
    // A client that dies in the middle of writing a request.
    {
        int fd = open(SimPipePath(folder, "PWWtCmd", 0).c_str(), O_WRONLY | O_NONBLOCK);
        ASSERT_GE(fd, 0);
        const uint8_t half[] = {0xBE, 0xEF, 0x49, 0xB3};
        EXPECT_EQ(write(fd, half, sizeof half), static_cast<ssize_t>(sizeof half));
        close(fd);
    }
    h = PWOpenCmdHandle(0);
    ASSERT_NE(h, nullptr);
    ASSERT_EQ(exchange(h, message(0x23, {}), reply), PW_OK);
    EXPECT_EQ(reply.Opcode, 0x23);
    EXPECT_EQ(words(reply), std::vector<uint16_t>{7});
    EXPECT_EQ(PWReleaseHandle(h), PW_OK);
    EXPECT_TRUE(SimStop(sim));
}

TEST_F(PwsimdLink, StopsWhileAClientHoldsItsPipes) {
    SimProcess sim;
    ASSERT_TRUE(SimStart(sim, {}, folder));
    PWHandle *h = PWOpenDiagHandle(1);
    ASSERT_NE(h, nullptr);
    EXPECT_TRUE(SimStop(sim));
    EXPECT_EQ(PWReleaseHandle(h), PW_OK);
}

// The trace that end-to-end tests read: exact lines, in order, including a
// refused request, a fault note and bad bytes on a request pipe.
TEST_F(PwsimdLink, TraceLinesTellEachRequestAndReply) {
    SimProcess sim;
    ASSERT_TRUE(SimStart(sim, {"--trace", "--fault", "status0=1@0"}, folder, true));
    PWHandle *cmd  = PWOpenCmdHandle(0);
    PWHandle *diag = PWOpenDiagHandle(2);
    ASSERT_NE(cmd, nullptr);
    ASSERT_NE(diag, nullptr);
    PWMsg reply;
    EXPECT_EQ(exchange(cmd, message(0x04, {2}), reply), PW_OK);
    EXPECT_EQ(exchange(cmd, message(0x03, {}), reply), PW_OK);
    EXPECT_EQ(exchange(diag, message(0x2C, {67, 63, 64, 0xFFFF, 0xFFFF, 0xFFFF}), reply), PW_OK);
    {
        int fd = open(SimPipePath(folder, "PWWtDiag", 2).c_str(), O_WRONLY | O_NONBLOCK);
        ASSERT_GE(fd, 0);
        const uint8_t junk[] = {'j', 'u', 'n', 'k'};
        EXPECT_EQ(write(fd, junk, sizeof junk), static_cast<ssize_t>(sizeof junk));
        close(fd);
    }
    EXPECT_EQ(exchange(diag, message(0x23, {}), reply), PW_OK);
    EXPECT_EQ(exchange(cmd, message(0x77, {}), reply, silenceMs), PW_ERR_TIMEOUT);

    const std::vector<std::string> expected = {
        "pwsimd: req chip=0 if=cmd op=0x04 name=set-cable len=2 note=- words=0002",
        "pwsimd: rep chip=0 if=cmd op=0x04 name=set-cable len=0 note=- words=-",
        "pwsimd: req chip=0 if=cmd op=0x03 name=query-output len=0 note=- words=-",
        "pwsimd: rep chip=0 if=cmd op=0x03 name=query-output len=18 note=status0 "
        "words=0000,1770,0672,02ee,0500,02d0,0000,0000,0000",
        "pwsimd: req chip=2 if=diag op=0x2c name=set-gains len=12 note=- "
        "words=0043,003f,0040,ffff,ffff,ffff",
        "pwsimd: rep chip=2 if=diag op=0x2c name=set-gains len=0 note=- words=-",
        "pwsimd: bad chip=2 if=diag skipped=4",
        "pwsimd: req chip=2 if=diag op=0x23 name=query-version len=0 note=- words=-",
        "pwsimd: rep chip=2 if=diag op=0x23 name=query-version len=2 note=- words=0102",
        "pwsimd: req chip=0 if=cmd op=0x77 name=? len=0 note=- words=-",
        "pwsimd: rep chip=0 if=cmd op=0x77 name=? len=0 note=refused words=-",
    };
    for (const std::string &want : expected) {
        std::string line;
        ASSERT_TRUE(SimReadLine(sim, line));
        EXPECT_EQ(line, want);
    }
    EXPECT_EQ(PWReleaseHandle(cmd), PW_OK);
    EXPECT_EQ(PWReleaseHandle(diag), PW_OK);
    EXPECT_TRUE(SimStop(sim));
    EXPECT_EQ(sim.ErrPending, "") << "no line beyond those expected";
}

} // namespace
