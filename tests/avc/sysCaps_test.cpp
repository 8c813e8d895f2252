// Tests of the capability tables: invariants of every table set and block, selection at the first
// access, the board step per board word and family, and the lookups' edge cases.
#include "avc/main/sysCaps.h"

#include "avc/main/sysCapsData.h"
#include "avc/main/sysType.h"
#include "tests/avc/sysTypeEnvGuard.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace {

using Snapshot = std::map<std::tuple<uint32_t, std::string, int32_t>, std::string>;

const int32_t kTypesWithTables[] = {14, 16, 17, 18, 20, 21, 22, 23};

std::string Lower(const char *text) {
    std::string out(text);
    for (char &c : out) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return out;
}

// Each test starts with no table set selected and every row at its start value, and leaves the
// same behind, whatever it selected or changed.
class SysCapsTest : public ::testing::Test {
  protected:
    void SetUp() override {
        savedType_ = SysTypeGet();
        Fresh();
    }
    void TearDown() override {
        Fresh();
        SysTypeSet(savedType_);
    }
    static void Fresh() {
        sysCaps::RestoreRowsForTest();
        sysCaps::ForgetSelectionForTest();
    }
    // Selects the set of `type` at a first access, with the board variable at `board` (nullptr:
    // unset) during that access only.
    static void Select(int32_t type, const char *board) {
        Fresh();
        ScopedEnv env(SYS_HDAM_ENV_NAME, board);
        SysTypeSet(type);
        (void)SysCapsGet(SYS_CAPS_CAT4, "amxRevision", 0, nullptr);
    }
    static SysCapsWord Get(SysCapsCategory category, const char *key, int32_t index = 0) {
        return SysCapsGet(category, key, index, nullptr);
    }
    // Every row of the selected set of `type`, printed.
    static Snapshot Take(int32_t type) {
        Snapshot out;
        const sysCaps::TableSet *set = sysCaps::TableSetOfType(type);
        for (uint32_t c = 0; c < sysCaps::kCategoryCount; ++c) {
            for (const SysCapsRow *row = (*set)[c]; row->Key != nullptr; ++row) {
                char text[SYS_CAPS_TEXT_SIZE];
                (void)SysCapsGet(c, row->Key, row->Index, text);
                out[{c, row->Key, row->Index}] = text;
            }
        }
        return out;
    }

  private:
    int32_t savedType_ = 0;
};

// ---- Invariants of the data ----

TEST_F(SysCapsTest, RowCountsPerCategoryAndSet) {
    struct Counts {
        int32_t Type;
        int Rows[5];
        int All;
    };
    const Counts expected[] = {
        {14, {51, 8, 27, 21, 1}, 108}, {16, {45, 6, 27, 37, 1}, 116}, {17, {45, 6, 27, 37, 1}, 116},
        {18, {46, 4, 27, 36, 1}, 114}, {20, {44, 4, 27, 34, 1}, 110}, {21, {44, 4, 27, 36, 1}, 112},
        {22, {40, 4, 27, 34, 1}, 106}, {23, {46, 4, 27, 36, 1}, 114},
    };
    ASSERT_EQ(sysCaps::TypeTableSets().size(), std::size(expected));
    for (const Counts &e : expected) {
        const sysCaps::TableSet *set = sysCaps::TableSetOfType(e.Type);
        ASSERT_NE(set, nullptr) << e.Type;
        int all = 0;
        for (uint32_t c = 0; c < sysCaps::kCategoryCount; ++c) {
            int rows = 0;
            for (const SysCapsRow *row = (*set)[c]; row->Key != nullptr; ++row) {
                ++rows;
            }
            EXPECT_EQ(rows, e.Rows[c]) << "type " << e.Type << " category " << c;
            all += rows;
        }
        EXPECT_EQ(all, e.All) << e.Type;
    }
}

