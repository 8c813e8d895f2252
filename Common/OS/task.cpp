// Tasks: POSIX threads with a task record. Creation and start, adoption of
// a running thread, deletion, lookups, priorities, notes and the task list.
#include "Common/OS/log.h"
#include "Common/OS/osAlloc.h"
#include "Common/OS/osAssert.h"
#include "Common/OS/osLocks.h"
#include "Common/OS/tcbRegistry.h"
#include "Common/OS/timerInternal.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr const char *osSource = "os";

// priority and note are plain fields that any task may read or write while
// the task runs; relaxed atomic access keeps such a pair from being a data
// race. Which of two writers wins stays the application's affair.
int32_t taskPriority(const Tcb *tcb) {
    return std::atomic_ref(const_cast<Tcb *>(tcb)->priority).load(std::memory_order_relaxed);
}
void taskPrioritySet(Tcb *tcb, int32_t priority) {
    std::atomic_ref(tcb->priority).store(priority, std::memory_order_relaxed);
}

// A priority outside 0..99 is reported with the operation's own line and
// becomes 0; the caller is not told.
bool taskPriorityInRange(int32_t priority) {
    return priority >= 0 && priority <= TASK_PRIORITY_MAX;
}

// The scheduling a thread gets for a task priority. Priority 0 is always
// SCHED_OTHER. Above 0 the thread runs at the priority itself under the
// layer's policy (SCHED_RR after the OS start), except that t_start before
// the OS start keeps SCHED_OTHER, and t_setpri from 0 upwards always uses
// SCHED_RR.
struct TaskSchedule {
    int policy;
    int priority;
};

TaskSchedule taskScheduleForStart(int32_t priority) {
    if (priority == 0 || os_get_policy() == SCHED_OTHER)
        return {SCHED_OTHER, 0};
    return {os_get_policy(), priority};
}

TaskSchedule taskScheduleForSetpri(int32_t priority, int32_t oldPriority) {
    if (priority == 0)
        return {SCHED_OTHER, 0};
    return {oldPriority == 0 ? SCHED_RR : os_get_policy(), priority};
}

// A zeroed record with its event lock (priority inheritance) and condition,
// or null when either the memory or the mutex could not be had.
Tcb *taskRecordNew(const char *name, int32_t priority) {
    auto *tcb = static_cast<Tcb *>(osAlloc(sizeof(Tcb)));
    if (tcb == nullptr)
        return nullptr;
    std::memset(static_cast<void *>(tcb), 0, sizeof *tcb);
    if (name != nullptr)
        std::memcpy(tcb->name, name, 4);
    tcb->priority = priority;
    if (osMutexInit(&tcb->mutex) != 0) {
        std::free(tcb);
        return nullptr;
    }
    pthread_cond_init(&tcb->cond, nullptr);
    return tcb;
}

// What the line of a task that starts to run shows, copied under tcbLock so
// that it is logged after the release: nothing is logged while tcbLock is
// held, which keeps the log's wake-up of the writer (a task's mutex) out of
// tcbLock.
struct TaskRunLine {
    char name[5];
    uint32_t pid;
    pthread_t thread;
    uint32_t threadId;
    const Tcb *tcb;
};

// A registered thread's record leaves the index as the last thing the
// thread does, in the destructor of a thread-specific value. The thread
// library runs it when the thread ends in any way (return, pthread_exit,
// cancellation) and before a joiner wakes, that is before the handle can be
// given to a new thread. So a handle is never indexed for two records, even
// while the deleter of a joined task has not yet freed its record.
pthread_key_t taskIndexKey;
pthread_once_t taskIndexKeyOnce = PTHREAD_ONCE_INIT;

void taskThreadEnds(void *record) {
    OsLockHold hold(osTcbLock());
    tcbUnindexLocked(static_cast<Tcb *>(record));
}

void taskIndexKeyCreate() {
    const int created = pthread_key_create(&taskIndexKey, taskThreadEnds);
    OS_ASSERT(created == 0);
}

// Stores what only the task's own thread knows and indexes the record by its
// thread; expects tcbLock held. Returns InsertItem's result.
int taskRegisterRunningLocked(Tcb *tcb, TaskRunLine *line) {
    pthread_once(&taskIndexKeyOnce, taskIndexKeyCreate);
    tcb->thread = pthread_self();
    tcb->pid    = static_cast<uint32_t>(getpid());
    if (osIsNptlGet())
        tcb->threadId = t_gettid();
    const int inserted = tcbIndexLocked(tcb);
    pthread_setspecific(taskIndexKey, tcb);
    *line = {{}, tcb->pid, tcb->thread, tcb->threadId, tcb};
    std::memcpy(line->name, tcb->name, sizeof line->name);
    return inserted;
}

