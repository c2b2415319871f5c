// The part of a line segment that lies within a rectangle.
#pragma once

#include <algorithm>
#include <optional>

/// Upright, borders included; without any point when an upper bound is below its lower one.
struct ClipBox {
    double left;
    double low;
    double right;
    double high;

    bool contains(double x, double y) const { return x >= left && x <= right && y >= low && y <= high; }
    /// Whether two points lie beyond the same border, so that nothing between them lies within.
    bool separates(double x0, double y0, double x1, double y1) const {
        return std::max(x0, x1) < left || std::min(x0, x1) > right || std::max(y0, y1) < low ||
               std::min(y0, y1) > high;
    }
    /// The picture of this size, with `margin` around it.
    static ClipBox around(double width, double height, double margin) {
        return {-margin, -margin, width + margin, height + margin};
    }
};

/// A part of a segment, as fractions of its length: 0 <= begin < end <= 1.
struct SegmentPart {
    double begin;
    double end;
};

/// What of the segment from (x, y) to (x + dx, y + dy) lies within the box; none when at most a point does.
/// For finite coordinates whose differences are finite; the box may be without end at any side.
inline std::optional<SegmentPart> clippedSegment(double x, double y, double dx, double dy,
                                                 const ClipBox& box) {
    SegmentPart part{0, 1};
    const auto clip = [&part](double start, double delta, double least, double greatest) {
        if (delta == 0)
            return start >= least && start <= greatest;
        const auto [enter, leave] = std::minmax({(least - start) / delta, (greatest - start) / delta});
        part = {std::max(part.begin, enter), std::min(part.end, leave)};
        return part.begin < part.end;
    };
    if (box.left > box.right || box.low > box.high || !clip(x, dx, box.left, box.right) ||
        !clip(y, dy, box.low, box.high))
        return std::nullopt;
    return part;
}
