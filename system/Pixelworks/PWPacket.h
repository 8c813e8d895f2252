// The packet of the PixelWorks link, apart from any pipe: encoding a message,
// and testing the bytes received so far. Used by the link, by the daemon
// simulator and by the fuzz target.
//
// Packet, with the same bytes on every host:
//   0  Sync       0xBE 0xEF
//   2  CRC        CRC-16/MODBUS over the packet with these bytes at zero,
//                 high byte first
//   4  Type       0x1B when sent, not looked at on receipt
//   5  Size       bytes behind this one: Length + 2
//   6  Opcode
//   7  Interface  1 Cmd, 0 Diag
//   8  Payload    16-bit words, low byte first
#ifndef SYSTEM_PIXELWORKS_PWPACKET_H
#define SYSTEM_PIXELWORKS_PWPACKET_H

#include "system/Pixelworks/PWApi.h"
#include "system/Pixelworks/PWProtocol.h"

#include <cstddef>
#include <cstdint>

constexpr uint8_t pwSync0 = 0xBE;
constexpr uint8_t pwSync1 = 0xEF;
constexpr uint8_t pwType  = 0x1B;

// What the bytes held so far amount to, tested in the receiver's order.
enum class PWScan {
    incomplete,     // a good start, more bytes needed
    badSync,        // a byte received at offset 0 or 1 is not the sync
    otherInterface, // a whole header for the other interface: wait on
    badCrc,         // the whole packet is there and its CRC is wrong
    good,           // a valid packet at the start of the buffer
};

// Runs the CRC on over `count` more bytes. The state is what PWCrc16
// returns: the low byte of the CRC in the upper half; 0xFFFF to start.
uint16_t PWCrcUpdate(uint16_t state, const uint8_t *data, std::size_t count);

// The CRC of a packet of `total` bytes as it goes on the pipe, CRC field
// taken as zero: the CRC-16/MODBUS value with its high byte in the upper half.
uint16_t PWPacketCrc(const uint8_t *packet, std::size_t total);

// Builds the packet of `msg` for `interface` in `out`; returns its size,
// Length + 8.
std::size_t PWPacketEncode(const PWMsg &msg, int interface, uint8_t (&out)[pwBufferSize]);

// Tests the `held` bytes at the start of `buf`, as received for `interface`.
PWScan PWPacketScan(const uint8_t *buf, std::size_t held, int interface);

// The header word of a bad sync report: byte 0 in the upper half, byte 1
// (0 if not yet received) in the lower.
uint16_t PWPacketSyncWord(const uint8_t *buf, std::size_t held);

// Fills `msg` from a packet that PWPacketScan found good: Opcode, Length =
// Size - 2, and the payload words in host order. Words beyond Length stay.
void PWPacketDecode(const uint8_t *packet, PWMsg &msg);

#endif
