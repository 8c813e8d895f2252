// The four global locks of the OS layer, their final attributes, and the
// process-wide settings written at start-up: the scheduling policy and
// whether the thread library is NPTL.
#include "Common/OS/osLocks.h"

#include "Common/OS/logInternal.h"
#include "Common/OS/os.h"

#include <atomic>

namespace {

// Lock order. A thread that holds a lock of this list takes only locks that
// come after it:
//
//   interruptLock  ->  logLineLock  ->  logSem
//   a task's mutex ->  tcbLock
//
// tcbLock is innermost: while it is held nothing is logged or printed and no
// other lock is taken, so a section under it holds no cancellation point.
// timerLock and a task's mutex meet in both orders (the timer task sends
// events under timerLock; a timed receive starts and cancels its timer under
// its mutex); the event and timer code settles that pair where it takes them.
//
// All four are static default mutexes (all-zero state) until os_init_locks
// gives them priority inheritance, and the interrupt and log line locks the
// recursive type. The log line lock lives with the log line it guards.
pthread_mutex_t interruptLock = PTHREAD_MUTEX_INITIALIZER;
pthread_mutex_t timerLock     = PTHREAD_MUTEX_INITIALIZER;
pthread_mutex_t tcbLock       = PTHREAD_MUTEX_INITIALIZER;

// Written at start-up only, before any task runs; relaxed atomics keep a
// test that changes them from being a data race.
std::atomic<int> osIsNptl{1};
std::atomic<int32_t> osSchedPolicy{0};

void osLockRecreate(pthread_mutex_t *lock, const pthread_mutexattr_t *attributes) {
    pthread_mutex_destroy(lock);
    pthread_mutex_init(lock, attributes);
}

} // namespace

void osMutexAttrInit(pthread_mutexattr_t *attributes, int type) {
    pthread_mutexattr_init(attributes);
#if OS_PRIO_INHERIT
    pthread_mutexattr_settype(attributes, type);
    pthread_mutexattr_setprotocol(attributes, PTHREAD_PRIO_INHERIT);
#else
    // A priority-inheriting mutex knows its owner and refuses a release by
    // another thread; without the protocol, error checking keeps that.
    pthread_mutexattr_settype(attributes,
                              type == PTHREAD_MUTEX_DEFAULT ? PTHREAD_MUTEX_ERRORCHECK : type);
#endif
}

int osMutexInit(pthread_mutex_t *mutex) {
    pthread_mutexattr_t attributes;
    osMutexAttrInit(&attributes, PTHREAD_MUTEX_DEFAULT);
    const int result = pthread_mutex_init(mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    return result;
}

pthread_mutex_t *osInterruptLock() {
    return &interruptLock;
}
pthread_mutex_t *osTimerLock() {
    return &timerLock;
}
pthread_mutex_t *osTcbLock() {
    return &tcbLock;
}

int osIsNptlGet() {
    return osIsNptl.load(std::memory_order_relaxed);
}
void osIsNptlSet(int nptl) {
    osIsNptl.store(nptl, std::memory_order_relaxed);
}

extern "C" void os_init_locks(void) {
    pthread_mutexattr_t recursive, plain;
    osMutexAttrInit(&recursive, PTHREAD_MUTEX_RECURSIVE);
    osMutexAttrInit(&plain, PTHREAD_MUTEX_DEFAULT);
    osLockRecreate(&interruptLock, &recursive);
    osLockRecreate(&timerLock, &plain);
    osLockRecreate(&tcbLock, &plain);
    LogLineLockRecreate(&recursive);
    pthread_mutexattr_destroy(&plain);
    pthread_mutexattr_destroy(&recursive);
}

extern "C" int32_t os_get_policy(void) {
    return osSchedPolicy.load(std::memory_order_relaxed);
}

extern "C" void os_set_policy(int32_t policy) {
    osSchedPolicy.store(policy, std::memory_order_relaxed);
}
