// Tasks across real threads: how a task ends, deletion at a cancellation
// point and inside a tcbLock section, concurrent creation and deletion,
// policies, the list, and the open cases of a record that isn't there.
#include "Common/OS/os.h"
#include "Common/OS/osLocks.h"
#include "osTestSupport.h"

#include <atomic>
#include <cstring>
#include <regex>
#include <string>
#include <thread>
#include <vector>

namespace {

using ostest::Gate;
using ostest::Lines;

// The test's thread is the task "test"; each case must leave it alone in the
// registry, which catches a record left behind.
class OsTask : public testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(t_attach("test", 0, 0), 0); }
    void TearDown() override { EXPECT_EQ(FindTcb(pthread_self())->next, nullptr); }
};

// A task that ends by itself frees its record on its own thread, after
// anything the test could wait on: wait until its name is gone.
void waitUntilGone(const char *name) {
    Tcb *found = nullptr;
    while (t_ident(name, 0, &found) == 0)
        sched_yield();
}

// A task that says it runs, then waits at a cancellation point for release.
Gate *started, *release;
void park(uint32_t, uint32_t, uint32_t, uint32_t) {
    started->pass();
    release->wait();
}
Tcb *startParked(const char *name) {
    Tcb *tcb = nullptr;
    EXPECT_EQ(t_create(name, 0, 0, 0, 0, &tcb), 0);
    EXPECT_EQ(t_start(tcb, 0, park, nullptr), 0);
    started->wait();
    return tcb;
}

struct {
    uint32_t args[4];
    int policy, priority;
    bool found;
} seen; // what a task saw of itself, read after it is gone
void recordSelf(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    sched_param param{};
    pthread_getschedparam(pthread_self(), &seen.policy, &param);
    seen = {{a, b, c, d}, seen.policy, param.sched_priority, FindTcb(pthread_self()) != nullptr};
}

TEST_F(OsTask, ATaskWhoseFunctionReturnsRanAsAskedAndLeavesNoTrace) {
    const uint32_t args[4] = {1, 0xffffffff, 3, 4}, zeros[4] = {};
    struct {
        int32_t layerPolicy, priority, policy, kernelPriority;
    } const cases[] = {
        {SCHED_OTHER, 0, SCHED_OTHER, 0},
        {SCHED_OTHER, 10, SCHED_OTHER, 0}, // before the OS start: time-shared
        {SCHED_RR, 120, SCHED_OTHER, 0},   // out of range: logged, 0
        {SCHED_RR, 10, SCHED_RR, 10},
    };
    for (const auto &c : cases) {
        os_set_policy(c.layerPolicy);
        ostest::LogLines log;
        Tcb *tcb = nullptr;
        ASSERT_EQ(t_create("rets", c.priority, 0, 0, 0, &tcb), 0);
        const int result = t_start(tcb, 0, recordSelf, c.priority == 0 ? args : nullptr);
        os_set_policy(SCHED_OTHER);
        if (result == ERR_TIMEOUT && c.policy == SCHED_RR) { // no real-time rights:
            EXPECT_EQ(t_delete(tcb), 0);                     // it stays created
            continue;
        }
        ASSERT_EQ(result, 0);
        waitUntilGone("rets");
        EXPECT_TRUE(seen.found);
        EXPECT_EQ(seen.policy, c.policy) << c.priority;
        EXPECT_EQ(seen.priority, c.kernelPriority) << c.priority;
        EXPECT_EQ(std::memcmp(seen.args, c.priority == 0 ? args : zeros, sizeof args), 0);
        std::string lines;
        for (const std::string &line : log.take())
            lines += line;
        EXPECT_TRUE(std::regex_match(
            lines,
            std::regex("(WARN  pc\\[0\\]: os: t_start priority 120 out of range, setting "
                       "to 0\n)?DEBUG pc\\[0\\]: os: task:rets pid:[0-9]+ thread [0-9a-f]{8} "
                       "[0-9]+ [0-9a-f]{8}\nWARN  pc\\[0\\]: os: task rets deleted task:rets, "
                       "pid [0-9]+\n")))
            << lines;
    }
}

bool afterSelfDelete = false;
void deleteSelf(uint32_t, uint32_t, uint32_t, uint32_t) {
    t_delete(nullptr);
    afterSelfDelete = true;
}

