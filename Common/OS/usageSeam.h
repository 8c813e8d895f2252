// Test seam of the usage report: the folder it reads instead of /proc, the
// time it reads instead of gettimeofday and the stream it prints on instead
// of standard output, so that a test lays down its own stat files and time.
#ifndef COMMON_OS_USAGESEAM_H
#define COMMON_OS_USAGESEAM_H

#include <cstdio>
#include <sys/time.h>

// Stores the time of day in `now`.
using UsageClock = void (*)(timeval *now);

// Sets what the report reads and where it prints; null restores /proc,
// gettimeofday and standard output. The folder is copied and must be shorter
// than 256 bytes. Not while a report runs.
void UsageSeamSet(const char *procFolder, UsageClock clock, FILE *out);

// Forgets the stored time and the stored process totals, as before the
// first report. Tasks keep their readings in their records. Not while a
// report runs.
void UsageSeamReset();

#endif