TEST_F(SysCapsTest, SetsAreSharedOnlyWhereTheModelsShareThem) {
    std::set<const sysCaps::TableSet *> sets;
    std::set<const SysCapsRow *> category4;
    std::set<const SysCapsRow *> otherTables;
    for (const sysCaps::TypeTableSet &row : sysCaps::TypeTableSets()) {
        sets.insert(row.Set);
        category4.insert((*row.Set)[SYS_CAPS_CAT4]);
        if (row.Type != 17) {
            for (uint32_t c = 0; c < SYS_CAPS_CAT4; ++c) {
                EXPECT_TRUE(otherTables.insert((*row.Set)[c]).second) << row.Type << " " << c;
            }
        }
    }
    EXPECT_EQ(sets.size(), 7u);
    EXPECT_EQ(category4.size(), 1u);
    EXPECT_EQ(sysCaps::TableSetOfType(16), sysCaps::TableSetOfType(17));
    for (int32_t none : {0, 13, 15, 19, 24, -18}) {
        EXPECT_EQ(sysCaps::TableSetOfType(none), nullptr) << none;
    }
}

TEST_F(SysCapsTest, KeysAreUniqueAndBelongToOneCategory) {
    for (const sysCaps::TypeTableSet &entry : sysCaps::TypeTableSets()) {
        std::map<std::string, uint32_t> categoryOfKey;
        for (uint32_t c = 0; c < sysCaps::kCategoryCount; ++c) {
            std::set<std::pair<std::string, int32_t>> seen;
            for (const SysCapsRow *row = (*entry.Set)[c]; row->Key != nullptr; ++row) {
                EXPECT_TRUE(seen.insert({Lower(row->Key), row->Index}).second)
                    << entry.Type << " " << row->Key << " " << row->Index;
                auto [it, fresh] = categoryOfKey.insert({Lower(row->Key), c});
                EXPECT_TRUE(fresh || it->second == c) << entry.Type << " " << row->Key;
                EXPECT_GE(row->Index, 0) << row->Key;
            }
        }
    }
}

TEST_F(SysCapsTest, ListsHaveAsManyRowsAsTheirCounts) {
    struct List {
        uint32_t Category;
        const char *CountKey;
        const char *ListKey;
    };
    const List lists[] = {
        {SYS_CAPS_VIDEO, "MainVidDspCnt", "MainVidDspPciBus"},
        {SYS_CAPS_VIDEO, "MainVidDspCnt", "MainVidDspPciDev"},
        {SYS_CAPS_AUDIO, "AudioDspCnt", "AudioDspPciBus"},
        {SYS_CAPS_AUDIO, "AudioDspCnt", "AudioDspPciDev"},
        {SYS_CAPS_HARDWARE, "numMonitors", "monitorPresent"},
        {SYS_CAPS_HARDWARE, "numCameras", "cameraPresent"},
    };
    for (int32_t type : kTypesWithTables) {
        Select(type, nullptr);
        for (const List &l : lists) {
            const SysCapsWord count = Get(l.Category, l.CountKey);
            int rows                = 0;
            for (const SysCapsRow *row = (*sysCaps::TableSetOfType(type))[l.Category];
                 row->Key != nullptr; ++row) {
                if (std::strcmp(row->Key, l.ListKey) == 0) {
                    EXPECT_LT(row->Index, count) << type << " " << l.ListKey;
                    ++rows;
                }
            }
            EXPECT_EQ(rows, count) << type << " " << l.ListKey;
        }
        // The HDAM lists always have eight rows, whatever HdamDspCnt says.
        for (int32_t i = 0; i < 8; ++i) {
            char text[SYS_CAPS_TEXT_SIZE] = "untouched";
            EXPECT_EQ(SysCapsGet(SYS_CAPS_VIDEO, "HdamDspPciDev", i, text), 0);
            EXPECT_STREQ(text, " 0 ") << type << " " << i;
        }
        for (int32_t i = 0; i < 8; ++i) {
            EXPECT_NE(Get(SYS_CAPS_COMM, "connRate", i), 0) << type << " step " << i;
        }
    }
}

TEST_F(SysCapsTest, IpcNumbersFollowOnFromEachOther) {
    for (int32_t type : kTypesWithTables) {
        Select(type, "DM642");
        const SysCapsWord firstVideo = Get(SYS_CAPS_VIDEO, "IpcNumFirstMainVidDsp");
        EXPECT_EQ(Get(SYS_CAPS_AUDIO, "IpcNumFirstAudioDsp"), 1) << type;
        EXPECT_EQ(firstVideo, 1 + Get(SYS_CAPS_AUDIO, "AudioDspCnt")) << type;
        const SysCapsWord firstHdam = Get(SYS_CAPS_VIDEO, "IpcNumFirstHdamDsp");
        if (type == 22) {
            EXPECT_EQ(firstHdam, 6); // block C is written for four main video DSPs; this has two
        } else {
            EXPECT_EQ(firstHdam, firstVideo + Get(SYS_CAPS_VIDEO, "MainVidDspCnt")) << type;
        }
    }
}