// The calling task frees its own record: its thread ends without the index
// hook, which would find the record gone.
void taskDestroySelf(Tcb *tcb) {
    pthread_setspecific(taskIndexKey, nullptr);
    DestroyTcb(tcb);
}

// Thread handles and record addresses show as 32-bit words, as on the
// appliance; a 64-bit host shows their lower half.
void taskLogRunning(const TaskRunLine &line) {
    if (osIsNptlGet())
        LogDebug(osSource, "task:%4.4s pid:%u thread %08x %d %08x\n", line.name, line.pid,
                 static_cast<uint32_t>(line.thread), static_cast<int>(line.threadId),
                 static_cast<uint32_t>(reinterpret_cast<uintptr_t>(line.tcb)));
    else
        LogDebug(osSource, "task:%4.4s pid:%u thread %d\n", line.name, line.pid,
                 static_cast<int>(line.thread));
}

// A null Tcb is the calling task; null when the caller is no task.
Tcb *taskOrCaller(Tcb *tcb) {
    return tcb != nullptr ? tcb : FindTcb(pthread_self());
}

// ---- Deletion ----------------------------------------------------------------
//
// Exactly one deletion owns the end of a record: the first to set its
// `deleting` flag under tcbLock. The owner frees the record once its thread
// can no longer touch it: at once for a task that never ran; after the join
// for another task; just before the thread exits for the task itself.
//
// Cancellation of the deleter is held off for the whole call, so that it
// can't leave a claimed record behind, nor free the record of a task that is
// still unwinding (which is what a clean-up run during the join would do).
// A cancel aimed at the deleter acts at the end of the call.
//
// A task that is being deleted starts no deletion of its own: it ends
// instead, as the pending cancel would have it end. So the joins can't form a
// cycle: a task joins only a task it claimed while nobody had claimed it,
// and the task it joins has been claimed, so it joins nobody later. Two tasks
// deleting each other at once end with one of them deleted by the other.

enum class TaskClaim {
    missing,    // no record: null from a thread that is no task, or gone
    otherOwner, // another deletion owns the record's end
    callerEnds, // the caller is being deleted and starts nothing
    owned,      // this call owns the record's end
};

struct TaskDeletion {
    TaskClaim claim;
    Tcb *target;
    bool self;        // the target is the calling task
    pthread_t thread; // the target's thread, 0 when it never ran
    char callerName[5];
    char targetName[5];
    int targetPid;
};

TaskDeletion taskClaim(Tcb *tcb) {
    TaskDeletion deletion{TaskClaim::missing, nullptr, false, 0, "????", "????", -1};
    OsLockHold hold(osTcbLock());
    Tcb *caller = tcbFindLocked(pthread_self());
    Tcb *target = tcb != nullptr ? tcb : caller;
    if (caller != nullptr)
        std::memcpy(deletion.callerName, caller->name, 4);
    if (target == nullptr || !tcbListHasLocked(target))
        return deletion;
    std::memcpy(deletion.targetName, target->name, 4);
    deletion.target    = target;
    deletion.targetPid = static_cast<int>(target->pid);
    deletion.thread    = target->thread;
    deletion.self      = target == caller;
    if (target->deleting != 0)
        deletion.claim = TaskClaim::otherOwner;
    else if (caller != nullptr && caller->deleting != 0)
        deletion.claim = TaskClaim::callerEnds;
    else {
        deletion.claim   = TaskClaim::owned;
        target->deleting = 1;
    }
    return deletion;
}

// How the calling task's thread ends: by pthread_exit from t_delete, or by
// returning from pthread_entry once the task's function has returned.
enum class TaskExit { exitThread, returnFromEntry };

// Runs with the caller's cancellation disabled. Returns the result of
// t_delete when it returns at all.
int taskDeleteDisabled(Tcb *tcb, TaskExit exit) {
    const TaskDeletion deletion = taskClaim(tcb);
    LogWarn(osSource, "task %4.4s deleted task:%4.4s, pid %d\n", deletion.callerName,
            deletion.targetName, deletion.targetPid);
    switch (deletion.claim) {
    case TaskClaim::missing:
        return ERR_NOTCB;
    case TaskClaim::otherOwner:
        // The owner cancels and joins this thread when it is the target.
        if (deletion.self && exit == TaskExit::exitThread)
            pthread_exit(PTHREAD_CANCELED);
        return 0;
    case TaskClaim::callerEnds:
        if (exit == TaskExit::exitThread)
            pthread_exit(PTHREAD_CANCELED);
        return 0;
    case TaskClaim::owned:
        break;
    }
    if (deletion.self) {
        pthread_detach(pthread_self());
        taskDestroySelf(deletion.target);
        if (exit == TaskExit::exitThread)
            pthread_exit(nullptr);
        return 0;
    }
    LogWarn(osSource, "deleted task:%4.4s\n", deletion.targetName);
    if (deletion.thread != 0) {
        pthread_cancel(deletion.thread);
        if (int joined = pthread_join(deletion.thread, nullptr); joined != 0)
            LogWarn(osSource, "deleted task failed to join: %d\n", joined);
    }
    DestroyTcb(deletion.target);
    return 0;
}

