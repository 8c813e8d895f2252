// Reading one process's or thread's stat line under /proc for the usage
// report: its command name and its user and system ticks.
#ifndef COMMON_OS_USAGESTAT_H
#define COMMON_OS_USAGESTAT_H

#include <cstdint>

struct UsageStat {
    char name[16];  // the command, at most 15 characters, zero-filled
    uint32_t utime; // user time in clock ticks
    uint32_t stime; // system time in clock ticks
};

// Reads the stat line at `path`. False when the file can't be opened or
// read, or the line has no ')' with a blank behind it, or the tick fields
// don't scan; `stat` is then unspecified. Doesn't act on cancellation.
bool usageStatRead(const char *path, UsageStat *stat);

#endif