TEST_F(OsTask, DeletionEndsABlockedTaskOrTheCallerItself) {
    OS_SKIP_WITHOUT_CANCEL_UNWIND();
    Gate startedGate, never;
    started                = &startedGate;
    release                = &never;
    Tcb *tcb               = startParked("blok");
    const pthread_t thread = tcb->thread;
    const std::string pid  = std::to_string(tcb->pid);
    ostest::LogLines log;
    EXPECT_EQ(t_delete(tcb), 0); // cancelled in its wait, joined, freed
    EXPECT_EQ(FindTcb(thread), nullptr);
    EXPECT_EQ(log.take(), (Lines{"WARN  pc[0]: os: task test deleted task:blok, pid " + pid + "\n",
                                 "WARN  pc[0]: os: deleted task:blok\n"}));
    ASSERT_EQ(t_create("self", 0, 0, 0, 0, &tcb), 0);
    ASSERT_EQ(t_start(tcb, 0, deleteSelf, nullptr), 0);
    waitUntilGone("self");
    EXPECT_FALSE(afterSelfDelete);
}

// Left out of AddressSanitizer: the landing pad of its clean-up would call
// sigaltstack on the guard zones that the unwinding left below it.
__attribute__((no_sanitize_address)) void *holdTcbLockAndWait(void *) {
    OsLockHold hold(osTcbLock());
    started->pass();
    release->wait(); // cancelled here, with tcbLock held
    return nullptr;
}

TEST_F(OsTask, AThreadCancelledInsideATcbLockSectionLeavesTheLockFree) {
    OS_SKIP_WITHOUT_CANCEL_UNWIND();
    Gate inside, never;
    started = &inside;
    release = &never;
    pthread_t holder;
    ASSERT_EQ(pthread_create(&holder, nullptr, holdTcbLockAndWait, nullptr), 0);
    inside.wait();
    pthread_cancel(holder);
    void *result = nullptr;
    pthread_join(holder, &result);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    Tcb *self = nullptr;
    EXPECT_EQ(t_ident("test", 0, &self), 0); // takes tcbLock
}

// Tasks that end by themselves, tasks deleted while they use the registry,
// and pairs of tasks that delete each other, from four threads at once.
std::atomic<Tcb *> peers[2][64];
void useRegistry(uint32_t, uint32_t, uint32_t, uint32_t) {
    for (;;) {
        t_setnote(nullptr, t_getnote(nullptr) + 1);
        t_findpid(static_cast<uint32_t>(getpid()));
        pthread_testcancel();
    }
}
void endAtOnce(uint32_t, uint32_t, uint32_t, uint32_t) {}
void deletePeer(uint32_t side, uint32_t slot, uint32_t, uint32_t) {
    Tcb *peer;
    while ((peer = peers[1 - side][slot].load()) == nullptr)
        sched_yield();
    t_delete(peer);
}

