// The OS layer's global locks and the guard that holds one for a scope.
#ifndef COMMON_OS_OSLOCKS_H
#define COMMON_OS_OSLOCKS_H

#include <pthread.h>

// The locks, usable in their static state before os_init_locks; the order in
// which they may be taken is written beside their definitions.
pthread_mutex_t *osInterruptLock();
pthread_mutex_t *osTimerLock();
pthread_mutex_t *osTcbLock();

// Initialises `attributes` for a lock of the layer: `type`, and the
// priority inheritance protocol. The emulated test build (user-mode qemu,
// which has no priority-inheritance futexes, so a contended lock would hang)
// is built without the protocol; every other build has it.
void osMutexAttrInit(pthread_mutexattr_t *attributes, int type);
// Initialises `mutex` as a lock of the layer of the default type; the result
// of pthread_mutex_init.
int osMutexInit(pthread_mutex_t *mutex);

// Holds a mutex for a scope (none when given null). Tasks die by
// cancellation, and glibc unwinds C++ frames when a cancelled thread acts on
// it: the destructor releases the lock then too, so a section may contain a
// cancellation point. Only the unlock runs in the destructor, which is no
// cancellation point.
// The result of the lock is kept for callers that report it (after the
// release, when a log line must not be written under the lock).
class OsLockHold {
  public:
    explicit OsLockHold(pthread_mutex_t *mutex) : lock(mutex) {
        if (lock != nullptr)
            lockError = pthread_mutex_lock(lock);
    }
    ~OsLockHold() { release(); }
    OsLockHold(const OsLockHold &)            = delete;
    OsLockHold &operator=(const OsLockHold &) = delete;
    // Releases the lock before the end of the scope; the unlock's result.
    int release() {
        const int error = lock != nullptr ? pthread_mutex_unlock(lock) : 0;
        lock            = nullptr;
        return error;
    }
    int lockError = 0;

  private:
    pthread_mutex_t *lock;
};

// Keeps cancellation off for a scope: around a step that must run whole
// even when its task is deleted (a deletion, a file open and read at once).
// Neither the constructor nor the destructor is a cancellation point.
struct OsCancelOff {
    OsCancelOff() { pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &old); }
    ~OsCancelOff() { pthread_setcancelstate(old, nullptr); }
    OsCancelOff(const OsCancelOff &)            = delete;
    OsCancelOff &operator=(const OsCancelOff &) = delete;
    int old                                     = PTHREAD_CANCEL_ENABLE;
};

// 1 when the thread library is NPTL (the start value); written only by the
// OS start's probe, before any task runs, and read without a lock.
int osIsNptlGet();
void osIsNptlSet(int nptl);

#endif
