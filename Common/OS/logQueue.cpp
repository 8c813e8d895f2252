// The producer side of the log ring: a finished line is copied into the ring
// under logSem, and the writer task is woken.
#include "Common/OS/log.h"

#include "Common/OS/logRing.h"
#include "Common/OS/logSeam.h"

#include <cstdio>
#include <cstring>
#include <string_view>

// The writer's word and the producers' words lie on cache lines of their own,
// so that each side's writes don't evict what the other reads for every line.
constexpr size_t logCacheLine = 64;
char logRing[logRingSize];
alignas(logCacheLine) std::atomic<int32_t> logHead{0};
alignas(logCacheLine) std::atomic<int32_t> logTail{0};
std::atomic<bool> logWakePending{false};
alignas(logCacheLine) std::atomic<Semaphore *> logSem{nullptr};
std::atomic<Tcb *> logTask{nullptr};
std::atomic<bool> logWriterRuns{false};

namespace {

// Stored in place of a line that doesn't fit: 37 bytes with its terminator.
constexpr std::string_view logOverflowLine = "WARN   pc[0]: SYSLOG QUEUE OVERFLOW\n";
constexpr int32_t logOverflowSize          = logOverflowLine.size() + 1;

// Highest severity that is queued.
std::atomic<int32_t> logThreshold{7};

std::atomic<LogEnqueueObserver> logEnqueueObserver{nullptr};

// Where a line of `size` bytes is stored, and what: the line, the overflow
// line, or nothing (size 0).
struct LogPlace {
    int32_t offset;
    const char *text;
    int32_t size;
    bool wrap;     // the ring is zero-filled from the tail to its end first
    bool overflow; // the line doesn't fit and is dropped
};

// A wrap that would land on unread records counts as an overflow, as does a
// line that would end on or beyond the head; that way a full ring never looks
// empty and no record is overwritten before the writer has printed it. The
// head moves only once its record is printed, so the record being printed
// counts as unread. Without a writer nothing is ever read, and a wrap may
// write over the oldest lines.
LogPlace logPlace(const char *line, int32_t size, int32_t head, int32_t tail) {
    if (tail + size > logRingLimit) {
        const bool unreadAtStart = head > tail || size >= head;
        if (logWriterRuns.load(std::memory_order_relaxed) && unreadAtStart)
            return {tail, nullptr, 0, false, true};
        return {0, line, size, true, false};
    }
    if (tail < head && tail + size >= head) {
        const bool overflowLineFits = tail + logOverflowSize < head;
        return {tail, logOverflowLine.data(), overflowLineFits ? logOverflowSize : 0, false, true};
    }
    return {tail, line, size, false, false};
}

} // namespace

LogEnqueueObserver LogEnqueueObserverSet(LogEnqueueObserver observer) {
    return logEnqueueObserver.exchange(observer, std::memory_order_acq_rel);
}

extern "C" int32_t LogLevelFromLetter(char letter) {
    switch (letter) {
    case 'C':
        return 2;
    case 'E':
        return 3;
    case 'W':
        return 4;
    case 'I':
        return 6;
    default:
        return 7;
    }
}

extern "C" void LogSetThreshold(int32_t severity) {
    logThreshold.store(severity, std::memory_order_relaxed);
}

// The length is not used: the line is a terminated string. A line longer than
// a built line can be (only a direct caller can pass one) is cut to
// LOG_LINE_SIZE - 1 characters.
extern "C" void LogEnqueue(const char *line, int length) {
    LogEnqueueObserver observer = logEnqueueObserver.load(std::memory_order_acquire);
    if (observer != nullptr)
        observer(line, length);
    if (line == nullptr || line[0] == '\0')
        return;
    Semaphore *sem = logSem.load(std::memory_order_acquire);
    if (sem == nullptr ||
        LogLevelFromLetter(line[0]) > logThreshold.load(std::memory_order_relaxed))
        return;
    const int32_t size = static_cast<int32_t>(strnlen(line, LOG_LINE_SIZE - 1)) + 1;

    // Only copies under the semaphore: no cancellation point, nothing logged.
    sm_p(sem, 0, 0);
    const int32_t tail   = logTail.load(std::memory_order_relaxed);
    const LogPlace place = logPlace(line, size, logHead.load(std::memory_order_acquire), tail);
    if (place.wrap)
        std::memset(logRing + tail, 0, static_cast<size_t>(logRingSize - tail));
    if (place.size > 0) {
        std::memcpy(logRing + place.offset, place.text, static_cast<size_t>(place.size - 1));
        logRing[place.offset + place.size - 1] = '\0';
        // The bytes are in place before the tail shows them to the writer.
        logTail.store(place.offset + place.size, std::memory_order_release);
    }
    sm_v(sem);

    if (place.overflow)
        std::fputs(logOverflowLine.data(), stderr);
    // The writer is woken also when nothing was stored, but not while a
    // wake-up is still pending. The writer takes the flag back with an
    // exchange before each drain: when that exchange comes after this one, it
    // reads this one's true and so sees this line's tail in the drain; when
    // it comes before, this exchange reads false and wakes the writer.
    if (Tcb *writer = logTask.load(std::memory_order_acquire);
        writer != nullptr && !logWakePending.exchange(true, std::memory_order_acq_rel))
        ev_send(writer, logWakeBit);
}
