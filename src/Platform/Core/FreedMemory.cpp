// Sets the limits of the C library's allocator, where it has such.
#include "Platform/Core/FreedMemory.h"

#include <malloc.h>

void FreedMemory::goesBackToTheSystem() {
#if defined(M_MMAP_THRESHOLD) && defined(M_TRIM_THRESHOLD)
    constexpr int mebibyte = 1 << 20;
    mallopt(M_MMAP_THRESHOLD,
            4 * mebibyte); // images of usual size stay in the heaps, which saves page faults
    mallopt(M_TRIM_THRESHOLD, 8 * mebibyte);
#endif
}
