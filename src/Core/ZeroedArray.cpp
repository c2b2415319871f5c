// Small arrays from the allocator, large ones mapped.
#include "Core/ZeroedArray.h"

#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <new>

namespace {

constexpr std::size_t hugePage = std::size_t{2} << 20U;
constexpr std::size_t leastMapped = 2 * hugePage;

} // namespace

ZeroedMemory::ZeroedMemory(std::size_t count, std::size_t size) {
    if (count > (std::numeric_limits<std::size_t>::max() - hugePage) / size)
        throw std::bad_alloc();
    const std::size_t bytes = count * size;
    if (bytes < leastMapped) {
        m_mapping = std::calloc(count + 1, size); // never of no bytes, for which null is an answer, too
        if (m_mapping == nullptr)
            throw std::bad_alloc();
        m_data = m_mapping;
        return;
    }
    std::size_t room = bytes + hugePage;
    void* const mapping = mmap(nullptr, room, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED)
        throw std::bad_alloc();
    m_mapping = mapping;
    m_mappedBytes = room;
    void* aligned = mapping;
    std::align(hugePage, bytes, aligned, room);
    m_data = aligned;
#ifdef MADV_HUGEPAGE
    madvise(m_data, bytes, MADV_HUGEPAGE); // a wish only
#endif
}

ZeroedMemory::~ZeroedMemory() {
    if (m_mappedBytes != 0)
        munmap(m_mapping, m_mappedBytes);
    else
        std::free(m_mapping);
}
