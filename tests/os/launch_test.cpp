// The shell-command launcher against the real plaunchd over its pipe, in a
// private folder: answers and log lines, one request at a time from several
// tasks, what the launcher finds without a peer, and the daemon's refusals.
#include "Common/OS/launchSeam.h"
#include "Common/OS/os.h"
#include "osTestSupport.h"
#include "tests/pwsimd/simProcess.h"
#include "tools/plaunchd/launchServe.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <utility>

namespace {

using ostest::Lines;

// One plaunchd on `path`, behind the emulator of a cross build, started by
// a shell that prints its process id and becomes the daemon; killed by the
// destructor if still running.
struct Daemon {
    explicit Daemon(const std::string &path) {
        std::string emulator = PLAUNCHD_EMULATOR;
        std::replace(emulator.begin(), emulator.end(), ';', ' ');
        out =
            popen(("echo $$; exec " + emulator + " " PLAUNCHD_PATH " --path " + path).c_str(), "r");
        pid = std::atoi(line(out).c_str());
    }
    ~Daemon() {
        if (pid > 0)
            kill(pid, SIGKILL);
        if (out != nullptr)
            pclose(out);
    }
    // The next line of `stream` without its newline.
    static std::string line(FILE *stream) {
        char text[256] = "";
        if (stream != nullptr && std::fgets(text, sizeof text, stream) != nullptr)
            text[std::strcspn(text, "\n")] = '\0';
        return text;
    }
    // Sends `sig` and waits: the exit status, -1 after a signal.
    int stop(int sig) {
        if (pid <= 0) // never the process group
            return -1;
        kill(std::exchange(pid, 0), sig);
        const int status = pclose(std::exchange(out, nullptr));
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    FILE *out = nullptr;
    pid_t pid = 0;
};

class OsLaunch : public testing::Test {
  protected:
    void SetUp() override {
        char folder[] = "/tmp/plt.XXXXXX";
        ASSERT_NE(mkdtemp(folder), nullptr);
        dir  = folder;
        path = dir + "/plaunch";
        LaunchPathSet(path.c_str());
    }
    void TearDown() override {
        LaunchPathSet(nullptr);
        EXPECT_EQ(system(("rm -rf " + dir).c_str()), 0);
    }
    std::string dir, path;
};

TEST_F(OsLaunch, ThePeerRunsEachCommandAndRefusesBadLines) {
    Daemon daemon(path);
    ASSERT_EQ(Daemon::line(daemon.out), "plaunchd: serving " + path);
    struct {
        std::string command;
        int32_t result;
    } const cases[] = {
        {"exit 3", 3},
        {"true", 0},
        {"kill -KILL $$", 128 + SIGKILL},
    };
    for (const auto &c : cases) {
        ostest::LogLines log;
        EXPECT_EQ(systemLaunch(c.command.c_str()), c.result) << c.command;
        EXPECT_EQ(log.take(), (Lines{"INFO  pc[0]: system_pthread: " + c.command + " [" +
                                     std::to_string(c.result) + "]\n"}));
    }
    struct stat st {};
    EXPECT_EQ(lstat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    // Requests written by hand; each refusal leaves the daemon serving.
    const std::string longest(launchLineMax - 6, ' ');
    struct {
        std::string bytes;
        const char *answer;
    } const requests[] = {
        {"exit 9" + longest + "\n", "9"},
        {"exit 9" + longest + " \n", "-1 refused: over-long command line"},
        {std::string("exit\0 9\n", 8), "-1 refused: zero byte in the command line"},
        {"exit 1\nexit 2\n", "-1 refused: more than one line"},
        {"exit 5", "5"}, // no newline at the end
    };
    for (const auto &r : requests) {
        const int w = open(path.c_str(), O_WRONLY);
        EXPECT_EQ(write(w, r.bytes.data(), r.bytes.size()), static_cast<ssize_t>(r.bytes.size()));
        close(w);
        FILE *answer = std::fopen(path.c_str(), "r");
        EXPECT_EQ(Daemon::line(answer), r.answer) << r.bytes.size();
        std::fclose(answer);
    }
    EXPECT_EQ(daemon.stop(SIGTERM), 0);
    EXPECT_NE(lstat(path.c_str(), &st), 0); // removed
}

// The result of each request goes to the task that made it.
int32_t taskResults[4][25];
void launchMany(uint32_t task, uint32_t, uint32_t, uint32_t) {
    for (int32_t &result : taskResults[task])
        result = systemLaunch(("exit " + std::to_string(task + 10)).c_str());
}

TEST_F(OsLaunch, OneRequestAtATimeFromSeveralTasks) {
    Daemon daemon(path);
    ASSERT_EQ(Daemon::line(daemon.out), "plaunchd: serving " + path);
    Tcb *tasks[4];
    for (uint32_t task = 0; task < 4; ++task) {
        const uint32_t args[4] = {task, 0, 0, 0};
        ASSERT_EQ(t_create("lnch", 0, 0, 0, 0, &tasks[task]), 0);
        ASSERT_EQ(t_start(tasks[task], 0, launchMany, args), 0);
    }
    for (Tcb *found = nullptr; t_ident("lnch", 0, &found) == 0;)
        sched_yield(); // each frees its record when its function returns
    for (uint32_t task = 0; task < 4; ++task)
        for (int32_t result : taskResults[task])
            EXPECT_EQ(result, static_cast<int32_t>(task + 10));
}

TEST_F(OsLaunch, WithoutAPeer) {
    const std::string file = dir + "/file", link = dir + "/link";
    ASSERT_EQ(close(creat(file.c_str(), 0600)), 0);
    ASSERT_EQ(symlink(file.c_str(), link.c_str()), 0);
    const auto error = [](const char *command, int number) {
        return "ERROR pc[0]: system_pthread: " + std::string(command) + " [" +
               std::to_string(number) + " " + std::strerror(number) + "]\n";
    };
    struct {
        std::string at;
        const char *command;
        int32_t result;
        std::string line;
    } const cases[] = {
        {path, "true", -1, error("true", ENOENT)},
        {file, "5 apples", 5, "INFO  pc[0]: system_pthread: 5 apples [5]\n"},  // read back
        {"/dev/null", "true", -1, "INFO  pc[0]: system_pthread: true [-1]\n"}, // no line
        {link, "true", -1, error("true", ELOOP)},
    };
    for (const auto &c : cases) {
        LaunchPathSet(c.at.c_str());
        ostest::LogLines log;
        EXPECT_EQ(systemLaunch(c.command), c.result) << c.at;
        EXPECT_EQ(log.take(), Lines{c.line});
    }
}

TEST_F(OsLaunch, TheDaemonRefusesAPathItDoesNotOwn) {
    // Another user's pipe needs root to make; without root that row is left
    // out.
    struct {
        std::string made; // how the path is made, as a shell command
        const char *why;
    } const cases[] = {
        {"ln -s " + dir + " " + path, "is a symbolic link; refused"},
        {"ln -s " + dir + "/none " + path, "is a symbolic link; refused"},
        {"touch " + path, "exists and is not a named pipe; refused"},
        {geteuid() == 0 ? "mkfifo -m 600 " + path + " && chown 65534 " + path : "",
         "is a named pipe of another user (uid 65534); refused"},
    };
    for (const auto &c : cases) {
        if (c.made.empty())
            continue;
        ASSERT_EQ(system(("rm -f " + path + " && " + c.made).c_str()), 0);
        const ProgramRun run = RunProgram(PLAUNCHD_EMULATOR, PLAUNCHD_PATH, {"--path", path});
        EXPECT_EQ(run.ExitStatus, 1) << c.made;
        EXPECT_EQ(run.Err, "plaunchd: " + path + " " + c.why + "\n") << c.made;
        EXPECT_EQ(system(("ls -d " + path + " >/dev/null").c_str()), 0) << "left alone";
    }
}

} // namespace
