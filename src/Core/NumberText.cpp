// Formats in a fixed buffer and cuts the zeros off.
#include "Core/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

constexpr int maxLength = 49;

// Cut after the last digit 1 to 9 behind the point, or at the point.
void dropTrailingZeros(std::string& text) {
    const std::size_t point = text.find('.');
    if (point == std::string::npos)
        return;
    const std::size_t last = text.find_last_of("123456789");
    text.resize(last == std::string::npos || last < point ? point : last + 1);
}

} // namespace

std::string stringFromDoubleWithPrecision(double value, int precision) {
    if (std::isnan(value))
        return "nan"; // whatever its sign
    const int decimals = precision < 0 ? -std::max(precision, -maxLength) : 0;
    char digits[400]; // 309 before the point of the greatest double, a sign, a point and 49 decimals
    const auto end = std::to_chars(digits, digits + sizeof digits, value, std::chars_format::fixed, decimals);
    std::string text(digits, std::min<std::size_t>(static_cast<std::size_t>(end.ptr - digits), maxLength));
    dropTrailingZeros(text);
    return text == "-0" ? "0" : text;
}
