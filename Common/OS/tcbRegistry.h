// What the task operations need of the registry beyond its public
// operations: the list and the thread index, read and changed under one hold
// of tcbLock. Every function here expects the caller to hold tcbLock.
#ifndef COMMON_OS_TCBREGISTRY_H
#define COMMON_OS_TCBREGISTRY_H

#include "Common/OS/os.h"

// The head of the task list.
Tcb *tcbListHeadLocked();
// Whether `tcb` is a record of the list; compares addresses only, so a
// record that is gone is never read.
bool tcbListHasLocked(const Tcb *tcb);
// Appends `tcb` to the tail of the list.
void tcbListAppendLocked(Tcb *tcb);
// The thread index, created first when there is none (null when the heap
// gave nothing).
Tree *tcbTreeLocked();
// The running task of `thread`, or null.
Tcb *tcbFindLocked(pthread_t thread);
// Indexes `tcb` by its thread from now on; InsertItem's result.
int tcbIndexLocked(Tcb *tcb);
// Takes `tcb` out of the index: its thread has ended.
void tcbUnindexLocked(Tcb *tcb);

#endif
