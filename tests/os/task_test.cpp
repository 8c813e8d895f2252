// Tasks across real threads: creation, the three ways a task ends, deletion
// of a task blocked at a cancellation point, cancellation inside a tcbLock
// section, concurrent creation and deletion, priorities and policies, the
// task list and the answers for a thread that is no task.
#include "Common/OS/os.h"
#include "Common/OS/osAlloc.h"
#include "Common/OS/osLocks.h"
#include "osTestSupport.h"

#include <atomic>
#include <cstring>
#include <regex>
#include <sched.h>
#include <string>
#include <thread>
#include <vector>

// AddressSanitizer's handling of a cancelled thread (its landing pads and its
// end) calls sigaltstack on stack that the unwinding left marked as guard
// zones, and reports an overflow; without the alternate signal stack it
// doesn't. The sanitizer reads this at start-up.
extern "C" const char *__asan_default_options() {
    return "use_sigaltstack=0";
}

namespace {

using ostest::Gate;
using ostest::Lines;

// The test's own thread is the task "test"; each case leaves the registry
// with that task alone, which catches a record left behind.
class OsTask : public testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(t_attach("test", 0, 0), 0); }
    void TearDown() override {
        Tcb *self = nullptr;
        ASSERT_EQ(t_ident(nullptr, 0, &self), 0);
        EXPECT_EQ(t_findpid(static_cast<uint32_t>(getpid())), self);
        EXPECT_EQ(self->next, nullptr) << "a task record was left behind";
    }
    static std::string pidOf(const Tcb *tcb) { return std::to_string(tcb->pid); }
};

// Waits until no task carries `name`: a task that ends by itself frees its
// record on its own thread, after anything the test could wait on.
void waitUntilGone(const char *name) {
    Tcb *found = nullptr;
    while (t_ident(name, 0, &found) == 0)
        sched_yield();
}

// What a task saw of itself, written by the task and read after it is gone.
struct Seen {
    uint32_t args[4];
    int policy;
    int priority;
    bool found; // FindTcb knew it
};
Seen seen;
Gate *started, *release;

void recordSelf(uint32_t a, uint32_t b, uint32_t c, uint32_t d) {
    seen = {{a, b, c, d}, -1, -1, false};
    sched_param param{};
    pthread_getschedparam(pthread_self(), &seen.policy, &param);
    seen.priority = param.sched_priority;
    seen.found    = FindTcb(pthread_self()) != nullptr;
}

TEST_F(OsTask, ATaskWhoseFunctionReturnsRanAsAskedAndLeavesNoTrace) {
    const bool realTime = ostest::realTimeAllowed();
    struct {
        int32_t policy, priority;
        const uint32_t *args;
        int started, expectedPolicy, expectedPriority;
    } const cases[] = {
        // clang-format off
        {SCHED_OTHER, 0,   nullptr, 0, SCHED_OTHER, 0},
        {SCHED_OTHER, 10,  nullptr, 0, SCHED_OTHER, 0},   // before the OS start: time-shared
        {SCHED_RR,    120, nullptr, 0, SCHED_OTHER, 0},   // out of range: logged, 0
        {SCHED_RR,    10,  nullptr, realTime ? 0 : ERR_TIMEOUT, SCHED_RR, 10},
        // clang-format on
    };
    const uint32_t args[4] = {1, 0xffffffff, 3, 4};
    for (const auto &c : cases) {
        os_set_policy(c.policy);
        ostest::LogLines log;
        Tcb *tcb = nullptr;
        ASSERT_EQ(t_create("rets", c.priority, 0, 0, 0, &tcb), 0);
        EXPECT_EQ(FindTcb(tcb->thread), nullptr); // created, not running
        const int result = t_start(tcb, 0, recordSelf, c.priority == 0 ? args : nullptr);
        os_set_policy(SCHED_OTHER);
        ASSERT_EQ(result, c.started) << c.priority;
        if (result != 0) { // no real-time rights: the task stays created
            EXPECT_EQ(t_delete(tcb), 0);
            continue;
        }
        waitUntilGone("rets");
        EXPECT_TRUE(seen.found);
        EXPECT_EQ(seen.policy, c.expectedPolicy) << c.priority;
        EXPECT_EQ(seen.priority, c.expectedPriority) << c.priority;
        const uint32_t zeros[4] = {};
        EXPECT_EQ(std::memcmp(seen.args, c.priority == 0 ? args : zeros, sizeof args), 0);
        Lines lines = log.take();
        ASSERT_FALSE(lines.empty());
        if (c.priority == 120) {
            EXPECT_EQ(lines.front(),
                      "WARN  pc[0]: os: t_start priority 120 out of range, setting to 0\n");
        }
        EXPECT_TRUE(std::regex_match(lines.at(lines.size() - 2),
                                     std::regex("DEBUG pc\\[0\\]: os: task:rets pid:[0-9]+ thread "
                                                "[0-9a-f]{8} [0-9]+ [0-9a-f]{8}\n")))
            << lines.at(lines.size() - 2);
        EXPECT_TRUE(
            std::regex_match(lines.back(), std::regex("WARN  pc\\[0\\]: os: task rets deleted "
                                                      "task:rets, pid [0-9]+\n")));
    }
}

