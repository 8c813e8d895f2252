// Tests of the capability tables: invariants across every table set, selection at the first access,
// the board step per board word and family, and the lookups' edge cases. Each test starts from no
// selection through the test seam.
#include "avc/main/sysCaps.h"

#include "avc/main/sysCapsData.h"
#include "avc/main/sysType.h"
#include "tests/avc/sysTypeEnvGuard.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <tuple>

namespace {

using Snapshot = std::map<std::tuple<uint32_t, std::string, int32_t>, std::string>;

// Each test starts with no table set selected and every row at its start value, and leaves the
// same behind.
class SysCapsTest : public ::testing::Test {
  protected:
    void SetUp() override { Select(0, nullptr, false); }
    void TearDown() override {
        Select(0, nullptr, false);
        SysTypeSet(savedType_);
    }
    // Restores every row, forgets the selection and, with `access`, selects the set of `type` at
    // a first access, with the board variable at `board` (nullptr: unset) during that access only.
    static void Select(int32_t type, const char *board, bool access = true) {
        sysCaps::RestoreRowsForTest();
        sysCaps::ForgetSelectionForTest();
        ScopedEnv env(SYS_HDAM_ENV_NAME, board);
        if (access) {
            SysTypeSet(type);
            (void)SysCapsGet(SYS_CAPS_CAT4, "amxRevision", 0, nullptr);
        }
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
    int32_t savedType_ = SysTypeGet();
};

// All sets share category 4, and no other table is shared but by 16 and 17 (which share a whole
// set, see SetChangesTheRowInPlace); a key belongs to one category in a set.
TEST_F(SysCapsTest, TablesAreSharedOnlyWhereTheModelsShareThem) {
    std::set<const SysCapsRow *> category4, otherTables;
    for (const sysCaps::TypeTableSet &entry : sysCaps::TypeTableSets()) {
        category4.insert((*entry.Set)[SYS_CAPS_CAT4]);
        std::map<std::string, uint32_t> categoryOfKey;
        for (uint32_t c = 0; c < sysCaps::kCategoryCount; ++c) {
            EXPECT_TRUE(c == SYS_CAPS_CAT4 || entry.Type == 17 ||
                        otherTables.insert((*entry.Set)[c]).second)
                << entry.Type << " " << c;
            for (const SysCapsRow *row = (*entry.Set)[c]; row->Key != nullptr; ++row) {
                auto [it, fresh] = categoryOfKey.insert({row->Key, c});
                EXPECT_TRUE(fresh || it->second == c) << entry.Type << " " << row->Key;
            }
        }
    }
    EXPECT_EQ(category4.size(), 1u);
}

// Every row prints with a blank on each side, and the longest fits SYS_CAPS_TEXT_SIZE exactly.
// The gains are where the PixelWorks devices are (VGA only on the third input), and each family
// names a model of that family.
TEST_F(SysCapsTest, EveryRowPrintsAndTheRowsAgreeAcrossKeys) {
    size_t longest = 0;
    for (const auto &[type, set] : sysCaps::TypeTableSets()) {
        Select(type, nullptr);
        for (const auto &[where, text] : Take(type)) {
            ASSERT_GE(text.size(), 3u);
            EXPECT_TRUE(text.front() == ' ' && text.back() == ' ' && text[1] != ' ') << text;
            longest = std::max(longest, text.size());
        }
        const SysCapsWord devices = Get(SYS_CAPS_VIDEO, "HwNumPixelWorks");
        for (int32_t index = 0; index < 4; ++index) {
            EXPECT_TRUE(Get(SYS_CAPS_VIDEO, "CompGains", index) == 0 || index < devices) << type;
            EXPECT_TRUE(Get(SYS_CAPS_VIDEO, "SvideoGains", index) == 0 || index < devices) << type;
            EXPECT_TRUE(Get(SYS_CAPS_VIDEO, "VGAGains", index) == 0 || index == 2) << type;
        }
        const SysCapsWord family = Get(SYS_CAPS_HARDWARE, "HwFamily");
        const char *word         = HwFamilyToName(static_cast<int32_t>(family));
        ASSERT_NE(word, nullptr) << type;
        Select(SysTypeFromName(word), nullptr);
        EXPECT_EQ(Get(SYS_CAPS_HARDWARE, "HwFamily"), family) << type << " " << word;
    }
    EXPECT_EQ(longest + 1, SYS_CAPS_TEXT_SIZE);
}

// The block for a rate and two flags; a block for 4096 and up starts at its own rate, and the
// rates fall along the steps.
TEST_F(SysCapsTest, ConnRateBlockByRateAndFlags) {
    using B = sysCaps::ConnRateBlock;
    // clang-format off
    /* Rate, FlagA, FlagB, Block */
    const std::tuple<int32_t, int32_t, int32_t, B> picks[] = {
        {8192, 1, 0, B::H}, {8192, 1, 1, B::G}, {8192, 0, 0, B::G}, {6144,  0, 1, B::E},
        {6144, 1, 0, B::F}, {4096, 0, 7, B::C}, {4096, 2, 0, B::D}, {-8192, 1, 0, B::B},
        {8191, 0, 0, B::A},
    };
    // clang-format on
    for (const auto &[rate, flagA, flagB, expected] : picks) {
        const SysCapsRow *block = SysCapsConnRateBlock(12345, rate, flagA, flagB);
        EXPECT_EQ(block, sysCaps::ConnRateBlockRows(expected)) << rate << " " << flagA << flagB;
        const bool ownRate = rate == 4096 || rate == 6144 || rate == 8192;
        EXPECT_TRUE(!ownRate || block[0].Value.Number == rate) << rate;
        for (int32_t i = 1; i < 8; ++i)
            EXPECT_LE(block[i].Value.Number, block[i - 1].Value.Number) << rate;
    }
    // Block A changes nothing on a set that starts with its rates.
    Select(18, nullptr);
    const Snapshot before = Take(18);
    SysCapsApplyBlock(SYS_CAPS_COMM, sysCaps::ConnRateBlockRows(B::A));
    EXPECT_EQ(Take(18), before);
    SysCapsApplyBlock(SYS_CAPS_COMM, sysCaps::ConnRateBlockRows(B::H));
    EXPECT_EQ(Get(SYS_CAPS_COMM, "connRate", 7), 1024);
}

TEST_F(SysCapsTest, ATypeWithoutTablesStopsTheProcess) {
    // The "fast" style forks without exec, which also works under the PowerPC emulator.
    GTEST_FLAG_SET(death_test_style, "fast");
    for (int32_t type : {0, 15, -1}) {
        SysTypeSet(type);
        EXPECT_DEATH((void)SysCapsGet(SYS_CAPS_VIDEO, "HwFamily", 0, nullptr),
                     "avc/main/sysCapsData:1341: initSysCapsTbl: Assertion `0' failed")
            << type;
        EXPECT_DEATH((void)SysCapsSet(7, "HwFamily", 0, 1), "initSysCapsTbl") << type;
    }
}

// The first access selects the set and reads the board once, even for a bad category; a later
// type or board changes nothing.
TEST_F(SysCapsTest, TheFirstAccessSelectsOnceWhateverFollows) {
    ScopedEnv env(SYS_HDAM_ENV_NAME, "none");
    SysTypeSet(22);
    EXPECT_EQ(SysCapsSet(UINT32_MAX, "HwFamily", 0, 9), -1);
    env.Set("DM642");
    SysTypeSet(18);
    EXPECT_EQ(Get(SYS_CAPS_VIDEO, "MainDspType"), 2);   // elm's value, from the set of 22
    EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HdamBoardType"), 1); // "none"
}

TEST_F(SysCapsTest, BoardStepChangesOnlyItsRowsOfCategoryZero) {
    const Snapshot::key_type boardType{SYS_CAPS_VIDEO, "HdamBoardType", 0};
    const Snapshot::key_type gennums{SYS_CAPS_VIDEO, "HwNumGennums", 0};
    for (const auto &[type, set] : sysCaps::TypeTableSets()) {
        Select(type, nullptr);
        const Snapshot plain = Take(type);
        Select(type, "NONE");
        Snapshot none = Take(type);
        EXPECT_EQ(none[boardType], " 1 ");
        none[boardType] = " 0 ";
        EXPECT_EQ(none, plain) << "NONE changes more than HdamBoardType on " << type;

        for (const char *board : {"DM642", "MOSS_DM642", "DAVINCI_QTY1"}) {
            Select(type, board);
            for (const auto &[where, text] : Take(type)) {
                const auto &[category, key, index] = where;
                EXPECT_TRUE(text == plain.at(where) ||
                            (category == SYS_CAPS_VIDEO &&
                             (key.starts_with("Hdam") || key == "IpcNumFirstHdamDsp" ||
                              key == "HwNumGennums")))
                    << board << " changed " << key << " " << index << " on " << type;
            }
        }
        // DM642 puts the HDAM DSPs behind the main video DSPs; block C is written for four main
        // video DSPs, and elm has two.
        Select(type, "DM642");
        EXPECT_EQ(Get(SYS_CAPS_VIDEO, "IpcNumFirstHdamDsp"),
                  type == 22 ? 6
                             : Get(SYS_CAPS_VIDEO, "IpcNumFirstMainVidDsp") +
                                   Get(SYS_CAPS_VIDEO, "MainVidDspCnt"))
            << type;
        // MOSS_DM642 gives every model two Gennums; DAVINCI_QTY3 keeps the model's own.
        Select(type, "MOSS_DM642");
        EXPECT_EQ(Get(SYS_CAPS_VIDEO, "HwNumGennums"), 2) << type;
        Select(type, "DAVINCI_QTY3");
        EXPECT_EQ(Take(type).at(gennums), plain.at(gennums)) << type;
    }
}

// Rows of a block without a key and index of the category are skipped; a null block does nothing.
TEST_F(SysCapsTest, ApplyBlockSkipsRowsWithoutAMatch) {
    Select(21, nullptr);
    /* Key, Value, Index, Format */
    const SysCapsRow block[] = {
        {"HdamDspCnt", {.Number = 4}, 0, nullptr},    {"hdamdspcnt", {.Number = 9}, 0, nullptr},
        {"HdamDspPciBus", {.Number = 9}, 8, nullptr}, {"HwFamily", {.Number = 9}, 0, nullptr},
        {"HdamDspPciDev", {.Number = 7}, 7, nullptr}, {nullptr, {.Number = 0}, 0, nullptr},
    };
    Snapshot expected                              = Take(21);
    expected[{SYS_CAPS_VIDEO, "HdamDspCnt", 0}]    = " 4 ";
    expected[{SYS_CAPS_VIDEO, "HdamDspPciDev", 7}] = " 7 ";
    SysCapsApplyBlock(SYS_CAPS_VIDEO, block);
    SysCapsApplyBlock(SYS_CAPS_VIDEO, nullptr);
    EXPECT_EQ(Take(21), expected);
}

TEST_F(SysCapsTest, GetAnswersTheValueAndPrintsIt) {
    Select(18, nullptr);
    char text[SYS_CAPS_TEXT_SIZE] = "untouched";
    EXPECT_EQ(SysCapsGet(SYS_CAPS_HARDWARE, "BoardRevsWithRtc", 0, text), -4);
    EXPECT_STREQ(text, " -4 ");
    EXPECT_EQ(SysCapsGet(SYS_CAPS_HARDWARE, "HwCtrlFpgaFrameBufBaseAddr", 0, text), 0);
    EXPECT_STREQ(text, " 0 "); // a row of value 0 prints

    // Keys are whole and case-sensitive, within the category and index asked for.
    std::strcpy(text, "untouched");
    for (const auto &[category, key, index] :
         {std::tuple<uint32_t, const char *, int32_t>{SYS_CAPS_HARDWARE, "hwfamily", 0},
          {SYS_CAPS_HARDWARE, "HwFamily", 1},
          {SYS_CAPS_HARDWARE, "HwFam", 0},
          {SYS_CAPS_HARDWARE, "CompGains", 0},
          {SYS_CAPS_HARDWARE, "", 0},
          {SYS_CAPS_HARDWARE, nullptr, 0},
          {5, "HwFamily", 0}})
        EXPECT_EQ(SysCapsGet(category, key, index, text), 0) << (key ? key : "(null)");
    EXPECT_EQ(SysCapsFind("HwFamily", 0, nullptr), nullptr);
    EXPECT_STREQ(text, "untouched");

    const SysCapsWord rev = SysCapsGet(SYS_CAPS_CAT4, "amxRevision", 0, text);
    EXPECT_STREQ(reinterpret_cast<const char *>(rev), "1.0.0");
    EXPECT_STREQ(text, " 1.0.0 ");
    // Only categories 0 to 3 have a word.
    EXPECT_STREQ(SysCapsCategoryName(SYS_CAPS_HARDWARE), "hardware");
    EXPECT_EQ(SysCapsCategoryName(SYS_CAPS_CAT4), nullptr);
}

TEST_F(SysCapsTest, SetChangesTheRowInPlace) {
    Select(16, nullptr);
    EXPECT_EQ(SysCapsSet(SYS_CAPS_COMM, "maxConns", 0, 12), 0);
    EXPECT_EQ(SysCapsSet(SYS_CAPS_COMM, "maxConns", 1, 12), -1);
    EXPECT_EQ(SysCapsSet(SYS_CAPS_AUDIO, "maxConns", 0, 12), -1);
    EXPECT_EQ(SysCapsSet(5, "maxConns", 0, 12), -1);
    EXPECT_EQ(SysCapsSet(SYS_CAPS_COMM, nullptr, 0, 12), -1);
    SysTypeSet(17); // shares the set of 16, rows and all
    EXPECT_EQ(Get(SYS_CAPS_COMM, "maxConns"), 12);

    // A text row keeps its format: the word is a text reference.
    static const char kRev[] = "2.1.7";
    ASSERT_EQ(SysCapsSet(SYS_CAPS_CAT4, "amxRevision", 0, reinterpret_cast<SysCapsWord>(kRev)), 0);
    char text[SYS_CAPS_TEXT_SIZE];
    EXPECT_EQ(SysCapsGet(SYS_CAPS_CAT4, "amxRevision", 0, text),
              reinterpret_cast<SysCapsWord>(kRev));
    EXPECT_STREQ(text, " 2.1.7 ");
}

} // namespace
