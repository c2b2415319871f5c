// The ramps of an edge in each column that it crosses.
#include "Core/EdgeSums.h"

#include <algorithm>
#include <array>
#include <cmath>

/// The second differences of a ramp of slope 1 that begins at `y`, which is not negative.
struct EdgeSums::Ramp {
    explicit Ramp(double height) : y(height), row(static_cast<int>(height)) {
        const double above = height - row;
        first = 0.5 * (1 - above) * (1 - above);
        second = 0.5 + above - above * above;
        third = 0.5 * above * above;
    }

    Ramp times(double slope) const {
        Ramp ramp = *this;
        ramp.first *= slope;
        ramp.second *= slope;
        ramp.third *= slope;
        return ramp;
    }
    /// `rows` of a column, from the lowest.
    void addTo(double* rows) const {
        rows[row] += first;
        rows[row + 1] += second;
        rows[row + 2] += third;
    }
    void subtractFrom(double* rows) const {
        rows[row] -= first;
        rows[row + 1] -= second;
        rows[row + 2] -= third;
    }

    double y;
    int row; ///< of the first of them
    double first, second, third;
};

EdgeSums::EdgeSums(int width, int height)
    : m_width(width), m_height(height),
      // Odd, so that columns do not compete for cache lines.
      m_stride((static_cast<std::size_t>(height) + 3) | 1U),
      m_sums(static_cast<std::size_t>(width) * m_stride, Filling::Dense),
      m_touchedRows(static_cast<std::size_t>(width), noPixels) {}

void EdgeSums::addEdge(StrokePoint from, StrokePoint to, PixelRange columns) {
    if (from.x == to.x || columns.isEmpty())
        return;
    const double sign = from.x < to.x ? 1 : -1;
    StrokePoint left = from.x < to.x ? from : to;
    StrokePoint right = from.x < to.x ? to : from;
    if (right.x <= columns.first || left.x >= columns.end)
        return;
    const double slope = (right.y - left.y) / (right.x - left.x);
    const auto at = [origin = left, slope](double x) {
        return StrokePoint{x, origin.y + slope * (x - origin.x)};
    };
    if (left.x < columns.first)
        left = at(columns.first);
    if (right.x > columns.end)
        right = at(columns.end);
    const double low = std::min(left.y, right.y);
    const double high = std::max(left.y, right.y);
    if (low >= 0 && high <= m_height) {
        addWithinPicture(left, right, sign);
        return;
    }
    const auto clamped = [this](StrokePoint p) {
        return StrokePoint{p.x, std::clamp<double>(p.y, 0, m_height)};
    };
    const auto crossing = [&](double y) {
        const double x = left.x + (y - left.y) / slope;
        return low < y && y < high ? std::clamp(x, left.x, right.x) : left.x;
    };
    const auto [first, second] = std::minmax({crossing(0), crossing(m_height)});
    const std::array<StrokePoint, 4> parts{{left, at(first), at(second), right}};
    for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
        if (parts[i].x < parts[i + 1].x)
            addWithinPicture(clamped(parts[i]), clamped(parts[i + 1]), sign);
    }
}

inline void EdgeSums::addWithinPicture(StrokePoint left, StrokePoint right, double sign) {
    const int first = static_cast<int>(left.x);
    const int last = std::min(static_cast<int>(right.x), m_width - 1);
    m_touchedColumns.first = std::min(m_touchedColumns.first, first);
    m_touchedColumns.end = std::max(m_touchedColumns.end, last + 1);
    m_additions += last + 1 - first;
    if (first == last) {
        addToColumn(first, Ramp(left.y), Ramp(right.y), sign * (right.x - left.x));
        return;
    }
    const double slope = (right.y - left.y) / (right.x - left.x);
    const auto [low, high] = std::minmax({left.y, right.y});
    const auto rampAt = [&, low = low, high = high](int column) {
        return Ramp(std::clamp(left.y + slope * (column - left.x), low, high));
    };
    Ramp begin = rampAt(first + 1);
    addToColumn(first, Ramp(left.y), begin, sign * (first + 1 - left.x));
    for (int column = first + 1; column < last; ++column) {
        const Ramp end = rampAt(column + 1);
        addToColumn(column, begin, end, sign);
        begin = end;
    }
    addToColumn(last, begin, Ramp(right.y), sign * (right.x - last));
}

/// An edge across one column, or a part of its width, from one height to the other.
inline void EdgeSums::addToColumn(int column, const Ramp& begin, const Ramp& end, double signedWidth) {
    double* const rows = sumsOf(column);
    PixelRange& touched = m_touchedRows[static_cast<std::size_t>(column)];
    touched.first = std::min(touched.first, std::min(begin.row, end.row));
    touched.end = std::max(touched.end, std::max(begin.row, end.row) + 3);
    const double rise = end.y - begin.y;
    if (std::abs(rise) < 1e-4) {
        // So flat, its place counts and not its shape.
        const double middle = (begin.y + end.y) / 2;
        const int row = static_cast<int>(middle);
        const double above = middle - row;
        rows[row] += signedWidth * (1 - above);
        rows[row + 1] += signedWidth * (2 * above - 1);
        rows[row + 2] -= signedWidth * above;
        return;
    }
    const double slope = signedWidth / rise;
    begin.times(slope).addTo(rows);
    end.times(slope).subtractFrom(rows);
}

void EdgeSums::clear(int column) {
    PixelRange& touched = m_touchedRows[static_cast<std::size_t>(column)];
    if (!touched.isEmpty())
        std::fill(sumsOf(column) + touched.first, sumsOf(column) + touched.end, 0.0);
    touched = noPixels;
}