TEST_F(OsTask, ConcurrentCreationAndDeletionKeepTheRegistrySound) {
    OS_SKIP_WITHOUT_CANCEL_UNWIND();
    std::vector<std::thread> threads;
    for (uint32_t kind = 0; kind < 4; ++kind) {
        threads.emplace_back([kind] {
            static const TaskEntry entries[] = {useRegistry, endAtOnce, deletePeer, deletePeer};
            for (uint32_t slot = 0; slot < 64; ++slot) {
                Tcb *tcb               = nullptr;
                const uint32_t args[4] = {kind - 2, slot, 0, 0};
                ASSERT_EQ(t_create(&"userquitmatepair"[4 * kind], 0, 0, 0, 0, &tcb), 0);
                ASSERT_EQ(t_start(tcb, 0, entries[kind], args), 0);
                if (kind == 0)
                    EXPECT_EQ(t_delete(tcb), 0);
                else if (kind >= 2)
                    peers[kind - 2][slot] = tcb; // started: its peer may delete it now
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    for (const char *name : {"quit", "mate", "pair"})
        waitUntilGone(name);
}

TEST_F(OsTask, SetpriChoosesThePolicyByTheOldAndNewPriority) {
    if (!ostest::realTimeAllowed())
        GTEST_SKIP() << "no real-time scheduling for this process";
    Gate startedGate, releaseGate;
    started  = &startedGate;
    release  = &releaseGate;
    Tcb *tcb = startParked("prio");
    struct {
        int32_t priority, old, policy, kernelPriority;
    } const steps[] = {
        {10, 0, SCHED_RR, 10}, // from 0 upwards: SCHED_RR whatever the layer's policy
        {0, 10, SCHED_OTHER, 0},
        {150, 0, SCHED_OTHER, 0}, // out of range: 0, set again
    };
    for (const auto &step : steps) {
        int32_t old = -1, policy = -1;
        sched_param param{};
        EXPECT_EQ(t_setpri(tcb, step.priority, &old), 0);
        EXPECT_EQ(old, step.old);
        pthread_getschedparam(tcb->thread, &policy, &param);
        EXPECT_EQ(policy, step.policy) << step.priority;
        EXPECT_EQ(param.sched_priority, step.kernelPriority) << step.priority;
    }
    releaseGate.pass();
    waitUntilGone("prio");
}

TEST_F(OsTask, ListShowsTheFirst200TasksInOrder) {
    std::vector<Tcb *> created(200); // with "test", 201 tasks
    for (size_t i = 0; i < created.size(); ++i) {
        char name[8];
        std::snprintf(name, sizeof name, "%04u", static_cast<unsigned>(i % 10000));
        ASSERT_EQ(t_create(name, static_cast<int32_t>(i % 100), 0, 0, 0, &created[i]), 0);
    }
    testing::internal::CaptureStdout();
    t_list();
    const std::string out = testing::internal::GetCapturedStdout();
    for (Tcb *tcb : created)
        t_delete(tcb);
    char first[80], last[80];
    std::snprintf(first, sizeof first,
                  "T[0] Task:  ID    Name  Priority PID\nT[0]    %08x  test      0    %3d\n",
                  static_cast<uint32_t>(reinterpret_cast<uintptr_t>(FindTcb(pthread_self()))),
                  t_gettid());
    std::snprintf(last, sizeof last, "T[0]    %08x  0198     98      0\n",
                  static_cast<uint32_t>(reinterpret_cast<uintptr_t>(created[198])));
    EXPECT_TRUE(out.starts_with(first)) << out.substr(0, 100);
    EXPECT_TRUE(out.ends_with(last)); // task 0199 is not shown
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 201);
}

// A created task has no thread: it is named but not indexed, and its
// deletion and re-prioritisation touch no thread. A thread that is no task
// has no record for any operation to touch.
TEST_F(OsTask, RecordsWithoutAThreadAndThreadsWithoutARecord) {
    ostest::LogLines log;
    Tcb *tcb = nullptr, *found = nullptr;
    ASSERT_EQ(t_create("abc", 7, 0, 0, 0, &tcb), 0); // the terminator is the fourth byte
    EXPECT_EQ(t_ident("abc", 0, &found), 0);
    EXPECT_EQ(found, tcb);
    int32_t old = -1;
    EXPECT_EQ(t_setpri(tcb, 150, &old), 0);
    EXPECT_EQ(old, 7);
    EXPECT_EQ(tcb->priority, 0);
    EXPECT_EQ(t_delete(tcb), 0);
    EXPECT_EQ(t_ident("abc", 0, &found), ERR_NOTFOUND);
    EXPECT_EQ(t_attach("agan", 9, 0), 0); // a task already: it stays that task
    EXPECT_STREQ(t_name(nullptr), "test");
    std::thread([&] {
        EXPECT_EQ(t_delete(nullptr), ERR_NOTCB);
        EXPECT_EQ(t_setpri(nullptr, 5, &old), ERR_NOTCB);
        EXPECT_EQ(t_setnote(nullptr, 5), ERR_NOTCB);
        EXPECT_EQ(t_getnote(nullptr), 0u);
        EXPECT_EQ(t_name(nullptr), nullptr);
    }).join();
    EXPECT_EQ(old, 7); // not written
    EXPECT_EQ(log.take(),
              (Lines{"WARN  pc[0]: os: t_setpri priority 150 out of range, setting to 0\n",
                     "WARN  pc[0]: os: task test deleted task: abc, pid 0\n",
                     "WARN  pc[0]: os: deleted task: abc\n",
                     "WARN  pc[0]: os: task ???? deleted task:????, pid -1\n"}));
}

TEST_F(OsTask, WithoutNptlRunningTasksStayFindableAfterARemoval) {
    Gate startedGate, releaseGate;
    started = &startedGate;
    release = &releaseGate;
    osIsNptlSet(0);
    Tcb *first = startParked("nopt"), *second = startParked("nopt"), *created = nullptr;
    ASSERT_EQ(t_create("gone", 0, 0, 0, 0, &created), 0);
    t_delete(created); // a removal rebuilds the index
    EXPECT_EQ(FindTcb(first->thread), first);
    EXPECT_EQ(FindTcb(second->thread), second);
    releaseGate.pass();
    releaseGate.pass();
    waitUntilGone("nopt");
    osIsNptlSet(1);
}

} // namespace
