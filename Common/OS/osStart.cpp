// OS start: one call brings the layer up in a process and turns the calling
// thread into the task "main".
#include "Common/OS/log.h"
#include "Common/OS/os.h"
#include "Common/OS/osLocks.h"
#include "Common/OS/syslogf.h"

#include <atomic>
#include <cstdio>
#include <cstring>
#include <unistd.h>

namespace {

std::atomic<Tcb *> osMainTcb{nullptr};

// Level -2 stands for 3; -1 starts no writer.
constexpr int32_t osLevelDefault    = -2;
constexpr int32_t osLevelNoWriter   = -1;
constexpr int32_t osDefaultLogLevel = 3;

} // namespace

extern "C" void os_probe_pthread(void) {
    char version[32];
    if (confstr(_CS_GNU_LIBPTHREAD_VERSION, version, sizeof version) == 0) {
        std::puts("WARNING: can't determine libpthread_version.  Assuming NPTL.");
        return;
    }
    if (std::strncmp(version, "NPTL", 4) != 0)
        osIsNptlSet(0);
}

extern "C" int32_t os_start(int32_t level) {
    os_probe_pthread();
    os_init_locks();
    os_set_policy(SCHED_RR);
    if (level == osLevelDefault)
        level = osDefaultLogLevel;
    if (level != osLevelNoWriter) {
        LogWriterStart();
        LogSetThreshold(level);
    }
    if (CmDebgInit() != 0)
        return -1;
    tm_init();
    if (t_attach("main", 60, 0) != 0)
        return -1;
    Tcb *main = nullptr;
    if (t_ident(nullptr, 0, &main) != 0)
        return -1;
    osMainTcb.store(main, std::memory_order_release);
    return 0;
}

extern "C" Tcb *os_main_task(void) {
    return osMainTcb.load(std::memory_order_acquire);
}
