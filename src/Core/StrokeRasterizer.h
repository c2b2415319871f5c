// Strokes polylines into a picture of pixels: exact area coverage, each stroke one union.
#pragma once

#include "Core/FullBlocks.h"
#include "Core/PremultipliedColor.h"
#include "Core/SegmentClip.h"
#include "Core/ZeroedDoubles.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

/// Lines of one width with bevel joins and butt caps, antialiased. Coordinates are pixels, y upwards from the
/// lower edge of the picture, and may be any float: what lies outside costs nothing.
///
/// Each segment is a rectangle and each join a triangle, all of them turning counter-clockwise. Their
/// coverages are summed, and a sum above 1 is full: joints show no seam and overlaps of a translucent stroke
/// are not darker.
///
/// The sums are kept column by column as second differences. Above an edge that rises linearly within one
/// column from y0 to y1, the covered share of a pixel is the integral of two ramps, that begin at y0 and y1,
/// over the height of that pixel. The second difference of such an integral is the quadratic B-spline: three
/// numbers, whatever the height. So a segment costs a few additions for each column that it crosses, however
/// steep it is, and nothing is sorted. Doubles hold the sums without overflow: what is left of a ramp of
/// slope s after it ended is below 1e-15 s for each row above it.
///
/// A long line in no order soon covers most of the picture. Now and then it is looked which blocks are full
/// already, and for the greatest rectangle of them. What a segment has within the rectangle is left out, and
/// a segment that lies in it is gone after four comparisons; of the rest, the blocks that are full where it
/// crosses them.
class StrokeRasterizer {
  public:
    /// `width` and `height` in pixels, not negative; takes 8 bytes a pixel. `lineWidth` in pixels, positive.
    StrokeRasterizer(int width, int height, double lineWidth);

    /// Begins a new sub-path. Sub-paths are one union until they are painted.
    void moveTo(double x, double y);
    void lineTo(double x, double y);

    /// Paints the union of all since the last call over `image`, and forgets it. The next sub-path needs a
    /// moveTo.
    void paint(PixelGrid image, const CoverageRamp& colors);

  private:
    struct Point {
        double x;
        double y;
    };
    struct Rows {
        int first;
        int end;
    };
    struct Columns {
        int first;
        int end;
    };
    struct Ramp;
    struct RampsOfEdge;
    struct Segment;
    using Rectangle = std::array<Point, 4>; ///< corners counter-clockwise

    void addSegment(Point from, Point to, Point normal);
    void addRectangle(Point from, Point to, Point normal);
    void addOutline(const Rectangle& corners, Columns columns);
    void addLong(const Segment& segment, Columns all, Columns inner);
    int columnAt(double x) const; ///< m_width beyond the last one
    void addEnd(const Segment& segment, Columns columns);
    void addInnerWhereNotFull(const Segment& segment, Columns columns);
    void addInner(const Segment& segment, Columns columns);
    void addStrip(Columns columns, double lower, double upper, double slope);
    bool areFull(Columns columns, double low, double high) const;
    void addBevel(Point at, Point normalBefore, Point normalAfter);
    void addEdge(Point from, Point to, Columns columns);
    void addWithinPicture(Point left, Point right, double sign);
    void addWholeColumns(Columns columns, double y, double slope, double sign);
    double* rowsOf(int column); ///< the lowest of its second differences
    void touch(int column, int oneRow, int otherRow);
    void addToColumn(int column, const Ramp& begin, const Ramp& end, double signedWidth);
    void paintColumn(int column, PixelGrid image, const CoverageRamp& colors);
    std::int64_t workBetweenSearches() const;
    void findWhatIsFull();
    FullBlocks::Bands fullBands(int stack) const;

    int m_width;
    int m_height;
    double m_halfWidth;
    std::size_t
        m_columnStride;       ///< doubles of a column: its rows, and three for what begins at the upper edge
    ZeroedDoubles m_columns;  ///< second differences of the coverage, upwards; zero where nothing was added
    std::vector<Rows> m_rows; ///< of each column, the rows that were added to
    int m_firstColumn;        ///< the columns that were added to
    int m_endColumn = 0;

    ClipBox m_near; ///< what lies outside cannot touch the picture
    ClipBox m_full; ///< a centre line in here draws where everything is full
    FullBlocks m_blocks;
    /// Columns that edges may cross, and what takes as long, until it is looked again for what is full.
    std::int64_t m_workUntilSearch;

    Point m_last{0, 0};
    bool m_lastIsInFull = false;
    Point m_lastNormal{0,
                       0}; ///< half a line width to the left of the direction; (0, 0) at a sub-path's start
};
