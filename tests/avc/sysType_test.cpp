// Tests of the system types: the word lookups, upper-case names and the board variable.
#include "avc/main/sysType.h"

#include "avc/main/sysType.tables.h"
#include "tests/avc/sysTypeEnvGuard.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <tuple>

namespace {

// Board numbers are distinct and never 0 ("nothing told"); each family word is also a type word,
// and both lookups of a family row lead back to it.
TEST(SysTypeTables, BoardNumbersAndFamilyWords) {
    std::set<int32_t> boards;
    for (const auto *row = sysType::hdamBoardWords.data(); row->Name != nullptr; ++row) {
        EXPECT_GE(row->Board, 1) << row->Name;
        EXPECT_TRUE(boards.insert(row->Board).second) << row->Name;
    }
    for (const auto *row = sysType::hwFamilyWords.data(); row->Name != nullptr; ++row) {
        EXPECT_NE(SysTypeFromName(row->Name), 0) << row->Name;
        EXPECT_EQ(HwFamilyFromName(HwFamilyToName(row->Family)), row->Family) << row->Name;
    }
}

TEST(SysTypeLookup, WholeWordsInAnyCase) {
    const auto type = SysTypeFromName, board = HdamBoardFromName, family = HwFamilyFromName;
    // clang-format off
    /* Lookup, Name, Expected number (0: none) */
    const std::tuple<int32_t (*)(const char *), const char *, int32_t> cases[] = {
        {type,   nullptr,      0},  {type,  "lrch",         16}, {type,   "ROWAN_INT", 23},
        {type,   "rowan_in",   0},  {type,  "rowan_int ",   0},  {type,   "elm",       22},
        {type,   "DM642",      0},  {type,  "rowan\0int",   18}, {board,  nullptr,     0},
        {board,  "none",       1},  {board, "davinci_qty1", 6},  {board,  "DM64",      0},
        {board,  "rowan",      0},  {family, "LRCH",        1},  {family, "Rowan",     2},
        {family, "larch",      0},
    };
    // clang-format on
    for (const auto &[lookup, name, expected] : cases)
        EXPECT_EQ(lookup(name), expected) << (name ? name : "(null)");
    for (int32_t none : {0, 3, -1, 16})
        EXPECT_EQ(HwFamilyToName(none), nullptr) << none;
}

// The variable is read at each call: unset, a board word in any case, then a word of no board.
TEST(SysTypeLookup, BoardVariableIsReadAtEachCall) {
    ScopedEnv env(SYS_HDAM_ENV_NAME, nullptr);
    EXPECT_EQ(HdamBoardFromEnv(), 0);
    env.Set("Davinci_Qty3");
    EXPECT_EQ(HdamBoardFromEnv(), 5);
    env.Set(" DM642");
    EXPECT_EQ(HdamBoardFromEnv(), 0);
}

// The full words in table order, cut to the buffer; a refusal leaves every byte alone.
TEST(SysTypeNameUpper, NumbersFullWordsAndCutsToTheBuffer) {
    /* Index, buffer size, the text written (nullptr: refused) */
    const std::tuple<int32_t, uint32_t, const char *> cases[] = {
        {0, 16, "LARCH"}, {1, 16, "ALDER"},
        {2, 16, "ROWAN"}, {3, 16, "ROWAN_INT"},
        {4, 16, "HAZEL"}, {5, 16, "ASPEN"},
        {6, 16, "ELM"},   {0, 4, "LAR"},
        {3, 1, ""},       {6, 4, "ELM"},
        {7, 16, nullptr}, {-1, 16, nullptr},
        {0, 0, nullptr},  {INT32_MIN, 16, nullptr},
    };
    for (const auto &[index, size, expected] : cases) {
        SCOPED_TRACE(testing::Message() << index << " in " << size);
        char buffer[17];
        std::memset(buffer, 'x', sizeof buffer);
        EXPECT_EQ(SysTypeNameUpper(index, buffer, size), expected ? 0 : -1);
        if (expected == nullptr) {
            EXPECT_EQ(std::string(buffer, sizeof buffer), std::string(17, 'x'));
        } else {
            EXPECT_STREQ(buffer, expected);
            EXPECT_EQ(buffer[size], 'x'); // nothing written past the size
            EXPECT_TRUE(size < 16 || SysTypeFromName(expected) != 0);
        }
    }
    EXPECT_EQ(SysTypeNameUpper(0, nullptr, 16), -1);
}

// Up to the limit or the zero; the C locale leaves bytes above 127 alone.
TEST(SysTypeStrToUpperN, StopsAtTheLimitOrTheZero) {
    /* Text, limit, the text afterwards */
    const std::tuple<const char *, int32_t, const char *> cases[] = {
        {"rowan_int", 3, "ROWan_int"},
        {"rowan_int", 100, "ROWAN_INT"},
        {"abc", 0, "abc"},
        {"abc", -5, "abc"},
        {"a1-z\xe9", 5, "A1-Z\xe9"},
    };
    for (const auto &[before, limit, after] : cases) {
        std::string text = before;
        EXPECT_EQ(StrToUpperN(text.data(), limit), 0);
        EXPECT_EQ(text, after) << before << " " << limit;
    }
    EXPECT_EQ(StrToUpperN(nullptr, 4), 0);
}

} // namespace
