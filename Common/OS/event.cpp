// Events: a 32-bit word per task, posted by anyone, waited for by the task
// itself, at once, for ever, or for a number of ticks.
#include "Common/OS/log.h"
#include "Common/OS/osAssert.h"
#include "Common/OS/timerInternal.h"
#include "Common/OS/timerSeam.h"

#include <atomic>

namespace {

constexpr const char *osSource = "os";

// The callback of a timed wait's timer: its argument is the waiting task.
int32_t evReceiveTimer(uintptr_t task) {
    return ev_receive_timeout(reinterpret_cast<Tcb *>(task));
}

// A task's event lock is held with OsLockHold, whose destructor releases it
// also when the task is cancelled in pthread_cond_wait (which takes the lock
// back before the thread unwinds). Lock and unlock failures are logged after
// the release: a log line may wake the log writer, whose own event lock must
// not be taken under this one.

// The event word as it is now: senders change it outside the lock.
uint32_t evWord(Tcb *tcb) {
    return std::atomic_ref(tcb->events).load(std::memory_order_relaxed);
}

std::atomic<EvReceiveBeforeCancel> evReceiveBeforeCancel{nullptr};

} // namespace

void EvReceiveBeforeCancelSet(EvReceiveBeforeCancel hook) {
    evReceiveBeforeCancel.store(hook, std::memory_order_release);
}

extern "C" uint32_t AtomicOr(uint32_t *word, uint32_t bits) {
    return std::atomic_ref(*word).fetch_or(bits, std::memory_order_relaxed) | bits;
}

extern "C" uint32_t AtomicAnd(uint32_t *word, uint32_t bits) {
    return std::atomic_ref(*word).fetch_and(bits, std::memory_order_relaxed) & bits;
}

extern "C" uint32_t ev_match(uint32_t word, uint32_t wanted, uint32_t flags) {
    if ((flags & EV_ANY) != 0)
        return word & wanted;
    return (word & wanted) == wanted ? wanted : 0;
}

// No wake-up is lost: the bits are set before the lock, and the receiver
// tests them under the lock, which pthread_cond_wait releases atomically.
// The signal is given with the lock still held: once it is released the
// receiver may take its bits, end, and free its record, condition included.
extern "C" int ev_send(Tcb *tcb, uint32_t bits) {
    OS_ASSERT(tcb != nullptr);
    AtomicOr(&tcb->events, bits);
    int locked = 0, unlocked = 0, signalled = 0;
    {
        OsLockHold hold(&tcb->mutex);
        locked = hold.lockError;
        if (tcb->waiting != 0)
            signalled = pthread_cond_signal(&tcb->cond);
        unlocked = hold.release();
    }
    if (locked != 0)
        LogWarn(osSource, "ev_send mutex_lock failed %d, potential reentrancy problem\n", locked);
    if (unlocked != 0)
        LogWarn(osSource, "ev_send mutex_unlock failed %d\n", unlocked);
    if (signalled != 0)
        LogWarn(osSource, "ev_send cond_signal failed %d\n", signalled);
    return signalled;
}

