// Starting and stopping pwsimd from tests, over pipes for its standard
// output and standard error.
#include "tests/pwsimd/simProcess.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#ifndef PWSIMD_PATH
#error "PWSIMD_PATH must name the pwsimd program"
#endif
#ifndef PWSIMD_EMULATOR
#error "PWSIMD_EMULATOR must list the emulator and its arguments (empty when native)"
#endif

namespace {

// The longest wait for the simulator to start, answer or end: a guard
// against a hang, not a measure of speed (the emulated build is slow).
constexpr int hangGuardMs = 60000;

// Forks and executes `program` with `args` behind the words of `emulator`:
// standard output to a fresh pipe and, with `captureErr`, standard error to
// another; their read ends come back in `outFd` and `errFd` (else -1). -1
// when no child could be started.
pid_t spawn(std::string_view emulator, const std::string &program,
            const std::vector<std::string> &args, bool captureErr, int &outFd, int &errFd) {
    std::vector<std::string> argv;
    for (std::size_t end; !emulator.empty(); emulator.remove_prefix(end)) {
        end = std::min(emulator.find(';'), emulator.size());
        if (end > 0)
            argv.emplace_back(emulator.substr(0, end));
        end += end < emulator.size();
    }
    argv.push_back(program);
    argv.insert(argv.end(), args.begin(), args.end());
    std::vector<char *> cargs;
    for (std::string &word : argv)
        cargs.push_back(word.data());
    cargs.push_back(nullptr);
    int out[2] = {-1, -1}, err[2] = {-1, -1};
    pid_t pid = -1;
    if (pipe2(out, O_CLOEXEC) == 0 && (!captureErr || pipe2(err, O_CLOEXEC) == 0))
        pid = fork();
    if (pid == 0) {
        dup2(out[1], STDOUT_FILENO);
        if (err[1] >= 0)
            dup2(err[1], STDERR_FILENO);
        execvp(cargs[0], cargs.data());
        _exit(127);
    }
    for (int fd : {out[1], err[1], pid < 0 ? out[0] : -1, pid < 0 ? err[0] : -1})
        if (fd >= 0)
            close(fd);
    outFd = pid < 0 ? -1 : out[0];
    errFd = pid < 0 ? -1 : err[0];
    return pid;
}

int waitFor(pid_t pid) {
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

// Reads the descriptors in `fds` (-1: none) into `texts` until each has
// ended or, with `untilLine`, the first holds a whole line. False if the
// guard ran out or a read failed first.
bool readUntil(int (&fds)[2], std::string *(&&texts)[2], bool untilLine) {
    pollfd p[2] = {{fds[0], POLLIN, 0}, {fds[1], POLLIN, 0}};
    while (p[0].fd >= 0 || p[1].fd >= 0) {
        if (untilLine && texts[0]->find('\n') != std::string::npos)
            return true;
        int ready = poll(p, 2, hangGuardMs);
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            return false;
        for (int i = 0; i < 2; ++i) {
            char buf[512];
            ssize_t n = p[i].fd >= 0 && p[i].revents != 0 ? read(p[i].fd, buf, sizeof buf) : -2;
            if (n > 0)
                texts[i]->append(buf, static_cast<std::size_t>(n));
            else if (n == 0 || (n == -1 && errno != EINTR))
                p[i].fd = -1; // ignored by poll from now on
        }
    }
    return !untilLine;
}

void closeFd(int &fd) {
    if (fd >= 0)
        close(fd);
    fd = -1;
}

} // namespace

SimProcess::~SimProcess() {
    if (Pid > 0) {
        kill(Pid, SIGKILL);
        waitFor(Pid);
    }
    closeFd(StdoutFd);
    closeFd(StderrFd);
    std::error_code ignored;
    if (OwnsDir)
        std::filesystem::remove_all(Dir, ignored);
}

std::string SimMakeTempDir() {
    char dir[] = "/tmp/pws.XXXXXX";
    return mkdtemp(dir) != nullptr ? std::string(dir) : std::string();
}

std::string SimPipePath(const std::string &dir, const char *name, int chip) {
    return dir + "/" + name + std::to_string(chip);
}

::testing::AssertionResult SimStart(SimProcess &sim, const std::vector<std::string> &args,
                                    const std::string &dir, bool captureStderr) {
    sim.Dir     = dir.empty() ? SimMakeTempDir() : dir;
    sim.OwnsDir = dir.empty() && !sim.Dir.empty();
    if (sim.Dir.empty())
        return ::testing::AssertionFailure() << "mkdtemp: " << std::strerror(errno);
    std::vector<std::string> all = args;
    all.insert(all.end(), {"--dir", sim.Dir});
    sim.Pid = spawn(PWSIMD_EMULATOR, PWSIMD_PATH, all, captureStderr, sim.StdoutFd, sim.StderrFd);
    if (sim.Pid < 0)
        return ::testing::AssertionFailure() << "cannot start pwsimd: " << std::strerror(errno);
    std::string out, ignored;
    int fds[2]              = {sim.StdoutFd, -1};
    const std::string ready = "pwsimd: ready in " + sim.Dir + "\n";
    if (!readUntil(fds, {&out, &ignored}, true) || out != ready)
        return ::testing::AssertionFailure()
               << "ready line '" << out << "', expected '" << ready << "'";
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult SimStop(SimProcess &sim, int signal) {
    if (sim.Pid <= 0)
        return ::testing::AssertionFailure() << "pwsimd is not running";
    kill(sim.Pid, signal);
    std::string out;
    int fds[2]       = {sim.StdoutFd, sim.StderrFd};
    const bool ended = readUntil(fds, {&out, &sim.Err}, false);
    if (!ended)
        kill(sim.Pid, SIGKILL);
    const int status = waitFor(sim.Pid);
    sim.Pid          = -1;
    closeFd(sim.StdoutFd);
    closeFd(sim.StderrFd);
    if (signal == SIGKILL)
        return ::testing::AssertionResult(WIFSIGNALED(status));
    if (!ended || !WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return ::testing::AssertionFailure() << "pwsimd did not end with 0 on signal " << signal;
    std::error_code error;
    if (!std::filesystem::is_empty(sim.Dir, error))
        return ::testing::AssertionFailure() << "pipes left behind in " << sim.Dir;
    if (sim.OwnsDir && rmdir(sim.Dir.c_str()) != 0)
        return ::testing::AssertionFailure() << "cannot remove " << sim.Dir;
    sim.OwnsDir = false;
    return ::testing::AssertionSuccess();
}

ProgramRun RunProgram(std::string_view emulator, const std::string &program,
                      const std::vector<std::string> &args) {
    ProgramRun result;
    int fds[2] = {-1, -1};
    pid_t pid  = spawn(emulator, program, args, true, fds[0], fds[1]);
    if (pid < 0)
        return result;
    if (!readUntil(fds, {&result.Out, &result.Err}, false))
        kill(pid, SIGKILL);
    const int status = waitFor(pid);
    if (WIFEXITED(status))
        result.ExitStatus = WEXITSTATUS(status);
    closeFd(fds[0]);
    closeFd(fds[1]);
    return result;
}

ProgramRun SimRun(const std::vector<std::string> &args) {
    return RunProgram(PWSIMD_EMULATOR, PWSIMD_PATH, args);
}
