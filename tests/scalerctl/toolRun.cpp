// Starting scalerctl as its own process, with pipes for both output streams.
#include "toolRun.h"

#include "tests/pwsimd/simProcess.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#ifndef SCALERCTL_PATH
#error "SCALERCTL_PATH must name the scalerctl program"
#endif
#ifndef SCALERCTL_EMULATOR
#error "SCALERCTL_EMULATOR must list the emulator and its arguments (empty when native)"
#endif

namespace {

// A guard against a hang, not a measure of speed: the longest run of the
// tool is a few seconds of timeouts, slower under the emulator.
constexpr int hangGuardMs = 60000;

} // namespace

ToolRun RunScalerctl(const std::vector<std::string> &args) {
    ToolRun run;
    std::vector<std::string> argv = EmulatedCommandLine(SCALERCTL_EMULATOR, SCALERCTL_PATH, args);
    std::vector<char *> cargs;
    for (std::string &word : argv)
        cargs.push_back(word.data());
    cargs.push_back(nullptr);

    int outPipe[2], errPipe[2];
    if (pipe2(outPipe, O_CLOEXEC) != 0 || pipe2(errPipe, O_CLOEXEC) != 0)
        return run;
    pid_t pid = fork();
    if (pid == 0) {
        dup2(outPipe[1], STDOUT_FILENO);
        dup2(errPipe[1], STDERR_FILENO);
        execvp(cargs[0], cargs.data());
        _exit(127);
    }
    close(outPipe[1]);
    close(errPipe[1]);

    pollfd fds[2]        = {{outPipe[0], POLLIN, 0}, {errPipe[0], POLLIN, 0}};
    std::string *into[2] = {&run.Out, &run.Err};
    int open             = 2;
    bool hung            = false;
    while (open > 0) {
        int ready = poll(fds, 2, hangGuardMs);
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0) {
            hung = true;
            break;
        }
        for (int i = 0; i < 2; ++i) {
            if (fds[i].fd < 0 || fds[i].revents == 0)
                continue;
            char buf[4096];
            ssize_t n = read(fds[i].fd, buf, sizeof buf);
            if (n > 0) {
                into[i]->append(buf, static_cast<std::size_t>(n));
            } else {
                close(fds[i].fd);
                fds[i].fd = -1;
                --open;
            }
        }
    }
    if (hung)
        kill(pid, SIGKILL);
    for (pollfd &p : fds)
        if (p.fd >= 0)
            close(p.fd);
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    run.ExitStatus = !hung && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}
