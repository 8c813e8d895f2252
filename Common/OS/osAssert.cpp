// The failure path of OS_ASSERT: one line on standard error, then abort.
#include "Common/OS/osAssert.h"

#include <cstdio>
#include <cstdlib>

extern "C" void OsAssertFail(const char *expression, const char *file, int line,
                             const char *function) {
    // One bounded fprintf: no allocation, usable when the heap is broken.
    std::fprintf(stderr, "%s:%d: %s: Assertion `%s' failed.\n", file, line, function, expression);
    std::fflush(stderr);
    std::abort();
}
