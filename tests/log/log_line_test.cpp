// Log entry and filters: exact lines, joining of fragments, repeat suppression and its report,
// show and cull filters, the 511 and 1023 character limits, the clock's failure reports and the
// time stamp.
#include "logTestSupport.h"

#include "Common/OS/clockSource.h"
#include "Common/OS/logInternal.h"
#include "Common/OS/os.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <pthread.h>
#include <thread>
#include <unistd.h>

namespace {

using logtest::Lines;
using logtest::LogTest;

// A call of LogPrintf, or with a null text a switch of repeat suppression to
// `level`.
struct Call {
    int32_t level;
    const char *source;
    const char *text;
};
constexpr Call spewOn{1, nullptr, nullptr};
constexpr Call spewOff{0, nullptr, nullptr};

struct Scenario {
    const char *what;
    std::vector<const char *> show, cull;
    std::vector<Call> calls;
    Lines expected; // lines that reach the queue, in order
};

const char *const rep2 = "DEBUG pc[0]: ...last line repeated 2 times\n";
const char *const rep3 = "DEBUG pc[0]: ...last line repeated 3 times\n";
const char *const disk = "disk ABC full\n"; // logged at level 3 under "os"

// clang-format off
/* What, Show filters, Cull filters, Calls, Lines that reach the queue */
const std::vector<Scenario> scenarios = {
    {"level words", {}, {},
     {{0, "os", "a\n"}, {1, "log", "b\n"}, {3, "os", "c\n"}, {4, "os", "d\n"}, {5, "system_pthread", "e\n"},
      {6, "os", "f\n"}, {7, "os", "g\n"}, {9, "os", "h\n"}, {-1, "os", "i\n"}, {2, nullptr, "j\n"}},
     {"CRIT  pc[0]: os: a\n", "CRIT  pc[0]: log: b\n", "ERROR pc[0]: os: c\n", "WARN  pc[0]: os: d\n",
      "INFO  pc[0]: system_pthread: e\n", "INFO  pc[0]: os: f\n", "DEBUG pc[0]: os: g\n",
      "DEBUG pc[0]: os: h\n", "DEBUG pc[0]: os: i\n", "CRIT  pc[0]: j\n"}},
    {"join keeps the first prefix", {}, {},
     {{6, "os", "abc"}, {3, "log", "def\n"}, {0, nullptr, "ghi\n"}},
     {"INFO  pc[0]: os: abcdef\n", "CRIT  pc[0]: ghi\n"}},
    {"newline in the middle", {}, {},
     {{6, "os", "one\ntwo"}, {6, "os", "three\n"}},
     {"INFO  pc[0]: os: one\ntwo", "INFO  pc[0]: os: three\n"}},
    {"repeats reported before the next line", {}, {},
     {spewOn, {6, "os", "A\n"}, {6, "os", "A\n"}, {6, "os", "A\n"}, {6, "os", "B\n"}, {6, "os", "C\n"}},
     {"INFO  pc[0]: os: A\n", rep3, "INFO  pc[0]: os: B\n", "INFO  pc[0]: os: C\n"}},
    {"repeat is the whole line", {}, {},
     {spewOn, {6, "os", "s\n"}, {4, "os", "s\n"}, {4, "log", "s\n"}, {4, nullptr, "s"}, {7, "os", "\n"},
      {4, nullptr, "s\n"}, {6, "os", "t\n"}},
     {"INFO  pc[0]: os: s\n", "WARN  pc[0]: os: s\n", "WARN  pc[0]: log: s\n", "WARN  pc[0]: s\n",
      rep2, "INFO  pc[0]: os: t\n"}},
    {"count waits while off", {}, {},
     {spewOn, {6, "os", "A\n"}, {6, "os", "A\n"}, spewOff, {6, "os", "B\n"}, {6, "os", "B\n"}, spewOn,
      {6, "os", "C\n"}},
     {"INFO  pc[0]: os: A\n", "INFO  pc[0]: os: B\n", "INFO  pc[0]: os: B\n", rep2, "INFO  pc[0]: os: C\n"}},
    {"report culled", {}, {"DEBUG"},
     {spewOn, {6, "os", "A\n"}, {6, "os", "A\n"}, {6, "os", "B\n"}},
     {"INFO  pc[0]: os: A\n", "INFO  pc[0]: os: B\n"}},
    {"only the report shows", {"repeated"}, {},
     {spewOn, {6, "os", "A\n"}, {6, "os", "A\n"}, {6, "os", "B\n"}}, {rep2}},
    {"show ERROR", {"ERROR"}, {},
     {{0, "os", "a\n"}, {3, "os", "b\n"}, {4, "os", "c\n"}, {6, "os", "ERROR d\n"}, {7, "os", "error e\n"}},
     {"ERROR pc[0]: os: b\n", "INFO  pc[0]: os: ERROR d\n"}},
    {"show lacks",         {"net"},         {},       {{3, "os", disk}}, {}},
    {"second show holds",  {"net", "full"}, {},       {{3, "os", disk}}, {"ERROR pc[0]: os: disk ABC full\n"}},
    {"cull on the source", {},              {"os: "}, {{3, "os", disk}}, {}},
    {"show and cull hold", {"disk"},        {"full"}, {{3, "os", disk}}, {}},
    {"show holds only",    {"disk"},        {"net"},  {{3, "os", disk}}, {"ERROR pc[0]: os: disk ABC full\n"}},
};
// clang-format on

TEST_F(LogTest, ScenariosGiveExactLines) {
    for (const Scenario &s : scenarios) {
        SCOPED_TRACE(s.what);
        for (const char *text : s.show)
            LogShowAdd(text);
        for (const char *text : s.cull)
            LogCullAdd(text);
        for (const Call &c : s.calls) {
            if (c.text == nullptr)
                LogSetSpewFilter(c.level);
            else
                LogPrintf(c.level, c.source, "%s", c.text);
        }
        EXPECT_EQ(lines(), s.expected);
        reset();
        lines();
    }
}

TEST_F(LogTest, ResultsAndLimits) {
    const char *noFormat = nullptr;
    const std::string big(2000, 'q');
    EXPECT_EQ(LogInfo("os", "abc"), 20);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
    EXPECT_EQ(LogCrit("os", noFormat), 0); // changes nothing: the fragment still waits
#pragma GCC diagnostic pop
    EXPECT_EQ(LogInfo("os", "%s", big.c_str()), 17 + 2000);
    EXPECT_EQ(LogInfo("os", "\n"), 18);
    // The joined line stops at 511 characters and loses its newline.
    EXPECT_EQ(lines(), Lines{"INFO  pc[0]: os: abc" + big.substr(0, 511 - 20)});

    // A newline that is the 1024th character of the stack line is lost: the
    // line waits for the next one. As the 1023rd it is seen, though cut at 511.
    EXPECT_EQ(LogLevelPrintf(6, "%s\n", std::string(1010, 'x').c_str()), 13 + 1011);
    EXPECT_TRUE(lines().empty());
    LogLevelPrintf(3, "end\n");
    LogLevelPrintf(6, "%s\n", std::string(1009, 'y').c_str());
    EXPECT_EQ(lines(), (Lines{"INFO  pc[0]: " + std::string(498, 'x'),
                              "INFO  pc[0]: " + std::string(498, 'y')}));

    // Around 511: 13 + 497 + 1 fits with its newline, one more does not.
    for (size_t n : {497u, 498u}) {
        LogLevelPrintf(6, "%s\n", std::string(n, 'z').c_str());
        LogLevelPrintf(3, "after\n");
        const std::string line = "INFO  pc[0]: " + std::string(n, 'z') + "\n";
        EXPECT_EQ(lines(), (Lines{line.substr(0, 511), "ERROR pc[0]: after\n"})) << n;
    }
}

TEST_F(LogTest, FragmentOfAnotherThreadIsJoined) {
    std::thread([] { LogWarn("os", "from other, "); }).join();
    LogDebug("log", "then main\n");
    EXPECT_EQ(lines(), Lines{"WARN  pc[0]: os: from other, then main\n"});
}

// Alone, a level below 0 gives the most severe word (LogVPrintf takes it as 7).
TEST_F(LogTest, LevelWordsClamp) {
    for (const auto &[level, word] :
         {std::pair{INT32_MIN, "CRIT  "}, {-1, "CRIT  "}, {8, "DEBUG "}, {INT32_MAX, "DEBUG "}}) {
        char buffer[8] = "xxxxxxx";
        EXPECT_EQ(LogLevelWord(level, buffer), 6);
        EXPECT_STREQ(buffer, word) << level;
    }
}

// With the lock of the OS layer (recursive), a line logged on the path of a
// repeat report, with the lock held, stands between the report and the line.
void logOnReport(const char *line, int length) {
    logtest::LineRecorder::observe(line, length);
    if (std::strstr(line, "repeated") != nullptr)
        LogCrit("os", "nested\n");
}

TEST_F(LogTest, RecursiveLockLetsALineInFromTheReportPath) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    LogLineLockRecreate(&attributes);
    LogEnqueueObserverSet(logOnReport);
    LogSetSpewFilter(1);
    LogInfo("os", "A\n");
    LogInfo("os", "A\n");
    LogInfo("os", "B\n");
    LogEnqueueObserverSet(logtest::LineRecorder::observe);
    LogLineLockRecreate(nullptr);
    EXPECT_EQ(lines(), (Lines{"INFO  pc[0]: os: A\n", rep2, "CRIT  pc[0]: os: nested\n",
                              "INFO  pc[0]: os: B\n"}));
}

