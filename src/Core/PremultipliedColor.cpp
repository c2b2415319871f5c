// Ramps from nothing to a full colour.
#include "Core/PremultipliedColor.h"

#include <algorithm>
#include <cmath>

namespace {

/// Within 0 to 1; NaN is 0.
double inUnit(double value) {
    return value > 0 ? std::min(value, 1.0) : 0.0;
}

} // namespace

CoverageRamp coverageRamp(double red, double green, double blue, double alpha) {
    CoverageRamp ramp{};
    const auto component = [](double value) { return static_cast<std::uint32_t>(std::lround(value * 255)); };
    for (std::size_t coverage = 0; coverage < ramp.size(); ++coverage) {
        const double covered = inUnit(alpha) * static_cast<double>(coverage) / 255;
        ramp[coverage] = component(covered) << 24U | component(inUnit(red) * covered) << 16U |
                         component(inUnit(green) * covered) << 8U | component(inUnit(blue) * covered);
    }
    return ramp;
}
