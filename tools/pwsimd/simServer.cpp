// The serving loop of pwsimd: request streams, device answers, and a queue
// of replies ordered by the time they are due.
#include "tools/pwsimd/simServer.h"

#include "tools/pwsimd/simDevice.h"
#include "tools/pwsimd/simFaults.h"
#include "tools/pwsimd/simStream.h"
#include "tools/pwsimd/simTrace.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <poll.h>
#include <unistd.h>

namespace {

// One write waiting for its time: a whole reply, or a piece of a split one.
struct Pending {
    uint64_t DueMs;
    std::size_t Pair;
    bool First;       // the first piece carries the trace line
    unsigned Applied; // faults, for the trace line
    PWMsg Msg;        // the reply as sent (status0 applied), for the trace line
    std::size_t Size;
    uint8_t Bytes[pwBufferSize];
};

// A client waits for one reply at a time, so a few per pipe pair are plenty.
constexpr std::size_t maxPending = 4 * simPairCount;
// Reads of one pipe per wake-up, so that a flooding client can't starve the
// others.
constexpr int readsPerWake = 16;

struct Server {
    const SimPipes *Pipes;
    SimDevice Devices[PW_MAX_CHIPS];
    SimFaults Faults[PW_MAX_CHIPS];
    SimStream Streams[simPairCount];
    std::array<Pending, maxPending> Queue;
    std::size_t Queued;
};

Server server;

uint64_t nowMs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<uint64_t>(now.tv_sec) * 1000u +
           static_cast<uint64_t>(now.tv_nsec) / 1000000u;
}

// Writes without blocking: the pipe is non-blocking and a reply is far
// below the size that a pipe writes atomically, so it goes whole or not at
// all.
bool writeWhole(int fd, const uint8_t *bytes, std::size_t size) {
    for (;;) {
        ssize_t n = write(fd, bytes, size);
        if (n < 0 && errno == EINTR)
            continue;
        return n == static_cast<ssize_t>(size);
    }
}

void traceReply(const Pending &p, bool written) {
    if (!SimTraceEnabled())
        return;
    const SimPipePair &pair = server.Pipes->Pairs[p.Pair];
    char faults[64];
    SimFaultNames(p.Applied, faults, sizeof faults);
    char note[80];
    if (written)
        std::snprintf(note, sizeof note, "%s", faults);
    else if (p.Applied == 0)
        std::snprintf(note, sizeof note, "full");
    else
        std::snprintf(note, sizeof note, "%s+full", faults);
    SimTraceReply(pair.Chip, pair.Interface, p.Msg, note);
}

// Queues a write, in order of due time (after those due at the same time).
// False when the queue is full.
bool enqueue(const Pending &p) {
    if (server.Queued == maxPending)
        return false;
    std::size_t at = server.Queued;
    while (at > 0 && server.Queue[at - 1].DueMs > p.DueMs) {
        server.Queue[at] = server.Queue[at - 1];
        --at;
    }
    server.Queue[at] = p;
    ++server.Queued;
    return true;
}

void answer(std::size_t pairIndex, const PWMsg &request) {
    const SimPipePair &pair = server.Pipes->Pairs[pairIndex];
    SimTraceRequest(pair.Chip, pair.Interface, request);

    auto chip = static_cast<std::size_t>(pair.Chip);
    PWMsg reply{};
    if (!SimDeviceAnswer(server.Devices[chip], request, reply)) {
        PWMsg refused  = request;
        refused.Length = 0;
        SimTraceReply(pair.Chip, pair.Interface, refused, "refused");
        return;
    }
    SimReply shaped;
    SimFaultShape(server.Faults[chip], pair.Interface, reply, shaped);
    if (!shaped.Send) {
        SimTraceReply(pair.Chip, pair.Interface, reply, "never");
        return;
    }

    Pending first{};
    first.DueMs   = nowMs() + shaped.DelayMs;
    first.Pair    = pairIndex;
    first.First   = true;
    first.Applied = shaped.Applied;
    first.Msg     = reply;
    first.Size    = shaped.FirstPiece;
    std::memcpy(first.Bytes, shaped.Bytes, shaped.FirstPiece);
    if (!enqueue(first)) {
        traceReply(first, false);
        return;
    }
    if (shaped.FirstPiece < shaped.Size) {
        Pending second = first;
        second.DueMs   = first.DueMs + simSplitGapMs;
        second.First   = false;
        second.Size    = shaped.Size - shaped.FirstPiece;
        std::memcpy(second.Bytes, shaped.Bytes + shaped.FirstPiece, second.Size);
        // Two queued per request, and a client has one in flight: a full
        // queue here only loses the tail, which the client sees as a
        // timeout.
        enqueue(second);
    }
}