// A thread cancelled while it holds the line lock (its report is on the way
// down, blocked in a cancellation point) leaves the lock free.
int entered[2], never[2];
void blockOnReport(const char *line, int) {
    if (std::strstr(line, "repeated") == nullptr)
        return;
    char c = 1;
    EXPECT_EQ(write(entered[1], &c, 1), 1);
    EXPECT_EQ(read(never[0], &c, 1), 1); // a cancellation point; nothing comes
}

void *logRepeats(void *) {
    LogInfo("os", "A\n");
    LogInfo("os", "A\n");
    LogInfo("os", "B\n");
    return nullptr;
}

TEST_F(LogTest, CancelledThreadReleasesTheLineLock) {
#ifdef LOG_TEST_UNDER_EMULATOR
    GTEST_SKIP() << "the emulator aborts on the unwinding of a cancelled thread";
#endif
    ASSERT_EQ(pipe(entered), 0);
    ASSERT_EQ(pipe(never), 0);
    LogEnqueueObserverSet(blockOnReport);
    LogSetSpewFilter(1);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, nullptr, logRepeats, nullptr), 0);
    char c = 0;
    ASSERT_EQ(read(entered[0], &c, 1), 1);
    pthread_cancel(thread);
    void *result = nullptr;
    pthread_join(thread, &result);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    LogEnqueueObserverSet(logtest::LineRecorder::observe);
    LogInfo("os", "after\n");
    EXPECT_EQ(lines(), Lines{"INFO  pc[0]: os: after\n"});
    for (int fd : {entered[0], entered[1], never[0], never[1]})
        close(fd);
}

