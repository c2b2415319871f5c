// Sums of areas below edges, column by column, and the sweep that turns them into pixels.
#include "Core/StrokeRasterizer.h"

#include "Core/SegmentClip.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

namespace {

constexpr int noRow = std::numeric_limits<int>::max();
constexpr ClipBox nowhere{1, 1, 0, 0};
constexpr double fullCoverage = 0.999; ///< painted as 1, and it only grows
constexpr int workOfRectangle = 8;     ///< besides its columns, in those of an edge
constexpr int fewestInnerColumns = 4;  ///< of a rectangle whose long edges are worth a loop of their own
constexpr double flattestSlope = 1e-2; ///< of an edge whose ramps are told apart by more than rounding

/// Two columns at once.
using Pair = double __attribute__((vector_size(2 * sizeof(double))));

} // namespace

/// The second differences of a ramp of slope 1 that begins at `y`, which is not negative.
struct StrokeRasterizer::Ramp {
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

/// The ramps of one edge at the borders of some neighbouring columns. What is added to a column waits for
/// what was added there last, so all columns get the ramps that begin there before they get those that end.
struct StrokeRasterizer::RampsOfEdge {
    static constexpr int mostColumns = 16;

    /// Of an edge of slope `slope`, not 0, that enters the first column at `y`.
    RampsOfEdge(double y, double slope, double sign, int count) {
        const double steepness = sign / slope;
        for (int i = 0; i <= count; ++i) {
            const double height = y + slope * i;
            rows[i] = static_cast<int>(height);
            const double above = height - rows[i];
            const double below = 1 - above;
            first[i] = below * below * (steepness / 2);
            third[i] = above * above * (steepness / 2);
            second[i] = steepness - first[i] - third[i];
        }
    }

    /// Adds to `count` columns, that lie `stride` apart, the ramps that begin at their left borders.
    void addBegins(double* column, std::size_t stride, std::size_t count) const {
        for (std::size_t i = 0; i < count; ++i, column += stride) {
            double* const at = column + rows[i];
            at[0] += first[i];
            at[1] += second[i];
            at[2] += third[i];
        }
    }
    /// Takes away those that end at their right borders.
    void subtractEnds(double* column, std::size_t stride, std::size_t count) const {
        for (std::size_t i = 1; i <= count; ++i, column += stride) {
            double* const at = column + rows[i];
            at[0] -= first[i];
            at[1] -= second[i];
            at[2] -= third[i];
        }
    }

    int rows[mostColumns + 1];
    double first[mostColumns + 1], second[mostColumns + 1], third[mostColumns + 1];
};

/// A rectangle around a centre line that is not upright.
struct StrokeRasterizer::Segment {
    double centreAt(double x) const { return begin.y + slope * (x - begin.x); }

