// Events and timers, with ticks given by hand: matching, no lost wake-up,
// timed waits, timers that fire on their tick, the pool's limit and order,
// cancels from the wrong hands, deletion of a task with timers, and a
// bounded stress of all of it together.
#include "Common/OS/os.h"
#include "Common/OS/timerSeam.h"
#include "osTestSupport.h"

#include <atomic>
#include <set>
#include <thread>
#include <vector>

namespace {

using ostest::Gate;
using ostest::Lines;

class OsEvent : public testing::Test {
  protected:
    void SetUp() override {
        TimerTicksByHand();
        ASSERT_EQ(t_attach("test", 0, 0), 0);
        uint32_t drained = 0;
        ev_receive(0xffffffff, EV_ANY | EV_NOWAIT, 0, &drained);
    }
    void TearDown() override { EXPECT_EQ(TimerActiveCount(), 0) << "a timer was left running"; }
    static void ticks(int count) {
        for (int i = 0; i < count; ++i)
            tm_tick();
    }
    // The bits that are there now, taken.
    static uint32_t take() {
        uint32_t out = 0;
        return ev_receive(0xffffffff, EV_ANY | EV_NOWAIT, 0, &out) == 0 ? out : 0;
    }
    static Tcb *self() { return FindTcb(pthread_self()); }
};

TEST_F(OsEvent, ReceiveMatchesTakesAndLeavesBitsAsItsFlagsSay) {
    struct {
        uint32_t pending, wanted, flags;
        int result;
        uint32_t out, left;
    } const cases[] = {
        // clang-format off
        {0x05, 0x00, 0,                  0,            0x05, 0x05}, // the whole word, untouched
        {0x05, 0x00, EV_NOWAIT,          0,            0x05, 0x05},
        {0x05, 0x0f, EV_ANY | EV_NOWAIT, 0,            0x05, 0x00},
        {0x15, 0x0f, EV_ANY,             0,            0x05, 0x10}, // there already: no wait
        {0x05, 0x07, EV_NOWAIT,          ERR_NOEVENTS, 0xee, 0x05}, // all needed: nothing taken
        {0x0f, 0x07, EV_NOWAIT,          0,            0x07, 0x08},
        {0x03, 0x01, 0,                  0,            0x01, 0x02},
        // clang-format on
    };
    for (const auto &c : cases) {
        take();
        EXPECT_EQ(ev_send(self(), c.pending), 0); // never blocked: no signal
        uint32_t out = 0xee;
        EXPECT_EQ(ev_receive(c.wanted, c.flags, 5, &out), c.result) << c.wanted;
        EXPECT_EQ(out, c.out) << c.wanted;
        EXPECT_EQ(take(), c.left) << c.wanted;
    }
    uint32_t out = 0;
    int result   = -1;
    std::thread([&] { result = ev_receive(1, EV_NOWAIT, 0, &out); }).join();
    EXPECT_EQ(result, ERR_NOTASK);
}

// Two tasks pass a token back and forth, one bit at a time for the whole
// match: a lost wake-up hangs, a wait that ends on part of the match shows.
constexpr int volleys = 400;
Tcb *players[2];
std::atomic<int> misses{0};
void volley(uint32_t side, uint32_t, uint32_t, uint32_t) {
    for (int i = 0; i < volleys; ++i) {
        if (side == 1 || i > 0) {
            uint32_t out = 0;
            ev_receive(0x7, 0, 0, &out);
            misses += out != 0x7;
        }
        Tcb *other = players[1 - side];
        for (uint32_t bit : {0x1u, 0x2u, 0x4u})
            ev_send(other, bit);
    }
    if (side == 0) {
        uint32_t out = 0;
        ev_receive(0x7, 0, 0, &out);
    }
}

TEST_F(OsEvent, NoWakeUpIsLostAndPartialSendsCollect) {
    for (uint32_t side : {0u, 1u})
        ASSERT_EQ(t_create(side ? "pong" : "ping", 0, 0, 0, 0, &players[side]), 0);
    for (uint32_t side : {1u, 0u}) {
        const uint32_t args[4] = {side, 0, 0, 0};
        ASSERT_EQ(t_start(players[side], 0, volley, args), 0);
    }
    Tcb *found = nullptr;
    while (t_ident("ping", 0, &found) == 0 || t_ident("pong", 0, &found) == 0)
        sched_yield();
    EXPECT_EQ(misses.load(), 0);
}

// A task waiting with a time limit, its result and what it received.
struct TimedWait {
    uint32_t wanted, timeout;
    int result;
    uint32_t out;
};
TimedWait timedWait;
Gate *waitDone, *waitNever;
void waitTimed(uint32_t, uint32_t, uint32_t, uint32_t) {
    timedWait.out    = 0xee;
    timedWait.result = ev_receive(timedWait.wanted, 0, timedWait.timeout, &timedWait.out);
    waitDone->pass();
    waitNever->block(); // stays a task until the test deletes it
}

// Starts the waiting task and returns once its timer runs.
Tcb *startTimedWait(uint32_t wanted, uint32_t timeout) {
    timedWait = {wanted, timeout, -1, 0};
    Tcb *tcb  = nullptr;
    EXPECT_EQ(t_create("wait", 0, 0, 0, 0, &tcb), 0);
    EXPECT_EQ(t_start(tcb, 0, waitTimed, nullptr), 0);
    while (TimerActiveCount() == 0)
        sched_yield();
    return tcb;
}

TEST_F(OsEvent, ATimedWaitThatRunsOutLeavesTheBitsAndOutAlone) {
    OS_SKIP_WITHOUT_CANCEL_UNWIND();
    Gate done, never;
    waitDone  = &done;
    waitNever = &never;
    Tcb *tcb  = startTimedWait(0x3, 3);
    ev_send(tcb, 0x1); // part of the match: the wait goes on
    ticks(2);
    EXPECT_EQ(TimerActiveCount(), 1);
    ticks(1);
    done.wait();
    EXPECT_EQ(timedWait.result, ERR_TIMEOUT);
    EXPECT_EQ(timedWait.out, 0xeeu);
    EXPECT_EQ(tcb->events, 0x1u);
    EXPECT_EQ(TimerActiveCount(), 0);
    t_delete(tcb);
}

TEST_F(OsEvent, EventsBeforeTheTimeOutEndTheWaitAndItsTimer) {
    OS_SKIP_WITHOUT_CANCEL_UNWIND();
    Gate done, never;
    waitDone  = &done;
    waitNever = &never;
    Tcb *tcb  = startTimedWait(0x3, 5);
    ticks(4);
    ev_send(tcb, 0x3);
    done.wait();
    EXPECT_EQ(timedWait.result, 0);
    EXPECT_EQ(timedWait.out, 0x3u);
    EXPECT_EQ(TimerActiveCount(), 0);
    t_delete(tcb);
}

TEST_F(OsEvent, ATimedWaitWhoseBitsAreThereTakesNoTimer) {
    ostest::LogLines log;
    ev_send(self(), 0x4);
    uint32_t out = 0;
    testing::internal::CaptureStdout();
    EXPECT_EQ(ev_receive(0x4, 0, 7, &out), 0);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_EQ(out, 0x4u);
    EXPECT_EQ(TimerActiveCount(), 0);
    EXPECT_EQ(log.take(), Lines{});
}

TEST_F(OsEvent, EventTimersPostOnTheirTickAndRepeatWithoutDrift) {
    Timer *once = nullptr, *every = nullptr;
    ASSERT_EQ(tm_evafter(3, 0x1, &once), 0);
    ASSERT_EQ(tm_evevery(4, 0x2, &every), 0);
    std::vector<uint32_t> seen;
    for (int tick = 1; tick <= 13; ++tick) {
        tm_tick();
        seen.push_back(take());
    }
    EXPECT_EQ(seen, (std::vector<uint32_t>{0, 0, 1, 2, 0, 0, 0, 2, 0, 0, 0, 2, 0}));
    EXPECT_EQ(TimerActiveCount(), 1); // the one-shot went back to the pool
    EXPECT_EQ(tm_cancel(every), 0);
}

int32_t callbackRuns = 0;
int32_t runThrice(uintptr_t arg) {
    EXPECT_EQ(arg, 77u);
    return ++callbackRuns < 3;
}

TEST_F(OsEvent, ACallbackRunsAgainWhileItReturnsNonZero) {
    Timer *timer = nullptr;
    ASSERT_EQ(tm_cbafter(2, &timer, runThrice, 77), 0);
    std::vector<int32_t> runs;
    for (int tick = 1; tick <= 8; ++tick) {
        tm_tick();
        runs.push_back(callbackRuns);
    }
    EXPECT_EQ(runs, (std::vector<int32_t>{0, 1, 1, 2, 2, 3, 3, 3}));
    EXPECT_EQ(TimerActiveCount(), 0);
}

TEST_F(OsEvent, ThePoolHolds50AndFreesTimersInTheOrderTheyExpired) {
    ostest::LogLines log;
    Timer *first = nullptr, *second = nullptr;
    ASSERT_EQ(tm_evafter(2, 0x1, &first), 0);
    ASSERT_EQ(tm_evafter(2, 0x1, &second), 0);
    ticks(2);
    std::vector<Timer *> all;
    std::set<Timer *> distinct;
    for (int i = 0; i < TIMER_POOL_SIZE; ++i) {
        Timer *timer = nullptr;
        ASSERT_EQ(tm_evevery(1000, 0x1, &timer), 0);
        all.push_back(timer);
        distinct.insert(timer);
    }
    EXPECT_EQ(all[0], second); // freed last, on top of the free list
    EXPECT_EQ(all[1], first);
    EXPECT_EQ(distinct.size(), all.size());
    Timer *more = first;
    EXPECT_EQ(tm_evevery(1000, 0x1, &more), ERR_NOTIMER);
    EXPECT_EQ(more, nullptr);
    EXPECT_EQ(tm_cbafter(1, &more, runThrice, 77), ERR_NOTIMER);
    uint32_t out = 0;
    EXPECT_EQ(ev_receive(0x8, 0, 1, &out), ERR_NOTIMER); // at once, not for ever
    EXPECT_EQ(log.take(), Lines(3, "CRIT  pc[0]: os: AllocTimer failed\n"));
    tm_cancel(all[7]);
    EXPECT_EQ(tm_evevery(1000, 0x1, &more), 0);
    EXPECT_EQ(more, all[7]);
    all[7] = more;
    for (Timer *timer : all)
        tm_cancel(timer);
    take();
}

TEST_F(OsEvent, FreeingAFreeRecordIsReportedAndDoesNotDamageThePool) {
    ostest::LogLines log;
    Timer *timer = AllocTimer();
    FreeTimer(timer);
    const Timer *nextFree = timer->next;
    FreeTimer(timer); // linked and on the free list: both are reported
    FreeTimer(nullptr);
    std::set<Timer *> distinct;
    for (int i = 0; i < TIMER_POOL_SIZE; ++i)
        distinct.insert(AllocTimer());
    EXPECT_EQ(distinct.size(), size_t{TIMER_POOL_SIZE});
    EXPECT_EQ(distinct.count(nullptr), 0u);
    for (Timer *record : distinct)
        FreeTimer(record);
    const auto word = [](const void *address) {
        return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(address));
    };
    char linked[120], listed[80];
    std::snprintf(linked, sizeof linked,
                  "CRIT  pc[0]: os: FreeTimer pTimer is not consistent pTimer: %08x pTimer->next: "
                  "%08x\n",
                  word(timer), word(nextFree));
    std::snprintf(listed, sizeof listed,
                  "CRIT  pc[0]: os: FreeTimer pList is not consistent pList: %08x\n", word(timer));
    EXPECT_EQ(log.take(),
              (Lines{linked, listed, "WARN  pc[0]: os: FreeTimer called with NULL pTimer\n"}));
}

