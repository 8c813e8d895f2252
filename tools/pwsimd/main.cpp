// pwsimd, the PixelWorks daemon simulator: options, pipes, signals, the
// ready line, and the serving loop until SIGINT, SIGTERM or SIGHUP.
#include "tools/pwsimd/simOptions.h"
#include "tools/pwsimd/simPipes.h"
#include "tools/pwsimd/simServer.h"
#include "tools/pwsimd/simTrace.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <unistd.h>

namespace {

// The write end of the pipe that wakes the serving loop on a stop signal.
int stopWriteFd = -1;

void onStopSignal(int) {
    int saved                  = errno;
    const char byte            = 's';
    [[maybe_unused]] ssize_t n = write(stopWriteFd, &byte, 1);
    errno                      = saved;
}

bool installSignals(int stopFds[2], char *error, std::size_t size) {
    if (pipe(stopFds) != 0) {
        std::snprintf(error, size, "cannot make the stop pipe: %s", std::strerror(errno));
        return false;
    }
    for (int i = 0; i < 2; ++i) {
        fcntl(stopFds[i], F_SETFL, fcntl(stopFds[i], F_GETFL) | O_NONBLOCK);
        fcntl(stopFds[i], F_SETFD, FD_CLOEXEC);
    }
    stopWriteFd = stopFds[1];

    struct sigaction stop {};
    stop.sa_handler = onStopSignal;
    sigemptyset(&stop.sa_mask);
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    sigemptyset(&ignore.sa_mask);
    // A hang-up (its terminal closed) stops it like an interrupt, with the
    // pipes removed. A reply pipe never loses its reader (we hold one), but
    // a write must never end the daemon.
    if (sigaction(SIGINT, &stop, nullptr) != 0 || sigaction(SIGTERM, &stop, nullptr) != 0 ||
        sigaction(SIGHUP, &stop, nullptr) != 0 || sigaction(SIGPIPE, &ignore, nullptr) != 0) {
        std::snprintf(error, size, "cannot install signal handlers: %s", std::strerror(errno));
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char **argv) {
    SimOptions options;
    char error[PW_PATH_MAX + 200];
    if (!SimParseOptions(argc, argv, options, error, sizeof error)) {
        std::fprintf(stderr, "pwsimd: %s\nTry 'pwsimd --help'.\n", error);
        return 1;
    }
    if (options.Help) {
        std::fputs(SimHelpText(), stdout);
        return 0;
    }
    SimTraceEnable(options.Trace);

    // Signals first: a stop that comes as soon as the pipes exist still
    // removes them.
    int stopFds[2] = {-1, -1};
    if (!installSignals(stopFds, error, sizeof error)) {
        std::fprintf(stderr, "pwsimd: %s\n", error);
        return 1;
    }
    static SimPipes pipes;
    if (!SimPipesCreate(options.Dir, pipes, error, sizeof error)) {
        std::fprintf(stderr, "pwsimd: %s\n", error);
        return 1;
    }
    std::printf("pwsimd: ready in %s\n", options.Dir);
    std::fflush(stdout);

    int status = SimServe(options, pipes, stopFds[0]);
    SimPipesRemove(pipes);
    return status;
}
