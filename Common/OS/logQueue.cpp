// The log queue as a process sees it before the writer is started: every
// finished line ends here.
#include "Common/OS/log.h"

#include "Common/OS/logSeam.h"

#include <atomic>

namespace {

std::atomic<LogEnqueueObserver> logEnqueueObserver{nullptr};

} // namespace

LogEnqueueObserver LogEnqueueObserverSet(LogEnqueueObserver observer) {
    return logEnqueueObserver.exchange(observer, std::memory_order_acq_rel);
}

extern "C" void LogEnqueue(const char *line, int length) {
    LogEnqueueObserver observer = logEnqueueObserver.load(std::memory_order_acquire);
    if (observer != nullptr)
        observer(line, length);
    if (line == nullptr || line[0] == '\0')
        return;
    // The writer (its ring, semaphore and task) has not been started in this
    // process, so the line is dropped whatever its severity, without a word.
}
