// Timers: a static pool of 50 records on an active and a free list, counted
// down by the task "tmtk" every 10 ms tick. Event timers post bits to the
// task that started them; callback timers run a function.
#include "Common/OS/log.h"
#include "Common/OS/osAssert.h"
#include "Common/OS/timerInternal.h"
#include "Common/OS/timerSeam.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <sys/select.h>

namespace {

constexpr const char *osSource      = "os";
constexpr int32_t timerTaskPriority = 66;
constexpr uint32_t tickMicroseconds = 10000;
constexpr uint32_t ticksPerSecond   = 100;

// The pool and its lists, guarded by timerLock. A record is on the free list,
// on the active list, or in the hands of whoever took it off (an allocation
// being filled, or the expired list of a tick), never on two.
std::array<Timer, TIMER_POOL_SIZE> timerPool;
Timer *timerActive = nullptr;
Timer *timerFree   = nullptr;
Tcb *timerTaskTcb  = nullptr;

pthread_once_t timerInitOnce = PTHREAD_ONCE_INIT;
bool timerStartsTask         = true; // false: ticks come from a test

// Set on the thread of tm_tick while it runs the timers: a callback that
// takes timerLock again would wait for itself.
thread_local bool timerFiring = false;

void timerInitOnceBody() {
    timerPool = {};
    for (size_t i = 0; i + 1 < timerPool.size(); ++i)
        timerPool[i].next = &timerPool[i + 1];
    timerFree = &timerPool[0];
    if (!timerStartsTask)
        return;
    t_create("tmtk", timerTaskPriority, 0, 0, 0, &timerTaskTcb);
    if (timerTaskTcb == nullptr)
        return;
    // Without the right to real-time scheduling the tick would never run:
    // say so, and tick as an ordinary thread rather than not at all.
    if (t_start(timerTaskTcb, 0, tm_task, nullptr) != 0) {
        LogCrit(osSource, "tm_init: tmtk can't start at priority %d, starting it at 0\n",
                timerTaskPriority);
        t_setpri(timerTaskTcb, 0, nullptr);
        t_start(timerTaskTcb, 0, tm_task, nullptr);
    }
}

// Appends `timer` to a list through the address of its head.
void timerAppend(Timer **list, Timer *timer) {
    while (*list != nullptr)
        list = &(*list)->next;
    *list       = timer;
    timer->next = nullptr;
}

// Who may remove a timer: the task that started it, and, when `callback` is
// not null, only a timer of that callback.
struct TimerOwner {
    const Tcb *task;
    TimerCallback callback;
};

// Unlinks `timer` from the active list; false when it isn't there, or when
// `owner` is given and the timer isn't its own.
bool timerUnlinkActiveLocked(Timer *timer, const TimerOwner *owner) {
    for (Timer **link = &timerActive; *link != nullptr; link = &(*link)->next) {
        if (*link != timer)
            continue;
        if (owner != nullptr &&
            (timer->task != owner->task ||
             (owner->callback != nullptr && timer->callback != owner->callback)))
            return false;
        *link       = timer->next;
        timer->next = nullptr;
        return true;
    }
    return false;
}

// Takes the head of the free list, zeroed; null when the pool is empty.
// timerLock is held.
Timer *timerTakeFreeLocked() {
    Timer *timer = timerFree;
    if (timer != nullptr) {
        timerFree = timer->next;
        *timer    = Timer{};
    }
    return timer;
}

// Frees the records of a local list, in its order; no lock is held, since
// FreeTimer takes timerLock itself.
void timerFreeAll(Timer *list) {
    while (list != nullptr) {
        Timer *timer = list;
        list         = timer->next;
        timer->next  = nullptr;
        FreeTimer(timer);
    }
}

// Record addresses show as 32-bit words, as on the appliance.
uint32_t timerWord(const void *address) {
    return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(address));
}

// Takes `handle` off the active list and frees it, or prints the not-found
// line when it isn't there (or isn't `owner`'s).
void timerRemove(Timer *handle, const TimerOwner *owner) {
    bool found = false;
    {
        OsLockHold hold = timerLockHold();
        found           = timerUnlinkActiveLocked(handle, owner);
    }
    if (found)
        FreeTimer(handle);
    else
        std::printf("RemoveTimer: %p not found\n", static_cast<const void *>(handle));
}

} // namespace

OsLockHold timerLockHold() {
    OS_ASSERT(!timerFiring);
    return OsLockHold(osTimerLock());
}

void TimerTicksByHand() {
    timerStartsTask = false;
    tm_init();
}

int TimerActiveCount() {
    OsLockHold hold = timerLockHold();
    int count       = 0;
    for (const Timer *timer = timerActive; timer != nullptr; timer = timer->next)
        ++count;
    return count;
}

extern "C" void tm_init(void) {
    pthread_once(&timerInitOnce, timerInitOnceBody);
}

extern "C" void tm_task(uint32_t, uint32_t, uint32_t, uint32_t) {
    for (;;) {
        tm_tick();
        // The same sleep whatever the tick took: time lost is not made up.
        timeval period{0, tickMicroseconds};
        select(0, nullptr, nullptr, nullptr, &period);
    }
}

