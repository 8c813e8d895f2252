// Events and timers, with ticks given by hand: matching, no lost wake-up,
// timed waits, timers on their tick, the pool, stale handles, and deletion.
#include "Common/OS/timerSeam.h"
#include "osTestSupport.h"

#include <atomic>
#include <set>
#include <thread>
#include <vector>

namespace {

// The bits that are there now, taken.
uint32_t take() {
    uint32_t out = 0;
    return ev_receive(0xffffffff, EV_ANY | EV_NOWAIT, 0, &out) == 0 ? out : 0;
}

uint32_t callbackRuns = 0;
int32_t runThrice(uintptr_t arg) {
    EXPECT_EQ(arg, 77u);
    return ++callbackRuns < 3;
}

struct OsEvent : testing::Test {
    void SetUp() override {
        TimerTicksByHand();
        ASSERT_EQ(t_attach("test", 0, 0), 0);
        callbackRuns = 0;
    }
    // Every record of the pool, allocated and freed: a timer left running or
    // a damaged free list gives fewer distinct records.
    void TearDown() override {
        std::set<Timer *> records;
        for (int i = 0; i < TIMER_POOL_SIZE; ++i)
            records.insert(AllocTimer());
        records.erase(nullptr);
        EXPECT_EQ(records.size(), size_t{TIMER_POOL_SIZE});
        for (Timer *record : records)
            FreeTimer(record);
    }
};

// Each row sends `pending`, then receives; with `ticks`, a thread waits for
// the timed wait to begin, gives the ticks, then sends `later`.
TEST_F(OsEvent, ReceiveMatchesWaitsTakesAndLeavesBitsAsItsFlagsSay) {
    struct {
        uint32_t pending, wanted, flags, timeout, ticks, later, result, out, left;
    } const cases[] = {
        // clang-format off
        {0x05, 0x00, 0,                  5, 0, 0,   0,            0x05, 0x05}, // the whole word, untouched
        {0x05, 0x0f, EV_ANY | EV_NOWAIT, 5, 0, 0,   0,            0x05, 0x00},
        {0x15, 0x0f, EV_ANY,             5, 0, 0,   0,            0x05, 0x10}, // there already: no timer
        {0x05, 0x07, EV_NOWAIT,          5, 0, 0,   ERR_NOEVENTS, 0xee, 0x05}, // all needed: nothing taken
        {0x0f, 0x07, 0,                  5, 0, 0,   0,            0x07, 0x08},
        {0x01, 0x03, 0,                  3, 3, 0,   ERR_TIMEOUT,  0xee, 0x01}, // part of it: runs out
        {0x01, 0x03, 0,                  5, 4, 0x2, 0,            0x03, 0x00}, // sent in two parts
        // clang-format on
    };
    Tcb *self = FindTcb(pthread_self());
    for (const auto &c : cases) {
        EXPECT_EQ(ev_send(self, c.pending), 0);
        std::thread ticker([&] {
            while (c.ticks != 0 && TimerActiveCount() == 0)
                sched_yield();
            for (uint32_t tick = 0; tick < c.ticks; ++tick)
                tm_tick();
            if (c.later != 0)
                ev_send(self, c.later);
        });
        uint32_t out = 0xee;
        EXPECT_EQ(ev_receive(c.wanted, c.flags, c.timeout, &out), static_cast<int>(c.result))
            << c.wanted;
        ticker.join();
        EXPECT_EQ(TimerActiveCount(), 0) << c.wanted; // none taken, fired, or cancelled
        EXPECT_EQ(out, c.out) << c.wanted;
        EXPECT_EQ(take(), c.left) << c.wanted;
    }
}

// Two tasks pass a token back and forth, one bit at a time for the whole
// match: a lost wake-up hangs, a wait that ends on part of the match shows.
Tcb *players[2];
std::atomic<int> misses{0};
void volley(uint32_t side, uint32_t, uint32_t, uint32_t) {
    for (uint32_t turn = side; turn < side + 800; ++turn) { // side 0 sends first
        uint32_t out = 0;
        if (turn % 2 != 0)
            misses += ev_receive(0x7, 0, 0, &out) != 0 || out != 0x7;
        else
            for (uint32_t bit : {0x1u, 0x2u, 0x4u})
                ev_send(players[1 - side], bit);
    }
}

TEST_F(OsEvent, NoWakeUpIsLostAndPartialSendsCollect) {
    for (uint32_t side : {1u, 0u}) {
        const uint32_t args[4] = {side, 0, 0, 0};
        ostest::startTask(players[side], "play", volley, args);
    }
    ostest::waitUntilGone("play");
    EXPECT_EQ(misses.load(), 0);
}

// Timers that end go back on top of the free list in the order they
// expired; two that expire on one tick, in the order they were started. A
// handle kept after its timer ended may denote a record that someone else
// started since: its cancel leaves that timer alone.
TEST_F(OsEvent, TimersFireOnTheirTickRepeatWithoutDriftAndGoBackInOrder) {
    ostest::LogLines log;
    Timer *once = nullptr, *twin = nullptr, *every = nullptr, *callback = nullptr, *theirs;
    ASSERT_EQ(tm_evafter(3, 0x1, &once), 0);
    ASSERT_EQ(tm_evafter(3, 0x8, &twin), 0);
    ASSERT_EQ(tm_evevery(4, 0x2, &every), 0);
    ASSERT_EQ(tm_cbafter(2, &callback, runThrice, 77), 0);
    std::vector<uint32_t> posted, runs;
    for (int tick = 1; tick <= 13; ++tick) {
        tm_tick();
        posted.push_back(take());
        runs.push_back(callbackRuns);
    }
    EXPECT_EQ(posted, (std::vector<uint32_t>{0, 0, 9, 2, 0, 0, 0, 2, 0, 0, 0, 2, 0}));
    EXPECT_EQ(runs, (std::vector<uint32_t>{0, 1, 1, 2, 2, 3, 3, 3, 3, 3, 3, 3, 3}));
    std::thread([&] { // no task: it gets a callback timer, but no event timer nor wait
        EXPECT_EQ(tm_cbafter(5, &theirs, runThrice, 77), 0);
        uint32_t out = 0;
        EXPECT_EQ(ev_receive(1, EV_NOWAIT, 0, &out), ERR_NOTASK);
        for (auto start : {tm_evafter, tm_evevery}) {
            Timer *timer = theirs;
            EXPECT_EQ(start(1, 0x1, &timer), ERR_NOTASK);
            EXPECT_EQ(timer, nullptr);
        }
    })
        .join();
    testing::internal::CaptureStdout();
    EXPECT_EQ(tm_cancel(callback), 0);
    char expected[64];
    std::snprintf(expected, sizeof expected, "RemoveTimer: %p not found\n",
                  static_cast<void *>(callback));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), expected);
    std::vector<Timer *> all(TIMER_POOL_SIZE - 2); // with `every` and theirs, the whole pool
    for (Timer *&timer : all)
        ASSERT_EQ(tm_evevery(1000, 0x1, &timer), 0);
    EXPECT_EQ((std::vector<Timer *>{theirs, all[0], all[1]}),
              (std::vector<Timer *>{callback, twin, once}));
    Timer *more[3] = {once, once, once}; // the 51st: refused, null stored
    EXPECT_EQ((std::vector<int>{tm_evafter(1, 0x1, &more[0]), tm_evevery(1, 0x1, &more[1]),
                                tm_cbafter(1, &more[2], runThrice, 77)}),
              std::vector<int>(3, ERR_NOTIMER));
    EXPECT_EQ(std::vector<Timer *>(more, more + 3), std::vector<Timer *>(3, nullptr));
    uint32_t out = 0;
    EXPECT_EQ(ev_receive(0x8, 0, 1, &out), ERR_NOTIMER); // at once, not for ever
    EXPECT_EQ(ev_send(FindTcb(pthread_self()), 0x8), 0);
    EXPECT_EQ(ev_receive(0x8, 0, 1, &out), 0); // there already: needs no timer
    EXPECT_EQ(log.take(), ostest::Lines(4, "CRIT  pc[0]: os: AllocTimer failed\n"));
    RemoveTimer(theirs);
    all.push_back(every);
    for (Timer *timer : all)
        tm_cancel(timer);
    FreeTimer(all[0]); // free already: reported, and not pushed again
    EXPECT_NE(log.take().back().find("FreeTimer pList is not consistent"), std::string::npos);
}