int taskDelete(Tcb *tcb, TaskExit exit) {
    int result = 0;
    {
        OsCancelOff noCancel;
        result = taskDeleteDisabled(tcb, exit);
    }
    pthread_testcancel();
    return result;
}

// ---- The task list -------------------------------------------------------------

constexpr int taskListRows = 200;

// One row of t_list, copied under tcbLock: a task deleted after the copy is
// never read.
struct TaskListRow {
    uintptr_t address;
    char name[5];
    int32_t priority;
    uint32_t last; // thread id under NPTL, pid otherwise
};

} // namespace

extern "C" int t_create(const char *name, int32_t priority, uint32_t, uint32_t, uint32_t,
                        Tcb **out) {
    Tcb *tcb = taskRecordNew(name, priority);
    if (tcb == nullptr)
        return ERR_NOTCB;
    AddTcb(tcb);
    if (out != nullptr)
        *out = tcb;
    return 0;
}

extern "C" int t_start(Tcb *tcb, uint32_t mode, TaskEntry entry, const uint32_t *args) {
    OS_ASSERT(tcb != nullptr);
    tcb->mode  = mode;
    tcb->entry = entry;
    pthread_attr_init(&tcb->attr);
    int32_t priority = taskPriority(tcb);
    if (!taskPriorityInRange(priority)) {
        LogWarn(osSource, "t_start priority %d out of range, setting to 0\n", priority);
        priority = 0;
        taskPrioritySet(tcb, priority);
    }
    const TaskSchedule schedule    = taskScheduleForStart(priority);
    tcb->schedParam.sched_priority = schedule.priority;
    pthread_attr_setschedpolicy(&tcb->attr, schedule.policy);
    pthread_attr_setschedparam(&tcb->attr, &tcb->schedParam);
    pthread_attr_setinheritsched(&tcb->attr, PTHREAD_EXPLICIT_SCHED);
    if (args != nullptr)
        std::memcpy(tcb->args, args, sizeof tcb->args);
    // The thread is created under tcbLock and its handle stored before the
    // release: a deletion then always sees a started task as started, and
    // the new thread, which registers under the same lock, finds it stored.
    int created = 0;
    {
        OsLockHold hold(osTcbLock());
        OS_ASSERT(tcb->thread == 0); // a task starts once
        pthread_t thread{};
        created = pthread_create(&thread, &tcb->attr, pthread_entry, tcb);
        if (created == 0)
            tcb->thread = thread;
    }
    if (created != 0) {
        errno = created;
        std::perror("pthread_create failed");
        return ERR_TIMEOUT;
    }
    return 0;
}

extern "C" void *pthread_entry(void *argument) {
    auto *tcb = static_cast<Tcb *>(argument);
    TaskRunLine line{};
    int inserted = 0;
    {
        OsLockHold hold(osTcbLock());
        inserted = taskRegisterRunningLocked(tcb, &line);
    }
    if (inserted != 0)
        LogCrit(osSource, "pthread_entry InsertItem error %d\n", inserted);
    taskLogRunning(line);
    tcb->entry(tcb->args[0], tcb->args[1], tcb->args[2], tcb->args[3]);
    taskDelete(tcb, TaskExit::returnFromEntry);
    return nullptr;
}

// A thread that is a task already stays that task: a second attach would
// index the same thread twice.
extern "C" int t_attach(const char *name, int32_t priority, uint32_t) {
    if (FindTcb(pthread_self()) != nullptr)
        return 0;
    Tcb *tcb = taskRecordNew(name, 0);
    if (tcb == nullptr)
        return ERR_NOTCB;
    if (!taskPriorityInRange(priority)) {
        LogWarn(osSource, "t_attach priority %d out of range, setting to 0\n", priority);
        priority = 0;
    }
    tcb->priority                  = priority;
    tcb->schedParam.sched_priority = tcb->priority;
    pthread_setschedparam(pthread_self(), os_get_policy(), &tcb->schedParam);
    // List and index in one hold: a rebuild between the two would index the
    // thread before its own insertion does.
    TaskRunLine line{};
    int inserted = 0;
    {
        OsLockHold hold(osTcbLock());
        inserted = taskRegisterRunningLocked(tcb, &line);
        if (inserted == 0)
            tcbListAppendLocked(tcb);
        else
            pthread_setspecific(taskIndexKey, nullptr);
    }
    if (inserted != 0) {
        pthread_cond_destroy(&tcb->cond);
        pthread_mutex_destroy(&tcb->mutex);
        std::free(tcb);
        return ERR_NOTCB;
    }
    taskLogRunning(line);
    return 0;
}

