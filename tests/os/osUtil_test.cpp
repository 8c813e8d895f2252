// The small services of the OS layer: the text functions as tables, the
// environment copy at its size limits, a process found by its exact name, and
// the interrupt lock's nesting and reports.
#include "Common/OS/os.h"
#include "Common/OS/osLocks.h"
#include "osTestSupport.h"

#include <csignal>
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

// A child process of a name of its own, so that no other process matches.
TEST(OsProcess, FindProcessMatchesTheWholeName) {
    const std::string name = "osfp" + std::to_string(getpid());
    int ready[2];
    ASSERT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
        prctl(PR_SET_NAME, name.c_str());
        while (write(ready[1], "", 1) == 1)
            pause(); // until killed
        _exit(1);
    }
    char c;
    ASSERT_EQ(read(ready[0], &c, 1), 1);
    EXPECT_EQ(findProcess(name.c_str()), child);
    EXPECT_EQ(findProcess(name.substr(0, name.size() - 1).c_str()), -1); // only its start
    EXPECT_EQ(findProcess((name + "0").c_str()), -1);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    close(ready[0]);
    close(ready[1]);
}

// The calling thread is a task, and the locks have their final attributes,
// as after the OS start.
class OsInterrupts : public testing::Test {
  protected:
    // The layer as a program has it: started, the test's thread is "main".
    // No writer (-1): the lines are only observed.
    static void SetUpTestSuite() { ASSERT_EQ(os_start(-1), 0); }
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
// child process, which compares the lines itself and shows them on failure.
// The child sets the layer up itself: a parent without the OS start's
// threads forks safely, also under the emulator.
void misuse() {
    os_init_locks();
    t_attach("test", 0, 0);
    ostest::LogLines log;
    pthread_t other{};
    int32_t results[4] = {interruptsOff()};
    std::thread([&] {
        other      = pthread_self();
        results[1] = interruptsRestore(1); // by a thread that isn't inside
    }).join();
    results[2] = interruptsRestore(0); // the depth is 0 already; released by its owner
    results[3] = interruptsOff();      // counts up from -1
    char me[9], it[9];
    std::snprintf(me, sizeof me, "%08x", static_cast<uint32_t>(pthread_self()));
    std::snprintf(it, sizeof it, "%08x", static_cast<uint32_t>(other));
    const std::string warn = "WARN  pc[0]: os: ";
    const Lines expected   = {
          warn + "interruptsRestore call re-entered intsoffthread: " + me + " curthread: " + it +
              "\n",
          warn + "interruptsRestore called without interruptsOff curthread: " + me + "\n",
          warn + "interruptsRestore call re-entered intsoffthread: 00000000 curthread: " + me + "\n",
          warn + "interruptsOff re-entered intsoffthread: 00000000 curthread: " + me + "\n"};
    const Lines lines = log.take();
    for (const std::string &line : lines)
        std::fputs(line.c_str(), stderr);
    const bool ok = results[0] == 1 && results[1] != 0 && results[2] == 0 && results[3] == 0;
    _exit(ok && lines == expected ? 0 : 1);
}

TEST(OsInterruptsMisuse, IsReportedAndGoesOn) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "ThreadSanitizer reports the deliberate release of a lock not held";
#endif
    EXPECT_EXIT(misuse(), testing::ExitedWithCode(0), "");
}

} // namespace
