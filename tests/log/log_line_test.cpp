// Log entry: exact lines of the front doors, joining of fragments, the 511
// and 1023 character limits, repeat suppression and its report, the clock's
// failure reports and the time stamp.
#include "logTestSupport.h"

#include "Common/OS/clockSource.h"
#include "Common/OS/logInternal.h"
#include "Common/OS/os.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace {

using logtest::LogTest;
using Lines = std::vector<std::string>;

// ---- Front doors ---------------------------------------------------------

struct DoorCase {
    const char *what;
    std::function<int()> log;
    const char *line;
};

TEST_F(LogTest, FrontDoorsBuildExactLines) {
    // clang-format off
    /* What, Call, Line that reaches the queue */
    const std::vector<DoorCase> cases = {
        {"crit",          [] { return LogCrit("os", "t_start failed %d\n", 14); },   "CRIT  pc[0]: os: t_start failed 14\n"},
        {"crit no source",[] { return LogCrit(nullptr, "plain\n"); },               "CRIT  pc[0]: plain\n"},
        {"error",         [] { return LogError("log", "e %s\n", "x"); },            "ERROR pc[0]: log: e x\n"},
        {"warn",          [] { return LogWarn("os", "w\n"); },                      "WARN  pc[0]: os: w\n"},
        {"info",          [] { return LogInfo("system_pthread", "i %u\n", 7u); },   "INFO  pc[0]: system_pthread: i 7\n"},
        {"debug",         [] { return LogDebug("os", "d\n"); },                     "DEBUG pc[0]: os: d\n"},
        {"level 1",       [] { return LogPrintf(1, "os", "one\n"); },               "CRIT  pc[0]: os: one\n"},
        {"level 5",       [] { return LogPrintf(5, "os", "five\n"); },              "INFO  pc[0]: os: five\n"},
        {"level 9",       [] { return LogPrintf(9, "os", "nine\n"); },              "DEBUG pc[0]: os: nine\n"},
        {"level -1",      [] { return LogPrintf(-1, "os", "minus\n"); },            "DEBUG pc[0]: os: minus\n"},
        {"level no src",  [] { return LogLevelPrintf(2, "two %c\n", 'z'); },        "CRIT  pc[0]: two z\n"},
        {"empty source",  [] { return LogWarn("", "e\n"); },                        "WARN  pc[0]: : e\n"},
    };
    // clang-format on
    for (const DoorCase &c : cases) {
        SCOPED_TRACE(c.what);
        const int result = c.log();
        EXPECT_EQ(lines(), Lines{c.line});
        EXPECT_EQ(result, static_cast<int>(std::strlen(c.line)));
    }
}

TEST_F(LogTest, LevelWordsClampToTheTableEnds) {
    // clang-format off
    /* Level, Word */
    const std::vector<std::pair<int32_t, const char *>> cases = {
        {INT32_MIN, "CRIT  "}, {-1, "CRIT  "}, {0, "CRIT  "}, {2, "CRIT  "}, {3, "ERROR "},
        {4, "WARN  "}, {5, "INFO  "}, {6, "INFO  "}, {7, "DEBUG "}, {8, "DEBUG "}, {INT32_MAX, "DEBUG "},
    };
    // clang-format on
    for (const auto &[level, word] : cases) {
        char buffer[8];
        std::memset(buffer, 'x', sizeof buffer);
        EXPECT_EQ(LogLevelWord(level, buffer), 6);
        EXPECT_STREQ(buffer, word) << "level " << level;
    }
    char prefix[16];
    EXPECT_EQ(LogProcPrefix(prefix), 7);
    EXPECT_STREQ(prefix, "pc[0]: ");
    EXPECT_EQ(processorNumber(), 0);
}

TEST_F(LogTest, NullFormatReturnsZeroAndLeavesAHeldFragment) {
    const char *noFormat = nullptr;
    EXPECT_EQ(LogInfo("os", "abc"), 20);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
    EXPECT_EQ(LogCrit("os", noFormat), 0);
    EXPECT_EQ(LogPrintf(3, "log", noFormat), 0);
#pragma GCC diagnostic pop
    EXPECT_TRUE(lines().empty());
    LogInfo("os", "def\n");
    EXPECT_EQ(lines(), Lines{"INFO  pc[0]: os: abcdef\n"});
}

// ---- Joining -------------------------------------------------------------

