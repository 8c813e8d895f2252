// The protocol of the PixelWorks daemon as both of its ends see it: the
// opcodes of the requests, the payload of a timing reply, the names and
// paths of the pipes, and the size of a packet. Included by the link, by
// scalerctl and by the daemon simulator, so that each fact stands here once;
// what a request means to each end stays with that end.
#ifndef SYSTEM_PIXELWORKS_PWPROTOCOL_H
#define SYSTEM_PIXELWORKS_PWPROTOCOL_H

#include "system/Pixelworks/PWApi.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>

// ---- requests -----------------------------------------------------------------

// Opcodes of the requests; a reply carries the opcode of its request.
enum PWOpcode : uint8_t {
    pwOpReset       = 0x01,
    pwOpQueryInput  = 0x02,
    pwOpQueryOutput = 0x03,
    pwOpSetCable    = 0x04,
    pwOpSetMode     = 0x05, // set output mode
    pwOpQueryVer    = 0x23,
    pwOpSetAspect   = 0x25,
    pwOpSetGains    = 0x2C, // gains and offsets of every input but the analogue computer one
    pwOpSetGainsVga = 0x2D, // gains and offsets of the analogue computer input
};

// Payload bytes of a request that carries one word, and of a set gain/offset
// request (six words).
constexpr uint8_t pwOneWordLength = 2;
constexpr uint8_t pwGainsLength   = 12;

// ---- the timing reply ---------------------------------------------------------

// The payload of a reply to query input or query output: nine 16-bit words,
// in host order in PWMsg.Payload.
struct PWTimingInfo {
    uint16_t Status;      // pwStatus...
    uint16_t RefreshRate; // hundredths of a hertz
    uint16_t TotalWidth;  // pixels in a line, blanking included
    uint16_t TotalHeight; // lines in a frame, blanking included
    uint16_t ActiveWidth;
    uint16_t ActiveHeight;
    uint16_t Reserved[2]; // carried, never read: no meaning is given to them
    uint16_t InputSource;
};
static_assert(sizeof(PWTimingInfo) == 18, "a timing reply carries nine words and nothing else");
constexpr uint8_t pwTimingLength = sizeof(PWTimingInfo);

// Status words of a timing reply.
enum PWStatus : uint16_t {
    pwStatusNone  = 0, // no signal
    pwStatusValid = 1, // a signal; on the input, analogue video
    pwStatusDviA  = 2, // an analogue computer signal on the input
    pwStatusDviD  = 3, // a digital signal on the input
};

// The timing in the payload words of a message, and back.
inline PWTimingInfo PWTimingFromPayload(const PWMsg &msg) {
    PWTimingInfo info;
    std::memcpy(&info, msg.Payload, sizeof info);
    return info;
}
inline void PWTimingToPayload(const PWTimingInfo &info, PWMsg &msg) {
    std::memcpy(msg.Payload, &info, sizeof info);
    msg.Length = pwTimingLength;
}

// ---- pipes --------------------------------------------------------------------

// The pipe pair of an interface, named from the client's side: the daemon
// reads requests from ClientWrites and writes replies to ClientReads.
struct PWPipeNames {
    int Interface;
    const char *Label; // "Cmd" or "Diag"
    const char *ClientReads;
    const char *ClientWrites;
};

inline const PWPipeNames &PWPipeNamesOf(int interface) {
    static constexpr PWPipeNames cmd{PW_INTERFACE_CMD, "Cmd", "PWRdCmd", "PWWtCmd"};
    static constexpr PWPipeNames diag{PW_INTERFACE_DIAG, "Diag", "PWRdDiag", "PWWtDiag"};
    return interface == PW_INTERFACE_CMD ? cmd : diag;
}

// A pipe's path is "%s/%s%d": the folder (at most PW_PATH_MAX characters),
// the name (at most 8) and the chip (one digit).
constexpr std::size_t pwPipePathSize = PW_PATH_MAX + 11;

inline void PWPipePath(char (&path)[pwPipePathSize], const char *folder, const char *name,
                       int chip) {
    std::snprintf(path, sizeof path, "%s/%s%d", folder, name, chip);
}

// ---- packet size --------------------------------------------------------------

constexpr std::size_t pwHeaderSize   = 8; // bytes before the payload
constexpr std::size_t pwSizeOffset   = 5; // the Size byte: bytes behind it
constexpr std::size_t pwOpcodeOffset = 6;
constexpr std::size_t pwBufferSize   = 264; // working buffer of sender and receiver

// Size counts Opcode, Interface and the payload.
constexpr uint8_t PWPacketSizeByte(uint8_t length) {
    return static_cast<uint8_t>(length + 2);
}
// The whole packet: the Size byte and the six bytes up to and including it.
constexpr std::size_t PWPacketTotal(uint8_t sizeByte) {
    return sizeByte + 6u;
}
constexpr std::size_t pwMaxPacket = PWPacketTotal(PWPacketSizeByte(2 * PW_MAX_PAYLOAD_WORDS - 4));

#endif
