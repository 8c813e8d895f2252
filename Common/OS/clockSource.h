// Where the clocks get their counts: the board's counter block and the
// processor's time base on the appliance, host clocks elsewhere. Tests put
// their own source in place to drive wrap-around, carries and failures.
#ifndef COMMON_OS_CLOCKSOURCE_H
#define COMMON_OS_CLOCKSOURCE_H

#include <cstdint>

// Result of starting the millisecond counter.
enum class ClockStart { ok, openFailed, mapFailed };

struct ClockSource {
    ClockStart (*startCounter)(); // map and program the counter
    uint32_t (*readCounter)();    // milliseconds; only called after a good start
    uint32_t (*timeBaseUpper)();  // upper half of the time base
    uint32_t (*timeBaseLower)();  // lower half of the time base
};

// The source of this build: the board's on the appliance, the host's otherwise.
const ClockSource &ClockPlatformSource();

// Puts `source` in place (null: the platform's) and forgets a started
// counter, so the next ClockMillis starts it again. Returns the previous one.
// Not for concurrent use with the clock: tests call it between readings.
const ClockSource *ClockSourceSet(const ClockSource *source);

#endif