// A handle whose timer fired may denote a record that someone else started
// since; the cancel must leave that timer alone.
TEST_F(OsEvent, AStaleHandleNeverCancelsAnotherTasksTimer) {
    Timer *stale = nullptr;
    ASSERT_EQ(tm_evafter(1, 0x1, &stale), 0);
    tm_tick();
    Timer *theirs = nullptr;
    std::thread([&] { EXPECT_EQ(tm_cbafter(5, &theirs, runThrice, 77), 0); }).join();
    ASSERT_EQ(theirs, stale); // the pool gave the record out again
    testing::internal::CaptureStdout();
    EXPECT_EQ(tm_cancel(stale), 0);
    char expected[64];
    std::snprintf(expected, sizeof expected, "RemoveTimer: %p not found\n",
                  static_cast<void *>(stale));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), expected);
    EXPECT_EQ(TimerActiveCount(), 1);
    std::thread([&] { tm_cancel(theirs); }).join();
    take();
}

TEST_F(OsEvent, AThreadThatIsNoTaskGetsNoEventTimer) {
    std::thread([] {
        Timer *timer = reinterpret_cast<Timer *>(1);
        EXPECT_EQ(tm_evafter(1, 0x1, &timer), ERR_NOTASK);
        EXPECT_EQ(timer, nullptr);
        timer = reinterpret_cast<Timer *>(1);
        EXPECT_EQ(tm_evevery(1, 0x1, &timer), ERR_NOTASK);
        EXPECT_EQ(timer, nullptr);
    }).join();
}

