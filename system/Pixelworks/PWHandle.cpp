// The handle layer of the link: the pipe folder, the two tables of handles,
// and opening, holding, draining and releasing a chip's pipe pair.
#include "system/Pixelworks/PWApi.h"

#include "Common/OS/osAssert.h"
#include "system/Pixelworks/PWPipe.h"
#include "system/Pixelworks/PWProtocol.h"
#include "system/Pixelworks/PWReport.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <syslog.h>
#include <unistd.h>

namespace {

using PWHandleTable = std::array<PWHandle, PW_MAX_CHIPS>;

// What an earlier client left is read in pieces of this size at open.
constexpr std::size_t drainChunk = 100;

bool pwInitialised = false;
PWHandleTable cmdHandles{};
PWHandleTable diagHandles{};
char pipeFolder[PW_PATH_MAX + 1];

// strerror_r comes in two forms; either way the text ends up in `buf` or is
// returned.
[[maybe_unused]] const char *errorText(int result, const char *buf) {
    return result == 0 ? buf : "?";
}
[[maybe_unused]] const char *errorText(const char *result, const char *) {
    return result;
}

void reportOpenFailure(const char *path, const char *cause) {
    PWReport(LOG_CRIT, "PWApi: pipe %s open err: %s", path, cause);
}

void reportOpenFailure(const char *path, int error) {
    char text[100];
    reportOpenFailure(path, errorText(strerror_r(error, text, sizeof text), text));
}

constexpr const char *notAPipe = "not a named pipe";

// Opens a named pipe, and nothing else: a device such as /dev/zero would
// never run dry in the drain, and a request written to a regular file would
// be lost in it. The type is checked before the open, so that no device or
// file is opened at all, and again on the descriptor, in case the path was
// replaced in between. -1 after the report.
int openPipe(const char *path, int flags) {
    struct stat st {};
    if (stat(path, &st) != 0) {
        reportOpenFailure(path, errno);
        return -1;
    }
    if (!S_ISFIFO(st.st_mode)) {
        reportOpenFailure(path, notAPipe);
        return -1;
    }
    int fd = open(path, flags);
    if (fd < 0) {
        reportOpenFailure(path, errno);
        return -1;
    }
    if (fstat(fd, &st) != 0 || !S_ISFIFO(st.st_mode)) {
        close(fd);
        reportOpenFailure(path, notAPipe);
        return -1;
    }
    return fd;
}

// Closes the read pipe and ends the hold on the pair. The lock belongs to
// the open file description, which a child process may share through an
// inherited descriptor: it is given up explicitly, not left to the close.
void closeHeld(int readFd) {
    flock(readFd, LOCK_UN);
    close(readFd);
}

} // namespace

void PWDrainPipe(int fd, uint8_t *chunk, std::size_t size) {
    for (std::size_t taken = 0; taken <= pwPipeMostBytes; taken += size)
        if (read(fd, chunk, size) != static_cast<ssize_t>(size))
            return;
}

extern "C" {

int PWInit(const char *path) {
    if (pwInitialised)
        return PW_OK;
    cmdHandles  = {};
    diagHandles = {};
    if (path == nullptr)
        path = "./";
    std::size_t length = std::strlen(path);
    if (length > PW_PATH_MAX) {
        PWReport(LOG_ERR, "PWApi: path of %d is too long; max = %d\n", static_cast<int>(length),
                 PW_PATH_MAX);
        return PW_ERR_INVALID;
    }
    std::memcpy(pipeFolder, path, length + 1);
    pwInitialised = true;
    return PW_OK;
}

PWHandle *PWOpenHandle(int chip, int interface) {
    if (!pwInitialised) {
        PWReport(LOG_ERR, "PWApi: not initialized.\n");
        return nullptr;
    }
    // Compared as unsigned: a negative chip is refused too.
    if (static_cast<unsigned>(chip) >= PW_MAX_CHIPS) {
        PWReport(LOG_ERR, "PWApi: invalid PW chip %d.\n", chip);
        return nullptr;
    }
    OS_ASSERT(interface == PW_INTERFACE_CMD || interface == PW_INTERFACE_DIAG);
    const PWPipeNames &names = PWPipeNamesOf(interface);
    PWHandle &handle =
        (interface == PW_INTERFACE_CMD ? cmdHandles : diagHandles)[static_cast<unsigned>(chip)];
    handle.Interface = interface;
    if (handle.Magic == PW_HANDLE_MAGIC) {
        PWReport(LOG_ERR, "PWApi: %s interface for PW chip %d already in use\n", names.Label, chip);
        return nullptr;
    }

    // The read pipe is opened for writing as well (on Linux such an open of
    // a FIFO never waits). The handle is then a writer of its own read pipe
    // and a read never meets end-of-file: when the daemon has gone, select
    // waits out the time left instead of reporting the pipe readable at
    // once, and the receiver sleeps instead of spinning to its deadline.
    // Nothing is ever written on this descriptor, so what the receiver reads
    // and when its deadline passes stay as they were.
    char path[pwPipePathSize];
    PWPipePath(path, pipeFolder, names.ClientReads, chip);
    handle.ReadFd = openPipe(path, O_RDWR | O_NONBLOCK);
    if (handle.ReadFd < 0)
        return nullptr;

    // The packets carry no request number, so one client at a time may use
    // an interface of a chip: the pair is held with an advisory lock on the
    // read pipe, across processes, until PWReleaseHandle or the end of the
    // process. A daemon takes no lock and is never held up by it. The lock
    // comes before the drain, which would otherwise take the holder's reply.
    if (flock(handle.ReadFd, LOCK_EX | LOCK_NB) != 0) {
        int error = errno;
        close(handle.ReadFd);
        if (error == EWOULDBLOCK)
            PWReport(LOG_ERR, "PWApi: %s interface for PW chip %d already in use\n", names.Label,
                     chip);
        else
            reportOpenFailure(path, error);
        return nullptr;
    }
    uint8_t stale[drainChunk];
    PWDrainPipe(handle.ReadFd, stale, sizeof stale);

    // Fails with ENXIO unless the daemon holds the pipe open for reading.
    PWPipePath(path, pipeFolder, names.ClientWrites, chip);
    handle.WriteFd = openPipe(path, O_WRONLY | O_NONBLOCK);
    if (handle.WriteFd < 0) {
        closeHeld(handle.ReadFd);
        return nullptr;
    }
    handle.Magic = PW_HANDLE_MAGIC;
    handle.Chip  = chip;
    return &handle;
}

PWHandle *PWOpenCmdHandle(int chip) {
    return PWOpenHandle(chip, PW_INTERFACE_CMD);
}
PWHandle *PWOpenDiagHandle(int chip) {
    return PWOpenHandle(chip, PW_INTERFACE_DIAG);
}

int PWReleaseHandle(PWHandle *handle) {
    OS_ASSERT(handle);
    if (handle->Magic != PW_HANDLE_MAGIC) {
        PWReport(LOG_ERR, "PWApi: invalid PW handle %p\n", static_cast<void *>(handle));
        return PW_ERR_INVALID;
    }
    closeHeld(handle->ReadFd);
    close(handle->WriteFd);
    handle->Magic = 0;
    return PW_OK;
}

} // extern "C"