uint32_t zero() {
    return 0;
}

TEST_F(LogTest, ClockFailuresAreReportedAtCritUnderOs) {
    const ClockSource noDevice{[] { return ClockStart::openFailed; }, zero, zero, zero};
    const ClockSource noMapping{[] { return ClockStart::mapFailed; }, zero, zero, zero};
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

timeval fixedNow{};

TEST(LogTimeStamp, FormatBitsChooseDateAndTimeInUtc) {
    LogTimeOfDaySet([](timeval *now) { *now = fixedNow; });
    setenv("TZ", "XST-9", 1); // a zone far from UTC, which the stamp ignores
    tzset();
    constexpr uint32_t both = LOG_FORMAT_DATE | LOG_FORMAT_TIME;
    // clang-format off
    /* Seconds, Microseconds, Format word, Stamp */
    const std::vector<std::tuple<long, long, uint32_t, const char *>> cases = {
        {1700000000, 987654, 0,                                  ""},
        {1700000000, 987654, LOG_FORMAT_LEVEL | LOG_FORMAT_PROC, ""},
        {1700000000, 987654, LOG_FORMAT_DATE,                    "2023-11-14 "},
        {1700000000, 987654, LOG_FORMAT_TIME,                    " 22:13:20.987 "},
        {1700000000, 987654, 15,                                 "2023-11-14 22:13:20.987 "},
        {951782400,  5000,   both,                               "2000-02-29 00:00:00.005 "},
        {0,          999,    both,                               "1970-01-01 00:00:00.000 "},
        {2147483647, 999999, both,                               "2038-01-19 03:14:07.999 "},
    };
    // clang-format on
    for (const auto &[seconds, micros, format, stamp] : cases) {
        fixedNow.tv_sec  = static_cast<time_t>(seconds);
        fixedNow.tv_usec = static_cast<suseconds_t>(micros);
        LogSetFormat(format);
        char buffer[LOG_TIME_STAMP_SIZE];
        std::memset(buffer, 'x', sizeof buffer);
        EXPECT_EQ(LogTimeStamp(buffer), static_cast<int>(std::strlen(stamp)));
        EXPECT_STREQ(buffer, stamp);
    }
    LogTimeOfDaySet(nullptr);
}

} // namespace