TEST_F(SysCapsTest, EveryRowPrintsWithItsBlanksWithinTheBufferSize) {
    size_t longest = 0;
    for (int32_t type : kTypesWithTables) {
        Select(type, nullptr);
        for (const auto &[where, text] : Take(type)) {
            ASSERT_GE(text.size(), 3u);
            EXPECT_EQ(text.front(), ' ');
            EXPECT_EQ(text.back(), ' ');
            EXPECT_NE(text[1], ' ') << std::get<1>(where);
            longest = std::max(longest, text.size());
        }
    }
    EXPECT_EQ(longest, 58u);
    EXPECT_LT(longest, SYS_CAPS_TEXT_SIZE);
}

TEST_F(SysCapsTest, GainTextsAreSixNumbersWhereThePixelWorksDevicesAre) {
    const char *keys[] = {"CompGains", "SvideoGains", "VGAGains"};
    for (int32_t type : kTypesWithTables) {
        Select(type, nullptr);
        const SysCapsWord devices = Get(SYS_CAPS_VIDEO, "HwNumPixelWorks");
        for (const char *key : keys) {
            for (int32_t index = 0; index < 4; ++index) {
                const char *text = reinterpret_cast<const char *>(Get(SYS_CAPS_VIDEO, key, index));
                if (text == nullptr) {
                    continue;
                }
                // Composite and S-video gains per device; the VGA gains only on the third input.
                if (std::strcmp(key, "VGAGains") == 0) {
                    EXPECT_EQ(index, 2) << type;
                } else {
                    EXPECT_LT(index, devices) << type << " " << key;
                }
                int v[6];
                char tail;
                EXPECT_EQ(std::sscanf(text, "%d, %d, %d, %d, %d, %d%c", &v[0], &v[1], &v[2], &v[3],
                                      &v[4], &v[5], &tail),
                          6)
                    << text;
            }
        }
    }
}

TEST_F(SysCapsTest, FanConfigsHaveTheirPairsAndSlopes) {
    for (int32_t type : kTypesWithTables) {
        Select(type, nullptr);
        for (int32_t index = 0; index < 4; ++index) {
            const char *text =
                reinterpret_cast<const char *>(Get(SYS_CAPS_HARDWARE, "FanConfig", index));
            if (text == nullptr) {
                continue;
            }
            std::vector<long> v;
            for (const char *p = text; *p != '\0';) {
                char *end = nullptr;
                v.push_back(std::strtol(p, &end, 10));
                ASSERT_NE(end, p) << text;
                p = end;
                if (*p == ',') {
                    ++p;
                }
            }
            ASSERT_GE(v.size(), 3u) << text;
            EXPECT_EQ(v[0], 16);
            const size_t n = static_cast<size_t>(v[1]);
            ASSERT_LT(2 + 2 * n, v.size()) << text;
            const size_t m = static_cast<size_t>(v[2 + 2 * n]);
            ASSERT_EQ(v.size(), 3 + 2 * n + 2 * m) << text;
            for (size_t i = 1; i < m; ++i) {
                const size_t at = 3 + 2 * n + 2 * i;
                EXPECT_GT(v[at], v[at - 2]) << text;
                EXPECT_LT(v[at + 1], v[at - 1]) << text;
            }
        }
    }
}

TEST_F(SysCapsTest, FamiliesNameAModelOfTheirOwn) {
    for (int32_t type : kTypesWithTables) {
        Select(type, nullptr);
        const SysCapsWord family = Get(SYS_CAPS_HARDWARE, "HwFamily");
        const char *word         = HwFamilyToName(static_cast<int32_t>(family));
        ASSERT_NE(word, nullptr) << type;
        const int32_t model = SysTypeFromName(word);
        Select(model, nullptr);
        EXPECT_EQ(Get(SYS_CAPS_HARDWARE, "HwFamily"), family) << type << " " << word;
    }
}

