// Coverage of long thin strips, added pixel by pixel.
#pragma once

#include "Core/FloatQuad.h"
#include "Core/PixelRange.h"
#include "Core/ZeroedArray.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// What lies between two parallel lines, in whole columns of pixels: most of a long segment. A column of it
/// has a few pixels only, so their coverages are added as they are, four columns at a time. Units are pixels,
/// y upwards from the lower edge of the picture. A strip may leave some 5e-7 in a pixel that it only touches:
/// ten thousand along the same border before that can be seen.
class StripSums {
  public:
    /// `width` and `height` in pixels, not negative; takes 4 bytes a pixel, those of a
    /// margin below and above the picture, too.
    StripSums(int width, int height);

    /// Adds the strip whose lines enter the first of the columns at the heights `low` < `high` and have the
    /// given slope. When it is too steep, too wide or too far outside, it adds nothing and returns false.
    bool add(PixelRange columns, double low, double high, double slope);

    /// The columns that were added to since they were cleared.
    PixelRange touchedColumns() const { return m_touchedColumns; }
    /// Of a column, its rows; a few may lie outside of the picture.
    PixelRange touchedRows(int column) const {
        const auto i = static_cast<std::size_t>(column);
        return {static_cast<int>(m_firstRows[i]), static_cast<int>(m_endRows[i])};
    }
    /// The sums of a column, from its lowest row.
    const float* column(int column) const {
        return m_sums.data() + static_cast<std::size_t>(column) * m_stride + margin;
    }
    void clear(int column);
    /// When all columns are cleared.
    void clearTouchedColumns() { m_touchedColumns = noPixels; }

    /// How many columns of strips were added, ever.
    std::int64_t additions() const { return m_additions; }

  private:
    void touchRows(int firstColumn, int count, FloatQuad firstRows, FloatQuad endRows);

    static constexpr int lanes = 4;
    static constexpr int mostQuads = 5; ///< of a column; with more, adding its edges is faster
    static constexpr int mostOutside = 32;
    /// Rows below and above the picture, for what of a strip lies outside.
    static constexpr int margin = mostOutside + 2 * lanes;
    int m_height;
    std::size_t m_stride;           ///< floats of a column
    ZeroedArray<float> m_sums;      ///< column by column, each from the lowest row of its margin
    std::vector<float> m_firstRows; ///< of each column that was added to; whole numbers, in floats, of which
                                    ///< four are compared at once
    std::vector<float> m_endRows;
    PixelRange m_touchedColumns = noPixels;
    std::int64_t m_additions = 0;
};
