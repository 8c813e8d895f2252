/* Public interface of the OS layer (C-compatible): a small real-time-kernel
 * interface on POSIX threads (tasks, semaphores, the task registry and the key
 * tree it uses) and the clocks.
 *
 * Return convention of this header: operations of the task and semaphore
 * families and of the registry return 0 on success or one of the positive
 * codes below; operations that name a value (a record, a word, a count of
 * milliseconds) return it, null or 0 when there is none. A caller's error (a
 * null record where one is needed, a task started twice) is a fatal
 * assertion. Lock failures are logged under the source word "os" and the
 * operation goes on.
 *
 * Thread context is given per operation: "any thread" (tasks and other
 * threads), "task" (only a task, acting on itself). None of them may be called
 * from a signal handler. */
#ifndef COMMON_OS_OS_H
#define COMMON_OS_OS_H

#include "Common/OS/bintree.h"
#include "Common/OS/osUsage.h"
#include "Common/OS/osUtil.h"

#include <pthread.h>
#include <sched.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Result codes and flags ---------------------------------------------- */

#define ERR_TIMEOUT 1   /* a timed wait ran out; also a thread that couldn't start */
#define ERR_NOTASK 6    /* the caller is no task */
#define ERR_NOTFOUND 9  /* no such task; a semaphore identifier without its mark */
#define ERR_NOTCB 14    /* no task record: none could be had, or none to act on */
#define ERR_NOEVENTS 60 /* EV_NOWAIT and the wanted events are not there */
#define ERR_NOTIMER 61  /* the pool of 50 timers is empty */
#define ERR_NOSEM 65    /* no semaphore could be created */
#define ERR_SEMBUSY 66  /* the semaphore is taken ('B', busy), under SM_NOWAIT */

#define EV_NOWAIT 1u /* ev_receive: return at once */
#define EV_ANY 2u    /* ev_receive: any of the wanted bits is enough */
#define SM_NOWAIT 1u /* sm_p: don't wait for a taken semaphore */

/* Priorities of tasks: 0 is an ordinary time-shared thread (SCHED_OTHER),
 * 1 to 99 real-time priorities handed to the kernel unchanged. */
#define TASK_PRIORITY_MAX 99

/* ---- Records ---------------------------------------------------------------
 * A task, a semaphore and a timer are each known by the address of their
 * record. The fields are shown so that programs and tests can read them;
 * only the layer writes them. */

/* A timer's callback: its argument word; 0 to end the timer, non-zero to
 * run again after its reload. */
typedef int32_t (*TimerCallback)(uintptr_t arg);

/* One timer of the static pool of TIMER_POOL_SIZE, known by its address. */
#define TIMER_POOL_SIZE 50
typedef struct Timer {
    struct Tcb *task;       /* the task that started it; event timers post to it */
    uint32_t remaining;     /* ticks until it fires */
    uint32_t reload;        /* remaining after firing; 0 for a one-shot event timer */
    uint32_t events;        /* bits an event timer posts */
    TimerCallback callback; /* null for an event timer */
    uintptr_t arg;          /* the callback's argument */
    struct Timer *next;     /* link in the list that holds it */
} Timer;

/* The function of a task: four argument words, its result is ignored. */
typedef void (*TaskEntry)(uint32_t, uint32_t, uint32_t, uint32_t);

/* The task control block, zero-filled at creation and owned by the registry
 * from t_create or t_attach until DestroyTcb frees it. */
typedef struct Tcb {
    char name[5];        /* four characters as given; the fifth stays 0 */
    uint32_t args[4];    /* the arguments of `entry` */
    int32_t priority;    /* 0 to 99 */
    TaskEntry entry;     /* the task's function */
    uint32_t mode;       /* the mode word of t_start; nothing reads it */
    uint32_t note;       /* free for the application */
    uint32_t events;     /* the event word; atomic OR and AND only */
    pthread_t thread;    /* the task's thread, 0 until it is started */
    pthread_attr_t attr; /* attributes the thread was started with */
    struct sched_param schedParam;
    uint32_t receiving;    /* 1 while ev_receive is in its blocking path */
    uint32_t timedOut;     /* set when a timed wait has run out */
    Timer *timer;          /* timer of the timed wait in progress */
    pthread_mutex_t mutex; /* the event lock, priority inheritance */
    pthread_cond_t cond;   /* where ev_receive blocks */
    uint32_t waiting;      /* set by the first blocking ev_receive */
    uint32_t pid;          /* getpid of the task's thread; 0 until it runs */
    uint32_t threadId;     /* kernel thread id, under NPTL, once it runs */
    uint32_t lastStime;    /* system time in clock ticks at the last usage report */
    uint32_t lastUtime;    /* user time in clock ticks at the last usage report */
    struct Tcb *next;      /* next record of the task list */
    /* The layer's own bookkeeping, under the registry's lock: */
    uint32_t running;  /* 1 while the thread runs: the record is indexed by it */
    uint32_t deleting; /* set by the deletion that owns the record's end */
} Tcb;

