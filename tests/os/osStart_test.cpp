// OS start and the log writer at work. A process starts the layer once, so
// each case runs in a process of its own (ctest runs the cases one by one);
// run together, every case after the first is skipped.
#include "Common/OS/log.h"
#include "Common/OS/logSeam.h"
#include "Common/OS/os.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

#define OS_START_ONCE(level)                                                                       \
    do {                                                                                           \
        static bool started = false;                                                               \
        if (std::exchange(started, true))                                                          \
            GTEST_SKIP() << "the layer is started once per process";                               \
        ASSERT_EQ(os_start(level), 0);                                                             \
    } while (0)

std::string readAll(int fd) {
    std::string text;
    char buffer[4096];
    for (ssize_t n; (n = read(fd, buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<size_t>(n));
    return text;
}

// What `action` prints on standard output.
template <typename Action> std::string printed(Action action) {
    std::fflush(stdout);
    FILE *file      = std::tmpfile();
    const int saved = dup(1);
    dup2(fileno(file), 1);
    action();
    std::fflush(stdout);
    dup2(saved, 1);
    close(saved);
    std::rewind(file);
    std::string text = readAll(fileno(file));
    std::fclose(file);
    return text;
}

bool inOrder(const std::string &list, std::vector<std::string> names) {
    size_t at = 0;
    for (const std::string &name : names) {
        at = list.find(name, at);
        if (at == std::string::npos)
            return false;
    }
    return true;
}

TEST(OsStart, LevelMinusTwoQueuesUpToErrors) {
    FILE *out = std::tmpfile();
    LogWriterStreamSet(out);
    OS_START_ONCE(-2);
    EXPECT_EQ(os_main_task()->name[0], 'm');
    LogWarn("start", "dropped\n");
    LogError("start", "queued\n");
    LogWriterSync();
    LogWriterStreamSet(nullptr);
    std::rewind(out);
    EXPECT_EQ(readAll(fileno(out)).find("dropped"), std::string::npos);
    std::rewind(out);
    EXPECT_NE(readAll(fileno(out)).find("pc[0]: start: queued\n"), std::string::npos);
    std::fclose(out);
    const std::string list = printed(t_list);
    EXPECT_TRUE(inOrder(list, {"logw", "tmtk", "main"})) << list;
}

TEST(OsStart, LevelMinusOneStartsNoWriter) {
    OS_START_ONCE(-1);
    const std::string list = printed(t_list);
    EXPECT_TRUE(inOrder(list, {"tmtk", "main"})) << list;
    EXPECT_EQ(list.find("logw"), std::string::npos) << list;
}

// Producers flood the ring while the writer is stalled on a pipe that nobody
// reads. Once the pipe is read, every printed line is whole, each producer's
// lines come in order and none twice, and every line that isn't printed
// reported itself as dropped.
TEST(LogWriter, LogFloodWhileWriterStalls) {
    OS_START_ONCE(7);
    int fds[2];
    ASSERT_EQ(pipe(fds), 0);
    LogWriterStreamSet(fdopen(fds[1], "w"));
    const std::string padding(70, 'y');
    constexpr int producers = 4, lines = 2500;

    FILE *err          = std::tmpfile(); // where the dropped lines report
    const int savedErr = dup(2);
    dup2(fileno(err), 2);
    std::vector<std::thread> threads;
    for (int p = 0; p < producers; ++p)
        threads.emplace_back([p, &padding] {
            for (int n = 0; n < lines; ++n)
                LogInfo("flood", "p%d n%05d %s\n", p, n, padding.c_str());
        });
    for (std::thread &thread : threads)
        thread.join();
    dup2(savedErr, 2);
    close(savedErr);
    std::rewind(err);
    const std::string reported = readAll(fileno(err));
    std::fclose(err);

    std::string text;
    std::thread reader([&] { text = readAll(fds[0]); });
    LogWriterSync();
    std::fclose(LogWriterStreamSet(nullptr));
    reader.join();
    close(fds[0]);

    std::map<int, int> last;
    int whole = 0;
    for (size_t at = 0, end; (end = text.find('\n', at)) != std::string::npos; at = end + 1) {
        const std::string line = text.substr(at, end - at);
        int p = -1, n = -1;
        // The overflow line's level word has four blanks; the layer's own
        // lines (a task starting) may come in between.
        if (line == " pc[0]: SYSLOG QUEUE OVERFLOW" || line.rfind("pc[0]: os: task:", 0) == 0)
            continue;
        if (std::sscanf(line.c_str(), "pc[0]: flood: p%d n%d", &p, &n) != 2) {
            ADD_FAILURE() << "broken line: " << line;
            continue;
        }
        char expected[128];
        std::snprintf(expected, sizeof expected, "pc[0]: flood: p%d n%05d %s", p, n,
                      padding.c_str());
        EXPECT_EQ(line, expected);
        EXPECT_TRUE(last.count(p) == 0 || n > last[p]) << line;
        last[p] = n;
        ++whole;
    }
    const auto dropped = std::count(reported.begin(), reported.end(), '\n');
    EXPECT_GT(dropped, 0);
    EXPECT_EQ(whole + dropped, producers * lines);
}

} // namespace
