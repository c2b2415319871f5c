// Bisects the widest free gap of the colour circle.
#include "Core/NewCurveColor.h"

#include <algorithm>
#include <vector>

RgbaColor findBestColor(std::span<const RgbaColor> curveColors) {
    if (curveColors.empty())
        return {.red = 1, .green = 0.5, .blue = 0};

    std::vector<double> hues;
    for (const RgbaColor& color : curveColors)
        hues.push_back(color.hsb().hue);
    std::sort(hues.begin(), hues.end());
    hues.push_back(hues.front() + 1); // once around the circle

    double previous = hues.front();
    double gapStart = previous;
    double widestGap = 0;
    for (const double hue : hues) {
        if (hue - previous > widestGap) {
            gapStart = previous;
            widestGap = hue - previous;
        }
        previous = hue;
    }
    double hue = gapStart + widestGap * 0.5;
    while (hue > 1)
        hue -= 1;
    // Kept: the hue is the saturation, too, so colours of low hues are pale.
    return RgbaColor::fromHsb(hue, hue, 0.75);
}
