// Starting pwsimd, and other programs, from tests: in a fresh temporary
// folder or a given one, waiting for its ready line, stopping it and checking
// that it removed its pipes. Under a cross build the program is started
// through the emulator that CMake knows.
#ifndef TESTS_PWSIMD_SIMPROCESS_H
#define TESTS_PWSIMD_SIMPROCESS_H

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

// One pwsimd. The destructor kills one still running and removes the folder
// if the helper made it, so a failed test leaves nothing behind.
struct SimProcess {
    pid_t Pid          = -1;
    int StdoutFd       = -1;      // the read end of its standard output
    std::FILE *ErrFile = nullptr; // its standard error, when captured
    std::string Dir;
    bool OwnsDir = false;
    std::string Err; // the captured standard error, once stopped

    ~SimProcess();
};

// A fresh folder "/tmp/pws.XXXXXX", short enough for the link; "" on failure.
std::string SimMakeTempDir();

// The path of a pipe, e.g. SimPipePath(dir, "PWWtCmd", 0).
inline std::string SimPipePath(const std::string &dir, const char *name, int chip) {
    return dir + "/" + name + std::to_string(chip);
}

// Starts pwsimd with `args` and "--dir": `dir`, or a fresh folder when it is
// empty. With `captureStderr` standard error (the trace) is kept for
// SimProcess::Err, else it goes to the test's own. Succeeds when the ready
// line "pwsimd: ready in DIR" has come.
::testing::AssertionResult SimStart(SimProcess &sim, const std::vector<std::string> &args,
                                    const std::string &dir = "", bool captureStderr = false);

// Sends `signal` and waits for the end. With SIGKILL it succeeds when the
// signal ended it, and the pipes stay behind, as after a crash; with any
// other, when the exit status is 0 and the folder is left empty (and is
// removed, if the helper made it).
::testing::AssertionResult SimStop(SimProcess &sim, int signal = SIGTERM);

// One program run to its end: its exit status and all it printed.
struct ProgramRun {
    int ExitStatus = -1; // -1 if it ended by a signal, hung or could not be started
    std::string Out;
    std::string Err;
};

// Runs `program` with `args` behind the words of `emulator` (a ';'-separated
// list, empty for a native build) to its end.
ProgramRun RunProgram(std::string_view emulator, const std::string &program,
                      const std::vector<std::string> &args);

// One run of pwsimd to its end.
ProgramRun SimRun(const std::vector<std::string> &args);

#endif
