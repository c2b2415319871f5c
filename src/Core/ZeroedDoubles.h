// A large array that begins as zeros.
#pragma once

#include <cstddef>

/// Zeros of the system's own: pages that nothing is written to are never fetched, and large arrays come in
/// huge pages where the system has them, since fetching thousands of small ones takes longer than most
/// pictures.
class ZeroedDoubles {
  public:
    /// Throws std::bad_alloc.
    explicit ZeroedDoubles(std::size_t count);
    ~ZeroedDoubles();
    ZeroedDoubles(const ZeroedDoubles&) = delete;
    ZeroedDoubles& operator=(const ZeroedDoubles&) = delete;

    double* data() { return m_data; }
    const double* data() const { return m_data; }

  private:
    void* m_mapping = nullptr;
    std::size_t m_mappedBytes = 0; ///< 0: from the allocator
    double* m_data = nullptr;
};
