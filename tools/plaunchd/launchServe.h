// The serving loop of plaunchd: one request at a time, read, run with the
// shell and answered over the same named pipe.
#ifndef TOOLS_PLAUNCHD_LAUNCHSERVE_H
#define TOOLS_PLAUNCHD_LAUNCHSERVE_H

#include "tools/plaunchd/launchPipe.h"

#include <cstddef>

// The longest command line served, in characters without its newline.
constexpr std::size_t launchLineMax = 4095;

// Serves requests on `pipe` until `stopFd` becomes readable: the exit
// status, 0 after a stop, 1 when the pipe can't be opened any more.
int LaunchServe(const LaunchPipe &pipe, int stopFd);

#endif
