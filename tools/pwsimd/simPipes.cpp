// The pipes of pwsimd: checking the folder, detecting a running daemon,
// creating, holding and removing the twelve pipes.
#include "tools/pwsimd/simPipes.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <initializer_list>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// What is at a pipe's path before we start.
enum class Found { nothing, stale, busy, notPipe, error };

Found examine(const char *path, bool isRequest, int &error) {
    struct stat st {};
    if (lstat(path, &st) != 0) {
        error = errno;
        return errno == ENOENT ? Found::nothing : Found::error;
    }
    if (!S_ISFIFO(st.st_mode))
        return Found::notPipe;
    if (!isRequest)
        return Found::stale;
    // A daemon holds each request pipe open for reading: then this open
    // succeeds. Without a reader it fails with ENXIO.
    int fd = open(path, O_WRONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd >= 0) {
        close(fd);
        return Found::busy;
    }
    error = errno;
    return errno == ENXIO ? Found::stale : Found::error;
}

bool failWith(char *error, std::size_t size, const char *what, const char *path, int err) {
    std::snprintf(error, size, "%s %s: %s", what, path, std::strerror(err));
    return false;
}

// Checks every path before anything is changed: a refusal leaves the folder
// as it was.
bool checkPaths(const char *dir, const SimPipes &pipes, char *error, std::size_t size) {
    for (const SimPipePair &pair : pipes.Pairs) {
        for (bool isRequest : {true, false}) {
            const char *path = isRequest ? pair.RequestPath : pair.ReplyPath;
            int err          = 0;
            switch (examine(path, isRequest, err)) {
            case Found::nothing:
            case Found::stale:
                break;
            case Found::busy:
                std::snprintf(error, size,
                              "a running daemon holds the pipes in %s (%s has a reader)", dir,
                              path);
                return false;
            case Found::notPipe:
                std::snprintf(error, size, "%s exists and is not a pipe", path);
                return false;
            case Found::error:
                return failWith(error, size, "cannot check", path, err);
            }
        }
    }
    return true;
}

void closeFd(int &fd) {
    if (fd >= 0)
        close(fd);
    fd = -1;
}

} // namespace

bool SimPipesCreate(const char *dir, SimPipes &pipes, char *error, std::size_t errorSize) {
    pipes = {};
    for (SimPipePair &pair : pipes.Pairs) {
        pair.RequestFd = -1;
        pair.ReplyFd   = -1;
    }
    std::size_t length = std::strlen(dir);
    if (length > PW_PATH_MAX) {
        std::snprintf(error, errorSize, "folder '%.200s' is too long: %u characters, at most %d",
                      dir, static_cast<unsigned>(length), PW_PATH_MAX);
        return false;
    }
    struct stat st {};
    if (stat(dir, &st) != 0)
        return failWith(error, errorSize, "no folder", dir, errno);
    if (!S_ISDIR(st.st_mode)) {
        std::snprintf(error, errorSize, "%s is not a folder", dir);
        return false;
    }

    for (std::size_t i = 0; i < simPairCount; ++i) {
        SimPipePair &pair        = pipes.Pairs[i];
        pair.Chip                = static_cast<int>(i % PW_MAX_CHIPS);
        pair.Interface           = i < PW_MAX_CHIPS ? PW_INTERFACE_CMD : PW_INTERFACE_DIAG;
        const PWPipeNames &names = PWPipeNamesOf(pair.Interface);
        PWPipePath(pair.RequestPath, dir, names.ClientWrites, pair.Chip);
        PWPipePath(pair.ReplyPath, dir, names.ClientReads, pair.Chip);
    }
    if (!checkPaths(dir, pipes, error, errorSize))
        return false;

    // From here on anything made is removed again on failure.
    pipes.Created = true;
    for (SimPipePair &pair : pipes.Pairs) {
        for (char *path : {pair.RequestPath, pair.ReplyPath}) {
            unlink(path); // a stale pipe, or nothing
            if (mkfifo(path, 0666) != 0) {
                int err = errno;
                SimPipesRemove(pipes);
                return failWith(error, errorSize, "cannot create", path, err);
            }
        }
        // O_RDWR on a FIFO never blocks on Linux and makes us reader and
        // writer at once.
        pair.RequestFd = open(pair.RequestPath, O_RDWR | O_NONBLOCK | O_CLOEXEC);
        pair.ReplyFd   = open(pair.ReplyPath, O_RDWR | O_NONBLOCK | O_CLOEXEC);
        if (pair.RequestFd < 0 || pair.ReplyFd < 0) {
            int err          = errno;
            const char *path = pair.RequestFd < 0 ? pair.RequestPath : pair.ReplyPath;
            SimPipesRemove(pipes);
            return failWith(error, errorSize, "cannot open", path, err);
        }
    }
    return true;
}

void SimPipesRemove(SimPipes &pipes) {
    if (!pipes.Created)
        return;
    pipes.Created = false;
    for (SimPipePair &pair : pipes.Pairs) {
        closeFd(pair.RequestFd);
        closeFd(pair.ReplyFd);
        if (pair.RequestPath[0] != '\0')
            unlink(pair.RequestPath);
        if (pair.ReplyPath[0] != '\0')
            unlink(pair.ReplyPath);
    }
}