TEST_F(SysCapsTest, ConnRateBlocksStartAtTheirRate) {
    struct Pick {
        int32_t Rate, FlagA, FlagB;
        sysCaps::ConnRateBlock Block;
    };
    using B            = sysCaps::ConnRateBlock;
    const Pick picks[] = {
        {8192, 1, 0, B::H}, {8192, -1, 0, B::H}, {8192, 1, 1, B::G},  {8192, 0, 0, B::G},
        {8192, 0, 1, B::G}, {6144, 0, 0, B::E},  {6144, 0, 1, B::E},  {6144, 1, 0, B::F},
        {6144, 1, 1, B::F}, {4096, 0, 7, B::C},  {4096, 2, 0, B::D},  {1920, 1, 0, B::B},
        {1920, 0, 1, B::A}, {0, 0, 0, B::A},     {-8192, 1, 0, B::B}, {8191, 1, 0, B::B},
    };
    for (const Pick &p : picks) {
        const SysCapsRow *block = SysCapsConnRateBlock(12345, p.Rate, p.FlagA, p.FlagB);
        EXPECT_EQ(block, sysCaps::ConnRateBlockRows(p.Block))
            << p.Rate << " " << p.FlagA << " " << p.FlagB;
        // A block for 4096 and up starts at its own rate; the rates fall along the steps.
        if (p.Rate == 4096 || p.Rate == 6144 || p.Rate == 8192) {
            EXPECT_EQ(block[0].Value.Number, p.Rate);
        }
        for (int32_t i = 0; i < 8; ++i) {
            EXPECT_STREQ(block[i].Key, "connRate");
            EXPECT_EQ(block[i].Index, i);
            EXPECT_STREQ(block[i].Format, SYS_CAPS_FMT_INT);
            if (i > 0) {
                EXPECT_LE(block[i].Value.Number, block[i - 1].Value.Number);
            }
        }
        EXPECT_EQ(block[8].Key, nullptr);
    }
    // Applying block A changes nothing on the sets that start with its rates.
    Select(18, nullptr);
    const Snapshot before = Take(18);
    SysCapsApplyBlock(SYS_CAPS_COMM, sysCaps::ConnRateBlockRows(B::A));
    EXPECT_EQ(Take(18), before);
    SysCapsApplyBlock(SYS_CAPS_COMM, sysCaps::ConnRateBlockRows(B::H));
    EXPECT_EQ(Get(SYS_CAPS_COMM, "connRate", 7), 1024);
}

// ---- First access and selection ----

TEST_F(SysCapsTest, ATypeWithoutTablesStopsTheProcess) {
    // The "fast" style forks without exec, which also works under the PowerPC emulator.
    GTEST_FLAG_SET(death_test_style, "fast");
    for (int32_t type : {0, 13, 15, 19, 24, -1}) {
        SysTypeSet(type);
        EXPECT_DEATH((void)SysCapsGet(SYS_CAPS_VIDEO, "HwFamily", 0, nullptr),
                     "avc/main/sysCapsData:1341: initSysCapsTbl: Assertion `0' failed")
            << type;
        EXPECT_DEATH((void)SysCapsSet(7, "HwFamily", 0, 1), "initSysCapsTbl") << type;
    }
}

TEST_F(SysCapsTest, ABadCategorySelectsTheTablesAllTheSame) {
    ScopedEnv env(SYS_HDAM_ENV_NAME, nullptr);
    SysTypeSet(18);
    EXPECT_EQ(SysCapsGet(5, "HwFamily", 0, nullptr), 0);
    SysTypeSet(20); // too late: the set of 18 stays
    EXPECT_NE(Get(SYS_CAPS_VIDEO, "CompGains", 1), 0);

    Fresh();
    SysTypeSet(22);
    EXPECT_EQ(SysCapsSet(UINT32_MAX, "HwFamily", 0, 9), -1);
    SysTypeSet(18);
    EXPECT_EQ(Get(SYS_CAPS_VIDEO, "MainDspType"), 2); // elm's value, from the set of 22
}

TEST_F(SysCapsTest, TheBoardIsReadOnceAtSelection) {
    ScopedEnv env(SYS_HDAM_ENV_NAME, "DM642");
    SysTypeSet(18);
    EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HdamBoardType"), 2);
    env.Set("MOSS_DAVINCI");
    EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HdamBoardType"), 2);
    EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HdamDspType"), 1);
}

// ---- The board step ----

