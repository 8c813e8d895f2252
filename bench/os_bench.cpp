// The kernel interface against what it is built on: the key tree against
// std::map, a semaphore against a bare priority-inheriting mutex, and a task
// that runs and ends against a bare thread created and joined.
#include "Common/OS/os.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <ctime>
#include <map>
#include <mutex>
#include <random>
#include <sched.h>
#include <thread>
#include <vector>

namespace {

// 200 keys shaped like thread handles (stack addresses 8 MiB apart), looked
// up in a shuffled order.
struct Keys {
    Keys() {
        for (uintptr_t i = 0; i < 200; ++i)
            stored.push_back(0x7f0000000000u + i * 0x800000u);
        order = stored;
        std::shuffle(order.begin(), order.end(), std::mt19937(7));
    }
    std::vector<uintptr_t> stored, order;
};
const Keys keys;

void BM_SearchTree200(benchmark::State &state) {
    Tree *tree = CreateTree();
    for (uintptr_t key : keys.stored)
        InsertItem(tree, key, key);
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(SearchTree(tree, keys.order[i]));
        i = i + 1 == keys.order.size() ? 0 : i + 1;
    }
    DestroyTree(tree);
    free(tree);
}
BENCHMARK(BM_SearchTree200);

void BM_MapFind200(benchmark::State &state) {
    std::map<uintptr_t, uintptr_t> map;
    for (uintptr_t key : keys.stored)
        map.emplace(key, key);
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.find(keys.order[i])->second);
        i = i + 1 == keys.order.size() ? 0 : i + 1;
    }
}
BENCHMARK(BM_MapFind200);

void BM_SemaphorePV(benchmark::State &state) {
    Semaphore *id = nullptr;
    sm_create("bnch", 1, 0, &id);
    for (auto _ : state) {
        sm_p(id, 0, 0);
        sm_v(id);
    }
    sm_delete(id);
}
BENCHMARK(BM_SemaphorePV);

void BM_PiMutexLockUnlock(benchmark::State &state) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_setprotocol(&attributes, PTHREAD_PRIO_INHERIT);
    pthread_mutex_t mutex;
    pthread_mutex_init(&mutex, &attributes);
    for (auto _ : state) {
        pthread_mutex_lock(&mutex);
        pthread_mutex_unlock(&mutex);
    }
    pthread_mutex_destroy(&mutex);
    pthread_mutexattr_destroy(&attributes);
}
BENCHMARK(BM_PiMutexLockUnlock);

void returnAtOnce(uint32_t, uint32_t, uint32_t, uint32_t) {}

// Until the record is gone: the task frees it on its own thread as it ends.
void BM_TaskCreateStartEnd(benchmark::State &state) {
    t_attach("bnch", 0, 0);
    for (auto _ : state) {
        Tcb *tcb = nullptr;
        t_create("shrt", 0, 0, 0, 0, &tcb);
        t_start(tcb, 0, returnAtOnce, nullptr);
        while (t_ident("shrt", 0, &tcb) == 0)
            sched_yield();
    }
}
BENCHMARK(BM_TaskCreateStartEnd)->UseRealTime();

void BM_PthreadCreateJoin(benchmark::State &state) {
    for (auto _ : state) {
        pthread_t thread;
        pthread_create(
            &thread, nullptr, [](void *) -> void * { return nullptr; }, nullptr);
        pthread_join(thread, nullptr);
    }
}
BENCHMARK(BM_PthreadCreateJoin)->UseRealTime();

// One round trip: an event to the other task and its event back.
Tcb *benchMain, *benchPong;
void pong(uint32_t, uint32_t, uint32_t, uint32_t) {
    for (;;) {
        uint32_t out = 0;
        ev_receive(0x1, 0, 0, &out);
        ev_send(benchMain, 0x1);
    }
}

void BM_EventPingPong(benchmark::State &state) {
    t_attach("bnch", 0, 0);
    benchMain = FindTcb(pthread_self());
    t_create("pong", 0, 0, 0, 0, &benchPong);
    t_start(benchPong, 0, pong, nullptr);
    for (auto _ : state) {
        uint32_t out = 0;
        ev_send(benchPong, 0x1);
        ev_receive(0x1, 0, 0, &out);
    }
    t_delete(benchPong);
}
BENCHMARK(BM_EventPingPong)->UseRealTime();

// The same round trip with a bare mutex and condition variable per side.
struct Mailbox {
    std::mutex mutex;
    std::condition_variable wake;
    bool full = false;
    void post() {
        std::lock_guard<std::mutex> hold(mutex);
        full = true;
        wake.notify_one();
    }
    void take() {
        std::unique_lock<std::mutex> hold(mutex);
        wake.wait(hold, [this] { return full; });
        full = false;
    }
};

void BM_CondVarPingPong(benchmark::State &state) {
    Mailbox toPong, toMain;
    std::atomic<bool> stop{false};
    std::thread other([&] {
        for (;;) {
            toPong.take();
            if (stop)
                return;
            toMain.post();
        }
    });
    for (auto _ : state) {
        toPong.post();
        toMain.take();
    }
    stop = true;
    toPong.post();
    other.join();
}
BENCHMARK(BM_CondVarPingPong)->UseRealTime();

// One tick over a full pool of timers, none of which fires.
void BM_TickFullPoolNoneFiring(benchmark::State &state) {
    t_attach("bnch", 0, 0);
    std::vector<Timer *> timers(TIMER_POOL_SIZE);
    for (Timer *&timer : timers)
        tm_evevery(0xffffffffu, 0x1, &timer);
    for (auto _ : state)
        tm_tick();
    for (Timer *timer : timers)
        tm_cancel(timer);
}
BENCHMARK(BM_TickFullPoolNoneFiring);

// The period of a 1-tick repeating timer of the real timer task, over 500
// ticks: mean and worst, in milliseconds, against the nominal 10.
void BM_TickPeriod(benchmark::State &state) {
    t_attach("bnch", 0, 0);
    double mean = 0, worst = 0;
    for (auto _ : state) {
        Timer *timer = nullptr;
        tm_evevery(1, 0x2, &timer);
        timespec before{}, now{};
        uint32_t out = 0;
        ev_receive(0x2, 0, 0, &out);
        clock_gettime(CLOCK_MONOTONIC, &before);
        const timespec first = before;
        for (int tick = 0; tick < 500; ++tick) {
            ev_receive(0x2, 0, 0, &out);
            clock_gettime(CLOCK_MONOTONIC, &now);
            const double ms =
                (now.tv_sec - before.tv_sec) * 1e3 + (now.tv_nsec - before.tv_nsec) / 1e6;
            worst  = std::max(worst, ms);
            before = now;
        }
        mean = ((now.tv_sec - first.tv_sec) * 1e3 + (now.tv_nsec - first.tv_nsec) / 1e6) / 500;
        tm_cancel(timer);
    }
    state.counters["mean_ms"]  = mean;
    state.counters["worst_ms"] = worst;
}
BENCHMARK(BM_TickPeriod)->Iterations(1)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