extern "C" void tm_tick(void) {
    Timer *expired = nullptr;
    {
        OsLockHold hold = timerLockHold();
        timerFiring     = true;
        for (Timer **link = &timerActive; *link != nullptr;) {
            Timer *timer = *link;
            if (--timer->remaining != 0) {
                link = &timer->next;
                continue;
            }
            bool again = false;
            if (timer->callback != nullptr) {
                again = timer->callback(timer->arg) != 0;
            } else {
                ev_send(timer->task, timer->events);
                again = timer->reload != 0;
            }
            if (again) {
                timer->remaining = timer->reload;
                link             = &timer->next;
            } else {
                *link = timer->next;
                timerAppend(&expired, timer);
            }
        }
        timerFiring = false;
    }
    timerFreeAll(expired); // outside the walk, in the order they expired
}

extern "C" Timer *AllocTimer(void) {
    tm_init();
    Timer *timer = nullptr;
    {
        OsLockHold hold = timerLockHold();
        timer           = timerTakeFreeLocked();
    }
    if (timer == nullptr)
        timerLogPoolEmpty();
    return timer;
}

void timerLogPoolEmpty() {
    LogCrit(osSource, "AllocTimer failed\n");
}

// A record found on the free list already is only reported: pushing it a
// second time would make the free list a loop.
extern "C" void FreeTimer(Timer *pTimer) {
    if (pTimer == nullptr) {
        LogWarn(osSource, "FreeTimer called with NULL pTimer\n");
        return;
    }
    const Timer *linked = nullptr;
    bool free           = false;
    {
        OsLockHold hold = timerLockHold();
        linked          = pTimer->next;
        for (const Timer *record = timerFree; record != nullptr && !free; record = record->next)
            free = record == pTimer;
        if (!free) {
            pTimer->next = timerFree;
            timerFree    = pTimer;
        }
    }
    if (linked != nullptr)
        LogCrit(osSource, "FreeTimer pTimer is not consistent pTimer: %08x pTimer->next: %08x\n",
                timerWord(pTimer), timerWord(linked));
    if (free)
        LogCrit(osSource, "FreeTimer pList is not consistent pList: %08x\n", timerWord(pTimer));
}

extern "C" void InsertTimer(Timer *timer) {
    OsLockHold hold = timerLockHold();
    timerAppend(&timerActive, timer);
}

extern "C" void RemoveTimer(Timer *pTimer) {
    timerRemove(pTimer, nullptr);
}

Timer *timerStartLocked(uint32_t ticks, uint32_t reload, uint32_t events, TimerCallback callback,
                        uintptr_t arg, Tcb *task) {
    Timer *timer = timerTakeFreeLocked();
    if (timer == nullptr)
        return nullptr;
    *timer = Timer{task, ticks, reload, events, callback, arg, nullptr};
    timerAppend(&timerActive, timer);
    return timer;
}

void timerCancelOwned(Timer *handle, const Tcb *task, TimerCallback callback) {
    const TimerOwner owner{task, callback};
    timerRemove(handle, &owner);
}

void timerCancelForTask(const Tcb *tcb) {
    Timer *cancelled = nullptr;
    {
        OsLockHold hold = timerLockHold();
        for (Timer **link = &timerActive; *link != nullptr;) {
            Timer *timer = *link;
            if (timer->task == tcb) {
                *link = timer->next;
                timerAppend(&cancelled, timer);
            } else {
                link = &timer->next;
            }
        }
    }
    timerFreeAll(cancelled);
}

// A task's timer: refused, with null stored, when the pool is empty.
int timerStart(uint32_t ticks, uint32_t reload, uint32_t events, TimerCallback callback,
               uintptr_t arg, Tcb *task, Timer **out) {
    tm_init();
    Timer *timer = nullptr;
    {
        OsLockHold hold = timerLockHold();
        timer           = timerStartLocked(ticks, reload, events, callback, arg, task);
    }
    *out = timer;
    if (timer == nullptr) {
        timerLogPoolEmpty();
        return ERR_NOTIMER;
    }
    return 0;
}

// An event timer posts to the task that started it; a thread that is no
// task has nobody to post to and is refused.
extern "C" int tm_evstart(uint32_t ticks, uint32_t bits, Timer **out, uint32_t oneShot) {
    Tcb *task = FindTcb(pthread_self());
    if (task == nullptr) {
        *out = nullptr;
        return ERR_NOTASK;
    }
    return timerStart(ticks, oneShot != 0 ? 0 : ticks, bits, nullptr, 0, task, out);
}

extern "C" int tm_evafter(uint32_t ticks, uint32_t bits, Timer **out) {
    return tm_evstart(ticks, bits, out, 1);
}

extern "C" int tm_evevery(uint32_t ticks, uint32_t bits, Timer **out) {
    return tm_evstart(ticks, bits, out, 0);
}

extern "C" int tm_cbafter(uint32_t ticks, Timer **out, TimerCallback callback, uintptr_t arg) {
    return timerStart(ticks, ticks, 0, callback, arg, FindTcb(pthread_self()), out);
}

// Only the starter's own timer is stopped: a handle kept after its timer
// fired may denote a record that another task has started since, and that
// timer must not be lost.
extern "C" int tm_cancel(Timer *timer) {
    timerCancelOwned(timer, FindTcb(pthread_self()), nullptr);
    return 0;
}

extern "C" int tm_wkafter(uint32_t ticks) {
    timeval time{static_cast<time_t>(ticks / ticksPerSecond),
                 static_cast<suseconds_t>(ticks % ticksPerSecond * tickMicroseconds)};
    select(0, nullptr, nullptr, nullptr, &time);
    return 0;
}
