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

// The simulator's command line: through the emulator of a cross build.
std::vector<std::string> commandLine(const std::vector<std::string> &args) {
    return EmulatedCommandLine(PWSIMD_EMULATOR, PWSIMD_PATH, args);
}

// Forks and executes `argv` with standard output to `outFd` and, when it
// is not -1, standard error to `errFd`. Our own pipe ends are close-on-exec.
pid_t spawn(const std::vector<std::string> &argv, int outFd, int errFd) {
    std::vector<char *> cargs;
    for (const std::string &word : argv)
        cargs.push_back(const_cast<char *>(word.c_str()));
    cargs.push_back(nullptr);
    pid_t pid = fork();
    if (pid == 0) {
        dup2(outFd, STDOUT_FILENO);
        if (errFd >= 0)
            dup2(errFd, STDERR_FILENO);
        execvp(cargs[0], cargs.data());
        _exit(127);
    }
    return pid;
}

void closeFd(int &fd) {
    if (fd >= 0)
        close(fd);
    fd = -1;
}

// Waits for bytes on `fd` and appends them: the count, 0 at end-of-file,
// -1 when the guard ran out or the read failed.
ssize_t readSome(int fd, std::string &into) {
    pollfd p{fd, POLLIN, 0};
    int ready;
    do {
        ready = poll(&p, 1, hangGuardMs);
    } while (ready < 0 && errno == EINTR);
    if (ready <= 0)
        return -1;
    char buf[512];
    ssize_t n;
    do {
        n = read(fd, buf, sizeof buf);
    } while (n < 0 && errno == EINTR);
    if (n > 0)
        into.append(buf, static_cast<std::size_t>(n));
    return n;
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

void removeFolder(SimProcess &sim) {
    if (!sim.OwnsDir)
        return;
    for (const std::string &path : SimAllPipePaths(sim.Dir))
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

std::vector<std::string> SimAllPipePaths(const std::string &dir) {
    std::vector<std::string> paths;
    for (const char *name : pipeNames)
        for (int chip = 0; chip < 3; ++chip)
            paths.push_back(SimPipePath(dir, name, chip));
    return paths;
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
    int out[2] = {-1, -1};
    int err[2] = {-1, -1};
    if (pipe2(out, O_CLOEXEC) != 0 || (captureStderr && pipe2(err, O_CLOEXEC) != 0))
        return ::testing::AssertionFailure() << "pipe2: " << std::strerror(errno);
    std::vector<std::string> all = args;
    all.insert(all.end(), {"--dir", sim.Dir});
    sim.Pid = spawn(commandLine(all), out[1], err[1]);
    closeFd(out[1]);
    closeFd(err[1]);
    sim.StdoutFd = out[0];
    sim.StderrFd = err[0];
    if (sim.Pid < 0)
        return ::testing::AssertionFailure() << "fork: " << std::strerror(errno);

    std::string text;
    std::size_t newline;
    while ((newline = text.find('\n')) == std::string::npos) {
        ssize_t n = readSome(sim.StdoutFd, text);
        if (n == 0) {
            int status = waitFor(sim.Pid);
            sim.Pid    = -1;
            return ::testing::AssertionFailure() << "pwsimd ended before its ready line ("
                                                 << describe(status) << "), output: " << text;
        }
        if (n < 0)
            return ::testing::AssertionFailure() << "no ready line from pwsimd";
    }
    std::string expected = "pwsimd: ready in " + sim.Dir;
    if (text.substr(0, newline) != expected)
        return ::testing::AssertionFailure()
               << "ready line '" << text.substr(0, newline) << "', expected '" << expected << "'";
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult SimReadLine(SimProcess &sim, std::string &line) {
    if (sim.StderrFd < 0)
        return ::testing::AssertionFailure() << "standard error was not captured";
    std::size_t newline;
    while ((newline = sim.ErrPending.find('\n')) == std::string::npos) {
        ssize_t n = readSome(sim.StderrFd, sim.ErrPending);
        if (n <= 0)
            return ::testing::AssertionFailure()
                   << (n == 0 ? "standard error ended" : "no line on standard error")
                   << "; pending: '" << sim.ErrPending << "'";
    }
    line = sim.ErrPending.substr(0, newline);
    sim.ErrPending.erase(0, newline + 1);
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
    for (const std::string &path : SimAllPipePaths(sim.Dir))
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

SimRunResult SimRun(const std::vector<std::string> &args) {
    SimRunResult result{-1, {}, {}};
    int out[2] = {-1, -1};
    int err[2] = {-1, -1};
    if (pipe2(out, O_CLOEXEC) != 0 || pipe2(err, O_CLOEXEC) != 0)
        return result;
    pid_t pid = spawn(commandLine(args), out[1], err[1]);
    closeFd(out[1]);
    closeFd(err[1]);
    if (pid > 0) {
        if (!drainToEnd(out[0], err[0], result.Out, result.Err))
            kill(pid, SIGKILL);
        int status = waitFor(pid);
        if (WIFEXITED(status))
            result.ExitStatus = WEXITSTATUS(status);
    }
    closeFd(out[0]);
    closeFd(err[0]);
    return result;
}