void startTimersAndBlock(uint32_t, uint32_t, uint32_t, uint32_t) {
    Timer *timer = nullptr;
    tm_evevery(1, 0x1, &timer);
    tm_cbafter(
        1, &timer, [](uintptr_t) -> int32_t { return 1; }, 0);
    uint32_t out = 0;
    ev_receive(0x80, 0, 1000, &out); // cancelled here, its timer running
}

TEST_F(OsEvent, DeletingATaskStopsItsTimersAndItsTimedWait) {
    OS_SKIP_WITHOUT_CANCEL_UNWIND();
    Tcb *tcb = nullptr;
    ASSERT_EQ(t_create("tmrs", 0, 0, 0, 0, &tcb), 0);
    ASSERT_EQ(t_start(tcb, 0, startTimersAndBlock, nullptr), 0);
    while (TimerActiveCount() < 3)
        sched_yield();
    ticks(2); // posts to it and runs its callback
    EXPECT_EQ(t_delete(tcb), 0);
    EXPECT_EQ(TimerActiveCount(), 0);
    ticks(2); // would touch the freed record if any timer were left
}

// Tasks wait with short time-outs while others send, ticks run as fast as a
// thread can give them, and tasks are deleted in the middle; bounded by
// counts. Each wait ends by its events or by its time, never hangs, and the
// pool is whole at the end.
std::atomic<bool> stressStop{false};
std::atomic<int> stressWaitersDone{0};
Gate *stressNever;
void stressWaiter(uint32_t, uint32_t, uint32_t, uint32_t) {
    for (int i = 0; i < 300; ++i) {
        uint32_t out     = 0;
        const int result = ev_receive(0x3, EV_ANY, 1 + i % 3, &out);
        EXPECT_TRUE(result == 0 || result == ERR_TIMEOUT) << result;
    }
    ++stressWaitersDone;
    stressNever->block(); // the sender may still post to it; the test deletes it
}
void stressVictim(uint32_t, uint32_t, uint32_t, uint32_t) {
    for (;;) {
        uint32_t out = 0;
        Timer *timer = nullptr;
        tm_evafter(2, 0x4, &timer);
        ev_receive(0x3, EV_ANY, 2, &out);
    }
}

