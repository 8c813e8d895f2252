// The small services of the OS layer: the text functions as tables, the
// environment copy at its size limits, a process found by its exact name,
// the first line of a command, and the interrupt lock's nesting and reports.
#include "Common/OS/os.h"
#include "Common/OS/osLocks.h"
#include "osTestSupport.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>

namespace {

using ostest::Lines;

TEST(OsText, TrimAndCaseTreatCodesUpTo32AsBlankTakenUnsigned) {
    struct {
        const char *text, *left, *right, *both;
    } const cases[] = {
        {"", "", "", ""},
        {" \t\n\r", "", "", ""},
        {"\x01 a  b\x1f ", "a  b\x1f ", "\x01 a  b", "a  b"},
        {"\xc8 x \xc8", "\xc8 x \xc8", "\xc8 x \xc8", "\xc8 x \xc8"}, // code 200 is no blank
        {" ! ", "! ", " !", "!"},                                     // 33 is no blank
    };
    for (const auto &c : cases) {
        char left[16], right[16], both[16];
        for (char *buffer : {left, right, both})
            std::strcpy(buffer, c.text);
        EXPECT_EQ(trimLeft(left), left);
        EXPECT_STREQ(left, c.left);
        EXPECT_STREQ(trimRight(right), c.right);
        EXPECT_STREQ(trimBoth(both), c.both);
    }
    char mixed[] = "Ab\xc8z9 Q";
    EXPECT_STREQ(lowerCase(mixed), "ab\xc8z9 q");
    EXPECT_STREQ(upperCase(mixed), "AB\xc8Z9 Q");
}

TEST(OsText, CompareNoCaseSeesOnly255Characters) {
    const std::string a254(254, 'a'), A254(254, 'A');
    struct {
        std::string a, b;
        int sign;
    } const cases[] = {
        {"abc", "ABC", 0},
        {"abc", "abD", -1},
        {"b", "A", 1},
        {"", "", 0},
        {"a", "", 1},
        {a254 + "bX", A254 + "By", 0}, // differ behind 255
        {a254 + "X", A254 + "y", -1},  // differ at the 255th
    };
    for (const auto &c : cases) {
        const int result = compareNoCase(c.a.c_str(), c.b.c_str());
        EXPECT_EQ((result > 0) - (result < 0), c.sign) << c.a << " " << c.b;
    }
}

TEST(OsText, IntToTextKnowsBases10And16Only) {
    struct {
        int32_t value, base;
        const char *text; // null: no text, the buffer untouched
    } const cases[] = {
        {255, 16, "ff"}, {-1, 16, "ffffffff"}, {INT32_MIN, 10, "-2147483648"},
        {0, 10, "0"},    {255, 8, nullptr},    {10, 2, nullptr},
    };
    for (const auto &c : cases) {
        char buffer[12] = "untouched";
        char *result    = intToText(c.value, buffer, c.base);
        EXPECT_EQ(result, c.text != nullptr ? buffer : nullptr) << c.base;
        EXPECT_STREQ(buffer, c.text != nullptr ? c.text : "untouched");
    }
}

TEST(OsProcess, EnvCopyNeedsRoomForTheTerminator) {
    ASSERT_EQ(setenv("OS_UTIL_TEST_VALUE", "abcd", 1), 0);
    unsetenv("OS_UTIL_TEST_UNSET");
    struct {
        const char *name;
        int32_t size, result;
    } const cases[] = {
        {"OS_UTIL_TEST_VALUE", 5, 0},
        {"OS_UTIL_TEST_VALUE", 4, -1},
        {"OS_UTIL_TEST_VALUE", 0, -1},
        {"OS_UTIL_TEST_UNSET", 64, -1},
    };
    for (const auto &c : cases) {
        char buffer[8] = "xxxxxxx";
        EXPECT_EQ(envCopy(c.name, buffer, c.size), c.result) << c.size;
        EXPECT_STREQ(buffer, c.result == 0 ? "abcd" : "xxxxxxx");
    }
}

TEST(OsProcess, CommandLineGivesTheFirstLineTrimmed) {
    struct {
        const char *command;
        int32_t size, result;
        const char *text;
    } const cases[] = {
        {"printf '  a b \\t\\nsecond\\n'", 64, 0, "a b"},
        {"printf abcdef", 4, 0, "abc"},
        {"printf '   \\n'", 64, 0, ""},
        {"true", 64, -1, ""},
    };
    for (const auto &c : cases) {
        char buffer[64] = "old";
        EXPECT_EQ(commandLine(c.command, buffer, c.size), c.result) << c.command;
        EXPECT_STREQ(buffer, c.text);
    }
}

// A child process of a name of its own, so that no other process matches;
// it waits until the test closes its pipe.
TEST(OsProcess, FindProcessMatchesTheWholeName) {
    const std::string name = "osfp" + std::to_string(getpid());
    int ready[2], release[2];
    ASSERT_EQ(pipe(ready), 0);
    ASSERT_EQ(pipe(release), 0);
    const pid_t child = fork();
    if (child == 0) {
        char c = 1;
        close(release[1]);
        prctl(PR_SET_NAME, name.c_str());
        if (write(ready[1], &c, 1) == 1 && read(release[0], &c, 1) < 0)
            _exit(1);
        _exit(0);
    }
    char c;
    close(release[0]);
    ASSERT_EQ(read(ready[0], &c, 1), 1);
    EXPECT_EQ(findProcess(name.c_str()), child);
    EXPECT_EQ(findProcess(name.substr(0, name.size() - 1).c_str()), -1); // only its start
    EXPECT_EQ(findProcess((name + "0").c_str()), -1);
    close(release[1]);
    waitpid(child, nullptr, 0);
    close(ready[0]);
    close(ready[1]);
}

// The calling thread is a task, and the locks have their final attributes,
// as after the OS start.
class OsInterrupts : public testing::Test {
  protected:
    static void SetUpTestSuite() { os_init_locks(); }
    void SetUp() override { ASSERT_EQ(t_attach("test", 0, 0), 0); }
    // Whether another thread finds the interrupt lock free.
    static bool freeForOthers() {
        int result = -1;
        std::thread([&result] {
            result = pthread_mutex_trylock(osInterruptLock());
            if (result == 0)
                pthread_mutex_unlock(osInterruptLock());
        }).join();
        return result == 0;
    }
};

TEST_F(OsInterrupts, SectionsNestAndCloseInReverseOrder) {
    ostest::LogLines log;
    EXPECT_EQ(interruptsOff(), 1);
    EXPECT_EQ(interruptsOff(), 2);
    EXPECT_EQ(interruptsRestore(2), 0);
    EXPECT_FALSE(freeForOthers());
    EXPECT_EQ(interruptsRestore(1), 0);
    EXPECT_TRUE(freeForOthers());
    EXPECT_EQ(log.take(), Lines{});
    // A restore with the wrong depth is reported and still counts down.
    EXPECT_EQ(interruptsOff(), 1);
    EXPECT_EQ(interruptsOff(), 2);
    EXPECT_EQ(interruptsRestore(1), 0);
    EXPECT_EQ(interruptsRestore(1), 0);
    EXPECT_TRUE(freeForOthers());
    EXPECT_EQ(log.take(), Lines{"WARN  pc[0]: os: interruptsRestore call inconsistent "
                                "intsoffcount: 2 oldie: 1\n"});
}

// Misuse leaves the lock in a state that nothing repairs, so it runs in a
// child process, which sends back the threads, the results and the lines.
TEST_F(OsInterrupts, MisuseIsReportedAndGoesOn) {
    int out[2];
    ASSERT_EQ(pipe(out), 0);
    const pid_t child = fork();
    if (child == 0) {
        ostest::LogLines log;
        const pthread_t self = pthread_self();
        pthread_t other{};
        int32_t results[4];
        results[0] = interruptsOff();
        std::thread([&] {
            other      = pthread_self();
            results[1] = interruptsRestore(1); // by a thread that isn't inside
        }).join();
        results[2]       = interruptsRestore(0); // the depth is 0 already
        results[3]       = interruptsOff();      // counts up from -1
        std::string text = std::to_string(static_cast<uint32_t>(self)) + " " +
                           std::to_string(static_cast<uint32_t>(other));
        for (int32_t result : results)
            text += " " + std::to_string(result);
        for (const std::string &line : log.take())
            text += "\n" + line;
        _exit(write(out[1], text.data(), text.size()) == static_cast<ssize_t>(text.size()) ? 0 : 1);
    }
    close(out[1]);
    std::string text;
    char buffer[512];
    for (ssize_t got; (got = read(out[0], buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(got));
    close(out[0]);
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_EQ(status, 0);
    unsigned self = 0, other = 0;
    int results[4];
    ASSERT_EQ(std::sscanf(text.c_str(), "%u %u %d %d %d %d", &self, &other, &results[0],
                          &results[1], &results[2], &results[3]),
              6);
    EXPECT_EQ(results[0], 1);
    EXPECT_NE(results[1], 0); // the lock isn't that thread's to release
    EXPECT_EQ(results[2], 0); // released by its owner
    EXPECT_EQ(results[3], 0);
    char words[2][9];
    std::snprintf(words[0], sizeof words[0], "%08x", self);
    std::snprintf(words[1], sizeof words[1], "%08x", other);
    const std::string me = words[0], warn = "\nWARN  pc[0]: os: ";
    EXPECT_EQ(text.substr(text.find('\n')),
              warn + "interruptsRestore call re-entered intsoffthread: " + me +
                  " curthread: " + words[1] + "\n" + warn +
                  "interruptsRestore called without interruptsOff curthread: " + me + "\n" + warn +
                  "interruptsRestore call re-entered intsoffthread: 00000000 curthread: " + me +
                  "\n" + warn +
                  "interruptsOff re-entered intsoffthread: 00000000 curthread: " + me + "\n");
}

} // namespace
