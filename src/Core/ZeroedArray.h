// A large array that begins as zeros.
#pragma once

#include <cstddef>

/// Whether most of an array will be written to.
enum class Filling { Dense, Sparse };

/// Zeros of the system's own: pages that nothing is written to are never fetched, and large ones come in huge
/// pages where the system has them, since fetching thousands of small ones takes longer than most pictures.
class ZeroedMemory {
  public:
    /// Room for `count` objects of `size` bytes. Throws std::bad_alloc.
    ZeroedMemory(std::size_t count, std::size_t size, Filling filling);
    ~ZeroedMemory();
    ZeroedMemory(const ZeroedMemory&) = delete;
    ZeroedMemory& operator=(const ZeroedMemory&) = delete;

    void* data() const { return m_data; } ///< aligned for numbers of any type

  private:
    void* m_mapping = nullptr;
    std::size_t m_mappedBytes = 0; ///< 0: from the allocator
    void* m_data = nullptr;
};

template <typename Number>
class ZeroedArray {
  public:
    /// Throws std::bad_alloc.
    ZeroedArray(std::size_t count, Filling filling) : m_memory(count, sizeof(Number), filling) {}

    Number* data() { return static_cast<Number*>(m_memory.data()); }
    const Number* data() const { return static_cast<const Number*>(m_memory.data()); }

  private:
    ZeroedMemory m_memory;
};
