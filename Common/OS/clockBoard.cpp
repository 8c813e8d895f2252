// Clock source of the appliance: the board's real-time counter, a block of
// four big-endian 32-bit registers 768 bytes into the page at physical
// 0xe0000000 reached through /dev/mem, and the PowerPC time base.
// Compiled only into the appliance build.
#include "Common/OS/clockSource.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#if !defined(__powerpc__)
#error "the board clock source is for the appliance's PowerPC processor"
#endif

namespace {

constexpr off_t rtcpPage         = 0xe0000000;
constexpr unsigned rtcpOffset    = 768;    // bytes from the page to word 0
constexpr uint32_t rtcpStart     = 128;    // word 0: control, starts the counter
constexpr uint32_t rtcpLoad      = 0;      // word 1: load value
constexpr uint32_t rtcpPrescaler = 266666; // word 2: input clocks per millisecond

// Word 0 of the counter block; null until a start has succeeded.
volatile uint32_t *rtcpBlock = nullptr;

ClockStart boardStart() {
    int fd = open("/dev/mem", O_RDWR);
    if (fd < 0)
        return ClockStart::openFailed;
    void *page = mmap(nullptr, static_cast<size_t>(getpagesize()), PROT_READ | PROT_WRITE,
                      MAP_SHARED, fd, rtcpPage);
    close(fd);
    if (page == MAP_FAILED)
        return ClockStart::mapFailed;
    volatile uint32_t *block =
        reinterpret_cast<volatile uint32_t *>(static_cast<char *>(page) + rtcpOffset);
    // The processor is big-endian like the registers: plain stores.
    block[2]  = rtcpPrescaler;
    block[1]  = rtcpLoad;
    block[0]  = rtcpStart;
    rtcpBlock = block;
    return ClockStart::ok;
}

// One aligned load from the hardware register on every call.
uint32_t boardCounter() {
    return rtcpBlock[3];
}

uint32_t boardUpper() {
    uint32_t v;
    __asm__ __volatile__("mftbu %0" : "=r"(v));
    return v;
}

uint32_t boardLower() {
    uint32_t v;
    __asm__ __volatile__("mftb %0" : "=r"(v));
    return v;
}

constexpr ClockSource boardSource{boardStart, boardCounter, boardUpper, boardLower};

} // namespace

const ClockSource &ClockPlatformSource() {
    return boardSource;
}
