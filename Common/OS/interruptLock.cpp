// The interrupt lock: the process-wide recursive lock behind interruptsOff
// and interruptsRestore, with the checks that report its misuse.
#include "Common/OS/log.h"
#include "Common/OS/osLocks.h"
#include "Common/OS/osUtil.h"

#include <atomic>
#include <pthread.h>

namespace {

constexpr const char *osSource = "os";

// The thread inside the section while the depth is above 0, and the depth.
// They are written with the lock held, but misuse (a restore by another
// thread, a failed lock) reads them without it: relaxed atomics keep that
// from being a data race while it is reported.
std::atomic<pthread_t> intsoffthread{};
std::atomic<int32_t> intsoffcount{0};

// Thread handles show as 32-bit words, as on the appliance; a 64-bit host
// shows their lower half.
uint32_t threadWord(pthread_t thread) {
    return static_cast<uint32_t>(thread);
}

} // namespace

// The lock is held on return; the log lines are written with it held, so
// the interrupt lock comes before the log's locks.
extern "C" int32_t interruptsOff(void) {
    const pthread_t caller = pthread_self();
    if (int error = pthread_mutex_lock(osInterruptLock()); error != 0)
        LogWarn(osSource, "interruptsOff mutex_lock error %d\n", error);
    const int32_t count = intsoffcount.load(std::memory_order_relaxed);
    if (count == 0)
        intsoffthread.store(caller, std::memory_order_relaxed);
    else if (const pthread_t inside = intsoffthread.load(std::memory_order_relaxed);
             !pthread_equal(inside, caller))
        LogWarn(osSource, "interruptsOff re-entered intsoffthread: %08x curthread: %08x\n",
                threadWord(inside), threadWord(caller));
    intsoffcount.store(count + 1, std::memory_order_relaxed);
    return count + 1;
}

extern "C" int32_t interruptsRestore(int32_t oldie) {
    const pthread_t caller = pthread_self();
    const int32_t count    = intsoffcount.load(std::memory_order_relaxed);
    const pthread_t inside = intsoffthread.load(std::memory_order_relaxed);
    if (count == 0)
        LogWarn(osSource, "interruptsRestore called without interruptsOff curthread: %08x\n",
                threadWord(caller));
    if (!pthread_equal(inside, caller))
        LogWarn(osSource, "interruptsRestore call re-entered intsoffthread: %08x curthread: %08x\n",
                threadWord(inside), threadWord(caller));
    if (count != oldie)
        LogWarn(osSource, "interruptsRestore call inconsistent intsoffcount: %d oldie: %d\n",
                static_cast<int>(count), static_cast<int>(oldie));
    intsoffcount.store(count - 1, std::memory_order_relaxed);
    if (count - 1 == 0)
        intsoffthread.store(pthread_t{}, std::memory_order_relaxed);
    return pthread_mutex_unlock(osInterruptLock());
}
