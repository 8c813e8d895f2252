// The request pipe of plaunchd: checks before creation, creation with mode
// 0600, checked opens, and removal.
#include "tools/plaunchd/launchPipe.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t pipeMode = 0600;

bool failWith(char *error, std::size_t size, const char *what, const char *path, int err) {
    std::snprintf(error, size, "%s %s: %s", what, path, std::strerror(err));
    return false;
}

// Whether `st` is a named pipe of the user we run as.
bool ownPipe(const struct stat &st) {
    return S_ISFIFO(st.st_mode) && st.st_uid == geteuid();
}

// What is at the path before we start: nothing, or a stale pipe of ours,
// which is removed. Every other finding is refused.
bool clearPath(const char *path, char *error, std::size_t size) {
    struct stat st {};
    if (lstat(path, &st) != 0)
        return errno == ENOENT || failWith(error, size, "cannot check", path, errno);
    if (S_ISLNK(st.st_mode)) {
        std::snprintf(error, size, "%s is a symbolic link; refused", path);
        return false;
    }
    if (!S_ISFIFO(st.st_mode)) {
        std::snprintf(error, size, "%s exists and is not a named pipe; refused", path);
        return false;
    }
    if (!ownPipe(st)) {
        std::snprintf(error, size, "%s is a named pipe of another user (uid %u); refused", path,
                      static_cast<unsigned>(st.st_uid));
        return false;
    }
    // A reader lets a non-blocking open for writing succeed; without one it
    // fails with ENXIO and the pipe is stale.
    const int fd = open(path, O_WRONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (fd >= 0) {
        close(fd);
        std::snprintf(error, size,
                      "%s has a reader: another plaunchd serves it, or a client waits on it", path);
        return false;
    }
    if (errno != ENXIO)
        return failWith(error, size, "cannot check", path, errno);
    if (unlink(path) != 0)
        return failWith(error, size, "cannot remove the stale pipe", path, errno);
    return true;
}

} // namespace

bool LaunchPipeCreate(const char *path, LaunchPipe &pipe, char *error, std::size_t errorSize) {
    pipe = {};
    if (std::strlen(path) >= sizeof pipe.Path) {
        std::snprintf(error, errorSize, "path '%.100s...' is too long", path);
        return false;
    }
    std::strcpy(pipe.Path, path);
    if (!clearPath(path, error, errorSize))
        return false;
    // mkfifo fails if anything appeared at the path since the check.
    if (mkfifo(path, pipeMode) != 0)
        return failWith(error, errorSize, "cannot create", path, errno);
    // From here on the path is ours and removed again on failure. The mode
    // is set once more through the descriptor, past the umask, on the very
    // pipe that was checked.
    struct stat st {};
    const int fd = open(path, O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0 || fstat(fd, &st) != 0 || !ownPipe(st) || fchmod(fd, pipeMode) != 0) {
        const int err = fd < 0 ? errno : ESTALE;
        if (fd >= 0)
            close(fd);
        unlink(path);
        return failWith(error, errorSize, "cannot open the new pipe", path, err);
    }
    close(fd);
    pipe.Device  = st.st_dev;
    pipe.Inode   = st.st_ino;
    pipe.Created = true;
    return true;
}

int LaunchPipeOpen(const LaunchPipe &pipe, int flags) {
    const int fd = open(pipe.Path, flags | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return -1;
    struct stat st {};
    if (fstat(fd, &st) != 0 || st.st_dev != pipe.Device || st.st_ino != pipe.Inode) {
        close(fd);
        errno = ESTALE;
        return -1;
    }
    return fd;
}

void LaunchPipeRemove(LaunchPipe &pipe) {
    if (!pipe.Created)
        return;
    pipe.Created = false;
    struct stat st {};
    if (lstat(pipe.Path, &st) == 0 && st.st_dev == pipe.Device && st.st_ino == pipe.Inode)
        unlink(pipe.Path);
}