    Rectangle corners;
    Point reach; ///< of the corners from the ends of the centre line
    Point begin; ///< of the centre line
    double low;
    double high;
    double slope;
    double halfHeight; ///< of a column that has no corner in it
};

StrokeRasterizer::StrokeRasterizer(int width, int height, double lineWidth)
    : m_width(width), m_height(height), m_halfWidth(lineWidth / 2),
      // Odd, so that columns do not compete for cache lines.
      m_columnStride((static_cast<std::size_t>(height) + 3) | 1U),
      m_columns(static_cast<std::size_t>(width) * m_columnStride),
      m_rows(static_cast<std::size_t>(width), Rows{noRow, 0}), m_firstColumn(width),
      m_near(ClipBox::around(width, height, m_halfWidth + 1)), m_full(nowhere), m_blocks(width, height),
      m_workUntilSearch(workBetweenSearches()) {}

std::int64_t StrokeRasterizer::workBetweenSearches() const {
    return std::max<std::int64_t>(1, static_cast<std::int64_t>(m_width) * m_height / 2);
}

/// Adds a rectangle but for the blocks in which all that it draws on is full. `from` and `to` are the ends of
/// its centre line. Points that are handed to a function as they are wait for each other in memory: a fifth
/// of the time of short segments, hence the compiler is not asked whether to inline this one.
[[gnu::always_inline]] inline void StrokeRasterizer::addRectangle(Point from, Point to, Point normal) {
    const Rectangle corners{{{from.x - normal.x, from.y - normal.y},
                             {to.x - normal.x, to.y - normal.y},
                             {to.x + normal.x, to.y + normal.y},
                             {from.x + normal.x, from.y + normal.y}}};
    const auto [left, right] = std::minmax({from.x, to.x});
    const bool isShort = right - left < fewestInnerColumns;
    if (isShort && !m_blocks.isAnyFull()) {
        addOutline(corners, {0, m_width});
        return;
    }
    const Point reach{std::abs(normal.x), std::abs(normal.y)};
    const auto [low, high] = std::minmax({from.y, to.y});
    const Columns all{columnAt(left - reach.x), std::min(columnAt(right + reach.x) + 1, m_width)};
    const Columns inner{columnAt(left + reach.x) + 1, columnAt(right - reach.x)};
    if (!isShort && inner.end - inner.first >= fewestInnerColumns) {
        const double slope = (to.y - from.y) / (to.x - from.x);
        const double halfHeight = m_halfWidth * std::sqrt(1 + slope * slope);
        addLong({corners, reach, from, low, high, slope, halfHeight}, all, inner);
    } else if (!areFull(all, low - reach.y, high + reach.y)) {
        addOutline(corners, {0, m_width});
    }
}

inline int StrokeRasterizer::columnAt(double x) const {
    return static_cast<int>(std::clamp<double>(x, 0, m_width));
}

/// Adds a rectangle that has a part in the columns `all`, but no corner in the columns `inner`.
void StrokeRasterizer::addLong(const Segment& segment, Columns all, Columns inner) {
    m_workUntilSearch -= workOfRectangle;
    addEnd(segment, {all.first, inner.first});
    addInnerWhereNotFull(segment, inner);
    addEnd(segment, {inner.end, all.end});
}

/// Adds columns in which the rectangle has a corner, unless they are full there.
inline void StrokeRasterizer::addEnd(const Segment& segment, Columns columns) {
    const double y0 =
        std::clamp(segment.centreAt(columns.first - segment.reach.x), segment.low, segment.high);
    const double y1 = std::clamp(segment.centreAt(columns.end + segment.reach.x), segment.low, segment.high);
    if (!areFull(columns, std::min(y0, y1) - segment.reach.y, std::max(y0, y1) + segment.reach.y))
        addOutline(segment.corners, columns);
}

/// Adds those of the columns, in none of which the rectangle has a corner, where it is not full.
inline void StrokeRasterizer::addInnerWhereNotFull(const Segment& segment, Columns columns) {
    int pending = columns.first; // the first column that is not added yet
    if (m_blocks.isAnyFull()) {
        const int width = m_blocks.stackWidth();
        m_workUntilSearch -= (columns.end - columns.first) / width;
        int column = columns.first;
        double y0 = segment.centreAt(column);
        for (int stack = column / width; column < columns.end; ++stack) {
            const int end = std::min(columns.end, (stack + 1) * width);
            const double y1 = segment.centreAt(end);
            if (m_blocks.covers(stack, std::min(y0, y1) - segment.halfHeight,
                                std::max(y0, y1) + segment.halfHeight)) {
                addInner(segment, {pending, column});
                pending = end;
            }
            column = end;
            y0 = y1;
        }
    }
    addInner(segment, {pending, columns.end});
}

inline void StrokeRasterizer::addInner(const Segment& segment, Columns columns) {
    if (columns.first >= columns.end)
        return;
    const double y0 = segment.centreAt(columns.first);
    const double y1 = segment.centreAt(columns.end);
    const double half = segment.halfHeight;
    const bool isInPicture = std::min(y0, y1) >= half && std::max(y0, y1) <= m_height - half;
    if (isInPicture && std::abs(segment.slope) >= flattestSlope)
        addStrip(columns, y0 - half, y0 + half, segment.slope);
    else
        addOutline(segment.corners, columns);
}

/// Whether all rows from `low` to `high` are full in these columns.
bool StrokeRasterizer::areFull(Columns columns, double low, double high) const {
    if (!m_blocks.isAnyFull())
        return false;
    for (int stack = columns.first / m_blocks.stackWidth(); stack * m_blocks.stackWidth() < columns.end;
         ++stack) {
        if (!m_blocks.covers(stack, low, high))
            return false;
    }
    return true;
}

/// Adds what lies between two parallel edges, that enter the first column at the heights `lower` and `upper`
/// and stay within the picture.
void StrokeRasterizer::addStrip(Columns columns, double lower, double upper, double slope) {
    for (int first = columns.first; first < columns.end; first += RampsOfEdge::mostColumns) {
        const Columns some{first, std::min(columns.end, first + RampsOfEdge::mostColumns)};
        const auto count = static_cast<std::size_t>(some.end - some.first);
        const double rise = slope * (first - columns.first);
        const RampsOfEdge low(lower + rise, slope, 1, RampsOfEdge::mostColumns);
        const RampsOfEdge high(upper + rise, slope, -1, RampsOfEdge::mostColumns);
        double* const rows = rowsOf(first);
        low.addBegins(rows, m_columnStride, count);
        high.addBegins(rows, m_columnStride, count);
        low.subtractEnds(rows, m_columnStride, count);
        high.subtractEnds(rows, m_columnStride, count);
        const int lowest = std::min(low.rows[0], low.rows[count]);
        const int highest = std::max(high.rows[0], high.rows[count]);
        for (int column = some.first; column < some.end; ++column)
            touch(column, lowest, highest);
    }
    m_firstColumn = std::min(m_firstColumn, columns.first);
    m_endColumn = std::max(m_endColumn, columns.end);
    m_workUntilSearch -= std::int64_t{2} * (columns.end - columns.first);
}

/// Adds an edge that crosses these columns wholly, at most RampsOfEdge::mostColumns, and stays within the
/// picture.
inline void StrokeRasterizer::addWholeColumns(Columns columns, double y, double slope, double sign) {
    const auto count = static_cast<std::size_t>(columns.end - columns.first);
    const RampsOfEdge ramps(y, slope, sign, columns.end - columns.first);
    double* const rows = rowsOf(columns.first);
    ramps.addBegins(rows, m_columnStride, count);
    ramps.subtractEnds(rows, m_columnStride, count);
    for (int column = columns.first; column < columns.end; ++column)
        touch(column, ramps.rows[0], ramps.rows[count]);
}

/// Adds what of the rectangle lies in the given columns.
inline void StrokeRasterizer::addOutline(const Rectangle& corners, Columns columns) {
    for (std::size_t i = 0; i < corners.size(); ++i)
        addEdge(corners[i], corners[(i + 1) % corners.size()], columns);
}

/// The triangle that fills the outer side of a bend.
inline void StrokeRasterizer::addBevel(Point at, Point normalBefore, Point normalAfter) {
    const double twiceArea = normalBefore.x * normalAfter.y - normalBefore.y * normalAfter.x;
    if (std::abs(twiceArea) < 1e-4)
        return; // far below what one step of a colour shows
    const double side = twiceArea > 0 ? -1 : 1;
    Point first{at.x + side * normalBefore.x, at.y + side * normalBefore.y};
    Point second{at.x + side * normalAfter.x, at.y + side * normalAfter.y};
    if (side > 0)
        std::swap(first, second);
    const Columns all{0, m_width};
    addEdge(at, first, all);
    addEdge(first, second, all);
    addEdge(second, at, all);
}

/// Draws what of the segment can be seen. The ends that clipping makes lie outside the picture, like all that
/// they leave out, or deep in what is full.
void StrokeRasterizer::addSegment(Point from, Point to, Point normal) {
    const Point delta{to.x - from.x, to.y - from.y};
    const std::optional<SegmentPart> near = clippedSegment(from.x, from.y, delta.x, delta.y, m_near);
    if (!near)
        return;
    const auto at = [=](double share) {
        return share == 0   ? from
               : share == 1 ? to
                            : Point{from.x + share * delta.x, from.y + share * delta.y};
    };
    const std::optional<SegmentPart> full = clippedSegment(from.x, from.y, delta.x, delta.y, m_full);
    if (!full) {
        addRectangle(at(near->begin), at(near->end), normal);
        return;
    }
    if (near->begin < full->begin)
        addRectangle(at(near->begin), at(full->begin), normal);
    if (full->end < near->end)
        addRectangle(at(full->end), at(near->end), normal);
}

void StrokeRasterizer::moveTo(double x, double y) {
    m_last = {x, y};
    m_lastNormal = {0, 0};
    m_lastIsInFull = m_full.contains(x, y);
}

void StrokeRasterizer::lineTo(double x, double y) {
    const Point to{x, y};
    const bool isInFull = m_full.contains(x, y);
    if ((isInFull && m_lastIsInFull) || m_near.separates(m_last.x, m_last.y, x, y)) {
        m_last = to;
        m_lastNormal = {0, 0}; // nothing of the next join can be seen
        m_lastIsInFull = isInFull;
        return;
    }
    const double dx = x - m_last.x;
    const double dy = y - m_last.y;
    const double length = std::sqrt(dx * dx + dy * dy);
    if (!(length > 0))
        return;
    const double scale = m_halfWidth / length;
    const Point normal{-dy * scale, dx * scale};
    if (!m_lastIsInFull && m_near.contains(m_last.x, m_last.y))
        addBevel(m_last, m_lastNormal, normal);
    addSegment(m_last, to, normal);
    if (m_workUntilSearch <= 0)
        findWhatIsFull();
    m_last = to;
    m_lastNormal = normal;
    m_lastIsInFull = m_full.contains(x, y);
}

/// Adds, in each of the columns, the area above the edge when it runs to the right, and takes it away when it
/// runs to the left. Around a counter-clockwise outline that leaves its inside.
void StrokeRasterizer::addEdge(Point from, Point to, Columns columns) {
    if (from.x == to.x || columns.first >= columns.end)
        return;
    const double sign = from.x < to.x ? 1 : -1;
    Point left = from.x < to.x ? from : to;
    Point right = from.x < to.x ? to : from;
    if (right.x <= columns.first || left.x >= columns.end)
        return;
    const double slope = (right.y - left.y) / (right.x - left.x);
    const auto at = [origin = left, slope](double x) { return Point{x, origin.y + slope * (x - origin.x)}; };
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
    // The parts below and above the picture act like edges along its border.
    const auto clamped = [this](Point p) { return Point{p.x, std::clamp<double>(p.y, 0, m_height)}; };
    const auto crossing = [&](double y) {
        const double x = left.x + (y - left.y) / slope;
        return low < y && y < high ? std::clamp(x, left.x, right.x) : left.x;
    };
    const auto [first, second] = std::minmax({crossing(0), crossing(m_height)});
    const std::array<Point, 4> parts{{left, at(first), at(second), right}};
    for (std::size_t i = 0; i + 1 < parts.size(); ++i) {
        if (parts[i].x < parts[i + 1].x)
            addWithinPicture(clamped(parts[i]), clamped(parts[i + 1]), sign);
    }
}

void StrokeRasterizer::addWithinPicture(Point left, Point right, double sign) {
    const int first = static_cast<int>(left.x);
    const int last = std::min(static_cast<int>(right.x), m_width - 1);
    m_firstColumn = std::min(m_firstColumn, first);
    m_endColumn = std::max(m_endColumn, last + 1);
    m_workUntilSearch -= last + 1 - first;
    if (first == last) {
        addToColumn(first, Ramp(left.y), Ramp(right.y), sign * (right.x - left.x));
        return;
    }
    const double slope = (right.y - left.y) / (right.x - left.x);
    const auto [low, high] = std::minmax({left.y, right.y});
    const auto rampAt = [&, low = low, high = high](int column) {
        return Ramp(std::clamp(left.y + slope * (column - left.x), low, high));
    };
    const Ramp second = rampAt(first + 1);
    addToColumn(first, Ramp(left.y), second, sign * (first + 1 - left.x));
    if (last == first + 1) {
        addToColumn(last, second, Ramp(right.y), sign * (right.x - last));
        return;
    }
    if (std::abs(slope) < flattestSlope) {
        for (int column = first + 1; column < last; ++column)
            addToColumn(column, rampAt(column), rampAt(column + 1), sign);
    } else {
        for (int column = first + 1; column < last; column += RampsOfEdge::mostColumns)
            addWholeColumns({column, std::min(last, column + RampsOfEdge::mostColumns)}, rampAt(column).y,
                            slope, sign);
    }
    addToColumn(last, rampAt(last), Ramp(right.y), sign * (right.x - last));
}

double* StrokeRasterizer::rowsOf(int column) {
    return m_columns.data() + static_cast<std::size_t>(column) * m_columnStride;
}

/// Notes that ramps were added to a column whose first rows lie from the one to the other.
inline void StrokeRasterizer::touch(int column, int oneRow, int otherRow) {
    Rows& touched = m_rows[static_cast<std::size_t>(column)];
    touched.first = std::min(touched.first, std::min(oneRow, otherRow));
    touched.end = std::max(touched.end, std::max(oneRow, otherRow) + 3);
}

/// An edge across one column, or a part of its width, from one height to the other.
inline void StrokeRasterizer::addToColumn(int column, const Ramp& begin, const Ramp& end,
                                          double signedWidth) {
    double* const rows = rowsOf(column);
    touch(column, begin.row, end.row);
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

/// The bands of a stack in which every pixel is full.
FullBlocks::Bands StrokeRasterizer::fullBands(int stack) const {
    constexpr int pairs = 4; // a sum waits for the one before, but not for those of other columns
    const int firstColumn = stack * m_blocks.stackWidth();
    const int endColumn = std::min(m_width, firstColumn + m_blocks.stackWidth());
    FullBlocks::Bands full = m_blocks.allBands();
    for (int first = firstColumn; first < endColumn && full != 0; first += 2 * pairs) {
        const double* even[pairs];
        const double* odd[pairs];
        const auto column = [&](int i) {
            return m_columns.data() +
                   static_cast<std::size_t>(std::min(first + i, endColumn - 1)) * m_columnStride;
        };
        for (int i = 0; i < pairs; ++i) {
            even[i] = column(2 * i);
            odd[i] = column(2 * i + 1);
        }
        Pair slopes[pairs] = {};
        Pair coverages[pairs] = {};
        int row = 0;
        for (int band = 0; band < m_blocks.bands(); ++band) {
            Pair least{1, 1};
            for (const int end = std::min(m_height, row + m_blocks.bandHeight()); row < end; ++row) {
                for (int i = 0; i < pairs; ++i) {
                    slopes[i] += Pair{even[i][row], odd[i][row]};
                    coverages[i] += slopes[i];
                    least = coverages[i] < least ? coverages[i] : least;
                }
            }
            if (std::min(least[0], least[1]) < fullCoverage)
                full &= ~(FullBlocks::Bands{1} << static_cast<unsigned>(band));
        }
    }
    return full;
}

void StrokeRasterizer::findWhatIsFull() {
    for (int stack = 0; stack < m_blocks.stacks(); ++stack) {
        if (m_blocks.full(stack) != m_blocks.allBands())
            m_blocks.setFull(stack, fullBands(stack));
    }
    m_full = m_blocks.greatestBox(m_halfWidth + 1);
    m_workUntilSearch = workBetweenSearches();
}

void StrokeRasterizer::paint(PixelGrid image, const CoverageRamp& colors) {
    for (int column = m_firstColumn; column < m_endColumn; ++column) {
        if (m_rows[static_cast<std::size_t>(column)].end > 0)
            paintColumn(column, image, colors);
    }
    m_firstColumn = m_width;
    m_endColumn = 0;
    m_lastNormal = {0, 0};
    m_full = nowhere;
    m_blocks.clear();
    m_lastIsInFull = false;
    m_workUntilSearch = workBetweenSearches();
}

void StrokeRasterizer::paintColumn(int column, PixelGrid image, const CoverageRamp& colors) {
    Rows& touched = m_rows[static_cast<std::size_t>(column)];
    double* const rows = rowsOf(column);
    const int end = std::min(touched.end, m_height);
    double slope = 0;
    double coverage = 0;
    std::uint32_t* pixel = image.pixels + (m_height - 1 - touched.first) * image.stride + column;
    for (int row = touched.first; row < end; ++row, pixel -= image.stride) {
        slope += rows[row];
        coverage += slope;
        const auto level = static_cast<std::size_t>(std::clamp(coverage * 255 + 0.5, 0.0, 255.0));
        if (level == 0)
            continue;
        // Mostly nothing is below, which saves the arithmetic. Shapes cannot foretell it and are faster
        // without.
        *pixel = *pixel == 0 ? colors[level] : composed(colors[level], *pixel);
    }
    std::fill(rows + touched.first, rows + touched.end, 0.0);
    touched = {noRow, 0};
}
