// The millisecond clock and the time base, over test clock sources.
#include "Common/OS/clockSource.h"
#include "Common/OS/os.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

// A counter the test sets, and counts of its starts.
uint32_t fakeMillis = 0;
int starts          = 0;
bool startFails     = false;

ClockStart fakeStart() {
    ++starts;
    return startFails ? ClockStart::mapFailed : ClockStart::ok;
}
uint32_t fakeCounter() {
    return fakeMillis;
}

// A time base read from scripted sequences of halves.
std::vector<uint32_t> uppers, lowers;
std::size_t upperReads = 0, lowerReads = 0;
uint32_t scriptedUpper() {
    return uppers.at(upperReads++);
}
uint32_t scriptedLower() {
    return lowers.at(lowerReads++);
}

const ClockSource fakeSource{fakeStart, fakeCounter, scriptedUpper, scriptedLower};

class Clock : public testing::Test {
  protected:
    void SetUp() override {
        fakeMillis = 0;
        starts     = 0;
        startFails = false;
        uppers.clear();
        lowers.clear();
        upperReads = lowerReads = 0;
        ClockSourceSet(&fakeSource);
    }
    void TearDown() override { ClockSourceSet(nullptr); }
};

TEST_F(Clock, Constants) {
    EXPECT_EQ(ClockTimeBaseRate(), 66666664.0f);
    EXPECT_EQ(ClockTimeBaseRate(), 66666666.0f); // the rate as the board states it, as a float
    EXPECT_EQ(ClockCountsPerTick(), 666666u);
    EXPECT_EQ(ClockTickMillis(), 10u);
}

TEST_F(Clock, SecondsAndTicksTruncate) {
    struct Row {
        uint32_t millis, seconds, ticks;
    };
    const Row rows[] = {
        {0, 0, 0},
        {9, 0, 0},
        {10, 0, 1},
        {999, 0, 99},
        {1000, 1, 100},
        {1009, 1, 100},
        {0xFFFFFFFFu, 4294967, 429496729},
    };
    for (const Row &r : rows) {
        fakeMillis = r.millis;
        EXPECT_EQ(ClockMillis(), r.millis);
        EXPECT_EQ(ClockSeconds(), r.seconds) << r.millis;
        EXPECT_EQ(ClockTicks(), r.ticks) << r.millis;
    }
    // After the wrap everything falls back to 0.
    fakeMillis = 0xFFFFFFFFu + 1u;
    EXPECT_EQ(ClockSeconds(), 0u);
    EXPECT_EQ(ClockTicks(), 0u);
}

TEST_F(Clock, CounterIsStartedOnceAtTheFirstReading) {
    fakeMillis = 42;
    EXPECT_EQ(ClockMillis(), 42u);
    EXPECT_EQ(ClockMillis(), 42u);
    EXPECT_EQ(starts, 1);
}

TEST_F(Clock, FailedStartReadsZeroAndIsTriedAgainEachTime) {
    startFails = true;
    fakeMillis = 42;
    EXPECT_EQ(ClockMillis(), 0u);
    EXPECT_EQ(ClockSeconds(), 0u);
    EXPECT_EQ(ClockTicks(), 0u);
    EXPECT_EQ(starts, 3);
    startFails = false;
    EXPECT_EQ(ClockMillis(), 42u);
    EXPECT_EQ(starts, 4);
}

TEST_F(Clock, MillisIntoStoresWhenGivenAPlace) {
    fakeMillis = 1234;
    EXPECT_EQ(ClockMillisInto(nullptr), 1234u);
    uint32_t out = 0;
    EXPECT_EQ(ClockMillisInto(&out), 1234u);
    EXPECT_EQ(out, 1234u);
}

TEST_F(Clock, TimeBaseReadPairsTheHalvesOfOneInstant) {
    struct Row {
        const char *what;
        std::vector<uint32_t> uppers, lowers;
        uint32_t high, low;
        std::size_t upperReads;
    };
    const Row rows[] = {
        {"steady", {7, 7}, {100}, 7, 100, 2},
        {"carry between the upper reads", {5, 6, 6, 6}, {0xFFFFFFFFu, 0}, 6, 0, 4},
        {"two carries", {1, 2, 2, 3, 3, 3}, {0xFFFFFFF0u, 0xFFFFFFFFu, 5}, 3, 5, 6},
    };
    for (const Row &r : rows) {
        uppers     = r.uppers;
        lowers     = r.lowers;
        upperReads = lowerReads = 0;
        uint32_t high = 0, low = 0;
        EXPECT_EQ(ClockTimeBaseRead(&high, &low), r.low) << r.what;
        EXPECT_EQ(high, r.high) << r.what;
        EXPECT_EQ(low, r.low) << r.what;
        EXPECT_EQ(upperReads, r.upperReads) << r.what;
    }
    uppers     = {9, 9};
    lowers     = {77};
    upperReads = lowerReads = 0;
    EXPECT_EQ(ClockTimeBaseRead(nullptr, nullptr), 77u);
    lowers     = {88};
    lowerReads = 0;
    EXPECT_EQ(ClockTimeBaseLow(), 88u);
}

TEST(HostClock, MillisecondsNeverGoBackAndTheTimeBaseRuns) {
    uint32_t first = ClockMillis();
    uint32_t high1 = 0, low1 = 0, high2 = 0, low2 = 0;
    ClockTimeBaseRead(&high1, &low1);
    EXPECT_EQ(ClockSleep(2000), 0);
    ClockTimeBaseRead(&high2, &low2);
    // Nothing close to a wrap of the 32-bit count in this short interval.
    EXPECT_GE(ClockMillis() - first, 2u);
    uint64_t before = static_cast<uint64_t>(high1) << 32 | low1;
    uint64_t after  = static_cast<uint64_t>(high2) << 32 | low2;
    EXPECT_GT(after, before);
}

TEST(HostClock, SleepTakesTheWholeCountAsMicroseconds) {
    EXPECT_EQ(ClockSleep(0), 0);
    EXPECT_EQ(ClockSleep(1), 0);
}

} // namespace
