// plaunchd, the peer of the shell-command launcher: options, signals, the
// request pipe, the ready line, and the serving loop until SIGINT or SIGTERM.
#include "tools/plaunchd/launchPipe.h"
#include "tools/plaunchd/launchServe.h"

#include "Common/OS/osUtil.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <getopt.h>
#include <unistd.h>

namespace {

constexpr const char helpText[] =
    "Usage: plaunchd [OPTION]...\n"
    "Serves the request path of the shell-command launcher as a named pipe: reads\n"
    "one command line per request, runs it with /bin/sh and answers one line that\n"
    "starts with its exit status (128 plus the signal's number when a signal ended\n"
    "it; -1 and a reason when it was refused or no shell could be started).\n"
    "SIGINT or SIGTERM removes the pipe and ends it with status 0.\n"
    "\n"
    "  -p, --path PATH   request path (default " OS_LAUNCH_PATH ")\n"
    "  -h, --help        print this help and exit\n"
    "\n"
    "When the pipe is ready, one line goes to standard output:\n"
    "  plaunchd: serving PATH\n";

// The write end of the pipe that wakes the serving loop on a stop signal.
int stopWriteFd = -1;

void onStopSignal(int) {
    const int saved            = errno;
    const char byte            = 's';
    [[maybe_unused]] ssize_t n = write(stopWriteFd, &byte, 1);
    errno                      = saved;
}

// Signals go to a pipe that the loop polls. SA_RESTART lets the wait for a
// command go on; a write to a client that went away fails with EPIPE
// instead of ending the daemon.
bool installSignals(int stopFds[2]) {
    if (pipe2(stopFds, O_NONBLOCK | O_CLOEXEC) != 0)
        return false;
    stopWriteFd = stopFds[1];
    struct sigaction stop {};
    stop.sa_handler = onStopSignal;
    stop.sa_flags   = SA_RESTART;
    sigemptyset(&stop.sa_mask);
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    sigemptyset(&ignore.sa_mask);
    return sigaction(SIGINT, &stop, nullptr) == 0 && sigaction(SIGTERM, &stop, nullptr) == 0 &&
           sigaction(SIGPIPE, &ignore, nullptr) == 0;
}

} // namespace

int main(int argc, char **argv) {
    static const option longOptions[] = {
        {"path", required_argument, nullptr, 'p'},
        {"help", no_argument, nullptr, 'h'},
        {nullptr, 0, nullptr, 0},
    };
    const char *path = OS_LAUNCH_PATH;
    for (int c; (c = getopt_long(argc, argv, "p:h", longOptions, nullptr)) != -1;) {
        if (c == 'p')
            path = optarg;
        else if (c == 'h') {
            std::fputs(helpText, stdout);
            return 0;
        } else {
            std::fputs("Try 'plaunchd --help'.\n", stderr);
            return 1;
        }
    }
    if (optind < argc) {
        std::fprintf(stderr, "plaunchd: unexpected argument '%s'\nTry 'plaunchd --help'.\n",
                     argv[optind]);
        return 1;
    }
    // Signals first: a stop that comes as soon as the pipe exists still
    // removes it.
    int stopFds[2] = {-1, -1};
    if (!installSignals(stopFds)) {
        std::fprintf(stderr, "plaunchd: cannot install signal handlers: %s\n",
                     std::strerror(errno));
        return 1;
    }
    static LaunchPipe pipe;
    char error[PATH_MAX + 200];
    if (!LaunchPipeCreate(path, pipe, error, sizeof error)) {
        std::fprintf(stderr, "plaunchd: %s\n", error);
        return 1;
    }
    std::printf("plaunchd: serving %s\n", pipe.Path);
    std::fflush(stdout);
    const int status = LaunchServe(pipe, stopFds[0]);
    LaunchPipeRemove(pipe);
    return status;
}
