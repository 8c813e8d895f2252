// The task registry: the list of all tasks in order of registration and the
// index of the running ones by thread, both under tcbLock.
#include "Common/OS/tcbRegistry.h"

#include "Common/OS/osLocks.h"

#include <cstdio>

namespace {

Tcb *tcbList  = nullptr;
Tree *tcbTree = nullptr;

// The key tree can't remove one key: empty it and insert every record whose
// thread runs. `running` is set in the same hold as a record's first
// insertion (pthread_entry, t_attach) and cleared when its thread ends, so
// created records stay out whatever the thread library, and an ended
// thread's handle, which a new thread may get, is never indexed twice.
void tcbTreeRebuildLocked() {
    if (tcbTree == nullptr)
        return; // nothing was ever indexed
    DestroyTree(tcbTree);
    for (Tcb *record = tcbList; record != nullptr; record = record->next) {
        if (record->running != 0)
            InsertItem(tcbTree, record->thread, reinterpret_cast<TreeValue>(record));
    }
}

} // namespace

Tcb *tcbListHeadLocked() {
    return tcbList;
}

bool tcbListHasLocked(const Tcb *tcb) {
    for (const Tcb *record = tcbList; record != nullptr; record = record->next) {
        if (record == tcb)
            return true;
    }
    return false;
}

void tcbListAppendLocked(Tcb *tcb) {
    Tcb **link = &tcbList;
    while (*link != nullptr)
        link = &(*link)->next;
    *link     = tcb;
    tcb->next = nullptr;
}

Tree *tcbTreeLocked() {
    if (tcbTree == nullptr)
        tcbTree = CreateTree();
    return tcbTree;
}

// Before any registration there is no index, and no task to find.
Tcb *tcbFindLocked(pthread_t thread) {
    if (tcbTree == nullptr)
        return nullptr;
    return reinterpret_cast<Tcb *>(SearchTree(tcbTree, thread));
}

int tcbIndexLocked(Tcb *tcb) {
    tcb->running = 1;
    return InsertItem(tcbTreeLocked(), tcb->thread, reinterpret_cast<TreeValue>(tcb));
}

void tcbUnindexLocked(Tcb *tcb) {
    tcb->running = 0;
    tcbTreeRebuildLocked();
}

extern "C" void AddTcb(Tcb *tcb) {
    if (tcb == nullptr) {
        std::puts("AddTcb: tcb pointer is NULL");
        return;
    }
    OsLockHold hold(osTcbLock());
    tcbListAppendLocked(tcb);
}

extern "C" void RemoveTcb(Tcb *tcb) {
    OsLockHold hold(osTcbLock());
    for (Tcb **link = &tcbList; *link != nullptr; link = &(*link)->next) {
        if (*link == tcb) {
            *link     = tcb->next;
            tcb->next = nullptr;
            tcbTreeRebuildLocked();
            return;
        }
    }
}

extern "C" Tcb *FindTcb(pthread_t thread) {
    OsLockHold hold(osTcbLock());
    return tcbFindLocked(thread);
}

extern "C" void InitTcbTree(void) {
    OsLockHold hold(osTcbLock());
    tcbTreeLocked();
}
