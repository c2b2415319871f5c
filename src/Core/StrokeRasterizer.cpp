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

} // namespace

StrokeRasterizer::StrokeRasterizer(int width, int height, double lineWidth)
    : m_width(width), m_height(height), m_halfWidth(lineWidth / 2),
      // Odd, so that columns do not compete for cache lines.
      m_columnStride((static_cast<std::size_t>(height) + 3) | 1U),
      m_columns(static_cast<std::size_t>(width) * m_columnStride),
      m_rows(static_cast<std::size_t>(width), Rows{noRow, 0}), m_firstColumn(width),
      m_near(ClipBox::around(width, height, m_halfWidth + 1)), m_full(nowhere),
      m_cellsUntilSearch(cellsBetweenSearches()) {}

std::int64_t StrokeRasterizer::cellsBetweenSearches() const {
    return 2 * static_cast<std::int64_t>(m_width) * m_height;
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
        findFullBox();
    m_last = to;
    m_lastNormal = normal;
    m_lastIsInFull = m_full.contains(x, y);
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

void StrokeRasterizer::addRectangle(Point from, Point to, Point normal) {
    const std::array<Point, 4> corners{{{from.x - normal.x, from.y - normal.y},
                                        {to.x - normal.x, to.y - normal.y},
                                        {to.x + normal.x, to.y + normal.y},
                                        {from.x + normal.x, from.y + normal.y}}};
    for (std::size_t i = 0; i < corners.size(); ++i)
        addEdge(corners[i], corners[(i + 1) % corners.size()]);
}

/// The triangle that fills the outer side of a bend.
void StrokeRasterizer::addBevel(Point at, Point normalBefore, Point normalAfter) {
    const double twiceArea = normalBefore.x * normalAfter.y - normalBefore.y * normalAfter.x;
    if (std::abs(twiceArea) < 1e-4)
        return; // far below what one step of a colour shows
    const double side = twiceArea > 0 ? -1 : 1;
    Point first{at.x + side * normalBefore.x, at.y + side * normalBefore.y};
    Point second{at.x + side * normalAfter.x, at.y + side * normalAfter.y};
    if (side > 0)
        std::swap(first, second);
    addEdge(at, first);
    addEdge(first, second);
    addEdge(second, at);
}

/// Adds, in every column, the area above the edge when it runs to the right, and takes it away when it runs
/// to the left. Around a counter-clockwise outline that leaves its inside.
void StrokeRasterizer::addEdge(Point from, Point to) {
    if (from.x == to.x)
        return;
    const double sign = from.x < to.x ? 1 : -1;
    Point left = from.x < to.x ? from : to;
    Point right = from.x < to.x ? to : from;
    if (right.x <= 0 || left.x >= m_width)
        return;
    const double slope = (right.y - left.y) / (right.x - left.x);
    const auto at = [origin = left, slope](double x) { return Point{x, origin.y + slope * (x - origin.x)}; };
    if (left.x < 0)
        left = at(0);
    if (right.x > m_width)
        right = at(m_width);
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
    if (first == last) {
        addToColumn(first, left.y, right.y, sign * (right.x - left.x));
        return;
    }
    const double slope = (right.y - left.y) / (right.x - left.x);
    const auto [low, high] = std::minmax({left.y, right.y});
    double y = std::clamp(left.y + slope * (first + 1 - left.x), low, high);
    addToColumn(first, left.y, y, sign * (first + 1 - left.x));
    for (int column = first + 1; column < last; ++column) {
        const double next = std::clamp(left.y + slope * (column + 1 - left.x), low, high);
        addToColumn(column, y, next, sign);
        y = next;
    }
    addToColumn(last, y, right.y, sign * (right.x - last));
}

inline void StrokeRasterizer::addToColumn(int column, double y0, double y1, double signedWidth) {
    const auto [low, high] = std::minmax({y0, y1});
    const int lowRow = static_cast<int>(low);
    const int highRow = static_cast<int>(high);
    double* const rows = m_columns.data() + static_cast<std::size_t>(column) * m_columnStride;
    Rows& touched = m_rows[static_cast<std::size_t>(column)];
    touched.first = std::min(touched.first, lowRow);
    touched.end = std::max(touched.end, highRow + 3);

    const double rise = high - low;
    if (lowRow == highRow || rise < 1e-4) {
        // Within one row the ramp's place counts, not its shape.
        const double middle = (low + high) / 2;
        const int row = static_cast<int>(middle);
        const double above = middle - row;
        rows[row] += signedWidth * (1 - above);
        rows[row + 1] += signedWidth * (2 * above - 1);
        rows[row + 2] -= signedWidth * above;
        return;
    }
    const double slope = signedWidth / rise;
    const auto addRamp = [rows](int row, double y, double change) {
        const double f = y - row;
        rows[row] += change * (0.5 * (1 - f) * (1 - f));
        rows[row + 1] += change * (0.5 + f - f * f);
        rows[row + 2] += change * (0.5 * f * f);
    };
    addRamp(lowRow, low, slope);
    addRamp(highRow, high, -slope);
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

/// The greatest rectangle within the runs of the columns, less what a stroke reaches to its sides. Columns
/// are taken in blocks, so that looking at all pairs of blocks costs less than looking at all pixels.
void StrokeRasterizer::findFullBox() {
    const int blockWidth = std::max(4, m_width / 256);
    const int blocks = m_width / blockWidth;
    std::vector<Rows> runs(static_cast<std::size_t>(blocks), Rows{0, m_height});
    for (int column = 0; column < blocks * blockWidth; ++column) {
        Rows& run = runs[static_cast<std::size_t>(column / blockWidth)];
        const Rows own = longestFullRun(column);
        run = {std::max(run.first, own.first), std::min(run.end, own.end)};
    }
    double greatest = 0;
    const double reach = m_halfWidth + 1;
    for (std::size_t begin = 0; begin < runs.size(); ++begin) {
        Rows common{0, m_height};
        for (std::size_t end = begin; end < runs.size(); ++end) {
            common = {std::max(common.first, runs[end].first), std::min(common.end, runs[end].end)};
            const ClipBox box{static_cast<double>(begin) * blockWidth + reach, common.first + reach,
                              static_cast<double>(end + 1) * blockWidth - reach, common.end - reach};
            if (box.low >= box.high)
                break;
            const double area = (box.right - box.left) * (box.high - box.low);
            if (box.left < box.right && area > greatest) {
                greatest = area;
                m_full = box;
            }
        }
    }
    m_cellsUntilSearch = cellsBetweenSearches();
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
        *pixel = composed(colors[level], *pixel);
    }
    std::fill(rows + touched.first, rows + touched.end, 0.0);
    touched = {noRow, 0};
}
