// An open-addressing table of indexes into a list of entries.
#include "Core/TickCompressor.h"

#include <bit>
#include <limits>

std::size_t TickCompressor::bucketOf(TickKey key) const {
    // The hash leaves its low bits to the sizes and its high bits to the columns; the product mixes all of
    // them into the bits that are kept.
    return (key.hash() * 2654435769U) >> m_shift;
}

void TickCompressor::addElsewhere(TickKey key) {
    // At most three buckets in four are taken, so a search is short and always ends.
    if (4 * (m_entries.size() + 1) > 3 * m_buckets.size())
        rehash(m_buckets.empty() ? 1024 : 4 * m_buckets.size());
    const std::size_t mask = m_buckets.size() - 1;
    std::size_t bucket = bucketOf(key);
    while (m_buckets[bucket] != 0) {
        const std::uint32_t entry = m_buckets[bucket] - 1;
        if (m_entries[entry].key == key) {
            count(entry);
            return;
        }
        bucket = (bucket + 1) & mask;
    }
    m_entries.push_back({key, 1});
    m_last = static_cast<std::uint32_t>(m_entries.size() - 1);
    m_buckets[bucket] = m_last + 1;
}

void TickCompressor::count(std::uint32_t entry) {
    m_last = entry;
    if (m_entries[entry].count < std::numeric_limits<std::int32_t>::max())
        ++m_entries[entry].count;
}

void TickCompressor::rehash(std::size_t bucketCount) {
    m_buckets.assign(bucketCount, 0);
    m_shift = 32 - static_cast<unsigned>(std::countr_zero(bucketCount));
    for (std::size_t entry = 0; entry < m_entries.size(); ++entry) {
        std::size_t bucket = bucketOf(m_entries[entry].key);
        while (m_buckets[bucket] != 0)
            bucket = (bucket + 1) & (bucketCount - 1);
        m_buckets[bucket] = static_cast<std::uint32_t>(entry + 1);
    }
}