TEST_F(LogTest, FragmentsKeepTheLevelAndSourceOfTheFirst) {
    EXPECT_EQ(LogPrintf(6, "os", "abc"), 20);
    EXPECT_TRUE(lines().empty());
    EXPECT_EQ(LogPrintf(3, "log", "def\n"), 22);
    LogCrit(nullptr, "ghi\n");
    EXPECT_EQ(lines(), (Lines{"INFO  pc[0]: os: abcdef\n", "CRIT  pc[0]: ghi\n"}));
}

TEST_F(LogTest, FragmentOfAnotherThreadIsJoinedInArrivalOrder) {
    std::thread other([] { LogWarn("os", "from other, "); });
    other.join();
    LogDebug("log", "then main\n");
    EXPECT_EQ(lines(), Lines{"WARN  pc[0]: os: from other, then main\n"});
}

TEST_F(LogTest, NewlineInTheMiddleEndsTheLineWhole) {
    LogInfo("os", "first\nsecond");
    LogInfo("os", "next\n");
    EXPECT_EQ(lines(), (Lines{"INFO  pc[0]: os: first\nsecond", "INFO  pc[0]: os: next\n"}));
}

// ---- Limits --------------------------------------------------------------

// A text of `count` copies of `c`.
std::string filled(size_t count, char c) {
    return std::string(count, c);
}

TEST_F(LogTest, LineIsCutAt511AndLosesANewlineBeyondIt) {
    struct CutCase {
        size_t textLength; // characters before the newline
        size_t kept;       // characters of the line that goes on
        bool newline;      // whether it still ends in its newline
    };
    // clang-format off
    /* TextLength, Kept, Newline */
    const std::vector<CutCase> cases = {
        {0,    14,  true},
        {497,  511, true},   // 13 + 497 + 1 = 511: fits exactly
        {498,  511, false},  // one more: the newline is cut off
        {600,  511, false},
        {1009, 511, false},  // the newline is the 1023rd character: still seen
    };
    // clang-format on
    for (const CutCase &c : cases) {
        SCOPED_TRACE(c.textLength);
        const std::string text = filled(c.textLength, 'y') + "\n";
        EXPECT_EQ(LogLevelPrintf(6, "%s", text.c_str()), static_cast<int>(13 + text.size()));
        const std::string expected = ("INFO  pc[0]: " + text).substr(0, c.kept);
        const Lines got            = lines();
        ASSERT_EQ(got.size(), 1u);
        EXPECT_EQ(got[0], expected);
        EXPECT_EQ(got[0].back() == '\n', c.newline);
        // The hold is empty again: the next line has a prefix of its own.
        LogLevelPrintf(3, "after\n");
        EXPECT_EQ(lines(), Lines{"ERROR pc[0]: after\n"});
    }
}

TEST_F(LogTest, NewlineBeyond1023IsLostAndTheLineWaits) {
    // 13 + 1010 characters fill the stack line; the newline is the 1024th.
    const std::string text = filled(1010, 'x') + "\n";
    EXPECT_EQ(LogLevelPrintf(6, "%s", text.c_str()), 13 + 1011);
    EXPECT_TRUE(lines().empty());
    LogError("log", "end\n");
    const std::string held = ("INFO  pc[0]: " + text).substr(0, 511);
    EXPECT_EQ(lines(), Lines{held});
}

TEST_F(LogTest, ResultCountsTheWholeTextThoughLittleIsKept) {
    const std::string text = filled(2000, 'q');
    EXPECT_EQ(LogInfo("os", "%s", text.c_str()), 17 + 2000);
    EXPECT_EQ(LogInfo("os", "\n"), 18);
    const Lines got = lines();
    ASSERT_EQ(got.size(), 1u);
    EXPECT_EQ(got[0], "INFO  pc[0]: os: " + filled(511 - 17, 'q'));
}

TEST_F(LogTest, JoinedLineStopsGrowingAt511) {
    for (int i = 0; i < 7; ++i)
        LogInfo("os", "%s", filled(100, static_cast<char>('a' + i)).c_str());
    LogInfo("os", "tail\n");
    std::string expected = "INFO  pc[0]: os: ";
    for (int i = 0; i < 5; ++i)
        expected += filled(100, static_cast<char>('a' + i));
    expected.resize(511);
    EXPECT_EQ(lines(), Lines{expected});
}

// ---- Repeats -------------------------------------------------------------

const char *reportOf(int count) {
    static std::string report;
    report = "DEBUG pc[0]: ...last line repeated " + std::to_string(count) + " times\n";
    return report.c_str();
}

