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
constexpr int leastBlockWidth = 8;
constexpr int mostBlocks = 256; ///< the search for the full rectangle takes time by their square

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

StrokeRasterizer::StrokeRasterizer(int width, int height, double lineWidth)
    : m_width(width), m_height(height), m_halfWidth(lineWidth / 2),
      // Odd, so that columns do not compete for cache lines.
      m_columnStride((static_cast<std::size_t>(height) + 3) | 1U),
      m_columns(static_cast<std::size_t>(width) * m_columnStride),
      m_rows(static_cast<std::size_t>(width), Rows{noRow, 0}), m_firstColumn(width),
      m_near(ClipBox::around(width, height, m_halfWidth + 1)), m_full(nowhere),
      m_blockWidth(std::max(leastBlockWidth, (width + mostBlocks - 1) / mostBlocks)),
      m_cellsUntilSearch(cellsBetweenSearches()) {}

std::int64_t StrokeRasterizer::cellsBetweenSearches() const {
    return static_cast<std::int64_t>(m_width) * m_height;
}

inline void StrokeRasterizer::addRectangle(Point from, Point to, Point normal) {
    const Rectangle corners{{{from.x - normal.x, from.y - normal.y},
                             {to.x - normal.x, to.y - normal.y},
                             {to.x + normal.x, to.y + normal.y},
                             {from.x + normal.x, from.y + normal.y}}};
    const bool isLong = std::abs(to.x - from.x) > 2.0 * m_blockWidth;
    if (isLong && !m_fullRuns.empty())
        addWhereNotFull(corners, from, to, normal);
    else
        addOutline(corners, {0, m_width});
}

/// Adds a rectangle but for the blocks of columns in which all that it draws on is full. `from` and `to` are
/// the ends of its centre line, which is not upright.
void StrokeRasterizer::addWhereNotFull(const Rectangle& corners, Point from, Point to, Point normal) {
    const double slope = (to.y - from.y) / (to.x - from.x);
    const auto [left, right] = std::minmax(from.x, to.x);
    const auto [low, high] = std::minmax(from.y, to.y);
    const double reachX = std::abs(normal.x);
    const double reachY = std::abs(normal.y);
    const auto blockAt = [this](double x) {
        return static_cast<int>(std::clamp<double>(x, 0, m_width)) / m_blockWidth;
    };
    const int end = std::min(blockAt(right + reachX) + 1, static_cast<int>(m_fullRuns.size()));
    int pending = 0; // the first column that is not added yet
    for (int block = blockAt(left - reachX); block < end; ++block) {
        const Rows run = m_fullRuns[static_cast<std::size_t>(block)];
        const Columns columns{block * m_blockWidth, (block + 1) * m_blockWidth};
        // The part of the centre line that is drawn with in this block.
        const double y0 = std::clamp(from.y + slope * (columns.first - reachX - from.x), low, high);
        const double y1 = std::clamp(from.y + slope * (columns.end + reachX - from.x), low, high);
        if (std::min(y0, y1) - reachY < run.first || std::max(y0, y1) + reachY > run.end)
            continue;
        addOutline(corners, {pending, columns.first});
        pending = columns.end;
    }
    addOutline(corners, {pending, m_width});
}

