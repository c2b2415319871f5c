// Unites the ranges of the curves and puts limits that are fixed over them.
#include "Classes/PlotView/FitToData.h"

#include <algorithm>
#include <cmath>

namespace {

XValueRange unionOf(std::span<const XValueRange> ranges) {
    XValueRange all{-10, 10};
    bool any = false;
    for (const XValueRange& range : ranges) {
        if (!std::isfinite(range.minimum) || !std::isfinite(range.maximum))
            continue;
        all = any ? XValueRange{std::min(all.minimum, range.minimum), std::max(all.maximum, range.maximum)}
                  : range;
        any = true;
    }
    return all;
}

} // namespace

FittedRange fitRange(std::span<const XValueRange> ofCurves, double fixedMin, double fixedMax) {
    FittedRange fitted{unionOf(ofCurves), !std::isfinite(fixedMin), !std::isfinite(fixedMax)};
    double& min = fitted.range.minimum;
    double& max = fitted.range.maximum;
    if (!fitted.marginAtMin)
        min = fixedMin;
    if (!fitted.marginAtMax)
        max = fixedMax;
    max = std::min(max, farthestFitted);
    min = std::max(min, -farthestFitted);
    if (min == max) {
        if (min == 0) {
            max = 10;
        } else {
            min -= 0.2 * min;
            max += 0.2 * max;
        }
    }
    return fitted;
}
