// Process helpers of the OS layer: a process found by name in /proc, the
// first line of a command's output, a copy of an environment variable, and
// whether the root file system is on NFS.
#include "Common/OS/osAssert.h"
#include "Common/OS/osUtil.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

// How much of a stat file findProcess reads: the name sits near its start.
constexpr std::size_t statReadMax = 127;

// "/proc/" + a process id + "/stat".
constexpr std::size_t statPathSize = 64;

// Whether the stat file of process `entry` shows exactly `name` between the
// '(' and the first ')' behind it.
bool processNamed(const char *entry, const char *name) {
    char path[statPathSize];
    if (std::snprintf(path, sizeof path, "/proc/%s/stat", entry) >= static_cast<int>(sizeof path))
        return false;
    const int fd = open(path, O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    char text[statReadMax + 1];
    const ssize_t got = read(fd, text, statReadMax);
    close(fd);
    if (got < 0)
        return false;
    text[got]             = '\0';
    const char *openParen = std::strchr(text, '(');
    if (openParen == nullptr)
        return false;
    const char *inside      = openParen + 1;
    const std::size_t wants = std::strlen(name);
    if (std::strlen(inside) <= wants)
        return false;
    // A name without its ')' within the bytes read is no match.
    const char *closeParen = std::strchr(inside, ')');
    return closeParen != nullptr && static_cast<std::size_t>(closeParen - inside) == wants &&
           std::strncmp(inside, name, wants) == 0;
}

// The NFS root value: -2 until known, then 0 or -1. Two first callers at
// the same moment may both ask; they find the same answer.
std::atomic<int32_t> nfsRoot{-2};

constexpr int nfsLineSize = 256;

} // namespace

extern "C" int32_t findProcess(const char *name) {
    OS_ASSERT(name != nullptr);
    DIR *proc = opendir("/proc");
    if (proc == nullptr) {
        std::puts("could not open /proc");
        return -1;
    }
    int32_t found = -1;
    while (const dirent *entry = readdir(proc)) {
        // /proc fills in the type; an entry without one is tried as well,
        // and its stat file can't be opened if it is no folder.
        if ((entry->d_type != DT_DIR && entry->d_type != DT_UNKNOWN) || entry->d_name[0] < '0' ||
            entry->d_name[0] > '9')
            continue;
        if (processNamed(entry->d_name, name)) {
            found = static_cast<int32_t>(std::atoi(entry->d_name));
            break;
        }
    }
    closedir(proc);
    return found;
}

extern "C" int32_t commandLine(const char *command, char *buffer, int32_t size) {
    OS_ASSERT(command != nullptr && buffer != nullptr && size >= 1);
    buffer[0]    = '\0';
    FILE *stream = popen(command, "r");
    if (stream == nullptr)
        return -1;
    if (std::fgets(buffer, size, stream) == nullptr) {
        buffer[0] = '\0';
        pclose(stream);
        return -1;
    }
    trimBoth(buffer);
    pclose(stream);
    return 0;
}

extern "C" int32_t envCopy(const char *name, char *buffer, int32_t size) {
    OS_ASSERT(name != nullptr && buffer != nullptr);
    const char *value = std::getenv(name);
    if (value == nullptr || size < 0)
        return -1;
    const std::size_t length = std::strlen(value);
    if (length >= static_cast<std::size_t>(size))
        return -1;
    std::memcpy(buffer, value, length + 1);
    return 0;
}

extern "C" int32_t isNfsRoot(void) {
    const int32_t known = nfsRoot.load(std::memory_order_relaxed);
    if (known != -2)
        return known;
    char line[nfsLineSize];
    // commandLine trims the line: any text left is the root's mount line.
    const bool mounted =
        commandLine("mount | grep \"on / type nfs\"", line, sizeof line) == 0 && line[0] != '\0';
    const int32_t value = mounted ? -1 : 0;
    nfsRoot.store(value, std::memory_order_relaxed);
    return value;
}
