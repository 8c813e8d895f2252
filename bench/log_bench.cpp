// The cost of a log line on the producer side, next to a bare vsnprintf of
// the same text into a 1024-byte buffer: a line that passes the filters and
// is dropped at the queue (below the threshold), and a line that reaches the
// ring while the writer task prints to /dev/null, also against an
// asynchronous logger of another library (spdlog) writing the same text to a
// null sink.
#include "Common/OS/log.h"
#include "Common/OS/logSeam.h"
#include "Common/OS/os.h"

#include <benchmark/benchmark.h>
#if defined(BENCH_WITH_SPDLOG)
#include <spdlog/async.h>
#include <spdlog/sinks/null_sink.h>
#include <spdlog/spdlog.h>
#endif

#include <cstdarg>
#include <cstdio>

namespace {

// The text of all cases: a typical failure message of the OS layer.
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
    LogSetThreshold(1); // no line has a severity below 2
    uint32_t tick = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(LogInfo("os", BENCH_FORMAT, "tmtk", 66, 14u, tick++));
    LogSetThreshold(7);
}
BENCHMARK(BM_LogInfoDropped);

// Every line reaches the ring: the loop lets the writer empty it now and
// then, outside the measured time, so that no line finds the ring full.
void BM_LogInfoToWriter(benchmark::State &state) {
    uint32_t tick = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(LogInfo("os", BENCH_FORMAT, "tmtk", 66, 14u, tick++));
        if (tick % 1024 == 0) {
            state.PauseTiming();
            LogWriterSync();
            state.ResumeTiming();
        }
    }
    LogWriterSync();
}
BENCHMARK(BM_LogInfoToWriter);

#if defined(BENCH_WITH_SPDLOG)
void BM_SpdlogAsyncNullSink(benchmark::State &state) {
    static auto logger = spdlog::create_async<spdlog::sinks::null_sink_mt>("bench");
    uint32_t tick      = 0;
    for (auto _ : state)
        logger->info("t_start: task {} priority {} failed with {} after 0x{:08x} ticks", "tmtk", 66,
                     14u, tick++);
}
BENCHMARK(BM_SpdlogAsyncNullSink);
#endif

} // namespace

int main(int argc, char **argv) {
    LogWriterStreamSet(std::fopen("/dev/null", "w"));
    if (os_start(7) != 0)
        return 1;
    // The first line loads the settings; the loop measures the steady path.
    LogInfo("os", "warm up\n");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
