// The part of a line segment that lies within a rectangle around the picture.
#pragma once

#include <algorithm>
#include <optional>

/// A part of a segment, as fractions of its length: 0 <= begin < end <= 1.
struct SegmentPart {
    double begin;
    double end;
};

/// What of the segment from (x, y) to (x + dx, y + dy) lies within (-margin, -margin) to (width + margin,
/// height + margin); none when at most a point does. For any finite coordinates whose differences are finite.
inline std::optional<SegmentPart> clippedSegment(double x, double y, double dx, double dy, double width,
                                                 double height, double margin) {
    SegmentPart part{0, 1};
    const auto clip = [&part, margin](double start, double delta, double extent) {
        if (delta == 0)
            return start >= -margin && start <= extent + margin;
        const auto [enter, leave] =
            std::minmax({(-margin - start) / delta, (extent + margin - start) / delta});
        part = {std::max(part.begin, enter), std::min(part.end, leave)};
        return part.begin < part.end;
    };
    if (!clip(x, dx, width) || !clip(y, dy, height))
        return std::nullopt;
    return part;
}
