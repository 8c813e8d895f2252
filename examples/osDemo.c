/* A small program on the OS layer, written the way the appliance's programs
 * are. It starts the layer, becomes the task "main", runs a pacer task driven
 * by a repeating timer and a worker task that waits for the pacer with a time
 * limit, logs at several levels through the writer task "logw", and ends
 * with the processor usage of the rounds and the list of its tasks. */
#include "Common/OS/log.h"
#include "Common/OS/os.h"

#include <stdio.h>

enum {
    EV_TICK      = 0x1, /* the repeating timer, to the pacer */
    EV_WORK      = 0x2, /* the pacer, to the worker */
    EV_DONE      = 0x4, /* the worker, to main */
    EV_QUIT      = 0x8, /* never sent: the worker stays to be reported */
    ROUNDS       = 5,
    PERIOD_TICKS = 5,  /* 50 ms between rounds */
    WORK_LIMIT   = 50, /* how long the worker waits for a round, in ticks */
};

static Tcb *worker;

/* Passes each timer tick on to the worker as a round of work. */
static void pacer(uint32_t rounds, uint32_t unused1, uint32_t unused2, uint32_t unused3) {
    (void)unused1, (void)unused2, (void)unused3;
    Timer *timer = NULL;
    if (tm_evevery(PERIOD_TICKS, EV_TICK, &timer) != 0) {
        LogError("pace", "no timer left\n");
        return;
    }
    for (uint32_t round = 1; round <= rounds; ++round) {
        uint32_t received = 0;
        ev_receive(EV_TICK, 0, 0, &received);
        LogDebug("pace", "tick %u\n", round);
        ev_send(worker, EV_WORK);
    }
    tm_cancel(timer);
}

/* A round's work: enough arithmetic to show in the usage report. */
static uint32_t crunch(uint32_t seed) {
    for (uint32_t i = 0; i < 4000000; ++i)
        seed = seed * 1664525u + 1013904223u;
    return seed;
}

/* Does the rounds, waiting for each with a time limit, then tells main and
 * stays until the process ends. */
static void work(uint32_t rounds, uint32_t unused1, uint32_t unused2, uint32_t unused3) {
    (void)unused1, (void)unused2, (void)unused3;
    uint32_t done = 0;
    while (done < rounds) {
        uint32_t received = 0;
        if (ev_receive(EV_WORK, 0, WORK_LIMIT, &received) == ERR_TIMEOUT) {
            LogWarn("work", "no round within %d ticks\n", WORK_LIMIT);
            continue;
        }
        ++done;
        LogInfo("work", "round %u of %u done (%08x)\n", done, rounds, crunch(done));
    }
    ev_send(os_main_task(), EV_DONE);
    uint32_t received = 0;
    ev_receive(EV_QUIT, 0, 0, &received);
}

/* Priority 0, time-shared: the demo runs on a host without real-time rights
 * as well. On the appliance tasks take priorities from 1 to 99. */
static Tcb *startTask(const char *name, TaskEntry entry) {
    const uint32_t args[4] = {ROUNDS, 0, 0, 0};
    Tcb *task              = NULL;
    if (t_create(name, 0, 0, 0, 0, &task) != 0 || t_start(task, 0, entry, args) != 0) {
        LogCrit("demo", "can't start the task %.4s\n", name);
        return NULL;
    }
    return task;
}

int main(void) {
    /* Lines up to level 7 (debug) are printed. */
    if (os_start(7) != 0) {
        fprintf(stderr, "osDemo: the OS layer didn't start\n");
        return 1;
    }
    /* The log settings are read at the first line; the level word is turned
     * on behind it. */
    LogInfo("demo", "started, %d rounds of %d ticks\n", ROUNDS, PERIOD_TICKS);
    LogSetFormat(LogGetFormat() | LOG_FORMAT_LEVEL);

    /* The first report sets the start of the measurement. */
    LogWriterSync();
    t_usage();
    worker = startTask("work", work);
    if (worker == NULL || startTask("pace", pacer) == NULL)
        return 1;

    uint32_t received = 0;
    ev_receive(EV_DONE, 0, 0, &received);
    LogInfo("demo", "all rounds done\n");
    /* Nobody sends this event: the wait ends by its time limit. */
    if (ev_receive(EV_TICK, 0, 3, &received) == ERR_TIMEOUT)
        LogWarn("demo", "no tick for main within 3 ticks, as expected\n");

    LogWriterSync();
    t_usage();
    t_list();
    return 0;
}
