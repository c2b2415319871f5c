// The quick reader of short decimals: sixteen bytes at once, without a branch for each digit.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace shortDecimal {

/// The longest text without its sign, and the bytes before the end of a text that are loaded.
inline constexpr std::size_t window = 16;

/// Powers of ten up to the longest fraction; doubles hold each exactly.
inline constexpr std::array<double, window + 1> powersOfTen{1e0, 1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7, 1e8,
                                                            1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15, 1e16};

struct Digits {
    std::uint64_t mantissa; ///< all digits as one integer
    unsigned decimals;      ///< how many of them stand after the point
    bool valid;             ///< the text was digits with at most one point among them, at least one digit
};

#if defined(__SSE2__)

/// A window with 0xFF in its last `count` bytes, or in its first when taken from the other end of the table.
alignas(16) inline constexpr std::array<unsigned char, 3 * window> maskTable = [] {
    std::array<unsigned char, 3 * window> table{};
    for (std::size_t i = window; i < 2 * window; ++i)
        table[i] = 0xFF;
    return table;
}();

inline __m128i load(const void* bytes) {
    return _mm_loadu_si128(static_cast<const __m128i*>(bytes));
}

/// The value of sixteen digits 0 to 9, the first byte the highest.
inline std::uint64_t valueOfDigits(__m128i digits) {
    // 10 * even byte + odd byte, in eight lanes of 16 bits; then the same with 100 and with 10,000.
    const __m128i high = _mm_mullo_epi16(_mm_and_si128(digits, _mm_set1_epi16(0x00FF)), _mm_set1_epi16(10));
    const __m128i pairs = _mm_add_epi16(high, _mm_srli_epi16(digits, 8));
    const __m128i fours = _mm_madd_epi16(pairs, _mm_set1_epi32(100 | (1 << 16)));
    const __m128i packed = _mm_packs_epi32(fours, fours);
    const __m128i eights = _mm_madd_epi16(packed, _mm_set1_epi32(10'000 | (1 << 16)));
    const auto both = static_cast<std::uint64_t>(_mm_cvtsi128_si64(eights));
    return (both & 0xFFFFFFFFU) * 100'000'000U + (both >> 32);
}

/// `size` is 1 to `window`; the window before `end` is readable.
inline Digits readDigits(const char* end, std::size_t size) {
    // Digits as 0 to 9 at the end of the window, zeros before the text; the point becomes 0xFE.
    const __m128i inText = load(maskTable.data() + size);
    const __m128i bytes = _mm_and_si128(_mm_sub_epi8(load(end - window), _mm_set1_epi8('0')), inText);
    const auto points =
        static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8('.' - '0'))));
    const __m128i beyondNine = _mm_subs_epu8(bytes, _mm_set1_epi8(9));
    const auto digits =
        static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(beyondNine, _mm_setzero_si128())));
    const bool onlyDigitsAndPoints = (digits | points) == 0xFFFFU;
    if (points == 0)
        return {valueOfDigits(bytes), 0, onlyDigitsAndPoints};

    // Close the gap: what stands before the point moves one byte towards the end.
    const auto point = static_cast<unsigned>(std::countr_zero(points));
    const __m128i upToPoint = load(maskTable.data() + (2 * window - 1 - point));
    const __m128i closed =
        _mm_or_si128(_mm_and_si128(upToPoint, _mm_slli_si128(bytes, 1)), _mm_andnot_si128(upToPoint, bytes));
    return {valueOfDigits(closed), static_cast<unsigned>(window) - 1 - point,
            onlyDigitsAndPoints && (points & (points - 1)) == 0 && size > 1};
}

#else

inline Digits readDigits(const char* end, std::size_t size) {
    Digits read{0, 0, true};
    bool point = false;
    std::size_t digits = 0;
    for (const char* p = end - size; p != end; ++p) {
        const auto digit = static_cast<unsigned>(static_cast<unsigned char>(*p)) - '0';
        if (digit <= 9) {
            read.mantissa = read.mantissa * 10 + digit;
            read.decimals += point ? 1 : 0;
            ++digits;
        } else if (*p == '.' && !point) {
            point = true;
        } else {
            read.valid = false;
        }
    }
    read.valid = read.valid && digits > 0;
    return read;
}

#endif

/// Reads `[-]digits[.digits]`, at most 16 bytes after the sign, and stores its value; false, with `value`
/// unspecified, for any other text. `window` bytes before the end of `text` must be readable, whatever they
/// hold.
///
/// Exact: with a point there are at most 15 digits, so the mantissa and the power of ten are integers that a
/// double holds, and their quotient is rounded once, to strtod's double (Clinger, "How to read floating point
/// numbers accurately", 1990). Without a point the conversion of the integer is the one rounding.
inline bool read(std::string_view text, double& value) {
    const bool negative = !text.empty() && text.front() == '-';
    const std::size_t size = text.size() - (negative ? 1 : 0);
    if (size - 1 >= window) // none, or too many
        return false;
    const Digits digits = readDigits(text.data() + text.size(), size);
    const double magnitude =
        static_cast<double>(static_cast<std::int64_t>(digits.mantissa)) / powersOfTen[digits.decimals];
    // The sign as a bit: signs come in no order, and a branch would be foretold wrong half the time.
    value = std::bit_cast<double>(std::bit_cast<std::uint64_t>(magnitude) | (std::uint64_t{negative} << 63U));
    return digits.valid;
}

} // namespace shortDecimal
