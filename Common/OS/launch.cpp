// The shell-command launcher: systemLaunch hands a command line to the peer
// at the request path and reads back the line that starts with its result.
#include "Common/OS/launchSeam.h"
#include "Common/OS/log.h"
#include "Common/OS/os.h"
#include "Common/OS/osAssert.h"
#include "Common/OS/osUtil.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr const char *launchSource = "system_pthread";

std::atomic<const char *> launchPath{nullptr};

const char *requestPath() {
    const char *path = launchPath.load(std::memory_order_relaxed);
    return path != nullptr ? path : OS_LAUNCH_PATH;
}

// The "scall" semaphore, made by the first caller. Two first callers at the
// same moment both make one; the one that comes second deletes its own and
// uses the other. Null while none could be made; the next call tries again.
std::atomic<Semaphore *> scallId{nullptr};

Semaphore *scall() {
    Semaphore *id = scallId.load(std::memory_order_acquire);
    if (id != nullptr)
        return id;
    Semaphore *made = nullptr;
    if (sm_create("scall", 1, 0, &made) != 0)
        return nullptr;
    if (scallId.compare_exchange_strong(id, made, std::memory_order_acq_rel))
        return made;
    sm_delete(made);
    return id;
}

// Holds "scall" for a scope. The section has cancellation points (open,
// read, write), and the destructor gives the semaphore back when a
// cancelled task unwinds. "scall" is taken before the log's locks.
struct ScallHold {
    explicit ScallHold(Semaphore *semaphore) : id(semaphore) { sm_p(id, 0, 0); }
    ~ScallHold() { sm_v(id); }
    ScallHold(const ScallHold &)            = delete;
    ScallHold &operator=(const ScallHold &) = delete;
    Semaphore *id;
};

// A write to a pipe whose reader went away (the peer stopped) must fail
// with EPIPE, not end the process: SIGPIPE is blocked in this thread for
// the scope, and one that the write raised is taken back before the mask
// is restored.
struct PipeSignalHold {
    PipeSignalHold() {
        sigemptyset(&pipeOnly);
        sigaddset(&pipeOnly, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &pipeOnly, &old);
        sigset_t pending;
        sigpending(&pending);
        wasPending = sigismember(&pending, SIGPIPE) == 1;
    }
    ~PipeSignalHold() {
        sigset_t pending;
        sigpending(&pending);
        if (!wasPending && sigismember(&pending, SIGPIPE) == 1) {
            const timespec now{0, 0};
            while (sigtimedwait(&pipeOnly, nullptr, &now) < 0 && errno == EINTR) {
            }
        }
        pthread_sigmask(SIG_SETMASK, &old, nullptr);
    }
    PipeSignalHold(const PipeSignalHold &)            = delete;
    PipeSignalHold &operator=(const PipeSignalHold &) = delete;
    sigset_t pipeOnly, old;
    bool wasPending = false;
};

bool writeAll(int fd, const char *data, std::size_t size) {
    while (size > 0) {
        const ssize_t wrote = write(fd, data, size);
        if (wrote < 0 && errno == EINTR)
            continue;
        if (wrote <= 0)
            return false;
        data += wrote;
        size -= static_cast<std::size_t>(wrote);
    }
    return true;
}

// Writes the command and a newline; false with errno set when that failed.
bool writeRequest(const char *path, const char *command) {
    const int fd = open(path, O_WRONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return false;
    bool wrote;
    {
        PipeSignalHold hold;
        wrote = writeAll(fd, command, std::strlen(command)) && writeAll(fd, "\n", 1);
    }
    const int saved = errno;
    close(fd);
    errno = saved;
    return wrote;
}

// Reads one answer line into `line` (without its newline), a byte at a time
// so that nothing behind the newline is taken from a pipe that the next
// request uses. The bytes read (the newline counted), or -1 with errno set
// when the path couldn't be opened.
int readAnswer(const char *path, char (&line)[OS_LAUNCH_ANSWER_MAX + 1]) {
    const int fd = open(path, O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return -1;
    int length = 0, bytes = 0;
    while (length < OS_LAUNCH_ANSWER_MAX) {
        const ssize_t got = read(fd, &line[length], 1);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            break;
        ++bytes;
        if (line[length] == '\n')
            break;
        ++length;
    }
    line[length] = '\0';
    close(fd);
    return bytes;
}

// Logs a request that didn't reach the peer, by errno: -1.
int32_t launchFailed(const char *command) {
    const int error = errno;
    char text[128];
    LogError(launchSource, "%s [%d %s]\n", command, error, strerror_r(error, text, sizeof text));
    return -1;
}

} // namespace

const char *LaunchPathSet(const char *path) {
    return launchPath.exchange(path, std::memory_order_relaxed);
}

// Decided here: the path is opened without following a symbolic link and is
// never created, so that a link or a file planted in a shared /tmp gets no
// command written into it; a failed write of the request counts as a failed
// open; when no "scall" semaphore can be made the request fails with ENOMEM.
// A newline inside the command is sent as it is (plaunchd refuses it).
extern "C" int32_t systemLaunch(const char *command) {
    OS_ASSERT(command != nullptr);
    Semaphore *id = scall();
    if (id == nullptr) {
        errno = ENOMEM;
        return launchFailed(command);
    }
    ScallHold hold(id);
    const char *path = requestPath();
    char line[OS_LAUNCH_ANSWER_MAX + 1];
    int bytes = -1;
    if (writeRequest(path, command))
        bytes = readAnswer(path, line);
    if (bytes < 0)
        return launchFailed(command);
    // As atoi reads it: the number at the start, 0 when there is none.
    const int32_t result = bytes > 0 ? static_cast<int32_t>(std::strtol(line, nullptr, 10)) : -1;
    LogInfo(launchSource, "%s [%d]\n", command, static_cast<int>(result));
    return result;
}