TEST_F(SysCapsTest, BoardStepPerBoardWordAndFamily) {
    struct Case {
        const char *Board;
        int32_t Type;
        SysCapsWord BoardType, FirstHdam, HdamCnt, FpgaType, DspType, Bus2, Dev0;
    };
    const Case cases[] = {
        {nullptr, 18, 0, 0, 0, 1, 0, 0, 0},         {"bogus", 14, 0, 0, 0, 1, 0, 0, 0},
        {"dm642", 14, 2, 13, 5, 2, 1, 9, 0},        {"DM642", 16, 2, 9, 5, 2, 1, 9, 0},
        {"DM642", 17, 2, 9, 5, 2, 1, 9, 0},         {"DM642", 18, 2, 6, 5, 1, 1, 8, 0},
        {"DM642", 22, 2, 6, 5, 1, 1, 8, 0},         {"MOSS_DM642", 14, 3, 9, 3, 3, 1, 8, 1},
        {"MOSS_DM642", 23, 3, 9, 3, 3, 1, 8, 1},    {"moss_davinci", 20, 4, 9, 3, 3, 2, 8, 1},
        {"DAVINCI_QTY3", 16, 5, 6, 3, 1, 2, 8, 1},  {"DAVINCI_QTY1", 21, 6, 6, 1, 1, 2, 0, 18},
        {"DAVINCI_QTY1", 14, 6, 6, 1, 1, 2, 0, 18},
    };
    for (const Case &c : cases) {
        Select(c.Type, c.Board);
        const std::string what =
            std::string(c.Board ? c.Board : "(unset)") + " on " + std::to_string(c.Type);
        EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HdamBoardType"), c.BoardType) << what;
        EXPECT_EQ(Get(SYS_CAPS_VIDEO, "IpcNumFirstHdamDsp"), c.FirstHdam) << what;
        EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HdamDspCnt"), c.HdamCnt) << what;
        EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HdamFpgaType"), c.FpgaType) << what;
        EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HdamDspType"), c.DspType) << what;
        EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HdamDspPciBus", 2), c.Bus2) << what;
        EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HdamDspPciDev", 0), c.Dev0) << what;
    }
}

TEST_F(SysCapsTest, BoardStepChangesOnlyItsRowsOfCategoryZero) {
    for (int32_t type : kTypesWithTables) {
        Select(type, nullptr);
        const Snapshot plain = Take(type);

        Select(type, "NONE");
        Snapshot none = Take(type);
        const Snapshot::key_type boardType{SYS_CAPS_VIDEO, "HdamBoardType", 0};
        EXPECT_EQ(none[boardType], " 1 ");
        none[boardType] = " 0 ";
        EXPECT_EQ(none, plain) << "NONE changes more than HdamBoardType on " << type;

        for (const char *board : {"DM642", "MOSS_DM642", "DAVINCI_QTY1"}) {
            Select(type, board);
            for (const auto &[where, text] : Take(type)) {
                const auto &[category, key, index] = where;
                if (text != plain.at(where)) {
                    EXPECT_EQ(category, SYS_CAPS_VIDEO) << board << " " << key;
                    EXPECT_TRUE(key.rfind("Hdam", 0) == 0 || key == "IpcNumFirstHdamDsp" ||
                                key == "HwNumGennums")
                        << board << " changed " << key << " " << index << " on " << type;
                }
            }
        }
        // MOSS_DM642 and MOSS_DAVINCI give every model two Gennums; the others keep their own.
        Select(type, "MOSS_DM642");
        EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HwNumGennums"), 2) << type;
        Select(type, "DAVINCI_QTY3");
        const Snapshot::key_type gennums{SYS_CAPS_VIDEO, "HwNumGennums", 0};
        EXPECT_EQ(Take(type).at(gennums), plain.at(gennums)) << type;
    }
}

TEST_F(SysCapsTest, DM642OnAnotherFamilyAppliesNoBlock) {
    Select(18, nullptr);
    ASSERT_EQ(SysCapsSet(SYS_CAPS_HARDWARE, "HwFamily", 0, 3), 0);
    ScopedEnv env(SYS_HDAM_ENV_NAME, "DM642");
    SysCapsApplyBoard(18);
    EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HdamBoardType"), 2);
    EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HdamDspCnt"), 0);
    EXPECT_EQ(Get(SYS_CAPS_VIDEO, "IpcNumFirstHdamDsp"), 0);
    // Family 1 on a type other than 14 takes block B, even on a rowan set.
    ASSERT_EQ(SysCapsSet(SYS_CAPS_HARDWARE, "HwFamily", 0, 1), 0);
    SysCapsApplyBoard(18);
    EXPECT_EQ(Get(SYS_CAPS_VIDEO, "IpcNumFirstHdamDsp"), 9);
    SysCapsApplyBoard(14);
    EXPECT_EQ(Get(SYS_CAPS_VIDEO, "IpcNumFirstHdamDsp"), 13);
}

