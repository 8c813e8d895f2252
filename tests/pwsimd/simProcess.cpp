// Starting and stopping pwsimd from tests, over pipes for its standard
// output and standard error.
#include "tests/pwsimd/simProcess.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <string_view>
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

constexpr const char *pipeNames[] = {"PWRdCmd", "PWWtCmd", "PWRdDiag", "PWWtDiag"};

// Forks and executes the command line `argv`: standard output to a fresh
// pipe and, with `captureErr`, standard error to another; their read ends
// come back in `outFd` and `errFd` (else -1). -1 when no child could be
// started.
pid_t spawn(const std::vector<std::string> &argv, bool captureErr, int &outFd, int &errFd) {
    std::vector<char *> cargs;
    for (const std::string &word : argv)
        cargs.push_back(const_cast<char *>(word.c_str()));
    cargs.push_back(nullptr);
    int out[2] = {-1, -1};
    int err[2] = {-1, -1};
    pid_t pid  = -1;
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

void closeFd(int &fd) {
    if (fd >= 0)
        close(fd);
    fd = -1;
}

// Reads `fd` into `pending` until it holds a whole line, and moves that line
// without its newline into `line`: 1, 0 at end-of-file, -1 when the guard ran
// out or the read failed.
int takeLine(int fd, std::string &pending, std::string &line) {
    std::size_t newline;
    while ((newline = pending.find('\n')) == std::string::npos) {
        pollfd p{fd, POLLIN, 0};
        int ready = poll(&p, 1, hangGuardMs);
        if (ready < 0 && errno == EINTR)
            continue;
        char buf[512];
        ssize_t n = ready > 0 ? read(fd, buf, sizeof buf) : -1;
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return n == 0 ? 0 : -1;
        pending.append(buf, static_cast<std::size_t>(n));
    }
    line = pending.substr(0, newline);
    pending.erase(0, newline + 1);
    return 1;
}

int waitFor(pid_t pid) {
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

std::string describe(int status) {
    if (WIFEXITED(status))
        return "exit status " + std::to_string(WEXITSTATUS(status));
    if (WIFSIGNALED(status))
        return "signal " + std::to_string(WTERMSIG(status));
    return "status " + std::to_string(status);
}

// Reads standard output (and the captured standard error) until both end.
// False if the guard ran out first.
bool drainToEnd(int outFd, int errFd, std::string &out, std::string &err) {
    pollfd fds[2] = {{outFd, POLLIN, 0}, {errFd, POLLIN, 0}};
    while (fds[0].fd >= 0 || fds[1].fd >= 0) {
        int ready = poll(fds, 2, hangGuardMs);
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready <= 0)
            return false;
        for (int i = 0; i < 2; ++i) {
            if (fds[i].fd < 0 || fds[i].revents == 0)
                continue;
            std::string &into = i == 0 ? out : err;
            char buf[512];
            ssize_t n = read(fds[i].fd, buf, sizeof buf);
            if (n > 0)
                into.append(buf, static_cast<std::size_t>(n));
            else if (n == 0 || errno != EINTR)
                fds[i].fd = -1; // ignored by poll from now on
        }
    }
    return true;
}

// The twelve pipe paths of a folder.
std::vector<std::string> allPipePaths(const std::string &dir) {
    std::vector<std::string> paths;
    for (const char *name : pipeNames)
        for (int chip = 0; chip < 3; ++chip)
            paths.push_back(SimPipePath(dir, name, chip));
    return paths;
}

void removeFolder(SimProcess &sim) {
    if (!sim.OwnsDir)
        return;
    for (const std::string &path : allPipePaths(sim.Dir))
        unlink(path.c_str());
    rmdir(sim.Dir.c_str());
    sim.OwnsDir = false;
}

} // namespace

std::vector<std::string> EmulatedCommandLine(std::string_view emulator, const std::string &program,
                                             const std::vector<std::string> &args) {
    std::vector<std::string> argv;
    while (!emulator.empty()) {
        std::size_t end       = emulator.find(';');
        std::string_view word = emulator.substr(0, end);
        if (!word.empty())
            argv.emplace_back(word);
        emulator.remove_prefix(end == std::string_view::npos ? emulator.size() : end + 1);
    }
    argv.push_back(program);
    argv.insert(argv.end(), args.begin(), args.end());
    return argv;
}

