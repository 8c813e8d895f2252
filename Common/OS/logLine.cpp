// The log entry: front doors, line assembly with joining of fragments, repeat
// suppression and the time stamp of printed lines.
#include "Common/OS/log.h"

#include "Common/OS/logInternal.h"
#include "Common/OS/logSeam.h"
#include "Common/OS/osAssert.h"

#include <array>
#include <atomic>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <pthread.h>
#include <string_view>

namespace {

// Level words, six characters each, numbered like the syslog severities.
struct LogLevelRow {
    int32_t level;    // 0 (most severe) to 7
    const char *word; // exactly six characters, blank-padded
};

// clang-format off
/* Level, Word */
constexpr std::array<LogLevelRow, 8> logLevelTable{{
    {0, "CRIT  "},
    {1, "CRIT  "},
    {2, "CRIT  "},
    {3, "ERROR "},
    {4, "WARN  "},
    {5, "INFO  "},
    {6, "INFO  "},
    {7, "DEBUG "},
}};
// clang-format on

constexpr int logLevelWordLength  = 6;
constexpr int32_t logLevelLowest  = 0;
constexpr int32_t logLevelHighest = 7;

constexpr bool logLevelTableIsSound() {
    for (size_t i = 0; i < logLevelTable.size(); ++i) {
        if (logLevelTable[i].level != static_cast<int32_t>(i))
            return false;
        if (std::string_view(logLevelTable[i].word).size() != logLevelWordLength)
            return false;
    }
    return logLevelTable.front().level == logLevelLowest &&
           logLevelTable.back().level == logLevelHighest;
}
static_assert(logLevelTableIsSound(), "one six-character word per level 0..7, in order");

// The one bounded lookup of the level table; the level is already in range.
const LogLevelRow &logLevelRow(int32_t level) {
    OS_ASSERT(level >= logLevelLowest && level <= logLevelHighest);
    return logLevelTable[static_cast<size_t>(level)];
}

// The report that stands for suppressed repeats: level word, processor
// column, this text. 64 characters hold it with any 32-bit count.
constexpr int logReportSize = 64;

// Line state shared by all threads, guarded by logLineLock. logHoldLength is
// the length of logHoldLine, kept to spare a scan of it on every call.
char logHoldLine[LOG_HOLD_SIZE];
int logHoldLength = 0;
char logLastLine[LOG_HOLD_SIZE];
int32_t logRepeatCount = 0;

// Static zero state until the OS layer re-creates it as recursive with
// priority inheritance (LogLineLockRecreate).
pthread_mutex_t logLineLock = PTHREAD_MUTEX_INITIALIZER;

// Holds logLineLock for a scope. The filters may print while the lock is held
// (a repeat report going down the path), and printing is a cancellation
// point: the destructor releases the lock when a cancelled thread unwinds.
class LogLineGuard {
  public:
    LogLineGuard() { pthread_mutex_lock(&logLineLock); }
    ~LogLineGuard() { pthread_mutex_unlock(&logLineLock); }
    LogLineGuard(const LogLineGuard &)            = delete;
    LogLineGuard &operator=(const LogLineGuard &) = delete;
};

void logRealTimeOfDay(timeval *now) {
    gettimeofday(now, nullptr);
}

std::atomic<LogTimeOfDay> logTimeOfDay{nullptr};

// Writes the source word "%s: " at `at` of a line of LOG_LINE_SIZE that
// already holds `at` characters; returns the new length. A source too long
// for the line is cut like any text.
int logSourceWord(char *line, int at, const char *source) {
    const size_t room = static_cast<size_t>(LOG_LINE_SIZE - 1 - at);
    size_t length     = strnlen(source, room);
    std::memcpy(line + at, source, length);
    at += static_cast<int>(length);
    for (char c : {':', ' '}) {
        if (at < LOG_LINE_SIZE - 1)
            line[at++] = c;
    }
    line[at] = '\0';
    return at;
}

// Adds this call's line to the held line: the whole line when nothing is
// held, else only the text behind its prefix, so that a joined line keeps the
// level and source of its first fragment. What passes 511 characters is cut.
//
// A newline that falls beyond the cut is lost with the rest: the line still
// goes on (the caller finds the newline in its own text) but ends without
// one, exactly as it was cut. It is not re-terminated here: the filters and
// the queue see the characters that were logged, and a record without a final
// newline (also a text with its newline in the middle) is the writer's to
// print as a line of its own.
void logHoldAppend(const char *line, int prefixLength, int textLength) {
    const char *from = line;
    int count        = prefixLength + textLength;
    if (logHoldLength > 0) {
        from += prefixLength;
        count = textLength;
    }
    const int room = LOG_HOLD_SIZE - 1 - logHoldLength;
    if (count > room)
        count = room;
    std::memcpy(logHoldLine + logHoldLength, from, static_cast<size_t>(count));
    logHoldLength += count;
    logHoldLine[logHoldLength] = '\0';
}

} // namespace

