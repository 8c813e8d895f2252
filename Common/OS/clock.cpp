// The millisecond clock and the time base, over the platform's clock source.
#include "Common/OS/os.h"

#include "Common/OS/clockSource.h"
#include "Common/OS/log.h"

#include <atomic>
#include <sys/select.h>

namespace {

constexpr float timeBaseRate     = 66666664.0f; // counts per second
constexpr uint32_t countsPerTick = 666666;      // rate / 100, truncated
constexpr uint32_t tickMillis    = 10;

std::atomic<const ClockSource *> clockSource{nullptr};
// Set once the counter has been started. As on the board there is no lock:
// two threads making the first reading together may both start it, which
// only programs the counter twice.
std::atomic<bool> rtcpReady{false};

const ClockSource &source() {
    const ClockSource *s = clockSource.load(std::memory_order_acquire);
    return s != nullptr ? *s : ClockPlatformSource();
}

// The counter's failure reports, at the log's critical level under the OS
// layer's source word.
void clockReportFailure(const char *text) {
    LogCrit("os", "%s", text);
}

} // namespace

const ClockSource *ClockSourceSet(const ClockSource *s) {
    rtcpReady.store(false, std::memory_order_release);
    return clockSource.exchange(s, std::memory_order_acq_rel);
}

extern "C" {

float ClockTimeBaseRate(void) {
    return timeBaseRate;
}
uint32_t ClockCountsPerTick(void) {
    return countsPerTick;
}
uint32_t ClockTickMillis(void) {
    return tickMillis;
}

uint32_t ClockTimeBaseRead(uint32_t *high, uint32_t *low) {
    const ClockSource &s = source();
    uint32_t upper, lower;
    for (;;) {
        upper = s.timeBaseUpper();
        lower = s.timeBaseLower();
        if (s.timeBaseUpper() == upper)
            break;
        // The lower half wrapped between the two upper reads: read again.
    }
    if (high != nullptr)
        *high = upper;
    if (low != nullptr)
        *low = lower;
    return lower;
}

uint32_t ClockTimeBaseLow(void) {
    return source().timeBaseLower();
}

void init_rtcp(void) {
    switch (source().startCounter()) {
    case ClockStart::ok:
        rtcpReady.store(true, std::memory_order_release);
        break;
    case ClockStart::openFailed:
        clockReportFailure("init_rtcp open /dev/mem failed\n");
        break;
    case ClockStart::mapFailed:
        clockReportFailure("init_rtcp mmap failed\n");
        break;
    }
}

uint32_t ClockMillis(void) {
    if (!rtcpReady.load(std::memory_order_acquire)) {
        init_rtcp();
        if (!rtcpReady.load(std::memory_order_acquire))
            return 0;
    }
    return source().readCounter();
}

uint32_t ClockMillisInto(uint32_t *out) {
    uint32_t ms = ClockMillis();
    if (out != nullptr)
        *out = ms;
    return ms;
}

uint32_t ClockSeconds(void) {
    return ClockMillis() / 1000;
}
uint32_t ClockTicks(void) {
    return ClockMillis() / tickMillis;
}

int ClockSleep(uint32_t microseconds) {
    // The count goes whole into the microseconds field, as the board's
    // callers expect; the kernel folds whole seconds out of it.
    timeval tv{};
    tv.tv_sec  = 0;
    tv.tv_usec = static_cast<suseconds_t>(microseconds);
    return select(0, nullptr, nullptr, nullptr, &tv);
}

} // extern "C"
