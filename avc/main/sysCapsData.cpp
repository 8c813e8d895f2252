// Capability data: the category tables of every table set, the HDAM board override blocks, the
// connection-rate blocks, and the selection of a table set by SysType.
//
// The codes of MainDspType, HdamDspType, HdamFpgaType, HdamFpgaVendor, FpgaLoadFamily and
// h320VantrelType, the bits of ViopCamCtrl, Ths7303CamCtrl and BoardRevsWithRtc, and the numbers
// of FanConfig belong to the programs that read those keys; they are stored and handed on as given.
#include "avc/main/sysCapsData.h"

#include "Common/OS/osAssert.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace sysCaps {
namespace {

// Rows point at these three texts for their format.
constexpr char kInt[]  = SYS_CAPS_FMT_INT;
constexpr char kText[] = SYS_CAPS_FMT_TEXT;

constexpr SysCapsValue Num(intptr_t number) {
    return SysCapsValue{.Number = number};
}

constexpr SysCapsValue Text(const char *text) {
    return SysCapsValue{.Text = text};
}

// ---- Compile-time checks over rows ----

constexpr bool SameText(const char *a, const char *b) {
    for (; *a != '\0' && *a == *b; ++a, ++b) {
    }
    return *a == *b;
}

constexpr bool SameTextNoCase(const char *a, const char *b) {
    auto lower = [](char c) {
        return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c;
    };
    for (; *a != '\0' && lower(*a) == lower(*b); ++a, ++b) {
    }
    return lower(*a) == lower(*b);
}

// Rows 0 to N - 2 have a key, the last row has none.
template <std::size_t N> constexpr bool IsClosed(const std::array<SysCapsRow, N> &rows) {
    for (std::size_t i = 0; i + 1 < N; ++i) {
        if (rows[i].Key == nullptr) {
            return false;
        }
    }
    return rows[N - 1].Key == nullptr;
}

template <std::size_t N>
constexpr const SysCapsRow *FindRow(const std::array<SysCapsRow, N> &rows, const char *key,
                                    int32_t index) {
    for (std::size_t i = 0; i + 1 < N; ++i) {
        if (SameText(rows[i].Key, key) && rows[i].Index == index) {
            return &rows[i];
        }
    }
    return nullptr;
}

// Closed; no two rows share key (ignoring case) and index; every format is " %d " or a " %s "
// with a text behind it.
template <std::size_t N> constexpr bool TableIsSound(const std::array<SysCapsRow, N> &rows) {
    if (!IsClosed(rows)) {
        return false;
    }
    for (std::size_t i = 0; i + 1 < N; ++i) {
        const SysCapsRow &row = rows[i];
        const bool isInt      = SameText(row.Format, kInt);
        const bool isText     = SameText(row.Format, kText);
        if (!(isInt || (isText && row.Value.Text != nullptr)) || row.Index < 0) {
            return false;
        }
        for (std::size_t j = i + 1; j + 1 < N; ++j) {
            if (SameTextNoCase(row.Key, rows[j].Key) && row.Index == rows[j].Index) {
                return false;
            }
        }
    }
    return true;
}

// The list key has exactly the indexes 0 to length - 1.
template <std::size_t N>
constexpr bool ListHasLength(const std::array<SysCapsRow, N> &rows, const char *listKey,
                             intptr_t length) {
    intptr_t found = 0;
    for (std::size_t i = 0; i + 1 < N; ++i) {
        if (SameText(rows[i].Key, listKey)) {
            if (rows[i].Index >= length) {
                return false;
            }
            ++found;
        }
    }
    return found == length; // indexes are unique and below length: all of them are there
}

// The list key has as many rows as the count key says (none when the count key has no row).
template <std::size_t N>
constexpr bool ListMatchesCount(const std::array<SysCapsRow, N> &rows, const char *countKey,
                                const char *listKey) {
    const SysCapsRow *count = FindRow(rows, countKey, 0);
    return ListHasLength(rows, listKey, count == nullptr ? 0 : count->Value.Number);
}

template <std::size_t NV, std::size_t NA, std::size_t NC, std::size_t NH>
constexpr bool
SetIsSound(const std::array<SysCapsRow, NV> &video, const std::array<SysCapsRow, NA> &audio,
           const std::array<SysCapsRow, NC> &comm, const std::array<SysCapsRow, NH> &hardware) {
    const SysCapsRow *firstAudio = FindRow(audio, "IpcNumFirstAudioDsp", 0);
    const SysCapsRow *audioCnt   = FindRow(audio, "AudioDspCnt", 0);
    const SysCapsRow *firstVideo = FindRow(video, "IpcNumFirstMainVidDsp", 0);
    return TableIsSound(video) && TableIsSound(audio) && TableIsSound(comm) &&
           TableIsSound(hardware) && ListMatchesCount(video, "MainVidDspCnt", "MainVidDspPciBus") &&
           ListMatchesCount(video, "MainVidDspCnt", "MainVidDspPciDev") &&
           ListMatchesCount(audio, "AudioDspCnt", "AudioDspPciBus") &&
           ListMatchesCount(audio, "AudioDspCnt", "AudioDspPciDev") &&
           ListMatchesCount(hardware, "numMonitors", "monitorPresent") &&
           ListMatchesCount(hardware, "numCameras", "cameraPresent") &&
           ListHasLength(comm, "connRate", 8) && firstAudio != nullptr &&
           firstAudio->Value.Number == 1 && audioCnt != nullptr && firstVideo != nullptr &&
           firstVideo->Value.Number == 1 + audioCnt->Value.Number;
}

template <std::size_t N> constexpr bool BlockIsSound(const std::array<SysCapsRow, N> &rows) {
    return TableIsSound(rows);
}

// Eight connRate rows with the steps 0 to 7 in order.
template <std::size_t N>
constexpr bool ConnRateBlockIsSound(const std::array<SysCapsRow, N> &rows) {
    if (N != 8 + 1) {
        return false;
    }
    for (std::size_t i = 0; i < 8; ++i) {
        if (!SameText(rows[i].Key, "connRate") || rows[i].Index != static_cast<int32_t>(i)) {
            return false;
        }
    }
    return true;
}

// ---- Texts of the text rows, each given once; the rows refer to them ----

// clang-format off
// Gains of one PixelWorks device (the number in the name): six numbers, comma and blank between.
/* name, text,                                                     table sets */
constexpr char kCompGains0[]    = "67, 63, 64, -1, -1, -1";          // 18, 20, 21, 22, 23
constexpr char kSvideoGains0[]  = "-1, -1, -1, -1, -1, -1";          // 18, 20, 21, 22, 23
constexpr char kCompGains1[]    = "67, 64, 66, -1, -1, -1";          // 18, 23
constexpr char kSvideoGains1[]  = "-1, -1, -1, -1, -1, -1";          // 18, 23
constexpr char kVgaGains2[]     = "82, 84, 82, 127, 123, 122";       // 18, 20, 21, 22, 23

// FanConfig of one fan index (the number after the set): a first number, a count N, N pairs, a
// count M, M pairs; a blank may follow a comma. kFanConfig16_* are in set 16, kFanConfig18_* in
// sets 18, 20, 21 and 23, kFanConfig22_* in set 22.
/* name,                      text */
constexpr char kFanConfig16_1[] = "16,4,5,144,5,146,4,148,4,150,4,40,250,50,192,60,112,70,0";
constexpr char kFanConfig16_2[] = "16,4,5,144,5,146,4,148,4,150,4,40,128,50,106,60,53,70,0";
constexpr char kFanConfig18_0[] = "16,4,5,144,5,146,2,148,3,150,3,66,96,70,57,75,32";
constexpr char kFanConfig18_1[] = "16,4,5,144,5,146,2,148,3,150,1,0,128";
constexpr char kFanConfig22_0[] = "16,3, 5,148, 3,150, 1,144, 1, 0,96";
constexpr char kFanConfig22_1[] = "16,3, 5,148, 3,150, 0,144, 1, 0,96";
// clang-format on

// Reads the comma-separated decimal numbers of a text into `out`; answers how many, or -1 for any
// other form. With `blankRequired` a blank follows every comma; with `blankOptional` it may.
constexpr int ParseNumbers(const char *text, bool blankOptional, bool blankRequired, int *out,
                           int capacity) {
    int count = 0;
    for (;;) {
        bool negative = false;
        if (*text == '-') {
            negative = true;
            ++text;
        }
        if (*text < '0' || *text > '9' || count == capacity) {
            return -1;
        }
        int number = 0;
        for (; *text >= '0' && *text <= '9'; ++text) {
            number = number * 10 + (*text - '0');
        }
        out[count++] = negative ? -number : number;
        if (*text == '\0') {
            return count;
        }
        if (*text++ != ',') {
            return -1;
        }
        if (*text == ' ') {
            if (!blankOptional && !blankRequired) {
                return -1;
            }
            ++text;
        } else if (blankRequired) {
            return -1;
        }
    }
}

// Six numbers separated by a comma and a blank.
constexpr bool GainsAreSound(const char *text) {
    int numbers[8] = {};
    return ParseNumbers(text, false, true, numbers, 8) == 6;
}

// First number 16; N and N pairs; M and M pairs, whose first numbers rise and second numbers fall.
constexpr bool FanConfigIsSound(const char *text) {
    int v[64]       = {};
    const int count = ParseNumbers(text, true, false, v, 64);
    if (count < 3 || v[0] != 16 || v[1] < 0 || 2 + 2 * v[1] >= count) {
        return false;
    }
    const int m     = v[2 + 2 * v[1]];
    const int first = 3 + 2 * v[1];
    if (m < 0 || first + 2 * m != count) {
        return false;
    }
    for (int i = 1; i < m; ++i) {
        const int prev = first + 2 * (i - 1);
        const int cur  = first + 2 * i;
        if (v[cur] <= v[prev] || v[cur + 1] >= v[prev + 1]) {
            return false;
        }
    }
    return true;
}

static_assert(GainsAreSound(kCompGains0) && GainsAreSound(kSvideoGains0) &&
              GainsAreSound(kCompGains1) && GainsAreSound(kSvideoGains1) &&
              GainsAreSound(kVgaGains2));
static_assert(FanConfigIsSound(kFanConfig16_1) && FanConfigIsSound(kFanConfig16_2) &&
              FanConfigIsSound(kFanConfig18_0) && FanConfigIsSound(kFanConfig18_1) &&
              FanConfigIsSound(kFanConfig22_0) && FanConfigIsSound(kFanConfig22_1));
static_assert(!FanConfigIsSound("16,1,5,144,2,0,96,1,128") && !GainsAreSound("1,2,3,4,5,6"));

// clang-format off

// ---- Category 0, "video" ----

// Set 14, category 0: 51 rows.
/* Key, Value, Index (list position; PixelWorks device for the gains), Format */
constexpr std::array<SysCapsRow, 51 + 1> kVideo14 = {{
    {"HdamBoardType",         Num(0),   0, kInt},
    {"HdamFpgaType",          Num(1),   0, kInt},
    {"HdamFpgaVendor",        Num(0),   0, kInt},
    {"HdamDspType",           Num(0),   0, kInt},
    {"IpcNumFirstHdamDsp",    Num(0),   0, kInt},
    {"HdamDspCnt",            Num(0),   0, kInt},
    {"HdamDspPciBus",         Num(0),   0, kInt},
    {"HdamDspPciBus",         Num(0),   1, kInt},
    {"HdamDspPciBus",         Num(0),   2, kInt},
    {"HdamDspPciBus",         Num(0),   3, kInt},
    // 10
    {"HdamDspPciBus",         Num(0),   4, kInt},
    {"HdamDspPciBus",         Num(0),   5, kInt},
    {"HdamDspPciBus",         Num(0),   6, kInt},
    {"HdamDspPciBus",         Num(0),   7, kInt},
    {"HdamDspPciDev",         Num(0),   0, kInt},
    {"HdamDspPciDev",         Num(0),   1, kInt},
    {"HdamDspPciDev",         Num(0),   2, kInt},
    {"HdamDspPciDev",         Num(0),   3, kInt},
    {"HdamDspPciDev",         Num(0),   4, kInt},
    {"HdamDspPciDev",         Num(0),   5, kInt},
    // 20
    {"HdamDspPciDev",         Num(0),   6, kInt},
    {"HdamDspPciDev",         Num(0),   7, kInt},
    {"IpcNumFirstMainVidDsp", Num(4),   0, kInt},
    {"MainVidDspCnt",         Num(9),   0, kInt},
    {"MainVidDspPciBus",      Num(1),   0, kInt},
    {"MainVidDspPciBus",      Num(1),   1, kInt},
    {"MainVidDspPciBus",      Num(1),   2, kInt},
    {"MainVidDspPciBus",      Num(1),   3, kInt},
    {"MainVidDspPciBus",      Num(2),   4, kInt},
    {"MainVidDspPciBus",      Num(2),   5, kInt},
    // 30
    {"MainVidDspPciBus",      Num(2),   6, kInt},
    {"MainVidDspPciBus",      Num(2),   7, kInt},
    {"MainVidDspPciBus",      Num(2),   8, kInt},
    {"MainVidDspPciDev",      Num(0),   0, kInt},
    {"MainVidDspPciDev",      Num(1),   1, kInt},
    {"MainVidDspPciDev",      Num(2),   2, kInt},
    {"MainVidDspPciDev",      Num(3),   3, kInt},
    {"MainVidDspPciDev",      Num(0),   4, kInt},
    {"MainVidDspPciDev",      Num(1),   5, kInt},
    {"MainVidDspPciDev",      Num(2),   6, kInt},
    // 40
    {"MainVidDspPciDev",      Num(3),   7, kInt},
    {"MainVidDspPciDev",      Num(4),   8, kInt},
    {"MainDspType",           Num(1),   0, kInt},
    {"HwHasMgts",             Num(0),   0, kInt},
    {"HwHasFeedbackClkMon3",  Num(0),   0, kInt},
    {"HwNumPixelWorks",       Num(0),   0, kInt},
    {"HwNumGennums",          Num(0),   0, kInt},
    {"HwGennumCtrlSerial",    Num(1),   0, kInt},
    {"VidCrossbarHasOverlay", Num(1),   0, kInt},
    {"ViopCamCtrl",           Num(254), 0, kInt},
    // 50
    {"Ths7303CamCtrl",        Num(0),   0, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 16 (types 16 and 17), category 0: 45 rows.
/* Key, Value, Index (list position; PixelWorks device for the gains), Format */
constexpr std::array<SysCapsRow, 45 + 1> kVideo16 = {{
    {"HdamBoardType",         Num(0),  0, kInt},
    {"HdamFpgaType",          Num(1),  0, kInt},
    {"HdamFpgaVendor",        Num(0),  0, kInt},
    {"HdamDspType",           Num(0),  0, kInt},
    {"IpcNumFirstHdamDsp",    Num(0),  0, kInt},
    {"HdamDspCnt",            Num(0),  0, kInt},
    {"HdamDspPciBus",         Num(0),  0, kInt},
    {"HdamDspPciBus",         Num(0),  1, kInt},
    {"HdamDspPciBus",         Num(0),  2, kInt},
    {"HdamDspPciBus",         Num(0),  3, kInt},
    // 10
    {"HdamDspPciBus",         Num(0),  4, kInt},
    {"HdamDspPciBus",         Num(0),  5, kInt},
    {"HdamDspPciBus",         Num(0),  6, kInt},
    {"HdamDspPciBus",         Num(0),  7, kInt},
    {"HdamDspPciDev",         Num(0),  0, kInt},
    {"HdamDspPciDev",         Num(0),  1, kInt},
    {"HdamDspPciDev",         Num(0),  2, kInt},
    {"HdamDspPciDev",         Num(0),  3, kInt},
    {"HdamDspPciDev",         Num(0),  4, kInt},
    {"HdamDspPciDev",         Num(0),  5, kInt},
    // 20
    {"HdamDspPciDev",         Num(0),  6, kInt},
    {"HdamDspPciDev",         Num(0),  7, kInt},
    {"IpcNumFirstMainVidDsp", Num(3),  0, kInt},
    {"MainVidDspCnt",         Num(6),  0, kInt},
    {"MainVidDspPciBus",      Num(1),  0, kInt},
    {"MainVidDspPciBus",      Num(1),  1, kInt},
    {"MainVidDspPciBus",      Num(1),  2, kInt},
    {"MainVidDspPciBus",      Num(2),  3, kInt},
    {"MainVidDspPciBus",      Num(2),  4, kInt},
    {"MainVidDspPciBus",      Num(2),  5, kInt},
    // 30
    {"MainVidDspPciDev",      Num(0),  0, kInt},
    {"MainVidDspPciDev",      Num(1),  1, kInt},
    {"MainVidDspPciDev",      Num(2),  2, kInt},
    {"MainVidDspPciDev",      Num(0),  3, kInt},
    {"MainVidDspPciDev",      Num(1),  4, kInt},
    {"MainVidDspPciDev",      Num(2),  5, kInt},
    {"MainDspType",           Num(1),  0, kInt},
    {"HwHasMgts",             Num(1),  0, kInt},
    {"HwHasFeedbackClkMon3",  Num(0),  0, kInt},
    {"HwNumPixelWorks",       Num(0),  0, kInt},
    // 40
    {"HwNumGennums",          Num(0),  0, kInt},
    {"HwGennumCtrlSerial",    Num(1),  0, kInt},
    {"VidCrossbarHasOverlay", Num(1),  0, kInt},
    {"ViopCamCtrl",           Num(62), 0, kInt},
    {"Ths7303CamCtrl",        Num(0),  0, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 18, category 0: 46 rows.
/* Key, Value, Index (list position; PixelWorks device for the gains), Format */
constexpr std::array<SysCapsRow, 46 + 1> kVideo18 = {{
    {"HdamBoardType",         Num(0),              0, kInt},
    {"HdamFpgaType",          Num(1),              0, kInt},
    {"HdamFpgaVendor",        Num(0),              0, kInt},
    {"HdamDspType",           Num(0),              0, kInt},
    {"IpcNumFirstHdamDsp",    Num(0),              0, kInt},
    {"HdamDspCnt",            Num(0),              0, kInt},
    {"HdamDspPciBus",         Num(0),              0, kInt},
    {"HdamDspPciBus",         Num(0),              1, kInt},
    {"HdamDspPciBus",         Num(0),              2, kInt},
    {"HdamDspPciBus",         Num(0),              3, kInt},
    // 10
    {"HdamDspPciBus",         Num(0),              4, kInt},
    {"HdamDspPciBus",         Num(0),              5, kInt},
    {"HdamDspPciBus",         Num(0),              6, kInt},
    {"HdamDspPciBus",         Num(0),              7, kInt},
    {"HdamDspPciDev",         Num(0),              0, kInt},
    {"HdamDspPciDev",         Num(0),              1, kInt},
    {"HdamDspPciDev",         Num(0),              2, kInt},
    {"HdamDspPciDev",         Num(0),              3, kInt},
    {"HdamDspPciDev",         Num(0),              4, kInt},
    {"HdamDspPciDev",         Num(0),              5, kInt},
    // 20
    {"HdamDspPciDev",         Num(0),              6, kInt},
    {"HdamDspPciDev",         Num(0),              7, kInt},
    {"IpcNumFirstMainVidDsp", Num(2),              0, kInt},
    {"MainVidDspCnt",         Num(4),              0, kInt},
    {"MainVidDspPciBus",      Num(1),              0, kInt},
    {"MainVidDspPciBus",      Num(1),              1, kInt},
    {"MainVidDspPciBus",      Num(1),              2, kInt},
    {"MainVidDspPciBus",      Num(1),              3, kInt},
    {"MainVidDspPciDev",      Num(0),              0, kInt},
    {"MainVidDspPciDev",      Num(1),              1, kInt},
    // 30
    {"MainVidDspPciDev",      Num(2),              2, kInt},
    {"MainVidDspPciDev",      Num(3),              3, kInt},
    {"MainDspType",           Num(1),              0, kInt},
    {"HwHasMgts",             Num(0),              0, kInt},
    {"HwHasFeedbackClkMon3",  Num(1),              0, kInt},
    {"HwNumPixelWorks",       Num(3),              0, kInt},
    {"HwNumGennums",          Num(2),              0, kInt},
    {"HwGennumCtrlSerial",    Num(0),              0, kInt},
    {"VidCrossbarHasOverlay", Num(0),              0, kInt},
    {"ViopCamCtrl",           Num(0),              0, kInt},
    // 40
    {"Ths7303CamCtrl",        Num(6),              0, kInt},
    {"CompGains",             Text(kCompGains0),   0, kText},
    {"SvideoGains",           Text(kSvideoGains0), 0, kText},
    {"CompGains",             Text(kCompGains1),   1, kText},
    {"SvideoGains",           Text(kSvideoGains1), 1, kText},
    {"VGAGains",              Text(kVgaGains2),    2, kText},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 20, category 0: 44 rows.
/* Key, Value, Index (list position; PixelWorks device for the gains), Format */
constexpr std::array<SysCapsRow, 44 + 1> kVideo20 = {{
    {"HdamBoardType",         Num(0),              0, kInt},
    {"HdamFpgaType",          Num(1),              0, kInt},
    {"HdamFpgaVendor",        Num(0),              0, kInt},
    {"HdamDspType",           Num(0),              0, kInt},
    {"IpcNumFirstHdamDsp",    Num(0),              0, kInt},
    {"HdamDspCnt",            Num(0),              0, kInt},
    {"HdamDspPciBus",         Num(0),              0, kInt},
    {"HdamDspPciBus",         Num(0),              1, kInt},
    {"HdamDspPciBus",         Num(0),              2, kInt},
    {"HdamDspPciBus",         Num(0),              3, kInt},
    // 10
    {"HdamDspPciBus",         Num(0),              4, kInt},
    {"HdamDspPciBus",         Num(0),              5, kInt},
    {"HdamDspPciBus",         Num(0),              6, kInt},
    {"HdamDspPciBus",         Num(0),              7, kInt},
    {"HdamDspPciDev",         Num(0),              0, kInt},
    {"HdamDspPciDev",         Num(0),              1, kInt},
    {"HdamDspPciDev",         Num(0),              2, kInt},
    {"HdamDspPciDev",         Num(0),              3, kInt},
    {"HdamDspPciDev",         Num(0),              4, kInt},
    {"HdamDspPciDev",         Num(0),              5, kInt},
    // 20
    {"HdamDspPciDev",         Num(0),              6, kInt},
    {"HdamDspPciDev",         Num(0),              7, kInt},
    {"IpcNumFirstMainVidDsp", Num(2),              0, kInt},
    {"MainVidDspCnt",         Num(4),              0, kInt},
    {"MainVidDspPciBus",      Num(1),              0, kInt},
    {"MainVidDspPciBus",      Num(1),              1, kInt},
    {"MainVidDspPciBus",      Num(1),              2, kInt},
    {"MainVidDspPciBus",      Num(1),              3, kInt},
    {"MainVidDspPciDev",      Num(0),              0, kInt},
    {"MainVidDspPciDev",      Num(1),              1, kInt},
    // 30
    {"MainVidDspPciDev",      Num(2),              2, kInt},
    {"MainVidDspPciDev",      Num(3),              3, kInt},
    {"MainDspType",           Num(1),              0, kInt},
    {"HwHasMgts",             Num(0),              0, kInt},
    {"HwHasFeedbackClkMon3",  Num(0),              0, kInt},
    {"HwNumPixelWorks",       Num(2),              0, kInt},
    {"HwNumGennums",          Num(1),              0, kInt},
    {"HwGennumCtrlSerial",    Num(0),              0, kInt},
    {"VidCrossbarHasOverlay", Num(0),              0, kInt},
    {"ViopCamCtrl",           Num(0),              0, kInt},
    // 40
    {"Ths7303CamCtrl",        Num(2),              0, kInt},
    {"CompGains",             Text(kCompGains0),   0, kText},
    {"SvideoGains",           Text(kSvideoGains0), 0, kText},
    {"VGAGains",              Text(kVgaGains2),    2, kText},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 21, category 0: 44 rows.
/* Key, Value, Index (list position; PixelWorks device for the gains), Format */
constexpr std::array<SysCapsRow, 44 + 1> kVideo21 = {{
    {"HdamBoardType",         Num(0),              0, kInt},
    {"HdamFpgaType",          Num(1),              0, kInt},
    {"HdamFpgaVendor",        Num(0),              0, kInt},
    {"HdamDspType",           Num(0),              0, kInt},
    {"IpcNumFirstHdamDsp",    Num(0),              0, kInt},
    {"HdamDspCnt",            Num(0),              0, kInt},
    {"HdamDspPciBus",         Num(0),              0, kInt},
    {"HdamDspPciBus",         Num(0),              1, kInt},
    {"HdamDspPciBus",         Num(0),              2, kInt},
    {"HdamDspPciBus",         Num(0),              3, kInt},
    // 10
    {"HdamDspPciBus",         Num(0),              4, kInt},
    {"HdamDspPciBus",         Num(0),              5, kInt},
    {"HdamDspPciBus",         Num(0),              6, kInt},
    {"HdamDspPciBus",         Num(0),              7, kInt},
    {"HdamDspPciDev",         Num(0),              0, kInt},
    {"HdamDspPciDev",         Num(0),              1, kInt},
    {"HdamDspPciDev",         Num(0),              2, kInt},
    {"HdamDspPciDev",         Num(0),              3, kInt},
    {"HdamDspPciDev",         Num(0),              4, kInt},
    {"HdamDspPciDev",         Num(0),              5, kInt},
    // 20
    {"HdamDspPciDev",         Num(0),              6, kInt},
    {"HdamDspPciDev",         Num(0),              7, kInt},
    {"IpcNumFirstMainVidDsp", Num(2),              0, kInt},
    {"MainVidDspCnt",         Num(4),              0, kInt},
    {"MainVidDspPciBus",      Num(1),              0, kInt},
    {"MainVidDspPciBus",      Num(1),              1, kInt},
    {"MainVidDspPciBus",      Num(1),              2, kInt},
    {"MainVidDspPciBus",      Num(1),              3, kInt},
    {"MainVidDspPciDev",      Num(0),              0, kInt},
    {"MainVidDspPciDev",      Num(1),              1, kInt},
    // 30
    {"MainVidDspPciDev",      Num(2),              2, kInt},
    {"MainVidDspPciDev",      Num(3),              3, kInt},
    {"MainDspType",           Num(1),              0, kInt},
    {"HwHasMgts",             Num(0),              0, kInt},
    {"HwHasFeedbackClkMon3",  Num(1),              0, kInt},
    {"HwNumPixelWorks",       Num(2),              0, kInt},
    {"HwNumGennums",          Num(2),              0, kInt},
    {"HwGennumCtrlSerial",    Num(0),              0, kInt},
    {"VidCrossbarHasOverlay", Num(0),              0, kInt},
    {"ViopCamCtrl",           Num(0),              0, kInt},
    // 40
    {"Ths7303CamCtrl",        Num(2),              0, kInt},
    {"CompGains",             Text(kCompGains0),   0, kText},
    {"SvideoGains",           Text(kSvideoGains0), 0, kText},
    {"VGAGains",              Text(kVgaGains2),    2, kText},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 22, category 0: 40 rows.
/* Key, Value, Index (list position; PixelWorks device for the gains), Format */
constexpr std::array<SysCapsRow, 40 + 1> kVideo22 = {{
    {"HdamBoardType",         Num(0),              0, kInt},
    {"HdamFpgaType",          Num(1),              0, kInt},
    {"HdamFpgaVendor",        Num(0),              0, kInt},
    {"HdamDspType",           Num(0),              0, kInt},
    {"IpcNumFirstHdamDsp",    Num(0),              0, kInt},
    {"HdamDspCnt",            Num(0),              0, kInt},
    {"HdamDspPciBus",         Num(0),              0, kInt},
    {"HdamDspPciBus",         Num(0),              1, kInt},
    {"HdamDspPciBus",         Num(0),              2, kInt},
    {"HdamDspPciBus",         Num(0),              3, kInt},
    // 10
    {"HdamDspPciBus",         Num(0),              4, kInt},
    {"HdamDspPciBus",         Num(0),              5, kInt},
    {"HdamDspPciBus",         Num(0),              6, kInt},
    {"HdamDspPciBus",         Num(0),              7, kInt},
    {"HdamDspPciDev",         Num(0),              0, kInt},
    {"HdamDspPciDev",         Num(0),              1, kInt},
    {"HdamDspPciDev",         Num(0),              2, kInt},
    {"HdamDspPciDev",         Num(0),              3, kInt},
    {"HdamDspPciDev",         Num(0),              4, kInt},
    {"HdamDspPciDev",         Num(0),              5, kInt},
    // 20
    {"HdamDspPciDev",         Num(0),              6, kInt},
    {"HdamDspPciDev",         Num(0),              7, kInt},
    {"IpcNumFirstMainVidDsp", Num(2),              0, kInt},
    {"MainVidDspCnt",         Num(2),              0, kInt},
    {"MainVidDspPciBus",      Num(0),              0, kInt},
    {"MainVidDspPciBus",      Num(0),              1, kInt},
    {"MainVidDspPciDev",      Num(14),             0, kInt},
    {"MainVidDspPciDev",      Num(15),             1, kInt},
    {"MainDspType",           Num(2),              0, kInt},
    {"HwHasMgts",             Num(0),              0, kInt},
    // 30
    {"HwHasFeedbackClkMon3",  Num(0),              0, kInt},
    {"HwNumPixelWorks",       Num(2),              0, kInt},
    {"HwNumGennums",          Num(1),              0, kInt},
    {"HwGennumCtrlSerial",    Num(0),              0, kInt},
    {"VidCrossbarHasOverlay", Num(0),              0, kInt},
    {"ViopCamCtrl",           Num(16),             0, kInt},
    {"Ths7303CamCtrl",        Num(2),              0, kInt},
    {"CompGains",             Text(kCompGains0),   0, kText},
    {"SvideoGains",           Text(kSvideoGains0), 0, kText},
    {"VGAGains",              Text(kVgaGains2),    2, kText},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 23, category 0: 46 rows.
/* Key, Value, Index (list position; PixelWorks device for the gains), Format */
constexpr std::array<SysCapsRow, 46 + 1> kVideo23 = {{
    {"HdamBoardType",         Num(0),              0, kInt},
    {"HdamFpgaType",          Num(1),              0, kInt},
    {"HdamFpgaVendor",        Num(0),              0, kInt},
    {"HdamDspType",           Num(0),              0, kInt},
    {"IpcNumFirstHdamDsp",    Num(0),              0, kInt},
    {"HdamDspCnt",            Num(0),              0, kInt},
    {"HdamDspPciBus",         Num(0),              0, kInt},
    {"HdamDspPciBus",         Num(0),              1, kInt},
    {"HdamDspPciBus",         Num(0),              2, kInt},
    {"HdamDspPciBus",         Num(0),              3, kInt},
    // 10
    {"HdamDspPciBus",         Num(0),              4, kInt},
    {"HdamDspPciBus",         Num(0),              5, kInt},
    {"HdamDspPciBus",         Num(0),              6, kInt},
    {"HdamDspPciBus",         Num(0),              7, kInt},
    {"HdamDspPciDev",         Num(0),              0, kInt},
    {"HdamDspPciDev",         Num(0),              1, kInt},
    {"HdamDspPciDev",         Num(0),              2, kInt},
    {"HdamDspPciDev",         Num(0),              3, kInt},
    {"HdamDspPciDev",         Num(0),              4, kInt},
    {"HdamDspPciDev",         Num(0),              5, kInt},
    // 20
    {"HdamDspPciDev",         Num(0),              6, kInt},
    {"HdamDspPciDev",         Num(0),              7, kInt},
    {"IpcNumFirstMainVidDsp", Num(2),              0, kInt},
    {"MainVidDspCnt",         Num(4),              0, kInt},
    {"MainVidDspPciBus",      Num(1),              0, kInt},
    {"MainVidDspPciBus",      Num(1),              1, kInt},
    {"MainVidDspPciBus",      Num(1),              2, kInt},
    {"MainVidDspPciBus",      Num(1),              3, kInt},
    {"MainVidDspPciDev",      Num(0),              0, kInt},
    {"MainVidDspPciDev",      Num(1),              1, kInt},
    // 30
    {"MainVidDspPciDev",      Num(2),              2, kInt},
    {"MainVidDspPciDev",      Num(3),              3, kInt},
    {"MainDspType",           Num(1),              0, kInt},
    {"HwHasMgts",             Num(0),              0, kInt},
    {"HwHasFeedbackClkMon3",  Num(1),              0, kInt},
    {"HwNumPixelWorks",       Num(3),              0, kInt},
    {"HwNumGennums",          Num(2),              0, kInt},
    {"HwGennumCtrlSerial",    Num(0),              0, kInt},
    {"VidCrossbarHasOverlay", Num(0),              0, kInt},
    {"ViopCamCtrl",           Num(0),              0, kInt},
    // 40
    {"Ths7303CamCtrl",        Num(6),              0, kInt},
    {"CompGains",             Text(kCompGains0),   0, kText},
    {"SvideoGains",           Text(kSvideoGains0), 0, kText},
    {"CompGains",             Text(kCompGains1),   1, kText},
    {"SvideoGains",           Text(kSvideoGains1), 1, kText},
    {"VGAGains",              Text(kVgaGains2),    2, kText},
    {nullptr, Num(0), 0, nullptr},
}};

// ---- Category 1, "audio" ----

// Set 14, category 1: 8 rows.
/* Key, Value, Index (list position), Format */
constexpr std::array<SysCapsRow, 8 + 1> kAudio14 = {{
    {"IpcNumFirstAudioDsp", Num(1), 0, kInt},
    {"AudioDspCnt",         Num(3), 0, kInt},
    {"AudioDspPciBus",      Num(3), 0, kInt},
    {"AudioDspPciBus",      Num(3), 1, kInt},
    {"AudioDspPciBus",      Num(3), 2, kInt},
    {"AudioDspPciDev",      Num(0), 0, kInt},
    {"AudioDspPciDev",      Num(1), 1, kInt},
    {"AudioDspPciDev",      Num(2), 2, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 16 (types 16 and 17), category 1: 6 rows.
/* Key, Value, Index (list position), Format */
constexpr std::array<SysCapsRow, 6 + 1> kAudio16 = {{
    {"IpcNumFirstAudioDsp", Num(1), 0, kInt},
    {"AudioDspCnt",         Num(2), 0, kInt},
    {"AudioDspPciBus",      Num(3), 0, kInt},
    {"AudioDspPciBus",      Num(3), 1, kInt},
    {"AudioDspPciDev",      Num(1), 0, kInt},
    {"AudioDspPciDev",      Num(2), 1, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 18, category 1: 4 rows.
/* Key, Value, Index (list position), Format */
constexpr std::array<SysCapsRow, 4 + 1> kAudio18 = {{
    {"IpcNumFirstAudioDsp", Num(1),  0, kInt},
    {"AudioDspCnt",         Num(1),  0, kInt},
    {"AudioDspPciBus",      Num(0),  0, kInt},
    {"AudioDspPciDev",      Num(16), 0, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 20, category 1: 4 rows.
/* Key, Value, Index (list position), Format */
constexpr std::array<SysCapsRow, 4 + 1> kAudio20 = {{
    {"IpcNumFirstAudioDsp", Num(1),  0, kInt},
    {"AudioDspCnt",         Num(1),  0, kInt},
    {"AudioDspPciBus",      Num(0),  0, kInt},
    {"AudioDspPciDev",      Num(16), 0, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 21, category 1: 4 rows.
/* Key, Value, Index (list position), Format */
constexpr std::array<SysCapsRow, 4 + 1> kAudio21 = {{
    {"IpcNumFirstAudioDsp", Num(1),  0, kInt},
    {"AudioDspCnt",         Num(1),  0, kInt},
    {"AudioDspPciBus",      Num(0),  0, kInt},
    {"AudioDspPciDev",      Num(16), 0, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 22, category 1: 4 rows.
/* Key, Value, Index (list position), Format */
constexpr std::array<SysCapsRow, 4 + 1> kAudio22 = {{
    {"IpcNumFirstAudioDsp", Num(1),  0, kInt},
    {"AudioDspCnt",         Num(1),  0, kInt},
    {"AudioDspPciBus",      Num(0),  0, kInt},
    {"AudioDspPciDev",      Num(16), 0, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 23, category 1: 4 rows.
/* Key, Value, Index (list position), Format */
constexpr std::array<SysCapsRow, 4 + 1> kAudio23 = {{
    {"IpcNumFirstAudioDsp", Num(1),  0, kInt},
    {"AudioDspCnt",         Num(1),  0, kInt},
    {"AudioDspPciBus",      Num(0),  0, kInt},
    {"AudioDspPciDev",      Num(16), 0, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// ---- Category 2, "comm" ----

// Set 14, category 2: 27 rows.
/* Key, Value, Index (list position; step for connRate), Format */
constexpr std::array<SysCapsRow, 27 + 1> kComm14 = {{
    {"maxConfs",               Num(1),    0, kInt},
    {"maxVideoStreamsPerConn", Num(2),    0, kInt},
    {"maxIPNICs",              Num(1),    0, kInt},
    {"maxH323NICs",            Num(1),    0, kInt},
    {"maxSIPNICs",             Num(1),    0, kInt},
    {"maxISDNNICs",            Num(1),    0, kInt},
    {"maxBRINICs",             Num(1),    0, kInt},
    {"maxPRINICs",             Num(1),    0, kInt},
    {"maxV35NICs",             Num(1),    0, kInt},
    {"maxSerialNICs",          Num(5),    0, kInt},
    // 10
    {"maxQPXNICs",             Num(1),    0, kInt},
    {"maxSpeakerPhoneNICs",    Num(1),    0, kInt},
    {"maxYahooNICs",           Num(1),    0, kInt},
    {"force_1.3",              Num(1),    0, kInt},
    {"h320VantrelType",        Num(6),    0, kInt},
    {"maxConnsPerConf",        Num(8),    0, kInt},
    {"maxVideoConnsPerConf",   Num(7),    0, kInt},
    {"maxConns",               Num(8),    0, kInt},
    {"maxPOTSNICs",            Num(1),    0, kInt},
    {"connRate",               Num(6144), 0, kInt},
    // 20
    {"connRate",               Num(6144), 1, kInt},
    {"connRate",               Num(1920), 2, kInt},
    {"connRate",               Num(1536), 3, kInt},
    {"connRate",               Num(768),  4, kInt},
    {"connRate",               Num(768),  5, kInt},
    {"connRate",               Num(384),  6, kInt},
    {"connRate",               Num(384),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 16 (types 16 and 17), category 2: 27 rows.
/* Key, Value, Index (list position; step for connRate), Format */
constexpr std::array<SysCapsRow, 27 + 1> kComm16 = {{
    {"maxConfs",               Num(1),    0, kInt},
    {"maxVideoStreamsPerConn", Num(2),    0, kInt},
    {"maxIPNICs",              Num(1),    0, kInt},
    {"maxH323NICs",            Num(1),    0, kInt},
    {"maxSIPNICs",             Num(1),    0, kInt},
    {"maxISDNNICs",            Num(1),    0, kInt},
    {"maxBRINICs",             Num(1),    0, kInt},
    {"maxPRINICs",             Num(1),    0, kInt},
    {"maxV35NICs",             Num(1),    0, kInt},
    {"maxSerialNICs",          Num(5),    0, kInt},
    // 10
    {"maxQPXNICs",             Num(1),    0, kInt},
    {"maxSpeakerPhoneNICs",    Num(1),    0, kInt},
    {"maxYahooNICs",           Num(1),    0, kInt},
    {"force_1.3",              Num(1),    0, kInt},
    {"h320VantrelType",        Num(6),    0, kInt},
    {"maxConnsPerConf",        Num(8),    0, kInt},
    {"maxVideoConnsPerConf",   Num(7),    0, kInt},
    {"maxConns",               Num(8),    0, kInt},
    {"maxPOTSNICs",            Num(1),    0, kInt},
    {"connRate",               Num(1920), 0, kInt},
    // 20
    {"connRate",               Num(1920), 1, kInt},
    {"connRate",               Num(960),  2, kInt},
    {"connRate",               Num(640),  3, kInt},
    {"connRate",               Num(448),  4, kInt},
    {"connRate",               Num(384),  5, kInt},
    {"connRate",               Num(320),  6, kInt},
    {"connRate",               Num(256),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 18, category 2: 27 rows.
/* Key, Value, Index (list position; step for connRate), Format */
constexpr std::array<SysCapsRow, 27 + 1> kComm18 = {{
    {"maxConfs",               Num(1),    0, kInt},
    {"maxVideoStreamsPerConn", Num(2),    0, kInt},
    {"maxIPNICs",              Num(1),    0, kInt},
    {"maxH323NICs",            Num(1),    0, kInt},
    {"maxSIPNICs",             Num(1),    0, kInt},
    {"maxISDNNICs",            Num(1),    0, kInt},
    {"maxBRINICs",             Num(1),    0, kInt},
    {"maxPRINICs",             Num(1),    0, kInt},
    {"maxV35NICs",             Num(1),    0, kInt},
    {"maxSerialNICs",          Num(5),    0, kInt},
    // 10
    {"maxQPXNICs",             Num(1),    0, kInt},
    {"maxSpeakerPhoneNICs",    Num(1),    0, kInt},
    {"maxYahooNICs",           Num(1),    0, kInt},
    {"force_1.3",              Num(1),    0, kInt},
    {"h320VantrelType",        Num(6),    0, kInt},
    {"maxConnsPerConf",        Num(4),    0, kInt},
    {"maxVideoConnsPerConf",   Num(3),    0, kInt},
    {"maxConns",               Num(4),    0, kInt},
    {"maxPOTSNICs",            Num(1),    0, kInt},
    {"connRate",               Num(1920), 0, kInt},
    // 20
    {"connRate",               Num(1920), 1, kInt},
    {"connRate",               Num(960),  2, kInt},
    {"connRate",               Num(640),  3, kInt},
    {"connRate",               Num(448),  4, kInt},
    {"connRate",               Num(384),  5, kInt},
    {"connRate",               Num(320),  6, kInt},
    {"connRate",               Num(256),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 20, category 2: 27 rows.
/* Key, Value, Index (list position; step for connRate), Format */
constexpr std::array<SysCapsRow, 27 + 1> kComm20 = {{
    {"maxConfs",               Num(1),    0, kInt},
    {"maxVideoStreamsPerConn", Num(2),    0, kInt},
    {"maxIPNICs",              Num(1),    0, kInt},
    {"maxH323NICs",            Num(1),    0, kInt},
    {"maxSIPNICs",             Num(1),    0, kInt},
    {"maxISDNNICs",            Num(1),    0, kInt},
    {"maxBRINICs",             Num(1),    0, kInt},
    {"maxPRINICs",             Num(1),    0, kInt},
    {"maxV35NICs",             Num(1),    0, kInt},
    {"maxSerialNICs",          Num(5),    0, kInt},
    // 10
    {"maxQPXNICs",             Num(1),    0, kInt},
    {"maxSpeakerPhoneNICs",    Num(1),    0, kInt},
    {"maxYahooNICs",           Num(1),    0, kInt},
    {"force_1.3",              Num(1),    0, kInt},
    {"h320VantrelType",        Num(6),    0, kInt},
    {"maxConnsPerConf",        Num(4),    0, kInt},
    {"maxVideoConnsPerConf",   Num(3),    0, kInt},
    {"maxConns",               Num(4),    0, kInt},
    {"maxPOTSNICs",            Num(1),    0, kInt},
    {"connRate",               Num(1920), 0, kInt},
    // 20
    {"connRate",               Num(1920), 1, kInt},
    {"connRate",               Num(960),  2, kInt},
    {"connRate",               Num(640),  3, kInt},
    {"connRate",               Num(448),  4, kInt},
    {"connRate",               Num(384),  5, kInt},
    {"connRate",               Num(320),  6, kInt},
    {"connRate",               Num(256),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 21, category 2: 27 rows.
/* Key, Value, Index (list position; step for connRate), Format */
constexpr std::array<SysCapsRow, 27 + 1> kComm21 = {{
    {"maxConfs",               Num(1),    0, kInt},
    {"maxVideoStreamsPerConn", Num(2),    0, kInt},
    {"maxIPNICs",              Num(1),    0, kInt},
    {"maxH323NICs",            Num(1),    0, kInt},
    {"maxSIPNICs",             Num(1),    0, kInt},
    {"maxISDNNICs",            Num(1),    0, kInt},
    {"maxBRINICs",             Num(1),    0, kInt},
    {"maxPRINICs",             Num(1),    0, kInt},
    {"maxV35NICs",             Num(1),    0, kInt},
    {"maxSerialNICs",          Num(5),    0, kInt},
    // 10
    {"maxQPXNICs",             Num(1),    0, kInt},
    {"maxSpeakerPhoneNICs",    Num(1),    0, kInt},
    {"maxYahooNICs",           Num(1),    0, kInt},
    {"force_1.3",              Num(1),    0, kInt},
    {"h320VantrelType",        Num(6),    0, kInt},
    {"maxConnsPerConf",        Num(4),    0, kInt},
    {"maxVideoConnsPerConf",   Num(3),    0, kInt},
    {"maxConns",               Num(4),    0, kInt},
    {"maxPOTSNICs",            Num(0),    0, kInt},
    {"connRate",               Num(1920), 0, kInt},
    // 20
    {"connRate",               Num(1920), 1, kInt},
    {"connRate",               Num(960),  2, kInt},
    {"connRate",               Num(640),  3, kInt},
    {"connRate",               Num(448),  4, kInt},
    {"connRate",               Num(384),  5, kInt},
    {"connRate",               Num(320),  6, kInt},
    {"connRate",               Num(256),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 22, category 2: 27 rows.
/* Key, Value, Index (list position; step for connRate), Format */
constexpr std::array<SysCapsRow, 27 + 1> kComm22 = {{
    {"maxConfs",               Num(1),    0, kInt},
    {"maxVideoStreamsPerConn", Num(2),    0, kInt},
    {"maxIPNICs",              Num(1),    0, kInt},
    {"maxH323NICs",            Num(1),    0, kInt},
    {"maxSIPNICs",             Num(1),    0, kInt},
    {"maxISDNNICs",            Num(1),    0, kInt},
    {"maxBRINICs",             Num(1),    0, kInt},
    {"maxPRINICs",             Num(1),    0, kInt},
    {"maxV35NICs",             Num(1),    0, kInt},
    {"maxSerialNICs",          Num(5),    0, kInt},
    // 10
    {"maxQPXNICs",             Num(1),    0, kInt},
    {"maxSpeakerPhoneNICs",    Num(1),    0, kInt},
    {"maxYahooNICs",           Num(1),    0, kInt},
    {"force_1.3",              Num(1),    0, kInt},
    {"h320VantrelType",        Num(6),    0, kInt},
    {"maxConnsPerConf",        Num(4),    0, kInt},
    {"maxVideoConnsPerConf",   Num(3),    0, kInt},
    {"maxConns",               Num(4),    0, kInt},
    {"maxPOTSNICs",            Num(0),    0, kInt},
    {"connRate",               Num(1920), 0, kInt},
    // 20
    {"connRate",               Num(1920), 1, kInt},
    {"connRate",               Num(960),  2, kInt},
    {"connRate",               Num(640),  3, kInt},
    {"connRate",               Num(448),  4, kInt},
    {"connRate",               Num(384),  5, kInt},
    {"connRate",               Num(320),  6, kInt},
    {"connRate",               Num(256),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 23, category 2: 27 rows.
/* Key, Value, Index (list position; step for connRate), Format */
constexpr std::array<SysCapsRow, 27 + 1> kComm23 = {{
    {"maxConfs",               Num(1),    0, kInt},
    {"maxVideoStreamsPerConn", Num(2),    0, kInt},
    {"maxIPNICs",              Num(1),    0, kInt},
    {"maxH323NICs",            Num(1),    0, kInt},
    {"maxSIPNICs",             Num(1),    0, kInt},
    {"maxISDNNICs",            Num(1),    0, kInt},
    {"maxBRINICs",             Num(1),    0, kInt},
    {"maxPRINICs",             Num(1),    0, kInt},
    {"maxV35NICs",             Num(1),    0, kInt},
    {"maxSerialNICs",          Num(5),    0, kInt},
    // 10
    {"maxQPXNICs",             Num(1),    0, kInt},
    {"maxSpeakerPhoneNICs",    Num(1),    0, kInt},
    {"maxYahooNICs",           Num(1),    0, kInt},
    {"force_1.3",              Num(1),    0, kInt},
    {"h320VantrelType",        Num(6),    0, kInt},
    {"maxConnsPerConf",        Num(4),    0, kInt},
    {"maxVideoConnsPerConf",   Num(3),    0, kInt},
    {"maxConns",               Num(4),    0, kInt},
    {"maxPOTSNICs",            Num(1),    0, kInt},
    {"connRate",               Num(1920), 0, kInt},
    // 20
    {"connRate",               Num(1920), 1, kInt},
    {"connRate",               Num(960),  2, kInt},
    {"connRate",               Num(640),  3, kInt},
    {"connRate",               Num(448),  4, kInt},
    {"connRate",               Num(384),  5, kInt},
    {"connRate",               Num(320),  6, kInt},
    {"connRate",               Num(256),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// ---- Category 3, "hardware" ----

// Set 14, category 3: 21 rows.
/* Key, Value, Index (list position; fan for FanConfig), Format */
constexpr std::array<SysCapsRow, 21 + 1> kHardware14 = {{
    {"numProcessors",                Num(4),        0, kInt},
    {"maxMicpods",                   Num(3),        0, kInt},
    {"numTethers",                   Num(1),        0, kInt},
    {"allowR2D2",                    Num(0),        0, kInt},
    {"numFlashChips",                Num(3),        0, kInt},
    {"ExtendedInterrupts",           Num(1),        0, kInt},
    {"HasFan",                       Num(1),        0, kInt},
    {"SingleMonVGA",                 Num(1),        0, kInt},
    {"VgaOutputs",                   Num(1),        0, kInt},
    {"SerialPorts",                  Num(2),        0, kInt},
    // 10
    {"NearFarSleepCmd",              Num(1),        0, kInt},
    {"EnableSnakeEyeIR",             Num(1),        0, kInt},
    {"setMaxFanSpeed",               Num(1),        0, kInt},
    {"AudioHasProgGainAmp",          Num(1),        0, kInt},
    {"HwFamily",                     Num(1),        0, kInt},
    {"FpgaLoadFamily",               Num(2),        0, kInt},
    {"HwAreSomeI2CDevDfltRst",       Num(1),        0, kInt},
    {"HwRtcI2CBusNum",               Num(5),        0, kInt},
    {"BoardRevsWithRtc",             Num(-1),       0, kInt},
    {"HwCtrlFpgaFrameBufBaseAddr",   Num(16777216), 0, kInt},
    // 20
    {"PowerMicrocontrollerFileName", Text("bogus"), 0, kText},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 16 (types 16 and 17), category 3: 37 rows.
/* Key, Value, Index (list position; fan for FanConfig), Format */
constexpr std::array<SysCapsRow, 37 + 1> kHardware16 = {{
    {"numProcessors",                Num(4),                   0, kInt},
    {"maxMicpods",                   Num(3),                   0, kInt},
    {"numTethers",                   Num(1),                   0, kInt},
    {"allowR2D2",                    Num(0),                   0, kInt},
    {"numFlashChips",                Num(3),                   0, kInt},
    {"ExtendedInterrupts",           Num(1),                   0, kInt},
    {"HasFan",                       Num(1),                   0, kInt},
    {"SingleMonVGA",                 Num(1),                   0, kInt},
    {"VgaOutputs",                   Num(1),                   0, kInt},
    {"SerialPorts",                  Num(2),                   0, kInt},
    // 10
    {"NearFarSleepCmd",              Num(1),                   0, kInt},
    {"EnableSnakeEyeIR",             Num(1),                   0, kInt},
    {"setMaxFanSpeed",               Num(1),                   0, kInt},
    {"AudioHasProgGainAmp",          Num(1),                   0, kInt},
    {"HwFamily",                     Num(1),                   0, kInt},
    {"FpgaLoadFamily",               Num(3),                   0, kInt},
    {"HwAreSomeI2CDevDfltRst",       Num(1),                   0, kInt},
    {"HwRtcI2CBusNum",               Num(5),                   0, kInt},
    {"BoardRevsWithRtc",             Num(-1),                  0, kInt},
    {"HwCtrlFpgaFrameBufBaseAddr",   Num(16777216),            0, kInt},
    // 20
    {"numMonitors",                  Num(4),                   0, kInt},
    {"monitorPresent",               Num(1),                   0, kInt},
    {"monitorPresent",               Num(1),                   1, kInt},
    {"monitorPresent",               Num(1),                   2, kInt},
    {"monitorPresent",               Num(1),                   3, kInt},
    {"numVidOutput",                 Num(4),                   0, kInt},
    {"numCameras",                   Num(5),                   0, kInt},
    {"cameraPresent",                Num(1),                   0, kInt},
    {"cameraPresent",                Num(1),                   1, kInt},
    {"cameraPresent",                Num(1),                   2, kInt},
    // 30
    {"cameraPresent",                Num(1),                   3, kInt},
    {"cameraPresent",                Num(1),                   4, kInt},
    {"numVidInput",                  Num(2),                   0, kInt},
    {"vidInEmbeddedFrameCount",      Num(1),                   0, kInt},
    {"PowerMicrocontrollerFileName", Text("spi_micropgm.bin"), 0, kText},
    {"FanConfig",                    Text(kFanConfig16_1),     1, kText},
    {"FanConfig",                    Text(kFanConfig16_2),     2, kText},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 18, category 3: 36 rows.
/* Key, Value, Index (list position; fan for FanConfig), Format */
constexpr std::array<SysCapsRow, 36 + 1> kHardware18 = {{
    {"numProcessors",                Num(4),                     0, kInt},
    {"maxMicpods",                   Num(3),                     0, kInt},
    {"numTethers",                   Num(1),                     0, kInt},
    {"allowR2D2",                    Num(0),                     0, kInt},
    {"numFlashChips",                Num(3),                     0, kInt},
    {"ExtendedInterrupts",           Num(1),                     0, kInt},
    {"HasFan",                       Num(1),                     0, kInt},
    {"SingleMonVGA",                 Num(1),                     0, kInt},
    {"VgaOutputs",                   Num(1),                     0, kInt},
    {"SerialPorts",                  Num(2),                     0, kInt},
    // 10
    {"NearFarSleepCmd",              Num(1),                     0, kInt},
    {"EnableSnakeEyeIR",             Num(1),                     0, kInt},
    {"AudioHasProgGainAmp",          Num(0),                     0, kInt},
    {"HwFamily",                     Num(2),                     0, kInt},
    {"FpgaLoadFamily",               Num(4),                     0, kInt},
    {"HwAreSomeI2CDevDfltRst",       Num(0),                     0, kInt},
    {"HwRtcI2CBusNum",               Num(1),                     0, kInt},
    {"BoardRevsWithRtc",             Num(-4),                    0, kInt},
    {"HwCtrlFpgaFrameBufBaseAddr",   Num(0),                     0, kInt},
    {"numMonitors",                  Num(3),                     0, kInt},
    // 20
    {"monitorPresent",               Num(1),                     0, kInt},
    {"monitorPresent",               Num(1),                     1, kInt},
    {"monitorPresent",               Num(1),                     2, kInt},
    {"numVidOutput",                 Num(3),                     0, kInt},
    {"numCameras",                   Num(4),                     0, kInt},
    {"cameraPresent",                Num(1),                     0, kInt},
    {"cameraPresent",                Num(1),                     1, kInt},
    {"cameraPresent",                Num(1),                     2, kInt},
    {"cameraPresent",                Num(1),                     3, kInt},
    {"numVidInput",                  Num(2),                     0, kInt},
    // 30
    {"MaxTempSensors",               Num(2),                     0, kInt},
    {"vidInputAccel",                Num(1),                     0, kInt},
    {"vidOutputAccel",               Num(1),                     0, kInt},
    {"PowerMicrocontrollerFileName", Text("rowan_micropgm.bin"), 0, kText},
    {"FanConfig",                    Text(kFanConfig18_0),       0, kText},
    {"FanConfig",                    Text(kFanConfig18_1),       1, kText},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 20, category 3: 34 rows.
/* Key, Value, Index (list position; fan for FanConfig), Format */
constexpr std::array<SysCapsRow, 34 + 1> kHardware20 = {{
    {"numProcessors",                Num(4),                     0, kInt},
    {"maxMicpods",                   Num(3),                     0, kInt},
    {"numTethers",                   Num(1),                     0, kInt},
    {"allowR2D2",                    Num(0),                     0, kInt},
    {"numFlashChips",                Num(3),                     0, kInt},
    {"ExtendedInterrupts",           Num(1),                     0, kInt},
    {"HasFan",                       Num(1),                     0, kInt},
    {"SingleMonVGA",                 Num(1),                     0, kInt},
    {"VgaOutputs",                   Num(1),                     0, kInt},
    {"SerialPorts",                  Num(2),                     0, kInt},
    // 10
    {"NearFarSleepCmd",              Num(1),                     0, kInt},
    {"EnableSnakeEyeIR",             Num(1),                     0, kInt},
    {"AudioHasProgGainAmp",          Num(0),                     0, kInt},
    {"HwFamily",                     Num(2),                     0, kInt},
    {"FpgaLoadFamily",               Num(4),                     0, kInt},
    {"HwAreSomeI2CDevDfltRst",       Num(0),                     0, kInt},
    {"HwRtcI2CBusNum",               Num(1),                     0, kInt},
    {"BoardRevsWithRtc",             Num(-4),                    0, kInt},
    {"HwCtrlFpgaFrameBufBaseAddr",   Num(0),                     0, kInt},
    {"numMonitors",                  Num(1),                     0, kInt},
    // 20
    {"monitorPresent",               Num(1),                     0, kInt},
    {"numVidOutput",                 Num(1),                     0, kInt},
    {"numCameras",                   Num(4),                     0, kInt},
    {"cameraPresent",                Num(1),                     0, kInt},
    {"cameraPresent",                Num(0),                     1, kInt},
    {"cameraPresent",                Num(0),                     2, kInt},
    {"cameraPresent",                Num(1),                     3, kInt},
    {"numVidInput",                  Num(2),                     0, kInt},
    {"MaxTempSensors",               Num(2),                     0, kInt},
    {"vidInputAccel",                Num(1),                     0, kInt},
    // 30
    {"vidOutputAccel",               Num(1),                     0, kInt},
    {"PowerMicrocontrollerFileName", Text("rowan_micropgm.bin"), 0, kText},
    {"FanConfig",                    Text(kFanConfig18_0),       0, kText},
    {"FanConfig",                    Text(kFanConfig18_1),       1, kText},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 21, category 3: 36 rows.
/* Key, Value, Index (list position; fan for FanConfig), Format */
constexpr std::array<SysCapsRow, 36 + 1> kHardware21 = {{
    {"numProcessors",                Num(4),                     0, kInt},
    {"maxMicpods",                   Num(3),                     0, kInt},
    {"numTethers",                   Num(1),                     0, kInt},
    {"allowR2D2",                    Num(0),                     0, kInt},
    {"numFlashChips",                Num(3),                     0, kInt},
    {"ExtendedInterrupts",           Num(1),                     0, kInt},
    {"HasFan",                       Num(1),                     0, kInt},
    {"SingleMonVGA",                 Num(1),                     0, kInt},
    {"VgaOutputs",                   Num(1),                     0, kInt},
    {"SerialPorts",                  Num(2),                     0, kInt},
    // 10
    {"NearFarSleepCmd",              Num(1),                     0, kInt},
    {"EnableSnakeEyeIR",             Num(1),                     0, kInt},
    {"AudioHasProgGainAmp",          Num(0),                     0, kInt},
    {"HwFamily",                     Num(2),                     0, kInt},
    {"FpgaLoadFamily",               Num(4),                     0, kInt},
    {"HwAreSomeI2CDevDfltRst",       Num(0),                     0, kInt},
    {"HwRtcI2CBusNum",               Num(1),                     0, kInt},
    {"BoardRevsWithRtc",             Num(-4),                    0, kInt},
    {"HwCtrlFpgaFrameBufBaseAddr",   Num(0),                     0, kInt},
    {"numMonitors",                  Num(3),                     0, kInt},
    // 20
    {"monitorPresent",               Num(1),                     0, kInt},
    {"monitorPresent",               Num(1),                     1, kInt},
    {"monitorPresent",               Num(1),                     2, kInt},
    {"numVidOutput",                 Num(3),                     0, kInt},
    {"numCameras",                   Num(4),                     0, kInt},
    {"cameraPresent",                Num(1),                     0, kInt},
    {"cameraPresent",                Num(0),                     1, kInt},
    {"cameraPresent",                Num(1),                     2, kInt},
    {"cameraPresent",                Num(1),                     3, kInt},
    {"numVidInput",                  Num(2),                     0, kInt},
    // 30
    {"MaxTempSensors",               Num(2),                     0, kInt},
    {"vidInputAccel",                Num(1),                     0, kInt},
    {"vidOutputAccel",               Num(1),                     0, kInt},
    {"PowerMicrocontrollerFileName", Text("rowan_micropgm.bin"), 0, kText},
    {"FanConfig",                    Text(kFanConfig18_0),       0, kText},
    {"FanConfig",                    Text(kFanConfig18_1),       1, kText},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 22, category 3: 34 rows.
/* Key, Value, Index (list position; fan for FanConfig), Format */
constexpr std::array<SysCapsRow, 34 + 1> kHardware22 = {{
    {"numProcessors",                Num(4),                   0, kInt},
    {"maxMicpods",                   Num(3),                   0, kInt},
    {"numTethers",                   Num(1),                   0, kInt},
    {"allowR2D2",                    Num(0),                   0, kInt},
    {"numFlashChips",                Num(3),                   0, kInt},
    {"ExtendedInterrupts",           Num(1),                   0, kInt},
    {"HasFan",                       Num(1),                   0, kInt},
    {"SingleMonVGA",                 Num(1),                   0, kInt},
    {"VgaOutputs",                   Num(1),                   0, kInt},
    {"SerialPorts",                  Num(2),                   0, kInt},
    // 10
    {"NearFarSleepCmd",              Num(1),                   0, kInt},
    {"EnableSnakeEyeIR",             Num(1),                   0, kInt},
    {"AudioHasProgGainAmp",          Num(0),                   0, kInt},
    {"HwFamily",                     Num(2),                   0, kInt},
    {"FpgaLoadFamily",               Num(5),                   0, kInt},
    {"HwAreSomeI2CDevDfltRst",       Num(0),                   0, kInt},
    {"HwRtcI2CBusNum",               Num(5),                   0, kInt},
    {"BoardRevsWithRtc",             Num(-1),                  0, kInt},
    {"HwCtrlFpgaFrameBufBaseAddr",   Num(0),                   0, kInt},
    {"numMonitors",                  Num(1),                   0, kInt},
    // 20
    {"monitorPresent",               Num(1),                   0, kInt},
    {"numVidOutput",                 Num(1),                   0, kInt},
    {"numCameras",                   Num(4),                   0, kInt},
    {"cameraPresent",                Num(1),                   0, kInt},
    {"cameraPresent",                Num(0),                   1, kInt},
    {"cameraPresent",                Num(0),                   2, kInt},
    {"cameraPresent",                Num(1),                   3, kInt},
    {"numVidInput",                  Num(2),                   0, kInt},
    {"MaxTempSensors",               Num(2),                   0, kInt},
    {"vidInputAccel",                Num(1),                   0, kInt},
    // 30
    {"vidOutputAccel",               Num(1),                   0, kInt},
    {"PowerMicrocontrollerFileName", Text("elm_micropgm.bin"), 0, kText},
    {"FanConfig",                    Text(kFanConfig22_0),     0, kText},
    {"FanConfig",                    Text(kFanConfig22_1),     1, kText},
    {nullptr, Num(0), 0, nullptr},
}};

// Set 23, category 3: 36 rows.
/* Key, Value, Index (list position; fan for FanConfig), Format */
constexpr std::array<SysCapsRow, 36 + 1> kHardware23 = {{
    {"numProcessors",                Num(4),                     0, kInt},
    {"maxMicpods",                   Num(3),                     0, kInt},
    {"numTethers",                   Num(1),                     0, kInt},
    {"allowR2D2",                    Num(0),                     0, kInt},
    {"numFlashChips",                Num(3),                     0, kInt},
    {"ExtendedInterrupts",           Num(1),                     0, kInt},
    {"HasFan",                       Num(1),                     0, kInt},
    {"SingleMonVGA",                 Num(1),                     0, kInt},
    {"VgaOutputs",                   Num(1),                     0, kInt},
    {"SerialPorts",                  Num(2),                     0, kInt},
    // 10
    {"NearFarSleepCmd",              Num(1),                     0, kInt},
    {"EnableSnakeEyeIR",             Num(1),                     0, kInt},
    {"AudioHasProgGainAmp",          Num(0),                     0, kInt},
    {"HwFamily",                     Num(2),                     0, kInt},
    {"FpgaLoadFamily",               Num(4),                     0, kInt},
    {"HwAreSomeI2CDevDfltRst",       Num(0),                     0, kInt},
    {"HwRtcI2CBusNum",               Num(1),                     0, kInt},
    {"BoardRevsWithRtc",             Num(-1),                    0, kInt},
    {"HwCtrlFpgaFrameBufBaseAddr",   Num(0),                     0, kInt},
    {"numMonitors",                  Num(3),                     0, kInt},
    // 20
    {"monitorPresent",               Num(1),                     0, kInt},
    {"monitorPresent",               Num(1),                     1, kInt},
    {"monitorPresent",               Num(1),                     2, kInt},
    {"numVidOutput",                 Num(3),                     0, kInt},
    {"numCameras",                   Num(4),                     0, kInt},
    {"cameraPresent",                Num(1),                     0, kInt},
    {"cameraPresent",                Num(1),                     1, kInt},
    {"cameraPresent",                Num(1),                     2, kInt},
    {"cameraPresent",                Num(1),                     3, kInt},
    {"numVidInput",                  Num(2),                     0, kInt},
    // 30
    {"MaxTempSensors",               Num(2),                     0, kInt},
    {"vidInputAccel",                Num(1),                     0, kInt},
    {"vidOutputAccel",               Num(1),                     0, kInt},
    {"PowerMicrocontrollerFileName", Text("rowan_micropgm.bin"), 0, kText},
    {"FanConfig",                    Text(kFanConfig18_0),       0, kText},
    {"FanConfig",                    Text(kFanConfig18_1),       1, kText},
    {nullptr, Num(0), 0, nullptr},
}};

// ---- Category 4 ----

// One table for every set: 1 row.
/* Key, Value, Index, Format */
constexpr std::array<SysCapsRow, 1 + 1> kCategory4 = {{
    {"amxRevision", Text("1.0.0"), 0, kText},
    {nullptr, Num(0), 0, nullptr},
}};
// ---- Override blocks of the HDAM boards (category 0; only Key, Value and Index are read) ----

// Block A: 15 rows.
/* Key, Value, Index (HDAM DSP position), Format */
constexpr std::array<SysCapsRow, 15 + 1> boardBlockA = {{
    {"HdamFpgaType",       Num(2),  0, kInt},
    {"HdamFpgaVendor",     Num(2),  0, kInt},
    {"HdamDspType",        Num(1),  0, kInt},
    {"IpcNumFirstHdamDsp", Num(13), 0, kInt},
    {"HdamDspCnt",         Num(5),  0, kInt},
    {"HdamDspPciBus",      Num(8),  0, kInt},
    {"HdamDspPciDev",      Num(0),  0, kInt},
    {"HdamDspPciBus",      Num(8),  1, kInt},
    {"HdamDspPciDev",      Num(1),  1, kInt},
    {"HdamDspPciBus",      Num(9),  2, kInt},
    // 10
    {"HdamDspPciDev",      Num(0),  2, kInt},
    {"HdamDspPciBus",      Num(9),  3, kInt},
    {"HdamDspPciDev",      Num(1),  3, kInt},
    {"HdamDspPciBus",      Num(9),  4, kInt},
    {"HdamDspPciDev",      Num(2),  4, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Block B: 15 rows.
/* Key, Value, Index (HDAM DSP position), Format */
constexpr std::array<SysCapsRow, 15 + 1> boardBlockB = {{
    {"HdamFpgaType",       Num(2), 0, kInt},
    {"HdamFpgaVendor",     Num(2), 0, kInt},
    {"HdamDspType",        Num(1), 0, kInt},
    {"IpcNumFirstHdamDsp", Num(9), 0, kInt},
    {"HdamDspCnt",         Num(5), 0, kInt},
    {"HdamDspPciBus",      Num(8), 0, kInt},
    {"HdamDspPciDev",      Num(0), 0, kInt},
    {"HdamDspPciBus",      Num(8), 1, kInt},
    {"HdamDspPciDev",      Num(1), 1, kInt},
    {"HdamDspPciBus",      Num(9), 2, kInt},
    // 10
    {"HdamDspPciDev",      Num(0), 2, kInt},
    {"HdamDspPciBus",      Num(9), 3, kInt},
    {"HdamDspPciDev",      Num(1), 3, kInt},
    {"HdamDspPciBus",      Num(9), 4, kInt},
    {"HdamDspPciDev",      Num(2), 4, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Block C: 15 rows.
/* Key, Value, Index (HDAM DSP position), Format */
constexpr std::array<SysCapsRow, 15 + 1> boardBlockC = {{
    {"HdamFpgaType",       Num(1), 0, kInt},
    {"HdamFpgaVendor",     Num(1), 0, kInt},
    {"HdamDspType",        Num(1), 0, kInt},
    {"IpcNumFirstHdamDsp", Num(6), 0, kInt},
    {"HdamDspCnt",         Num(5), 0, kInt},
    {"HdamDspPciBus",      Num(8), 0, kInt},
    {"HdamDspPciDev",      Num(0), 0, kInt},
    {"HdamDspPciBus",      Num(8), 1, kInt},
    {"HdamDspPciDev",      Num(1), 1, kInt},
    {"HdamDspPciBus",      Num(8), 2, kInt},
    // 10
    {"HdamDspPciDev",      Num(2), 2, kInt},
    {"HdamDspPciBus",      Num(8), 3, kInt},
    {"HdamDspPciDev",      Num(3), 3, kInt},
    {"HdamDspPciBus",      Num(8), 4, kInt},
    {"HdamDspPciDev",      Num(4), 4, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Block D: 12 rows.
/* Key, Value, Index (HDAM DSP position), Format */
constexpr std::array<SysCapsRow, 12 + 1> boardBlockD = {{
    {"HdamFpgaType",       Num(3), 0, kInt},
    {"HdamFpgaVendor",     Num(3), 0, kInt},
    {"HdamDspType",        Num(1), 0, kInt},
    {"IpcNumFirstHdamDsp", Num(9), 0, kInt},
    {"HdamDspCnt",         Num(3), 0, kInt},
    {"HdamDspPciBus",      Num(8), 0, kInt},
    {"HdamDspPciDev",      Num(1), 0, kInt},
    {"HdamDspPciBus",      Num(8), 1, kInt},
    {"HdamDspPciDev",      Num(2), 1, kInt},
    {"HdamDspPciBus",      Num(8), 2, kInt},
    // 10
    {"HdamDspPciDev",      Num(3), 2, kInt},
    {"HwNumGennums",       Num(2), 0, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Block E: 12 rows.
/* Key, Value, Index (HDAM DSP position), Format */
constexpr std::array<SysCapsRow, 12 + 1> boardBlockE = {{
    {"HdamFpgaType",       Num(3), 0, kInt},
    {"HdamFpgaVendor",     Num(3), 0, kInt},
    {"HdamDspType",        Num(2), 0, kInt},
    {"IpcNumFirstHdamDsp", Num(9), 0, kInt},
    {"HdamDspCnt",         Num(3), 0, kInt},
    {"HdamDspPciBus",      Num(8), 0, kInt},
    {"HdamDspPciDev",      Num(1), 0, kInt},
    {"HdamDspPciBus",      Num(8), 1, kInt},
    {"HdamDspPciDev",      Num(2), 1, kInt},
    {"HdamDspPciBus",      Num(8), 2, kInt},
    // 10
    {"HdamDspPciDev",      Num(3), 2, kInt},
    {"HwNumGennums",       Num(2), 0, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Block F: 11 rows.
/* Key, Value, Index (HDAM DSP position), Format */
constexpr std::array<SysCapsRow, 11 + 1> boardBlockF = {{
    {"HdamFpgaType",       Num(1), 0, kInt},
    {"HdamFpgaVendor",     Num(1), 0, kInt},
    {"HdamDspType",        Num(2), 0, kInt},
    {"IpcNumFirstHdamDsp", Num(6), 0, kInt},
    {"HdamDspCnt",         Num(3), 0, kInt},
    {"HdamDspPciBus",      Num(8), 0, kInt},
    {"HdamDspPciDev",      Num(1), 0, kInt},
    {"HdamDspPciBus",      Num(8), 1, kInt},
    {"HdamDspPciDev",      Num(2), 1, kInt},
    {"HdamDspPciBus",      Num(8), 2, kInt},
    // 10
    {"HdamDspPciDev",      Num(3), 2, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Block G: 7 rows.
/* Key, Value, Index (HDAM DSP position), Format */
constexpr std::array<SysCapsRow, 7 + 1> boardBlockG = {{
    {"HdamFpgaType",       Num(1),  0, kInt},
    {"HdamFpgaVendor",     Num(1),  0, kInt},
    {"HdamDspType",        Num(2),  0, kInt},
    {"IpcNumFirstHdamDsp", Num(6),  0, kInt},
    {"HdamDspCnt",         Num(1),  0, kInt},
    {"HdamDspPciBus",      Num(0),  0, kInt},
    {"HdamDspPciDev",      Num(18), 0, kInt},
    {nullptr, Num(0), 0, nullptr},
}};
// ---- connRate blocks (category 2) ----

// Block A.
/* Key, Value (rate), Index (step), Format */
constexpr std::array<SysCapsRow, 8 + 1> connRateBlockA = {{
    {"connRate", Num(1920), 0, kInt},
    {"connRate", Num(1920), 1, kInt},
    {"connRate", Num(960),  2, kInt},
    {"connRate", Num(640),  3, kInt},
    {"connRate", Num(448),  4, kInt},
    {"connRate", Num(384),  5, kInt},
    {"connRate", Num(320),  6, kInt},
    {"connRate", Num(256),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Block B.
/* Key, Value (rate), Index (step), Format */
constexpr std::array<SysCapsRow, 8 + 1> connRateBlockB = {{
    {"connRate", Num(1920), 0, kInt},
    {"connRate", Num(1920), 1, kInt},
    {"connRate", Num(1024), 2, kInt},
    {"connRate", Num(640),  3, kInt},
    {"connRate", Num(448),  4, kInt},
    {"connRate", Num(384),  5, kInt},
    {"connRate", Num(320),  6, kInt},
    {"connRate", Num(256),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Block C.
/* Key, Value (rate), Index (step), Format */
constexpr std::array<SysCapsRow, 8 + 1> connRateBlockC = {{
    {"connRate", Num(4096), 0, kInt},
    {"connRate", Num(4096), 1, kInt},
    {"connRate", Num(1920), 2, kInt},
    {"connRate", Num(1344), 3, kInt},
    {"connRate", Num(1024), 4, kInt},
    {"connRate", Num(768),  5, kInt},
    {"connRate", Num(640),  6, kInt},
    {"connRate", Num(512),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Block D.
/* Key, Value (rate), Index (step), Format */
constexpr std::array<SysCapsRow, 8 + 1> connRateBlockD = {{
    {"connRate", Num(4096), 0, kInt},
    {"connRate", Num(4096), 1, kInt},
    {"connRate", Num(1920), 2, kInt},
    {"connRate", Num(1344), 3, kInt},
    {"connRate", Num(1024), 4, kInt},
    {"connRate", Num(768),  5, kInt},
    {"connRate", Num(640),  6, kInt},
    {"connRate", Num(512),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Block E.
/* Key, Value (rate), Index (step), Format */
constexpr std::array<SysCapsRow, 8 + 1> connRateBlockE = {{
    {"connRate", Num(6144), 0, kInt},
    {"connRate", Num(6144), 1, kInt},
    {"connRate", Num(1920), 2, kInt},
    {"connRate", Num(1344), 3, kInt},
    {"connRate", Num(1024), 4, kInt},
    {"connRate", Num(640),  5, kInt},
    {"connRate", Num(640),  6, kInt},
    {"connRate", Num(512),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Block F.
/* Key, Value (rate), Index (step), Format */
constexpr std::array<SysCapsRow, 8 + 1> connRateBlockF = {{
    {"connRate", Num(6144), 0, kInt},
    {"connRate", Num(6144), 1, kInt},
    {"connRate", Num(1920), 2, kInt},
    {"connRate", Num(1344), 3, kInt},
    {"connRate", Num(1024), 4, kInt},
    {"connRate", Num(640),  5, kInt},
    {"connRate", Num(640),  6, kInt},
    {"connRate", Num(512),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Block G.
/* Key, Value (rate), Index (step), Format */
constexpr std::array<SysCapsRow, 8 + 1> connRateBlockG = {{
    {"connRate", Num(8192), 0, kInt},
    {"connRate", Num(4096), 1, kInt},
    {"connRate", Num(3072), 2, kInt},
    {"connRate", Num(1920), 3, kInt},
    {"connRate", Num(1472), 4, kInt},
    {"connRate", Num(1024), 5, kInt},
    {"connRate", Num(640),  6, kInt},
    {"connRate", Num(512),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
}};

// Block H.
/* Key, Value (rate), Index (step), Format */
constexpr std::array<SysCapsRow, 8 + 1> connRateBlockH = {{
    {"connRate", Num(8192), 0, kInt},
    {"connRate", Num(4096), 1, kInt},
    {"connRate", Num(3072), 2, kInt},
    {"connRate", Num(1920), 3, kInt},
    {"connRate", Num(1472), 4, kInt},
    {"connRate", Num(1024), 5, kInt},
    {"connRate", Num(1024), 6, kInt},
    {"connRate", Num(1024), 7, kInt},
    {nullptr, Num(0), 0, nullptr},
}};
// clang-format on

// Every row of a block has its key and index in category 0 of every set, so none is skipped.
template <std::size_t N> constexpr bool BlockFitsEverySet(const std::array<SysCapsRow, N> &block) {
    for (std::size_t i = 0; i + 1 < N; ++i) {
        const char *key     = block[i].Key;
        const int32_t index = block[i].Index;
        if (FindRow(kVideo14, key, index) == nullptr || FindRow(kVideo16, key, index) == nullptr ||
            FindRow(kVideo18, key, index) == nullptr || FindRow(kVideo20, key, index) == nullptr ||
            FindRow(kVideo21, key, index) == nullptr || FindRow(kVideo22, key, index) == nullptr ||
            FindRow(kVideo23, key, index) == nullptr) {
            return false;
        }
    }
    return true;
}

// ---- Checks of the data ----

// Every table is closed, has known formats, unique keys and the list lengths its counts say; the
// IPC numbers of the main video DSPs follow the audio DSPs. Row counts are in the array sizes.

static_assert(SetIsSound(kVideo14, kAudio14, kComm14, kHardware14));
static_assert(SetIsSound(kVideo16, kAudio16, kComm16, kHardware16));
static_assert(SetIsSound(kVideo18, kAudio18, kComm18, kHardware18));
static_assert(SetIsSound(kVideo20, kAudio20, kComm20, kHardware20));
static_assert(SetIsSound(kVideo21, kAudio21, kComm21, kHardware21));
static_assert(SetIsSound(kVideo22, kAudio22, kComm22, kHardware22));
static_assert(SetIsSound(kVideo23, kAudio23, kComm23, kHardware23));
static_assert(TableIsSound(kCategory4));

// Every row of every board block finds its row in category 0 of every set: none is skipped.
static_assert(BlockIsSound(boardBlockA) && BlockFitsEverySet(boardBlockA));
static_assert(BlockIsSound(boardBlockB) && BlockFitsEverySet(boardBlockB));
static_assert(BlockIsSound(boardBlockC) && BlockFitsEverySet(boardBlockC));
static_assert(BlockIsSound(boardBlockD) && BlockFitsEverySet(boardBlockD));
static_assert(BlockIsSound(boardBlockE) && BlockFitsEverySet(boardBlockE));
static_assert(BlockIsSound(boardBlockF) && BlockFitsEverySet(boardBlockF));
static_assert(BlockIsSound(boardBlockG) && BlockFitsEverySet(boardBlockG));
static_assert(BlockIsSound(connRateBlockA) && ConnRateBlockIsSound(connRateBlockA));
static_assert(BlockIsSound(connRateBlockB) && ConnRateBlockIsSound(connRateBlockB));
static_assert(BlockIsSound(connRateBlockC) && ConnRateBlockIsSound(connRateBlockC));
static_assert(BlockIsSound(connRateBlockD) && ConnRateBlockIsSound(connRateBlockD));
static_assert(BlockIsSound(connRateBlockE) && ConnRateBlockIsSound(connRateBlockE));
static_assert(BlockIsSound(connRateBlockF) && ConnRateBlockIsSound(connRateBlockF));
static_assert(BlockIsSound(connRateBlockG) && ConnRateBlockIsSound(connRateBlockG));
static_assert(BlockIsSound(connRateBlockH) && ConnRateBlockIsSound(connRateBlockH));

// ---- Live rows: changed in place by SysCapsSet and the board step ----

// Constant-initialised copies of the tables above; nothing runs at start-up.
constinit auto video14    = kVideo14;
constinit auto video16    = kVideo16;
constinit auto video18    = kVideo18;
constinit auto video20    = kVideo20;
constinit auto video21    = kVideo21;
constinit auto video22    = kVideo22;
constinit auto video23    = kVideo23;
constinit auto audio14    = kAudio14;
constinit auto audio16    = kAudio16;
constinit auto audio18    = kAudio18;
constinit auto audio20    = kAudio20;
constinit auto audio21    = kAudio21;
constinit auto audio22    = kAudio22;
constinit auto audio23    = kAudio23;
constinit auto comm14     = kComm14;
constinit auto comm16     = kComm16;
constinit auto comm18     = kComm18;
constinit auto comm20     = kComm20;
constinit auto comm21     = kComm21;
constinit auto comm22     = kComm22;
constinit auto comm23     = kComm23;
constinit auto hardware14 = kHardware14;
constinit auto hardware16 = kHardware16;
constinit auto hardware18 = kHardware18;
constinit auto hardware20 = kHardware20;
constinit auto hardware21 = kHardware21;
constinit auto hardware22 = kHardware22;
constinit auto hardware23 = kHardware23;
constinit auto category4  = kCategory4;

// ---- Table sets and their selection ----

// The first row of a live table.
template <std::size_t N> constexpr SysCapsRow *Rows(std::array<SysCapsRow, N> &table) {
    return table.data();
}

// clang-format off
/* category 0 video, 1 audio, 2 comm, 3 hardware, 4 (shared by all sets) */
constexpr TableSet set14 = {{Rows(video14), Rows(audio14), Rows(comm14), Rows(hardware14), Rows(category4)}};
constexpr TableSet set16 = {{Rows(video16), Rows(audio16), Rows(comm16), Rows(hardware16), Rows(category4)}};
constexpr TableSet set18 = {{Rows(video18), Rows(audio18), Rows(comm18), Rows(hardware18), Rows(category4)}};
constexpr TableSet set20 = {{Rows(video20), Rows(audio20), Rows(comm20), Rows(hardware20), Rows(category4)}};
constexpr TableSet set21 = {{Rows(video21), Rows(audio21), Rows(comm21), Rows(hardware21), Rows(category4)}};
constexpr TableSet set22 = {{Rows(video22), Rows(audio22), Rows(comm22), Rows(hardware22), Rows(category4)}};
constexpr TableSet set23 = {{Rows(video23), Rows(audio23), Rows(comm23), Rows(hardware23), Rows(category4)}};

/* SysType, table set */
constexpr std::array<TypeTableSet, 8> typeTableSets = {{
    {14, &set14},
    {16, &set16},
    {17, &set16},
    {18, &set18},
    {20, &set20},
    {21, &set21},
    {22, &set22},
    {23, &set23},
}};
// clang-format on

/* Block A to G, in the order of BoardBlock */
constexpr std::array<const SysCapsRow *, 7> boardBlocks = {
    boardBlockA.data(), boardBlockB.data(), boardBlockC.data(), boardBlockD.data(),
    boardBlockE.data(), boardBlockF.data(), boardBlockG.data(),
};

/* Block A to H, in the order of ConnRateBlock */
constexpr std::array<const SysCapsRow *, 8> connRateBlocks = {
    connRateBlockA.data(), connRateBlockB.data(), connRateBlockC.data(), connRateBlockD.data(),
    connRateBlockE.data(), connRateBlockF.data(), connRateBlockG.data(), connRateBlockH.data(),
};

} // namespace

std::span<const TypeTableSet> TypeTableSets() {
    return typeTableSets;
}

const TableSet *TableSetOfType(int32_t type) {
    for (const TypeTableSet &row : typeTableSets) {
        if (row.Type == type) {
            return row.Set;
        }
    }
    return nullptr;
}

const SysCapsRow *BoardBlockRows(BoardBlock block) {
    const auto i = static_cast<std::size_t>(block);
    OS_ASSERT(i < boardBlocks.size());
    return boardBlocks[i];
}

const SysCapsRow *ConnRateBlockRows(ConnRateBlock block) {
    const auto i = static_cast<std::size_t>(block);
    OS_ASSERT(i < connRateBlocks.size());
    return connRateBlocks[i];
}

void RestoreRowsForTest() {
    video14    = kVideo14;
    video16    = kVideo16;
    video18    = kVideo18;
    video20    = kVideo20;
    video21    = kVideo21;
    video22    = kVideo22;
    video23    = kVideo23;
    audio14    = kAudio14;
    audio16    = kAudio16;
    audio18    = kAudio18;
    audio20    = kAudio20;
    audio21    = kAudio21;
    audio22    = kAudio22;
    audio23    = kAudio23;
    comm14     = kComm14;
    comm16     = kComm16;
    comm18     = kComm18;
    comm20     = kComm20;
    comm21     = kComm21;
    comm22     = kComm22;
    comm23     = kComm23;
    hardware14 = kHardware14;
    hardware16 = kHardware16;
    hardware18 = kHardware18;
    hardware20 = kHardware20;
    hardware21 = kHardware21;
    hardware22 = kHardware22;
    hardware23 = kHardware23;
    category4  = kCategory4;
}

} // namespace sysCaps
