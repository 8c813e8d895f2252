// Capability data: the category tables of every table set, the HDAM board override blocks, the
// connection-rate blocks, and the selection of a table set by SysType.
//
// The codes of MainDspType, HdamDspType, HdamFpgaType, HdamFpgaVendor, FpgaLoadFamily and
// h320VantrelType, the bits of ViopCamCtrl, Ths7303CamCtrl and BoardRevsWithRtc, and the numbers
// of FanConfig belong to the programs that read those keys; they are stored and handed on as given.
#include "avc/main/sysCapsData.h"

#include "Common/OS/osAssert.h"

#include <algorithm>
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

using Rows = std::span<const SysCapsRow>;

// Every row but the last has a key, the last has none.
constexpr bool IsClosed(Rows rows) {
    for (std::size_t i = 0; i + 1 < rows.size(); ++i) {
        if (rows[i].Key == nullptr) {
            return false;
        }
    }
    return !rows.empty() && rows.back().Key == nullptr;
}

constexpr const SysCapsRow *FindRow(Rows rows, const char *key, int32_t index) {
    for (std::size_t i = 0; i + 1 < rows.size(); ++i) {
        if (SameText(rows[i].Key, key) && rows[i].Index == index) {
            return &rows[i];
        }
    }
    return nullptr;
}

// Closed; no two rows share key (ignoring case) and index; every format is " %d " or a " %s "
// with a text behind it.
constexpr bool TableIsSound(Rows rows) {
    if (!IsClosed(rows)) {
        return false;
    }
    for (std::size_t i = 0; i + 1 < rows.size(); ++i) {
        const SysCapsRow &row = rows[i];
        const bool isInt      = SameText(row.Format, kInt);
        const bool isText     = SameText(row.Format, kText);
        if (!(isInt || (isText && row.Value.Text != nullptr)) || row.Index < 0) {
            return false;
        }
        for (std::size_t j = i + 1; j + 1 < rows.size(); ++j) {
            if (SameTextNoCase(row.Key, rows[j].Key) && row.Index == rows[j].Index) {
                return false;
            }
        }
    }
    return true;
}

