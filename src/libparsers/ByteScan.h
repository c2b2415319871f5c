// Sets of bytes, and the search for them in sixty-four bytes at a time.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

/// Bytes that are looked at together; bit i of a mask speaks of byte i.
inline constexpr std::size_t scanBlock = 64;

/// `scanBlock` readable bytes: those at `begin`, or a copy of the last ones before `end`, padded with NULs.
class ScannedBlock {
  public:
    ScannedBlock(const char* begin, const char* end)
        : m_size(std::min(static_cast<std::size_t>(end - begin), scanBlock)), m_bytes(begin) {
        if (m_size < scanBlock) {
            std::memset(m_padded, 0, scanBlock);
            std::memcpy(m_padded, begin, m_size);
            m_bytes = m_padded;
        }
    }
    ScannedBlock(const ScannedBlock&) = delete;
    ScannedBlock& operator=(const ScannedBlock&) = delete;

    std::size_t size() const { return m_size; }
    const char* bytes() const { return m_bytes; }
    /// Bits of the bytes that are not padding.
    std::uint64_t mask() const {
        return m_size < scanBlock ? (std::uint64_t{1} << m_size) - 1 : ~std::uint64_t{0};
    }

  private:
    std::size_t m_size;
    const char* m_bytes;
    char m_padded[scanBlock]; // only written, and read, for a short block
};

/// The mask of the bytes for which `matches(byte)` holds, byte by byte.
template <class Predicate>
std::uint64_t maskByByte(const char* bytes, Predicate matches) {
    std::uint64_t mask = 0;
    for (std::size_t i = 0; i < scanBlock; ++i)
        mask |= static_cast<std::uint64_t>(matches(bytes[i]) ? 1 : 0) << i;
    return mask;
}

#if defined(__SSE2__)
/// The mask of the bytes for which `match` sets all bits of a lane; sixteen bytes at a time.
template <class Match>
std::uint64_t maskByVector(const char* bytes, Match match) {
    std::uint64_t mask = 0;
    for (std::size_t i = 0; i < scanBlock; i += 16) {
        const __m128i lanes =
            _mm_loadu_si128(static_cast<const __m128i*>(static_cast<const void*>(bytes + i)));
        const auto bits = static_cast<unsigned>(_mm_movemask_epi8(match(lanes)));
        mask |= static_cast<std::uint64_t>(bits) << i;
    }
    return mask;
}
#endif

/// A set of bytes.
class ByteSet {
  public:
    explicit ByteSet(std::string_view members) {
        for (const char member : members) {
            bool& known = m_members[static_cast<unsigned char>(member)];
            if (!known && m_count < m_few.size())
                m_few[m_count] = member;
            m_count += known ? 0 : 1;
            known = true;
        }
        // Repeated members match nothing new and keep the vector loop free of a count.
        for (std::size_t i = m_count; i < m_few.size() && m_count > 0; ++i)
            m_few[i] = m_few[0];
    }

    bool contains(char byte) const { return m_members[static_cast<unsigned char>(byte)]; }

    /// The members among the bytes of a block.
    std::uint64_t membersIn(const ScannedBlock& block) const {
#if defined(__SSE2__)
        if (m_count - 1 < m_few.size()) {
            const auto is = [](__m128i lanes, char byte) {
                return _mm_cmpeq_epi8(lanes, _mm_set1_epi8(byte));
            };
            return block.mask() & maskByVector(block.bytes(), [&](__m128i lanes) {
                       const __m128i first = _mm_or_si128(is(lanes, m_few[0]), is(lanes, m_few[1]));
                       const __m128i second = _mm_or_si128(is(lanes, m_few[2]), is(lanes, m_few[3]));
                       return _mm_or_si128(_mm_or_si128(first, second), is(lanes, m_few[4]));
                   });
        }
#endif
        return block.mask() & maskByByte(block.bytes(), [this](char byte) { return contains(byte); });
    }

  private:
    std::array<bool, 256> m_members{};
    std::size_t m_count = 0;
    std::array<char, 5> m_few{}; ///< all members, when there are no more
};

/// What a search for numbers needs to know of a block.
struct NumberMasks {
    std::uint64_t run;   ///< bytes that go on with a number: digits, + - . e E
    std::uint64_t wake;  ///< bytes that mean something between numbers: digits, + - . tab comma and line ends
    std::uint64_t start; ///< bytes that start a number: digits, + - .
    std::uint64_t lines; ///< line feeds and carriage returns
};

inline bool startsNumber(char byte) {
    return (byte >= '0' && byte <= '9') || byte == '+' || byte == '-' || byte == '.';
}

inline NumberMasks numberMasksOf(const ScannedBlock& block) {
    NumberMasks masks{};
    const char* bytes = block.bytes();
    std::uint64_t separators = 0;
    std::uint64_t exponents = 0;
#if defined(__SSE2__)
    const auto is = [](__m128i lanes, char byte) { return _mm_cmpeq_epi8(lanes, _mm_set1_epi8(byte)); };
    masks.start = maskByVector(bytes, [&](__m128i lanes) {
        // '+' to '9' but for ',' and '/'
        const __m128i offset = _mm_sub_epi8(lanes, _mm_set1_epi8('+'));
        const __m128i inRange = _mm_cmpeq_epi8(_mm_min_epu8(offset, _mm_set1_epi8('9' - '+')), offset);
        return _mm_andnot_si128(_mm_or_si128(is(lanes, ','), is(lanes, '/')), inRange);
    });
    masks.lines =
        maskByVector(bytes, [&](__m128i lanes) { return _mm_or_si128(is(lanes, '\n'), is(lanes, '\r')); });
    separators =
        maskByVector(bytes, [&](__m128i lanes) { return _mm_or_si128(is(lanes, '\t'), is(lanes, ',')); });
    exponents =
        maskByVector(bytes, [&](__m128i lanes) { return is(_mm_or_si128(lanes, _mm_set1_epi8(0x20)), 'e'); });
#else
    masks.start = maskByByte(bytes, startsNumber);
    masks.lines = maskByByte(bytes, [](char byte) { return byte == '\n' || byte == '\r'; });
    separators = maskByByte(bytes, [](char byte) { return byte == '\t' || byte == ','; });
    exponents = maskByByte(bytes, [](char byte) { return byte == 'e' || byte == 'E'; });
#endif
    masks.run = masks.start | exponents;
    masks.wake = (masks.start | separators | masks.lines) & block.mask();
    return masks;
}
