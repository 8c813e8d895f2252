// Tasks across real threads: how a task ends, deletion at a cancellation point
// and in a tcbLock section, concurrency, policies, the list, missing records.
#include "Common/OS/osLocks.h"
#include "osTestSupport.h"

#include <atomic>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace ostest;

// The test's thread is the task "test", alone in the registry after each case.
struct OsTask : testing::Test {
    void SetUp() override { ASSERT_EQ(t_attach("test", 0, 0), 0); }
    void TearDown() override { EXPECT_EQ(FindTcb(pthread_self())->next, nullptr); }
};

// A task that says it runs, then waits at a cancellation point for release.
// Every case passes each gate as often as it waits on it.
Gate started, release;
void park(uint32_t, uint32_t, uint32_t, uint32_t) {
    started.pass();
    release.wait();
}

struct {
    uint32_t args[4];
    int policy, priority, found;
} seen; // what a task saw of itself, read after it is gone
void recordSelf(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    sched_param param{};
    pthread_getschedparam(pthread_self(), &seen.policy, &param);
    seen = {{a, b, c, d}, seen.policy, param.sched_priority, FindTcb(pthread_self()) != nullptr};
}

TEST_F(OsTask, ATaskWhoseFunctionReturnsRanAsAskedAndLeavesNoTrace) {
    const uint32_t args[4] = {1, 0xffffffff, 3, 4}, zeros[4] = {};
    struct {
        int32_t layerPolicy, priority, policy, kernelPriority, withArgs;
    } const cases[] = {
        {SCHED_OTHER, 10, SCHED_OTHER, 0, 0}, // before the OS start: time-shared
        {SCHED_RR, 120, SCHED_OTHER, 0, 1},   // out of range: logged, 0
        {SCHED_RR, 10, SCHED_RR, 10, 0},
    };
    for (const auto &c : cases) {
        os_set_policy(c.layerPolicy);
        LogLines log;
        Tcb *tcb = nullptr;
        ASSERT_EQ(t_create("rets", c.priority, 0, 0, 0, &tcb), 0);
        const int result = t_start(tcb, 0, recordSelf, c.withArgs ? args : nullptr);
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
        EXPECT_EQ(std::memcmp(seen.args, c.withArgs ? args : zeros, sizeof args), 0);
        const std::string pid = std::to_string(getpid());
        const Lines lines     = log.take();
        ASSERT_EQ(lines.size(), c.priority > 99 ? 3u : 2u);
        EXPECT_EQ(lines[0] == "WARN  pc[0]: os: t_start priority 120 out of range, setting to 0\n",
                  c.priority > 99);
        EXPECT_TRUE(
            lines.end()[-2].starts_with("DEBUG pc[0]: os: task:rets pid:" + pid + " thread "));
        EXPECT_EQ(lines.back(), "WARN  pc[0]: os: task rets deleted task:rets, pid " + pid + "\n");
    }
}

// Left out of AddressSanitizer: the landing pad of its clean-up would call
// sigaltstack on the guard zones that the unwinding left below it.
__attribute__((no_sanitize_address)) void *holdTcbLockAndWait(void *) {
    OsLockHold hold(osTcbLock());
    started.pass();
    release.wait(); // cancelled here, with tcbLock held
    return nullptr;
}

TEST_F(OsTask, DeletionEndsABlockedTaskAndUnwindingFreesTcbLock) {
    OS_SKIP_WITHOUT_CANCEL_UNWIND();
    Tcb *tcb = nullptr;
    startTask(tcb, "blok", park);
    started.wait();
    const pthread_t thread = tcb->thread;
    const std::string pid  = std::to_string(tcb->pid);
    LogLines log;
    EXPECT_EQ(t_delete(tcb), 0); // cancelled in its wait, joined, freed
    EXPECT_EQ(FindTcb(thread), nullptr);
    EXPECT_EQ(log.take(), (Lines{"WARN  pc[0]: os: task test deleted task:blok, pid " + pid + "\n",
                                 "WARN  pc[0]: os: deleted task:blok\n"}));
    pthread_t holder; // a thread cancelled in a tcbLock section
    ASSERT_EQ(pthread_create(&holder, nullptr, holdTcbLockAndWait, nullptr), 0);
    started.wait();
    pthread_cancel(holder);
    pthread_join(holder, nullptr);
    EXPECT_EQ(t_ident("test", 0, &tcb), 0); // takes tcbLock
}

