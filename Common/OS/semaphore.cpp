// Semaphores: one priority-inheriting mutex each, marked "SEMA" so that an
// identifier can be told from garbage.
#include "Common/OS/log.h"
#include "Common/OS/os.h"
#include "Common/OS/osAlloc.h"
#include "Common/OS/osAssert.h"
#include "Common/OS/osLocks.h"

#include <cstdlib>
#include <cstring>

namespace {

constexpr const char *osSource = "os";

bool semaphoreMarked(const Semaphore *id) {
    OS_ASSERT(id != nullptr);
    return id->mark == SEMAPHORE_MARK;
}

} // namespace

extern "C" int sm_create(const char *name, uint32_t count, uint32_t, Semaphore **out) {
    auto *id = static_cast<Semaphore *>(osAlloc(sizeof(Semaphore)));
    if (id == nullptr)
        return ERR_NOSEM;
    std::memset(static_cast<void *>(id), 0, sizeof *id);
    if (name != nullptr)
        std::memcpy(id->name, name, sizeof id->name);
    id->creator  = pthread_self();
    id->reserved = 0;
    if (osMutexInit(&id->lock) != 0) {
        std::free(id);
        return ERR_NOSEM;
    }
    // Counts above 1 mean no more than 1: the semaphore is free or taken.
    if (count == 0) {
        if (int error = pthread_mutex_lock(&id->lock); error != 0)
            LogCrit(osSource, "mutex_lock error in sm_create %d\n", error);
    }
    id->mark = SEMAPHORE_MARK;
    if (out != nullptr)
        *out = id;
    return 0;
}

// The timeout is not read: a wait has no time limit.
extern "C" int sm_p(Semaphore *id, uint32_t flags, uint32_t) {
    if (!semaphoreMarked(id))
        return ERR_NOTFOUND;
    if ((flags & SM_NOWAIT) != 0)
        return pthread_mutex_trylock(&id->lock) == 0 ? 0 : ERR_SEMBUSY;
    if (int error = pthread_mutex_lock(&id->lock); error != 0)
        LogCrit(osSource, "sm_p pthread_mutex_lock error %d\n", error);
    return 0;
}

extern "C" int sm_v(Semaphore *id) {
    if (!semaphoreMarked(id))
        return ERR_NOTFOUND;
    if (int error = pthread_mutex_unlock(&id->lock); error != 0)
        LogCrit(osSource, "sm_v pthread_mutex_unlock error %d\n", error);
    return 0;
}

// The mark is cleared before the record goes back to the heap, so that the
// identifier, used again, is more likely to be told from a semaphore.
extern "C" int sm_delete(Semaphore *id) {
    if (!semaphoreMarked(id))
        return ERR_NOTFOUND;
    if (int error = pthread_mutex_destroy(&id->lock); error != 0)
        LogWarn(osSource, "pthread_mutex_destroy error %d\n", error);
    id->mark = 0;
    std::free(id);
    return 0;
}