SimProcess::~SimProcess() {
    if (Pid > 0) {
        kill(Pid, SIGKILL);
        waitFor(Pid);
    }
    closeFd(StdoutFd);
    closeFd(StderrFd);
    removeFolder(*this);
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
    if (sim.Pid > 0)
        return ::testing::AssertionFailure() << "pwsimd already started";
    sim.Dir = dir;
    if (sim.Dir.empty()) {
        sim.Dir = SimMakeTempDir();
        if (sim.Dir.empty())
            return ::testing::AssertionFailure() << "mkdtemp: " << std::strerror(errno);
        sim.OwnsDir = true;
    }
    std::vector<std::string> all = args;
    all.insert(all.end(), {"--dir", sim.Dir});
    sim.Pid = spawn(EmulatedCommandLine(PWSIMD_EMULATOR, PWSIMD_PATH, all), captureStderr,
                    sim.StdoutFd, sim.StderrFd);
    if (sim.Pid < 0)
        return ::testing::AssertionFailure() << "cannot start pwsimd: " << std::strerror(errno);

    std::string text, line;
    int got = takeLine(sim.StdoutFd, text, line);
    if (got == 0) {
        int status = waitFor(sim.Pid);
        sim.Pid    = -1;
        return ::testing::AssertionFailure() << "pwsimd ended before its ready line ("
                                             << describe(status) << "), output: " << text;
    }
    if (got < 0)
        return ::testing::AssertionFailure() << "no ready line from pwsimd";
    std::string expected = "pwsimd: ready in " + sim.Dir;
    if (line != expected)
        return ::testing::AssertionFailure()
               << "ready line '" << line << "', expected '" << expected << "'";
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult SimReadLine(SimProcess &sim, std::string &line) {
    if (sim.StderrFd < 0)
        return ::testing::AssertionFailure() << "standard error was not captured";
    int got = takeLine(sim.StderrFd, sim.ErrPending, line);
    if (got <= 0)
        return ::testing::AssertionFailure()
               << (got == 0 ? "standard error ended" : "no line on standard error")
               << "; pending: '" << sim.ErrPending << "'";
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult SimStop(SimProcess &sim, int signal) {
    if (sim.Pid <= 0)
        return ::testing::AssertionFailure() << "pwsimd is not running";
    kill(sim.Pid, signal);
    std::string out, err;
    bool ended = drainToEnd(sim.StdoutFd, sim.StderrFd, out, err);
    if (!ended)
        kill(sim.Pid, SIGKILL);
    int status = waitFor(sim.Pid);
    sim.Pid    = -1;
    sim.ErrPending += err;
    closeFd(sim.StdoutFd);
    closeFd(sim.StderrFd);
    if (!ended)
        return ::testing::AssertionFailure() << "pwsimd did not end on signal " << signal;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
        return ::testing::AssertionFailure() << "pwsimd ended with " << describe(status);
    std::string left;
    for (const std::string &path : allPipePaths(sim.Dir))
        if (access(path.c_str(), F_OK) == 0)
            left += " " + path;
    if (!left.empty())
        return ::testing::AssertionFailure() << "pipes left behind:" << left;
    if (sim.OwnsDir && rmdir(sim.Dir.c_str()) != 0)
        return ::testing::AssertionFailure()
               << "cannot remove " << sim.Dir << ": " << std::strerror(errno);
    sim.OwnsDir = false;
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult SimKill(SimProcess &sim) {
    if (sim.Pid <= 0)
        return ::testing::AssertionFailure() << "pwsimd is not running";
    kill(sim.Pid, SIGKILL);
    int status = waitFor(sim.Pid);
    sim.Pid    = -1;
    closeFd(sim.StdoutFd);
    closeFd(sim.StderrFd);
    if (!WIFSIGNALED(status))
        return ::testing::AssertionFailure() << "pwsimd ended with " << describe(status);
    return ::testing::AssertionSuccess();
}

ProgramRun RunProgram(std::string_view emulator, const std::string &program,
                      const std::vector<std::string> &args) {
    ProgramRun result;
    int outFd = -1, errFd = -1;
    pid_t pid = spawn(EmulatedCommandLine(emulator, program, args), true, outFd, errFd);
    if (pid < 0)
        return result;
    if (!drainToEnd(outFd, errFd, result.Out, result.Err))
        kill(pid, SIGKILL);
    int status = waitFor(pid);
    if (WIFEXITED(status))
        result.ExitStatus = WEXITSTATUS(status);
    closeFd(outFd);
    closeFd(errFd);
    return result;
}

ProgramRun SimRun(const std::vector<std::string> &args) {
    return RunProgram(PWSIMD_EMULATOR, PWSIMD_PATH, args);
}
