// The usage report on fixed numbers: stat files laid down in a folder of the
// test, the time given by hand, the output caught from a stream.
#include "Common/OS/os.h"
#include "Common/OS/usageSeam.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <regex>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

timeval now;
void clockByHand(timeval *time) {
    *time = now;
}

// What the report printed; deletes `deleteAtFirstRow` while the first task
// row is printed.
std::string written;
Tcb *deleteAtFirstRow = nullptr;
ssize_t writeOut(void *, const char *text, size_t size) {
    written.append(text, size);
    if (deleteAtFirstRow != nullptr && written.find("usga") != std::string::npos) {
        t_delete(deleteAtFirstRow);
        deleteAtFirstRow = nullptr;
    }
    return static_cast<ssize_t>(size);
}

// A process of a case: pid (0 for the test's own), command, and its user
// plus system ticks at a first report and at a second one.
constexpr uint32_t ended = UINT32_MAX; // not there at the second report
struct Proc {
    int pid;
    const char *name;
    uint32_t before, after;
};

class OsUsage : public testing::Test {
  protected:
    void SetUp() override {
        out = fopencookie(nullptr, "w", {nullptr, writeOut, nullptr, nullptr});
        setvbuf(out, nullptr, _IONBF, 0);
        UsageSeamSet(folder.c_str(), clockByHand, out);
        now = {1000, 800000};
    }
    void TearDown() override {
        UsageSeamSet(nullptr, nullptr, nullptr);
        fclose(out);
        fs::remove_all(folder);
    }
    void layDown(const std::vector<Proc> &procs, uint32_t Proc::*stage) {
        fs::remove_all(folder);
        fs::create_directories(folder + "/0/task/0");
        for (const Proc &proc : procs) {
            const int pid = proc.pid != 0 ? proc.pid : getpid();
            if (proc.*stage != ended && fs::create_directory(folder + "/" + std::to_string(pid)))
                statFile(std::to_string(pid) + "/stat", pid, proc.name, proc.*stage);
        }
    }
    void statFile(const std::string &path, int pid, const char *name, uint32_t ticks) {
        std::ofstream(folder + "/" + path)
            << pid << " (" << name << ") S 1 " << pid << " " << pid << " 0 -1 4194560 0 0 0 0 "
            << ticks - ticks / 2 << " " << ticks / 2 << " 0 0 20 0 1 0 5\n";
    }
    // The rows of a report at `now`, after the two header lines.
    std::string report() {
        written.clear();
        t_usage();
        EXPECT_EQ(written.substr(0, 54), header);
        return written.substr(54);
    }
    const std::string header = "TaskID     Name  Pri Usage\n--------------------------\n";
    const std::string folder = testing::TempDir() + "osusage" + std::to_string(getpid());
    FILE *out                = nullptr;
};

// Processes at a first report and a second one `seconds` and `micros`
// later, and the rows of the second as a regular expression.
struct UsageCase {
    const char *what;
    std::vector<Proc> procs;
    int seconds, micros;
    const char *rows;
};
// clang-format off
const UsageCase usageCases[] = {
    {"100 ticks in 10.0 s",           {{101, "init", 0, 100}},                        10, 0,      "          other      10.0\n           idle      90.0\n"},
    {"microseconds borrowed: 2.5 s",  {{101, "init", 0, 25}},                         2, 500000,  "          other      10.0\n           idle      90.0\n"},
    {"above 99.9",                    {{101, "init", 0, 1500}},                       10, 0,      "          other      99.9\n           idle       0.1\n"},
    {"processes ended",               {{101, "a", 500, 600}, {102, "b", 500, ended}}, 10, 0,      "          other      99.9\n           idle       0.1\n"},
    {"jvmserver is other",            {{201, "jvmserver", 0, 100}, {202, "jvm", 0, 50}}, 10, 0,   "       202  jvm       5.0\n          other      10.0\n           idle      85.0\n"},
    {"last parenthesis ends command", {{301, "a) (b", 0, 100}},                       10, 0,      "          other      10.0\n           idle      90.0\n"},
    {"several jvm, one total",        {{401, "jvm", 100, 200}, {402, "jvm", 100, 200}}, 10, 0,    "       40[12]  jvm      10.0\n           idle      90.0\n"},
    {"a sum above 100.0",             {{501, "jvm", 0, 800}, {502, "x", 0, 500}},     10, 0,      "       501  jvm      80.0\n          other      50.0\n           idle     -30.0\n"},
    {"idle subtracts tenths",         {{501, "jvm", 0, 57}, {502, "x", 0, 66}},       10, 0,      "       501  jvm       5.7\n          other       6.6\n           idle      87.7\n"},
    {"a sum of 12.0",                 {{501, "jvm", 0, 55}, {502, "x", 0, 65}},       10, 0,      "       501  jvm       5.5\n          other       6.5\n           idle      88.0\n"},
    {"within one microsecond",        {{101, "init", 0, 100}},                        0, 0,       "           idle     100.0\n"},
    {"no task: own process left out", {{0, "self", 0, 100}},                          10, 0,      "           idle     100.0\n"},
};
// clang-format on

TEST_F(OsUsage, ReportsOnFixedNumbers) {
    for (const UsageCase &c : usageCases) {
        SCOPED_TRACE(c.what);
        UsageSeamReset();
        layDown(c.procs, &Proc::before);
        report();
        layDown(c.procs, &Proc::after);
        now                    = {now.tv_sec + c.seconds + (now.tv_usec + c.micros) / 1000000,
                                  (now.tv_usec + c.micros) % 1000000};
        const std::string rows = report();
        EXPECT_TRUE(std::regex_match(rows, std::regex(c.rows))) << rows;
    }
}

// Two created tasks (pid and thread id 0) read the same file. Each report
// measures from the readings the last one stored; the second task, deleted
// while the first one's row prints, is shown from its copy and not written.
TEST_F(OsUsage, TaskRowsFromStoredReadingsAndDeletedDuringReport) {
    Tcb *a = nullptr, *b = nullptr;
    ASSERT_EQ(t_create("usga", 10, 0, 0, 0, &a), 0);
    ASSERT_EQ(t_create("usgb", 20, 0, 0, 0, &b), 0);
    layDown({}, &Proc::before);
    statFile("0/task/0/stat", 0, "usg", 0);
    report();
    statFile("0/task/0/stat", 0, "usg", 100);
    now.tv_sec += 10;
    EXPECT_EQ(report(), "         0 usga  10  10.0\n         0 usgb  20  10.0\n"
                        "           idle      80.0\n");
    statFile("0/task/0/stat", 0, "usg", 150);
    now.tv_sec += 10;
    deleteAtFirstRow = b;
    EXPECT_EQ(report(), "         0 usga  10   5.0\n         0 usgb  20   5.0\n"
                        "           idle      90.0\n");
    EXPECT_EQ(t_delete(a), 0);
}

} // namespace
