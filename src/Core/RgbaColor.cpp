// Conversions between red, green, blue and hue, saturation, brightness.
#include "Core/RgbaColor.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

/// Into 0 to 1; NaN becomes 0.
double unit(double value) {
    return value > 0 ? std::min(value, 1.0) : 0.0;
}

} // namespace

// The hexcone model: each sixth of the colour circle has one component at the brightness, one at the floor,
// and one that moves between them.
RgbaColor RgbaColor::fromHsb(double hue, double saturation, double brightness, double alpha) {
    const double sixths = unit(hue) * 6;
    const int sector = static_cast<int>(sixths) % 6;
    const double high = unit(brightness);
    const double low = high * (1 - unit(saturation));
    const double inSector = sixths - std::floor(sixths);
    const double rising = low + (high - low) * inSector;
    const double falling = high - (high - low) * inSector;
    const std::array<RgbaColor, 6> bySector{{{high, rising, low, alpha},
                                             {falling, high, low, alpha},
                                             {low, high, rising, alpha},
                                             {low, falling, high, alpha},
                                             {rising, low, high, alpha},
                                             {high, low, falling, alpha}}};
    return bySector[static_cast<std::size_t>(sector)];
}

RgbaColor::Hsb RgbaColor::hsb() const {
    const double r = unit(red);
    const double g = unit(green);
    const double b = unit(blue);
    const auto [low, high] = std::minmax({r, g, b});
    const double spread = high - low;
    if (spread <= 0)
        return {.hue = 0, .saturation = 0, .brightness = high};
    double sixths = 0;
    if (high == r)
        sixths = (g - b) / spread + (g < b ? 6 : 0);
    else if (high == g)
        sixths = (b - r) / spread + 2;
    else
        sixths = (r - g) / spread + 4;
    return {.hue = sixths / 6, .saturation = spread / high, .brightness = high};
}
