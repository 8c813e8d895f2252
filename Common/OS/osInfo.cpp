// The back-trace stubs and the four information words of the OS layer.
#include "Common/OS/osUtil.h"

#include <array>
#include <cstdio>

namespace {

// The information words 1 to 4. What they stand for is open: nothing in the
// system reads or writes them, so they are constants here.
constexpr std::array<uint32_t, 4> infoWords = {1, 0, 0, 0};

} // namespace

extern "C" void stackBackTrace(uint32_t) {
    std::puts("stackBackTrace(UInt32 taskID) not implemented.");
}

extern "C" void sstackBackTrace(uint32_t) {
    std::puts("sstackBackTrace(UInt32 taskID) not implemented.");
}

extern "C" uint32_t osInfoWord1(void) {
    return infoWords[0];
}
extern "C" uint32_t osInfoWord2(void) {
    return infoWords[1];
}
extern "C" uint32_t osInfoWord3(void) {
    return infoWords[2];
}
extern "C" uint32_t osInfoWord4(void) {
    return infoWords[3];
}
