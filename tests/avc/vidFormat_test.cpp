// Tests of the video format names: invariants of the tables, lookups by name and by id, alias
// folding, the progressive map and the allowed lists of each system type.
#include "avc/main/sysType.h"
#include "avc/main/vidFormat.h"
#include "avc/main/vidFormatData.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <map>
#include <set>
#include <string>

using vidFormat::VidFormatAliasTable;
using vidFormat::VidFormatAllowedTable;
using vidFormat::VidFormatNameTable;
using vidFormat::VidFormatProgressiveMap;

namespace {

std::string Lower(const char *text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return out;
}

bool Holds(const VidFormatList *list, int32_t id) {
    return list != nullptr && std::count(list->Ids, list->Ids + list->Count, id) > 0;
}

// Sets the current system type for one test and puts the old one back.
class VidFormatTyped : public ::testing::Test {
  protected:
    void TearDown() override { SysTypeSet(saved); }
    int32_t saved = SysTypeGet();
};

// ---- Tables ----

TEST(VidFormatTables, RowCountsOfEveryTable) {
    EXPECT_EQ(VidFormatNameTable.size(), 163u);
    EXPECT_EQ(VidFormatAliasTable.size(), 6u);
    EXPECT_EQ(VidFormatProgressiveMap.size(), 6u);
    EXPECT_EQ(VidFormatAllowedTable.size(), 7u);
    std::map<uint32_t, int> byFlags;
    int withRate = 0;
    for (const auto &row : VidFormatNameTable) {
        ++byFlags[row.Flags];
        withRate += row.Rate != 0 ? 1 : 0;
    }
    EXPECT_EQ(byFlags, (std::map<uint32_t, int>{{1, 97}, {2, 6}, {3, 60}}));
    EXPECT_EQ(withRate, 17);
}

TEST(VidFormatTables, NamesUniquePerNameSpaceIgnoringCase) {
    for (uint32_t space : {FMT_MODE_NAME, FMT_SYSTEM_NAME}) {
        std::set<std::string> seen;
        for (const auto &row : VidFormatNameTable) {
            if ((row.Flags & space) != 0) {
                EXPECT_TRUE(seen.insert(Lower(row.Name)).second) << row.Name;
            }
        }
    }
}

// Only a second list has the 1080-line formats at 50 and 60 Hz and 78, 79; list A alone has 61.
TEST(VidFormatTables, AllowedListsDifferAsDescribed) {
    std::set<const int32_t *> holding61;
    for (const auto &row : VidFormatAllowedTable) {
        for (int32_t id : {56, 57, 58, 78, 79}) {
            EXPECT_FALSE(Holds(&row.First, id)) << row.Type << " " << id;
            EXPECT_TRUE(Holds(&row.Second, id)) << row.Type << " " << id;
        }
        for (const VidFormatList *list : {&row.First, &row.Second}) {
            if (Holds(list, 61)) {
                holding61.insert(list->Ids);
            }
        }
    }
    EXPECT_EQ(holding61.size(), 1u);
}

// ---- Names ----

TEST(VidFormatFromName, FindsModeNamesInAnyCase) {
    const struct {
        const char *name;
        int32_t id;
        uint32_t rate;
    } cases[] = {{"ntsc", 1, 0},
                 {"NTSC", 1, 0},
                 {"nTsC", 1, 0},
                 {"480p30", 59, 29970},
                 {"720p_NTSC", 52, 0},
                 {"1080i_pal", 73, 0},
                 {"60HZ640x480_NTSC", 4, 0},
                 {"60hz640x480_pal", 4, 0},
                 {"1680X1050AT25", 30, 25000},
                 {"12x7at60-no-csc", 62, 0}};
    for (const auto &c : cases) {
        int32_t id    = -7;
        uint32_t rate = 77;
        EXPECT_EQ(VidFormatFromName(c.name, &id, &rate), 0) << c.name;
        EXPECT_EQ(std::pair(id, rate), std::pair(c.id, c.rate)) << c.name;
    }
}

TEST(VidFormatFromName, UnknownNameLeavesOutputsAlone) {
    for (const char *name : {"", "ntsc ", " ntsc", "nts", "ntscx", "720p", "1280x720", "720p_",
                             "60HZ1280x720", "ntsc\n", static_cast<const char *>(nullptr)}) {
        int32_t id    = -7;
        uint32_t rate = 77;
        EXPECT_EQ(VidFormatFromName(name, &id, &rate), -1) << (name ? name : "NULL");
        EXPECT_EQ(std::pair(id, rate), std::pair(-7, 77u));
    }
}

TEST(VidFormatToName, GivesFirstModeRowAtOwnRate) {
    const std::pair<int32_t, const char *> cases[] = {{59, "480p"},
                                                      {4, "640x480at60"},
                                                      {74, "1080i60"},
                                                      {10, "800x600at60"},
                                                      {30, "1680x1050at60"},
                                                      {43, "1280x720at60"},
                                                      {62, "12x7at60-no-csc"},
                                                      {61, "auto-ntsc-pal"}};
    for (const auto &[id, name] : cases) {
        char buffer[32];
        EXPECT_EQ(VidFormatToName(id, buffer, sizeof buffer), 0) << id;
        EXPECT_STREQ(buffer, name);
    }
}

TEST(VidFormatToName, UnknownIdLeavesBufferAlone) {
    for (int32_t id : {28, 27, 33, 3, 0, -1, 90, 67}) {
        char buffer[8] = "keep";
        EXPECT_EQ(VidFormatToName(id, buffer, sizeof buffer), -1) << id;
        EXPECT_STREQ(buffer, "keep");
    }
}

TEST(VidFormatToName, TruncatesToBufferAndTerminates) {
    char buffer[8];
    std::memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(VidFormatToName(43, buffer, 5), 0);
    EXPECT_STREQ(buffer, "1280");
    EXPECT_EQ(std::string(buffer + 5, 3), "###"); // nothing past the given size
    EXPECT_EQ(VidFormatToName(43, buffer, 1), 0);
    EXPECT_STREQ(buffer, "");
}

TEST(VidFormatNameOf, FoldsSynonymsAndRefusesRates) {
    EXPECT_STREQ(VidFormatNameOf(62), "720p60");
    EXPECT_STREQ(VidFormatNameOf(53), "720p60");
    EXPECT_STREQ(VidFormatNameOf(4), "640x480at60");
    for (int32_t id : {28, 27, 29, 33, 34, 3, 0}) {
        EXPECT_EQ(VidFormatNameOf(id), nullptr) << id;
    }
}

// ---- Aliases and the progressive map ----

TEST(VidFormatResolveAlias, FoldsOneStep) {
    const struct {
        int32_t id, target;
        uint32_t rate;
    } cases[] = {{28, 30, 25000}, {27, 30, 30000}, {29, 30, 50000}, {34, 35, 25000},
                 {33, 35, 30000}, {62, 53, 0},     {53, 53, 0},     {30, 30, 0},
                 {0, 0, 0},       {-5, -5, 0}};
    for (const auto &c : cases) {
        int32_t id    = c.id;
        uint32_t rate = 12345; // overwritten in every case
        EXPECT_EQ(VidFormatResolveAlias(&id, &rate), 0);
        EXPECT_EQ(std::pair(id, rate), std::pair(c.target, c.rate)) << c.id;
    }
}

TEST(VidFormatProgressiveOf, MapsInterlacedAndKeepsOthers) {
    const std::pair<int32_t, int32_t> cases[] = {{1, 59},  {2, 60},  {74, 55}, {73, 54},
                                                 {79, 55}, {78, 54}, {5, 5},   {55, 55},
                                                 {81, 81}, {80, 80}, {0, 0},   {59, 59}};
    for (const auto &[id, progressive] : cases) {
        EXPECT_EQ(VidFormatProgressiveOf(id), progressive) << id;
    }
}

// ---- Allowed lists ----

TEST_F(VidFormatTyped, AllowedListBySystemTypeAndSelector) {
    const struct {
        int32_t type, firstCount, secondCount;
    } cases[] = {{16, 30, 38}, {17, 30, 38}, {18, 38, 43}, {20, 38, 43},
                 {21, 38, 43}, {22, 41, 43}, {23, 38, 43}};
    for (const auto &c : cases) {
        SysTypeSet(c.type);
        const VidFormatList *first = VidFormatAllowedList(0);
        ASSERT_NE(first, nullptr) << c.type;
        EXPECT_EQ(first->Count, c.firstCount) << c.type;
        for (int32_t selector : {1, -1, 2, 1000}) {
            const VidFormatList *second = VidFormatAllowedList(selector);
            ASSERT_NE(second, nullptr);
            EXPECT_EQ(second->Count, c.secondCount) << c.type << " " << selector;
        }
    }
    for (int32_t type : {0, 14, 15, 19, 24, -1}) {
        SysTypeSet(type);
        EXPECT_EQ(VidFormatAllowedList(0), nullptr) << type;
        EXPECT_EQ(VidFormatAllowedList(1), nullptr) << type;
    }
}

TEST_F(VidFormatTyped, IsAllowedFollowsTypeAliasAndRate) {
    const struct {
        int32_t type, id, selector, allowed;
    } cases[] = {
        {16, 61, 0, 1}, {16, 61, 1, 0}, {17, 54, 1, 1}, // list B keeps 54
        {18, 54, 1, 0},                                 // list D drops it
        {18, 62, 0, 1},                                 // folds to 53
        {18, 33, 0, 0},                                 // 35 at 30 Hz: a changed rate
        {18, 35, 0, 1}, {18, 34, 1, 0}, {18, 72, 0, 0}, {22, 72, 0, 1},
        {22, 80, 0, 1}, {22, 80, 1, 0}, {23, 26, 1, 1}, {23, 26, 0, 0},
        {18, 0, 0, 0},  {14, 1, 0, 0},  {14, 1, 1, 0},  {0, 53, 0, 0},
    };
    for (const auto &c : cases) {
        SysTypeSet(c.type);
        EXPECT_EQ(VidFormatIsAllowed(c.id, c.selector), c.allowed)
            << "type " << c.type << " id " << c.id << " selector " << c.selector;
    }
}

TEST(VidFormatInList, FoldsBeforeComparing) {
    const int32_t ids[]      = {30, 53};
    const VidFormatList list = {2, ids};
    EXPECT_EQ(VidFormatInList(&list, 30), 1);
    EXPECT_EQ(VidFormatInList(&list, 62), 1); // synonym of 53
    EXPECT_EQ(VidFormatInList(&list, 28), 0); // 30 at 25 Hz
    EXPECT_EQ(VidFormatInList(&list, 35), 0);
    EXPECT_EQ(VidFormatInList(nullptr, 30), 0);
    const VidFormatList empty = {0, nullptr};
    EXPECT_EQ(VidFormatInList(&empty, 30), 0);
}

TEST(VidFormatDeathTest, CallerErrorsAssert) {
    char buffer[4];
    EXPECT_DEATH(VidFormatToName(43, buffer, 0), "size >= 1");
    EXPECT_DEATH(VidFormatToName(3, nullptr, 4), "buffer != nullptr");
    const VidFormatList broken = {2, nullptr};
    EXPECT_DEATH(VidFormatInList(&broken, 30), "list->Ids != nullptr");
}

} // namespace
