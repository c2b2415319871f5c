// From a double to an int without undefined behaviour.
#pragma once

#include <cmath>
#include <limits>

/// Truncated toward zero and clamped to the 32-bit range; NaN is 0.
inline int clampToInt(double value) {
    if (std::isnan(value))
        return 0;
    if (value <= std::numeric_limits<int>::min())
        return std::numeric_limits<int>::min();
    if (value >= std::numeric_limits<int>::max())
        return std::numeric_limits<int>::max();
    return static_cast<int>(value);
}
