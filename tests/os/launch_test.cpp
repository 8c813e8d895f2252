// The shell-command launcher against the real plaunchd over its pipe, in a
// private folder: answers and log lines, one request at a time from several
// tasks, what the launcher finds without a peer, and the daemon's refusals.
#include "Common/OS/launchSeam.h"
#include "Common/OS/os.h"
#include "osTestSupport.h"
#include "tools/plaunchd/launchServe.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <vector>

#ifndef PLAUNCHD_PATH
#error "PLAUNCHD_PATH must name the plaunchd program"
#endif
#ifndef PLAUNCHD_EMULATOR
#error "PLAUNCHD_EMULATOR must list the emulator and its arguments (empty when native)"
#endif

extern char **environ;

namespace {

using ostest::Lines;

// One plaunchd, started behind the emulator of a cross build, with its
// standard output and error on pipes. The destructor kills one still running.
struct Daemon {
    pid_t pid = -1;
    int out = -1, err = -1;
    ~Daemon() {
        if (pid > 0 && kill(pid, SIGKILL) == 0)
            waitpid(pid, nullptr, 0);
        close(out);
        close(err);
    }
    bool start(const std::string &path) {
        std::vector<std::string> words;
        for (std::string rest = PLAUNCHD_EMULATOR; !rest.empty();) {
            const std::size_t end = rest.find(';');
            if (end != 0)
                words.push_back(rest.substr(0, end));
            rest.erase(0, end == std::string::npos ? rest.size() : end + 1);
        }
        words.insert(words.end(), {PLAUNCHD_PATH, "--path", path});
        std::vector<char *> argv;
        for (std::string &word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        int o[2], e[2];
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        if (pipe2(o, O_CLOEXEC) != 0 || pipe2(e, O_CLOEXEC) != 0)
            return false;
        posix_spawn_file_actions_adddup2(&actions, o[1], STDOUT_FILENO);
        posix_spawn_file_actions_adddup2(&actions, e[1], STDERR_FILENO);
        const int error = posix_spawn(&pid, argv[0], &actions, nullptr, argv.data(), environ);
        posix_spawn_file_actions_destroy(&actions);
        close(o[1]);
        close(e[1]);
        out = o[0];
        err = e[0];
        return error == 0;
    }
    // The next line of `fd` without its newline, "" at its end; a minute
    // without output counts as the end (a guard against a hang).
    static std::string line(int fd) {
        std::string text;
        char c;
        for (pollfd p{fd, POLLIN, 0}; poll(&p, 1, 60000) > 0 && read(fd, &c, 1) == 1 && c != '\n';)
            text += c;
        return text;
    }
    // Sends `sig` (none with 0) and waits: the exit status, -1 for a signal.
    int end(int sig) {
        if (sig != 0)
            kill(pid, sig);
        int status = 0;
        waitpid(pid, &status, 0);
        pid = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
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
    // Starts plaunchd on `path` and waits for its ready line.
    void serve(Daemon &daemon) {
        ASSERT_TRUE(daemon.start(path));
        ASSERT_EQ(Daemon::line(daemon.out), "plaunchd: serving " + path);
    }
    // One request written over the pipe by hand: the answer line.
    std::string request(const std::string &bytes) {
        const int w = open(path.c_str(), O_WRONLY);
        EXPECT_EQ(write(w, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
        close(w);
        const int r              = open(path.c_str(), O_RDONLY);
        const std::string answer = Daemon::line(r);
        close(r);
        return answer;
    }
    std::string dir, path;
};

TEST_F(OsLaunch, ThePeerRunsEachCommandAndAnswersItsStatus) {
    Daemon daemon;
    serve(daemon);
    const std::string marker = dir + "/ran";
    struct {
        std::string command;
        int32_t result;
    } const cases[] = {
        {"echo > " + marker + "; exit 3", 3},
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
    EXPECT_EQ(stat(marker.c_str(), &st), 0);
    EXPECT_EQ(lstat(path.c_str(), &st), 0);
    EXPECT_EQ(st.st_mode & 0777, 0600u);
    EXPECT_EQ(daemon.end(SIGTERM), 0);
    EXPECT_NE(lstat(path.c_str(), &st), 0); // removed
}

TEST_F(OsLaunch, TheDaemonRefusesBadLinesAndGoesOn) {
    Daemon daemon;
    serve(daemon);
    const std::string longest(launchLineMax - 6, ' ');
    struct {
        std::string bytes;
        const char *answer;
    } const cases[] = {
        {"exit 9" + longest + "\n", "9"},
        {"exit 9" + longest + " \n", "-1 refused: over-long command line"},
        {std::string("exit\0 9\n", 8), "-1 refused: zero byte in the command line"},
        {"exit 1\nexit 2\n", "-1 refused: more than one line"},
        {"exit 5", "5"}, // no newline at the end
    };
    for (const auto &c : cases)
        EXPECT_EQ(request(c.bytes), c.answer) << c.bytes.size();
    EXPECT_EQ(daemon.end(SIGINT), 0);
}

// The result of each request goes to the task that made it.
int32_t taskResults[4][25];
void launchMany(uint32_t task, uint32_t, uint32_t, uint32_t) {
    for (int32_t &result : taskResults[task])
        result = systemLaunch(("exit " + std::to_string(task + 10)).c_str());
}

TEST_F(OsLaunch, OneRequestAtATimeFromSeveralTasks) {
    Daemon daemon;
    serve(daemon);
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
    const std::string fifo = dir + "/fifo", file = dir + "/file";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    ASSERT_EQ(close(creat(file.c_str(), 0600)), 0);
    // Another user's pipe needs root to make; without root that row is
    // left out, and the rows of the other kinds still run.
    const bool root = geteuid() == 0 && chown(fifo.c_str(), 65534, 65534) == 0;
    struct {
        std::string made; // how the path is made, as a shell command
        const char *why;
    } const cases[] = {
        {"ln -s " + fifo + " " + path, "is a symbolic link; refused"},
        {"ln -s " + dir + "/none " + path, "is a symbolic link; refused"},
        {"cp " + file + " " + path, "exists and is not a named pipe; refused"},
        {"mkdir " + path, "exists and is not a named pipe; refused"},
        {root ? "mv " + fifo + " " + path : "", "is a named pipe of another user (uid 65534)"},
    };
    for (const auto &c : cases) {
        if (c.made.empty())
            continue;
        ASSERT_EQ(system(("rm -rf " + path + " && " + c.made).c_str()), 0);
        Daemon daemon;
        ASSERT_TRUE(daemon.start(path));
        EXPECT_EQ(Daemon::line(daemon.err).find("plaunchd: " + path + " " + c.why), 0u) << c.made;
        EXPECT_EQ(daemon.end(0), 1) << c.made;
        EXPECT_EQ(system(("ls -d " + path + " >/dev/null").c_str()), 0) << "left alone";
    }
}

} // namespace
