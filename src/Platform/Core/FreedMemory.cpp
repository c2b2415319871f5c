// Sets the limits of the C library's allocator, where it has such.
#include "Platform/Core/FreedMemory.h"

#include <malloc.h>

void FreedMemory::goesBackToTheSystem() {
#if defined(M_MMAP_THRESHOLD) && defined(M_TRIM_THRESHOLD)
    constexpr int largeBlock = 4 << 20; // images of usual size stay in the heaps, which saves page faults
    constexpr int keptFree = 8 << 20;
    mallopt(M_MMAP_THRESHOLD, largeBlock); // NOLINT(concurrency-mt-unsafe): there are no threads yet
    mallopt(M_TRIM_THRESHOLD, keptFree);   // NOLINT(concurrency-mt-unsafe)
#endif
}
