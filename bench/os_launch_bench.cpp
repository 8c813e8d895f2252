// One shell command run through the launcher and plaunchd against the same
// command run by system() in this process: `true`, round trip.
#include "Common/OS/launchSeam.h"
#include "Common/OS/os.h"

#include <benchmark/benchmark.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <spawn.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>

#ifndef PLAUNCHD_PATH
#error "PLAUNCHD_PATH must name the plaunchd program"
#endif

extern char **environ;

namespace {

void BM_SystemLaunchTrue(benchmark::State &state) {
    for (auto _ : state)
        if (systemLaunch("true") != 0)
            state.SkipWithError("systemLaunch(\"true\") did not answer 0");
}
BENCHMARK(BM_SystemLaunchTrue)->UseRealTime();

void BM_SystemTrue(benchmark::State &state) {
    for (auto _ : state)
        if (system("true") != 0)
            state.SkipWithError("system(\"true\") did not return 0");
}
BENCHMARK(BM_SystemTrue)->UseRealTime();

// plaunchd on a path in a fresh folder, ready once its line has come.
struct Daemon {
    pid_t pid = -1;
    std::string dir, path;
    bool start() {
        char folder[] = "/tmp/plb.XXXXXX";
        if (mkdtemp(folder) == nullptr)
            return false;
        dir  = folder;
        path = dir + "/plaunch";
        int out[2];
        if (pipe2(out, O_CLOEXEC) != 0)
            return false;
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
        char program[] = PLAUNCHD_PATH, option[] = "--path";
        char *argv[]    = {program, option, path.data(), nullptr};
        const int error = posix_spawn(&pid, program, &actions, nullptr, argv, environ);
        posix_spawn_file_actions_destroy(&actions);
        close(out[1]);
        char c       = 0;
        bool newline = false;
        while (error == 0 && !newline && read(out[0], &c, 1) == 1)
            newline = c == '\n';
        close(out[0]);
        return error == 0 && newline;
    }
    ~Daemon() {
        if (pid > 0 && kill(pid, SIGTERM) == 0)
            waitpid(pid, nullptr, 0);
        if (!dir.empty())
            rmdir(dir.c_str());
    }
};

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    Daemon daemon;
    if (!daemon.start()) {
        std::fprintf(stderr, "os_launch_bench: plaunchd did not start\n");
        return 1;
    }
    LaunchPathSet(daemon.path.c_str());
    benchmark::RunSpecifiedBenchmarks();
    LaunchPathSet(nullptr);
    benchmark::Shutdown();
    return 0;
}
