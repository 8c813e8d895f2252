// The pipes of pwsimd: the Cmd and Diag pipe pairs of chips 0 to 2 in one
// folder, created, held open the way a daemon must, and removed.
//
// Return convention: SimPipesCreate returns true, or false with a one-line
// message for the user and nothing left behind.
#ifndef TOOLS_PWSIMD_SIMPIPES_H
#define TOOLS_PWSIMD_SIMPIPES_H

#include "system/Pixelworks/PWApi.h"
#include "system/Pixelworks/PWProtocol.h"

#include <cstddef>

constexpr std::size_t simPairCount = 2 * PW_MAX_CHIPS;

// One pipe pair, named from the client's side. The daemon reads requests
// from the pipe that the client writes (PWWt...) and writes replies to the
// one the client reads (PWRd...). Both are held with O_RDWR: a reader on
// the request pipe lets a client's non-blocking open for writing succeed, a
// writer on the reply pipe means a client never sees end-of-file.
struct SimPipePair {
    int Chip;
    int Interface;
    int RequestFd; // -1 while closed
    int ReplyFd;   // -1 while closed
    char RequestPath[pwPipePathSize];
    char ReplyPath[pwPipePathSize];
};

struct SimPipes {
    SimPipePair Pairs[simPairCount]; // Cmd of chips 0 to 2, then Diag
    bool Created;
};

// Checks the folder, refuses pipes that a running daemon holds (a
// non-blocking open for writing of a request pipe succeeds), replaces stale
// ones, creates all twelve and opens them non-blocking.
bool SimPipesCreate(const char *dir, SimPipes &pipes, char *error, std::size_t errorSize);

// Closes and unlinks all twelve; does nothing a second time.
void SimPipesRemove(SimPipes &pipes);

#endif
