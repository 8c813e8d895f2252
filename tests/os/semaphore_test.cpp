// Semaphores across real threads: names, the taken and free states, the
// busy answer, the mark, and the failure lines.
#include "Common/OS/os.h"
#include "Common/OS/osAlloc.h"
#include "osTestSupport.h"

#include <cstring>
#include <string>
#include <thread>

namespace {

using ostest::Lines;

// sm_p under SM_NOWAIT from a thread of its own, which ends holding nothing.
int tryFromOtherThread(Semaphore *id) {
    int result = -1;
    std::thread([&] {
        result = sm_p(id, SM_NOWAIT, 0);
        if (result == 0)
            sm_v(id);
    }).join();
    return result;
}

TEST(OsSemaphore, NamesAreFourBytesAsGiven) {
    struct {
        const char *name;
        const char bytes[4];
    } const cases[] = {
        {nullptr, {0, 0, 0, 0}}, {"scall", {'s', 'c', 'a', 'l'}}, {"logw", {'l', 'o', 'g', 'w'}}};
    for (const auto &c : cases) {
        Semaphore *id = nullptr;
        ASSERT_EQ(sm_create(c.name, 1, 0, &id), 0);
        EXPECT_EQ(std::memcmp(id->name, c.bytes, 4), 0) << (c.name ? c.name : "null");
        EXPECT_EQ(id->mark, SEMAPHORE_MARK);
        EXPECT_TRUE(pthread_equal(id->creator, pthread_self()));
        EXPECT_EQ(sm_delete(id), 0);
    }
}

TEST(OsSemaphore, CountZeroIsHeldByItsCreatorUntilItGivesItBack) {
    Semaphore *id = nullptr;
    ASSERT_EQ(sm_create("zero", 0, 0, &id), 0);
    EXPECT_EQ(tryFromOtherThread(id), ERR_SEMBUSY);
    EXPECT_EQ(sm_v(id), 0);
    EXPECT_EQ(tryFromOtherThread(id), 0);
    EXPECT_EQ(sm_delete(id), 0);
}

TEST(OsSemaphore, AnyCountAboveZeroLetsOneHolderIn) {
    for (uint32_t count : {1u, 5u}) {
        Semaphore *id = nullptr;
        ASSERT_EQ(sm_create("many", count, 0, &id), 0);
        EXPECT_EQ(sm_p(id, SM_NOWAIT, 0), 0);
        EXPECT_EQ(sm_p(id, SM_NOWAIT, 1000), ERR_SEMBUSY) << count; // taken, even by its holder
        EXPECT_EQ(tryFromOtherThread(id), ERR_SEMBUSY) << count;
        EXPECT_EQ(sm_v(id), 0);
        EXPECT_EQ(sm_delete(id), 0);
    }
}

TEST(OsSemaphore, AWaiterGetsTheSemaphoreWhenItIsGivenBack) {
    Semaphore *id = nullptr;
    ASSERT_EQ(sm_create("wait", 0, 0, &id), 0);
    int got = -1;
    std::thread waiter([&] {
        got = sm_p(id, 0, 1); // the timeout doesn't limit the wait
        sm_v(id);
    });
    EXPECT_EQ(sm_v(id), 0);
    waiter.join();
    EXPECT_EQ(got, 0);
    EXPECT_EQ(sm_delete(id), 0);
}

TEST(OsSemaphore, ARecordWithoutTheMarkIsRefusedAndLeftAlone) {
    Semaphore fake{};
    fake.mark              = 0x53454d42; // one bit away
    const Semaphore before = fake;
    EXPECT_EQ(sm_p(&fake, 0, 0), ERR_NOTFOUND);
    EXPECT_EQ(sm_p(&fake, SM_NOWAIT, 0), ERR_NOTFOUND);
    EXPECT_EQ(sm_v(&fake), ERR_NOTFOUND);
    EXPECT_EQ(sm_delete(&fake), ERR_NOTFOUND);
    EXPECT_EQ(std::memcmp(&fake, &before, sizeof fake), 0);
}

TEST(OsSemaphore, LockFailuresAreLoggedAndTheCallGoesOn) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP()
        << "ThreadSanitizer reports the deliberate release by a thread that doesn't hold it";
#endif
    ostest::LogLines log;
    Semaphore *id = nullptr;
    ASSERT_EQ(sm_create("fail", 0, 0, &id), 0);
    int released = -1;
    std::thread([&] { released = sm_v(id); }).join(); // not the holder
    EXPECT_EQ(released, 0);
    EXPECT_EQ(sm_delete(id), 0); // still taken
    EXPECT_EQ(
        log.take(),
        (Lines{"CRIT  pc[0]: os: sm_v pthread_mutex_unlock error " + std::to_string(EPERM) + "\n",
               "WARN  pc[0]: os: pthread_mutex_destroy error " + std::to_string(EBUSY) + "\n"}));
}

TEST(OsSemaphore, NoMemoryGivesNoSemaphore) {
    OsAllocatorSet([](std::size_t) -> void * { return nullptr; });
    Semaphore *id = nullptr;
    EXPECT_EQ(sm_create("none", 1, 0, &id), ERR_NOSEM);
    OsAllocatorSet(nullptr);
    EXPECT_EQ(id, nullptr);
}

} // namespace