void LogLineLockRecreate(const pthread_mutexattr_t *attributes) {
    pthread_mutex_destroy(&logLineLock);
    pthread_mutex_init(&logLineLock, attributes);
}

LogTimeOfDay LogTimeOfDaySet(LogTimeOfDay source) {
    return logTimeOfDay.exchange(source, std::memory_order_acq_rel);
}

extern "C" {

int32_t processorNumber(void) {
    return 0;
}

int LogLevelWord(int32_t level, char *buffer) {
    if (level < logLevelLowest)
        level = logLevelLowest;
    if (level > logLevelHighest)
        level = logLevelHighest;
    std::memcpy(buffer, logLevelRow(level).word, logLevelWordLength + 1);
    return logLevelWordLength;
}

int LogProcPrefix(char *buffer) {
    // "pc[%x]: " by hand: this runs for every line, and a hexadecimal number
    // needs no formatter.
    static constexpr char hexDigits[] = "0123456789abcdef";
    const uint32_t number             = static_cast<uint32_t>(processorNumber());
    int length                        = 0;
    buffer[length++]                  = 'p';
    buffer[length++]                  = 'c';
    buffer[length++]                  = '[';
    int shift                         = 28;
    while (shift > 0 && (number >> shift) == 0)
        shift -= 4;
    for (; shift >= 0; shift -= 4)
        buffer[length++] = hexDigits[(number >> shift) & 0xfu];
    buffer[length++] = ']';
    buffer[length++] = ':';
    buffer[length++] = ' ';
    buffer[length]   = '\0';
    return length;
}

int LogVPrintf(va_list arguments, int32_t level, const char *source, const char *format) {
    if (format == nullptr)
        return 0;
    // Out of range goes to the least severe level, unlike LogLevelWord alone.
    if (level < logLevelLowest || level > logLevelHighest)
        level = logLevelHighest;

    // Built on the caller's stack without a lock.
    char line[LOG_LINE_SIZE];
    int prefixLength = LogLevelWord(level, line);
    prefixLength += LogProcPrefix(line + prefixLength);
    if (source != nullptr)
        prefixLength = logSourceWord(line, prefixLength, source);

    const int room = LOG_LINE_SIZE - prefixLength;
    int textResult = vsnprintf(line + prefixLength, static_cast<size_t>(room), format, arguments);
    if (textResult < 0) {
        // An output error of the formatter: the text counts as empty.
        line[prefixLength] = '\0';
        textResult         = 0;
    }
    const int total = textResult > INT_MAX - prefixLength ? INT_MAX : prefixLength + textResult;
    const int textLength = textResult < room - 1 ? textResult : room - 1;

    int lineLength = 0;
    int repeat     = 0;
    {
        LogLineGuard guard;
        logHoldAppend(line, prefixLength, textLength);
        // Only this call's own text decides whether the line is finished.
        if (std::memchr(line + prefixLength, '\n', static_cast<size_t>(textLength)) == nullptr)
            return total;

        // The finished line moves to the stack, and the hold is emptied,
        // before the repeat check: a line logged on this thread from inside
        // the path of a repeat report (the recursive lock lets it in) starts
        // a line of its own instead of joining this one.
        lineLength = logHoldLength;
        std::memcpy(line, logHoldLine, static_cast<size_t>(lineLength) + 1);
        logHoldLength  = 0;
        logHoldLine[0] = '\0';
        repeat         = LogCheckRepeat(line);
        std::memcpy(logLastLine, line, static_cast<size_t>(lineLength) + 1);
    }
    if (repeat == 0)
        LogFilterLine(line, lineLength);
    return total;
}

int LogCheckRepeat(const char *line) {
    if (LogGetSpewFilter() == 0)
        return 0;
    if (std::strncmp(logLastLine, line, LOG_HOLD_SIZE) == 0) {
        if (logRepeatCount < INT32_MAX)
            ++logRepeatCount;
        return 1;
    }
    if (logRepeatCount > 0) {
        // The count includes the first showing of the line. It is cleared
        // before the report goes on, so that a line logged on the way down
        // doesn't report the same repeats again.
        const int32_t shown = logRepeatCount < INT32_MAX ? logRepeatCount + 1 : INT32_MAX;
        logRepeatCount      = 0;
        char report[logReportSize];
        int length = LogLevelWord(logLevelHighest, report);
        length += LogProcPrefix(report + length);
        length += snprintf(report + length, sizeof report - static_cast<size_t>(length),
                           "...last line repeated %d times\n", static_cast<int>(shown));
        // Still under the lock, so the report goes ahead of the new line.
        LogFilterLine(report, length);
    }
    return 0;
}

int LogTimeStamp(char *buffer) {
    buffer[0]             = '\0';
    int length            = 0;
    const uint32_t format = LogGetFormat();
    // The writer asks for each line: without a prefix the clock isn't read.
    if ((format & (LOG_FORMAT_DATE | LOG_FORMAT_TIME)) == 0)
        return 0;

    timeval now{};
    LogTimeOfDay source = logTimeOfDay.load(std::memory_order_acquire);
    (source != nullptr ? source : logRealTimeOfDay)(&now);
    const time_t seconds = now.tv_sec;
    tm utc{};
    gmtime_r(&seconds, &utc);

    constexpr size_t pieceLimit = 28;
    if ((format & LOG_FORMAT_DATE) != 0)
        length += static_cast<int>(strftime(buffer + length, pieceLimit, "%F", &utc));
    if ((format & LOG_FORMAT_TIME) != 0) {
        length += static_cast<int>(strftime(buffer + length, pieceLimit, " %H:%M:%S", &utc));
        // Milliseconds in three digits (the precision pads with zeros).
        const size_t left = static_cast<size_t>(LOG_TIME_STAMP_SIZE - 1 - length);
        const int written =
            snprintf(buffer + length, left, ".%.3u", static_cast<unsigned>(now.tv_usec / 1000));
        if (written > 0)
            length += written < static_cast<int>(left) ? written : static_cast<int>(left) - 1;
    }
    if (length == 0)
        return 0;
    buffer[length++] = ' ';
    buffer[length]   = '\0';
    return length;
}

int LogPrintf(int32_t level, const char *source, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int result = LogVPrintf(arguments, level, source, format);
    va_end(arguments);
    return result;
}

int LogLevelPrintf(int32_t level, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int result = LogVPrintf(arguments, level, nullptr, format);
    va_end(arguments);
    return result;
}

// The front doors with their level built in.
#define LOG_FRONT_DOOR(name, level)                                                                \
    int name(const char *source, const char *format, ...) {                                        \
        va_list arguments;                                                                         \
        va_start(arguments, format);                                                               \
        const int result = LogVPrintf(arguments, level, source, format);                           \
        va_end(arguments);                                                                         \
        return result;                                                                             \
    }

LOG_FRONT_DOOR(LogDebug, 7)
LOG_FRONT_DOOR(LogInfo, 6)
LOG_FRONT_DOOR(LogWarn, 4)
LOG_FRONT_DOOR(LogError, 3)
LOG_FRONT_DOOR(LogCrit, 0)

#undef LOG_FRONT_DOOR

} // extern "C"
