// Conversion of fields: short decimals at once, other decimals by from_chars, the rest by strtod.
#include "Core/TextToDouble.h"

#include <array>
#include <charconv>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <locale.h> // NOLINT(modernize-deprecated-headers): strtod_l and newlocale are POSIX
#include <string>
#include <system_error>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// From the first digit, sign or point to the last digit.
std::string_view trimmed(std::string_view field) {
    const auto startsNumber = [](char c) { return isDigit(c) || c == '+' || c == '-' || c == '.'; };
    while (!field.empty() && !startsNumber(field.front()))
        field.remove_prefix(1);
    while (!field.empty() && !isDigit(field.back()))
        field.remove_suffix(1);
    return field;
}

/// Whole text as strtod reads it in the C locale. Slow, and the final word.
double strtodInFull(std::string_view number) {
    static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
    const std::string text(number);
    char* end = nullptr;
    const double value = strtod_l(text.c_str(), &end, cLocale);
    return end == text.c_str() + text.size() ? value : notANumber;
}

} // namespace

double textToDouble(std::string_view field) {
    const std::string_view number = trimmed(field.substr(0, field.find('\0')));
    if (number.empty())
        return notANumber;

    // from_chars takes no plus sign; a second sign after it must stay an error.
    const bool plus = number.front() == '+' && number.size() > 1 && (isDigit(number[1]) || number[1] == '.');
    const char* const begin = number.data() + (plus ? 1 : 0);
    const char* const end = number.data() + number.size();
    double value = 0;
    const auto [stop, error] = std::from_chars(begin, end, value);
    if (error == std::errc() && stop == end)
        return value;
    // strtod goes on where from_chars stops in two cases only: hexadecimal, and values beyond the range of
    // doubles.
    const bool hexadecimal = stop != end && (*stop == 'x' || *stop == 'X');
    return hexadecimal || error == std::errc::result_out_of_range ? strtodInFull(number) : notANumber;
}
