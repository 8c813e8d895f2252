// What the words of set output mode and set cable mean to the simulated
// chip: the output timing of each PixelWorks output mode, taken from the
// video format catalogue, and the kind of input behind each cable.
//
// Return convention: lookups answer a row, or null / false when the word has
// none; a mode row that the catalogue can't resolve is a broken constant and
// a fatal assertion.
#ifndef TOOLS_PWSIMD_SIMMODES_H
#define TOOLS_PWSIMD_SIMMODES_H

#include "tools/pwsimd/simDevice.h"

#include <cstdint>
#include <span>

// One output mode: a mode string of the catalogue that stands for every
// string leading to the same PixelWorks mode.
struct SimModeRow {
    uint16_t PxwMode;
    const char *ModeName;
};

// Every row, in PxwMode order.
std::span<const SimModeRow> SimModeRows();

// The row of `pxwMode`, or null when the chip has no such mode.
const SimModeRow *SimModeFind(uint16_t pxwMode);

// The output timing of `pxwMode` with status valid and the given input
// source; false, and `timing` left alone, when the chip has no such mode.
bool SimModeTiming(uint16_t pxwMode, uint16_t inputSource, PWTimingInfo &timing);

// The status of the input behind `pxwCable` (simStatus...): `gainsOpcode`
// is the opcode of the last set gain/offset request after the set cable, 0
// when none came.
uint16_t SimCableStatus(uint16_t pxwCable, uint8_t gainsOpcode);

#endif