/* The mark of a live semaphore record: "SEMA" as one 32-bit word. */
#define SEMAPHORE_MARK 0x53454d41u

/* A semaphore: one priority-inheriting mutex, free or taken. */
typedef struct Semaphore {
    uint32_t mark;        /* SEMAPHORE_MARK, written last by sm_create */
    char name[4];         /* four characters as given, no terminator */
    pthread_t creator;    /* the thread that created it */
    uint32_t reserved;    /* 0 */
    pthread_mutex_t lock; /* taken means locked */
} Semaphore;

/* ---- OS start ---------------------------------------------------------------
 * A program calls os_start once, from the thread that is to become the task
 * "main" (priority 60), before any other call of the layer. */

/* Probes the thread library, gives the locks their final attributes, sets
 * the policy SCHED_RR, starts the log writer with `level` as its threshold
 * (-2 stands for 3; -1 starts no writer and leaves the threshold at 7), the
 * trace categories and the timer task "tmtk", and attaches the caller as
 * "main". 0, or -1 when the categories, the attach or the look-up of "main"
 * fail; what was started keeps running. */
int32_t os_start(int32_t level);
/* The task "main", or null before os_start. Any thread. */
Tcb *os_main_task(void);
/* Sets osIsNptl from the thread library's version text; prints a warning
 * and keeps 1 when there is none. Part of os_start. */
void os_probe_pthread(void);

/* ---- Task registry ----------------------------------------------------------
 * Scheduling policy of real-time tasks: 0 (SCHED_OTHER) until the OS start
 * sets 2 (SCHED_RR). */

/* Gives the four global locks their final attributes (all priority
 * inheritance; the interrupt and log line locks recursive). Any thread, once,
 * before any task runs. */
void os_init_locks(void);
/* Any thread. */
int32_t os_get_policy(void);
/* Any thread, at start-up only: tasks read the policy without a lock. */
void os_set_policy(int32_t policy);
/* Appends `tcb` to the task list; a null record prints
 * "AddTcb: tcb pointer is NULL" and changes nothing. Any thread. */
void AddTcb(Tcb *tcb);
/* Unlinks `tcb` from the list and rebuilds the thread index; a record that
 * is not in the list changes nothing. Any thread. */
void RemoveTcb(Tcb *tcb);
/* The running task of `thread`, or null (also before any task exists). Any
 * thread. */
Tcb *FindTcb(pthread_t thread);
/* Creates the thread index if there is none yet. Any thread. */
void InitTcbTree(void);

/* ---- Tasks ------------------------------------------------------------------
 * A null Tcb means the calling task, except for t_start. Names are four
 * characters read from four readable bytes; a shorter text must be filled up
 * by the caller. Lines are logged under the source word "os". */

/* Makes a task record that is not yet running; `name` may be null (four zero
 * bytes), the three words are ignored, `out` may be null. 0, or ERR_NOTCB
 * when no record or no mutex could be had. Any thread. */
int t_create(const char *name, int32_t priority, uint32_t sstack, uint32_t ustack, uint32_t flags,
             Tcb **out);
/* Starts the thread of a created task with `entry(args[0..3])` (null args:
 * the record's, zero after t_create). A priority outside 0..99 is logged and
 * becomes 0. 0, or ERR_TIMEOUT (1) with a perror line when the thread can't be
 * created; the task then stays created. Starting a task twice is fatal. Any
 * thread. */
int t_start(Tcb *tcb, uint32_t mode, TaskEntry entry, const uint32_t *args);
/* Makes the calling thread a task. 0, or ERR_NOTCB when no record or no mutex
 * could be had. A thread that is a task already stays the task it is: 0,
 * nothing changes. Any thread, for itself. */
int t_attach(const char *name, int32_t priority, uint32_t flags);
/* Ends a task and frees its record; every deletion is logged. A task that
 * deletes itself doesn't come back. Another running task is cancelled and
 * joined: it dies at its next cancellation point, and the caller waits for
 * that. A created task that never ran is freed at once. 0; ERR_NOTCB when
 * there is no record to delete (a null Tcb from a thread that is no task, or
 * a record that is gone). Any thread; never from a timer callback. */
