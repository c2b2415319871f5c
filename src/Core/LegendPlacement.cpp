#include "Core/LegendPlacement.h"

#include "Core/ClampToInt.h"

#include <algorithm>
#include <cmath>

namespace LegendPlacement {
namespace {

/// The two bits of one direction.
struct Bits {
    int before; ///< the distance to the view's start is flexible: the legend keeps to its end
    int after;
};
constexpr Bits horizontal{flexibleLeft, flexibleRight};
constexpr Bits vertical{flexibleBottom, flexibleTop};

double locatedAlong(const Bits& bits, int alignment, double margin, double view, double length,
                    double present) {
    const bool before = (alignment & bits.before) != 0;
    const bool after = (alignment & bits.after) != 0;
    if (before && after)
        return view * 0.5 - length * 0.5 - margin;
    if (before)
        return view - length - margin;
    return after ? margin : present;
}

double clampedAlong(double place, double length, double view) {
    place = std::max(0.0, place);
    return place + length > view ? view - length : place;
}

double keptAlong(double place, double length, double areaStart, double areaLength) {
    return length > areaLength ? place : std::clamp(place, areaStart, areaStart + areaLength - length);
}

struct AnchorAlong {
    int alignment;
    double margin;
};

AnchorAlong nearestAlong(const Bits& bits, double place, double length, double view) {
    const int toStart = clampToInt(place);
    const int toEnd = clampToInt(view - (place + length));
    const int toMiddle = clampToInt(view * 0.5 - (length * 0.5 + place));
    if (toStart < std::abs(toMiddle) && toStart < toEnd)
        return {bits.after, static_cast<double>(toStart)};
    if (toStart >= std::abs(toMiddle) && std::abs(toMiddle) < toEnd)
        return {bits.before | bits.after, static_cast<double>(toMiddle)};
    return {bits.before, static_cast<double>(toEnd)};
}

} // namespace

LegendFrame located(LegendFrame frame, const LegendAnchor& anchor, double viewWidth, double viewHeight) {
    frame.x = locatedAlong(horizontal, anchor.alignment, anchor.marginX, viewWidth, frame.width, frame.x);
    frame.y = locatedAlong(vertical, anchor.alignment, anchor.marginY, viewHeight, frame.height, frame.y);
    return frame;
}

LegendFrame clamped(LegendFrame frame, double viewWidth, double viewHeight) {
    frame.x = clampedAlong(frame.x, frame.width, viewWidth);
    frame.y = clampedAlong(frame.y, frame.height, viewHeight);
    return frame;
}

LegendFrame keptWithin(LegendFrame frame, const LegendFrame& area) {
    frame.x = keptAlong(frame.x, frame.width, area.x, area.width);
    frame.y = keptAlong(frame.y, frame.height, area.y, area.height);
    return frame;
}

LegendAnchor nearestAnchor(const LegendFrame& frame, double viewWidth, double viewHeight) {
    const AnchorAlong x = nearestAlong(horizontal, frame.x, frame.width, viewWidth);
    const AnchorAlong y = nearestAlong(vertical, frame.y, frame.height, viewHeight);
    return {x.alignment | y.alignment, x.margin, y.margin};
}

} // namespace LegendPlacement
