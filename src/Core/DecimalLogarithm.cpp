// A table of 256 logarithms and a short polynomial, as in P. T. P. Tang, "Table-driven implementation of the
// logarithm function in IEEE floating-point arithmetic", ACM Transactions on Mathematical Software 16 (1990).
//
// x = 2^e m with m in [1, 2) or right below 1, F the closest multiple of 1/256 to m, and m - F exact. Then
//
//     log10 x = e log10 2 + log10 F + log10(1 + r),   r = (m - F) / F,   |r| <= 1/512.
//
// Close to x = 1, e and log10 F are 0, so that small results are accurate, too.
#include "Core/DecimalLogarithm.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace {

constexpr int mantissaBits = 52;
constexpr int indexBits = 8;
constexpr std::size_t entries = 1 << indexBits;
constexpr std::uint64_t bitsOfOne = std::bit_cast<std::uint64_t>(1.0);
constexpr std::uint64_t exponentMask = std::bit_cast<std::uint64_t>(-std::numeric_limits<double>::infinity());
constexpr std::uint64_t bitsOfLeast = std::bit_cast<std::uint64_t>(std::numeric_limits<double>::min());
constexpr std::uint64_t bitsOfGreatest = std::bit_cast<std::uint64_t>(std::numeric_limits<double>::max());

// Compile-time arithmetic is in long double, whose 64 bits and more leave both halves of a constant exact
// enough.
constexpr long double ln10 = 2.302585092994045684017991454684364208L;

/// log10 x for x from 1 to 2; the series is that of ln x = 2 atanh((x - 1) / (x + 1)).
constexpr long double decimalLogarithmBySeries(long double x) {
    const long double s = (x - 1) / (x + 1);
    long double sum = 0;
    long double power = s;
    for (int n = 1; n < 45; n += 2) {
        sum += power / n;
        power *= s * s;
    }
    return 2 * sum / ln10;
}

/// A number below 1 as the sum of a multiple of 2^-43 and a small rest: such multiples, times an exponent of
/// up to 11 bits, add up without rounding.
struct SplitNumber {
    double high;
    double low;
};

constexpr SplitNumber split(long double number) {
    const double high = static_cast<double>(static_cast<std::int64_t>(number * 0x1p43L + 0.5L)) * 0x1p-43;
    return {high, static_cast<double>(number - high)};
}

constexpr SplitNumber log10Of2 = split(decimalLogarithmBySeries(2));

/// Of F = 1 + i / 256.
struct Entry {
    double scale; ///< 1 / (F ln 10)
    SplitNumber log;
};

constexpr std::array<Entry, entries> table = [] {
    std::array<Entry, entries> made{};
    for (std::size_t i = 0; i < entries; ++i) {
        const long double f = 1 + static_cast<long double>(i) / entries;
        made[i] = {static_cast<double>(1 / (f * ln10)), split(decimalLogarithmBySeries(f))};
    }
    return made;
}();

/// Coefficients of log10(1 + r) as a series in u = r / ln 10; that of u is 1. After u^6 the rest is below
/// 2^-56 of the whole.
constexpr double c2 = static_cast<double>(-ln10 / 2);
constexpr double c3 = static_cast<double>(ln10 * ln10 / 3);
constexpr double c4 = static_cast<double>(-ln10 * ln10 * ln10 / 4);
constexpr double c5 = static_cast<double>(ln10 * ln10 * ln10 * ln10 / 5);
constexpr double c6 = static_cast<double>(-ln10 * ln10 * ln10 * ln10 * ln10 / 6);

/// The sign bit is set unless these are the bits of a normal number above 0.
inline std::uint64_t unusualSign(std::uint64_t bits) {
    return (bits - bitsOfLeast) | (bitsOfGreatest - bits);
}

bool isUnusual(std::uint64_t sign) {
    return (sign >> 63) != 0;
}

/// Of 2^(1023 - bias) x, x normal and above 0; any number for other x. Without a branch, so that loops are
/// vectorised.
inline double ofNormal(double x, int bias = 1023) {
    const auto bits = std::bit_cast<std::uint64_t>(x);
    // Half a step of F more: from here on exponent and index are those of the closest F.
    const std::uint64_t rounded = bits + (std::uint64_t{1} << (mantissaBits - indexBits - 1));
    const std::uint64_t toUnitScale = bitsOfOne - (rounded & exponentMask);
    constexpr std::uint64_t stepMask = ~std::uint64_t{0} << (mantissaBits - indexBits);
    const auto m = std::bit_cast<double>(bits + toUnitScale);
    const auto f = std::bit_cast<double>((rounded + toUnitScale) & stepMask);
    // The bits of 2^52 + n are those of 2^52 and n side by side; not every processor converts 64-bit
    // integers.
    constexpr auto twoTo52 = std::bit_cast<std::uint64_t>(0x1p52);
    const double exponent = std::bit_cast<double>((rounded >> mantissaBits) | twoTo52) - (0x1p52 + bias);
    const Entry& entry = table[(rounded >> (mantissaBits - indexBits)) % entries];

    const double u = (m - f) * entry.scale;
    const double u2 = u * u;
    const double beyondLinear = u2 * ((c2 + c3 * u) + u2 * ((c4 + c5 * u) + u2 * c6));
    const double high = exponent * log10Of2.high + entry.log.high;
    const double low = exponent * log10Of2.low + entry.log.low;
    return high + (u + (beyondLinear + low));
}

double ofUnusual(double x) {
    if (x > std::numeric_limits<double>::max())
        return x;
    if (x > 0) // denormal
        return ofNormal(x * 0x1p54, 1023 + 54);
    return x == 0 ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::quiet_NaN();
}

} // namespace

double decimalLogarithm(double value) {
    const bool unusual = isUnusual(unusualSign(std::bit_cast<std::uint64_t>(value)));
    return unusual ? ofUnusual(value) : ofNormal(value);
}

void decimalLogarithms(std::span<const double> values, std::span<double> logarithms) {
    std::uint64_t sign = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        logarithms[i] = ofNormal(values[i]);
        sign |= unusualSign(std::bit_cast<std::uint64_t>(values[i]));
    }
    if (!isUnusual(sign))
        return;
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (isUnusual(unusualSign(std::bit_cast<std::uint64_t>(values[i]))))
            logarithms[i] = ofUnusual(values[i]);
    }
}
