// The serving loop of plaunchd. A client writes its command line to the pipe
// and closes it, then opens the pipe again for reading and reads one line.
// So the daemon reads a request up to the end of the file (all writers gone),
// runs it, opens the pipe for writing once the client is back as its reader,
// writes the answer, and waits for the client to close before it reads the
// next request: the answer can't be taken for a request, nor a request for
// an answer.
#include "tools/plaunchd/launchServe.h"

#include "Common/OS/osUtil.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <initializer_list>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char **environ;

namespace {

// How long a client may take to come back for its answer and to read it,
// in milliseconds; then the answer is dropped and serving goes on. A guard
// against a client that died, not a measure of speed.
constexpr int clientGuardMs = 30000;
// The first and the longest pause while waiting for the client to come back.
constexpr int retryFirstMs = 1;
constexpr int retryMaxMs   = 64;

// One request as read: the line without its newline, and what was wrong.
struct Request {
    char Line[launchLineMax + 2]; // the line, its newline and a terminator
    std::size_t Length;           // bytes kept in Line
    std::size_t Bytes;            // bytes read in all
    bool TooLong;
    bool HasZero;
};

enum class Read { request, empty, stop, failed };

bool stopped(int stopFd) {
    pollfd p{stopFd, POLLIN, 0};
    return poll(&p, 1, 0) > 0;
}

// Reads one request from `fd` until all its writers have closed it.
Read readRequest(int fd, int stopFd, Request &request) {
    request = {};
    for (;;) {
        pollfd fds[2] = {{fd, POLLIN, 0}, {stopFd, POLLIN, 0}};
        if (poll(fds, 2, -1) < 0) {
            if (errno == EINTR)
                continue;
            return Read::failed;
        }
        if (fds[1].revents != 0)
            return Read::stop;
        char chunk[4096];
        const ssize_t got = read(fd, chunk, sizeof chunk);
        if (got < 0 && (errno == EINTR || errno == EAGAIN))
            continue;
        if (got < 0)
            return Read::failed;
        if (got == 0)
            return request.Bytes == 0 ? Read::empty : Read::request;
        // The whole request is read even when it is refused: a writer of an
        // over-long line must not meet a closed pipe.
        const std::size_t size = static_cast<std::size_t>(got);
        request.Bytes += size;
        request.HasZero        = request.HasZero || std::memchr(chunk, '\0', size) != nullptr;
        const std::size_t room = sizeof request.Line - 1 - request.Length;
        const std::size_t keep = size < room ? size : room;
        std::memcpy(request.Line + request.Length, chunk, keep);
        request.Length += keep;
        request.TooLong = request.TooLong || keep < size;
    }
}

// Why a request is refused, or null when its line can run.
const char *refusal(Request &request) {
    if (request.Length > 0 && request.Line[request.Length - 1] == '\n')
        request.Line[--request.Length] = '\0';
    request.Line[request.Length] = '\0';
    if (request.TooLong || request.Length > launchLineMax)
        return "over-long command line";
    if (request.HasZero)
        return "zero byte in the command line";
    if (std::memchr(request.Line, '\n', request.Length) != nullptr)
        return "more than one line";
    return nullptr;
}

// Runs `line` with the shell and waits for it: its exit status, 128 plus
// the signal's number when a signal ended it, or -1 when no shell could be
// started (with `error` set). The shell gets default handling of the
// signals that the daemon catches or ignores, and an empty mask.
int runShell(const char *line, int &error) {
    posix_spawnattr_t attr;
    posix_spawnattr_init(&attr);
    sigset_t defaults, none;
    sigemptyset(&defaults);
    for (int sig : {SIGPIPE, SIGINT, SIGTERM})
        sigaddset(&defaults, sig);
    sigemptyset(&none);
    posix_spawnattr_setsigdefault(&attr, &defaults);
    posix_spawnattr_setsigmask(&attr, &none);
    posix_spawnattr_setflags(&attr, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    char sh[] = "sh", dashC[] = "-c";
    char *argv[] = {sh, dashC, const_cast<char *>(line), nullptr};
    pid_t pid    = -1;
    error        = posix_spawn(&pid, "/bin/sh", nullptr, &attr, argv, environ);
    posix_spawnattr_destroy(&attr);
    if (error != 0)
        return -1;
    int status = 0;
    while (waitpid(pid, &status, 0) < 0) {
        if (errno != EINTR) {
            error = errno;
            return -1;
        }
    }
    if (WIFSIGNALED(status))
        return 128 + WTERMSIG(status);
    return WEXITSTATUS(status);
}

enum class Answer { given, dropped, stop };

// Waits for the client to open the pipe for reading, writes `text`, and
// waits until the client has closed it; then opens `nextFd` for the next
// request. The answer's descriptor is closed first: a client that opens the
// pipe for reading while any writer holds it doesn't wait for its answer.
Answer answer(const LaunchPipe &pipe, int stopFd, const char *text, int &nextFd) {
    int fd = -1;
    for (int waited = 0, pause = retryFirstMs; fd < 0; pause *= 2) {
        fd = LaunchPipeOpen(pipe, O_WRONLY);
        if (fd >= 0)
            break;
        if (errno != ENXIO || waited >= clientGuardMs)
            return Answer::dropped;
        pause = pause < retryMaxMs ? pause : retryMaxMs;
        pollfd stop{stopFd, POLLIN, 0};
        if (poll(&stop, 1, pause) > 0)
            return Answer::stop;
        waited += pause;
    }
    // The answer is far shorter than the pipe's buffer: one write.
    const std::size_t length = std::strlen(text);
    const bool wrote         = write(fd, text, length) == static_cast<ssize_t>(length);
    pollfd fds[2]            = {{fd, 0, 0}, {stopFd, POLLIN, 0}};
    int ready                = 0;
    while ((ready = poll(fds, 2, clientGuardMs)) < 0 && errno == EINTR) {
    }
    const bool stop = ready > 0 && fds[1].revents != 0 && fds[0].revents == 0;
    close(fd);
    nextFd = stop ? -1 : LaunchPipeOpen(pipe, O_RDONLY);
    // A client that neither read nor closed in time leaves the answer in the
    // pipe: it is read away here, so that it isn't taken for a request.
    char rest[OS_LAUNCH_ANSWER_MAX + 1];
    while (ready == 0 && nextFd >= 0 && read(nextFd, rest, sizeof rest) > 0) {
    }
    if (stop)
        return Answer::stop;
    return wrote && ready > 0 ? Answer::given : Answer::dropped;
}

} // namespace

int LaunchServe(const LaunchPipe &pipe, int stopFd) {
    int fd = LaunchPipeOpen(pipe, O_RDONLY);
    static Request request;
    for (;;) {
        if (fd < 0) {
            std::fprintf(stderr, "plaunchd: cannot open %s: %s\n", pipe.Path, std::strerror(errno));
            return 1;
        }
        const Read got = readRequest(fd, stopFd, request);
        if (got == Read::stop) {
            close(fd);
            return 0;
        }
        if (got != Read::request) { // a writer that wrote nothing, or a read error
            close(fd);
            fd = LaunchPipeOpen(pipe, O_RDONLY);
            continue;
        }
        // The request's descriptor stays open while the command runs: a
        // second plaunchd finds a reader there and doesn't take the path.
        // It is closed before the answer, which must find the client as the
        // only reader.
        char text[OS_LAUNCH_ANSWER_MAX + 1];
        if (const char *why = refusal(request)) {
            std::fprintf(stderr, "plaunchd: refused a request: %s\n", why);
            std::snprintf(text, sizeof text, "-1 refused: %s\n", why);
        } else {
            int error        = 0;
            const int status = runShell(request.Line, error);
            if (status < 0)
                std::snprintf(text, sizeof text, "-1 cannot run the shell: %s\n",
                              std::strerror(error));
            else
                std::snprintf(text, sizeof text, "%d\n", status);
        }
        close(fd);
        fd                  = -1;
        const Answer result = answer(pipe, stopFd, text, fd);
        if (result == Answer::stop)
            return 0;
        if (result == Answer::dropped) {
            std::fprintf(stderr, "plaunchd: the client did not take its answer\n");
            if (fd < 0 && !stopped(stopFd))
                fd = LaunchPipeOpen(pipe, O_RDONLY);
        }
    }
}
