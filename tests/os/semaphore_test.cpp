// Semaphores across real threads: taken and free, the busy answer, the mark
// and the failure lines.
#include "Common/OS/osAlloc.h"
#include "osTestSupport.h"

#include <cstring>
#include <string>
#include <thread>

namespace {

// Taken or free by its count, busy to every SM_NOWAIT while held, got by a
// wait once given back; the mark, no memory, and lock failures logged.
TEST(OsSemaphore, OneHolderGetsItAndFailuresAreAnswered) {
    Semaphore fake{}, *id = nullptr;
    for (uint32_t count : {0u, 1u, 5u}) {
        ASSERT_EQ(sm_create(count ? "scall" : nullptr, count, 0, &id), 0);
        EXPECT_EQ(std::memcmp(id->name, count ? "scal" : "\0\0\0\0", 4), 0);
        EXPECT_EQ(sm_p(id, SM_NOWAIT, 0), count ? 0 : ERR_SEMBUSY);
        EXPECT_EQ(sm_p(id, SM_NOWAIT, 1000), ERR_SEMBUSY) << count;
        int busy = -1, got = -1;
        ostest::Gate tried;
        std::thread waiter([&] {
            busy = sm_p(id, SM_NOWAIT, 0);
            tried.pass();
            if ((got = sm_p(id, 0, 1)) == 0) // the timeout doesn't limit the wait
                sm_v(id);
        });
        tried.wait();
        EXPECT_EQ(sm_v(id), 0);
        waiter.join();
        EXPECT_EQ(busy, ERR_SEMBUSY) << count;
        EXPECT_EQ(got, 0) << count;
        EXPECT_EQ(sm_delete(id), 0);
    }
    fake.mark = SEMAPHORE_MARK ^ 1;
    for (int result : {sm_p(&fake, 0, 0), sm_v(&fake), sm_delete(&fake)})
        EXPECT_EQ(result, ERR_NOTFOUND);
    EXPECT_EQ(fake.mark, SEMAPHORE_MARK ^ 1);
    OsAllocatorSet([](std::size_t) -> void * { return nullptr; });
    EXPECT_EQ(sm_create("none", 1, 0, &id), ERR_NOSEM);
    OsAllocatorSet(nullptr);
#ifndef __SANITIZE_THREAD__ // it reports the deliberate release by a thread that doesn't hold it
    ostest::LogLines log;
    ASSERT_EQ(sm_create("fail", 0, 0, &id), 0);
    std::thread([&] { EXPECT_EQ(sm_v(id), 0); }).join(); // not the holder
    EXPECT_EQ(sm_delete(id), 0);                         // still taken
    EXPECT_EQ(log.take(), (ostest::Lines{"CRIT  pc[0]: os: sm_v pthread_mutex_unlock error " +
                                             std::to_string(EPERM) + "\n",
                                         "WARN  pc[0]: os: pthread_mutex_destroy error " +
                                             std::to_string(EBUSY) + "\n"}));
#endif
}

} // namespace
