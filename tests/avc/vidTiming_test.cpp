// Tests of the video timing records: invariants of the tables, coverage of the format ids, the
// lookups and the derivations against their worked examples.
#include "avc/main/vidFormat.h"
#include "avc/main/vidFormatData.h"
#include "avc/main/vidTiming.h"
#include "avc/main/vidTimingData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

using vidTiming::VidTimingTotals74Table;

namespace {

bool Same(const VidTiming &a, const VidTiming &b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

VidTiming Main(int32_t id) {
    VidTiming t{};
    EXPECT_EQ(VidTimingFind(id, VidTimingMainTable, &t), 0) << id;
    return t;
}

// A record no operation would produce, to show that a failure left it alone.
VidTiming Garbage() {
    VidTiming t;
    std::memset(&t, 0xA5, sizeof t);
    return t;
}

std::vector<VidTiming> Rows(const VidTiming *table) {
    std::vector<VidTiming> rows;
    for (; table->FormatId != 0; ++table)
        rows.push_back(*table);
    return rows;
}

// The marks agree with the mode names: WIDTHxHEIGHTatREFRESH rows are VESA-like, the television
// rows of 720 and 1080 lines are HD video; interlaced are exactly ntsc, pal and the 1080i rows.
TEST(VidTimingTables, MarksAgreeWithModeNames) {
    std::set<int32_t> interlaced;
    for (const VidTiming &t : Rows(VidTimingMainTable)) {
        const char *name = VidFormatNameOf(t.FormatId);
        ASSERT_NE(name, nullptr) << t.FormatId;
        const std::string n(name);
        const bool sized = n.find('x') != std::string::npos && n.find("at") != std::string::npos;
        const bool tv    = n.rfind("720p", 0) == 0 || n.rfind("1080", 0) == 0;
        EXPECT_EQ(t.IsVesaLike, sized ? 1u : 0u) << n;
        EXPECT_EQ(t.IsHdVideo, tv ? 1u : 0u) << n;
        EXPECT_EQ(t.VFieldMark != 0, t.VActive2 != 0) << n;
        if (t.VActive2 != 0)
            interlaced.insert(t.FormatId);
    }
    EXPECT_EQ(interlaced, (std::set<int32_t>{1, 2, 73, 74, 78, 79}));
}

// Timings as the standards publish them: pixel clock (kHz), then active, front porch, sync and
// back porch of a line (pixels) and of a frame or field (lines), and the sync polarities (1
// positive). Sources: CTA-861 (television formats) and VESA DMT with its CVT entries (computer
// formats). The rows the system keeps identical to a standard must match them word for word.
struct Standard {
    int32_t Id;
    uint32_t Clock, HAct, HFp, HSync, HBp, VAct, VFp, VSync, VBp, HPos, VPos;
};

// clang-format off
/* Id, ClockKHz, HActive, HFront, HSync, HBack, VActive, VFront, VSync, VBack, H+, V+ */
const Standard standards[] = {
    {43,  74250, 1280,  110,  40, 220,  720, 5, 5, 20, 1, 1}, // CTA-861 VIC 4, 720p60; DMT 1280x720@60
    {41,  74250, 1280,  440,  40, 220,  720, 5, 5, 20, 1, 1}, // CTA-861 VIC 19, 720p50
    {83,  74250, 1280, 1760,  40, 220,  720, 5, 5, 20, 1, 1}, // CTA-861 VIC 62, 720p30
    {82,  74250, 1280, 2420,  40, 220,  720, 5, 5, 20, 1, 1}, // CTA-861 VIC 61, 720p25
    {77, 148500, 1920,   88,  44, 148, 1080, 4, 5, 36, 1, 1}, // CTA-861 VIC 16, 1080p60; DMT 1920x1080@60
    {75, 148500, 1920,  528,  44, 148, 1080, 4, 5, 36, 1, 1}, // CTA-861 VIC 31, 1080p50
    {81,  74250, 1920,   88,  44, 148, 1080, 4, 5, 36, 1, 1}, // CTA-861 VIC 34, 1080p30
    {80,  74250, 1920,  528,  44, 148, 1080, 4, 5, 36, 1, 1}, // CTA-861 VIC 33, 1080p25
    {79,  74250, 1920,   88,  44, 148,  540, 2, 5, 15, 1, 1}, // CTA-861 VIC 5, 1080i60, first field
    {78,  74250, 1920,  528,  44, 148,  540, 2, 5, 15, 1, 1}, // CTA-861 VIC 20, 1080i50, first field
    { 4,  25175,  640,   16,  96,  48,  480, 10, 2, 33, 0, 0}, // DMT 640x480@60
    { 5,  31500,  640,   24,  40, 128,  480, 9, 3, 28, 0, 0}, // DMT 640x480@72
    { 6,  31500,  640,   16,  64, 120,  480, 1, 3, 16, 0, 0}, // DMT 640x480@75
    { 7,  36000,  640,   56,  56,  80,  480, 1, 3, 25, 0, 0}, // DMT 640x480@85
    {10,  40000,  800,   40, 128,  88,  600, 1, 4, 23, 1, 1}, // DMT 800x600@60
    {11,  50000,  800,   56, 120,  64,  600, 37, 6, 23, 1, 1}, // DMT 800x600@72
    {12,  49500,  800,   16,  80, 160,  600, 1, 3, 21, 1, 1}, // DMT 800x600@75
    {13,  56250,  800,   32,  64, 152,  600, 1, 3, 27, 1, 1}, // DMT 800x600@85
    {14,  65000, 1024,   24, 136, 160,  768, 3, 6, 29, 0, 0}, // DMT 1024x768@60
    {15,  75000, 1024,   24, 136, 144,  768, 3, 6, 29, 0, 0}, // DMT 1024x768@70
    {16,  78750, 1024,   16,  96, 176,  768, 1, 3, 28, 1, 1}, // DMT 1024x768@75
    {17,  94500, 1024,   48,  96, 208,  768, 1, 3, 36, 1, 1}, // DMT 1024x768@85
    {21, 108000, 1280,   96, 112, 312,  960, 1, 3, 36, 1, 1}, // DMT 1280x960@60
    {22, 148500, 1280,   64, 160, 224,  960, 1, 3, 47, 1, 1}, // DMT 1280x960@85
    {23, 108000, 1280,   48, 112, 248, 1024, 1, 3, 38, 1, 1}, // DMT 1280x1024@60
    {24, 135000, 1280,   16, 144, 248, 1024, 1, 3, 38, 1, 1}, // DMT 1280x1024@75
    {25, 157500, 1280,   64, 160, 224, 1024, 1, 3, 44, 1, 1}, // DMT 1280x1024@85
    {68, 121750, 1400,   88, 144, 232, 1050, 3, 4, 32, 0, 1}, // DMT 1400x1050@60 (CVT)
    {30, 146250, 1680,  104, 176, 280, 1050, 3, 6, 30, 0, 1}, // DMT 1680x1050@60 (CVT)
    {72, 119000, 1680,   48,  32,  80, 1050, 3, 6, 21, 1, 0}, // DMT 1680x1050@60 (CVT reduced blanking)
    {35, 162000, 1600,   64, 192, 304, 1200, 1, 3, 46, 1, 1}, // DMT 1600x1200@60
};
// clang-format on

// The system's own rasters, the rows that copy no standard, drive both syncs positive.
TEST(VidTimingTables, StandardRowsMatchThePublishedTimings) {
    std::set<int32_t> published;
    for (const Standard &s : standards) {
        published.insert(s.Id);
        const VidTiming t = Main(s.Id);
        EXPECT_EQ(std::vector<uint32_t>({t.PixelClockKHz, t.HActive, t.HFrontPorch, t.HSyncWidth,
                                         t.HBackPorch, t.VActive, t.VFrontPorch, t.VSyncWidth,
                                         t.VBackPorch, t.HSyncPositive, t.VSyncPositive}),
                  std::vector<uint32_t>({s.Clock, s.HAct, s.HFp, s.HSync, s.HBp, s.VAct, s.VFp,
                                         s.VSync, s.VBp, s.HPos, s.VPos}))
            << VidFormatNameOf(s.Id);
    }
    for (const VidTiming &t : Rows(VidTimingMainTable))
        EXPECT_TRUE(published.count(t.FormatId) != 0 || (t.HSyncPositive && t.VSyncPositive))
            << VidFormatNameOf(t.FormatId);
}

// On 74250 kHz each format's totals give its own frame rate or half of it: within 0.01%, a
// step smaller than one pixel or line of any row, but for six rasters that only come near it
// (within 0.25%). The 1080-line formats and 1280x960 at 60 Hz take the standard rasters of
// 1080p30 and 1080p25 on that clock (CTA-861 VIC 34 and 33), and 480p, 1024x768 and 1600x1200
// the worked examples.
TEST(VidTimingTotals74, EachGivesItsRateOrHalfOnTheOneClock) {
    const std::set<int32_t> near = {4, 13, 14, 16, 17, 25};
    for (const auto &row : VidTimingTotals74Table) {
        const double own  = Main(row.FormatId).FrameRateMilliHz / 1000.0;
        const double on74 = 74250000.0 / (row.HTotal * row.VTotal);
        const double off  = std::min(std::fabs(on74 / own - 1), std::fabs(2 * on74 / own - 1));
        EXPECT_LT(off, near.count(row.FormatId) != 0 ? 0.0025 : 0.0001)
            << row.FormatId << ": " << on74 << " Hz for " << own;
    }
    // clang-format off
    /* FormatId, HTotal, VTotal (0: not given) */
    const std::tuple<int32_t, uint32_t, uint32_t> known[] = {
        {58, 2200, 1125}, {77, 2200, 1125}, {21, 2200, 1125}, {56, 2640, 1125}, {75, 2640, 1125},
        {59, 3003, 825},  {14, 1274, 0},    {35, 1875, 1320},
    };
    // clang-format on
    for (const auto &[id, h, v] : known) {
        uint32_t hTotal = 0, vTotal = 0;
        EXPECT_EQ(VidTimingTotals74(id, &hTotal, &vTotal), 0) << id;
        EXPECT_EQ(hTotal, h) << id;
        EXPECT_EQ(v == 0 ? 0 : vTotal, v) << id;
    }
}

// Every id that a name, an alias, a list or a map gives has a record after folding, but the
// seven that are described as having none (the totals' ids have a record by a compile-time check).
TEST(VidTimingTables, EveryReachableIdHasARecordOrDeliberatelyNone) {
    const std::set<int32_t> without = {31, 32, 36, 37, 38, 40, 61};
    std::set<int32_t> ids;
    for (const auto &row : vidFormat::VidFormatNameTable)
        ids.insert(row.FormatId);
    for (const auto &row : vidFormat::VidFormatAliasTable)
        ids.insert(row.FormatId);
    for (const auto &row : vidFormat::VidFormatProgressiveMap) {
        ids.insert(row.FormatId);
        ids.insert(row.ProgressiveId);
    }
    for (const auto &row : vidFormat::VidFormatAllowedTable) {
        ids.insert(row.First.Ids, row.First.Ids + row.First.Count);
        ids.insert(row.Second.Ids, row.Second.Ids + row.Second.Count);
    }
    for (int32_t id : ids) {
        int32_t folded = id;
        uint32_t rate  = 0;
        VidFormatResolveAlias(&folded, &rate);
        VidTiming t{};
        EXPECT_EQ(VidTimingFind(folded, VidTimingMainTable, &t) == 0, without.count(id) == 0) << id;
    }
    for (const VidTiming &t : Rows(VidTimingMainTable))
        EXPECT_EQ(ids.count(t.FormatId), 1u) << t.FormatId << " has a record and no name";
}

// A name answers in its own name space; a failure leaves the record alone.
TEST(VidTimingByName, ModeAndSystemNameSpacesSplit) {
    // clang-format off
    /* Name, FormatId by mode name, FormatId by system name (0: -1) */
    const std::tuple<const char *, int32_t, int32_t> cases[] = {
        {"720p_NTSC",          52,  43},
        {"1080i_PAL",          73,  78},
        {"ntsc_ntsc",          1,   1},
        {"60HZ1680x1050_PAL",  26,  26},
        {"640X480AT60",        4,   0},  // a mode name only
        {"480p30",             0,   0},  // asks for a rate
        {"auto-ntsc-pal",      0,   0},  // 61 has no record
        {"85HZ1600x1200_PAL",  0,   0},
        {"720p",               0,   0},
        {nullptr,              0,   0},
    };
    // clang-format on
    for (const auto &[name, modeId, systemId] : cases) {
        SCOPED_TRACE(name ? name : "(null)");
        for (const auto &[lookup, id] :
             {std::pair{&VidTimingByName, modeId}, std::pair{&VidTimingBySystemName, systemId}}) {
            VidTiming t = Garbage();
            EXPECT_EQ(lookup(name, &t), id != 0 ? 0 : -1);
            EXPECT_TRUE(Same(t, id != 0 ? Main(id) : Garbage()));
        }
    }
}

TEST(VidTimingForOutput, ReducesFrameRateToThirty) {
    /* FormatId; PixelClockKHz, PixelPeriodPs, LineRateHz, LinePeriodNs, FrameRateMilliHz,
       FramePeriodUs */
    const std::pair<int32_t, std::vector<uint32_t>> cases[] = {
        {43, {37125, 26936, 22500, 44444, 30000, 33333}},
        {52, {37088, 26962, 22477, 44487, 29969, 33365}},
        {58, {74250, 13468, 33750, 29629, 30000, 33332}},
        {29, {73125, 13676, 32645, 30634, 29977, 33360}}, // 30 at the alias rate 50000
    };
    for (const auto &[id, rates] : cases) {
        VidTiming t{};
        EXPECT_EQ(VidTimingForOutput(id, &t), 0) << id;
        const VidTiming m = Main(t.FormatId);
        EXPECT_EQ(std::vector<uint32_t>({t.PixelClockKHz, t.PixelPeriodPs, t.LineRateHz,
                                         t.LinePeriodNs, t.FrameRateMilliHz, t.FramePeriodUs}),
                  rates)
            << id;
        EXPECT_EQ(std::tie(t.HTotal, t.VTotal, t.HActive), std::tie(m.HTotal, m.VTotal, m.HActive));
    }
    VidTiming t{};
    EXPECT_EQ(VidTimingForOutput(7, &t), 0); // 85 Hz: factor 3
    EXPECT_EQ(t.PixelClockKHz, 12000u);
    EXPECT_EQ(t.FrameRateMilliHz, 28335u);
}

// Stored rows as they stand: the output table's whatever the alias rate says, a main row at 30 Hz
// or less; -1 when the clock stays above 80000 kHz or there is no record.
TEST(VidTimingForOutput, HandsOutStoredRows) {
    // clang-format off
    /* FormatId, Result, Record it holds (none: left alone) */
    const std::tuple<int32_t, int32_t, std::optional<VidTiming>> cases[] = {
        {53,  0,   Main(53)},
        {62,  0,   Main(53)},
        {1,   0,   Main(1)},                   // 29 Hz: nothing to reduce
        {35,  0,   VidTimingOutputTable[0]},   // the 79200 kHz row
        {33,  0,   VidTimingOutputTable[0]},
        {28,  -1,  Main(30)},                  // alias rates of 30 Hz or less: no division
        {61,  -1,  std::nullopt},
        {36,  -1,  std::nullopt},
    };
    // clang-format on
    for (const auto &[id, result, record] : cases) {
        VidTiming t = Garbage();
        EXPECT_EQ(VidTimingForOutput(id, &t), result) << id;
        EXPECT_TRUE(Same(t, record.value_or(Garbage()))) << id;
    }
}

TEST(VidTimingLimitFrameRate, FactorByRate) {
    const std::pair<int32_t, uint32_t> cases[] = {
        {0, 37125},     {999, 37125},   {30999, 74250}, {31000, 37125},
        {60999, 37125}, {61000, 24750}, {90999, 24750}, {91000, 18562},
        {-999, 37125},  {-5000, 74250}, {25000, 74250},
    };
    for (const auto &[rate, clock] : cases) {
        VidTiming t = Main(53);
        EXPECT_EQ(VidTimingLimitFrameRate(&t, rate), 0) << rate;
        EXPECT_EQ(t.PixelClockKHz, clock) << rate;
        EXPECT_EQ(t.HTotal, 1650u);
    }
    VidTiming t = Main(35); // 162000 kHz at 60 Hz: halved is still above 80000
    EXPECT_EQ(VidTimingLimitFrameRate(&t, 0), -1);
    EXPECT_EQ(t.PixelClockKHz, 81000u);
    t = Main(58); // 30 Hz asked: no division, and 148500 kHz is above the limit
    EXPECT_EQ(VidTimingLimitFrameRate(&t, 30000), -1);
    EXPECT_TRUE(Same(t, Main(58)));
}

TEST(VidTimingForRate, GrowsTheFrontPorch) {
    /* FormatId, rate (mHz); HTotal, HBlank, HFrontPorch, LineRateHz, LinePeriodNs,
       FrameRateMilliHz, FramePeriodUs */
    const std::tuple<int32_t, uint32_t, std::vector<uint32_t>> cases[] = {
        {59, 29970, {1716, 996, 874, 15734, 63555, 29969, 33366}},
        {4, 25000, {1918, 1278, 1134, 13125, 76186, 25000, 39997}},
        {53, 50000, {1980, 700, 400, 37500, 26666, 50000, 19999}},  // the line of 720p50
        {28, 50000, {2685, 1005, 549, 54469, 18360, 50017, 19994}}, // 30: the argument counts
    };
    for (const auto &[id, rate, line] : cases) {
        VidTiming t{};
        EXPECT_EQ(VidTimingForRate(id, rate, &t), 0) << id;
        const VidTiming m = Main(t.FormatId);
        EXPECT_EQ(std::vector<uint32_t>({t.HTotal, t.HBlank, t.HFrontPorch, t.LineRateHz,
                                         t.LinePeriodNs, t.FrameRateMilliHz, t.FramePeriodUs}),
                  line)
            << id;
        EXPECT_EQ(std::tie(t.HSyncWidth, t.HBackPorch, t.PixelClockKHz),
                  std::tie(m.HSyncWidth, m.HBackPorch, m.PixelClockKHz));
    }
}

// 0 or the own rate changes nothing (an alias rate is ignored); a line above 4095 pixels is
// refused.
TEST(VidTimingForRate, StoredRowOrLineLimitOf4095) {
    VidTiming t{};
    for (int32_t id : {59, 4, 72, 1}) {
        for (uint32_t rate : {0u, Main(id).FrameRateMilliHz}) {
            EXPECT_EQ(VidTimingForRate(id, rate, &t), 0);
            EXPECT_TRUE(Same(t, Main(id))) << id << " " << rate;
        }
    }
    EXPECT_EQ(VidTimingForRate(28, 0, &t), 0); // the alias rate 25000 is ignored
    EXPECT_TRUE(Same(t, Main(30)));
    EXPECT_EQ(VidTimingForRate(35, 30000, &t), -1); // N = 4320
    EXPECT_TRUE(Same(t, Main(35)));
    EXPECT_EQ(VidTimingForRate(53, 24170, &t), 0); // N = 4095
    EXPECT_EQ(t.HTotal, 4095u);
    EXPECT_EQ(VidTimingForRate(53, 24169, &t), -1); // N = 4096
    EXPECT_TRUE(Same(t, Main(53)));
    EXPECT_EQ(VidTimingForRate(3, 30000, &t), -1);
}

// A rate above the record's own shortens the line out of the front porch alone.
TEST(VidTimingChangeRate, HigherRateShortensWithinFrontPorch) {
    VidTiming t = Main(51); // 720p50 asked for 60 Hz has the line of 720p60
    EXPECT_EQ(VidTimingChangeRate(&t, 60000), 0);
    const VidTiming p60 = Main(53);
    EXPECT_EQ(std::tie(t.HTotal, t.HBlank, t.HFrontPorch, t.HSyncWidth, t.HBackPorch, t.LineRateHz,
                       t.FrameRateMilliHz),
              std::tie(p60.HTotal, p60.HBlank, p60.HFrontPorch, p60.HSyncWidth, p60.HBackPorch,
                       p60.LineRateHz, p60.FrameRateMilliHz));
    // A cut larger than the front porch (10, 51), or one that leaves less than 16 pixels of
    // blanking (55).
    for (auto [id, rate] : {std::pair{10, 75000u}, {51, 63000u}, {55, 60000u}}) {
        t = Main(id);
        EXPECT_EQ(VidTimingChangeRate(&t, rate), -1) << id;
        EXPECT_TRUE(Same(t, Main(id))) << id;
    }
}

TEST(VidTimingChangeRate, BlankingOfSixteen) {
    VidTiming t   = Main(53);
    t.HFrontPorch = 1000; // a caller's record with room in the porch: 1280 + 1000 + 2 + 2
    t.HSyncWidth  = 2;
    t.HBackPorch  = 2;
    t.HBlank      = 1004;
    t.HTotal      = 2284;
    VidTiming u   = t;
    // 2284 x 60000 / rate: 1296 pixels leave 16 of blanking, 1295 only 15.
    EXPECT_EQ(VidTimingChangeRate(&u, 105740), 0);
    EXPECT_EQ(u.HTotal, 1296u);
    EXPECT_EQ(u.HFrontPorch, 12u);
    u = t;
    EXPECT_EQ(VidTimingChangeRate(&u, 105800), -1);
    EXPECT_TRUE(Same(u, t));
}

TEST(VidTimingForClock, LineFollowsTheClockWithAMarginOfThree) {
    VidTiming t{};
    EXPECT_EQ(VidTimingForClock(4, 74250, &t), 0);
    EXPECT_EQ(std::tie(t.HTotal, t.HBlank, t.HFrontPorch, t.LineRateHz, t.FrameRateMilliHz,
                       t.PixelPeriodPs, t.LinePeriodNs, t.FramePeriodUs, t.PixelClockKHz),
              std::make_tuple(2359u, 1719u, 1575u, 31475u, 59952u, 13468u, 31771u, 16679u, 74250u));
    EXPECT_EQ(VidTimingForClock(53, 74250, &t), 0);
    EXPECT_TRUE(Same(t, Main(53)));
    // 1024x768at60 at 55000 kHz: 113 pixels of blanking are less than its sync and back porch.
    EXPECT_EQ(VidTimingForClock(14, 55000, &t), 0);
    EXPECT_EQ(std::tie(t.HTotal, t.HBlank, t.HSyncWidth, t.HBackPorch, t.HFrontPorch),
              std::make_tuple(1137u, 113u, 1u, 1u, 111u));
    // At 63840 kHz the 296 pixels of blanking hold sync and back porch exactly: both stay.
    EXPECT_EQ(VidTimingForClock(14, 63840, &t), 0);
    EXPECT_EQ(std::tie(t.HTotal, t.HBlank, t.HSyncWidth, t.HBackPorch, t.HFrontPorch),
              std::make_tuple(1320u, 296u, 136u, 160u, 0u));
    // At least 3 pixels of blanking; a failure leaves the table's row, or nothing without one.
    EXPECT_EQ(VidTimingForClock(23, 50000, &t), -1); // N = 781
    EXPECT_TRUE(Same(t, Main(23)));
    EXPECT_EQ(VidTimingForClock(14, 49669, &t), 0); // N = 1027 = 1024 + 3
    EXPECT_EQ(std::tie(t.HBlank, t.HFrontPorch), std::make_tuple(3u, 1u));
    EXPECT_EQ(VidTimingForClock(14, 49668, &t), -1); // N = 1026
    EXPECT_TRUE(Same(t, Main(14)));
    EXPECT_EQ(VidTimingForClock(14, 0, &t), -1);
    t = Garbage();
    EXPECT_EQ(VidTimingForClock(33, 74250, &t), -1);
    EXPECT_EQ(VidTimingForClock(61, 74250, &t), -1);
    EXPECT_TRUE(Same(t, Garbage()));
}

// Retimed with the format's totals; without totals, a format on its own 74250 kHz clock has its
// fields merged, and a progressive one is handed out as it stands.
TEST(VidTimingFor74MHz, RetimesWithTotalsOrMergesFieldsOnItsOwnClock) {
    VidTiming t{};
    EXPECT_EQ(VidTimingFor74MHz(59, &t), 0);
    EXPECT_EQ(
        std::tie(t.HTotal, t.HBlank, t.HFrontPorch, t.VTotal, t.VBlank, t.VFrontPorch, t.LineRateHz,
                 t.FrameRateMilliHz, t.PixelClockKHz, t.PixelPeriodPs),
        std::make_tuple(3003u, 2283u, 2161u, 825u, 345u, 306u, 24725u, 29969u, 74250u, 13468u));
    EXPECT_EQ(VidTimingFor74MHz(14, &t), 0);
    EXPECT_EQ(std::tie(t.HBlank, t.HSyncWidth, t.HBackPorch, t.HFrontPorch),
              std::make_tuple(250u, 1u, 1u, 248u));
    EXPECT_EQ(VidTimingFor74MHz(74, &t), 0);
    EXPECT_EQ(std::tie(t.VActive, t.VBlank, t.VTotal, t.VFrontPorch, t.VSyncWidth, t.VBackPorch),
              std::make_tuple(1080u, 45u, 1125u, 4u, 10u, 31u));
    EXPECT_EQ(t.VActive2 + t.VBlank2 + t.VTotal2 + t.VFrontPorch2 + t.VSyncWidth2 + t.VBackPorch2,
              0u);
    EXPECT_EQ(std::tie(t.FrameRateMilliHz, t.VFieldMark, t.VFieldMark2),
              std::make_tuple(30000u, 2u, 3u));
    EXPECT_EQ(VidTimingFor74MHz(53, &t), 0);
    EXPECT_TRUE(Same(t, Main(53)));
}

// -1 for an alias with a rate, no record, or another clock without totals.
TEST(VidTimingFor74MHz, OtherClockWithoutTotals) {
    for (const auto &[id, stored] : {std::pair{52, 52}, {1, 1}, {33, 0}, {61, 0}}) {
        VidTiming t = Garbage();
        EXPECT_EQ(VidTimingFor74MHz(id, &t), -1) << id;
        EXPECT_TRUE(Same(t, stored != 0 ? Main(stored) : Garbage())) << id;
    }
}

// Retiming an interlaced record merges its fields: ntsc on a line of 3432 pixels.
TEST(VidTimingRetime74, MergesFieldsAndKeepsMarks) {
    VidTiming t = Main(1);
    EXPECT_EQ(VidTimingRetime74(&t, 3432, 525), 0);
    EXPECT_EQ(std::tie(t.HBlank, t.HFrontPorch, t.VActive, t.VBlank, t.VFrontPorch, t.VSyncWidth,
                       t.VBackPorch, t.VActive2, t.VTotal2, t.VFieldMark, t.VFieldMark2),
              std::make_tuple(2712u, 2590u, 480u, 45u, 26u, 3u, 16u, 0u, 0u, 3u, 2u));
    EXPECT_EQ(std::tie(t.LineRateHz, t.FrameRateMilliHz, t.LinePeriodNs, t.FramePeriodUs),
              std::make_tuple(21634u, 41207u, 46222u, 24266u));
}

TEST(VidTimingDeathTest, CallerErrorsAssert) {
    VidTiming t = Main(53);
    EXPECT_DEATH(VidTimingRetime74(&t, 1281, 750), "hTotal >= record->HActive \\+ 2");
    EXPECT_DEATH(VidTimingFind(53, nullptr, &t), "table != nullptr");
    EXPECT_DEATH(VidTimingById(53, nullptr), "record != nullptr");
}

} // namespace
