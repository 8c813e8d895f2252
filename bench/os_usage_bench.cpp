// One processor usage report on this machine, printed to /dev/null: the
// task rows of one attached task and the walk over every process of /proc.
#include "Common/OS/os.h"
#include "Common/OS/usageSeam.h"

#include <benchmark/benchmark.h>

#include <cctype>
#include <cstdio>
#include <dirent.h>

namespace {

// The processes a report reads: the entries of /proc that are numbers.
int procProcesses() {
    DIR *proc = opendir("/proc");
    if (proc == nullptr)
        return 0;
    int count = 0;
    while (const dirent *entry = readdir(proc))
        count += isdigit(static_cast<unsigned char>(entry->d_name[0])) != 0;
    closedir(proc);
    return count;
}

void BM_Usage(benchmark::State &state) {
    FILE *sink = std::fopen("/dev/null", "w");
    UsageSeamSet(nullptr, nullptr, sink);
    t_attach("bnch", 0, 0);
    for (auto _ : state)
        t_usage();
    // The report leaves its own process out of the walk.
    state.counters["processes"] = procProcesses() - 1;
    UsageSeamSet(nullptr, nullptr, nullptr);
    std::fclose(sink);
}
BENCHMARK(BM_Usage)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
