// Video timing records: lookups in the record tables and the derivations that move a copy to a
// lower frame rate, another rate, another pixel clock or the 74250 kHz clock.
//
// All arithmetic is 32-bit unsigned with truncating division, in the order of steps given at each
// operation: later steps use the truncated results of earlier ones, which is why a derived word
// can differ by one from the rounded word of the table (1080p60 brought to 30 Hz has a line of
// 29629 ns, the stored 1080p30 row 29630). With the clocks, totals and rates of the tables every
// product below is exact; the comments give the largest inputs for which each one stays so.
#include "avc/main/vidTiming.h"

#include "avc/main/vidFormat.h"
#include "avc/main/vidFormatData.h"
#include "avc/main/vidTimingData.h"
#include "Common/OS/osAssert.h"

#include <strings.h>

using vidTiming::VidTimingTotals74Table;

namespace {

constexpr uint32_t kClock74KHz = 74250;
// 1000000000 / 74250 truncated: the pixel period on the 74250 kHz clock.
constexpr uint32_t kPeriod74Ps = 13468;
static_assert(1000000000u / kClock74KHz == kPeriod74Ps);
// The output stage takes at most this pixel clock.
constexpr uint32_t kOutputMaxClockKHz = 80000;
// The output stage runs at 30 Hz or less.
constexpr int32_t kOutputMaxHz = 30;
// Limits of a changed line: at most 4095 pixels, at least 16 pixels of blanking.
constexpr uint32_t kMaxLinePixels   = 4095;
constexpr uint32_t kMinRateBlanking = 16;
// A line moved to another clock keeps at least 3 pixels of blanking: front porch, sync and back
// porch of at least one pixel each.
constexpr uint32_t kMinClockBlanking = 3;

// Lines of a frame: both fields, which also serves a progressive record (second term 0).
uint32_t VidTimingFrameLines(const VidTiming &t) {
    return t.VTotal + t.VTotal2;
}

// Recomputes the four rate words from the clock, the pixel period and the totals.
// Exact while PixelClockKHz <= 4294967 (x 1000), PixelPeriodPs x HTotal <= 4294967295 (e.g. a line
// of 4095 pixels with a period up to 1048832 ps), LineRateHz <= 4294967 (x 1000) and
// LinePeriodNs x lines <= 4294967295 (e.g. 1125 lines with a line up to 3817748 ns).
void VidTimingRateUpdate(VidTiming &t) {
    const uint32_t lines = VidTimingFrameLines(t);
    OS_ASSERT(t.HTotal != 0 && lines != 0);
    t.LineRateHz       = t.PixelClockKHz * 1000u / t.HTotal;
    t.LinePeriodNs     = t.PixelPeriodPs * t.HTotal / 1000u;
    t.FrameRateMilliHz = t.LineRateHz * 1000u / lines;
    t.FramePeriodUs    = t.LinePeriodNs * lines / 1000u;
}

// A line or a frame gets a new total: the blanking follows it, and when it can no longer hold the
// sync and the back porch, both shrink to one; the front porch takes the rest.
void VidTimingFitBlanking(uint32_t total, uint32_t active, uint32_t &blank, uint32_t &front,
                          uint32_t &sync, uint32_t &back) {
    blank = total - active;
    if (blank < sync + back) {
        sync = 1;
        back = 1;
    }
    front = blank - sync - back;
}

// Clears the six geometry words of the second field once they are merged into the first; the field
// marks stay.
void VidTimingClearSecondField(VidTiming &t) {
    t.VActive2     = 0;
    t.VBlank2      = 0;
    t.VTotal2      = 0;
    t.VFrontPorch2 = 0;
    t.VSyncWidth2  = 0;
    t.VBackPorch2  = 0;
}

// Folds an alias; false when it asks for a changed rate, which has no record of its own.
bool VidTimingFoldPlain(int32_t &formatId) {
    uint32_t rate = 0;
    VidFormatResolveAlias(&formatId, &rate);
    return rate == 0;
}

} // namespace

