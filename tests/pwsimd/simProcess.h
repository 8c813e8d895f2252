// Starting pwsimd, and other programs, from tests: in a fresh temporary folder or a given one,
// waiting for its ready line, reading its trace, stopping it and checking
// that it removed its pipes. Under a cross build the program is started
// through the emulator that CMake knows.
#ifndef TESTS_PWSIMD_SIMPROCESS_H
#define TESTS_PWSIMD_SIMPROCESS_H

#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

// One pwsimd. The destructor kills one still running and removes the folder
// if the helper made it, so a failed test leaves nothing behind.
struct SimProcess {
    pid_t Pid    = -1;
    int StdoutFd = -1;
    int StderrFd = -1; // -1 unless standard error was captured
    std::string Dir;
    bool OwnsDir = false;
    std::string ErrPending; // standard error read but not yet handed out

    SimProcess()                              = default;
    SimProcess(const SimProcess &)            = delete;
    SimProcess &operator=(const SimProcess &) = delete;
    ~SimProcess();
};

// `program` with `args`, behind the words of `emulator` (a ';'-separated
// list, empty for a native build).
std::vector<std::string> EmulatedCommandLine(std::string_view emulator, const std::string &program,
                                             const std::vector<std::string> &args);

// A fresh folder "/tmp/pws.XXXXXX", short enough for the link; "" on failure.
std::string SimMakeTempDir();

// The path of a pipe, e.g. SimPipePath(dir, "PWWtCmd", 0).
std::string SimPipePath(const std::string &dir, const char *name, int chip);

// Starts pwsimd with `args` and "--dir": `dir`, or a fresh folder when it is
// empty. With `captureStderr` standard error (the trace) goes to
// SimReadLine, else to the test's own. Succeeds when the ready line
// "pwsimd: ready in DIR" has come.
::testing::AssertionResult SimStart(SimProcess &sim, const std::vector<std::string> &args,
                                    const std::string &dir = "", bool captureStderr = false);

// The next line of the captured standard error, without its newline.
::testing::AssertionResult SimReadLine(SimProcess &sim, std::string &line);

// Sends `signal`, waits for the end, and succeeds if the exit status is 0
// and the twelve pipes are gone. Removes the folder if the helper made it.
::testing::AssertionResult SimStop(SimProcess &sim, int signal = SIGTERM);

// Kills with SIGKILL and waits: the pipes stay behind, as after a crash.
::testing::AssertionResult SimKill(SimProcess &sim);

// One program run to its end: its exit status and all it printed.
struct ProgramRun {
    int ExitStatus = -1; // -1 if it ended by a signal, hung or could not be started
    std::string Out;
    std::string Err;
};

// Runs `program` with `args` behind the words of `emulator` to its end; a
// guard against a hang kills it after a minute without output.
ProgramRun RunProgram(std::string_view emulator, const std::string &program,
                      const std::vector<std::string> &args);

// One run of pwsimd to its end, for refusals and --help.
ProgramRun SimRun(const std::vector<std::string> &args);

#endif
