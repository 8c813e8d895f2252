// The log ring shared by the producers (LogEnqueue) and the writer task
// (LogDrain, LogWriterStart): its size, its words and the writer's identity.
#ifndef COMMON_OS_LOGRING_H
#define COMMON_OS_LOGRING_H

#include "Common/OS/os.h"

#include <atomic>
#include <cstdint>

// Terminated strings, one behind the other. A string never ends beyond
// logRingLimit, so the last two bytes stay zero: the writer can step over
// one empty string at the old end of a wrap and still read the byte behind.
constexpr int32_t logRingSize  = 0x80000;
constexpr int32_t logRingLimit = logRingSize - 2;

extern char logRing[logRingSize];
// Offset of the next string to print: written by the writer only, once the
// record before it is printed (and by LogWriterStart).
extern std::atomic<int32_t> logHead;
// Offset behind the last string stored: written by the producers only, under
// logSem, once the bytes are in place (and by LogWriterStart).
extern std::atomic<int32_t> logTail;
// The event bit that wakes the writer, and whether a producer has sent it
// since the writer last took it: set by producers, cleared by the writer.
constexpr uint32_t logWakeBit = 1;
extern std::atomic<bool> logWakePending;
// Guards the producers; null until LogWriterStart.
extern std::atomic<Semaphore *> logSem;
// The writer task "logw"; null until it is created.
extern std::atomic<Tcb *> logTask;
// A writer drains the ring (the task runs, or a test drains by hand): a wrap
// must then leave unread records alone. Without one nothing is ever read,
// and a wrap writes over the oldest lines.
extern std::atomic<bool> logWriterRuns;

#endif
