// Filter tables and format settings: table operations and their messages for both tables, the
// format word and its words, the flags, and the loads and saves through the settings store.
#include "logTestSupport.h"

#include <gtest/gtest.h>

#include <tuple>

namespace {

using logtest::LogTest;
using logtest::MemoryStore;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

struct TableOps {
    const char *name; // "show" or "cull"
    int (*add)(const char *);
    int (*remove)(const char *);
    int (*list)();
    int (*save)();
    int (*load)();
    const char *key;
};

// Runs `action` and returns what it printed.
template <typename Action> std::string printed(Action action) {
    CaptureStdout();
    action();
    return GetCapturedStdout();
}

class LogTableTest : public LogTest, public testing::WithParamInterface<TableOps> {
  protected:
    std::string listing(const std::string &entries) const {
        return std::string(GetParam().name) + " filters:\n" + entries;
    }
    std::string message(const char *text, const char *end) const {
        return "\"" + std::string(text) + "\" " + GetParam().name + " filter " + end + "\n";
    }
};

TEST_P(LogTableTest, RemoveIgnoresCaseAndFreesTheFirstMatch) {
    const TableOps &t          = GetParam();
    const std::string longText = std::string(369, 'k') + "zzz";
    for (const char *text : {"abc", "other", "abc", longText.c_str()})
        t.add(text);
    const std::string upperLong = "K" + longText.substr(1);
    EXPECT_EQ(printed([&] {
                  EXPECT_EQ(t.remove("ABC"), 0);
                  EXPECT_EQ(t.remove(upperLong.c_str()), 0); // the text it was cut from
                  EXPECT_EQ(t.remove("ab"), 0);
                  EXPECT_EQ(t.remove("abcd"), 0);
              }),
              message("ab", "not found") + message("abcd", "not found"));
    t.add("new"); // takes the first free slot
    EXPECT_EQ(printed(t.list), listing("  \"new\"\n  \"other\"\n  \"abc\"\n"));
    EXPECT_EQ(printed([&] {
                  t.remove("*");
                  t.remove("*"); // on an empty table too
              }),
              "");
    EXPECT_EQ(printed(t.list), listing(""));
    // Emptied, the table filters nothing: a line that no text held goes through.
    LogLevelPrintf(3, "through\n");
    EXPECT_EQ(lines(), logtest::Lines{"ERROR pc[0]: through\n"});
}

// A text is cut to 369 characters on its way in; saving writes every slot, free ones empty;
// loading adds behind what the table holds until it is full, and adding to a full table is refused.
TEST_P(LogTableTest, AddCutsSaveWritesEverySlotLoadFillsUpBehind) {
    const TableOps &t = GetParam();
    MemoryStore store;
    const std::string cut = std::string(369, 'k');
    EXPECT_EQ(t.add("gone"), 0);
    EXPECT_EQ(t.add((cut + "zzz").c_str()), 0);
    EXPECT_EQ(t.add(""), 0); // adds nothing: an empty filter would hold every line
    t.remove("gone");
    t.save();
    for (int i = 0; i < LOG_FILTER_SLOTS; ++i)
        EXPECT_EQ(MemoryStore::get(t.key, i), i == 1 ? cut : "") << i;

    MemoryStore::write(t.key, 0, "A");
    MemoryStore::write(t.key, 9, "B");
    for (int i = 0; i < LOG_FILTER_SLOTS - 3; ++i)
        ASSERT_EQ(t.add(std::to_string(i).c_str()), 0);
    // Two slots are left for the three stored texts: the third is refused.
    EXPECT_EQ(printed([&] { EXPECT_EQ(t.load(), 2); }), message("B", "not added, table full"));
    EXPECT_EQ(printed([&] { EXPECT_EQ(t.add("more"), -1); }),
              message("more", "not added, table full"));
    std::string entries = "  \"0\"\n  \"" + cut + "\"\n";
    for (const char *text : {"1", "2", "3", "4", "5", "6", "A", cut.c_str()})
        entries += "  \"" + std::string(text) + "\"\n";
    EXPECT_EQ(printed(t.list), listing(entries));
    EXPECT_DEATH(t.add(nullptr), "text != nullptr");
}

INSTANTIATE_TEST_SUITE_P(LogTables, LogTableTest,
                         testing::Values(TableOps{"show", LogShowAdd, LogShowRemove, LogShowList,
                                                  LogShowSave, LogShowLoad, "showfilter"},
                                         TableOps{"cull", LogCullAdd, LogCullRemove, LogCullList,
                                                  LogCullSave, LogCullLoad, "cullfilter"}),
                         [](const testing::TestParamInfo<TableOps> &row) {
                             return std::string(row.param.name);
                         });

TEST_F(LogTest, FormatWordsListSaveAndLoad) {
    for (const auto &[word, text] : {std::pair{0u, ""},
                                     {15u, "date time level proc "},
                                     {5u, "date level "},
                                     {0xfffffff0u, ""}}) {
        char buffer[LOG_FORMAT_WORDS_SIZE];
        std::memset(buffer, 'x', sizeof buffer);
        LogFormatWords(word, buffer);
        EXPECT_STREQ(buffer, text) << word;
    }
    MemoryStore store;
    LogSetFormat(9);
    LogFormatSave();
    EXPECT_EQ(MemoryStore::get("logformat", 0), "date proc ");
    EXPECT_EQ(printed(LogFormatList), "date proc \n");

    // Loading takes exact words between blanks and nothing else; a failed read gives 0.
    // clang-format off
    /* Stored text, Format word */
    const std::pair<const char *, uint32_t> loads[] = {
        {"date proc ",   9},
        {"Level",        0},
        {"level  time",  6},
        {" proc x",      8},
        {"datetime",     0},
        {"",             0},
        {nullptr,        0},
    };
    // clang-format on
    for (const auto &[text, word] : loads) {
        LogSetFormat(0xff);
        MemoryStore::failReads = text == nullptr;
        MemoryStore::write("logformat", 0, text ? text : "date");
        LogFormatLoad();
        EXPECT_EQ(LogGetFormat(), word) << '"' << (text ? text : "(failed read)") << '"';
    }
}

TEST_F(LogTest, SpewFilterIsStoredAndLoadedForwardIsNot) {
    MemoryStore store;
    // clang-format off
    /* Stored text (nullptr: the read fails), Flag before, Flag after */
    const std::tuple<const char *, int32_t, int32_t> cases[] = {
        {"True",   0,  1},
        {"tRuE",   0,  1},
        {"False",  1,  0},
        {"",       1,  0},
        {"True ",  1,  0},
        {nullptr,  0,  0},
        {nullptr,  1,  1},
    };
    // clang-format on
    for (const auto &[text, before, after] : cases) {
        LogSetSpewFilter(before);
        EXPECT_EQ(MemoryStore::get("spewfilter", 0), before != 0 ? "True" : "False");
        MemoryStore::failReads = text == nullptr;
        MemoryStore::write("spewfilter", 0, text ? text : "True");
        LogSpewFilterLoad();
        EXPECT_EQ(LogGetSpewFilter(), after) << '"' << (text ? text : "(failed read)") << '"';
    }
    LogSetForward(1);
    EXPECT_EQ(MemoryStore::texts.size(), 1u); // only "spewfilter": forwarding is not stored
    LogSetForward(0);
}

} // namespace