// Tasks that return or delete themselves, tasks deleted while they use the
// registry, and pairs of tasks that delete each other, from four threads.
std::atomic<Tcb *> peers[2][64];
void useRegistry(uint32_t, uint32_t, uint32_t, uint32_t) {
    for (;;) {
        t_setnote(nullptr, t_getnote(nullptr) + 1);
        t_findpid(static_cast<uint32_t>(getpid()));
        pthread_testcancel();
    }
}
void endAtOnce(uint32_t, uint32_t slot, uint32_t, uint32_t) {
    if (slot % 2 != 0) {
        t_delete(nullptr);
        ADD_FAILURE() << "a task's deletion of itself returned";
    }
}
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
                startTask(tcb, &"userquitmatepair"[4 * kind], entries[kind], args);
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

// Created tasks, named (three letters end with the fourth byte) and listed,
// have no thread to touch; a thread that is no task has no record to touch.
TEST_F(OsTask, ListShowsTheFirst200TasksAndRecordsWithoutAThreadGo) {
    std::vector<Tcb *> created(200); // with "test", 201 tasks
    for (int32_t i = 0; i < 200; ++i)
        ASSERT_EQ(t_create(std::to_string(100 + i).c_str(), i % 100, 0, 0, 0, &created[i]), 0);
    testing::internal::CaptureStdout();
    t_list();
    const std::string out = testing::internal::GetCapturedStdout();
    char first[80], last[80];
    std::snprintf(first, sizeof first,
                  "T[0] Task:  ID    Name  Priority PID\nT[0]    %08x  test      0    %3d\n",
                  static_cast<uint32_t>(reinterpret_cast<uintptr_t>(FindTcb(pthread_self()))),
                  t_gettid());
    std::snprintf(last, sizeof last, "T[0]    %08x   298     98      0\n",
                  static_cast<uint32_t>(reinterpret_cast<uintptr_t>(created[198])));
    EXPECT_TRUE(out.starts_with(first)) << out.substr(0, 100);
    EXPECT_TRUE(out.ends_with(last)); // task 299 is not shown
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 201);
    LogLines log;
    Tcb *found  = nullptr;
    int32_t old = -1;
    EXPECT_EQ(t_ident("107", 0, &found), 0);
    EXPECT_EQ(found, created[7]);
    EXPECT_EQ(t_setpri(found, 150, &old), 0);
    EXPECT_EQ(old, 7);
    EXPECT_EQ(found->priority, 0);
    EXPECT_EQ(t_delete(found), 0);
    EXPECT_EQ(t_ident("107", 0, &found), ERR_NOTFOUND);
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
                     "WARN  pc[0]: os: task test deleted task: 107, pid 0\n",
                     "WARN  pc[0]: os: deleted task: 107\n",
                     "WARN  pc[0]: os: task ???? deleted task:????, pid -1\n"}));
    created.erase(created.begin() + 7);
    for (Tcb *tcb : created)
        t_delete(tcb);
}

// Without NPTL, running tasks stay findable after a removal rebuilt the
// index. With real-time rights, t_setpri chooses the policy by the old and
// the new priority.
TEST_F(OsTask, WithoutNptlTasksStayFindableAndSetpriChoosesThePolicy) {
    Tcb *tcb = nullptr, *created = nullptr;
    osIsNptlSet(0);
    startTask(tcb, "park", park);
    started.wait();
    ASSERT_EQ(t_create("gone", 0, 0, 0, 0, &created), 0);
    t_delete(created);
    osIsNptlSet(1);
    EXPECT_EQ(FindTcb(tcb->thread), tcb);
    struct {
        int32_t priority, old, policy, kernelPriority;
    } const steps[] = {
        {10, 0, SCHED_RR, 10}, // from 0 upwards: SCHED_RR whatever the layer's policy
        {0, 10, SCHED_OTHER, 0},
        {150, 0, SCHED_OTHER, 0}, // out of range: 0, set again
    };
    for (const auto &step : steps) {
        if (!realTimeAllowed())
            break;
        int32_t old = -1, policy = -1;
        sched_param param{};
        EXPECT_EQ(t_setpri(tcb, step.priority, &old), 0);
        EXPECT_EQ(old, step.old);
        pthread_getschedparam(tcb->thread, &policy, &param);
        EXPECT_EQ(policy, step.policy) << step.priority;
        EXPECT_EQ(param.sched_priority, step.kernelPriority) << step.priority;
    }
    release.pass();
    waitUntilGone("park");
}

} // namespace