extern "C" int t_delete(Tcb *tcb) {
    return taskDelete(tcb, TaskExit::exitThread);
}

// The record's timers stop first, so that none touches it once it is freed;
// then it leaves the registry before its locks are destroyed, so that no
// lookup hands out a record whose mutex is gone.
extern "C" void DestroyTcb(Tcb *tcb) {
    timerCancelForTask(tcb);
    RemoveTcb(tcb);
    pthread_mutex_destroy(&tcb->mutex);
    pthread_cond_destroy(&tcb->cond);
    std::free(tcb);
}

extern "C" int t_ident(const char *name, uint32_t, Tcb **out) {
    Tcb *found = nullptr;
    if (name == nullptr) {
        found = FindTcb(pthread_self());
    } else {
        uint32_t wanted = 0;
        std::memcpy(&wanted, name, sizeof wanted);
        OsLockHold hold(osTcbLock());
        for (Tcb *record = tcbListHeadLocked(); record != nullptr; record = record->next) {
            uint32_t word = 0;
            std::memcpy(&word, record->name, sizeof word);
            if (word == wanted) {
                found = record;
                break;
            }
        }
    }
    *out = found;
    return found != nullptr ? 0 : ERR_NOTFOUND;
}

extern "C" char *t_name(Tcb *tcb) {
    Tcb *target = taskOrCaller(tcb);
    return target != nullptr ? target->name : nullptr;
}

extern "C" int t_setpri(Tcb *tcb, int32_t priority, int32_t *oldPriority) {
    Tcb *target = taskOrCaller(tcb);
    if (target == nullptr)
        return ERR_NOTCB;
    const int32_t old = taskPriority(target);
    if (oldPriority != nullptr)
        *oldPriority = old;
    if (priority == old)
        return 0;
    if (!taskPriorityInRange(priority)) {
        LogWarn(osSource, "t_setpri priority %d out of range, setting to 0\n", priority);
        priority = 0;
    }
    taskPrioritySet(target, priority);
    const TaskSchedule schedule = taskScheduleForSetpri(priority, old);
    // A task that never ran has no thread to re-schedule, and one that is
    // being deleted may have been joined already: both only keep the number.
    OsLockHold hold(osTcbLock());
    target->schedParam.sched_priority = schedule.priority;
    if (target->thread != 0 && target->deleting == 0)
        pthread_setschedparam(target->thread, schedule.policy, &target->schedParam);
    return 0;
}

extern "C" uint32_t t_getnote(Tcb *tcb) {
    Tcb *target = taskOrCaller(tcb);
    if (target == nullptr)
        return 0;
    return std::atomic_ref(target->note).load(std::memory_order_relaxed);
}

extern "C" int t_setnote(Tcb *tcb, uint32_t note) {
    Tcb *target = taskOrCaller(tcb);
    if (target == nullptr)
        return ERR_NOTCB;
    std::atomic_ref(target->note).store(note, std::memory_order_relaxed);
    return 0;
}

extern "C" void t_list(void) {
    std::array<TaskListRow, taskListRows> rows;
    int count = 0;
    {
        const bool nptl = osIsNptlGet() != 0;
        OsLockHold hold(osTcbLock());
        for (Tcb *record = tcbListHeadLocked(); record != nullptr && count < taskListRows;
             record      = record->next) {
            TaskListRow &row = rows[static_cast<size_t>(count++)];
            row.address      = reinterpret_cast<uintptr_t>(record);
            std::memcpy(row.name, record->name, sizeof row.name);
            row.priority = taskPriority(record);
            row.last     = nptl ? record->threadId : record->pid;
        }
    }
    std::printf("T[%d] Task:  ID    Name  Priority PID\n", processorNumber());
    for (int i = 0; i < count; ++i) {
        const TaskListRow &row = rows[static_cast<size_t>(i)];
        std::printf("T[%d]    %08x  %4s    %3d    %3d\n", processorNumber(),
                    static_cast<uint32_t>(row.address), row.name, row.priority,
                    static_cast<int>(row.last));
    }
}

extern "C" Tcb *t_findpid_pri(uint32_t pid, int32_t *priority) {
    OsLockHold hold(osTcbLock());
    for (Tcb *record = tcbListHeadLocked(); record != nullptr; record = record->next) {
        if (record->pid == pid) {
            if (priority != nullptr)
                *priority = taskPriority(record);
            return record;
        }
    }
    return nullptr;
}

extern "C" Tcb *t_findpid(uint32_t pid) {
    return t_findpid_pri(pid, nullptr);
}

extern "C" uint32_t t_gettid(void) {
    return static_cast<uint32_t>(syscall(SYS_gettid));
}
