// Numbers as people read them on an axis: a fixed count of decimals, without trailing zeros.
#pragma once

#include <string>

/// `precision` is the power of ten of the last digit shown: -3 shows three decimals, 0 and above show none.
/// Zeros at the end of the decimals go, and the point with them; "-0" never appears. At most 49 characters:
/// what is longer is cut. Follows no locale.
std::string stringFromDoubleWithPrecision(double value, int precision);
