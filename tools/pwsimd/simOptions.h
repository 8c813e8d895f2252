// The command line of pwsimd: options, their checks and the help text.
//
// Return convention: SimParseOptions returns true, or false with a one-line
// message for the user (the caller prints it and exits with status 1).
#ifndef TOOLS_PWSIMD_SIMOPTIONS_H
#define TOOLS_PWSIMD_SIMOPTIONS_H

#include "system/Pixelworks/PWApi.h"
#include "tools/pwsimd/simDevice.h"
#include "tools/pwsimd/simFaults.h"

#include <cstddef>

struct SimOptions {
    const char *Dir; // pipe folder, "/tmp" by default
    SimDeviceConfig Device;
    SimFaults Faults[PW_MAX_CHIPS]; // by chip
    bool Trace;
    bool Help;
};

// Reads argv into `options`, starting from the defaults. May be called more
// than once in a process.
bool SimParseOptions(int argc, char **argv, SimOptions &options, char *error,
                     std::size_t errorSize);

// The text of --help, with the ready line and the trace format.
const char *SimHelpText();

#endif
