// Test seam of the timers: a pool without the task "tmtk", whose ticks the
// test gives by calling tm_tick itself, so that no test depends on a clock.
#ifndef COMMON_OS_TIMERSEAM_H
#define COMMON_OS_TIMERSEAM_H

// Sets up the pool without starting "tmtk". Only before the first use of a
// timer in the process; tm_init does nothing afterwards.
void TimerTicksByHand();

// How many timers are active now.
int TimerActiveCount();

// Called on a task whose timed wait ended by its events, with the wait's
// timer, just before the wait cancels that timer: the moment in which the
// timer may fire and its record serve another timer. Null: nothing.
struct Timer;
using EvReceiveBeforeCancel = void (*)(Timer *timer);
void EvReceiveBeforeCancelSet(EvReceiveBeforeCancel hook);

#endif
