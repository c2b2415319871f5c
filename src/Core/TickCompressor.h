// Merges point shapes that fall on the same pixel with the same size, and counts them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

/// What two shapes share when only one of them is drawn.
struct TickKey {
    std::int32_t x;     ///< pixel column of the centre
    std::int32_t y;     ///< pixel row of the centre
    std::int32_t size4; ///< half-size in quarters of a pixel

    bool operator==(const TickKey&) const = default;

    std::uint32_t hash() const {
        return (static_cast<std::uint32_t>(y) << 2U) ^ (static_cast<std::uint32_t>(x) << 12U) ^
               static_cast<std::uint32_t>(size4);
    }
};

/// A hash map from TickKey to the number of hits, visited in the order of the first hits, so that pictures
/// repeat.
class TickCompressor {
  public:
    struct Entry {
        TickKey key;
        std::int32_t count; ///< at least 1
    };

    void add(TickKey key) {
        // Neighbouring rows often fall on one pixel.
        if (!m_entries.empty() && m_entries[m_last].key == key)
            count(m_last);
        else
            addElsewhere(key);
    }

    std::span<const Entry> entries() const { return m_entries; }
    std::size_t bucketCount() const { return m_buckets.size(); }

  private:
    void addElsewhere(TickKey key);
    void count(std::uint32_t entry);
    void rehash(std::size_t bucketCount);
    std::size_t bucketOf(TickKey key) const;

    std::vector<Entry> m_entries;
    std::vector<std::uint32_t> m_buckets; ///< entry + 1, 0 for none; open addressing, a power of two
    unsigned m_shift = 32;
    std::uint32_t m_last = 0;
};
