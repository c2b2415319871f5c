// One direction at a time: margins to places, places to the nearest margins.
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

constexpr double marginOfPlaces = 10;

/// `step` 0 keeps to the start, 1 to the middle and 2 to the end.
AnchorAlong anchorAlong(const Bits& bits, int step) {
    if (step == 1)
        return {bits.before | bits.after, 0};
    return {step == 0 ? bits.after : bits.before, marginOfPlaces};
}

std::optional<int> stepAlong(const Bits& bits, int alignment) {
    for (const int step : {0, 1, 2}) {
        if ((alignment & (bits.before | bits.after)) == anchorAlong(bits, step).alignment)
            return step;
    }
    return {};
}

} // namespace

LegendAnchor anchorAt(const LegendPlace& place) {
    const AnchorAlong x = anchorAlong(horizontal, place.column);
    const AnchorAlong y = anchorAlong(vertical, 2 - place.row);
    return {x.alignment | y.alignment, x.margin, y.margin};
}

std::optional<LegendPlace> placeOf(int alignment) {
    if (alignment == 0)
        alignment = created.alignment;
    const std::optional<int> column = stepAlong(horizontal, alignment);
    const std::optional<int> fromFoot = stepAlong(vertical, alignment);
    if (!column || !fromFoot)
        return {};
    return LegendPlace{*column, 2 - *fromFoot};
}

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
