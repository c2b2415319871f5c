// Where a legend lies in its plot: from the edges it keeps to a place, and from a place to the nearest edges.
#pragma once

#include <optional>

/// Points, y upwards, in the coordinates of the view that holds the legend.
struct LegendFrame {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    bool operator==(const LegendFrame&) const = default;
};

/// What a document stores: which of the distances to the view's edges may change, and the distances to the
/// others. Flexible on both sides means centred, with the margin as the offset from there.
struct LegendAnchor {
    int alignment = 0;
    double marginX = 0;
    double marginY = 0;

    bool operator==(const LegendAnchor&) const = default;
};

/// One of nine: columns from the left and rows from the top, 0 to 2.
struct LegendPlace {
    int column = 0;
    int row = 0;

    bool operator==(const LegendPlace&) const = default;
};

namespace LegendPlacement {

inline constexpr int flexibleLeft = 1; ///< so it keeps to the right
inline constexpr int flexibleRight = 4;
inline constexpr int flexibleBottom = 8; ///< so it keeps to the top
inline constexpr int flexibleTop = 32;

/// Where a legend is created that was never placed: top right, ten points in.
inline constexpr LegendAnchor created{flexibleLeft | flexibleBottom, 10, 10};

/// Ten points in from the edges of that place, or in the very middle.
LegendAnchor anchorAt(const LegendPlace& place);
/// The place whose edges the alignment keeps to; that of `created` for 0. Nothing while a direction is left
/// open.
std::optional<LegendPlace> placeOf(int alignment);

/// The frame moved to its anchor in a view of that size; a direction whose bits say nothing is left as it is.
LegendFrame located(LegendFrame frame, const LegendAnchor& anchor, double viewWidth, double viewHeight);

/// The frame moved into the view; one that is too large keeps to the right and to the top.
LegendFrame clamped(LegendFrame frame, double viewWidth, double viewHeight);

/// The frame moved into `area` as far as it fits there; where it does not, it stays.
LegendFrame keptWithin(LegendFrame frame, const LegendFrame& area);

/// The nearest edges or centre lines, with distances cut to whole points.
LegendAnchor nearestAnchor(const LegendFrame& frame, double viewWidth, double viewHeight);

} // namespace LegendPlacement
