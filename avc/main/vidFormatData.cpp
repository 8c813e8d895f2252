// Constant tables of the video format names: the name table, the alias table, the progressive map
// and the lists of formats that each system type allows.
#include "avc/main/vidFormatData.h"

#include "Common/OS/tableKeys.h"

namespace vidFormat {

// clang-format off

// Mode names and system names, in search order: a format id answers with the first row that
// qualifies. Flags 1 is a mode name, 2 a system name, 3 both. A name can stand in both spaces with
// different ids ("720p_NTSC" is 52 as a mode name and 43 as a system name).
/* Flags (FMT_ bits), Name, FormatId, Rate (mHz, 0 for the format's own rate) */
constexpr std::array<VidFormatName, kNameRows> VidFormatNameTable = {{
    // Standard definition: rows 0 to 3
    {1,  "ntsc",                1,       0}, // 0
    {3,  "ntsc_NTSC",           1,       0},
    {1,  "pal",                 2,       0},
    {3,  "pal_PAL",             2,       0},
    // Half-width: rows 4 to 7
    {1,  "half-sd-60",          65,      0},
    {1,  "half-sd-30",          63,      0},
    {1,  "half-sd-50",          66,      0},
    {1,  "half-sd-25",          64,      0},
    // 480 and 576 lines: rows 8 to 17
    {1,  "480p",                59,      0},
    {1,  "480p60",              59,      0},
    {1,  "480p59",              59,      0}, // 10
    {1,  "480p30",              59,  29970},
    {1,  "480p29",              59,  29970},
    {3,  "480p_NTSC",           59,      0},
    {1,  "576p",                60,      0},
    {1,  "576p50",              60,      0},
    {1,  "576p25",              60,  25000},
    {3,  "576p_PAL",            60,      0},
    // 720 lines: rows 18 to 33
    {1,  "720p60",              53,      0},
    {1,  "720p59",              52,      0},
    {1,  "720p50",              51,      0}, // 20
    {1,  "720p30",              50,      0},
    {1,  "720p25",              49,      0},
    {1,  "720p_NTSC",           52,      0},
    {1,  "720p_PAL",            51,      0},
    {1,  "1280x720at60",        43,      0},
    {1,  "1280x720at59",        42,      0},
    {1,  "1280x720at50",        41,      0},
    {1,  "1280x720at30",        83,      0},
    {1,  "1280x720at25",        82,      0},
    {3,  "60HZ1280x720_NTSC",   43,      0}, // 30
    {2,  "720p_NTSC",           43,      0},
    {3,  "50HZ1280x720_PAL",    41,      0},
    {2,  "720p_PAL",            41,      0},
    // 1080 lines: rows 34 to 63
    {1,  "1080p60",             58,      0},
    {1,  "1080p59",             57,      0},
    {1,  "1080p50",             56,      0},
    {1,  "1080p30",             55,      0},
    {1,  "1080i60",             74,      0},
    {1,  "1080i30",             74,      0},
    {1,  "1080p25",             54,      0}, // 40
    {1,  "1080i50",             73,      0},
    {1,  "1080i25",             73,      0},
    {1,  "1080p_NTSC",          57,      0},
    {1,  "1080p_PAL",           56,      0},
    {1,  "1080i_NTSC",          74,      0},
    {1,  "1080i_PAL",           73,      0},
    {1,  "1920x1080at60",       77,      0},
    {1,  "1920x1080at59",       76,      0},
    {1,  "1920x1080at50",       75,      0},
    {1,  "1920x1080at60i",      79,      0}, // 50
    {1,  "1920x1080at50i",      78,      0},
    {1,  "1920x1080at30",       81,      0},
    {1,  "1920x1080at25",       80,      0},
    {3,  "60HZ1920x1080P_NTSC", 76,      0},
    {2,  "1080p_NTSC",          76,      0},
    {3,  "50HZ1920x1080P_PAL",  75,      0},
    {2,  "1080p_PAL",           75,      0},
    {3,  "60HZ1920x1080I_NTSC", 79,      0},
    {2,  "1080i_NTSC",          79,      0},
    {3,  "50HZ1920x1080I_PAL",  78,      0}, // 60
    {2,  "1080i_PAL",           78,      0},
    {3,  "30HZ1920x1080P_NTSC", 81,      0},
    {3,  "25HZ1920x1080P_PAL",  80,      0},
    // 960x720 and 1440x1080: rows 64 to 69
    {1,  "960x720at60",         84,      0},
    {1,  "960x720at50",         85,      0},
    {1,  "960x720at30",         86,      0},
    {1,  "960x720at25",         87,      0},
    {1,  "1440x1080at30",       88,      0},
    {1,  "1440x1080at25",       89,      0},
    // 640x480: rows 70 to 83
    {1,  "640x480at25",         4,   25000}, // 70
    {1,  "640x480at30",         4,   29970},
    {1,  "640x480at60",         4,       0},
    {1,  "640x480at72",         5,       0},
    {1,  "640x480at75",         6,       0},
    {1,  "640x480at85",         7,       0},
    {3,  "60HZ640x480_NTSC",    4,       0},
    {3,  "60HZ640x480_PAL",     4,       0},
    {3,  "72HZ640x480_NTSC",    5,       0},
    {3,  "72HZ640x480_PAL",     5,       0},
    {3,  "75HZ640x480_NTSC",    6,       0}, // 80
    {3,  "75HZ640x480_PAL",     6,       0},
    {3,  "85HZ640x480_NTSC",    7,       0},
    {3,  "85HZ640x480_PAL",     7,       0},
    // 800x600: rows 84 to 98
    {1,  "800x600at25",         10,  25000},
    {1,  "800x600at30",         10,  30000},
    {1,  "800x600at50",         9,       0},
    {1,  "800x600at60",         10,      0},
    {1,  "800x600at72",         11,      0},
    {1,  "800x600at75",         12,      0},
    {1,  "800x600at85",         13,      0}, // 90
    {3,  "60HZ800x600_NTSC",    10,      0},
    {3,  "60HZ800x600_PAL",     10,      0},
    {3,  "72HZ800x600_NTSC",    11,      0},
    {3,  "72HZ800x600_PAL",     11,      0},
    {3,  "75HZ800x600_NTSC",    12,      0},
    {3,  "75HZ800x600_PAL",     12,      0},
    {3,  "85HZ800x600_NTSC",    13,      0},
    {3,  "85HZ800x600_PAL",     13,      0},
    // 1024x768: rows 99 to 112
    {1,  "1024x768at25",        14,  25000},
    {1,  "1024x768at30",        14,  30000}, // 100
    {1,  "1024x768at60",        14,      0},
    {1,  "1024x768at70",        15,      0},
    {1,  "1024x768at75",        16,      0},
    {1,  "1024x768at85",        17,      0},
    {3,  "60HZ1024x768_NTSC",   14,      0},
    {3,  "60HZ1024x768_PAL",    14,      0},
    {3,  "70HZ1024x768_NTSC",   15,      0},
    {3,  "70HZ1024x768_PAL",    15,      0},
    {3,  "75HZ1024x768_NTSC",   16,      0},
    {3,  "75HZ1024x768_PAL",    16,      0}, // 110
    {3,  "85HZ1024x768_NTSC",   17,      0},
    {3,  "85HZ1024x768_PAL",    17,      0},
    // 1280x960: rows 113 to 120
    {1,  "1280x960at25",        21,  25000},
    {1,  "1280x960at30",        21,  30000},
    {1,  "1280x960at60",        21,      0},
    {1,  "1280x960at85",        22,      0},
    {3,  "60HZ1280x960_NTSC",   21,      0},
    {3,  "60HZ1280x960_PAL",    21,      0},
    {3,  "85HZ1280x960_NTSC",   22,      0},
    {3,  "85HZ1280x960_PAL",    22,      0}, // 120
    // 1280x1024: rows 121 to 131
    {1,  "1280x1024at25",       23,  25000},
    {1,  "1280x1024at30",       23,  30000},
    {1,  "1280x1024at60",       23,      0},
    {1,  "1280x1024at75",       24,      0},
    {1,  "1280x1024at85",       25,      0},
    {3,  "60HZ1280x1024_NTSC",  23,      0},
    {3,  "60HZ1280x1024_PAL",   23,      0},
    {3,  "75HZ1280x1024_NTSC",  24,      0},
    {3,  "75HZ1280x1024_PAL",   24,      0},
    {3,  "85HZ1280x1024_NTSC",  25,      0}, // 130
    {3,  "85HZ1280x1024_PAL",   25,      0},
    // 1400x1050: rows 132 to 134
    {1,  "1400x1050at60",       68,      0},
    {3,  "60HZ1400x1050_NTSC",  68,      0},
    {3,  "60HZ1400x1050_PAL",   68,      0},
    // 1680x1050: rows 135 to 143
    {1,  "1680x1050at25",       30,  25000},
    {1,  "1680x1050at30",       30,  30000},
    {1,  "1680x1050at60",       30,      0},
    {1,  "1680x1050at75",       31,      0},
    {1,  "1680x1050at85",       32,      0},
    {1,  "1680x1050at60rb",     72,      0}, // 140
    {1,  "1680x1050at60r",      26,      0},
    {3,  "60HZ1680x1050_NTSC",  26,      0},
    {3,  "60HZ1680x1050_PAL",   26,      0},
    // 1600x1200: rows 144 to 160
    {1,  "1600x1200at25",       35,  25000},
    {1,  "1600x1200at30",       35,  30000},
    {1,  "1600x1200at60",       35,      0},
    {1,  "1600x1200at65",       36,      0},
    {1,  "1600x1200at70",       37,      0},
    {1,  "1600x1200at75",       38,      0},
    {1,  "1600x1200at85",       40,      0}, // 150
    {3,  "60HZ1600x1200_NTSC",  35,      0},
    {3,  "60HZ1600x1200_PAL",   35,      0},
    {3,  "65HZ1600x1200_NTSC",  36,      0},
    {3,  "65HZ1600x1200_PAL",   36,      0},
    {3,  "70HZ1600x1200_NTSC",  37,      0},
    {3,  "70HZ1600x1200_PAL",   37,      0},
    {3,  "75HZ1600x1200_NTSC",  38,      0},
    {3,  "75HZ1600x1200_PAL",   38,      0},
    {3,  "85HZ1600x1200_NTSC",  40,      0},
    {3,  "85HZ1600x1200_PAL",   40,      0}, // 160
    // Two formats of their own: rows 161 to 162
    {1,  "auto-ntsc-pal",       61,      0},
    {1,  "12x7at60-no-csc",     62,      0},
}};

// An alias with a rate asks for its target at that rate; one with rate 0 is a plain synonym.
/* FormatId (folded), TargetId (stands for), Rate (mHz) */
constexpr std::array<VidFormatAlias, kAliasRows> VidFormatAliasTable = {{
    {62, 53,     0}, // "12x7at60-no-csc" runs on the record of "720p60"
    {28, 30, 25000}, // the 1680x1050 record at 25 Hz
    {27, 30, 30000}, // the 1680x1050 record at 30 Hz
    {29, 30, 50000}, // the 1680x1050 record at 50 Hz
    {34, 35, 25000}, // the 1600x1200 record at 25 Hz
    {33, 35, 30000}, // the 1600x1200 record at 30 Hz
}};

// The 1920x1080 interlaced formats lead to "1080p30" and "1080p25", also those of the
// WIDTHxHEIGHTatREFRESH names.
/* FormatId (interlaced), ProgressiveId */
constexpr std::array<VidFormatProgressive, kProgressiveRows> VidFormatProgressiveMap = {{
    {1,  59}, // "ntsc"           -> "480p"
    {2,  60}, // "pal"            -> "576p"
    {74, 55}, // "1080i60"        -> "1080p30"
    {73, 54}, // "1080i50"        -> "1080p25"
    {79, 55}, // "1920x1080at60i" -> "1080p30"
    {78, 54}, // "1920x1080at50i" -> "1080p25"
}};

namespace {

// List A, ten ids a line.
constexpr auto allowedListA = std::to_array<int32_t>({
    1,  2,  59, 60, 49, 50, 51, 52, 53, 41,
    42, 43, 73, 74, 54, 55, 4,  5,  6,  7,
    10, 11, 12, 13, 14, 15, 16, 17, 23, 61,
});

// List B, ten ids a line.
constexpr auto allowedListB = std::to_array<int32_t>({
    1,  2,  59, 60, 49, 50, 51, 52, 53, 41,
    42, 43, 73, 74, 78, 79, 54, 55, 56, 57,
    58, 75, 76, 77, 4,  5,  6,  7,  10, 11,
    12, 13, 14, 15, 16, 17, 23, 35,
});

// List C, ten ids a line.
constexpr auto allowedListC = std::to_array<int32_t>({
    1,  2,  59, 60, 49, 50, 51, 52, 53, 41,
    42, 43, 73, 74, 54, 55, 75, 76, 77, 4,
    5,  6,  7,  10, 11, 12, 13, 14, 15, 16,
    17, 21, 22, 23, 24, 25, 30, 35,
});

// List D, ten ids a line.
constexpr auto allowedListD = std::to_array<int32_t>({
    1,  2,  59, 60, 49, 50, 51, 52, 53, 41,
    42, 43, 73, 74, 78, 79, 56, 57, 58, 75,
    76, 77, 4,  5,  6,  7,  10, 11, 12, 13,
    14, 15, 16, 17, 21, 22, 23, 24, 25, 30,
    35, 68, 26,
});

// List E, ten ids a line.
constexpr auto allowedListE = std::to_array<int32_t>({
    1,  2,  59, 60, 49, 50, 51, 52, 53, 41,
    42, 43, 73, 74, 54, 55, 80, 81, 75, 76,
    77, 4,  5,  6,  7,  10, 11, 12, 13, 14,
    15, 16, 17, 21, 22, 23, 24, 25, 30, 35,
    72,
});

constexpr VidFormatList ListOf(const int32_t *ids, std::size_t count) {
    return VidFormatList{static_cast<int32_t>(count), ids};
}

constexpr VidFormatList listA = ListOf(allowedListA.data(), allowedListA.size());
constexpr VidFormatList listB = ListOf(allowedListB.data(), allowedListB.size());
constexpr VidFormatList listC = ListOf(allowedListC.data(), allowedListC.size());
constexpr VidFormatList listD = ListOf(allowedListD.data(), allowedListD.size());
constexpr VidFormatList listE = ListOf(allowedListE.data(), allowedListE.size());

} // namespace

// No row for SysType 14: such a type allows no list.
/* Type (SysType), First (selector 0), Second (any other selector) */
constexpr std::array<VidFormatAllowedRow, kAllowedRows> VidFormatAllowedTable = {{
    {16, listA, listB},
    {17, listA, listB},
    {18, listC, listD},
    {20, listC, listD},
    {21, listC, listD},
    {22, listE, listD},
    {23, listC, listD},
}};

// clang-format on

// ---- Checks at compile time ----

namespace {

constexpr std::size_t CountNames(uint32_t flags) {
    std::size_t count = 0;
    for (const auto &row : VidFormatNameTable) {
        count += (row.Flags == flags) ? 1 : 0;
    }
    return count;
}
static_assert(CountNames(1) + CountNames(2) + CountNames(3) == kNameRows, "no other Flags");

// 17 rows have a rate, and all of them are mode names only.
constexpr bool RatesOnModeNamesOnly() {
    std::size_t withRate = 0;
    for (const auto &row : VidFormatNameTable) {
        if (row.Rate != 0) {
            ++withRate;
            if (row.Flags != FMT_MODE_NAME) {
                return false;
            }
        }
    }
    return withRate == 17;
}
static_assert(RatesOnModeNamesOnly());

// Within one name space no name occurs twice, also when case is ignored.
constexpr bool NamesUniqueIn(uint32_t space) {
    for (std::size_t i = 0; i < kNameRows; ++i) {
        for (std::size_t j = i + 1; j < kNameRows; ++j) {
            const auto &a = VidFormatNameTable[i];
            const auto &b = VidFormatNameTable[j];
            if ((a.Flags & space) != 0 && (b.Flags & space) != 0 &&
                TextEqualNoCase(a.Name, b.Name)) {
                return false;
            }
        }
    }
    return true;
}
static_assert(NamesUniqueIn(FMT_MODE_NAME));
static_assert(NamesUniqueIn(FMT_SYSTEM_NAME));

constexpr bool AliasesWellFormed() {
    for (std::size_t i = 0; i < kAliasRows; ++i) {
        for (std::size_t j = i + 1; j < kAliasRows; ++j) {
            if (VidFormatAliasTable[i].FormatId == VidFormatAliasTable[j].FormatId) {
                return false;
            }
        }
        // One step only: a target is never folded again.
        for (const auto &other : VidFormatAliasTable) {
            if (other.FormatId == VidFormatAliasTable[i].TargetId) {
                return false;
            }
        }
    }
    return true;
}
static_assert(AliasesWellFormed());

static_assert(TableKeysUnique(VidFormatProgressiveMap,
                              [](const VidFormatProgressive &r) { return r.FormatId; }));

// Ids of an allowed list: positive, each once.
template <std::size_t N> constexpr bool IdsUnique(const std::array<int32_t, N> &ids) {
    for (int32_t id : ids)
        if (id <= 0)
            return false;
    return TableKeysUnique(ids, [](int32_t id) { return id; });
}
static_assert(IdsUnique(allowedListA) && IdsUnique(allowedListB) && IdsUnique(allowedListC) &&
              IdsUnique(allowedListD) && IdsUnique(allowedListE));

static_assert(TableKeysUnique(VidFormatAllowedTable,
                              [](const VidFormatAllowedRow &r) { return r.Type; }));

} // namespace

} // namespace vidFormat
