// Tests of the system types: word tables, word lookups, upper-case names and the board variable.
#include "avc/main/sysType.h"

#include "avc/main/sysType.tables.h"
#include "tests/avc/sysTypeEnvGuard.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <set>
#include <string>
#include <strings.h>

namespace {

std::string Lower(const char *text) {
    std::string out(text);
    for (char &c : out) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return out;
}

// ---- Tables ----

TEST(SysTypeTables, RowCountsAndEndMarks) {
    EXPECT_EQ(sysType::sysTypeWords.size(), 8u);
    ASSERT_EQ(sysType::hdamBoardWords.size(), 7u);
    EXPECT_EQ(sysType::hdamBoardWords.back().Name, nullptr);
    ASSERT_EQ(sysType::hwFamilyWords.size(), 3u);
    EXPECT_EQ(sysType::hwFamilyWords.back().Name, nullptr);
}

TEST(SysTypeTables, WordsAreUniqueIgnoringCase) {
    std::set<std::string> types, boards, families;
    for (const auto &row : sysType::sysTypeWords) {
        EXPECT_TRUE(types.insert(Lower(row.Name)).second) << row.Name;
    }
    for (const auto *row = sysType::hdamBoardWords.data(); row->Name != nullptr; ++row) {
        EXPECT_TRUE(boards.insert(Lower(row->Name)).second) << row->Name;
    }
    for (const auto *row = sysType::hwFamilyWords.data(); row->Name != nullptr; ++row) {
        EXPECT_TRUE(families.insert(Lower(row->Name)).second) << row->Name;
    }
    EXPECT_EQ(types.size(), 8u);
    EXPECT_EQ(boards.size(), 6u);
    EXPECT_EQ(families.size(), 2u);
}

TEST(SysTypeTables, NumbersAreDistinctWhereTheyNameDifferentThings) {
    std::set<int32_t> fullWordTypes, boardNumbers;
    for (const auto &row : sysType::sysTypeWords) {
        EXPECT_LE(row.IsAlias, 1u);
        if (row.IsAlias == 0) {
            EXPECT_TRUE(fullWordTypes.insert(row.Type).second) << row.Name;
        }
    }
    for (const auto &row : sysType::sysTypeWords) {
        // An alias is a short form of a word with a row of its own.
        EXPECT_EQ(fullWordTypes.count(row.Type), 1u) << row.Name;
    }
    for (const auto *row = sysType::hdamBoardWords.data(); row->Name != nullptr; ++row) {
        EXPECT_GE(row->Board, 1) << "0 is reserved for 'nothing told'";
        EXPECT_TRUE(boardNumbers.insert(row->Board).second) << row->Name;
    }
    // The family words are type words used in a second sense.
    for (const auto *row = sysType::hwFamilyWords.data(); row->Name != nullptr; ++row) {
        EXPECT_NE(SysTypeFromName(row->Name), 0) << row->Name;
    }
}

// ---- Word lookups ----

struct NameCase {
    const char *Name;
    int32_t Expected;
};

TEST(SysTypeFromName, MatchesWholeWordsInAnyCaseAndAliases) {
    const NameCase cases[] = {
        {nullptr, 0},      {"", 0},         {"lrch", 16},       {"LrCh", 16},  {"larch", 16},
        {"LARCH", 16},     {"alder", 17},   {"rowan", 18},      {"Rowan", 18}, {"rowan_int", 23},
        {"ROWAN_INT", 23}, {"rowan_in", 0}, {"rowan_int ", 0},  {" rowan", 0}, {"hazel", 20},
        {"aspen", 21},     {"elm", 22},     {"el", 0},          {"elms", 0},   {"14", 0},
        {"NONE", 0},       {"DM642", 0},    {"rowan\0int", 18},
    };
    for (const NameCase &c : cases) {
        EXPECT_EQ(SysTypeFromName(c.Name), c.Expected) << (c.Name ? c.Name : "(null)");
    }
}

TEST(SysTypeSetGet, StoresAnyNumber) {
    const int32_t before = SysTypeGet();
    for (int32_t type : {18, 23, 15, -7, 0, INT32_MAX}) {
        SysTypeSet(type);
        EXPECT_EQ(SysTypeGet(), type);
    }
    SysTypeSet(before);
}

TEST(HdamBoardFromName, MapsBoardWordsIgnoringCase) {
    const NameCase cases[] = {
        {nullptr, 0},        {"", 0},
        {"NONE", 1},         {"none", 1},
        {"DM642", 2},        {"dm642", 2},
        {"MOSS_DM642", 3},   {"moss_dm642", 3},
        {"MOSS_DAVINCI", 4}, {"DAVINCI_QTY3", 5},
        {"davinci_qty1", 6}, {"DM64", 0},
        {"DM6420", 0},       {"DAVINCI_QTY", 0},
        {"rowan", 0},        {"NONE ", 0},
    };
    for (const NameCase &c : cases) {
        EXPECT_EQ(HdamBoardFromName(c.Name), c.Expected) << (c.Name ? c.Name : "(null)");
    }
}

TEST(HdamBoardFromEnv, ReadsTheVariableAtEachCall) {
    ScopedEnv env(SYS_HDAM_ENV_NAME, nullptr);
    EXPECT_STREQ(SYS_HDAM_ENV_NAME, "VANTREL_HDAMID");
    EXPECT_EQ(HdamBoardFromEnv(), 0);
    const NameCase cases[] = {
        {"dm642", 2}, {"NONE", 1}, {"", 0}, {"bogus", 0}, {"Davinci_Qty3", 5}, {" DM642", 0},
    };
    for (const NameCase &c : cases) {
        env.Set(c.Name);
        EXPECT_EQ(HdamBoardFromEnv(), c.Expected) << c.Name;
    }
}

TEST(HwFamily, WordsAndNumbers) {
    const NameCase cases[] = {
        {nullptr, 0}, {"lrch", 1},      {"LRCH", 1}, {"rowan", 2}, {"Rowan", 2},
        {"larch", 0}, {"rowan_int", 0}, {"elm", 0},  {"", 0},
    };
    for (const NameCase &c : cases) {
        EXPECT_EQ(HwFamilyFromName(c.Name), c.Expected) << (c.Name ? c.Name : "(null)");
    }
    EXPECT_STREQ(HwFamilyToName(1), "lrch");
    EXPECT_STREQ(HwFamilyToName(2), "rowan");
    for (int32_t none : {0, 3, -1, 16}) {
        EXPECT_EQ(HwFamilyToName(none), nullptr) << none;
    }
}

// ---- Upper-case names ----

TEST(SysTypeNameUpper, NumbersTheFullWordsInTableOrder) {
    const char *expected[] = {"LARCH", "ALDER", "ROWAN", "ROWAN_INT", "HAZEL", "ASPEN", "ELM"};
    std::set<int32_t> types;
    for (int32_t i = 0; i < 7; ++i) {
        char buffer[16];
        std::memset(buffer, 'x', sizeof buffer);
        ASSERT_EQ(SysTypeNameUpper(i, buffer, sizeof buffer), 0) << i;
        EXPECT_STREQ(buffer, expected[i]);
        // Each name leads back to its own model.
        EXPECT_TRUE(types.insert(SysTypeFromName(buffer)).second) << buffer;
    }
    EXPECT_EQ(types.count(0), 0u);
}

TEST(SysTypeNameUpper, RefusesWithoutTouchingTheBuffer) {
    struct Case {
        int32_t Index;
        uint32_t Size;
    };
    const Case cases[] = {{7, 16}, {8, 16}, {-1, 16}, {INT32_MIN, 16}, {INT32_MAX, 16}, {0, 0}};
    for (const Case &c : cases) {
        char buffer[16];
        std::memset(buffer, 'x', sizeof buffer);
        EXPECT_EQ(SysTypeNameUpper(c.Index, buffer, c.Size), -1) << c.Index << " " << c.Size;
        EXPECT_EQ(std::string(buffer, sizeof buffer), std::string(16, 'x'));
    }
    EXPECT_EQ(SysTypeNameUpper(0, nullptr, 16), -1);
}

TEST(SysTypeNameUpper, CutsToTheBufferSize) {
    char buffer[8];
    std::memset(buffer, 'x', sizeof buffer);
    ASSERT_EQ(SysTypeNameUpper(0, buffer, 4), 0);
    EXPECT_EQ(std::string(buffer, 5), std::string("LAR\0x", 5));

    std::memset(buffer, 'x', sizeof buffer);
    ASSERT_EQ(SysTypeNameUpper(3, buffer, 1), 0); // room for the terminating zero only
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_EQ(buffer[1], 'x');

    // Exactly the word and its zero.
    std::memset(buffer, 'x', sizeof buffer);
    ASSERT_EQ(SysTypeNameUpper(6, buffer, 4), 0);
    EXPECT_STREQ(buffer, "ELM");
}

TEST(StrToUpperN, StopsAtTheLimitOrTheZero) {
    char text[] = "rowan_int";
    EXPECT_EQ(StrToUpperN(text, 3), 0);
    EXPECT_STREQ(text, "ROWan_int");
    EXPECT_EQ(StrToUpperN(text, 100), 0); // stops at the zero, writes nothing behind it
    EXPECT_STREQ(text, "ROWAN_INT");

    char untouched[] = "abc";
    EXPECT_EQ(StrToUpperN(untouched, 0), 0);
    EXPECT_EQ(StrToUpperN(untouched, -5), 0);
    EXPECT_STREQ(untouched, "abc");

    char mixed[] = "a1-z\xe9";
    EXPECT_EQ(StrToUpperN(mixed, 5), 0);
    EXPECT_STREQ(mixed, "A1-Z\xe9"); // the C locale leaves bytes above 127 alone

    EXPECT_EQ(StrToUpperN(nullptr, 4), 0);
}

} // namespace