TEST_F(OsTask, ACreatedTaskIsFoundByNameOnlyAndIsDeletedWithoutAThread) {
    ostest::LogLines log;
    Tcb *tcb = nullptr;
    ASSERT_EQ(t_create(nullptr, 7, 0, 0, 0, &tcb), 0);
    EXPECT_EQ(std::memcmp(tcb->name, "\0\0\0\0", 5), 0);
    Tcb *found = nullptr;
    EXPECT_EQ(t_ident("\0\0\0\0", 0, &found), 0);
    EXPECT_EQ(found, tcb);
    int32_t old = -1;
    EXPECT_EQ(t_setpri(tcb, 150, &old), 0); // no thread: only the number changes
    EXPECT_EQ(old, 7);
    EXPECT_EQ(tcb->priority, 0);
    EXPECT_EQ(t_setpri(tcb, 0, &old), 0);
    EXPECT_EQ(old, 0);
    EXPECT_EQ(t_delete(tcb), 0);
    EXPECT_EQ(t_ident("\0\0\0\0", 0, &found), ERR_NOTFOUND);
    EXPECT_EQ(found, nullptr);
    EXPECT_EQ(log.take(),
              (Lines{"WARN  pc[0]: os: t_setpri priority 150 out of range, setting to 0\n",
                     "WARN  pc[0]: os: task test deleted task:    , pid 0\n",
                     "WARN  pc[0]: os: deleted task:    \n"}));
}

void blockUntilCancelled(uint32_t, uint32_t, uint32_t, uint32_t) {
    started->pass();
    release->block(); // a cancellation point; nothing is ever passed
}

TEST_F(OsTask, DeletingATaskBlockedAtACancellationPointEndsItAndFreesItsRecord) {
    OS_SKIP_WITHOUT_CANCEL_UNWIND();
    Gate startedGate, releaseGate;
    started  = &startedGate;
    release  = &releaseGate;
    Tcb *tcb = nullptr;
    ASSERT_EQ(t_create("blok", 0, 0, 0, 0, &tcb), 0);
    ASSERT_EQ(t_start(tcb, 0, blockUntilCancelled, nullptr), 0);
    startedGate.wait();
    const pthread_t thread = tcb->thread;
    EXPECT_EQ(FindTcb(thread), tcb);
    ostest::LogLines log;
    const std::string pid = pidOf(tcb);
    EXPECT_EQ(t_delete(tcb), 0);
    EXPECT_EQ(FindTcb(thread), nullptr);
    EXPECT_EQ(log.take(), (Lines{"WARN  pc[0]: os: task test deleted task:blok, pid " + pid + "\n",
                                 "WARN  pc[0]: os: deleted task:blok\n"}));
}

bool afterSelfDelete = false;
void deleteSelf(uint32_t, uint32_t, uint32_t, uint32_t) {
    t_delete(nullptr);
    afterSelfDelete = true;
}

TEST_F(OsTask, ATaskThatDeletesItselfDoesNotComeBack) {
    Tcb *tcb = nullptr;
    ASSERT_EQ(t_create("self", 0, 0, 0, 0, &tcb), 0);
    ASSERT_EQ(t_start(tcb, 0, deleteSelf, nullptr), 0);
    waitUntilGone("self");
    EXPECT_FALSE(afterSelfDelete);
}

// Left out of AddressSanitizer, for the same reason: its clean-up's landing
// pad would call sigaltstack on the guard zones of the frames below.
Gate *inside;
__attribute__((no_sanitize_address)) void *holdTcbLockAndBlock(void *) {
    OsLockHold hold(osTcbLock());
    inside->pass();
    release->block(); // cancelled here, with tcbLock held
    return nullptr;
}

TEST_F(OsTask, AThreadCancelledInsideATcbLockSectionLeavesTheLockFree) {
    OS_SKIP_WITHOUT_CANCEL_UNWIND();
    Gate insideGate, never;
    inside  = &insideGate;
    release = &never;
    pthread_t holder;
    ASSERT_EQ(pthread_create(&holder, nullptr, holdTcbLockAndBlock, nullptr), 0);
    insideGate.wait();
    pthread_cancel(holder);
    void *result = nullptr;
    pthread_join(holder, &result);
    EXPECT_EQ(result, PTHREAD_CANCELED);
    Tcb *self = nullptr;
    EXPECT_EQ(t_ident("test", 0, &self), 0); // takes tcbLock
}

