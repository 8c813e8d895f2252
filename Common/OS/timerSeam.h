// Test seam of the timers: a pool without the task "tmtk", whose ticks the
// test gives by calling tm_tick itself, so that no test depends on a clock.
#ifndef COMMON_OS_TIMERSEAM_H
#define COMMON_OS_TIMERSEAM_H

// Sets up the pool without starting "tmtk". Only before the first use of a
// timer in the process; tm_init does nothing afterwards.
void TimerTicksByHand();

// How many timers are active now.
int TimerActiveCount();

#endif
