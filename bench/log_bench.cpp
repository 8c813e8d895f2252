// Cost of one log line that passes the filters and is dropped at the queue,
// next to a bare vsnprintf of the same text into a 1024-byte buffer.
#include "Common/OS/log.h"

#include <benchmark/benchmark.h>

#include <cstdarg>
#include <cstdio>

namespace {

// The text of both cases: a typical failure message of the OS layer.
#define BENCH_FORMAT "t_start: task %s priority %d failed with %u after 0x%08x ticks\n"

__attribute__((format(printf, 2, 3))) int formatBare(char *buffer, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int result = vsnprintf(buffer, 1024, format, arguments);
    va_end(arguments);
    return result;
}

void BM_VsnprintfBare(benchmark::State &state) {
    char buffer[1024];
    uint32_t tick = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(formatBare(buffer, BENCH_FORMAT, "tmtk", 66, 14u, tick++));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_VsnprintfBare);

void BM_LogInfoDropped(benchmark::State &state) {
    // The first line loads the settings; the loop measures the steady path.
    LogInfo("os", "warm up\n");
    uint32_t tick = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(LogInfo("os", BENCH_FORMAT, "tmtk", 66, 14u, tick++));
}
BENCHMARK(BM_LogInfoDropped);

} // namespace

BENCHMARK_MAIN();