// Several threads create, start and delete tasks at once, with tasks that
// end by themselves, tasks deleted while they use the registry, and pairs of
// tasks that delete each other, until a fixed count.
std::atomic<Tcb *> peers[2][64];
void useRegistry(uint32_t, uint32_t, uint32_t, uint32_t) {
    for (;;) {
        Tcb *self = nullptr;
        t_ident(nullptr, 0, &self);
        t_setnote(nullptr, t_getnote(self) + 1);
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
    constexpr int rounds = 64;
    std::vector<std::thread> threads;
    threads.emplace_back([] {
        for (int i = 0; i < rounds; ++i) {
            Tcb *tcb = nullptr;
            ASSERT_EQ(t_create("user", 0, 0, 0, 0, &tcb), 0);
            ASSERT_EQ(t_start(tcb, 0, useRegistry, nullptr), 0);
            EXPECT_EQ(t_delete(tcb), 0);
        }
    });
    threads.emplace_back([] {
        for (int i = 0; i < rounds; ++i) {
            Tcb *tcb = nullptr;
            ASSERT_EQ(t_create("quit", 0, 0, 0, 0, &tcb), 0);
            ASSERT_EQ(t_start(tcb, 0, endAtOnce, nullptr), 0);
        }
    });
    for (uint32_t side = 0; side < 2; ++side) {
        threads.emplace_back([side] {
            for (uint32_t slot = 0; slot < rounds; ++slot) {
                Tcb *tcb = nullptr;
                ASSERT_EQ(t_create(side ? "pair" : "mate", 0, 0, 0, 0, &tcb), 0);
                const uint32_t args[4] = {side, slot, 0, 0};
                ASSERT_EQ(t_start(tcb, 0, deletePeer, args), 0);
                peers[side][slot] = tcb; // started: its peer may delete it from now on
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    for (const char *name : {"quit", "pair", "mate"})
        waitUntilGone(name);
}

TEST_F(OsTask, SetpriChoosesThePolicyByTheOldAndNewPriority) {
    if (!ostest::realTimeAllowed())
        GTEST_SKIP() << "no real-time scheduling for this process";
    Gate startedGate, releaseGate;
    started  = &startedGate;
    release  = &releaseGate;
    Tcb *tcb = nullptr;
    ASSERT_EQ(t_create("prio", 0, 0, 0, 0, &tcb), 0);
    ASSERT_EQ(t_start(
                  tcb, 0,
                  [](uint32_t, uint32_t, uint32_t, uint32_t) {
                      started->pass();
                      release->wait();
                  },
                  nullptr),
              0);
    startedGate.wait();
    struct {
        int32_t priority, old, policy, kernelPriority;
    } const steps[] = {
        {10, 0, SCHED_RR, 10},  // from 0 upwards: SCHED_RR whatever the layer's policy
        {10, 10, SCHED_RR, 10}, // the same: nothing changes
        {0, 10, SCHED_OTHER, 0},
        {150, 0, SCHED_OTHER, 0}, // out of range: 0, set again
    };
    for (const auto &step : steps) {
        int32_t old = -1;
        EXPECT_EQ(t_setpri(tcb, step.priority, &old), 0);
        EXPECT_EQ(old, step.old);
        int policy = -1;
        sched_param param{};
        pthread_getschedparam(tcb->thread, &policy, &param);
        EXPECT_EQ(policy, step.policy) << step.priority;
        EXPECT_EQ(param.sched_priority, step.kernelPriority) << step.priority;
    }
    releaseGate.pass();
    waitUntilGone("prio");
}

TEST_F(OsTask, ListShowsTheFirst200TasksInOrder) {
    std::vector<Tcb *> created;
    for (int i = 0; i < 200; ++i) { // with "test", 201 tasks
        char name[5];
        std::snprintf(name, sizeof name, "%04d", i);
        Tcb *tcb = nullptr;
        ASSERT_EQ(t_create(name, i % 100, 0, 0, 0, &tcb), 0);
        created.push_back(tcb);
    }
    Tcb *self = nullptr;
    t_ident(nullptr, 0, &self);
    testing::internal::CaptureStdout();
    t_list();
    const std::string out = testing::internal::GetCapturedStdout();
    for (Tcb *tcb : created)
        t_delete(tcb);
    std::vector<std::string> rows;
    for (size_t at = 0, end; (end = out.find('\n', at)) != std::string::npos; at = end + 1)
        rows.push_back(out.substr(at, end - at));
    ASSERT_EQ(rows.size(), 201u);
    EXPECT_EQ(rows[0], "T[0] Task:  ID    Name  Priority PID");
    char expected[80];
    std::snprintf(expected, sizeof expected, "T[0]    %08x  test      0    %3d",
                  static_cast<uint32_t>(reinterpret_cast<uintptr_t>(self)), t_gettid());
    EXPECT_EQ(rows[1], expected);
    std::snprintf(expected, sizeof expected, "T[0]    %08x  0198     98      0",
                  static_cast<uint32_t>(reinterpret_cast<uintptr_t>(created[198])));
    EXPECT_EQ(rows[200], expected); // the 200th task; task 0199 is not shown
}

TEST_F(OsTask, LookupsByNameAndPid) {
    Tcb *abc = nullptr, *found = nullptr;
    ASSERT_EQ(t_create("abc", 5, 0, 0, 0, &abc), 0); // the terminator is the fourth byte
    EXPECT_EQ(t_ident("abc", 0, &found), 0);
    EXPECT_EQ(found, abc);
    EXPECT_EQ(t_ident("ABC", 0, &found), ERR_NOTFOUND);
    EXPECT_EQ(found, nullptr);
    Tcb *self = nullptr;
    t_ident(nullptr, 0, &self);
    int32_t priority = -1;
    EXPECT_EQ(t_findpid_pri(static_cast<uint32_t>(getpid()), &priority), self);
    EXPECT_EQ(priority, 0);
    EXPECT_EQ(t_findpid(0), abc); // created tasks have no pid yet
    EXPECT_EQ(t_findpid(1), nullptr);
    EXPECT_EQ(std::string(t_name(nullptr)), "test");
    EXPECT_EQ(t_setnote(nullptr, 42), 0);
    EXPECT_EQ(t_getnote(self), 42u);
    EXPECT_EQ(t_attach("agan", 9, 0), 0); // a task already: nothing changes
    EXPECT_EQ(FindTcb(pthread_self()), self);
    EXPECT_EQ(std::string(self->name), "test");
    t_delete(abc);
}

TEST_F(OsTask, AThreadThatIsNoTaskGetsNoRecordToActOn) {
    ostest::LogLines log;
    std::thread([] {
        int32_t old = -7;
        Tcb *found  = reinterpret_cast<Tcb *>(&old); // overwritten with null
        EXPECT_EQ(t_delete(nullptr), ERR_NOTCB);
        EXPECT_EQ(t_setpri(nullptr, 5, &old), ERR_NOTCB);
        EXPECT_EQ(old, -7);
        EXPECT_EQ(t_setnote(nullptr, 5), ERR_NOTCB);
        EXPECT_EQ(t_getnote(nullptr), 0u);
        EXPECT_EQ(t_name(nullptr), nullptr);
        EXPECT_EQ(t_ident(nullptr, 0, &found), ERR_NOTFOUND);
        EXPECT_EQ(found, nullptr);
    }).join();
    EXPECT_EQ(log.take(), Lines{"WARN  pc[0]: os: task ???? deleted task:????, pid -1\n"});
}

TEST_F(OsTask, NoMemoryRegistersNothing) {
    OsAllocatorSet([](std::size_t) -> void * { return nullptr; });
    Tcb *tcb = nullptr;
    EXPECT_EQ(t_create("none", 0, 0, 0, 0, &tcb), ERR_NOTCB);
    int attached = -1;
    std::thread([&] { attached = t_attach("none", 0, 0); }).join();
    OsAllocatorSet(nullptr);
    EXPECT_EQ(attached, ERR_NOTCB);
    EXPECT_EQ(tcb, nullptr);
    testing::internal::CaptureStdout();
    AddTcb(nullptr);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "AddTcb: tcb pointer is NULL\n");
}

TEST_F(OsTask, WithoutNptlRunningTasksStayFindableAfterARemoval) {
    Gate startedGate, releaseGate;
    started = &startedGate;
    release = &releaseGate;
    osIsNptlSet(0);
    ostest::LogLines log;
    Tcb *first = nullptr, *second = nullptr, *created = nullptr;
    for (Tcb **tcb : {&first, &second}) {
        ASSERT_EQ(t_create("nopt", 0, 0, 0, 0, tcb), 0);
        ASSERT_EQ(t_start(
                      *tcb, 0,
                      [](uint32_t, uint32_t, uint32_t, uint32_t) {
                          started->pass();
                          release->wait();
                      },
                      nullptr),
                  0);
        startedGate.wait();
    }
    ASSERT_EQ(t_create("gone", 0, 0, 0, 0, &created), 0);
    t_delete(created); // a removal rebuilds the index
    EXPECT_EQ(FindTcb(first->thread), first);
    EXPECT_EQ(FindTcb(second->thread), second);
    EXPECT_EQ(first->threadId, 0u);
    EXPECT_TRUE(std::regex_match(log.take().at(0), std::regex("DEBUG pc\\[0\\]: os: task:nopt "
                                                              "pid:[0-9]+ thread -?[0-9]+\n")));
    releaseGate.pass();
    releaseGate.pass();
    waitUntilGone("nopt");
    osIsNptlSet(1);
}

} // namespace
