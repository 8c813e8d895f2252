// The writer's throughput: lines drained from the ring to /dev/null, the
// ring filled beforehand without a writer task.
#include "Common/OS/log.h"
#include "Common/OS/logRing.h"
#include "Common/OS/logSeam.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <string>

namespace {

void BM_LogDrainToDevNull(benchmark::State &state) {
    LogRingHold();
    LogWriterStreamSet(std::fopen("/dev/null", "w"));
    const std::string line = "INFO  pc[0]: os: t_start: task tmtk priority 66 failed with 14\n";
    constexpr int lines    = 4096;
    for (auto _ : state) {
        state.PauseTiming();
        logHead.store(0);
        logTail.store(0);
        for (int i = 0; i < lines; ++i)
            LogEnqueue(line.c_str(), 0);
        state.ResumeTiming();
        LogDrain();
    }
    state.SetItemsProcessed(state.iterations() * lines);
}
BENCHMARK(BM_LogDrainToDevNull);

} // namespace

BENCHMARK_MAIN();
