// What the OS layer needs of the log system's internals: the line lock,
// which works in its static state until the OS layer gives it its final
// attributes at start.
#ifndef COMMON_OS_LOGINTERNAL_H
#define COMMON_OS_LOGINTERNAL_H

#include <pthread.h>

// Re-creates the line lock with `attributes` (recursive with priority
// inheritance at OS start). Only while no thread logs: at OS start, before
// any task runs.
void LogLineLockRecreate(const pthread_mutexattr_t *attributes);

#endif