TEST_F(SysCapsTest, ApplyBlockSkipsRowsWithoutAMatch) {
    Select(21, nullptr);
    // clang-format off
    /* Key, Value, Index, Format */
    const SysCapsRow block[] = {
        {"HdamDspCnt",      {.Number = 4},  0, nullptr},
        {"hdamdspcnt",      {.Number = 9},  0, nullptr},
        {"HdamDspPciBus",   {.Number = 9},  8, nullptr},
        {"HwFamily",        {.Number = 9},  0, nullptr},
        {"HdamDspPciDev",   {.Number = 7},  7, nullptr},
        {nullptr,           {.Number = 0},  0, nullptr},
    };
    // clang-format on
    SysCapsApplyBlock(SYS_CAPS_VIDEO, block);
    EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HdamDspCnt"), 4);
    EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HdamDspPciDev", 7), 7);
    EXPECT_EQ(Get(SYS_CAPS_HARDWARE, "HwFamily"), 2);
    const Snapshot before = Take(21);
    SysCapsApplyBlock(SYS_CAPS_VIDEO, nullptr);
    EXPECT_EQ(Take(21), before);
}

// ---- Lookups ----

TEST_F(SysCapsTest, GetAnswersTheValueAndPrintsIt) {
    ScopedEnv env(SYS_HDAM_ENV_NAME, nullptr);
    SysTypeSet(18);
    EXPECT_EQ(Get(SYS_CAPS_HARDWARE, "HwFamily"), 2);
    EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HdamBoardType"), 0);

    char text[SYS_CAPS_TEXT_SIZE] = "untouched";
    EXPECT_EQ(SysCapsGet(SYS_CAPS_HARDWARE, "HwFamily", 0, text), 2);
    EXPECT_STREQ(text, " 2 ");
    EXPECT_EQ(SysCapsGet(SYS_CAPS_HARDWARE, "BoardRevsWithRtc", 0, text), -4);
    EXPECT_STREQ(text, " -4 ");
    EXPECT_EQ(SysCapsGet(SYS_CAPS_HARDWARE, "HwCtrlFpgaFrameBufBaseAddr", 0, text), 0);
    EXPECT_STREQ(text, " 0 "); // a row of value 0 prints

    std::strcpy(text, "untouched");
    const char *missing[][2] = {
        {"hwfamily", "0"}, {"HwFamily", "1"}, {"CompGains", "0"}, {"", "0"}};
    for (const auto &m : missing) {
        EXPECT_EQ(SysCapsGet(SYS_CAPS_HARDWARE, m[0], std::atoi(m[1]), text), 0) << m[0];
    }
    EXPECT_EQ(SysCapsGet(SYS_CAPS_HARDWARE, nullptr, 0, text), 0);
    EXPECT_EQ(SysCapsGet(5, "HwFamily", 0, text), 0);
    EXPECT_STREQ(text, "untouched");

    const SysCapsWord rev = SysCapsGet(SYS_CAPS_CAT4, "amxRevision", 0, text);
    EXPECT_STREQ(reinterpret_cast<const char *>(rev), "1.0.0");
    EXPECT_STREQ(text, " 1.0.0 ");
    EXPECT_EQ(SysCapsGet(SYS_CAPS_CAT4, "amxRevision", 0, nullptr), rev);
}

