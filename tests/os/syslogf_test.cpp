// Trace categories: the default filter, enable and disable with the out-of-bounds report, the
// look-ups by words, name and value, the hexadecimal conversions, the header format and time text.
#include "osTestSupport.h"

#include "Common/OS/clockSource.h"
#include "Common/OS/syslogf.h"

#include <gtest/gtest.h>

#include <array>
#include <cctype>
#include <regex>
#include <string>
#include <tuple>

namespace {

uint32_t fakeMillis = 0;
const ClockSource fakeClock{[] { return ClockStart::ok; }, [] { return fakeMillis; },
                            ClockPlatformSource().timeBaseUpper,
                            ClockPlatformSource().timeBaseLower};

class LogTrace : public testing::Test {
  protected:
    void SetUp() override { CmDebgInit(); }
};

TEST_F(LogTrace, FilterAfterDefaultsEnableAndDisable) {
    ostest::LogLines lines;
    EXPECT_EQ(CmDebgHighestMarker(), static_cast<uint32_t>(RT_MARKER_LAST));
    EXPECT_EQ(CmDebgCategoryEnable(122), 0);
    EXPECT_EQ(CmDebgCategoryEnable(123), CMDEBG_OUT_OF_BOUNDS);
    EXPECT_EQ(CmDebgCategoryDisable(200), CMDEBG_OUT_OF_BOUNDS);
    EXPECT_EQ(CmDebgCategoryEnable(44), 0);
    EXPECT_EQ(CmDebgIsFiltered(7, 44), 0);
    EXPECT_EQ(CmDebgCategoryDisable(44), 0);
    /* Level, Category, Dropped: 44 is listened to, but its debug is off again */
    const int32_t rows[][3] = {{7, 44, 1}, {6, 44, 0},  {0, 44, 0}, {7, 3, 0},
                               {7, 0, 0},  {7, 121, 1}, {0, 123, 1}};
    for (const auto &[level, category, dropped] : rows)
        EXPECT_EQ(CmDebgIsFiltered(level, static_cast<uint32_t>(category)), dropped) << category;
    EXPECT_EQ(gRtCategoryFlags[123], 0);
    gRtCategoryFlags[0] &= static_cast<uint8_t>(~RT_FLAG_PROCESSOR); // processor 0 silenced
    EXPECT_EQ(CmDebgIsFiltered(0, 44), 1);
    EXPECT_EQ(lines.take(),
              (ostest::Lines{"ERROR pc[0]: CmDebgCategoryEnable:  category 123 out of bounds\n",
                             "ERROR pc[0]: CmDebgCategoryDisable:  category 200 out of bounds\n"}));
}

TEST_F(LogTrace, CategoryFromStringsMatchesTheCutAndPaddedKeyOnly) {
    /* Group, Subgroup, Item, Category */
    const std::tuple<const char *, const char *, const char *, uint32_t> rows[] = {
        {"COMM", "SIP", "CONN", 107}, {"COMM", "H320", "AGGCXY", 44}, {"COMM", "V35", "CALL", 102},
        {"COMM", "SIP", "MSG", 0},    {"SYS", "BOOT", "", 0},         {"comm", "sip", "conn", 0},
        {"COMMON", "SIP", "CONN", 0}, {nullptr, "SIP", "CONN", 0}};
    for (const auto &[group, subgroup, item, category] : rows)
        EXPECT_EQ(CmDebgCategoryFromStrings(group, subgroup, item), category) << item;
}

TEST_F(LogTrace, ValueFromNameTrimsTheCallersTextAndIgnoresCase) {
    // clang-format off
    /* Text, Value */
    const std::tuple<std::string, int32_t> rows[] = {{"COMM H320 AGGC", 44}, {"comm h320 aggc  ", 44},
        {"Sys  Boot   ", 2}, {"SYS BOOT", -1}, {"   ", -1}, {"(nocat)", 0}};
    // clang-format on
    for (const auto &[original, value] : rows) {
        std::string text = original;
        EXPECT_EQ(CmDebgValueFromName(gRtCategoryLut, text.data()), value) << original;
        EXPECT_EQ(text.c_str(), original.substr(0, original.find_last_not_of(' ') + 1));
    }
    // Every name, in lower case, leads back to its own row.
    for (uint32_t i = 0; i < RT_CATEGORY_COUNT; ++i) {
        std::string name = CmDebgNameFromValue(gRtCategoryLut, i);
        for (char &c : name)
            c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        EXPECT_EQ(CmDebgValueFromName(gRtCategoryLut, name.data()), static_cast<int32_t>(i));
    }
    EXPECT_EQ(CmDebgNameFromValue(gRtCategoryLut, RT_CATEGORY_COUNT), nullptr);
}

TEST_F(LogTrace, HexConversions) {
    using Bytes = std::array<uint8_t, 2>;
    /* Text, Digits, Result, Bytes afterwards (0xee: not written) */
    const std::tuple<const char *, uint32_t, int32_t, Bytes> rows[] = {
        {"1F", 2, 0, {0x1f, 0xee}},     {"1f", 2, 'f', {0xee, 0xee}}, {"A0B", 3, 0, {0xa0, 0xee}},
        {"12G4", 4, 'G', {0x12, 0xee}}, {"9", 2, 0, {0xee, 0xee}},    {"", 0, 0, {0xee, 0xee}}};
    for (const auto &[text, digits, result, after] : rows) {
        Bytes bytes{0xee, 0xee};
        EXPECT_EQ(CmDebgHexToBytes(text, bytes.data(), digits), result) << text;
        EXPECT_EQ(bytes, after) << text;
    }
    char text[4] = "###";
    for (unsigned value = 0; value < 256; ++value) { // every byte survives the round trip
        const uint8_t in = static_cast<uint8_t>(value);
        uint8_t out      = static_cast<uint8_t>(~in);
        EXPECT_EQ(CmDebgBytesToHex(&in, text, 1), 0);
        EXPECT_EQ(CmDebgHexToBytes(text, &out, 2), 0);
        EXPECT_EQ(out, in);
    }
    EXPECT_STREQ(text, "FF#"); // no terminator written
}

// The time text's milliseconds come from the counter, in three digits.
TEST_F(LogTrace, HeaderFormatAndTimeText) {
    char time[RT_TIME_STRING_SIZE] = "x";
    CmDebgHeaderTime(time);
    EXPECT_STREQ(time, "");
    for (int field : {RT_HEADER_TIMESTAMP, RT_HEADER_CATEGORY, RT_HEADER_ID}) // not the level
        gRtCategoryFlags[field] |= RT_FLAG_FIXED_WIDTH;
    CmDebgBuildHeaderFormat();
    EXPECT_STREQ(CmDebgHeaderFormat(), "%- 13.13s%s%- 15.15s");
    EXPECT_EQ(CmDebgHeaderWidth(), 28u);
    ClockSourceSet(&fakeClock);
    for (const auto &[millis, ending] : {std::pair{12345u, "345"}, {7u, "007"}, {1000u, "000"}}) {
        fakeMillis = millis;
        CmDebgHeaderTime(time);
        EXPECT_TRUE(
            std::regex_match(time, std::regex(R"(\d\d\.\d\d\.\d\d\.)" + std::string(ending))))
            << time;
    }
    ClockSourceSet(nullptr);
}

} // namespace