/// Adds what of the rectangle lies in the given columns.
inline void StrokeRasterizer::addOutline(const Rectangle& corners, Columns columns) {
    if (columns.first >= columns.end)
        return;
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
    if (isInFull && m_lastIsInFull) {
        m_last = to;
        m_lastNormal = {0, 0}; // nothing of the next join can be seen
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
    if (m_cellsUntilSearch <= 0)
        findWhatIsFull();
    m_last = to;
    m_lastNormal = normal;
    m_lastIsInFull = m_full.contains(x, y);
}

/// Adds, in each of the columns, the area above the edge when it runs to the right, and takes it away when it
/// runs to the left. Around a counter-clockwise outline that leaves its inside.
void StrokeRasterizer::addEdge(Point from, Point to, Columns columns) {
    if (from.x == to.x)
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
    m_cellsUntilSearch -= last + 1 - first;
    Ramp begin(left.y);
    if (first == last) {
        addToColumn(first, begin, Ramp(right.y), sign * (right.x - left.x));
        return;
    }
    const double slope = (right.y - left.y) / (right.x - left.x);
    const auto [low, high] = std::minmax({left.y, right.y});
    const auto rampAt = [&, low = low, high = high](int column) {
        return Ramp(std::clamp(left.y + slope * (column - left.x), low, high));
    };
    Ramp end = rampAt(first + 1);
    addToColumn(first, begin, end, sign * (first + 1 - left.x));
    if (std::abs(slope) < 1e-2) {
        for (int column = first + 1; column < last; ++column) {
            begin = std::exchange(end, rampAt(column + 1));
            addToColumn(column, begin, end, sign);
        }
    } else {
        // All these columns have the same slope, so what one of them ends with is what the next begins with.
        double* rows = m_columns.data() + static_cast<std::size_t>(first + 1) * m_columnStride;
        const double steepness = sign / slope;
        begin = end.times(steepness);
        for (int column = first + 1; column < last; ++column, rows += m_columnStride) {
            end = Ramp(left.y + slope * (column + 1 - left.x)).times(steepness);
            begin.addTo(rows);
            end.subtractFrom(rows);
            touch(column, begin, end);
            begin = end;
        }
        end = rampAt(last);
    }
    addToColumn(last, end, Ramp(right.y), sign * (right.x - last));
}

inline void StrokeRasterizer::touch(int column, const Ramp& begin, const Ramp& end) {
    Rows& touched = m_rows[static_cast<std::size_t>(column)];
    const auto [low, high] = std::minmax(begin.row, end.row);
    touched.first = std::min(touched.first, low);
    touched.end = std::max(touched.end, high + 3);
}

/// An edge across one column, or a part of its width, from one height to the other.
inline void StrokeRasterizer::addToColumn(int column, const Ramp& begin, const Ramp& end,
                                          double signedWidth) {
    double* const rows = m_columns.data() + static_cast<std::size_t>(column) * m_columnStride;
    touch(column, begin, end);
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

/// Of the rows of a column that are full, the longest run.
StrokeRasterizer::Rows StrokeRasterizer::longestFullRun(int column) const {
    const Rows touched = m_rows[static_cast<std::size_t>(column)];
    const double* const rows = m_columns.data() + static_cast<std::size_t>(column) * m_columnStride;
    const int end = std::min(touched.end, m_height);
    Rows longest{0, 0};
    double slope = 0;
    double coverage = 0;
    int first = touched.first;
    for (int row = touched.first; row < end; ++row) {
        slope += rows[row];
        coverage += slope;
        if (coverage < fullCoverage)
            first = row + 1;
        else if (row + 1 - first > longest.end - longest.first)
            longest = {first, row + 1};
    }
    return longest;
}

void StrokeRasterizer::findWhatIsFull() {
    m_fullRuns.assign(static_cast<std::size_t>(m_width / m_blockWidth), Rows{0, m_height});
    for (std::size_t block = 0; block < m_fullRuns.size(); ++block) {
        Rows& run = m_fullRuns[block];
        const int left = static_cast<int>(block) * m_blockWidth;
        for (int column = left; column < left + m_blockWidth && run.first < run.end; ++column) {
            const Rows own = longestFullRun(column);
            run = {std::max(run.first, own.first), std::min(run.end, own.end)};
        }
    }
    findFullBox();
    m_cellsUntilSearch = cellsBetweenSearches();
}

/// The greatest rectangle within the runs of the blocks, less what a stroke reaches to its sides.
void StrokeRasterizer::findFullBox() {
    double greatest = 0;
    const double reach = m_halfWidth + 1;
    for (std::size_t begin = 0; begin < m_fullRuns.size(); ++begin) {
        Rows common{0, m_height};
        for (std::size_t end = begin; end < m_fullRuns.size(); ++end) {
            common = {std::max(common.first, m_fullRuns[end].first),
                      std::min(common.end, m_fullRuns[end].end)};
            const ClipBox box{static_cast<double>(begin) * m_blockWidth + reach, common.first + reach,
                              static_cast<double>(end + 1) * m_blockWidth - reach, common.end - reach};
            if (box.low >= box.high)
                break;
            const double area = (box.right - box.left) * (box.high - box.low);
            if (box.left < box.right && area > greatest) {
                greatest = area;
                m_full = box;
            }
        }
    }
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
    m_fullRuns.clear();
    m_lastIsInFull = false;
    m_cellsUntilSearch = cellsBetweenSearches();
}

void StrokeRasterizer::paintColumn(int column, PixelGrid image, const CoverageRamp& colors) {
    Rows& touched = m_rows[static_cast<std::size_t>(column)];
    double* const rows = m_columns.data() + static_cast<std::size_t>(column) * m_columnStride;
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
