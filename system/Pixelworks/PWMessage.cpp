// The message layer of the link: the sender and the resynchronising
// receiver with its deadline. All working data lies on the caller's stack;
// nothing here allocates.
#include "system/Pixelworks/PWApi.h"

#include "Common/OS/os.h"
#include "Common/OS/osAssert.h"
#include "system/Pixelworks/PWPacket.h"
#include "system/Pixelworks/PWPipe.h"
#include "system/Pixelworks/PWReport.h"

#include <cerrno>
#include <csignal>
#include <ctime>
#include <pthread.h>
#include <sys/select.h>
#include <syslog.h>
#include <unistd.h>

namespace {

// The checks both calls begin with: null pointers are a caller's error, a
// handle that is not open is reported.
bool handleIsOpen(const PWHandle *handle, const PWMsg *pMsg) {
    OS_ASSERT(handle);
    OS_ASSERT(pMsg);
    if (handle->Magic == PW_HANDLE_MAGIC)
        return true;
    PWReport(LOG_ERR, "PWApi: invalid PW handle %p\n", static_cast<const void *>(handle));
    return false;
}

// One write that cannot raise SIGPIPE: a pipe whose reader has gone fails
// with EPIPE and the caller gets -17, whatever the process does with the
// signal. The signal is blocked for this thread around the write, and one
// that the write raised is taken off the thread again before the old mask
// comes back.
ssize_t writeWithoutSigpipe(int fd, const void *data, std::size_t size) {
    sigset_t pipeSet, oldSet;
    sigemptyset(&pipeSet);
    sigaddset(&pipeSet, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipeSet, &oldSet);
    ssize_t written = write(fd, data, size);
    if (written < 0 && errno == EPIPE) {
        int savedErrno = errno;
        timespec none{};
        while (sigtimedwait(&pipeSet, nullptr, &none) < 0 && errno == EINTR) {
        }
        errno = savedErrno;
    }
    pthread_sigmask(SIG_SETMASK, &oldSet, nullptr);
    return written;
}

int timeOut(const PWHandle *handle) {
    PWReport(LOG_WARNING, "PWApi: TIMEOUT chip %d, ms=%u\n", handle->Chip, PWNowMs());
    return PW_ERR_TIMEOUT;
}

} // namespace

extern "C" {

int PWSendMsg(PWHandle *handle, const PWMsg *pMsg) {
    if (!handleIsOpen(handle, pMsg))
        return PW_ERR_HANDLE;
    uint8_t packet[pwBufferSize];
    std::size_t total = PWPacketEncode(*pMsg, handle->Interface, packet);
    // One write and no second attempt: a full non-blocking pipe fails it.
    if (writeWithoutSigpipe(handle->WriteFd, packet, total) != static_cast<ssize_t>(total)) {
        PWReport(LOG_WARNING, "PWApi: PW chip %d write failure.\n", handle->Chip);
        return PW_ERR_WRITE;
    }
    return PW_OK;
}

int PWReceiveMsg(PWHandle *handle, uint32_t timeoutMs, PWMsg *pMsg) {
    uint32_t deadline = ClockMillis() + timeoutMs;
    if (!handleIsOpen(handle, pMsg))
        return PW_ERR_HANDLE;
    pMsg->Length = 0;

    uint8_t buf[pwBufferSize];
    std::size_t held = 0;
    for (;;) {
        // A plain unsigned comparison: a clock that wraps during the call
        // may end it early; select's own limit bounds each wait anyway.
        uint32_t now = ClockMillis();
        if (!(deadline > now))
            return timeOut(handle);
        uint32_t left = deadline - now;
        fd_set readSet;
        FD_ZERO(&readSet);
        FD_SET(handle->ReadFd, &readSet);
        timeval wait{};
        wait.tv_sec  = static_cast<time_t>(left / 1000);
        wait.tv_usec = static_cast<suseconds_t>(left % 1000 * 1000);
        errno        = 0;
        if (select(handle->ReadFd + 1, &readSet, nullptr, nullptr, &wait) <= 0)
            return timeOut(handle);

        // At most the room left; a full buffer reads 0 bytes and so goes on
        // to the resynchronisation. End-of-file never comes: the handle is a
        // writer of its own read pipe, so with the daemon gone select waits
        // out the time left. A failed read brings no bytes and leaves the
        // fill position where it was; the bytes held are tested again.
        ssize_t got = read(handle->ReadFd, buf + held, sizeof buf - held);
        bool resync = got == 0;
        if (got > 0)
            held += static_cast<std::size_t>(got);

        if (!resync) {
            switch (PWPacketScan(buf, held, handle->Interface)) {
            case PWScan::incomplete:
            case PWScan::otherInterface: // no report; the bytes stay
                continue;
            case PWScan::badSync:
                PWReport(
                    LOG_WARNING, "PWApi: chip = %d, invalid packet header = %p\n", handle->Chip,
                    reinterpret_cast<void *>(static_cast<uintptr_t>(PWPacketSyncWord(buf, held))));
                break;
            case PWScan::badCrc:
                PWReport(LOG_WARNING, "PWApi: CRC error; chip = %d, opcode = %p\n", handle->Chip,
                         reinterpret_cast<void *>(static_cast<uintptr_t>(buf[pwOpcodeOffset])));
                break;
            case PWScan::good:
                // Bytes held behind the packet are dropped.
                PWPacketDecode(buf, *pMsg);
                return PW_OK;
            }
        }
        // Resynchronise: empty the pipe, a buffer-full at a time, then start
        // again with an empty buffer. Setting the count of bytes held back to
        // zero keeps every later read inside the 264 bytes and lets the next
        // good packet be found at the start of the buffer, so it still ends
        // the call with 0 if it comes before the deadline. The drain stops
        // after a pipe-full: a writer that never stops can't hold the
        // receiver past its deadline, which is tested again next.
        PWDrainPipe(handle->ReadFd, buf, sizeof buf);
        held = 0;
    }
}

uint32_t PWNowMs(void) {
    // The wall clock of ftime(): whole seconds times 1000 plus milliseconds,
    // cut to 32 bits. ftime() itself is obsolete; the realtime clock gives
    // the same figure.
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    return static_cast<uint32_t>(static_cast<uint64_t>(now.tv_sec) * 1000u +
                                 static_cast<uint64_t>(now.tv_nsec / 1000000));
}

} // extern "C"
