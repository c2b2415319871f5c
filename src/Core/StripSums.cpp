// The coverage of strips: four columns at a time, each from its lowest pixel on.
#include "Core/StripSums.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double leastRise = 1e-6; ///< of a line in a column; a flatter one is drawn as if it rose as much
constexpr float noFirstRow = 1 << 20;
constexpr float noEndRow = -noFirstRow;

/// What the integral of a ramp, that rises from 0 to 1 as its argument does and stays there, is less than its
/// argument: v - v * v / 2 between, and 1 / 2 above.
FloatQuad lagOfRamp(FloatQuad v) {
    const FloatQuad within = least(greatest(v, FloatQuad{}), quadOf(1));
    return within * (quadOf(1) - within * quadOf(0.5F));
}

/// The integral of a ramp, less that of one that begins at `later`. Exactly `later` where both have risen, so
/// that nothing is left above a strip, however often it is added.
FloatQuad areaBetweenRamps(FloatQuad v, FloatQuad later) {
    return least(greatest(v, FloatQuad{}), later) - (lagOfRamp(v) - lagOfRamp(v - later));
}

} // namespace

StripSums::StripSums(int width, int height)
    : m_height(height),
      // Odd, so that columns do not compete for cache lines.
      m_stride(static_cast<std::size_t>(height + 2 * margin) | 1U),
      m_sums(static_cast<std::size_t>(width) * m_stride, Filling::Sparse), // most lines have no strips
      m_firstRows(static_cast<std::size_t>(width), noFirstRow),
      m_endRows(static_cast<std::size_t>(width), noEndRow) {}

/// Notes that some columns were added to, whose rows are given as whole numbers.
inline void StripSums::touchRows(int firstColumn, int count, FloatQuad firstRows, FloatQuad endRows) {
    float* const first = m_firstRows.data() + firstColumn;
    float* const end = m_endRows.data() + firstColumn;
    if (count == lanes) {
        store(least(quadAt(first), firstRows), first);
        store(greatest(quadAt(end), endRows), end);
        return;
    }
    for (int i = 0; i < count; ++i) {
        first[i] = std::min(first[i], firstRows[i]);
        end[i] = std::max(end[i], endRows[i]);
    }
}

/// Across a column a line rises from a to a + r. The area above it and below the height t is the integral of
/// a ramp, r ramp((t - a) / r), and a line that falls as much from a + r has the same. Of the strip it is
/// what its lower line has more than its upper one, and of a pixel, what is below its upper border and not
/// below its lower one.
bool StripSums::add(PixelRange columns, double low, double high, double slope) {
    const double lastLow = low + slope * columns.count();
    const double extent = std::abs(slope) + high - low;
    const bool isNear = std::min(low, lastLow) >= -mostOutside &&
                        std::max(low, lastLow) + (high - low) <= m_height + mostOutside;
    if (!isNear || !(extent <= lanes * mostQuads - 1))
        return false;
    const int quads = static_cast<int>(std::ceil((extent + 1) / lanes));
    const double rise = std::max(std::abs(slope), leastRise);
    const FloatQuad rises = quadOf(static_cast<float>(rise));
    const FloatQuad perRow = quadOf(static_cast<float>(1 / rise));
    const FloatQuad thickness = quadOf(static_cast<float>((high - low) / rise));
    const FloatQuad wholeArea = thickness * rises;
    const FloatQuad offsets = FloatQuad{0, 1, 2, 3} * quadOf(static_cast<float>(slope));
    const FloatQuad rowsAtOnce = quadOf(static_cast<float>(quads * lanes));
    const double lowest = low + std::min(slope, 0.0) + margin; // in the first column, above its first sum
    const double leastOfFour = std::min(0.0, (lanes - 1) * slope);
    float* sums = m_sums.data() + static_cast<std::size_t>(columns.first) * m_stride;
    for (int column = columns.first; column < columns.end; column += lanes, sums += lanes * m_stride) {
        const double begin = lowest + slope * (column - columns.first);
        const int base = static_cast<int>(begin + leastOfFour);
        const FloatQuad begins = quadOf(static_cast<float>(begin - base)) + offsets;
        const IntQuad firsts = truncated(begins);
        const FloatQuad firstRows = asFloats(firsts) + quadOf(static_cast<float>(base - margin));
        const int count = std::min(lanes, columns.end - column);
        touchRows(column, count, firstRows, firstRows + rowsAtOnce);

        FloatQuad heights = (asFloats(firsts) - begins) * perRow; // of the lower borders of the first pixels
        FloatQuad areaBelow{};
        const auto next = [&] {
            heights += perRow;
            const FloatQuad area = areaBetweenRamps(heights, thickness) * rises;
            const FloatQuad ofPixels = area - areaBelow;
            areaBelow = area;
            return ofPixels;
        };
        const auto addTo = [&](int i, int row, FloatQuad pixels) {
            float* const rows = sums + base + firsts[i] + row + static_cast<std::size_t>(i) * m_stride;
            store(quadAt(rows) + pixels, rows);
        };
        const auto addRows = [&](int row, FloatQuad a, FloatQuad b, FloatQuad c, FloatQuad d) {
            transpose(a, b, c, d);
            addTo(0, row, a);
            if (count > 1)
                addTo(1, row, b);
            if (count > 2)
                addTo(2, row, c);
            if (count > 3)
                addTo(3, row, d);
        };
        int row = 0;
        for (; row < (quads - 1) * lanes; row += lanes) {
            const FloatQuad a = next();
            const FloatQuad b = next();
            const FloatQuad c = next();
            addRows(row, a, b, c, next());
        }
        const FloatQuad a = next();
        const FloatQuad b = next();
        const FloatQuad c = next();
        addRows(row, a, b, c, wholeArea - areaBelow); // the strip ends below the last border
    }
    m_touchedColumns = m_touchedColumns.unitedWith(columns);
    m_additions += columns.count();
    return true;
}

void StripSums::clear(int column) {
    const PixelRange touched = touchedRows(column);
    const auto i = static_cast<std::size_t>(column);
    if (!touched.isEmpty()) {
        float* const sums = m_sums.data() + i * m_stride + margin;
        std::fill(sums + touched.first, sums + touched.end, 0.0F);
    }
    m_firstRows[i] = noFirstRow;
    m_endRows[i] = noEndRow;
}
