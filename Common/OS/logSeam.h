// Test seams of the log system: an observer of the lines that reach the
// queue, and the time of day that the time stamp reads. Neither changes what
// the product does; with nothing set, lines are only queued (or dropped) and
// the stamp reads the real time of day.
#ifndef COMMON_OS_LOGSEAM_H
#define COMMON_OS_LOGSEAM_H

#include <cstdio>
#include <sys/time.h>

// Called with each line that enters LogEnqueue, before the queue decides what
// to do with it, on the logging thread. It may run on several threads at
// once, and for a repeat report with the line lock held.
using LogEnqueueObserver = void (*)(const char *line, int length);
// Puts `observer` in place (null: none) and returns the previous one.
LogEnqueueObserver LogEnqueueObserverSet(LogEnqueueObserver observer);

// Fills in the time of day for LogTimeStamp.
using LogTimeOfDay = void (*)(timeval *now);
// Puts `source` in place (null: the real time of day) and returns the
// previous one (null when the real one was in place).
LogTimeOfDay LogTimeOfDaySet(LogTimeOfDay source);

// Where the writer prints (null: standard output). Returns the previous one.
FILE *LogWriterStreamSet(FILE *stream);

// Takes each forwarded line in place of syslog (null: syslog). Returns the
// previous one.
using LogForwarder = void (*)(int priority, const char *text);
LogForwarder LogForwarderSet(LogForwarder forwarder);

// Sets the ring up for a test without the writer task: creates its semaphore
// and counts a writer as present, so that lines are queued and a wrap spares
// unread records; the test drains by hand with LogDrain and may set the
// ring's words through logRing.h. Only in a process whose writer task was
// never started.
void LogRingHold();

#endif
