// What is not finite, by short names for tables of test rows.
#pragma once

#include <limits>

namespace support {

inline constexpr double nan = std::numeric_limits<double>::quiet_NaN();
inline constexpr double inf = std::numeric_limits<double>::infinity();

} // namespace support
