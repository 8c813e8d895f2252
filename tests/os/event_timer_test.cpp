// Events and timers, with ticks given by hand: matching, no lost wake-up,
// timed waits, timers that fire on their tick, the pool's limit and order,
// stale handles, deletion of a task with timers, and a bounded stress.
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
        take();
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
    // Every record of the pool, allocated and freed: a damaged free list
    // hands one out twice or runs short.
    static void expectWholePool() {
        std::set<Timer *> records;
        for (int i = 0; i < TIMER_POOL_SIZE; ++i)
            records.insert(AllocTimer());
        EXPECT_EQ(records.size(), size_t{TIMER_POOL_SIZE});
        EXPECT_EQ(records.count(nullptr), 0u);
        for (Timer *record : records)
            FreeTimer(record);
    }
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
        {0x15, 0x0f, EV_ANY,             0,            0x05, 0x10}, // there already: no wait, no timer
        {0x05, 0x07, EV_NOWAIT,          ERR_NOEVENTS, 0xee, 0x05}, // all needed: nothing taken
        {0x0f, 0x07, 0,                  0,            0x07, 0x08},
        // clang-format on
    };
    for (const auto &c : cases) {
        take();
        EXPECT_EQ(ev_send(FindTcb(pthread_self()), c.pending), 0);
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
Tcb *players[2];
std::atomic<int> misses{0};
void volley(uint32_t side, uint32_t, uint32_t, uint32_t) {
    for (int i = 0; i < 400; ++i) {
        uint32_t out = 0x7;
        if (side == 1 || i > 0)
            ev_receive(0x7, 0, 0, &out);
        misses += out != 0x7;
        for (uint32_t bit : {0x1u, 0x2u, 0x4u})
            ev_send(players[1 - side], bit);
    }
    uint32_t out = 0;
    if (side == 0)
        ev_receive(0x7, 0, 0, &out);
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

// A task that waits for 0x3 with a time limit, then stays until deleted.
struct {
    uint32_t timeout;
    int result;
    uint32_t out;
} timedWait;
Gate *waitDone, *waitNever;
void waitTimed(uint32_t, uint32_t, uint32_t, uint32_t) {
    timedWait.out    = 0xee;
    timedWait.result = ev_receive(0x3, 0, timedWait.timeout, &timedWait.out);
    waitDone->pass();
    waitNever->wait();
}

TEST_F(OsEvent, ATimedWaitEndsByItsTimeOrByItsEventsAndItsTimerGoes) {
    OS_SKIP_WITHOUT_CANCEL_UNWIND();
    struct {
        uint32_t timeout, sendAfterTicks, bits;
        int result;
        uint32_t out, left;
    } const cases[] = {
        {3, 2, 0x1, ERR_TIMEOUT, 0xee, 0x1}, // part of the match: runs out at tick 3
        {5, 4, 0x3, 0, 0x3, 0x0},
    };
    for (const auto &c : cases) {
        Gate done, never;
        waitDone  = &done;
        waitNever = &never;
        timedWait = {c.timeout, -1, 0};
        Tcb *tcb  = nullptr;
        ASSERT_EQ(t_create("wait", 0, 0, 0, 0, &tcb), 0);
        ASSERT_EQ(t_start(tcb, 0, waitTimed, nullptr), 0);
        while (TimerActiveCount() == 0) // its wait has begun
            sched_yield();
        ticks(static_cast<int>(c.sendAfterTicks));
        ev_send(tcb, c.bits);
        if (c.result == ERR_TIMEOUT) {
            ticks(static_cast<int>(c.timeout - c.sendAfterTicks - 1));
            EXPECT_EQ(TimerActiveCount(), 1);
            ticks(1);
        }
        done.wait();
        EXPECT_EQ(TimerActiveCount(), 0); // fired, or cancelled by the wait
        EXPECT_EQ(timedWait.result, c.result);
        EXPECT_EQ(timedWait.out, c.out);
        EXPECT_EQ(tcb->events, c.left);
        t_delete(tcb);
    }
}

int32_t callbackRuns = 0;
int32_t runThrice(uintptr_t arg) {
    EXPECT_EQ(arg, 77u);
    return ++callbackRuns < 3;
}

TEST_F(OsEvent, TimersFireOnTheirTickRepeatWithoutDriftAndEndAsTold) {
    Timer *once = nullptr, *every = nullptr, *callback = nullptr;
    ASSERT_EQ(tm_evafter(3, 0x1, &once), 0);
    ASSERT_EQ(tm_evevery(4, 0x2, &every), 0);
    ASSERT_EQ(tm_cbafter(2, &callback, runThrice, 77), 0);
    std::vector<uint32_t> posted;
    std::vector<int32_t> runs;
    for (int tick = 1; tick <= 13; ++tick) {
        tm_tick();
        posted.push_back(take());
        runs.push_back(callbackRuns);
    }
    EXPECT_EQ(posted, (std::vector<uint32_t>{0, 0, 1, 2, 0, 0, 0, 2, 0, 0, 0, 2, 0}));
    EXPECT_EQ(runs, (std::vector<int32_t>{0, 1, 1, 2, 2, 3, 3, 3, 3, 3, 3, 3, 3}));
    EXPECT_EQ(TimerActiveCount(), 1); // the ended ones went back to the pool
    EXPECT_EQ(tm_cancel(every), 0);
}

TEST_F(OsEvent, ThePoolHolds50AndFreesTimersInTheOrderTheyExpired) {
    ostest::LogLines log;
    Timer *first = nullptr, *second = nullptr, *more = nullptr;
    ASSERT_EQ(tm_evafter(2, 0x1, &first), 0);
    ASSERT_EQ(tm_evafter(2, 0x1, &second), 0);
    ticks(2);
    std::vector<Timer *> all(TIMER_POOL_SIZE);
    for (Timer *&timer : all)
        ASSERT_EQ(tm_evevery(1000, 0x1, &timer), 0);
    EXPECT_EQ(all[0], second); // freed last, on top of the free list
    EXPECT_EQ(all[1], first);
    EXPECT_EQ(tm_evevery(1000, 0x1, &more), ERR_NOTIMER);
    EXPECT_EQ(more, nullptr);
    EXPECT_EQ(tm_cbafter(1, &more, runThrice, 77), ERR_NOTIMER);
    uint32_t out = 0;
    EXPECT_EQ(ev_receive(0x8, 0, 1, &out), ERR_NOTIMER); // at once, not for ever
    EXPECT_EQ(log.take(), Lines(3, "CRIT  pc[0]: os: AllocTimer failed\n"));
    tm_cancel(all[7]);
    EXPECT_EQ(tm_evevery(1000, 0x1, &all[7]), 0);
    for (Timer *timer : all)
        tm_cancel(timer);
    take();
    Timer *timer = AllocTimer(); // freed twice: reported, and not pushed again
    FreeTimer(timer);
    FreeTimer(timer);
    EXPECT_NE(log.take().back().find("FreeTimer pList is not consistent"), std::string::npos);
    expectWholePool();
}

// A handle whose timer fired may denote a record that someone else started
// since; the cancel must leave that timer alone.
TEST_F(OsEvent, AStaleHandleNeverCancelsAnotherTasksTimer) {
    Timer *stale = nullptr, *theirs = nullptr;
    ASSERT_EQ(tm_evafter(1, 0x1, &stale), 0);
    tm_tick();
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
    std::thread([] { // a thread that is no task gets no event timer
        Timer *timer = reinterpret_cast<Timer *>(1);
        EXPECT_EQ(tm_evafter(1, 0x1, &timer), ERR_NOTASK);
        EXPECT_EQ(timer, nullptr);
    })
        .join();
}

void startTimersAndWait(uint32_t, uint32_t, uint32_t, uint32_t) {
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
    ASSERT_EQ(t_start(tcb, 0, startTimersAndWait, nullptr), 0);
    while (TimerActiveCount() < 3)
        sched_yield();
    ticks(2); // posts to it and runs its callback
    EXPECT_EQ(t_delete(tcb), 0);
    EXPECT_EQ(TimerActiveCount(), 0);
    ticks(2); // would touch the freed record if a timer were left
}

// Timed waits, sends, ticks as fast as a thread gives them, and deletions of
// tasks with timers, together and bounded by counts; TSan watches.
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
    stressNever->wait(); // the sender may still post to it; the test deletes it
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
    expectWholePool();
}

} // namespace
