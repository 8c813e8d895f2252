// The OS layer's heap: task records, semaphores and tree leaves, the only
// allocations of the layer. Tests put their own allocator in place to drive
// the out-of-memory paths.
#ifndef COMMON_OS_OSALLOC_H
#define COMMON_OS_OSALLOC_H

#include <cstddef>

// Allocates `size` bytes with the allocator in place; null when it gives
// nothing. The memory goes back with std::free.
void *osAlloc(std::size_t size);

// Puts `allocator` in place (null: std::malloc) and returns the previous one
// (null when std::malloc was in place).
using OsAllocator = void *(*)(std::size_t size);
OsAllocator OsAllocatorSet(OsAllocator allocator);

#endif
