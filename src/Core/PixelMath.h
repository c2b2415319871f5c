// Conversions of pixel coordinates that hold for every float.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>

/// Neither NaN nor infinite.
inline bool isFinite(float value) {
    return std::abs(value) <= std::numeric_limits<float>::max();
}

/// The value without its fraction, cut off at +-2^30, which is far beyond any image. NaN gives a bound.
inline int truncatedPixel(float value) {
    constexpr float bound = 1 << 30;
    return static_cast<int>(std::min(std::max(value, -bound), bound));
}
