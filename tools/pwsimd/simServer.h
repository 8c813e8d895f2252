// The serving loop of pwsimd: reads requests from the request pipes, lets
// each chip's device model answer, shapes the replies by the chip's faults,
// and writes them when they are due, without ever blocking on a pipe.
//
// Return convention: SimServe returns 0 when stopped through `stopFd`, or 1
// after printing why the loop could not go on.
#ifndef TOOLS_PWSIMD_SIMSERVER_H
#define TOOLS_PWSIMD_SIMSERVER_H

#include "tools/pwsimd/simOptions.h"
#include "tools/pwsimd/simPipes.h"

// Serves the open `pipes` until `stopFd` becomes readable.
int SimServe(const SimOptions &options, const SimPipes &pipes, int stopFd);

#endif