int t_delete(Tcb *tcb);
/* Finds the first task whose four name bytes equal those at `name` (null:
 * the caller), created ones too. Stores the record, or null, in `out`. 0 or
 * ERR_NOTFOUND. Any thread. */
int t_ident(const char *name, uint32_t node, Tcb **out);
/* The address of the task's name; null for a null Tcb from a thread that is
 * no task. Any thread. */
char *t_name(Tcb *tcb);
/* Sets the task's priority (outside 0..99: logged, 0) and its thread's
 * scheduling; hands back the old priority through `oldPriority` when that is
 * not null. A created task only stores it. 0, or ERR_NOTCB for a null Tcb from
 * a thread that is no task (nothing is written). Any thread. */
int t_setpri(Tcb *tcb, int32_t priority, int32_t *oldPriority);
/* The task's note word; 0 for a null Tcb from a thread that is no task. Any
 * thread. */
uint32_t t_getnote(Tcb *tcb);
/* Sets the task's note word. 0, or ERR_NOTCB for a null Tcb from a thread
 * that is no task. Any thread. */
int t_setnote(Tcb *tcb, uint32_t note);
/* Prints the first 200 tasks on standard output. Any thread. */
void t_list(void);
/* The first task of the list whose pid is `pid`, or null; t_findpid_pri also
 * stores its priority when found and `priority` is not null. Any thread. */
Tcb *t_findpid(uint32_t pid);
Tcb *t_findpid_pri(uint32_t pid, int32_t *priority);
/* The kernel thread id of the calling thread. Any thread. */
uint32_t t_gettid(void);
/* The thread function of every started task; nobody calls it directly. */
void *pthread_entry(void *tcb);
/* Destroys the record's mutex and condition, unlinks it and frees it. Only
 * for the deletion that owns the record's end (t_delete). */
void DestroyTcb(Tcb *tcb);

/* ---- Semaphores -------------------------------------------------------------
 * Mutual exclusion only: a semaphore is free or taken, and the thread that
 * took it gives it back. */

/* Creates a semaphore, taken by the caller when `count` is 0, free
 * otherwise; `name` may be null, `flags` is not read, `out` may be null. 0 or
 * ERR_NOSEM. Any thread. */
int sm_create(const char *name, uint32_t count, uint32_t flags, Semaphore **out);
/* Takes the semaphore, waiting without a time limit (`timeout` is not read),
 * or, with SM_NOWAIT, only when it is free. 0, ERR_SEMBUSY under SM_NOWAIT, or
 * ERR_NOTFOUND when `id` has no mark. Any thread. */
int sm_p(Semaphore *id, uint32_t flags, uint32_t timeout);
/* Gives the semaphore back. 0 or ERR_NOTFOUND. The thread that took it. */
int sm_v(Semaphore *id);
/* Destroys and frees the semaphore. 0 or ERR_NOTFOUND. Any thread, once. */
int sm_delete(Semaphore *id);

/* ---- Events -------------------------------------------------------------------
 * Each task has a 32-bit event word. Anyone posts bits to it; only the task
 * itself waits for them. Bits don't count: a bit sent twice is one bit. */

/* Sets `bits` in the task's event word and wakes it if it waits. 0, or the
 * error number of the wake-up. `tcb` must be a task. Any thread. */
int ev_send(Tcb *tcb, uint32_t bits);
/* Waits for all of `wanted` (any of them with EV_ANY), at once with
 * EV_NOWAIT, for ever with a timeout of 0, or for `timeout` ticks; stores the
 * bits received in `out` and clears them. A `wanted` of 0 stores the whole
 * word and clears nothing. 0; ERR_TIMEOUT when the time ran out (nothing is
 * stored or cleared); ERR_NOEVENTS under EV_NOWAIT; ERR_NOTASK when the caller
 * is no task; ERR_NOTIMER at once when a timed wait can't get a timer. Task;
 * never from a timer callback. */
int ev_receive(uint32_t wanted, uint32_t flags, uint32_t timeout, uint32_t *out);
/* The bits of `word` that satisfy `wanted` under `flags`, or 0. Any thread. */
uint32_t ev_match(uint32_t word, uint32_t wanted, uint32_t flags);
/* Ends the timed wait of `tcb`: the callback of that wait's timer, run by the
 * timer task. Returns 0. Not for applications. */
