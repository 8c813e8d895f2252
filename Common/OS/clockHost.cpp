// Clock source of builds without the board: the host's monotonic clock
// stands in for the millisecond counter and for the time base.
#include "Common/OS/clockSource.h"

#include <ctime>

namespace {

uint64_t monotonicNanos() {
    timespec ts{};
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<uint64_t>(ts.tv_sec) * 1000000000u + static_cast<uint64_t>(ts.tv_nsec);
}

// Nothing to map: the monotonic clock is always there.
ClockStart hostStart() {
    return ClockStart::ok;
}

// Milliseconds of the monotonic clock, cut to 32 bits: a count that rises by
// one each millisecond and wraps like the board's.
uint32_t hostCounter() {
    return static_cast<uint32_t>(monotonicNanos() / 1000000u);
}

// A free-running 64-bit count at the time base's rate of 66666664 per second.
uint64_t hostTimeBase() {
    uint64_t ns = monotonicNanos();
    // Split to keep the product within 64 bits for any uptime.
    return ns / 1000000000u * 66666664u + ns % 1000000000u * 66666664u / 1000000000u;
}

uint32_t hostUpper() {
    return static_cast<uint32_t>(hostTimeBase() >> 32);
}
uint32_t hostLower() {
    return static_cast<uint32_t>(hostTimeBase());
}

constexpr ClockSource hostSource{hostStart, hostCounter, hostUpper, hostLower};

} // namespace

const ClockSource &ClockPlatformSource() {
    return hostSource;
}
