// Several threads log whole lines, fragments and repeats at once: every line
// that reaches the queue is well formed, no text is torn or lost, and the
// repeat reports account for every suppressed line.
#include "logTestSupport.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <latch>
#include <map>
#include <regex>
#include <string>
#include <thread>
#include <vector>

namespace {

using logtest::LogTest;

constexpr int wholeThreads    = 3;
constexpr int fragmentThreads = 3;
constexpr int linesPerThread  = 1500;
constexpr int repeatedLines   = 1500;
constexpr int fragmentsPerEnd = 4; // every fourth fragment carries the newline

// A level word, the column, a source, then whole texts between '<' and '>': a torn text or a
// stray character fails the match.
const std::regex wellFormed(
    R"((CRIT  |ERROR |WARN  |INFO  |DEBUG )pc\[0\]: ((os|log): )?(<[^<>]*>( whole line)?)+\n)");
const std::regex bracketed("<([^<>]*)>");

TEST_F(LogTest, ConcurrentLinesAndFragmentsStayWhole) {
    LogSetSpewFilter(1);
    std::latch start(wholeThreads + fragmentThreads + 1);
    std::vector<std::thread> threads;
    for (int t = 0; t < wholeThreads; ++t) {
        threads.emplace_back([t, &start] {
            start.arrive_and_wait();
            for (int i = 0; i < linesPerThread; ++i)
                LogPrintf(i % 8, (i & 1) != 0 ? "os" : nullptr, "<w%d-%05d> whole line\n", t, i);
        });
    }
    for (int t = 0; t < fragmentThreads; ++t) {
        threads.emplace_back([t, &start] {
            start.arrive_and_wait();
            for (int i = 0; i < linesPerThread; ++i) {
                const bool ends = (i + 1) % fragmentsPerEnd == 0 || i + 1 == linesPerThread;
                LogWarn("log", ends ? "<f%d-%05d>\n" : "<f%d-%05d>", t, i);
            }
        });
    }
    threads.emplace_back([&start] {
        start.arrive_and_wait();
        for (int i = 0; i < repeatedLines; ++i)
            LogInfo("os", "<same>\n");
    });
    for (std::thread &thread : threads)
        thread.join();
    LogInfo("os", "<end>\n"); // reports what is still counted
    LogSetSpewFilter(0);

    std::map<std::string, int> seen;
    std::map<int, int> lastWhole; // thread -> last line number seen
    int sameShown    = 0;
    int sameReported = 0;
    for (const std::string &line : lines()) {
        ASSERT_LE(line.size(), 511u) << line;
        ASSERT_EQ(line.back(), '\n') << line;
        int reported = 0;
        if (std::sscanf(line.c_str(), "DEBUG pc[0]: ...last line repeated %d times\n", &reported) ==
            1) {
            sameReported += reported - 1;
            continue;
        }
        ASSERT_TRUE(std::regex_match(line, wellFormed)) << line;
        for (std::sregex_iterator it(line.begin(), line.end(), bracketed), end; it != end; ++it) {
            const std::string text = (*it)[1];
            int t = 0, i = 0;
            if (text == "same") {
                ++sameShown;
            } else if (std::sscanf(text.c_str(), "w%d-%d", &t, &i) == 2) {
                // One thread's whole lines reach the queue in their order.
                auto last = lastWhole.find(t);
                EXPECT_TRUE(last == lastWhole.end() || last->second < i) << line;
                lastWhole[t] = i;
                ++seen[text];
            } else {
                ++seen[text];
            }
        }
    }
    // Every whole line and every fragment exactly once.
    EXPECT_EQ(seen.size(),
              static_cast<size_t>((wholeThreads + fragmentThreads) * linesPerThread + 1));
    for (const auto &[token, count] : seen)
        EXPECT_EQ(count, 1) << token;
    // Each repeated line was shown or counted in a report.
    EXPECT_EQ(sameShown + sameReported, repeatedLines);
}

} // namespace
