/* Public interface of the OS layer (C-compatible).
 *
 * Clocks: the board's millisecond counter and the processor's time base.
 * Return convention of this header: each operation returns the value it
 * names; the millisecond clock answers 0 when its counter can't be reached.
 * All clock operations are callable from any thread. */
#ifndef COMMON_OS_OS_H
#define COMMON_OS_OS_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Counts per second of the time base: 66666664.0 (66666666 as a float). */
float ClockTimeBaseRate(void);
/* Time base counts in one 10 ms tick: 666666. */
uint32_t ClockCountsPerTick(void);
/* Milliseconds in one tick: 10. */
uint32_t ClockTickMillis(void);

/* Reads the 64-bit time base consistently: the upper half, the lower, the
 * upper again, repeated while the upper half changed in between. Stores the
 * halves through the pointers that are not null; returns the lower half. */
uint32_t ClockTimeBaseRead(uint32_t *high, uint32_t *low);
/* The lower half of the time base from one read. */
uint32_t ClockTimeBaseLow(void);

/* Maps and starts the millisecond counter. Called by the first ClockMillis;
 * after a failure the next ClockMillis tries again. */
void init_rtcp(void);
/* Milliseconds of the counter, 32 bits, wrapping; 0 when the counter can't
 * be reached. */
uint32_t ClockMillis(void);
/* ClockMillis, also stored through `out` when it is not null. */
uint32_t ClockMillisInto(uint32_t *out);
/* ClockMillis / 1000. */
uint32_t ClockSeconds(void);
/* ClockMillis / 10. */
uint32_t ClockTicks(void);
/* Sleeps in select() with no descriptors for `microseconds`, given whole as
 * the microseconds of the time value; returns select()'s result. */
int ClockSleep(uint32_t microseconds);

#ifdef __cplusplus
}
#endif

#endif
