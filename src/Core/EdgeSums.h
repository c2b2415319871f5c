// Sums of the areas above edges, column by column of pixels.
#pragma once

#include "Core/PixelRange.h"
#include "Core/ZeroedArray.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// In pixels, y upwards from the lower edge of the picture.
struct StrokePoint {
    double x;
    double y;
};

/// Around a counter-clockwise outline the areas above its edges, less those above the edges that run to the
/// left, leave its inside. The sums are kept as second differences. Above an edge that rises linearly within
/// one column from y0 to y1, the covered share of a pixel is the integral of two ramps, that begin at y0 and
/// y1, over the height of that pixel. The second difference of such an integral is the quadratic B-spline:
/// three numbers, whatever the height. So an edge costs a few additions for each column that it crosses,
/// however steep it is, and nothing is sorted. Doubles hold the sums without overflow: what is left of a ramp
/// of slope s after it ended is below 1e-15 s for each row above it.
class EdgeSums {
  public:
    /// `width` and `height` in pixels, not negative; takes 8 bytes a pixel.
    EdgeSums(int width, int height);

    /// Adds, in each of the columns, the area above the edge when it runs to the right, and takes it away
    /// when it runs to the left. What lies below or above the picture acts like an edge along its border.
    void addEdge(StrokePoint from, StrokePoint to, PixelRange columns);

    /// The columns that were added to since they were cleared.
    PixelRange touchedColumns() const { return m_touchedColumns; }
    /// Of a column, its rows; above them, the sums no longer change.
    PixelRange touchedRows(int column) const { return m_touchedRows[static_cast<std::size_t>(column)]; }
    /// The second differences of a column: those of its rows, upwards, and a few more.
    const double* column(int column) const {
        return m_sums.data() + static_cast<std::size_t>(column) * m_stride;
    }
    void clear(int column);
    /// When all columns are cleared.
    void clearTouchedColumns() { m_touchedColumns = noPixels; }

    /// How many times an edge was added to a column, ever.
    std::int64_t additions() const { return m_additions; }

  private:
    struct Ramp;

    void addWithinPicture(StrokePoint left, StrokePoint right, double sign);
    void addToColumn(int column, const Ramp& begin, const Ramp& end, double signedWidth);
    double* sumsOf(int column) { return m_sums.data() + static_cast<std::size_t>(column) * m_stride; }

    int m_width;
    int m_height;
    std::size_t m_stride; ///< doubles of a column: its rows, and three for what begins at the upper edge
    ZeroedArray<double> m_sums;
    std::vector<PixelRange> m_touchedRows; ///< of each column
    PixelRange m_touchedColumns = noPixels;
    std::int64_t m_additions = 0;
};
