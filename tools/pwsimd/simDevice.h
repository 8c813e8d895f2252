// The device model of pwsimd: one simulated PixelWorks chip, its state (what
// was last set) and its answer to each request of the link.
//
// Return convention: the answer functions return true when the device
// answers and false when it refuses a request (unknown opcode, wrong payload
// length); a refused request gets no reply at all, which is how a refusal
// reaches a client of the link.
#ifndef TOOLS_PWSIMD_SIMDEVICE_H
#define TOOLS_PWSIMD_SIMDEVICE_H

#include "system/Pixelworks/PWApi.h"
#include "system/Pixelworks/PWProtocol.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

constexpr std::size_t simGainWords = pwGainsLength / 2; // words of a set gain/offset request

// One request kind of the link.
struct SimRequestKind {
    uint8_t Opcode;
    uint8_t Length; // payload bytes the request must carry
    const char *Name;
};

// The request kind of `opcode`, or null for an opcode the device doesn't know.
const SimRequestKind *SimRequestFind(uint8_t opcode);

// Reads "WIDTHxHEIGHT@HZ" (HZ with at most two decimals, e.g. 59.94) into a
// valid timing; totals come from a table of common sizes, else the active
// size plus a fixed blanking. False for any other text.
bool SimParseTiming(std::string_view text, PWTimingInfo &timing);

// What every chip starts from, and comes back to on a reset.
struct SimDeviceConfig {
    uint16_t Firmware;
    PWTimingInfo Output;
    PWTimingInfo Input;
};

// One chip. Values last set are -1 (or GainsOpcode 0) until a request sets
// them, and again after a reset; Output and Input are then the timings of
// Config.
//
// The timings follow the requests: set output mode gives the output the
// timing of that mode (a mode the chip doesn't have leaves it as it was);
// set cable gives the input the status of the input behind that cable, and
// a set gain/offset after it can tell an analogue signal on the DVI
// connector from a digital one (simModes.h). The sizes and rate of the input
// stay those of Config.
struct SimDevice {
    int Chip;
    SimDeviceConfig Config;
    uint32_t Resets; // reset requests answered
    int32_t Cable;   // word of the last set cable
    int32_t Mode;    // word of the last set output mode
    int32_t Aspect;  // word of the last set aspect ratio
    uint8_t GainsOpcode;
    uint16_t Gains[simGainWords];
    PWTimingInfo Output; // what query output reports
    PWTimingInfo Input;  // what query input reports
};

void SimDeviceInit(SimDevice &device, int chip, const SimDeviceConfig &config);

// Answers `request` into `reply` (same opcode; an empty payload for a set
// request, the timing or the firmware for a query). False: refused.
bool SimDeviceAnswer(SimDevice &device, const PWMsg &request, PWMsg &reply);

#endif
