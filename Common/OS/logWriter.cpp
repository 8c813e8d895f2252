// The consumer side of the log ring: the task "logw" takes the lines out and
// prints them, and passes them on to syslog when forwarding is on.
#include "Common/OS/log.h"

#include "Common/OS/logRing.h"
#include "Common/OS/logSeam.h"
#include "Common/OS/osAssert.h"
#include "Common/OS/osLocks.h"

#include <cstdio>
#include <cstring>
#include <sched.h>
#include <syslog.h>

namespace {

constexpr const char *logSource = "log";

// Columns of a record: the level word ends at 6, the processor column at 13.
constexpr size_t logLevelEnd = 6;
constexpr size_t logProcEnd  = 13;

void logRealForward(int priority, const char *text) {
    syslog(priority, "%s", text);
}

std::atomic<FILE *> logWriterStream{nullptr};
std::atomic<LogForwarder> logForwarder{nullptr};

// LogWriterSync waits here for a drain that left the ring empty.
pthread_mutex_t logSyncLock   = PTHREAD_MUTEX_INITIALIZER;
pthread_cond_t logSyncDrained = PTHREAD_COND_INITIALIZER;

bool logRingEmpty() {
    return logHead.load(std::memory_order_acquire) == logTail.load(std::memory_order_acquire);
}

// Prints columns [from, to) of a record of `length` characters, cutting it in
// place: the character at `to` is saved, replaced by a terminator for the
// print, and put back. A record shorter than the columns prints what it has.
void logPutColumns(char *record, size_t length, size_t from, size_t to, FILE *out) {
    if (length <= from)
        return;
    if (length <= to) {
        std::fputs(record + from, out);
        return;
    }
    const char saved = record[to];
    record[to]       = '\0';
    std::fputs(record + from, out);
    record[to] = saved;
}

void logPrintRecord(char *record, FILE *out) {
    char stamp[LOG_TIME_STAMP_SIZE];
    if (LogTimeStamp(stamp) > 0)
        std::fputs(stamp, out);
    const size_t length = std::strlen(record);
    if ((LogGetFormat() & LOG_FORMAT_LEVEL) != 0)
        logPutColumns(record, length, 0, logLevelEnd, out);
    // The processor column is printed whatever the "proc" bit says; the log
    // front keeps that bit without effect on the output.
    logPutColumns(record, length, logLevelEnd, logProcEnd, out);
    if (length > logProcEnd)
        std::fputs(record + logProcEnd, out);
    if (LogGetForward() != 0) {
        LogForwarder forward = logForwarder.load(std::memory_order_acquire);
        (forward != nullptr ? forward : logRealForward)(LogLevelFromLetter(record[0]) | LOG_UUCP,
                                                        length > logLevelEnd ? record + logLevelEnd
                                                                             : "");
    }
}

// After a drain the writer yields a few times before it sleeps: a line that
// comes meanwhile, as the next line of a burst does, finds it awake and costs
// its producer no wake-up through the kernel. Whether a line came.
bool logLingerBrought() {
    constexpr int logLingerYields = 4;
    for (int i = 0; i < logLingerYields; ++i) {
        sched_yield();
        if (!logRingEmpty())
            return true;
    }
    return false;
}

// The producers' semaphore, free; its result isn't looked at.
void logSemCreate() {
    Semaphore *sem = nullptr;
    sm_create("logw", 1, 2, &sem);
    logSem.store(sem, std::memory_order_release);
}

void logWriterEntry(uint32_t, uint32_t, uint32_t, uint32_t) {
    LogWriterTask();
}

} // namespace

FILE *LogWriterStreamSet(FILE *stream) {
    return logWriterStream.exchange(stream, std::memory_order_acq_rel);
}

LogForwarder LogForwarderSet(LogForwarder forwarder) {
    return logForwarder.exchange(forwarder, std::memory_order_acq_rel);
}

void LogRingHold() {
    OS_ASSERT(logTask.load() == nullptr);
    if (logSem.load() == nullptr)
        logSemCreate();
    OS_ASSERT(logSem.load() != nullptr);
    logWriterRuns.store(true, std::memory_order_relaxed);
}

extern "C" void LogDrain(void) {
    FILE *out = logWriterStream.load(std::memory_order_acquire);
    if (out == nullptr)
        out = stdout;
    for (;;) {
        const int32_t snapshot = logTail.load(std::memory_order_acquire);
        const int32_t head     = logHead.load(std::memory_order_relaxed);
        if (head == snapshot)
            return;
        char *record = logRing + head;
        int32_t next = head + static_cast<int32_t>(std::strlen(record)) + 1;
        if (next != snapshot && logRing[next] == '\0') {
            if (next < snapshot)
                std::fprintf(out, "syslog: empty string @ 0x%x\n",
                             static_cast<unsigned>(reinterpret_cast<uintptr_t>(logRing + next)));
            else
                next = 0; // the zero fill of a wrap: the ring goes on at its start
        }
        logPrintRecord(record, out);
        // Only now may a producer reuse the record's bytes.
        logHead.store(next, std::memory_order_release);
    }
}

extern "C" void LogWriterTask(void) {
    for (;;) {
        uint32_t received = 0;
        ev_receive(0xffff, EV_ANY, 0, &received);
        do {
            // Before the drain reads the tail: see LogEnqueue.
            logWakePending.exchange(false, std::memory_order_acq_rel);
            LogDrain();
        } while (logLingerBrought());
        OsLockHold hold(&logSyncLock);
        pthread_cond_broadcast(&logSyncDrained);
    }
}

extern "C" void LogWriterStart(void) {
    OS_ASSERT(logTask.load() == nullptr); // the writer starts once
    logRing[0] = '\0';
    logHead.store(0, std::memory_order_relaxed);
    logTail.store(0, std::memory_order_relaxed);
    logSemCreate(); // a failure leaves it null: lines are then dropped

    Tcb *task = nullptr;
    if (t_create("logw", 0, 2048, 0, 0, &task) != 0) {
        LogCrit(logSource, "can't create log writer task\n");
        return;
    }
    logTask.store(task, std::memory_order_release);
    logWriterRuns.store(true, std::memory_order_relaxed);
    if (t_start(task, 0, logWriterEntry, nullptr) != 0) {
        logWriterRuns.store(false, std::memory_order_relaxed);
        LogCrit(logSource, "can't start log writer task\n");
    }
}

// Waits for a drain that leaves the ring empty; the writer broadcasts after
// each drain. The wait is a cancellation point: the hold's destructor
// releases the lock that the cancelled wait takes back.
extern "C" void LogWriterSync(void) {
    Tcb *writer = logTask.load(std::memory_order_acquire);
    if (writer != nullptr && logWriterRuns.load(std::memory_order_relaxed)) {
        // Every line queued has woken the writer already; this send only
        // makes sure of a drain to come.
        ev_send(writer, logWakeBit);
        OsLockHold hold(&logSyncLock);
        while (!logRingEmpty())
            pthread_cond_wait(&logSyncDrained, &logSyncLock);
    }
    std::fflush(stdout);
}
