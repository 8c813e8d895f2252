// The log ring, set up by hand: no writer task runs, the test places the
// head and the tail, queues one line and drains with LogDrain.
#include "Common/OS/log.h"
#include "Common/OS/logRing.h"
#include "Common/OS/logSeam.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

constexpr const char overflowText[] = "WARN   pc[0]: SYSLOG QUEUE OVERFLOW\n";

// What a stream collects, read back after the action.
struct Capture {
    Capture() : file(std::tmpfile()) {}
    ~Capture() { std::fclose(file); }
    std::string text() {
        std::fflush(file);
        std::string all(static_cast<size_t>(std::ftell(file)), '\0');
        std::rewind(file);
        all.resize(std::fread(all.data(), 1, all.size(), file));
        std::rewind(file);
        return all;
    }
    FILE *file;
};

// Standard error, taken over while the object lives.
struct StderrCapture : Capture {
    StderrCapture() : saved(dup(2)) { dup2(fileno(file), 2); }
    ~StderrCapture() {
        dup2(saved, 2);
        close(saved);
    }
    int saved;
};

class LogRing : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { LogRingHold(); }
    void SetUp() override {
        std::memset(logRing, 0, sizeof logRing);
        LogSetFormat(0);
        LogSetForward(0);
        LogWriterStreamSet(out.file);
    }
    void TearDown() override { LogWriterStreamSet(nullptr); }
    static void place(int32_t head, int32_t tail) {
        logHead.store(head);
        logTail.store(tail);
    }
    // A line of `size` bytes with its terminator: "INFO  pc[0]: xxx...\n".
    static std::string line(int32_t size) {
        std::string text = "INFO  pc[0]: ";
        text.resize(static_cast<size_t>(size - 2), 'x');
        return text + "\n";
    }
    Capture out;
};

// One line queued with the head and tail at given places: where it lands and
// whether the overflow line is reported.
TEST_F(LogRing, LogLinePlacement) {
    struct Row {
        const char *what;
        int32_t head, tail, size;
        int32_t storedAt; // -1: the line isn't stored
        int32_t newTail;
        bool overflow;
    };
    constexpr int32_t L = logRingLimit;
    const Row rows[]    = {
           {"ends exactly at the limit", 0, L - 60, 60, L - 60, L, false},
           {"one byte more wraps", L - 59, L - 59, 60, 0, 60, false},
           {"wrap onto unread records", 60, L - 59, 60, -1, L - 59, true},
           {"wrap, writer behind a wrap", L - 20, L - 50, 60, -1, L - 50, true},
           {"ends exactly on the head", 1060, 1000, 60, -1, 1037, true},
           {"ends one before the head", 1061, 1000, 60, 1000, 1060, false},
           {"38 bytes left", 1038, 1000, 60, -1, 1037, true},
           {"37 bytes left: nothing enters", 1037, 1000, 60, -1, 1000, true},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        place(row.head, row.tail);
        const std::string text = line(row.size);
        std::memset(logRing + row.tail, 'z', static_cast<size_t>(logRingSize - row.tail));
        StderrCapture err;
        LogEnqueue(text.c_str(), 0);
        EXPECT_EQ(logTail.load(), row.newTail);
        EXPECT_EQ(err.text(), row.overflow ? overflowText : "");
        if (row.storedAt >= 0) {
            EXPECT_EQ(std::string(logRing + row.storedAt), text);
        }
        if (row.newTail == row.tail + 37) {
            EXPECT_STREQ(logRing + row.tail, overflowText);
        }
        if (row.storedAt == 0) {
            EXPECT_EQ(std::string(logRing + row.tail), "") << "the old tail is zero-filled";
        }
    }
}

TEST_F(LogRing, LogDrainAcrossWrap) {
    struct Row {
        const char *what;
        int32_t head;        // where the writer stands
        const char *printed; // with the time prefix "00:00:01.000 " on
    };
    // A record at the old end, the zero fill from 'fill', a record at 0.
    const std::string last  = "INFO  pc[0]: last\n";
    const int32_t lastAt    = logRingLimit - 40;
    const int32_t fill      = lastAt + static_cast<int32_t>(last.size()) + 1;
    const std::string first = "ERROR pc[0]: first\n";
    const Row rows[]        = {
               {"behind the wrap: no extra record", lastAt,
                " 00:00:01.000 pc[0]: last\n 00:00:01.000 pc[0]: first\n"},
               {"at the old tail: one empty record", fill, " 00:00:01.000  00:00:01.000 pc[0]: first\n"},
    };
    LogTimeOfDaySet([](timeval *now) { *now = {1, 0}; });
    LogSetFormat(LOG_FORMAT_TIME);
    for (const Row &row : rows) {
        SCOPED_TRACE(row.what);
        std::memset(logRing, 0, sizeof logRing);
        std::memcpy(logRing + lastAt, last.c_str(), last.size());
        std::memcpy(logRing, first.c_str(), first.size() + 1);
        place(row.head, static_cast<int32_t>(first.size()) + 1);
        LogDrain();
        EXPECT_EQ(out.text(), row.printed);
        EXPECT_EQ(logHead.load(), logTail.load());
        std::fseek(out.file, 0, SEEK_SET);
        ftruncate(fileno(out.file), 0);
    }
    LogTimeOfDaySet(nullptr);

    // Head and tail at the same small offset after a wrap: nothing to print.
    place(20, 20);
    LogDrain();
    EXPECT_EQ(out.text(), "");
}

// The threshold, the columns and the forwarded priority, line by line.
TEST_F(LogRing, LogPrintAndForward) {
    static std::vector<std::pair<int, std::string>> forwarded;
    LogForwarderSet([](int priority, const char *text) { forwarded.emplace_back(priority, text); });
    LogSetForward(1);
    LogSetFormat(LOG_FORMAT_LEVEL);
    LogSetThreshold(3);
    place(0, 0);
    for (const char *text :
         {"CRIT  pc[0]: a\n", "ERROR pc[0]: b\n", "WARN  pc[0]: c\n", "DEBUG pc[0]: d\n"})
        LogEnqueue(text, 0);
    LogSetThreshold(7);
    LogEnqueue("DEBUG pc[0]: e\n", 0);
    LogEnqueue("I", 0); // shorter than the columns
    LogDrain();
    LogForwarderSet(nullptr);
    EXPECT_EQ(out.text(), "CRIT  pc[0]: a\nERROR pc[0]: b\nDEBUG pc[0]: e\nI");
    const std::vector<std::pair<int, std::string>> expected{
        {66, "pc[0]: a\n"}, {67, "pc[0]: b\n"}, {71, "pc[0]: e\n"}, {70, ""}};
    EXPECT_EQ(forwarded, expected);
}

TEST(LogText, LogEscapeAndReplace) {
    char buffer[16];
    EXPECT_STREQ(logEscapePercent(buffer, "50% %d", 5), "50$ $");
    char text[] = "a.b.c";
    logReplaceChar(text, '.', '/', 3);
    EXPECT_STREQ(text, "a/b.c");
}

} // namespace
