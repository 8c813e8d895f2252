// Helpers of the OS-layer tests: a one-way gate over a pipe (its wait is a
// cancellation point, which is what a task blocked at one needs), the lines
// that reach the log queue, and whether this process may use real-time
// scheduling.
#ifndef TESTS_OS_OSTESTSUPPORT_H
#define TESTS_OS_OSTESTSUPPORT_H

#include "log/logTestSupport.h"

#include <gtest/gtest.h>

#include <pthread.h>
#include <unistd.h>

namespace ostest {

using logtest::Lines;

// Each pass lets one wait through; a wait with nothing passed blocks in read.
struct Gate {
    Gate() { EXPECT_EQ(pipe(fd), 0); }
    ~Gate() {
        close(fd[0]);
        close(fd[1]);
    }
    Gate(const Gate &)            = delete;
    Gate &operator=(const Gate &) = delete;
    void pass() {
        static const char c = 1;
        if (write(fd[1], &c, 1) != 1)
            ADD_FAILURE() << "gate write";
    }
    void wait() {
        thread_local char c;
        if (read(fd[0], &c, 1) != 1)
            ADD_FAILURE() << "gate read";
    }
    // Waits for a pass that never comes, to be cancelled there. Gate frames
    // keep no object on the stack: AddressSanitizer would take the guard
    // zones that a cancelled thread's unwinding leaves behind for an overflow.
    void block() {
        thread_local char sink;
        (void)!read(fd[0], &sink, 1);
    }
    int fd[2];
};

// Records the log lines of a scope.
struct LogLines {
    LogLines() {
        LogEnqueueObserverSet(logtest::LineRecorder::observe);
        logtest::LineRecorder::take();
    }
    ~LogLines() { LogEnqueueObserverSet(nullptr); }
    static Lines take() { return logtest::LineRecorder::take(); }
};

// Whether a thread of this process may be given a real-time policy.
inline bool realTimeAllowed() {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    sched_param param{};
    param.sched_priority = 1;
    pthread_attr_setschedpolicy(&attributes, SCHED_RR);
    pthread_attr_setschedparam(&attributes, &param);
    pthread_attr_setinheritsched(&attributes, PTHREAD_EXPLICIT_SCHED);
    pthread_t thread;
    const int created = pthread_create(
        &thread, &attributes, [](void *) -> void * { return nullptr; }, nullptr);
    pthread_attr_destroy(&attributes);
    if (created == 0)
        pthread_join(thread, nullptr);
    return created == 0;
}

} // namespace ostest

// User-mode qemu can't unwind a cancelled thread: cases that need one skip there.
#ifdef OS_TEST_UNDER_EMULATOR
#define OS_SKIP_WITHOUT_CANCEL_UNWIND()                                                            \
    GTEST_SKIP() << "the emulator aborts on the unwinding of a cancelled thread"
#else
#define OS_SKIP_WITHOUT_CANCEL_UNWIND() (void)0
#endif

#endif
