// The OS layer's heap, with the seam that lets tests refuse allocations.
#include "Common/OS/osAlloc.h"

#include <atomic>
#include <cstdlib>

namespace {

std::atomic<OsAllocator> osAllocator{nullptr};

} // namespace

void *osAlloc(std::size_t size) {
    OsAllocator allocator = osAllocator.load(std::memory_order_acquire);
    return allocator != nullptr ? allocator(size) : std::malloc(size);
}

OsAllocator OsAllocatorSet(OsAllocator allocator) {
    return osAllocator.exchange(allocator, std::memory_order_acq_rel);
}