TEST_F(OsEvent, TimedWaitsSendsTicksAndDeletionsTogether) {
    OS_SKIP_WITHOUT_CANCEL_UNWIND();
    Gate never;
    stressNever = &never;
    std::vector<Tcb *> waiters(3);
    for (Tcb *&tcb : waiters) {
        ASSERT_EQ(t_create("wstr", 0, 0, 0, 0, &tcb), 0);
        ASSERT_EQ(t_start(tcb, 0, stressWaiter, nullptr), 0);
    }
    std::thread ticker([] {
        while (!stressStop)
            tm_tick();
    });
    std::thread sender([&] {
        for (int i = 0; i < 2000 && !stressStop; ++i) {
            ev_send(waiters[static_cast<size_t>(i) % waiters.size()], 1u << (i % 2));
            sched_yield();
        }
    });
    for (int i = 0; i < 30; ++i) {
        Tcb *victim = nullptr;
        ASSERT_EQ(t_create("vict", 0, 0, 0, 0, &victim), 0);
        ASSERT_EQ(t_start(victim, 0, stressVictim, nullptr), 0);
        for (int k = 0; k < i % 4; ++k)
            sched_yield();
        EXPECT_EQ(t_delete(victim), 0);
    }
    while (stressWaitersDone < static_cast<int>(waiters.size()))
        sched_yield();
    stressStop = true;
    sender.join();
    ticker.join();
    for (Tcb *tcb : waiters)
        EXPECT_EQ(t_delete(tcb), 0);
    EXPECT_EQ(TimerActiveCount(), 0);
    std::set<Timer *> distinct;
    for (int i = 0; i < TIMER_POOL_SIZE; ++i)
        distinct.insert(AllocTimer());
    EXPECT_EQ(distinct.size(), size_t{TIMER_POOL_SIZE});
    EXPECT_EQ(distinct.count(nullptr), 0u);
    for (Timer *record : distinct)
        FreeTimer(record);
}

TEST_F(OsEvent, AtomicOperationsGiveTheNewWord) {
    uint32_t word = 0x0f;
    EXPECT_EQ(AtomicOr(&word, 0x30), 0x3fu);
    EXPECT_EQ(AtomicAnd(&word, ~0x03u), 0x3cu);
    EXPECT_EQ(word, 0x3cu);
}

} // namespace
