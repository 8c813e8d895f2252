// The processor usage report: per task, the process "jvm", all other
// processes and idle, each since the last report, read from the kernel's
// tick counters under /proc.
#include "Common/OS/osAssert.h"
#include "Common/OS/osLocks.h"
#include "Common/OS/osUsage.h"
#include "Common/OS/tcbRegistry.h"
#include "Common/OS/usageSeam.h"
#include "Common/OS/usageStat.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Ticks per second of the kernel's counters.
constexpr uint32_t usageHz = 100;
// The most a row shows, in tenths of a percent: 99.9.
constexpr int32_t usageRowMax = 999;
// The tasks one report measures, in list order; a task beyond them keeps
// its readings for a later report.
constexpr int usageTaskRows = 200;
// The folder read, and a path below it.
constexpr size_t usageFolderBytes = 256;
constexpr size_t usagePathBytes   = usageFolderBytes + 64;

// Kept between reports.
int32_t usageLastSec     = 0; // time of day at the last report
int32_t usageLastUsec    = 0;
uint32_t usageJvmTotal   = 0;       // user plus system ticks of "jvm" at the last report
uint32_t usageOtherTotal = 0;       // the same summed over all other processes
DIR *usageProcDir        = nullptr; // the open /proc, null between reports

// Per report: seconds since the last one, and the running sum of all rows in
// whole percent and tenths 0 to 9.
float usageElapsed   = 0.0f;
int32_t usagePercent = 0;
int32_t usageTenths  = 0;

// What the report reads and where it prints (the test seam).
std::array<char, usageFolderBytes> usageFolder = {"/proc"};
UsageClock usageClock                          = nullptr; // null: gettimeofday
FILE *usageOut                                 = nullptr; // null: standard output

FILE *usageOutput() {
    return usageOut != nullptr ? usageOut : stdout;
}

// One report at a time: a second one at once is a caller's error. The flag
// is cleared on the way out also when the reporting task is deleted.
std::atomic<bool> usageBusy{false};
struct UsageReportHold {
    UsageReportHold() { OS_ASSERT(!usageBusy.exchange(true)); }
    ~UsageReportHold() { usageBusy.store(false); }
    UsageReportHold(const UsageReportHold &)            = delete;
    UsageReportHold &operator=(const UsageReportHold &) = delete;
};

// Seconds since the last report, in the stated order of steps: the signed
// difference of the seconds as a double, plus the signed difference of the
// microseconds as a float divided by 1000000.0 as a double, the sum rounded
// to a float. The new time is stored.
void usageElapsedMeasure() {
    timeval now{};
    if (usageClock != nullptr)
        usageClock(&now);
    else
        gettimeofday(&now, nullptr);
    const auto sec       = static_cast<int32_t>(now.tv_sec);
    const auto usec      = static_cast<int32_t>(now.tv_usec);
    const double seconds = static_cast<double>(int64_t{sec} - usageLastSec);
    const float micros   = static_cast<float>(int64_t{usec} - usageLastUsec);
    usageElapsed         = static_cast<float>(seconds + static_cast<double>(micros) / 1000000.0);
    usageLastSec         = sec;
    usageLastUsec        = usec;
}

// The usage of `ticks` over the interval in tenths of a percent: ticks *
// 1000 / usageHz in 32-bit unsigned arithmetic (exact up to 4294967 ticks,
// wrapping beyond), divided by the interval as a float, truncated, at most
// 999. The cap is applied to the float: a quotient of 1000 or more truncates
// above 999 anyway, and one past the 32-bit range (a difference that wrapped
// over a short interval) could not be converted. An interval that is not
// above 0, two reports within one microsecond or a clock set back, gives 0:
// no figure comes from a division by zero or by negative time.
int32_t usageOf(uint32_t ticks) {
    if (!(usageElapsed > 0.0f))
        return 0;
    const uint32_t tenths = ticks * 1000u / usageHz;
    const float value     = static_cast<float>(tenths) / usageElapsed;
    if (value >= static_cast<float>(usageRowMax + 1))
        return usageRowMax;
    return static_cast<int32_t>(value);
}

