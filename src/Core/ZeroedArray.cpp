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
constexpr std::size_t leastInHugePages = 2 * hugePage;
constexpr std::size_t leastSparseMapped = std::size_t{256} << 10U;

/// Up to this size the allocator gives memory that is there already, and zeroes all of it.
std::size_t leastMapped(Filling filling) {
    return filling == Filling::Sparse ? leastSparseMapped : leastInHugePages;
}

} // namespace

ZeroedMemory::ZeroedMemory(std::size_t count, std::size_t size, Filling filling) {
    if (count > (std::numeric_limits<std::size_t>::max() - hugePage) / size)
        throw std::bad_alloc();
    const std::size_t bytes = count * size;
    if (bytes < leastMapped(filling)) {
        m_mapping = std::calloc(count + 1, size); // never of no bytes, for which null is an answer, too
        if (m_mapping == nullptr)
            throw std::bad_alloc();
        m_data = m_mapping;
        return;
    }
    const bool isHuge = bytes >= leastInHugePages;
    std::size_t room = isHuge ? bytes + hugePage : bytes;
    void* const mapping = mmap(nullptr, room, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED)
        throw std::bad_alloc();
    m_mapping = mapping;
    m_mappedBytes = room;
    m_data = mapping;
    if (!isHuge)
        return;
    std::align(hugePage, bytes, m_data, room);
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