// Events and the time-out meet: the wait's timer fires, and its record
// serves a new timer, before the wait cancels it; the cancel leaves it alone.
TEST_F(OsEvent, AWaitsLateCancelLeavesItsRecordsNewTimerAlone) {
    static Timer *reused = nullptr;
    EvReceiveBeforeCancelSet([](Timer *timer) {
        tm_tick();
        EXPECT_EQ(tm_evafter(5, 0x4, &reused), 0);
        EXPECT_EQ(reused, timer);
    });
    Tcb *self = FindTcb(pthread_self());
    std::thread sender([self] {
        while (TimerActiveCount() == 0)
            sched_yield();
        ev_send(self, 0x2);
    });
    uint32_t out = 0;
    EXPECT_EQ(ev_receive(0x2, 0, 1, &out), 0);
    sender.join();
    EvReceiveBeforeCancelSet(nullptr);
    EXPECT_EQ(TimerActiveCount(), 1);
    EXPECT_EQ(tm_cancel(reused), 0);
}

// A deletion stops the task's timers and timed wait, alone and among timed
// waits, sends and ticks, bounded by counts; TSan watches.
void timersAndWaits(uint32_t, uint32_t, uint32_t, uint32_t) {
    for (Timer *timer = nullptr;;) {
        uint32_t out = 0;
        tm_evafter(2, 0x4, &timer);
        ev_receive(0x3, EV_ANY, 2, &out);
    }
}
std::atomic<bool> sending{true};
void stressWaiter(uint32_t, uint32_t, uint32_t, uint32_t) {
    for (int i = 0; i < 300 || sending; ++i) { // ends once the sender is done
        uint32_t out     = 0;
        const int result = ev_receive(0x3, EV_ANY, 1 + i % 3, &out);
        EXPECT_TRUE(result == 0 || result == ERR_TIMEOUT) << result;
    }
}

