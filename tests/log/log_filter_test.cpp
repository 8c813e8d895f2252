// Log filters and format settings: show and cull semantics and their order,
// the table operations and their messages, the format word and its words,
// the flags, and the loads and saves through the settings store.
#include "logTestSupport.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>
#include <vector>

namespace {

using logtest::LogTest;
using logtest::MemoryStore;
using Lines = std::vector<std::string>;
using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

// ---- Filtering -----------------------------------------------------------

struct FilterCase {
    const char *what;
    std::vector<const char *> show;
    std::vector<const char *> cull;
    bool passes;
};

TEST_F(LogTest, ShowThenCullDecideOverTheWholeLine) {
    // The line under test is "ERROR pc[0]: os: disk ABC full\n".
    // clang-format off
    /* What, Show filters, Cull filters, Passes */
    const std::vector<FilterCase> cases = {
        {"no filters",              {},                  {},              true},
        {"show holds",              {"disk"},            {},              true},
        {"show lacks",              {"net"},             {},              false},
        {"second show holds",       {"net", "full"},     {},              true},
        {"show is case-sensitive",  {"abc"},             {},              false},
        {"show matches level word", {"ERROR"},           {},              true},
        {"show matches proc column",{"pc[0]: os: "},     {},              true},
        {"cull holds",              {},                  {"ABC"},         false},
        {"cull lacks",              {},                  {"warn"},        true},
        {"cull matches source",     {},                  {"os: "},        false},
        {"show and cull both hold", {"disk"},            {"full"},        false},
        {"show holds, cull lacks",  {"disk"},            {"net"},         true},
        {"show lacks, cull lacks",  {"net"},             {"warn"},        false},
    };
    // clang-format on
    for (const FilterCase &c : cases) {
        SCOPED_TRACE(c.what);
        for (const char *text : c.show)
            ASSERT_EQ(LogShowAdd(text), 0);
        for (const char *text : c.cull)
            ASSERT_EQ(LogCullAdd(text), 0);
        LogError("os", "disk ABC full\n");
        EXPECT_EQ(lines().size(), c.passes ? 1u : 0u);
        LogShowRemove("*");
        LogCullRemove("*");
    }
}

TEST_F(LogTest, ShowErrorLetsOnlyErrorLinesThrough) {
    LogShowAdd("ERROR");
    LogCrit("os", "a\n");
    LogError("os", "b\n");
    LogWarn("os", "c\n");
    LogInfo("os", "an ERROR in the text\n");
    LogDebug("os", "error in lower case\n");
    EXPECT_EQ(lines(), (Lines{"ERROR pc[0]: os: b\n", "INFO  pc[0]: os: an ERROR in the text\n"}));
}

TEST_F(LogTest, FilterLineReturnsTheLengthOnlyWhenTheLineGoesOn) {
    EXPECT_EQ(LogFilterLine("", 0), 0);
    EXPECT_EQ(LogFilterLine("INFO  pc[0]: x\n", 15), 15);
    LogCullAdd("x");
    EXPECT_EQ(LogFilterLine("INFO  pc[0]: x\n", 15), 0);
    EXPECT_EQ(lines(), Lines{"INFO  pc[0]: x\n"});
}

// ---- Table operations, the same for both tables --------------------------

struct TableOps {
    const char *name; // "show" or "cull"
    int (*add)(const char *);
    int (*remove)(const char *);
    int (*list)();
    int (*save)();
    int (*load)();
    const char *key;
};

class LogTableTest : public LogTest, public testing::WithParamInterface<TableOps> {
  protected:
    std::string listed() {
        CaptureStdout();
        EXPECT_EQ(GetParam().list(), 0);
        return GetCapturedStdout();
    }
    std::string head() const { return std::string(GetParam().name) + " filters:\n"; }
};

TEST_P(LogTableTest, EleventhAddIsRefusedWithAMessage) {
    const TableOps &t    = GetParam();
    std::string expected = head();
    for (int i = 0; i < LOG_FILTER_SLOTS; ++i) {
        const std::string text = "filter " + std::to_string(i);
        ASSERT_EQ(t.add(text.c_str()), 0);
        expected += "  \"" + text + "\"\n";
    }
    CaptureStdout();
    EXPECT_EQ(t.add("one too many"), -1);
    EXPECT_EQ(GetCapturedStdout(),
              "\"one too many\" " + std::string(t.name) + " filter not added, table full\n");
    EXPECT_EQ(listed(), expected);
}

TEST_P(LogTableTest, LongTextIsCutTo369) {
    const TableOps &t      = GetParam();
    const std::string text = std::string(369, 'k') + std::string(31, 'z');
    ASSERT_EQ(t.add(text.c_str()), 0);
    EXPECT_EQ(listed(), head() + "  \"" + std::string(369, 'k') + "\"\n");
    // The same long text, also in other case, removes what it was cut to.
    std::string upper = text;
    upper[0]          = 'K';
    CaptureStdout();
    EXPECT_EQ(t.remove(upper.c_str()), 0);
    EXPECT_EQ(GetCapturedStdout(), "");
    EXPECT_EQ(listed(), head());
}

TEST_P(LogTableTest, RemoveIgnoresCaseAndFreesTheFirstMatch) {
    const TableOps &t = GetParam();
    t.add("abc");
    t.add("other");
    t.add("abc");
    CaptureStdout();
    EXPECT_EQ(t.remove("ABC"), 0);
    EXPECT_EQ(GetCapturedStdout(), "");
    // The freed first slot is taken again before the free ones behind.
    t.add("new");
    EXPECT_EQ(listed(), head() + "  \"new\"\n  \"other\"\n  \"abc\"\n");

    CaptureStdout();
    EXPECT_EQ(t.remove("ab"), 0);
    EXPECT_EQ(t.remove("abcd"), 0);
    EXPECT_EQ(GetCapturedStdout(), "\"ab\" " + std::string(t.name) + " filter not found\n" +
                                       "\"abcd\" " + std::string(t.name) + " filter not found\n");

    CaptureStdout();
    EXPECT_EQ(t.remove("*"), 0);
    EXPECT_EQ(t.remove("*"), 0);
    EXPECT_EQ(GetCapturedStdout(), "");
    EXPECT_EQ(listed(), head());
}

TEST_P(LogTableTest, SaveWritesAllSlotsAndLoadAddsBehind) {
    const TableOps &t = GetParam();
    MemoryStore store;
    t.add("one");
    t.add("two");
    t.remove("one");
    EXPECT_EQ(t.save(), 0);
    for (int i = 0; i < LOG_FILTER_SLOTS; ++i)
        EXPECT_EQ(MemoryStore::get(t.key, i), i == 1 ? "two" : "") << i;

    MemoryStore::put(t.key, 0, "stored A");
    MemoryStore::put(t.key, 7, "stored B");
    t.remove("*");
    t.add("runtime");
    EXPECT_EQ(t.load(), 3);
    EXPECT_EQ(listed(), head() + "  \"runtime\"\n  \"stored A\"\n  \"two\"\n  \"stored B\"\n");
}

TEST_P(LogTableTest, LoadIntoANearlyFullTableCountsWhatWentIn) {
    const TableOps &t = GetParam();
    MemoryStore store;
    for (int i = 0; i < LOG_FILTER_SLOTS - 1; ++i)
        t.add(("have " + std::to_string(i)).c_str());
    MemoryStore::put(t.key, 2, "first");
    MemoryStore::put(t.key, 4, "second");
    MemoryStore::put(t.key, 9, "third");
    CaptureStdout();
    EXPECT_EQ(t.load(), 1);
    const std::string full = std::string(t.name) + " filter not added, table full\n";
    EXPECT_EQ(GetCapturedStdout(), "\"second\" " + full + "\"third\" " + full);
}

TEST_P(LogTableTest, EmptyTextAddsNothing) {
    const TableOps &t = GetParam();
    EXPECT_EQ(t.add(""), 0);
    EXPECT_EQ(listed(), head());
    LogInfo("os", "still passes\n");
    EXPECT_EQ(lines().size(), 1u);
}

TEST_P(LogTableTest, NullTextIsACallersError) {
    const TableOps &t = GetParam();
    EXPECT_DEATH(t.add(nullptr), "text != nullptr");
    EXPECT_DEATH(t.remove(nullptr), "text != nullptr");
}

// clang-format off
INSTANTIATE_TEST_SUITE_P(LogTables, LogTableTest, testing::Values(
    TableOps{"show", LogShowAdd, LogShowRemove, LogShowList, LogShowSave, LogShowLoad, "showfilter"},
    TableOps{"cull", LogCullAdd, LogCullRemove, LogCullList, LogCullSave, LogCullLoad, "cullfilter"}),
    [](const testing::TestParamInfo<TableOps> &row) { return std::string(row.param.name); });
// clang-format on

TEST_F(LogTest, RemoveIgnoresCaseButMatchingDoesNot) {
    LogCullAdd("abc");
    LogInfo("os", "ABC\n");
    EXPECT_EQ(lines().size(), 1u);
    LogCullRemove("ABC");
    LogShowAdd("abc");
    LogInfo("os", "ABC\n");
    EXPECT_TRUE(lines().empty());
    LogShowRemove("aBc");
    LogInfo("os", "ABC\n");
    EXPECT_EQ(lines().size(), 1u);
}

// ---- Format word and flags -----------------------------------------------

TEST_F(LogTest, FormatWordsFollowTheBitOrder) {
    // clang-format off
    /* Word, Words */
    const std::vector<std::pair<uint32_t, const char *>> cases = {
        {0,           ""},
        {15,          "date time level proc "},
        {5,           "date level "},
        {8,           "proc "},
        {6,           "time level "},
        {0xfffffff0u, ""},
        {0xffffffffu, "date time level proc "},
    };
    // clang-format on
    for (const auto &[word, words] : cases) {
        char buffer[LOG_FORMAT_WORDS_SIZE];
        std::memset(buffer, 'x', sizeof buffer);
        EXPECT_EQ(LogFormatWords(word, buffer), 0);
        EXPECT_STREQ(buffer, words) << word;
    }
    LogSetFormat(6);
    EXPECT_EQ(LogGetFormat(), 6u);
    CaptureStdout();
    EXPECT_EQ(LogFormatList(), 0);
    EXPECT_EQ(GetCapturedStdout(), "time level \n");
}

TEST_F(LogTest, FormatLoadTakesExactWordsOnly) {
    MemoryStore store;
    // clang-format off
    /* Stored text, Word */
    const std::vector<std::pair<const char *, uint32_t>> cases = {
        {"date time",             3},
        {"date time level proc ", 15},
        {"Level",                 0},
        {"level  proc",           12},
        {"proc date junk",        9},
        {" time",                 2},
        {"datetime",              0},
        {"",                      0},
    };
    // clang-format on
    for (const auto &[text, word] : cases) {
        LogSetFormat(0xff);
        MemoryStore::put("logformat", 0, text);
        EXPECT_EQ(LogFormatLoad(), 0);
        EXPECT_EQ(LogGetFormat(), word) << '"' << text << '"';
    }
    MemoryStore::failReads() = true;
    LogSetFormat(15);
    LogFormatLoad();
    EXPECT_EQ(LogGetFormat(), 0u);
}

TEST_F(LogTest, FormatSaveStoresTheWords) {
    MemoryStore store;
    LogSetFormat(9);
    EXPECT_EQ(LogFormatSave(), 0);
    EXPECT_EQ(MemoryStore::get("logformat", 0), "date proc ");
    LogSetFormat(0);
    LogFormatLoad();
    EXPECT_EQ(LogGetFormat(), 9u);
}

TEST_F(LogTest, SpewFilterLoadTakesTrueInAnyCase) {
    MemoryStore store;
    // clang-format off
    /* Stored text, Flag before, Flag after */
    const std::vector<std::tuple<const char *, int32_t, int32_t>> cases = {
        {"True",  0, 1},
        {"TRUE",  0, 1},
        {"tRuE",  0, 1},
        {"False", 1, 0},
        {"",      1, 0},
        {"True ", 1, 0},
        {"1",     1, 0},
    };
    // clang-format on
    for (const auto &[text, before, after] : cases) {
        LogSetSpewFilter(before);
        MemoryStore::put("spewfilter", 0, text);
        EXPECT_EQ(LogSpewFilterLoad(), 0);
        EXPECT_EQ(LogGetSpewFilter(), after) << '"' << text << '"';
    }
    // A failed read keeps the flag either way.
    MemoryStore::failReads() = true;
    for (int32_t flag : {0, 1}) {
        LogSetSpewFilter(flag);
        LogSpewFilterLoad();
        EXPECT_EQ(LogGetSpewFilter(), flag);
    }
}

TEST_F(LogTest, SpewFilterIsStoredAndForwardIsNot) {
    MemoryStore store;
    LogSetSpewFilter(1);
    EXPECT_EQ(MemoryStore::get("spewfilter", 0), "True");
    LogSetSpewFilter(0);
    EXPECT_EQ(MemoryStore::get("spewfilter", 0), "False");
    LogSetForward(1);
    EXPECT_EQ(LogGetForward(), 1);
    EXPECT_EQ(MemoryStore::get("forward", 0), "<none>");
    LogSetForward(0);
    EXPECT_EQ(LogGetForward(), 0);
}

// ---- The system's store --------------------------------------------------

TEST(LogSettingsStore, KeepsNothing) {
    char buffer[16] = "leftover";
    EXPECT_EQ(SettingsWriteText("logformat", 0, "date time "), 0);
    EXPECT_EQ(SettingsWriteFlag("spewfilter", 0, 1), 0);
    EXPECT_EQ(SettingsReadText("logformat", 0, buffer), SETTINGS_NOT_STORED);
    EXPECT_STREQ(buffer, "");
    std::strcpy(buffer, "leftover");
    EXPECT_EQ(SettingsReadText("spewfilter", 0, buffer), SETTINGS_NOT_STORED);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(SettingsReadText("showfilter", 3, nullptr), SETTINGS_NOT_STORED);

    // So the loads find nothing: the format word clears, the flag stays.
    LogSetFormat(15);
    LogSetSpewFilter(1);
    EXPECT_EQ(LogFormatLoad(), 0);
    EXPECT_EQ(LogSpewFilterLoad(), 0);
    EXPECT_EQ(LogShowLoad(), 0);
    EXPECT_EQ(LogCullLoad(), 0);
    EXPECT_EQ(LogGetFormat(), 0u);
    EXPECT_EQ(LogGetSpewFilter(), 1);
    LogSetSpewFilter(0);
}

} // namespace
