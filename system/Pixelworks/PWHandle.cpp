// The handle layer of the link: the pipe folder, the two tables of handles,
// and opening, draining and releasing a chip's pipe pair.
#include "system/Pixelworks/PWApi.h"

#include "Common/OS/osAssert.h"
#include "system/Pixelworks/PWReport.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <syslog.h>
#include <unistd.h>

namespace {

using PWHandleTable = std::array<PWHandle, PW_MAX_CHIPS>;

// Pipe names by interface, from the client's side.
struct PWPipeNames {
    int interface;
    const char *label; // word of the in-use report
    const char *reads;
    const char *writes;
};

// clang-format off
constexpr std::array<PWPipeNames, 2> pipeNames{{
    {PW_INTERFACE_CMD,  "Cmd",  "PWRdCmd",  "PWWtCmd"},
    {PW_INTERFACE_DIAG, "Diag", "PWRdDiag", "PWWtDiag"},
}};
// clang-format on

// A path is "%s/%s%d": at most 49 + 1 + 8 + 1 characters.
constexpr std::size_t pipePathSize = PW_PATH_MAX + 11;
constexpr std::size_t drainChunk   = 100;

bool pwInitialised = false;
PWHandleTable cmdHandles{};
PWHandleTable diagHandles{};
char pipeFolder[PW_PATH_MAX + 1];

const PWPipeNames &namesFor(int interface) {
    return interface == PW_INTERFACE_CMD ? pipeNames[0] : pipeNames[1];
}

// strerror_r comes in two forms; either way the text ends up in `buf` or is
// returned.
[[maybe_unused]] const char *errorText(int result, const char *buf) {
    return result == 0 ? buf : "?";
}
[[maybe_unused]] const char *errorText(const char *result, const char *) {
    return result;
}

void reportOpenFailure(const char *path, int error) {
    char text[100];
    PWReport(LOG_CRIT, "PWApi: pipe %s open err: %s", path,
             errorText(strerror_r(error, text, sizeof text), text));
}

// Throws away what an earlier client left in the read pipe. The descriptor
// is non-blocking, so this never waits.
void drain(int fd) {
    char chunk[drainChunk];
    while (read(fd, chunk, sizeof chunk) == static_cast<ssize_t>(drainChunk)) {
    }
}

} // namespace

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
    const PWPipeNames &names = namesFor(interface);
    PWHandle &handle =
        (interface == PW_INTERFACE_CMD ? cmdHandles : diagHandles)[static_cast<unsigned>(chip)];
    handle.Interface = interface;
    if (handle.Magic == PW_HANDLE_MAGIC) {
        PWReport(LOG_ERR, "PWApi: %s interface for PW chip %d already in use\n", names.label, chip);
        return nullptr;
    }

    char path[pipePathSize];
    std::snprintf(path, sizeof path, "%s/%s%d", pipeFolder, names.reads, chip);
    handle.ReadFd = open(path, O_RDONLY | O_NONBLOCK);
    if (handle.ReadFd < 0) {
        reportOpenFailure(path, errno);
        return nullptr;
    }
    drain(handle.ReadFd);

    // Fails with ENXIO unless the daemon holds the pipe open for reading.
    std::snprintf(path, sizeof path, "%s/%s%d", pipeFolder, names.writes, chip);
    handle.WriteFd = open(path, O_WRONLY | O_NONBLOCK);
    if (handle.WriteFd < 0) {
        int error = errno;
        close(handle.ReadFd);
        reportOpenFailure(path, error);
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
    close(handle->ReadFd);
    close(handle->WriteFd);
    handle->Magic = 0;
    return PW_OK;
}

} // extern "C"