TEST_F(LogTest, RepeatsAreReportedBeforeTheNextDifferentLine) {
    LogSetSpewFilter(1);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(LogInfo("os", "A\n"), 19);
    LogInfo("os", "B\n");
    LogInfo("os", "B\n");
    EXPECT_EQ(lines(), (Lines{"INFO  pc[0]: os: A\n", reportOf(3), "INFO  pc[0]: os: B\n"}));
    // A single line between others gives no report.
    LogInfo("os", "C\n");
    LogInfo("os", "D\n");
    EXPECT_EQ(lines(), (Lines{reportOf(2), "INFO  pc[0]: os: C\n", "INFO  pc[0]: os: D\n"}));
}

TEST_F(LogTest, WithoutSuppressionEveryRepeatGoesOn) {
    for (int i = 0; i < 3; ++i)
        LogInfo("os", "A\n");
    LogInfo("os", "B\n");
    EXPECT_EQ(lines(), (Lines{"INFO  pc[0]: os: A\n", "INFO  pc[0]: os: A\n",
                              "INFO  pc[0]: os: A\n", "INFO  pc[0]: os: B\n"}));
}

TEST_F(LogTest, RepeatCountsTheWholeLine) {
    LogSetSpewFilter(1);
    LogInfo("os", "same\n");
    LogWarn("os", "same\n");
    LogWarn("log", "same\n");
    LogWarn(nullptr, "same\n");
    // A joined line equal to the last one is a repeat as well.
    LogWarn(nullptr, "sa");
    LogDebug("os", "me\n");
    LogInfo("os", "other\n");
    EXPECT_EQ(lines(), (Lines{"INFO  pc[0]: os: same\n", "WARN  pc[0]: os: same\n",
                              "WARN  pc[0]: log: same\n", "WARN  pc[0]: same\n", reportOf(2),
                              "INFO  pc[0]: os: other\n"}));
}

TEST_F(LogTest, CountWaitsWhileSuppressionIsOff) {
    LogSetSpewFilter(1);
    LogInfo("os", "A\n");
    LogInfo("os", "A\n");
    LogSetSpewFilter(0);
    LogInfo("os", "B\n");
    LogInfo("os", "B\n");
    LogSetSpewFilter(1);
    LogInfo("os", "C\n");
    EXPECT_EQ(lines(), (Lines{"INFO  pc[0]: os: A\n", "INFO  pc[0]: os: B\n",
                              "INFO  pc[0]: os: B\n", reportOf(2), "INFO  pc[0]: os: C\n"}));
}

TEST_F(LogTest, ReportPassesTheFilters) {
    LogSetSpewFilter(1);
    LogShowAdd("keep");
    LogInfo("os", "keep A\n");
    LogInfo("os", "keep A\n");
    LogInfo("os", "keep B\n");
    EXPECT_EQ(lines(), (Lines{"INFO  pc[0]: os: keep A\n", "INFO  pc[0]: os: keep B\n"}));
    LogShowRemove("*");

    LogCullAdd("DEBUG");
    LogInfo("os", "X\n");
    LogInfo("os", "X\n");
    LogInfo("os", "Y\n");
    EXPECT_EQ(lines(), (Lines{"INFO  pc[0]: os: X\n", "INFO  pc[0]: os: Y\n"}));
    LogCullRemove("*");

    LogShowAdd("repeated");
    LogInfo("os", "P\n");
    LogInfo("os", "P\n");
    LogInfo("os", "Q\n");
    EXPECT_EQ(lines(), Lines{reportOf(2)});
}

// With the lock that the OS layer puts in place (recursive), a line logged on
// the path of a repeat report, with the lock held, gets in and stands as a
// line of its own between the report and the new line.
Lines *nestedSeen = nullptr;
void logFromInsideTheQueue(const char *line, int) {
    nestedSeen->emplace_back(line);
    if (std::strstr(line, "repeated") != nullptr)
        LogCrit("os", "nested\n");
}

TEST_F(LogTest, RecursiveLockLetsALineInFromTheReportPath) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    LogLineLockRecreate(&attributes);
    pthread_mutexattr_destroy(&attributes);

    Lines seen;
    nestedSeen    = &seen;
    auto previous = LogEnqueueObserverSet(logFromInsideTheQueue);
    LogSetSpewFilter(1);
    LogInfo("os", "A\n");
    LogInfo("os", "A\n");
    LogInfo("os", "B\n");
    LogEnqueueObserverSet(previous);
    LogLineLockRecreate(nullptr);
    EXPECT_EQ(seen, (Lines{"INFO  pc[0]: os: A\n", reportOf(2), "CRIT  pc[0]: os: nested\n",
                           "INFO  pc[0]: os: B\n"}));
}

