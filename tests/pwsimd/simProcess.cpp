// Starting and stopping pwsimd from tests: its ready line over a pipe, the
// rest of its output, and a tool's, into scratch files read once it ended.
// A hang is left to the test runner's time limit.
#include "tests/pwsimd/simProcess.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/wait.h>
#include <unistd.h>

#ifndef PWSIMD_PATH
#error "PWSIMD_PATH must name the pwsimd program"
#endif
#ifndef PWSIMD_EMULATOR
#error "PWSIMD_EMULATOR must list the emulator and its arguments (empty when native)"
#endif

namespace {

// Forks and executes `program` with `args` behind the words of `emulator`,
// with standard output to `outFd` and standard error to `errFd` (-1: the
// test's own). -1 when no child could be started.
pid_t spawn(std::string_view emulator, const std::string &program,
            const std::vector<std::string> &args, int outFd, int errFd) {
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
    const pid_t pid = fork();
    if (pid == 0) {
        dup2(outFd, STDOUT_FILENO);
        if (errFd >= 0)
            dup2(errFd, STDERR_FILENO);
        execvp(cargs[0], cargs.data());
        _exit(127);
    }
    return pid;
}

int waitFor(pid_t pid) {
    int status = 0;
    while (waitpid(pid, &status, 0) < 0 && errno == EINTR) {
    }
    return status;
}

// All that was written to a scratch file; closes it.
std::string readAndClose(std::FILE *&file) {
    std::string text;
    if (file == nullptr)
        return text;
    std::rewind(file);
    for (int c; (c = std::fgetc(file)) != EOF;)
        text += static_cast<char>(c);
    std::fclose(file);
    file = nullptr;
    return text;
}

} // namespace

SimProcess::~SimProcess() {
    if (Pid > 0) {
        kill(Pid, SIGKILL);
        waitFor(Pid);
    }
    if (StdoutFd >= 0)
        close(StdoutFd);
    readAndClose(ErrFile);
    std::error_code ignored;
    if (OwnsDir)
        std::filesystem::remove_all(Dir, ignored);
}

std::string SimMakeTempDir() {
    char dir[] = "/tmp/pws.XXXXXX";
    return mkdtemp(dir) != nullptr ? std::string(dir) : std::string();
}

::testing::AssertionResult SimStart(SimProcess &sim, const std::vector<std::string> &args,
                                    const std::string &dir, bool captureStderr) {
    sim.Dir     = dir.empty() ? SimMakeTempDir() : dir;
    sim.OwnsDir = dir.empty() && !sim.Dir.empty();
    int out[2]  = {-1, -1};
    sim.ErrFile = captureStderr ? std::tmpfile() : nullptr;
    if (sim.Dir.empty() || pipe2(out, O_CLOEXEC) != 0 || (captureStderr && !sim.ErrFile))
        return ::testing::AssertionFailure() << "no folder, pipe or file: " << std::strerror(errno);
    std::vector<std::string> all = args;
    all.insert(all.end(), {"--dir", sim.Dir});
    sim.Pid =
        spawn(PWSIMD_EMULATOR, PWSIMD_PATH, all, out[1], sim.ErrFile ? fileno(sim.ErrFile) : -1);
    close(out[1]);
    sim.StdoutFd = out[0];
    std::string line;
    char c;
    while (line.find('\n') == std::string::npos && read(sim.StdoutFd, &c, 1) == 1)
        line += c;
    const std::string ready = "pwsimd: ready in " + sim.Dir + "\n";
    if (sim.Pid < 0 || line != ready)
        return ::testing::AssertionFailure()
               << "ready line '" << line << "', expected '" << ready << "'";
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult SimStop(SimProcess &sim, int signal) {
    if (sim.Pid <= 0)
        return ::testing::AssertionFailure() << "pwsimd is not running";
    kill(sim.Pid, signal);
    const int status = waitFor(sim.Pid);
    sim.Pid          = -1;
    sim.Err          = readAndClose(sim.ErrFile);
    if (signal == SIGKILL)
        return ::testing::AssertionResult(WIFSIGNALED(status));
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0)
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
    std::FILE *out = std::tmpfile(), *err = std::tmpfile();
    const pid_t pid  = out && err ? spawn(emulator, program, args, fileno(out), fileno(err)) : -1;
    const int status = pid > 0 ? waitFor(pid) : -1;
    if (pid > 0 && WIFEXITED(status))
        result.ExitStatus = WEXITSTATUS(status);
    result.Out = readAndClose(out);
    result.Err = readAndClose(err);
    return result;
}

ProgramRun SimRun(const std::vector<std::string> &args) {
    return RunProgram(PWSIMD_EMULATOR, PWSIMD_PATH, args);
}
