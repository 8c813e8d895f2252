// The send and receive paths of the link allocate no memory: this program
// puts its own malloc family in front of the C library's and counts the
// calls made by the test's thread while the link works.
#include "pipeFixture.h"

#include "system/Pixelworks/PWApi.h"
#include "system/Pixelworks/PWReport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define SANITIZER_OWNS_MALLOC 1
#else
#define SANITIZER_OWNS_MALLOC 0
#endif

namespace {
thread_local bool counting = false;
std::atomic<int> allocations{0};

[[maybe_unused]] void countIfCounting() {
    if (counting)
        allocations.fetch_add(1, std::memory_order_relaxed);
}
} // namespace

#if !SANITIZER_OWNS_MALLOC
extern "C" {
void *__libc_malloc(std::size_t);
void *__libc_calloc(std::size_t, std::size_t);
void *__libc_realloc(void *, std::size_t);
void *__libc_memalign(std::size_t, std::size_t);
void __libc_free(void *);

void *malloc(std::size_t size) {
    countIfCounting();
    return __libc_malloc(size);
}
void *calloc(std::size_t n, std::size_t size) {
    countIfCounting();
    return __libc_calloc(n, size);
}
void *realloc(void *p, std::size_t size) {
    countIfCounting();
    return __libc_realloc(p, size);
}
void *memalign(std::size_t alignment, std::size_t size) {
    countIfCounting();
    return __libc_memalign(alignment, size);
}
void free(void *p) {
    __libc_free(p);
}
}
#endif

namespace {

// Counts the allocations of this thread while it lives.
struct AllocationWindow {
    AllocationWindow() {
        allocations = 0;
        counting    = true;
    }
    ~AllocationWindow() { counting = false; }
    int count() const { return allocations.load(); }
};

std::atomic<int> reportsSeen{0};
void countReport(int, const char *) {
    reportsSeen.fetch_add(1);
}

TEST(PWNoAllocation, SendAndReceivePathsAllocateNothing) {
    if (SANITIZER_OWNS_MALLOC)
        GTEST_SKIP() << "the sanitizer's allocator cannot be counted here";
    {
        // The counter must see an allocation, or the test proves nothing.
        AllocationWindow probe;
        void *volatile p = std::malloc(16);
        std::free(p);
        ASSERT_EQ(probe.count(), 1);
    }
    PipeFolder folder;
    ASSERT_EQ(PWInit(folder.path.c_str()), PW_OK);
    DaemonEnds daemon(folder, 0, PW_INTERFACE_CMD);
    PWHandle *handle = PWOpenCmdHandle(0);
    ASSERT_NE(handle, nullptr);
    PWReportSetHook(countReport);

    std::vector<uint8_t> good =
        packetOf(3, {1, 6000, 1650, 750, 1280, 720, 0, 0, 5}, PW_INTERFACE_CMD);
    std::vector<uint8_t> corrupt = good;
    corrupt[10] ^= 1;
    std::vector<uint8_t> other = packetOf(3, {}, PW_INTERFACE_DIAG);
    PWMsg msg{};
    msg.Opcode = 4;
    msg.Length = 2;

    AllocationWindow window;
    EXPECT_EQ(PWSendMsg(handle, &msg), PW_OK);
    daemon.send(good);
    EXPECT_EQ(PWReceiveMsg(handle, 1000, &msg), PW_OK);
    daemon.send(corrupt); // report and resynchronisation
    EXPECT_EQ(PWReceiveMsg(handle, 10, &msg), PW_ERR_TIMEOUT);
    daemon.send(other);
    EXPECT_EQ(PWReceiveMsg(handle, 10, &msg), PW_ERR_TIMEOUT);
    EXPECT_EQ(PWReceiveMsg(handle, 0, &msg), PW_ERR_TIMEOUT);
    daemon.closeFromClient();
    EXPECT_EQ(PWSendMsg(handle, &msg), PW_ERR_WRITE);
    EXPECT_EQ(window.count(), 0);
    EXPECT_EQ(reportsSeen.load(), 5); // CRC, three timeouts, the write failure
    PWReportSetHook(nullptr);
}

} // namespace