extern "C" {

int32_t VidTimingFind(int32_t formatId, const VidTiming *table, VidTiming *record) {
    OS_ASSERT(table != nullptr && record != nullptr);
    for (const VidTiming *row = table; row->FormatId != 0; ++row) {
        if (row->FormatId == formatId) {
            *record = *row;
            return 0;
        }
    }
    return -1;
}

int32_t VidTimingById(int32_t formatId, VidTiming *record) {
    OS_ASSERT(record != nullptr);
    if (!VidTimingFoldPlain(formatId)) {
        return -1;
    }
    return VidTimingFind(formatId, VidTimingMainTable, record);
}

int32_t VidTimingByName(const char *name, VidTiming *record) {
    OS_ASSERT(record != nullptr);
    int32_t formatId = 0;
    uint32_t rate    = 0;
    if (VidFormatFromName(name, &formatId, &rate) != 0) {
        return -1;
    }
    // A name that asks for a rate ("480p30") has no record of its own.
    if (rate != 0) {
        return -1;
    }
    return VidTimingById(formatId, record);
}

// A NULL name is answered like an unknown one.
int32_t VidTimingBySystemName(const char *name, VidTiming *record) {
    OS_ASSERT(record != nullptr);
    if (name == nullptr) {
        return -1;
    }
    for (const auto &row : vidFormat::VidFormatNameTable) {
        if ((row.Flags & FMT_SYSTEM_NAME) == 0 || row.Rate != 0) {
            continue;
        }
        if (strcasecmp(row.Name, name) == 0) {
            return VidTimingById(row.FormatId, record);
        }
    }
    return -1;
}

int32_t VidTimingForOutput(int32_t formatId, VidTiming *record) {
    OS_ASSERT(record != nullptr);
    // An alias rate is no failure here: it decides the reduction below.
    uint32_t rate = 0;
    VidFormatResolveAlias(&formatId, &rate);
    // The output table's rows are handed out as they stand, whatever the alias rate says.
    if (VidTimingFind(formatId, VidTimingOutputTable, record) == 0) {
        return 0;
    }
    if (VidTimingFind(formatId, VidTimingMainTable, record) != 0) {
        return -1;
    }
    // Alias rates are at most 50000 mHz, well inside a signed word.
    return VidTimingLimitFrameRate(record, static_cast<int32_t>(rate));
}

// The frame keeps its pixels and lines on a clock divided by the smallest whole factor that
// brings the rate to 30 Hz or less. Exact while PixelPeriodPs x factor <= 4294967295: the
// slowest table clock (13500 kHz, 74074 ps) allows a factor up to 57, rates up to 1710 Hz.
int32_t VidTimingLimitFrameRate(VidTiming *record, int32_t rate) {
    OS_ASSERT(record != nullptr);
    int32_t hz = rate / 1000;
    if (hz == 0) {
        hz = static_cast<int32_t>(record->FrameRateMilliHz / 1000u);
    }
    if (hz > kOutputMaxHz) {
        const uint32_t factor = static_cast<uint32_t>((hz + kOutputMaxHz - 1) / kOutputMaxHz);
        record->PixelClockKHz = record->PixelClockKHz / factor;
        record->PixelPeriodPs = record->PixelPeriodPs * factor;
        VidTimingRateUpdate(*record);
    }
    return record->PixelClockKHz > kOutputMaxClockKHz ? -1 : 0;
}

int32_t VidTimingForRate(int32_t formatId, uint32_t rate, VidTiming *record) {
    OS_ASSERT(record != nullptr);
    // The rate of an alias is ignored: the rate argument counts.
    uint32_t aliasRate = 0;
    VidFormatResolveAlias(&formatId, &aliasRate);
    if (VidTimingFind(formatId, VidTimingMainTable, record) != 0) {
        return -1;
    }
    return VidTimingChangeRate(record, rate);
}

// The pixel clock stays and the line changes length: N = HTotal x FrameRateMilliHz / rate, exact
// while HTotal x FrameRateMilliHz <= 4294967295 (a line of 4095 pixels up to 1048839 mHz).
//
// A rate above the record's own needs a shorter line, and the same formula gives it. The cut
// comes out of the front porch alone, as growth goes into it alone: sync and back porch stay. A
// cut larger than the front porch answers -1 (so 720p50 asked for 60000 becomes 720p60, while
// 800x600at60 asked for 75000 would need 207 of a front porch of 40 and answers -1). The
// limits of a line of 4095 pixels and a blanking of 16 pixels hold in both directions.
int32_t VidTimingChangeRate(VidTiming *record, uint32_t rate) {
    OS_ASSERT(record != nullptr);
    const uint32_t ownRate = record->FrameRateMilliHz;
    if (rate == 0 || rate == ownRate) {
        return 0;
    }
    const uint32_t n = record->HTotal * ownRate / rate;
    if (n > kMaxLinePixels || record->HActive + kMinRateBlanking > n) {
        return -1;
    }
    if (n < record->HTotal && record->HTotal - n > record->HFrontPorch) {
        return -1;
    }
    record->HBlank      = n - record->HActive;
    record->HFrontPorch = record->HFrontPorch + n - record->HTotal;
    record->HTotal      = n;
    VidTimingRateUpdate(*record);
    return 0;
}

// The frame stays and the line follows the clock: N = HTotal x clock / PixelClockKHz, exact while
// HTotal x clock <= 4294967295 (a line of 4095 pixels up to 1048839 kHz); clock x 1000 is exact up
// to 4294967 kHz.
int32_t VidTimingForClock(int32_t formatId, uint32_t clockKHz, VidTiming *record) {
    OS_ASSERT(record != nullptr);
    if (VidTimingById(formatId, record) != 0) {
        return -1;
    }
    if (record->PixelClockKHz == clockKHz) {
        return 0;
    }
    const uint32_t n = record->HTotal * clockKHz / record->PixelClockKHz;
    // Also refuses a clock of 0 (N is then 0) before anything divides by it.
    if (record->HActive + kMinClockBlanking > n) {
        return -1;
    }
    record->HTotal = n;
    VidTimingFitBlanking(n, record->HActive, record->HBlank, record->HFrontPorch,
                         record->HSyncWidth, record->HBackPorch);
    record->PixelClockKHz    = clockKHz;
    const uint32_t lines     = VidTimingFrameLines(*record);
    record->LineRateHz       = clockKHz * 1000u / n;
    record->FrameRateMilliHz = record->LineRateHz * 1000u / lines;
    record->PixelPeriodPs    = 1000000000u / clockKHz;
    record->LinePeriodNs     = record->PixelPeriodPs * n / 1000u;
    record->FramePeriodUs    = record->LinePeriodNs * lines / 1000u;
    return 0;
}

int32_t VidTimingFor74MHz(int32_t formatId, VidTiming *record) {
    OS_ASSERT(record != nullptr);
    if (VidTimingById(formatId, record) != 0) {
        return -1;
    }
    // The record's id is the one the alias folded to.
    uint32_t hTotal = 0;
    uint32_t vTotal = 0;
    if (VidTimingTotals74(record->FormatId, &hTotal, &vTotal) == 0) {
        return VidTimingRetime74(record, hTotal, vTotal);
    }
    if (record->PixelClockKHz == kClock74KHz) {
        if (record->VActive2 != 0) {
            VidTimingMergeFields(record);
        }
        return 0;
    }
    return -1;
}

int32_t VidTimingTotals74(int32_t formatId, uint32_t *hTotal, uint32_t *vTotal) {
    OS_ASSERT(hTotal != nullptr && vTotal != nullptr);
    for (const auto &row : VidTimingTotals74Table) {
        if (row.FormatId == formatId) {
            *hTotal = row.HTotal;
            *vTotal = row.VTotal;
            return 0;
        }
    }
    return -1;
}

// The field marks have no meaning for any computation here: they travel with the record as the
// tables give them, also once the fields are merged.
int32_t VidTimingMergeFields(VidTiming *record) {
    OS_ASSERT(record != nullptr);
    record->VActive += record->VActive2;
    record->VBlank += record->VBlank2;
    record->VTotal += record->VTotal2;
    record->VFrontPorch += record->VFrontPorch2;
    record->VSyncWidth += record->VSyncWidth2;
    record->VBackPorch += record->VBackPorch2;
    VidTimingClearSecondField(*record);
    return 0;
}

// Totals that leave less than 2 pixels or 2 lines of blanking are a caller's error: sync and back
// porch of one each would leave the front porch below zero. 13468 x hTotal is exact for hTotal up
// to 318901, and LinePeriodNs x vTotal while it stays within 4294967295 (a line of 4095 pixels,
// 55151 ns, with up to 77877 lines).
int32_t VidTimingRetime74(VidTiming *record, uint32_t hTotal, uint32_t vTotal) {
    OS_ASSERT(record != nullptr);
    OS_ASSERT(hTotal >= record->HActive + 2 && vTotal >= record->VActive + record->VActive2 + 2);
    record->HTotal = hTotal;
    VidTimingFitBlanking(hTotal, record->HActive, record->HBlank, record->HFrontPorch,
                         record->HSyncWidth, record->HBackPorch);
    record->VTotal  = vTotal;
    record->VActive = record->VActive + record->VActive2;
    VidTimingFitBlanking(vTotal, record->VActive, record->VBlank, record->VFrontPorch,
                         record->VSyncWidth, record->VBackPorch);
    VidTimingClearSecondField(*record);
    record->PixelClockKHz    = kClock74KHz;
    record->LineRateHz       = kClock74KHz * 1000u / hTotal;
    record->FrameRateMilliHz = record->LineRateHz * 1000u / vTotal;
    record->PixelPeriodPs    = kPeriod74Ps;
    record->LinePeriodNs     = kPeriod74Ps * hTotal / 1000u;
    record->FramePeriodUs    = record->LinePeriodNs * vTotal / 1000u;
    return 0;
}

} // extern "C"
