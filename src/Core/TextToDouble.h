// The value of a text field: the number in it as strtod reads it in the C locale, or NaN.
#pragma once

#include <string_view>

/// The value of a data field. The text ends at its first NUL; bytes before the first digit, sign or point and
/// bytes after the last digit are dropped ("12.5 kg" is 12.5); what is left must be one number in full, bit
/// for bit as strtod converts it in the C locale, whatever the user's locale: decimal or hexadecimal, with
/// overflow to infinity. Anything else ("12 34", "1,5", "") is NaN. Any thread.
double textToDouble(std::string_view field);
