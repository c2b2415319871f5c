// The range that an axis gets when it is fitted to the data.
#pragma once

#include "EmbeddedPlugins/Common/XValueRange.h"

#include <span>

/// No end of a fitted range lies further from zero.
inline constexpr double farthestFitted = 1e26;

struct FittedRange {
    XValueRange range;
    bool marginAtMin = true; ///< whether that end gets a visible margin: it followed the data
    bool marginAtMax = true;
};

/// The range around all of `ofCurves`, those with a bound that is not finite left out; [-10, 10] without any.
/// A finite `fixedMin` or `fixedMax` replaces that end and takes no margin. Ends are kept within 1e26 of
/// zero. Kept: a single negative value gives a reversed range, on which an axis has no marks.
FittedRange fitRange(std::span<const XValueRange> ofCurves, double fixedMin, double fixedMax);