int32_t ev_receive_timeout(Tcb *tcb);
/* One relaxed atomic OR or AND on `word`; the new value. Any thread. */
uint32_t AtomicOr(uint32_t *word, uint32_t bits);
uint32_t AtomicAnd(uint32_t *word, uint32_t bits);

/* ---- Timers -------------------------------------------------------------------
 * Durations are ticks of 10 ms, counted by the task "tmtk" at priority 66. A
 * timer of n ticks fires at the n-th tick after its start; 0 ticks wraps and
 * waits 2^32 ticks. A timer belongs to the task that started it: deleting the
 * task cancels its timers, and only that task can cancel them. A callback
 * runs on the timer task with the timer lists locked: it must not call any
 * timer or event-wait operation, nor delete a task. */

/* Sets up the pool and starts "tmtk" (at priority 0 when 66 is refused, with
 * a line at LogCrit); once, later calls do nothing. Any thread. */
void tm_init(void);
/* The task function of "tmtk": ticks for ever. */
void tm_task(uint32_t, uint32_t, uint32_t, uint32_t);
/* One tick: counts every active timer down and fires those that reach 0.
 * Only the timer task (or a test driving ticks by hand). */
void tm_tick(void);
/* A zeroed record taken from the pool, or null with "AllocTimer failed" at
 * LogCrit. Any thread. */
Timer *AllocTimer(void);
/* Puts a record back in the pool; one that is null or free already is only
 * logged. Any thread. */
void FreeTimer(Timer *pTimer);
/* Appends an allocated record to the active list. Any thread. */
void InsertTimer(Timer *timer);
/* Takes a record off the active list and frees it, or prints
 * "RemoveTimer: %p not found". Any thread. */
void RemoveTimer(Timer *pTimer);
/* Starts an event timer that posts `bits` to the calling task after `ticks`,
 * once (oneShot not 0) or every `ticks`; stores the handle in `out`. 0;
 * ERR_NOTASK from a thread that is no task, ERR_NOTIMER when the pool is
 * empty; both store null. Task. */
int tm_evstart(uint32_t ticks, uint32_t bits, Timer **out, uint32_t oneShot);
int tm_evafter(uint32_t ticks, uint32_t bits, Timer **out);
int tm_evevery(uint32_t ticks, uint32_t bits, Timer **out);
/* Starts a timer that runs `callback(arg)` after `ticks`, and again every
 * `ticks` while it returns non-zero. 0, or ERR_NOTIMER with null stored. Any
 * thread. */
int tm_cbafter(uint32_t ticks, Timer **out, TimerCallback callback, uintptr_t arg);
/* Stops a timer started by the calling task (or, from a thread that is no
 * task, by such a thread). A handle that is no longer active, or that now
 * denotes a timer someone else started, prints "RemoveTimer: %p not found"
 * and changes nothing. Returns 0. Any thread. */
int tm_cancel(Timer *timer);
/* Sleeps `ticks` ticks without a timer. Returns 0. Any thread. */
int tm_wkafter(uint32_t ticks);

/* ---- Clocks ------------------------------------------------------------------
 * Callable from any thread. */

/* Counts per second of the time base: 66666664.0 (66666666 as a float). */
float ClockTimeBaseRate(void);
/* Time base counts in one 10 ms tick: 666666. */
uint32_t ClockCountsPerTick(void);
/* Milliseconds in one tick: 10. */
uint32_t ClockTickMillis(void);

/* Reads the 64-bit time base consistently: the upper half, the lower, the
 * upper again, repeated while the upper half changed in between. Stores the
 * halves through the pointers that are not null; returns the lower half. */
uint32_t ClockTimeBaseRead(uint32_t *high, uint32_t *low);
/* The lower half of the time base from one read. */
uint32_t ClockTimeBaseLow(void);

/* Maps and starts the millisecond counter. Called by the first ClockMillis;
 * after a failure the next ClockMillis tries again. */
void init_rtcp(void);
/* Milliseconds of the counter, 32 bits, wrapping; 0 when the counter can't
 * be reached. */
uint32_t ClockMillis(void);
/* ClockMillis, also stored through `out` when it is not null. */
uint32_t ClockMillisInto(uint32_t *out);
/* ClockMillis / 1000. */
uint32_t ClockSeconds(void);
/* ClockMillis / 10. */
uint32_t ClockTicks(void);
/* Sleeps in select() with no descriptors for `microseconds`, given whole as
 * the microseconds of the time value; returns select()'s result. */
int ClockSleep(uint32_t microseconds);

#ifdef __cplusplus
}
#endif

#endif