// A usage in whole percent and tenths, added to the running sum: the tenths
// first, carrying into whole percent.
struct UsageFigure {
    int32_t whole;
    int32_t tenths;
    bool shows() const { return whole > 0 || tenths > 0; }
};
UsageFigure usageCount(uint32_t ticks) {
    const int32_t value = usageOf(ticks);
    const UsageFigure figure{value / 10, value % 10};
    usageTenths += figure.tenths;
    if (usageTenths > 9) {
        usagePercent += 1;
        usageTenths -= 10;
    }
    usagePercent += figure.whole;
    return figure;
}

// What a task row needs, copied under tcbLock. The record itself is written
// again only after it is found in the list under the lock once more.
struct UsageTaskRow {
    Tcb *record;
    uint32_t pid;
    uint32_t threadId;
    char name[5];
    int32_t priority;
    uint32_t lastStime;
    uint32_t lastUtime;
};

// Stores a task's new readings. A task deleted during the report is not
// written: its record must still be in the list, with the same thread id
// (a new record may have taken the freed one's address).
void usageReadingsStore(const UsageTaskRow &row, const UsageStat &stat) {
    OsLockHold hold(osTcbLock());
    if (!tcbListHasLocked(row.record) || row.record->threadId != row.threadId)
        return;
    row.record->lastStime = stat.stime;
    row.record->lastUtime = stat.utime;
}

// The rows of the tasks, from a copy of the list taken under tcbLock: no
// file is read and nothing printed with the lock held, and a task deleted
// after the copy is never read.
void usageTasks(FILE *out) {
    std::array<UsageTaskRow, usageTaskRows> rows;
    size_t count = 0;
    {
        OsLockHold hold(osTcbLock());
        for (Tcb *record = tcbListHeadLocked(); record != nullptr && count < rows.size();
             record      = record->next) {
            const int32_t priority =
                std::atomic_ref(record->priority).load(std::memory_order_relaxed);
            rows[count] = {record,   record->pid,       record->threadId, {},
                           priority, record->lastStime, record->lastUtime};
            std::memcpy(rows[count].name, record->name, sizeof rows[count].name);
            ++count;
        }
    }
    for (size_t i = 0; i < count; ++i) {
        const UsageTaskRow &row = rows[i];
        char path[usagePathBytes];
        std::snprintf(path, sizeof path, "%s/%d/task/%d/stat", usageFolder.data(),
                      static_cast<int>(row.pid), static_cast<int>(row.threadId));
        UsageStat stat;
        if (!usageStatRead(path, &stat))
            continue;
        const uint32_t ticks = (stat.stime - row.lastStime) + (stat.utime - row.lastUtime);
        usageReadingsStore(row, stat);
        const UsageFigure figure = usageCount(ticks);
        if (figure.shows())
            std::fprintf(out, "%10d %4s %3d %3d.%d\n", static_cast<int>(row.threadId), row.name,
                         row.priority, figure.whole, figure.tenths);
    }
}

// The process the task rows stand for, left out of the process rows: the
// first task's, which all tasks share; with no task registered, or a first
// task that doesn't run yet (pid 0), the report's own process.
uint32_t usageOwnPid() {
    uint32_t pid = 0;
    {
        OsLockHold hold(osTcbLock());
        if (const Tcb *head = tcbListHeadLocked(); head != nullptr)
            pid = head->pid;
    }
    return pid != 0 ? pid : static_cast<uint32_t>(getpid());
}

