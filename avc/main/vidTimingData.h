// Row counts and declarations of the video timing tables (C++ only, not installed): shared by the
// operations and the tests.
#ifndef AVC_MAIN_VIDTIMINGDATA_H
#define AVC_MAIN_VIDTIMINGDATA_H

#include "avc/main/vidTiming.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace vidTiming {

// Rows of the record tables, without their closing row of zeros.
inline constexpr std::size_t kMainRows   = 61;
inline constexpr std::size_t kOutputRows = 9;
// Rows of the totals on the 74250 kHz clock; no end mark, walked by count.
inline constexpr std::size_t kTotals74Rows = 23;

// One row of the totals on the 74250 kHz clock.
struct VidTimingTotals {
    int32_t FormatId;
    uint32_t HTotal; // pixels of a line at 74250 kHz
    uint32_t VTotal; // lines of a frame, both fields together
};

// Defined in vidTimingData.cpp.
extern const std::array<VidTimingTotals, kTotals74Rows> VidTimingTotals74Table;

} // namespace vidTiming

// The public tables with their bounds, closing row included. Defined in vidTimingData.cpp.
extern "C" {
extern const VidTiming VidTimingMainTable[vidTiming::kMainRows + 1];
extern const VidTiming VidTimingOutputTable[vidTiming::kOutputRows + 1];
}

#endif