// ---- The clock's failure reports -----------------------------------------

ClockStart failOpen() {
    return ClockStart::openFailed;
}
ClockStart failMap() {
    return ClockStart::mapFailed;
}
uint32_t zero() {
    return 0;
}

TEST_F(LogTest, ClockFailuresAreReportedAtCritUnderOs) {
    const ClockSource noDevice{failOpen, zero, zero, zero};
    const ClockSource noMapping{failMap, zero, zero, zero};
    ClockSourceSet(&noDevice);
    EXPECT_EQ(ClockMillis(), 0u);
    EXPECT_EQ(ClockSeconds(), 0u); // tries again, and reports again
    ClockSourceSet(&noMapping);
    EXPECT_EQ(ClockTicks(), 0u);
    ClockSourceSet(nullptr);
    EXPECT_EQ(lines(), (Lines{"CRIT  pc[0]: os: init_rtcp open /dev/mem failed\n",
                              "CRIT  pc[0]: os: init_rtcp open /dev/mem failed\n",
                              "CRIT  pc[0]: os: init_rtcp mmap failed\n"}));
}

// ---- Time stamp ----------------------------------------------------------

timeval fixedNow{};
void fixedTimeOfDay(timeval *now) {
    *now = fixedNow;
}

class LogTimeStampTest : public LogTest {
  protected:
    void SetUp() override {
        LogTest::SetUp();
        previous_ = LogTimeOfDaySet(fixedTimeOfDay);
        // A zone far from UTC: the stamp must not follow it.
        const char *tz = std::getenv("TZ");
        savedTz_       = tz != nullptr ? tz : "";
        hadTz_         = tz != nullptr;
        setenv("TZ", "XST-9", 1);
        tzset();
    }
    void TearDown() override {
        if (hadTz_)
            setenv("TZ", savedTz_.c_str(), 1);
        else
            unsetenv("TZ");
        tzset();
        LogTimeOfDaySet(previous_);
        LogSetFormat(0);
        LogTest::TearDown();
    }

  private:
    LogTimeOfDay previous_ = nullptr;
    std::string savedTz_;
    bool hadTz_ = false;
};

TEST_F(LogTimeStampTest, FormBitsChooseDateAndTime) {
    struct StampCase {
        long seconds;
        long micros;
        uint32_t format;
        const char *stamp;
    };
    // clang-format off
    /* Seconds, Microseconds, Format word, Stamp */
    const std::vector<StampCase> cases = {
        {1700000000, 987654, 0,                                  ""},
        {1700000000, 987654, LOG_FORMAT_LEVEL | LOG_FORMAT_PROC, ""},
        {1700000000, 987654, LOG_FORMAT_DATE,                    "2023-11-14 "},
        {1700000000, 987654, LOG_FORMAT_TIME,                    " 22:13:20.987 "},
        {1700000000, 987654, LOG_FORMAT_DATE | LOG_FORMAT_TIME,  "2023-11-14 22:13:20.987 "},
        {1700000000, 987654, 15,                                 "2023-11-14 22:13:20.987 "},
        {951782400,  5000,   LOG_FORMAT_DATE | LOG_FORMAT_TIME,  "2000-02-29 00:00:00.005 "},
        {0,          999,    LOG_FORMAT_DATE | LOG_FORMAT_TIME,  "1970-01-01 00:00:00.000 "},
        {2147483647, 999999, LOG_FORMAT_TIME,                    " 03:14:07.999 "},
    };
    // clang-format on
    for (const StampCase &c : cases) {
        SCOPED_TRACE(c.stamp);
        fixedNow.tv_sec  = static_cast<time_t>(c.seconds);
        fixedNow.tv_usec = static_cast<suseconds_t>(c.micros);
        LogSetFormat(c.format);
        char buffer[LOG_TIME_STAMP_SIZE];
        std::memset(buffer, 'x', sizeof buffer);
        EXPECT_EQ(LogTimeStamp(buffer), static_cast<int>(std::strlen(c.stamp)));
        EXPECT_STREQ(buffer, c.stamp);
    }
}

} // namespace
