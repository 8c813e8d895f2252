// Reassembly of the request stream of one pipe in pwsimd: bytes come in
// pieces of any size, possibly with garbage between packets; whole valid
// requests come out, and bad bytes are skipped up to the next sync.
#ifndef TOOLS_PWSIMD_SIMSTREAM_H
#define TOOLS_PWSIMD_SIMSTREAM_H

#include "system/Pixelworks/PWApi.h"
#include "system/Pixelworks/PWPacket.h"

#include <cstddef>
#include <cstdint>

// Bytes held for one pipe. Everything but an incomplete packet at the front
// is taken out after each read; as the Size byte allows at most 261 bytes in
// a packet, fewer stay held and a read always has room for a whole packet.
struct SimStream {
    int Interface; // the interface the pipe serves
    std::size_t Held;
    uint8_t Buf[2 * pwBufferSize];
};

void SimStreamInit(SimStream &stream, int interface);

// Where the next read goes and how much it may bring.
uint8_t *SimStreamSpace(SimStream &stream, std::size_t &room);
// Counts `count` bytes that a read put at SimStreamSpace.
void SimStreamAdd(SimStream &stream, std::size_t count);

enum class SimTake {
    none,    // nothing more until further bytes come
    request, // a valid request was taken out into the message
    skipped, // bad bytes were thrown away (count given)
};

// Takes the next thing out of the bytes held: a valid request of the
// stream's interface, or a run of bytes that can't start one (a bad sync, a
// bad CRC, a packet of the other interface, the start of a packet that a
// whole valid one follows), up to the next 0xBE 0xEF.
SimTake SimStreamTake(SimStream &stream, PWMsg &msg, std::size_t &skipped);

#endif