// Lock order: timerLock before a task's event lock, everywhere. The timer
// task holds timerLock when it posts events and ends timed waits. A timed
// wait therefore takes timerLock first, then its own lock, to start its
// timer, and releases timerLock before it sleeps; it cancels the timer after
// releasing its own lock. No thread ever waits for timerLock while holding a
// task's event lock, so the two can't deadlock.
//
// The cancel may come after the timer fired (events and the time-out met);
// it removes the timer only while it is still this wait's own, active
// timer, so a record that serves another user since is left alone.
extern "C" int ev_receive(uint32_t wanted, uint32_t flags, uint32_t timeout, uint32_t *out) {
    Tcb *tcb = FindTcb(pthread_self());
    if (tcb == nullptr)
        return ERR_NOTASK;
    const bool timed = timeout != 0 && wanted != 0 && (flags & EV_NOWAIT) == 0;
    if (timed)
        tm_init();
    int result = 0, locked = 0, waitError = 0, unlocked = 0;
    bool noTimer = false;
    Timer *timer = nullptr;
    {
        OsLockHold timerHold = timed ? timerLockHold() : OsLockHold(nullptr);
        OsLockHold hold(&tcb->mutex);
        locked     = hold.lockError;
        uint32_t m = ev_match(evWord(tcb), wanted, flags);
        if (wanted == 0) {
            *out = evWord(tcb);
        } else if ((flags & EV_NOWAIT) != 0) {
            if (m == 0) {
                result = ERR_NOEVENTS;
            } else {
                *out = m;
                AtomicAnd(&tcb->events, ~m);
            }
        } else if (m != 0) {
            // Already there: no wait, and no timer taken from the pool.
            *out = m;
            AtomicAnd(&tcb->events, ~m);
        } else {
            tcb->timedOut  = 0;
            tcb->receiving = 1;
            if (timed) {
                timer      = timerStartLocked(timeout, timeout, 0, evReceiveTimer,
                                              reinterpret_cast<uintptr_t>(tcb), tcb);
                tcb->timer = timer;
                noTimer    = timer == nullptr;
            }
            timerHold.release();
            tcb->waiting = 1;
            while (!noTimer && (m = ev_match(evWord(tcb), wanted, flags)) == 0) {
                if (timed && tcb->timedOut != 0) {
                    result = ERR_TIMEOUT;
                    break;
                }
                if (int error = pthread_cond_wait(&tcb->cond, &tcb->mutex); error != 0)
                    waitError = error;
            }
            tcb->receiving = 0;
            if (noTimer) {
                result = ERR_NOTIMER;
            } else if (result == 0) {
                *out = m;
                AtomicAnd(&tcb->events, ~m);
            }
        }
        unlocked = hold.release();
    }
    if (timed && result == 0 && timer != nullptr) {
        if (EvReceiveBeforeCancel hook = evReceiveBeforeCancel.load(std::memory_order_acquire))
            hook(timer);
        timerCancelOwned(timer, tcb, evReceiveTimer);
    }
    if (noTimer)
        timerLogPoolEmpty();
    if (locked != 0)
        LogWarn(osSource, "ev_receive mutex_lock error %d, potential thread-safe problem\n",
                locked);
    if (waitError != 0)
        LogCrit(osSource, "ev_receive cond_wait error %d\n", waitError);
    if (unlocked != 0)
        LogWarn(osSource, "ev_receive mutex_unlock error %d\n", unlocked);
    return result;
}

// Runs on the timer task with timerLock held. The signal is given under the
// task's lock, as in ev_send.
extern "C" int32_t ev_receive_timeout(Tcb *tcb) {
    int locked = 0, unlocked = 0, signalled = 0;
    bool over = false, waiting = false;
    {
        OsLockHold hold(&tcb->mutex);
        locked = hold.lockError;
        over   = tcb->receiving == 0;
        if (!over) {
            tcb->timedOut = 1;
            waiting       = tcb->waiting != 0;
            if (waiting)
                signalled = pthread_cond_signal(&tcb->cond);
        }
        unlocked = hold.release();
    }
    if (locked != 0)
        LogWarn(osSource, "ev_receive_timeout mutex_lock error %d, potential thread-safe problem\n",
                locked);
    if (over) {
        if (unlocked != 0)
            LogWarn(osSource, "ev_receive_timeout mutex_unlock 3 error %d\n", unlocked);
    } else if (waiting) {
        if (unlocked != 0)
            LogWarn(osSource, "ev_receive_timeout mutex_unlock 1 error %d\n", unlocked);
        if (signalled != 0)
            LogCrit(osSource, "ev_receive_timeout cond_signal error %d\n", signalled);
    } else {
        if (unlocked != 0)
            LogWarn(osSource, "ev_receive_timeout mutex_unlock 2 error %d\n", unlocked);
        LogWarn(osSource, "ev_receive_timeout timed out without task waiting %4.4s\n", t_name(tcb));
    }
    return 0;
}
