// What the event wait and task deletion need of the timers: the timer lock
// (refused on the timer task while it runs callbacks), a start and a cancel
// that work for one owner only, and the cancel of all timers of a task.
#ifndef COMMON_OS_TIMERINTERNAL_H
#define COMMON_OS_TIMERINTERNAL_H

#include "Common/OS/os.h"
#include "Common/OS/osLocks.h"

// Holds timerLock. A timer callback that gets here would wait for itself:
// that is a caller's error, and fatal.
OsLockHold timerLockHold();

// Takes a record from the pool and makes it active, with timerLock held by
// the caller; null when the pool is empty (the caller logs that after the
// release). tm_init must have run.
Timer *timerStartLocked(uint32_t ticks, uint32_t reload, uint32_t events, TimerCallback callback,
                        uintptr_t arg, Tcb *task);
// Logs the empty pool, with no lock held.
void timerLogPoolEmpty();

// Stops `handle` when it is active and was started by `task` (with
// `callback`, when that is not null); otherwise prints the not-found line.
void timerCancelOwned(Timer *handle, const Tcb *task, TimerCallback callback);

// Stops every timer that `tcb` started, so that none touches the record
// once it is freed. Waits for a tick that is firing.
void timerCancelForTask(const Tcb *tcb);

#endif