TEST_F(OsEvent, DeletionsStopTimersAlsoAmongTimedWaitsSendsAndTicks) {
    OS_SKIP_WITHOUT_CANCEL_UNWIND();
    sending     = true;
    Tcb *victim = nullptr;
    ostest::startTask(victim, "vict", timersAndWaits);
    while (TimerActiveCount() < 2)
        sched_yield();
    tm_tick();
    EXPECT_EQ(t_delete(victim), 0);
    EXPECT_EQ(TimerActiveCount(), 0);
    std::vector<Tcb *> waiters(3);
    for (Tcb *&tcb : waiters)
        ostest::startTask(tcb, "wstr", stressWaiter);
    std::thread sender([&] {
        for (size_t i = 0; i < 2000; ++i, sched_yield())
            ev_send(waiters[i % waiters.size()], 1u << (i % 2));
        sending = false;
    });
    for (int i = 0; i < 30; ++i) {
        ostest::startTask(victim, "vict", timersAndWaits);
        for (int tick = 0; tick < i % 4; ++tick) // would touch a freed record if a timer were left
            tm_tick();
        EXPECT_EQ(t_delete(victim), 0);
    }
    sender.join();
    for (Tcb *found = nullptr; t_ident("wstr", 0, &found) == 0;)
        tm_tick();
}

} // namespace
