// Tests of the video format names: lookups by name and by id, alias folding, the progressive map
// and the allowed lists of each system type.
#include "avc/main/sysType.h"
#include "avc/main/vidFormat.h"
#include "avc/main/vidFormatData.h"
#include "avc/main/vidTiming.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstring>
#include <regex>
#include <string>
#include <tuple>

namespace {

// Sets the current system type for one test and puts the old one back.
class VidFormatTyped : public ::testing::Test {
  protected:
    void TearDown() override { SysTypeSet(saved); }
    int32_t saved = SysTypeGet();
};

// What a mode name says of its picture, read from the name alone.
struct NameSays {
    uint32_t Width, Height, Hz; // Hz as written: 59 and 29 stand for 59.94 and 29.97
    bool Television;            // a rate of a television standard, held exactly
    bool Interlaced;            // Hz may count fields
};

bool ReadName(const std::string &name, NameSays &says) {
    using std::regex;
    std::smatch m;
    const auto icase = regex::icase;
    auto n           = [&](int i) { return static_cast<uint32_t>(std::stoul(m[i].str())); };
    auto widthOf     = [](uint32_t lines) {
        return lines == 720 ? 1280u : lines == 1080 ? 1920u : 720u;
    };
    if (std::regex_match(name, m, regex("(\\d+)x(\\d+)at(\\d+)(i|r|rb)?", icase)))
        says = {n(1), n(2), n(3), false, m[4] == "i"};
    else if (std::regex_match(name, m, regex("(\\d+)HZ(\\d+)x(\\d+)(P|I)?_(NTSC|PAL)")))
        says = {n(2), n(3), n(1), false, m[4] == "I"};
    else if (std::regex_match(name, m, regex("(480|576|720|1080)(p|i)(\\d+)")))
        says = {widthOf(n(1)), n(1), n(3), true, m[2] == "i"};
    else if (std::regex_match(name, m, regex("(480|576|720|1080)(p|i)(_NTSC|_PAL)?")))
        says = {widthOf(n(1)), n(1), m[3] == "_PAL" || n(1) == 576 ? 50u : 59u, true, m[2] == "i"};
    else if (std::regex_match(name, m, regex("(ntsc|pal)(_NTSC|_PAL)?")))
        says = {720, m[1] == "ntsc" ? 480u : 576u, m[1] == "ntsc" ? 59u : 50u, true, true};
    else if (std::regex_match(name, m, regex("half-sd-(\\d+)")))
        says = {360, n(1) % 25 == 0 ? 576u : 480u, n(1), true, false};
    else if (name == "12x7at60-no-csc")
        says = {1280, 720, 60, true, false};
    else
        return false;
    return true;
}

// The frame rate (mHz) agrees with the rate in the name: exactly for a
// television name (480 lines run at 1000/1001 of the named rate), within
// 1.5% for the others, whose standards round their rates in the name.
bool RateAgrees(uint32_t frameMHz, const NameSays &says) {
    const uint32_t hz  = says.Hz == 59 || says.Hz == 29 ? says.Hz + 1 : says.Hz;
    const double named = hz * 1000.0, slowed = named * 1000.0 / 1001.0;
    for (double rate : {1.0 * frameMHz, says.Interlaced ? 2.0 * frameMHz : 0.0}) {
        if (!says.Television && std::fabs(rate - named) <= 0.015 * named)
            return true;
        const bool slowedOk = says.Hz != hz || says.Height == 480;
        if (says.Television &&
            (std::fabs(rate - named) < 1 || (slowedOk && std::fabs(rate - std::round(slowed)) < 1)))
            return true;
    }
    return false;
}

// Every mode name with a record gets a record of the size and rate it
// names: a name given the wrong format shows here.
TEST(VidFormatTables, EveryModeNameAgreesWithItsRecord) {
    for (const auto &row : vidFormat::VidFormatNameTable) {
        if ((row.Flags & FMT_MODE_NAME) == 0)
            continue;
        int32_t id         = row.FormatId;
        uint32_t rate      = row.Rate;
        uint32_t aliasRate = 0;
        VidFormatResolveAlias(&id, &aliasRate);
        VidTiming t{};
        if (VidTimingFind(id, VidTimingMainTable, &t) != 0)
            continue; // no record: refused by every lookup
        NameSays says{};
        ASSERT_TRUE(ReadName(row.Name, says)) << row.Name << ": a name the test cannot read";
        const uint32_t frameMHz = rate != 0        ? rate
                                  : aliasRate != 0 ? aliasRate
                                                   : t.FrameRateMilliHz;
        EXPECT_EQ(t.HActive, says.Width) << row.Name;
        EXPECT_EQ(t.VActive + t.VActive2, says.Height) << row.Name;
        EXPECT_TRUE(RateAgrees(frameMHz, says)) << row.Name << " runs at " << frameMHz << " mHz";
    }
}

// Mode names in any case; anything else, a system name only included, leaves the outputs alone.
TEST(VidFormatFromName, FindsWholeModeNamesInAnyCase) {
    // clang-format off
    /* Name, FormatId, Rate (mHz); id -7 for a refused name */
    const std::tuple<const char *, int32_t, uint32_t> cases[] = {
        {"nTsC",          1,  0},     {"480p30", 59, 29970}, {"1680X1050AT25", 30, 25000},
        {"12x7at60-no-csc", 62, 0},   {"",       -7, 77},    {"ntsc ",         -7, 77},
        {" ntsc",         -7, 77},    {"nts",    -7, 77},    {"ntscx",         -7, 77},
        {"720p",          -7, 77},    {"60HZ1280x720", -7, 77}, {"ntsc\n",    -7, 77},
        {nullptr,         -7, 77},
    };
    // clang-format on
    for (const auto &[name, formatId, formatRate] : cases) {
        int32_t id    = -7;
        uint32_t rate = 77;
        EXPECT_EQ(VidFormatFromName(name, &id, &rate), formatId == -7 ? -1 : 0) << name;
        EXPECT_EQ(std::pair(id, rate), std::pair(formatId, formatRate)) << (name ? name : "NULL");
    }
}

// The first mode row at the format's own rate, not folded; an id without one leaves the buffer.
// Nothing is written past the size.
TEST(VidFormatToName, GivesFirstModeRowAtOwnRate) {
    // clang-format off
    /* FormatId, buffer size, Name (nullptr: -1, buffer untouched) */
    const std::tuple<int32_t, std::size_t, const char *> cases[] = {
        {59, 32, "480p"},  {74, 32, "1080i60"}, {43, 32, "1280x720at60"}, {62, 32, "12x7at60-no-csc"},
        {43, 5,  "1280"},  {43, 1,  ""},        {28, 32, nullptr}, // an alias with a rate
        {0,  32, nullptr}, {90, 32, nullptr},
    };
    // clang-format on
    for (const auto &[id, size, name] : cases) {
        char buffer[33];
        std::memset(buffer, '#', sizeof buffer);
        EXPECT_EQ(VidFormatToName(id, buffer, size), name ? 0 : -1) << id;
        EXPECT_STREQ(name != nullptr ? buffer : nullptr, name) << id;
        const std::size_t kept = name != nullptr ? size : 0; // bytes from here stay '#'
        EXPECT_EQ(std::string(buffer + kept, sizeof buffer - kept),
                  std::string(sizeof buffer - kept, '#'))
            << id << " in " << size;
    }
}

// One step of alias folding (the rate always written), the name after folding, and the progressive
// counterpart, which is taken without folding.
TEST(VidFormatResolveAlias, FoldsOneStepAndNamesTheTarget) {
    // clang-format off
    /* FormatId, Folded id, Rate (mHz), VidFormatNameOf (nullptr: none), VidFormatProgressiveOf */
    const std::tuple<int32_t, int32_t, uint32_t, const char *, int32_t> cases[] = {
        {28,  30,  25000,  nullptr,           28},
        {33,  35,  30000,  nullptr,           33},
        {62,  53,  0,      "720p60",          62},
        {3,   3,   0,      nullptr,           3},
        {0,   0,   0,      nullptr,           0},
        {1,   1,   0,      "ntsc",            59},
        {79,  79,  0,      "1920x1080at60i",  55},
    };
    // clang-format on
    for (const auto &[formatId, folded, foldedRate, name, progressive] : cases) {
        int32_t id    = formatId;
        uint32_t rate = 12345;
        EXPECT_EQ(VidFormatResolveAlias(&id, &rate), 0);
        EXPECT_EQ(std::pair(id, rate), std::pair(folded, foldedRate)) << formatId;
        EXPECT_STREQ(VidFormatNameOf(formatId), name) << formatId;
        EXPECT_EQ(VidFormatProgressiveOf(formatId), progressive) << formatId;
    }
}

TEST_F(VidFormatTyped, IsAllowedFollowsTypeAliasAndRate) {
    // clang-format off
    /* SysType, FormatId, Selector, Allowed */
    const std::array<int32_t, 4> cases[] = {
        {16, 61, 0, 1},
        {17, 54, 1, 1}, // list B keeps 54
        {18, 54, 1, 0}, // list D drops it
        {18, 62, 0, 1}, // folds to 53
        {18, 33, 0, 0}, // 35 at 30 Hz: a changed rate
        {14, 1,  1, 0}, // no row for the type
    };
    // clang-format on
    for (const auto &[type, id, selector, allowed] : cases) {
        SysTypeSet(type);
        EXPECT_EQ(VidFormatIsAllowed(id, selector), allowed)
            << "type " << type << " id " << id << " selector " << selector;
    }
}

TEST(VidFormatDeathTest, CallerErrorsAssert) {
    char buffer[4];
    EXPECT_DEATH(VidFormatToName(43, buffer, 0), "size >= 1");
    EXPECT_DEATH(VidFormatToName(3, nullptr, 4), "buffer != nullptr");
    const VidFormatList empty = {0, nullptr}, broken = {2, nullptr};
    EXPECT_EQ(VidFormatInList(&empty, 30), 0); // no ids need no array

    EXPECT_DEATH(VidFormatInList(&broken, 30), "list->Ids != nullptr");
}

} // namespace