// The list key has exactly the indexes 0 to length - 1.
constexpr bool ListHasLength(Rows rows, const char *listKey, intptr_t length) {
    intptr_t found = 0;
    for (std::size_t i = 0; i + 1 < rows.size(); ++i) {
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
constexpr bool ListMatchesCount(Rows rows, const char *countKey, const char *listKey) {
    const SysCapsRow *count = FindRow(rows, countKey, 0);
    return ListHasLength(rows, listKey, count == nullptr ? 0 : count->Value.Number);
}

// Every table is closed, has known formats, unique keys and the list lengths its counts say; the
// IPC numbers of the main video DSPs follow the audio DSPs.
constexpr bool SetIsSound(Rows video, Rows audio, Rows comm, Rows hardware) {
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

// Eight connRate rows with the steps 0 to 7 in order, and the closing row.
constexpr bool ConnRateBlockIsSound(Rows rows) {
    if (!TableIsSound(rows) || rows.size() != 8 + 1) {
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

// Set 14, category 0.
/* Key, Value, Index (list position; PixelWorks device for the gains), Format */
constexpr auto kVideo14 = std::to_array<SysCapsRow>({
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
});

// Set 16 (types 16 and 17), category 0.
/* Key, Value, Index (list position; PixelWorks device for the gains), Format */
constexpr auto kVideo16 = std::to_array<SysCapsRow>({
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
});

// Set 18, category 0.
/* Key, Value, Index (list position; PixelWorks device for the gains), Format */
constexpr auto kVideo18 = std::to_array<SysCapsRow>({
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
});

// Set 20, category 0.
/* Key, Value, Index (list position; PixelWorks device for the gains), Format */
constexpr auto kVideo20 = std::to_array<SysCapsRow>({
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
});

// Set 21, category 0.
/* Key, Value, Index (list position; PixelWorks device for the gains), Format */
constexpr auto kVideo21 = std::to_array<SysCapsRow>({
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
});

// Set 22, category 0.
/* Key, Value, Index (list position; PixelWorks device for the gains), Format */
constexpr auto kVideo22 = std::to_array<SysCapsRow>({
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
});

// Set 23, category 0.
/* Key, Value, Index (list position; PixelWorks device for the gains), Format */
constexpr auto kVideo23 = std::to_array<SysCapsRow>({
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
});

// ---- Category 1, "audio" ----

// Set 14, category 1.
/* Key, Value, Index (list position), Format */
constexpr auto kAudio14 = std::to_array<SysCapsRow>({
    {"IpcNumFirstAudioDsp", Num(1), 0, kInt},
    {"AudioDspCnt",         Num(3), 0, kInt},
    {"AudioDspPciBus",      Num(3), 0, kInt},
    {"AudioDspPciBus",      Num(3), 1, kInt},
    {"AudioDspPciBus",      Num(3), 2, kInt},
    {"AudioDspPciDev",      Num(0), 0, kInt},
    {"AudioDspPciDev",      Num(1), 1, kInt},
    {"AudioDspPciDev",      Num(2), 2, kInt},
    {nullptr, Num(0), 0, nullptr},
});

// Set 16 (types 16 and 17), category 1.
/* Key, Value, Index (list position), Format */
constexpr auto kAudio16 = std::to_array<SysCapsRow>({
    {"IpcNumFirstAudioDsp", Num(1), 0, kInt},
    {"AudioDspCnt",         Num(2), 0, kInt},
    {"AudioDspPciBus",      Num(3), 0, kInt},
    {"AudioDspPciBus",      Num(3), 1, kInt},
    {"AudioDspPciDev",      Num(1), 0, kInt},
    {"AudioDspPciDev",      Num(2), 1, kInt},
    {nullptr, Num(0), 0, nullptr},
});

// Set 18, category 1.
/* Key, Value, Index (list position), Format */
constexpr auto kAudio18 = std::to_array<SysCapsRow>({
    {"IpcNumFirstAudioDsp", Num(1),  0, kInt},
    {"AudioDspCnt",         Num(1),  0, kInt},
    {"AudioDspPciBus",      Num(0),  0, kInt},
    {"AudioDspPciDev",      Num(16), 0, kInt},
    {nullptr, Num(0), 0, nullptr},
});

// Set 20, category 1.
/* Key, Value, Index (list position), Format */
constexpr auto kAudio20 = std::to_array<SysCapsRow>({
    {"IpcNumFirstAudioDsp", Num(1),  0, kInt},
    {"AudioDspCnt",         Num(1),  0, kInt},
    {"AudioDspPciBus",      Num(0),  0, kInt},
    {"AudioDspPciDev",      Num(16), 0, kInt},
    {nullptr, Num(0), 0, nullptr},
});

// Set 21, category 1.
/* Key, Value, Index (list position), Format */
constexpr auto kAudio21 = std::to_array<SysCapsRow>({
    {"IpcNumFirstAudioDsp", Num(1),  0, kInt},
    {"AudioDspCnt",         Num(1),  0, kInt},
    {"AudioDspPciBus",      Num(0),  0, kInt},
    {"AudioDspPciDev",      Num(16), 0, kInt},
    {nullptr, Num(0), 0, nullptr},
});

// Set 22, category 1.
/* Key, Value, Index (list position), Format */
constexpr auto kAudio22 = std::to_array<SysCapsRow>({
    {"IpcNumFirstAudioDsp", Num(1),  0, kInt},
    {"AudioDspCnt",         Num(1),  0, kInt},
    {"AudioDspPciBus",      Num(0),  0, kInt},
    {"AudioDspPciDev",      Num(16), 0, kInt},
    {nullptr, Num(0), 0, nullptr},
});

// Set 23, category 1.
/* Key, Value, Index (list position), Format */
constexpr auto kAudio23 = std::to_array<SysCapsRow>({
    {"IpcNumFirstAudioDsp", Num(1),  0, kInt},
    {"AudioDspCnt",         Num(1),  0, kInt},
    {"AudioDspPciBus",      Num(0),  0, kInt},
    {"AudioDspPciDev",      Num(16), 0, kInt},
    {nullptr, Num(0), 0, nullptr},
});

// ---- Category 2, "comm" ----

// Set 14, category 2.
/* Key, Value, Index (list position; step for connRate), Format */
constexpr auto kComm14 = std::to_array<SysCapsRow>({
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
});

// Set 16 (types 16 and 17), category 2.
/* Key, Value, Index (list position; step for connRate), Format */
constexpr auto kComm16 = std::to_array<SysCapsRow>({
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
});

// Set 18, category 2.
/* Key, Value, Index (list position; step for connRate), Format */
constexpr auto kComm18 = std::to_array<SysCapsRow>({
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
});

// Set 20, category 2.
/* Key, Value, Index (list position; step for connRate), Format */
constexpr auto kComm20 = std::to_array<SysCapsRow>({
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
});

// Set 21, category 2.
/* Key, Value, Index (list position; step for connRate), Format */
constexpr auto kComm21 = std::to_array<SysCapsRow>({
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
});

// Set 22, category 2.
/* Key, Value, Index (list position; step for connRate), Format */
constexpr auto kComm22 = std::to_array<SysCapsRow>({
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
});

// Set 23, category 2.
/* Key, Value, Index (list position; step for connRate), Format */
constexpr auto kComm23 = std::to_array<SysCapsRow>({
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
});

// ---- Category 3, "hardware" ----

// Set 14, category 3.
/* Key, Value, Index (list position; fan for FanConfig), Format */
constexpr auto kHardware14 = std::to_array<SysCapsRow>({
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
});

// Set 16 (types 16 and 17), category 3.
/* Key, Value, Index (list position; fan for FanConfig), Format */
constexpr auto kHardware16 = std::to_array<SysCapsRow>({
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
});

// Set 18, category 3.
/* Key, Value, Index (list position; fan for FanConfig), Format */
constexpr auto kHardware18 = std::to_array<SysCapsRow>({
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
});

// Set 20, category 3.
/* Key, Value, Index (list position; fan for FanConfig), Format */
constexpr auto kHardware20 = std::to_array<SysCapsRow>({
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
});

// Set 21, category 3.
/* Key, Value, Index (list position; fan for FanConfig), Format */
constexpr auto kHardware21 = std::to_array<SysCapsRow>({
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
});

// Set 22, category 3.
/* Key, Value, Index (list position; fan for FanConfig), Format */
constexpr auto kHardware22 = std::to_array<SysCapsRow>({
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
});

// Set 23, category 3.
/* Key, Value, Index (list position; fan for FanConfig), Format */
constexpr auto kHardware23 = std::to_array<SysCapsRow>({
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
});

// ---- Category 4 ----

// One table for every set.
/* Key, Value, Index, Format */
constexpr auto kCategory4 = std::to_array<SysCapsRow>({
    {"amxRevision", Text("1.0.0"), 0, kText},
    {nullptr, Num(0), 0, nullptr},
});
// ---- Override blocks of the HDAM boards (category 0; only Key, Value and Index are read) ----

// Block A.
/* Key, Value, Index (HDAM DSP position), Format */
constexpr auto boardBlockA = std::to_array<SysCapsRow>({
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
});

// Block B.
/* Key, Value, Index (HDAM DSP position), Format */
constexpr auto boardBlockB = std::to_array<SysCapsRow>({
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
});

// Block C.
/* Key, Value, Index (HDAM DSP position), Format */
constexpr auto boardBlockC = std::to_array<SysCapsRow>({
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
});

// Block D.
/* Key, Value, Index (HDAM DSP position), Format */
constexpr auto boardBlockD = std::to_array<SysCapsRow>({
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
});

// Block E.
/* Key, Value, Index (HDAM DSP position), Format */
constexpr auto boardBlockE = std::to_array<SysCapsRow>({
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
});

// Block F.
/* Key, Value, Index (HDAM DSP position), Format */
constexpr auto boardBlockF = std::to_array<SysCapsRow>({
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
});

// Block G.
/* Key, Value, Index (HDAM DSP position), Format */
constexpr auto boardBlockG = std::to_array<SysCapsRow>({
    {"HdamFpgaType",       Num(1),  0, kInt},
    {"HdamFpgaVendor",     Num(1),  0, kInt},
    {"HdamDspType",        Num(2),  0, kInt},
    {"IpcNumFirstHdamDsp", Num(6),  0, kInt},
    {"HdamDspCnt",         Num(1),  0, kInt},
    {"HdamDspPciBus",      Num(0),  0, kInt},
    {"HdamDspPciDev",      Num(18), 0, kInt},
    {nullptr, Num(0), 0, nullptr},
});
// ---- connRate blocks (category 2) ----

// Block A.
/* Key, Value (rate), Index (step), Format */
constexpr auto connRateBlockA = std::to_array<SysCapsRow>({
    {"connRate", Num(1920), 0, kInt},
    {"connRate", Num(1920), 1, kInt},
    {"connRate", Num(960),  2, kInt},
    {"connRate", Num(640),  3, kInt},
    {"connRate", Num(448),  4, kInt},
    {"connRate", Num(384),  5, kInt},
    {"connRate", Num(320),  6, kInt},
    {"connRate", Num(256),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
});

// Block B.
/* Key, Value (rate), Index (step), Format */
constexpr auto connRateBlockB = std::to_array<SysCapsRow>({
    {"connRate", Num(1920), 0, kInt},
    {"connRate", Num(1920), 1, kInt},
    {"connRate", Num(1024), 2, kInt},
    {"connRate", Num(640),  3, kInt},
    {"connRate", Num(448),  4, kInt},
    {"connRate", Num(384),  5, kInt},
    {"connRate", Num(320),  6, kInt},
    {"connRate", Num(256),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
});

// Block C.
/* Key, Value (rate), Index (step), Format */
constexpr auto connRateBlockC = std::to_array<SysCapsRow>({
    {"connRate", Num(4096), 0, kInt},
    {"connRate", Num(4096), 1, kInt},
    {"connRate", Num(1920), 2, kInt},
    {"connRate", Num(1344), 3, kInt},
    {"connRate", Num(1024), 4, kInt},
    {"connRate", Num(768),  5, kInt},
    {"connRate", Num(640),  6, kInt},
    {"connRate", Num(512),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
});

// Block D.
/* Key, Value (rate), Index (step), Format */
constexpr auto connRateBlockD = std::to_array<SysCapsRow>({
    {"connRate", Num(4096), 0, kInt},
    {"connRate", Num(4096), 1, kInt},
    {"connRate", Num(1920), 2, kInt},
    {"connRate", Num(1344), 3, kInt},
    {"connRate", Num(1024), 4, kInt},
    {"connRate", Num(768),  5, kInt},
    {"connRate", Num(640),  6, kInt},
    {"connRate", Num(512),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
});

// Block E.
/* Key, Value (rate), Index (step), Format */
constexpr auto connRateBlockE = std::to_array<SysCapsRow>({
    {"connRate", Num(6144), 0, kInt},
    {"connRate", Num(6144), 1, kInt},
    {"connRate", Num(1920), 2, kInt},
    {"connRate", Num(1344), 3, kInt},
    {"connRate", Num(1024), 4, kInt},
    {"connRate", Num(640),  5, kInt},
    {"connRate", Num(640),  6, kInt},
    {"connRate", Num(512),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
});

// Block F.
/* Key, Value (rate), Index (step), Format */
constexpr auto connRateBlockF = std::to_array<SysCapsRow>({
    {"connRate", Num(6144), 0, kInt},
    {"connRate", Num(6144), 1, kInt},
    {"connRate", Num(1920), 2, kInt},
    {"connRate", Num(1344), 3, kInt},
    {"connRate", Num(1024), 4, kInt},
    {"connRate", Num(640),  5, kInt},
    {"connRate", Num(640),  6, kInt},
    {"connRate", Num(512),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
});

// Block G.
/* Key, Value (rate), Index (step), Format */
constexpr auto connRateBlockG = std::to_array<SysCapsRow>({
    {"connRate", Num(8192), 0, kInt},
    {"connRate", Num(4096), 1, kInt},
    {"connRate", Num(3072), 2, kInt},
    {"connRate", Num(1920), 3, kInt},
    {"connRate", Num(1472), 4, kInt},
    {"connRate", Num(1024), 5, kInt},
    {"connRate", Num(640),  6, kInt},
    {"connRate", Num(512),  7, kInt},
    {nullptr, Num(0), 0, nullptr},
});

// Block H.
/* Key, Value (rate), Index (step), Format */
constexpr auto connRateBlockH = std::to_array<SysCapsRow>({
    {"connRate", Num(8192), 0, kInt},
    {"connRate", Num(4096), 1, kInt},
    {"connRate", Num(3072), 2, kInt},
    {"connRate", Num(1920), 3, kInt},
    {"connRate", Num(1472), 4, kInt},
    {"connRate", Num(1024), 5, kInt},
    {"connRate", Num(1024), 6, kInt},
    {"connRate", Num(1024), 7, kInt},
    {nullptr, Num(0), 0, nullptr},
});
// clang-format on

// ---- Live rows: changed in place by SysCapsSet and the board step ----

// The live copy of a constant table, constant-initialised: nothing runs at start-up.
template <const auto &Start> constinit auto liveRows = Start;

// One category table of a set: its live rows and the constant rows they start from.
struct LiveTable {
    SysCapsRow *Rows;
    std::span<const SysCapsRow> Start;
};

template <const auto &Start> constexpr LiveTable Live() {
    return {liveRows<Start>.data(), Start};
}

// One table set: the SysTypes that use it (0: none) and its tables by category.
struct SetRow {
    int32_t Type;
    int32_t AlsoType;
    std::array<LiveTable, kCategoryCount> Tables;
};

// clang-format off
/* SysType, other SysType, category 0 video, 1 audio, 2 comm, 3 hardware, 4 (one table for every set) */
constexpr SetRow setRows[] = {
    {14, 0,  {Live<kVideo14>(), Live<kAudio14>(), Live<kComm14>(), Live<kHardware14>(), Live<kCategory4>()}},
    {16, 17, {Live<kVideo16>(), Live<kAudio16>(), Live<kComm16>(), Live<kHardware16>(), Live<kCategory4>()}},
    {18, 0,  {Live<kVideo18>(), Live<kAudio18>(), Live<kComm18>(), Live<kHardware18>(), Live<kCategory4>()}},
    {20, 0,  {Live<kVideo20>(), Live<kAudio20>(), Live<kComm20>(), Live<kHardware20>(), Live<kCategory4>()}},
    {21, 0,  {Live<kVideo21>(), Live<kAudio21>(), Live<kComm21>(), Live<kHardware21>(), Live<kCategory4>()}},
    {22, 0,  {Live<kVideo22>(), Live<kAudio22>(), Live<kComm22>(), Live<kHardware22>(), Live<kCategory4>()}},
    {23, 0,  {Live<kVideo23>(), Live<kAudio23>(), Live<kComm23>(), Live<kHardware23>(), Live<kCategory4>()}},
};

/* Blocks in the order of BoardBlock and ConnRateBlock */
constexpr Rows boardBlocks[]    = {boardBlockA, boardBlockB, boardBlockC, boardBlockD, boardBlockE, boardBlockF, boardBlockG};
constexpr Rows connRateBlocks[] = {connRateBlockA, connRateBlockB, connRateBlockC, connRateBlockD,
                                   connRateBlockE, connRateBlockF, connRateBlockG, connRateBlockH};
// clang-format on

// ---- Checks of the data ----

// Every set is sound; so are the blocks; every row of a board block finds its row in category 0
// of every set, so none is skipped.
constexpr bool DataIsSound() {
    for (const SetRow &set : setRows) {
        if (!SetIsSound(set.Tables[0].Start, set.Tables[1].Start, set.Tables[2].Start,
                        set.Tables[3].Start) ||
            !TableIsSound(set.Tables[4].Start)) {
            return false;
        }
    }
    for (Rows block : boardBlocks) {
        if (!TableIsSound(block)) {
            return false;
        }
        for (std::size_t i = 0; i + 1 < block.size(); ++i) {
            for (const SetRow &set : setRows) {
                if (FindRow(set.Tables[0].Start, block[i].Key, block[i].Index) == nullptr) {
                    return false;
                }
            }
        }
    }
    for (Rows block : connRateBlocks) {
        if (!ConnRateBlockIsSound(block)) {
            return false;
        }
    }
    return true;
}
static_assert(DataIsSound());
static_assert(std::size(boardBlocks) == static_cast<std::size_t>(BoardBlock::G) + 1 &&
                  std::size(connRateBlocks) == static_cast<std::size_t>(ConnRateBlock::H) + 1,
              "one block for each name");

// ---- Table sets and their selection, derived from the set rows ----

constexpr std::size_t kSetCount = std::size(setRows);

constexpr std::array<TableSet, kSetCount> MakeTableSets() {
    std::array<TableSet, kSetCount> sets{};
    for (std::size_t i = 0; i < kSetCount; ++i) {
        for (std::size_t c = 0; c < kCategoryCount; ++c) {
            sets[i][c] = setRows[i].Tables[c].Rows;
        }
    }
    return sets;
}
constexpr std::array<TableSet, kSetCount> tableSets = MakeTableSets();

constexpr std::size_t CountTypes() {
    std::size_t count = 0;
    for (const SetRow &set : setRows) {
        count += set.AlsoType != 0 ? 2 : 1;
    }
    return count;
}

constexpr std::array<TypeTableSet, CountTypes()> MakeTypeTableSets() {
    std::array<TypeTableSet, CountTypes()> types{};
    std::size_t at = 0;
    for (std::size_t i = 0; i < kSetCount; ++i) {
        types[at++] = {setRows[i].Type, &tableSets[i]};
        if (setRows[i].AlsoType != 0) {
            types[at++] = {setRows[i].AlsoType, &tableSets[i]};
        }
    }
    return types;
}
constexpr auto typeTableSets = MakeTypeTableSets();

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
    OS_ASSERT(i < std::size(boardBlocks));
    return boardBlocks[i].data();
}

const SysCapsRow *ConnRateBlockRows(ConnRateBlock block) {
    const auto i = static_cast<std::size_t>(block);
    OS_ASSERT(i < std::size(connRateBlocks));
    return connRateBlocks[i].data();
}

void RestoreRowsForTest() {
    for (const SetRow &set : setRows) {
        for (const LiveTable &table : set.Tables) {
            std::copy(table.Start.begin(), table.Start.end(), table.Rows);
        }
    }
}

} // namespace sysCaps
