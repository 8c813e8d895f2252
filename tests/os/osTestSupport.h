// Helpers of the OS-layer tests: a one-way gate over a pipe (its wait is a
// cancellation point, where a task can be deleted), tasks started and waited
// out, the lines that reach the log queue, and whether this process may use
// real-time scheduling.
#ifndef TESTS_OS_OSTESTSUPPORT_H
#define TESTS_OS_OSTESTSUPPORT_H

#include "Common/OS/os.h"
#include "log/logTestSupport.h"

#include <gtest/gtest.h>

#include <pthread.h>
#include <unistd.h>

namespace ostest {

using logtest::Lines;

// Each pass lets one wait through. No object on the stack: AddressSanitizer
// takes the guard zones that a cancelled thread's unwinding leaves behind
// for an overflow.
struct Gate {
    Gate() { EXPECT_EQ(pipe(fd), 0); }
    ~Gate() {
        close(fd[0]);
        close(fd[1]);
    }
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
    int fd[2];
};

// Creates and starts a task at priority 0; `tcb` is set before it runs.
inline void startTask(Tcb *&tcb, const char *name, TaskEntry entry,
                      const uint32_t *args = nullptr) {
    ASSERT_EQ(t_create(name, 0, 0, 0, 0, &tcb), 0);
    ASSERT_EQ(t_start(tcb, 0, entry, args), 0);
}

// A task that ends by itself frees its record on its own thread, after
// anything a test could wait on: wait until its name is gone.
inline void waitUntilGone(const char *name) {
    Tcb *found = nullptr;
    while (t_ident(name, 0, &found) == 0)
        sched_yield();
}

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
    const int old = sched_getscheduler(0);
    sched_param param{1}, zero{0};
    if (sched_setscheduler(0, SCHED_RR, &param) != 0)
        return false;
    sched_setscheduler(0, old, &zero);
    return true;
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
