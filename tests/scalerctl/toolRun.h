// Runs the real scalerctl program to its end, through the emulator of a
// cross build, and hands back what it printed and its exit status.
#ifndef TESTS_SCALERCTL_TOOLRUN_H
#define TESTS_SCALERCTL_TOOLRUN_H

#include <string>
#include <vector>

struct ToolRun {
    int ExitStatus = -1; // -1 when it ended by a signal or did not end
    std::string Out;
    std::string Err;
};

ToolRun RunScalerctl(const std::vector<std::string> &args);

#endif
