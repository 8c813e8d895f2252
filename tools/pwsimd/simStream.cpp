// Reassembly of a request stream in pwsimd, with resynchronisation on the
// sync bytes.
#include "tools/pwsimd/simStream.h"

#include "Common/OS/osAssert.h"

#include <cstring>

namespace {

void dropFront(SimStream &stream, std::size_t count) {
    OS_ASSERT(count <= stream.Held);
    std::memmove(stream.Buf, stream.Buf + count, stream.Held - count);
    stream.Held -= count;
}

// Offset of the next possible packet start after offset 0: a 0xBE followed
// by 0xEF, or a 0xBE as the last byte held; Held if there is none.
std::size_t nextSync(const SimStream &stream) {
    for (std::size_t i = 1; i < stream.Held; ++i)
        if (stream.Buf[i] == pwSync0 && (i + 1 == stream.Held || stream.Buf[i + 1] == pwSync1))
            return i;
    return stream.Held;
}

// Offset of the first whole valid packet after offset 0; Held if none.
std::size_t nextGoodPacket(const SimStream &stream) {
    for (std::size_t i = 1; i + pwHeaderSize <= stream.Held; ++i)
        if (stream.Buf[i] == pwSync0 && stream.Buf[i + 1] == pwSync1 &&
            PWPacketScan(stream.Buf + i, stream.Held - i, stream.Interface) == PWScan::good)
            return i;
    return stream.Held;
}

} // namespace

void SimStreamInit(SimStream &stream, int interface) {
    stream           = {};
    stream.Interface = interface;
}

uint8_t *SimStreamSpace(SimStream &stream, std::size_t &room) {
    room = sizeof stream.Buf - stream.Held;
    return stream.Buf + stream.Held;
}

void SimStreamAdd(SimStream &stream, std::size_t count) {
    OS_ASSERT(count <= sizeof stream.Buf - stream.Held);
    stream.Held += count;
}

SimTake SimStreamTake(SimStream &stream, PWMsg &msg, std::size_t &skipped) {
    skipped = 0;
    if (stream.Held == 0)
        return SimTake::none;
    switch (PWPacketScan(stream.Buf, stream.Held, stream.Interface)) {
    case PWScan::incomplete:
        // A client that died in the middle of a write leaves the start of a
        // packet that never completes; a whole valid request behind it
        // shows that, and the bytes before it go.
        if (std::size_t next = nextGoodPacket(stream); next < stream.Held) {
            skipped = next;
            dropFront(stream, skipped);
            return SimTake::skipped;
        }
        // The largest Size byte makes the longest packet: the buffer never
        // fills with an incomplete one.
        OS_ASSERT(stream.Held < PWPacketTotal(UINT8_MAX));
        return SimTake::none;
    case PWScan::good: {
        std::size_t total = PWPacketTotal(stream.Buf[pwSizeOffset]);
        msg               = {};
        PWPacketDecode(stream.Buf, msg);
        dropFront(stream, total);
        return SimTake::request;
    }
    case PWScan::badSync:
    case PWScan::badCrc:
    case PWScan::otherInterface:
        break;
    }
    skipped = nextSync(stream);
    dropFront(stream, skipped);
    return SimTake::skipped;
}
