// The millisecond clock and the time base, over test clock sources.
#include "Common/OS/clockSource.h"
#include "Common/OS/os.h"

#include <gtest/gtest.h>

#include <tuple>
#include <vector>

namespace {

// A counter the test sets, the count of its starts, and a time base read from scripted halves.
uint32_t fakeMillis = 0;
int starts          = 0;
bool startFails     = false;
std::vector<uint32_t> uppers, lowers;
std::size_t upperReads = 0, lowerReads = 0;

ClockStart fakeStart() {
    ++starts;
    return startFails ? ClockStart::mapFailed : ClockStart::ok;
}
uint32_t fakeCounter() {
    return fakeMillis;
}
uint32_t scriptedUpper() {
    return uppers.at(upperReads++);
}
uint32_t scriptedLower() {
    return lowers.at(lowerReads++);
}

const ClockSource fakeSource{fakeStart, fakeCounter, scriptedUpper, scriptedLower};

class Clock : public testing::Test {
  protected:
    void SetUp() override { ClockSourceSet(&fakeSource); }
    void TearDown() override { ClockSourceSet(nullptr); }
    static void script(std::vector<uint32_t> upper, std::vector<uint32_t> lower) {
        uppers     = std::move(upper);
        lowers     = std::move(lower);
        upperReads = lowerReads = 0;
    }
};

TEST_F(Clock, SecondsAndTicksTruncateUpToTheWrap) {
    // clang-format off
    /* Counter (ms), Seconds, Ticks */
    const uint32_t rows[][3] = {
        {0,                 0,        0},
        {9,                 0,        0},
        {10,                0,        1},
        {999,               0,        99},
        {1009,              1,        100},
        {0xFFFFFFFFu,       4294967,  429496729},
        {0xFFFFFFFFu + 1u,  0,        0}, // after the wrap everything falls back to 0
    };
    // clang-format on
    for (const auto &[millis, seconds, ticks] : rows) {
        fakeMillis   = millis;
        uint32_t out = 1;
        EXPECT_EQ(ClockMillisInto(&out), millis);
        EXPECT_EQ(out, millis);
        EXPECT_EQ(ClockSeconds(), seconds) << millis;
        EXPECT_EQ(ClockTicks(), ticks) << millis;
    }
    EXPECT_EQ(ClockMillisInto(nullptr), 0u);
}

// Started once at the first reading; a failed start reads 0 and is tried again at the next.
TEST_F(Clock, CounterStartsOnceAndAFailedStartIsTriedAgain) {
    fakeMillis = 42;
    starts     = 0;
    startFails = true;
    EXPECT_EQ(ClockMillis(), 0u);
    EXPECT_EQ(ClockTicks(), 0u);
    startFails = false;
    EXPECT_EQ(ClockMillis(), 42u);
    EXPECT_EQ(ClockSeconds(), 0u);
    EXPECT_EQ(starts, 3);
}

TEST_F(Clock, TimeBaseReadPairsTheHalvesOfOneInstant) {
    struct Row {
        const char *what;
        std::vector<uint32_t> uppers, lowers;
        uint32_t high, low;
        std::size_t upperReads;
    };
    // clang-format off
    /* What, Upper halves read, Lower halves read, High, Low, Upper reads */
    const Row rows[] = {
        {"steady",                        {7, 7},             {100},                         7, 100, 2},
        {"carry between the upper reads", {5, 6, 6, 6},       {0xFFFFFFFFu, 0},              6, 0,   4},
        {"two carries",                   {1, 2, 2, 3, 3, 3}, {0xFFFFFFF0u, 0xFFFFFFFFu, 5}, 3, 5,   6},
    };
    // clang-format on
    for (const Row &r : rows) {
        script(r.uppers, r.lowers);
        uint32_t high = 0, low = 0;
        EXPECT_EQ(ClockTimeBaseRead(&high, &low), r.low) << r.what;
        EXPECT_EQ(std::tie(high, low, upperReads), std::tie(r.high, r.low, r.upperReads)) << r.what;
    }
    script({9, 9}, {77, 88});
    EXPECT_EQ(ClockTimeBaseRead(nullptr, nullptr), 77u);
    EXPECT_EQ(ClockTimeBaseLow(), 88u);
}

TEST(HostClock, MillisecondsAndTheTimeBaseRunOverASleep) {
    const uint32_t first = ClockMillis();
    uint32_t high1 = 0, low1 = 0, high2 = 0, low2 = 0;
    ClockTimeBaseRead(&high1, &low1);
    EXPECT_EQ(ClockSleep(0), 0);
    EXPECT_EQ(ClockSleep(2000), 0); // the whole count as microseconds
    ClockTimeBaseRead(&high2, &low2);
    // The difference is taken modulo 2^32, so a wrap of the count in between does no harm.
    EXPECT_GE(ClockMillis() - first, 2u);
    EXPECT_GT(static_cast<uint64_t>(high2) << 32 | low2, static_cast<uint64_t>(high1) << 32 | low1);
}

} // namespace
