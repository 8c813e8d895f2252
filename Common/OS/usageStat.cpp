// Reading a stat line of /proc for the usage report.
#include "Common/OS/usageStat.h"
#include "Common/OS/osLocks.h"

#include <cstdio>
#include <cstring>

namespace {

// One line of a stat file; the kernel's are far shorter.
constexpr int usageLineBytes = 1024;

} // namespace

bool usageStatRead(const char *path, UsageStat *stat) {
    char line[usageLineBytes];
    {
        // The file is open only here and read at once.
        OsCancelOff noCancel;
        FILE *file = std::fopen(path, "r");
        if (file == nullptr)
            return false;
        const bool read = std::fgets(line, sizeof line, file) != nullptr;
        std::fclose(file);
        if (!read)
            return false;
    }
    // The command may hold parentheses itself: its end is the last one.
    char *close = std::strrchr(line, ')');
    if (close == nullptr || close[1] != ' ')
        return false;
    *close              = '\0';
    char state          = 0;
    int parent          = 0;
    unsigned long utime = 0;
    unsigned long stime = 0;
    const int items = std::sscanf(close + 2, "%c %d %*s %*s %*s %*s %*s %*s %*s %*s %*s %lu %lu ",
                                  &state, &parent, &utime, &stime);
    if (items != 4)
        return false;
    std::memset(stat->name, 0, sizeof stat->name);
    std::sscanf(line, "%*s (%15c", stat->name);
    stat->utime = static_cast<uint32_t>(utime);
    stat->stime = static_cast<uint32_t>(stime);
    return true;
}