// Reads what a pipe holds and answers every whole request in it.
void readRequests(std::size_t pairIndex) {
    const SimPipePair &pair = server.Pipes->Pairs[pairIndex];
    SimStream &stream       = server.Streams[pairIndex];
    for (int reads = 0; reads < readsPerWake; ++reads) {
        std::size_t room = 0;
        uint8_t *space   = SimStreamSpace(stream, room);
        ssize_t got      = read(pair.RequestFd, space, room);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return; // EAGAIN: empty. We hold a writer, so never end-of-file.
        SimStreamAdd(stream, static_cast<std::size_t>(got));
        for (;;) {
            PWMsg request{};
            std::size_t skipped = 0;
            SimTake take        = SimStreamTake(stream, request, skipped);
            if (take == SimTake::none)
                break;
            if (take == SimTake::skipped)
                SimTraceSkipped(pair.Chip, pair.Interface, skipped);
            else
                answer(pairIndex, request);
        }
    }
}

// Writes every queued piece that is due.
void writeDue() {
    uint64_t now     = nowMs();
    std::size_t done = 0;
    while (done < server.Queued && server.Queue[done].DueMs <= now) {
        const Pending &p = server.Queue[done];
        bool written     = writeWhole(server.Pipes->Pairs[p.Pair].ReplyFd, p.Bytes, p.Size);
        if (p.First)
            traceReply(p, written);
        ++done;
    }
    for (std::size_t i = done; i < server.Queued; ++i)
        server.Queue[i - done] = server.Queue[i];
    server.Queued -= done;
}

int pollTimeout() {
    if (server.Queued == 0)
        return -1;
    uint64_t now = nowMs();
    uint64_t due = server.Queue[0].DueMs;
    if (due <= now)
        return 0;
    uint64_t wait = due - now;
    return wait > static_cast<uint64_t>(INT_MAX) ? INT_MAX : static_cast<int>(wait);
}

} // namespace

int SimServe(const SimOptions &options, const SimPipes &pipes, int stopFd) {
    server       = {};
    server.Pipes = &pipes;
    for (int chip = 0; chip < PW_MAX_CHIPS; ++chip) {
        SimDeviceInit(server.Devices[chip], chip, options.Device);
        server.Faults[chip]        = options.Faults[chip];
        server.Faults[chip].Frozen = options.Device.Output;
    }
    for (std::size_t i = 0; i < simPairCount; ++i)
        SimStreamInit(server.Streams[i], pipes.Pairs[i].Interface);

    pollfd fds[1 + simPairCount];
    fds[0] = {stopFd, POLLIN, 0};
    for (std::size_t i = 0; i < simPairCount; ++i)
        fds[1 + i] = {pipes.Pairs[i].RequestFd, POLLIN, 0};

    for (;;) {
        int ready = poll(fds, 1 + simPairCount, pollTimeout());
        if (ready < 0 && errno != EINTR) {
            std::fprintf(stderr, "pwsimd: poll failed: %s\n", std::strerror(errno));
            return 1;
        }
        if (ready > 0 && fds[0].revents != 0)
            return 0;
        for (std::size_t i = 0; ready > 0 && i < simPairCount; ++i)
            if ((fds[1 + i].revents & POLLIN) != 0)
                readRequests(i);
        writeDue();
    }
}
