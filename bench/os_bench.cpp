// The kernel interface against what it is built on: the key tree against
// std::map, a semaphore against a bare priority-inheriting mutex, and a task
// that runs and ends against a bare thread created and joined.
#include "Common/OS/os.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <map>
#include <random>
#include <sched.h>
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

} // namespace

BENCHMARK_MAIN();