// Opens the walk's folder when it isn't open, and closes it at the end of
// the scope, also when the reporting task is deleted while it prints.
struct UsageDirHold {
    UsageDirHold() {
        if (usageProcDir == nullptr)
            usageProcDir = opendir(usageFolder.data());
    }
    ~UsageDirHold() {
        if (usageProcDir == nullptr)
            return;
        OsCancelOff noCancel;
        closedir(usageProcDir);
        usageProcDir = nullptr;
    }
    UsageDirHold(const UsageDirHold &)            = delete;
    UsageDirHold &operator=(const UsageDirHold &) = delete;
};

// The process "jvm" and the sum of all other processes. When the folder
// can't be opened there is nothing to walk: neither row is printed and the
// stored totals stay as they are, so that no row shows a figure from a
// total of 0 now or at the next report; the tasks and idle still show.
void usageProcesses(FILE *out) {
    const uint32_t ownPid = usageOwnPid();
    UsageDirHold dir;
    if (usageProcDir == nullptr)
        return;
    // The 64-bit forms: on a 32-bit build the plain readdir and stat fail
    // with EOVERFLOW on a file system whose inode numbers pass 32 bits.
    uint32_t otherTotal = 0;
    while (const dirent64 *entry = readdir64(usageProcDir)) {
        if (entry->d_name[0] < '0' || entry->d_name[0] > '9')
            continue;
        const int pid = std::atoi(entry->d_name);
        if (static_cast<uint32_t>(pid) == ownPid)
            continue;
        char path[usagePathBytes];
        struct stat64 info;
        std::snprintf(path, sizeof path, "%s/%d", usageFolder.data(), pid);
        if (stat64(path, &info) != 0)
            continue;
        std::snprintf(path, sizeof path, "%s/%d/stat", usageFolder.data(), pid);
        UsageStat stat;
        if (!usageStatRead(path, &stat))
            continue;
        stat.name[4]         = '\0';
        const uint32_t total = stat.utime + stat.stime;
        if (std::strcmp(stat.name, "jvm") != 0) {
            otherTotal += total;
            continue;
        }
        const uint32_t ticks     = total - usageJvmTotal;
        usageJvmTotal            = total;
        const UsageFigure figure = usageCount(ticks);
        if (figure.shows())
            std::fprintf(out, "%10d %4s     %3d.%d\n", pid, stat.name, figure.whole, figure.tenths);
    }
    const uint32_t ticks     = otherTotal - usageOtherTotal;
    usageOtherTotal          = otherTotal;
    const UsageFigure figure = usageCount(ticks);
    if (figure.shows())
        std::fprintf(out, "          other     %3d.%d\n", figure.whole, figure.tenths);
}

// The process rows, then idle: 100.0 minus the sum of all rows, in whole
// percent and tenths without a float. It is negative when the rows sum above
// 100.0.
void usageOthers() {
    FILE *out = usageOutput();
    usageProcesses(out);
    if (usageTenths == 0) {
        usageTenths = 10;
        usagePercent -= 1;
    }
    std::fprintf(out, "           idle     %3d.%d\n", 99 - usagePercent, 10 - usageTenths);
}

} // namespace

extern "C" void t_usage(void) {
    UsageReportHold report;
    usageElapsedMeasure();
    usagePercent = 0;
    usageTenths  = 0;
    FILE *out    = usageOutput();
    std::fputs("TaskID     Name  Pri Usage\n", out);
    std::fputs("--------------------------\n", out);
    usageTasks(out);
    usageOthers();
}

extern "C" void t_usage_others(void) {
    UsageReportHold report;
    usageOthers();
}

void UsageSeamSet(const char *procFolder, UsageClock clock, FILE *out) {
    const char *folder = procFolder != nullptr ? procFolder : "/proc";
    OS_ASSERT(std::strlen(folder) < usageFolder.size());
    std::snprintf(usageFolder.data(), usageFolder.size(), "%s", folder);
    usageClock = clock;
    usageOut   = out;
}

void UsageSeamReset() {
    usageLastSec    = 0;
    usageLastUsec   = 0;
    usageJvmTotal   = 0;
    usageOtherTotal = 0;
}
