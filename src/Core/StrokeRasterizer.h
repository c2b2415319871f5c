// Strokes polylines into a picture of pixels: exact area coverage, each stroke one union.
#pragma once

#include "Core/CoverageSums.h"
#include "Core/FullPixels.h"
#include "Core/PremultipliedColor.h"
#include "Core/SegmentClip.h"

#include <array>
#include <cstdint>

/// Lines of one width with bevel joins and butt caps, antialiased. Coordinates are pixels, y upwards from the
/// lower edge of the picture, and finite; what lies outside costs nothing. Beyond 1e14 pixels, the ends of
/// what can be seen of a segment are rounded.
///
/// Each segment is a rectangle and each join a triangle, all of them turning counter-clockwise. Their
/// coverages are summed, and a sum above 1 is full: joints show no seam and overlaps of a translucent stroke
/// are not darker.
///
/// A long line in no order soon covers most of the picture. Now and then it is looked which pixels are full
/// already, and for a great rectangle of them. What a segment has within the rectangle is left out, and
/// a segment that lies in it is gone after four comparisons; of the rest, what would draw on full pixels
/// only.
class StrokeRasterizer {
  public:
    /// `width` and `height` in pixels, not negative; takes 12 bytes a pixel. `lineWidth` in pixels, positive.
    StrokeRasterizer(int width, int height, double lineWidth);

    /// Begins a new sub-path. Sub-paths are one union until they are painted.
    void moveTo(double x, double y);
    void lineTo(double x, double y);

    /// Paints the union of all since the last call over `image`, and forgets it. The next sub-path needs a
    /// moveTo.
    void paint(PixelGrid image, const CoverageRamp& colors);

  private:
    struct Segment;
    using Rectangle = std::array<StrokePoint, 4>; ///< corners counter-clockwise

    void addSegment(StrokePoint from, StrokePoint to, StrokePoint normal);
    void addRectangle(StrokePoint from, StrokePoint to, StrokePoint normal);
    void addOutline(const Rectangle& corners, PixelRange columns);
    void addLong(const Segment& segment, PixelRange all, PixelRange inner);
    int columnAt(double x) const; ///< m_width beyond the last one
    void addEnd(const Segment& segment, PixelRange columns);
    void addInnerWhereNotFull(const Segment& segment, PixelRange columns);
    void addInner(const Segment& segment, PixelRange columns);
    bool areFull(PixelRange columns, double low, double high) const;
    void addJoin(StrokePoint at, StrokePoint normalBefore, StrokePoint normalAfter);
    std::int64_t work() const;
    void searchLater();
    void findWhatIsFull();

    int m_width;
    int m_height;
    double m_halfWidth;
    CoverageSums m_sums;

    ClipBox m_near; ///< what lies outside cannot touch the picture
    ClipBox m_full; ///< a centre line in here draws where everything is full
    FullPixels m_fullPixels;
    std::int64_t m_otherWork = 0;    ///< besides adding, in what it takes to add a column
    std::int64_t m_workAtSearch = 0; ///< when it is looked again for what is full

    StrokePoint m_last{0, 0};
    bool m_lastIsInFull = false;
    StrokePoint m_lastNormal{
        0, 0}; ///< half a line width to the left of the direction; (0, 0) at a sub-path's start
};
