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

#include <cstddef>
#include <cstdint>
#include <string_view>

// Opcodes of the requests.
constexpr uint8_t simOpReset        = 0x01;
constexpr uint8_t simOpQueryInput   = 0x02;
constexpr uint8_t simOpQueryOutput  = 0x03;
constexpr uint8_t simOpSetCable     = 0x04;
constexpr uint8_t simOpSetMode      = 0x05;
constexpr uint8_t simOpQueryVersion = 0x23;
constexpr uint8_t simOpSetAspect    = 0x25;
constexpr uint8_t simOpSetGains     = 0x2C;
constexpr uint8_t simOpSetGainsVga  = 0x2D;

constexpr std::size_t simTimingWords = 9; // words of a timing reply: 18 bytes
constexpr std::size_t simGainWords   = 6; // words of a set gain/offset request

// Status words of a timing reply.
constexpr uint16_t simStatusNone  = 0;
constexpr uint16_t simStatusValid = 1; // a signal; on the input, analogue video
constexpr uint16_t simStatusDviA  = 2; // an analogue computer signal on the input
constexpr uint16_t simStatusDviD  = 3; // a digital signal on the input

// One request kind of the link.
struct SimRequestKind {
    uint8_t Opcode;
    uint8_t Length; // payload bytes the request must carry
    const char *Name;
};

// The request kind of `opcode`, or null for an opcode the device doesn't know.
const SimRequestKind *SimRequestFind(uint8_t opcode);

// A video timing as a timing reply reports it.
struct SimTiming {
    uint16_t Status;
    uint16_t RefreshRate; // hundredths of a hertz
    uint16_t TotalWidth;  // pixels in a line, blanking included
    uint16_t TotalHeight; // lines in a frame, blanking included
    uint16_t ActiveWidth;
    uint16_t ActiveHeight;
    uint16_t InputSource;
};

// Reads "WIDTHxHEIGHT@HZ" (HZ with at most two decimals, e.g. 59.94) into a
// valid timing; totals come from a table of common sizes, else the active
// size plus a fixed blanking. False for any other text.
bool SimParseTiming(std::string_view text, SimTiming &timing);

// The timing as the nine payload words of a reply, in host order.
void SimTimingToWords(const SimTiming &timing, uint16_t (&words)[simTimingWords]);

// What every chip starts from, and comes back to on a reset.
struct SimDeviceConfig {
    uint16_t Firmware;
    SimTiming Output;
    SimTiming Input;
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
    SimTiming Output; // what query output reports
    SimTiming Input;  // what query input reports
};

void SimDeviceInit(SimDevice &device, int chip, const SimDeviceConfig &config);

// Answers `request` into `reply` (same opcode; an empty payload for a set
// request, the timing or the firmware for a query). False: refused.
bool SimDeviceAnswer(SimDevice &device, const PWMsg &request, PWMsg &reply);

#endif
