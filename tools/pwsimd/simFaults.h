// Fault injection of pwsimd: the faults a chip can be given, their option
// syntax, and how they shape the replies of that chip.
//
// Return convention: SimFaultParse returns true, or false with a one-line
// message for the user; shaping never fails.
#ifndef TOOLS_PWSIMD_SIMFAULTS_H
#define TOOLS_PWSIMD_SIMFAULTS_H

#include "system/Pixelworks/PWApi.h"
#include "system/Pixelworks/PWPacket.h"
#include "tools/pwsimd/simDevice.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

// One bit per fault.
constexpr unsigned simFaultNever   = 1u << 0; // no reply at all
constexpr unsigned simFaultLate    = 1u << 1; // the reply after LateMs
constexpr unsigned simFaultStatus0 = 1u << 2; // query output reports Status 0
constexpr unsigned simFaultSplit   = 1u << 3; // the reply in two writes
constexpr unsigned simFaultCrc     = 1u << 4; // the reply with a wrong CRC
constexpr unsigned simFaultGarbage = 1u << 5; // bytes without a sync instead
constexpr unsigned simFaultOtherIf = 1u << 6; // the reply for the other interface
constexpr unsigned simFaultFrozen  = 1u << 7; // query output ignores set output mode

// Time between the two writes of a split reply.
constexpr uint32_t simSplitGapMs = 50;

// The faults of one chip.
struct SimFaults {
    unsigned Mask;
    uint32_t LateMs;      // delay of simFaultLate
    uint32_t Status0Left; // query output replies still to report Status 0
    PWTimingInfo Frozen;  // what query output reports under simFaultFrozen
};

// Applies one "NAME[=VALUE][@CHIP]" to the chip named, or to every chip
// without "@CHIP". A fault given twice for a chip takes the last value.
bool SimFaultParse(std::string_view option, SimFaults (&faults)[PW_MAX_CHIPS], char *error,
                   std::size_t errorSize);

// The name of one fault bit as the option and the trace spell it.
const char *SimFaultName(unsigned bit);

// Names of the bits of `mask` joined with '+', "-" for none, into `buf`.
void SimFaultNames(unsigned mask, char *buf, std::size_t size);

// One reply as it goes out on the reply pipe.
struct SimReply {
    bool Send;              // false: the fault "never"
    uint32_t DelayMs;       // before the first write
    std::size_t Size;       // bytes in Bytes
    std::size_t FirstPiece; // bytes of the first write: Size unless split
    unsigned Applied;       // fault bits that shaped this reply
    uint8_t Bytes[pwBufferSize];
};

// Shapes the device's `reply` on `interface` by the chip's faults into
// `out`. A query output reply is changed in place under frozen, and while
// status0 counts down, so that the caller traces what was sent.
void SimFaultShape(SimFaults &faults, int interface, PWMsg &reply, SimReply &out);

#endif