TEST_F(SysCapsTest, GainsByModelAndDevice) {
    struct Case {
        int32_t Type;
        const char *Comp1; // CompGains of device 1, nullptr when there is none
    };
    const Case cases[] = {{18, "67, 64, 66, -1, -1, -1"},
                          {23, "67, 64, 66, -1, -1, -1"},
                          {20, nullptr},
                          {21, nullptr},
                          {22, nullptr},
                          {14, nullptr},
                          {16, nullptr}};
    for (const Case &c : cases) {
        Select(c.Type, nullptr);
        const char *comp1 = reinterpret_cast<const char *>(Get(SYS_CAPS_VIDEO, "CompGains", 1));
        if (c.Comp1 == nullptr) {
            EXPECT_EQ(comp1, nullptr) << c.Type;
        } else {
            EXPECT_STREQ(comp1, c.Comp1) << c.Type;
        }
    }
    Select(18, nullptr);
    EXPECT_STREQ(reinterpret_cast<const char *>(Get(SYS_CAPS_VIDEO, "SvideoGains", 0)),
                 "-1, -1, -1, -1, -1, -1");
    EXPECT_STREQ(reinterpret_cast<const char *>(Get(SYS_CAPS_VIDEO, "VGAGains", 2)),
                 "82, 84, 82, 127, 123, 122");
    EXPECT_EQ(Get(SYS_CAPS_VIDEO, "VGAGains", 0), 0);
    EXPECT_EQ(Get(SYS_CAPS_HARDWARE, "CompGains", 0), 0);
}

TEST_F(SysCapsTest, SetChangesTheRowInPlace) {
    ScopedEnv env(SYS_HDAM_ENV_NAME, nullptr);
    SysTypeSet(16);
    EXPECT_EQ(SysCapsSet(SYS_CAPS_COMM, "maxConns", 0, 12), 0);
    EXPECT_EQ(Get(SYS_CAPS_COMM, "maxConns"), 12);
    EXPECT_EQ(SysCapsSet(SYS_CAPS_COMM, "maxConns", 1, 12), -1);
    EXPECT_EQ(SysCapsSet(SYS_CAPS_AUDIO, "maxConns", 0, 12), -1);
    EXPECT_EQ(SysCapsSet(5, "maxConns", 0, 12), -1);
    EXPECT_EQ(SysCapsSet(SYS_CAPS_COMM, nullptr, 0, 12), -1);

    // Type 17 shares the set of 16, rows and all.
    SysTypeSet(17);
    EXPECT_EQ(Get(SYS_CAPS_COMM, "maxConns"), 12);

    // A text row keeps its format: the word is a text reference.
    static const char kRev[] = "2.1.7";
    ASSERT_EQ(SysCapsSet(SYS_CAPS_CAT4, "amxRevision", 0, reinterpret_cast<SysCapsWord>(kRev)), 0);
    char text[SYS_CAPS_TEXT_SIZE];
    EXPECT_EQ(SysCapsGet(SYS_CAPS_CAT4, "amxRevision", 0, text),
              reinterpret_cast<SysCapsWord>(kRev));
    EXPECT_STREQ(text, " 2.1.7 ");
}

TEST_F(SysCapsTest, FindIsExactAndCaseSensitive) {
    SysCapsRow *table = (*sysCaps::TableSetOfType(20))[SYS_CAPS_HARDWARE];
    SysCapsRow *row   = SysCapsFind("cameraPresent", 3, table);
    ASSERT_NE(row, nullptr);
    EXPECT_STREQ(row->Key, "cameraPresent");
    EXPECT_EQ(row->Index, 3);
    EXPECT_EQ(row->Value.Number, 1);
    EXPECT_EQ(SysCapsFind("cameraPresent", 1, table)->Value.Number, 0);
    EXPECT_EQ(SysCapsFind("camerapresent", 3, table), nullptr);
    EXPECT_EQ(SysCapsFind("cameraPresent", 4, table), nullptr);
    EXPECT_EQ(SysCapsFind("camera", 0, table), nullptr);
    EXPECT_EQ(SysCapsFind(nullptr, 0, table), nullptr);
    EXPECT_EQ(SysCapsFind("cameraPresent", 0, nullptr), nullptr);
}

TEST(SysCapsCategoryName, WordsOfTheFourNamedCategories) {
    EXPECT_STREQ(SysCapsCategoryName(0), "video");
    EXPECT_STREQ(SysCapsCategoryName(1), "audio");
    EXPECT_STREQ(SysCapsCategoryName(2), "comm");
    EXPECT_STREQ(SysCapsCategoryName(3), "hardware");
    EXPECT_EQ(SysCapsCategoryName(4), nullptr);
    EXPECT_EQ(SysCapsCategoryName(5), nullptr);
    EXPECT_EQ(SysCapsCategoryName(UINT32_MAX), nullptr);
}

} // namespace
