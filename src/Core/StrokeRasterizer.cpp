// Segments and joins, and what of them is left out.
#include "Core/StrokeRasterizer.h"

#include "Core/SegmentClip.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace {

constexpr ClipBox nowhere{1, 1, 0, 0};
constexpr int workOfRectangle = 8;    ///< besides its columns
constexpr int fewestInnerColumns = 4; ///< of a rectangle that is worth a strip

} // namespace

/// A rectangle around a centre line that is not upright.
struct StrokeRasterizer::Segment {
    double centreAt(double x) const { return begin.y + slope * (x - begin.x); }

    Rectangle corners;
    StrokePoint reach; ///< of the corners from the ends of the centre line
    StrokePoint begin; ///< of the centre line
    double low;
    double high;
    double slope;
    double halfHeight; ///< of a column that has no corner in it
};

StrokeRasterizer::StrokeRasterizer(int width, int height, double lineWidth)
    : m_width(width), m_height(height), m_halfWidth(lineWidth / 2), m_sums(width, height),
      m_near(ClipBox::around(width, height, m_halfWidth + 1)), m_full(nowhere), m_fullPixels(width, height) {
    searchLater();
}

/// Looking at half of the pixels takes about as long as what is drawn between two searches.
void StrokeRasterizer::searchLater() {
    m_workAtSearch = work() + std::max<std::int64_t>(1, std::int64_t{m_width} * m_height / 2);
}

std::int64_t StrokeRasterizer::work() const {
    return m_sums.additions() + m_otherWork;
}

/// Adds a rectangle but for the parts in which all that it draws on is full. `from` and `to` are the ends of
/// its centre line. Points that are handed to a function as they are wait for each other in memory: a fifth
/// of the time of short segments, hence the compiler is not asked whether to inline this one.
[[gnu::always_inline]] inline void StrokeRasterizer::addRectangle(StrokePoint from, StrokePoint to,
                                                                  StrokePoint normal) {
    const Rectangle corners{{{from.x - normal.x, from.y - normal.y},
                             {to.x - normal.x, to.y - normal.y},
                             {to.x + normal.x, to.y + normal.y},
                             {from.x + normal.x, from.y + normal.y}}};
    const auto [left, right] = std::minmax({from.x, to.x});
    const bool isShort = right - left < fewestInnerColumns;
    if (isShort && !m_fullPixels.isAnyFull()) {
        addOutline(corners, {0, m_width});
        return;
    }
    const StrokePoint reach{std::abs(normal.x), std::abs(normal.y)};
    const auto [low, high] = std::minmax({from.y, to.y});
    const PixelRange all{columnAt(left - reach.x), std::min(columnAt(right + reach.x) + 1, m_width)};
    const PixelRange inner{columnAt(left + reach.x) + 1, columnAt(right - reach.x)};
    if (!isShort && inner.count() >= fewestInnerColumns) {
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
void StrokeRasterizer::addLong(const Segment& segment, PixelRange all, PixelRange inner) {
    m_otherWork += workOfRectangle;
    addEnd(segment, {all.first, inner.first});
    addInnerWhereNotFull(segment, inner);
    addEnd(segment, {inner.end, all.end});
}

/// Adds columns in which the rectangle has a corner, unless they are full there.
inline void StrokeRasterizer::addEnd(const Segment& segment, PixelRange columns) {
    const double y0 =
        std::clamp(segment.centreAt(columns.first - segment.reach.x), segment.low, segment.high);
    const double y1 = std::clamp(segment.centreAt(columns.end + segment.reach.x), segment.low, segment.high);
    if (!areFull(columns, std::min(y0, y1) - segment.reach.y, std::max(y0, y1) + segment.reach.y))
        addOutline(segment.corners, columns);
}

/// Adds those of the columns, in none of which the rectangle has a corner, where it is not full.
inline void StrokeRasterizer::addInnerWhereNotFull(const Segment& segment, PixelRange columns) {
    int pending = columns.first; // the first column that is not added yet
    if (m_fullPixels.isAnyFull()) {
        m_otherWork += columns.count() / FullPixels::stackWidth;
        int column = columns.first;
        double y0 = segment.centreAt(column);
        for (int stack = column / FullPixels::stackWidth; column < columns.end; ++stack) {
            const int end = std::min(columns.end, (stack + 1) * FullPixels::stackWidth);
            const double y1 = segment.centreAt(end);
            if (m_fullPixels.coversInStack(stack, {column, end}, std::min(y0, y1) - segment.halfHeight,
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

inline void StrokeRasterizer::addInner(const Segment& segment, PixelRange columns) {
    if (columns.isEmpty())
        return;
    const double y = segment.centreAt(columns.first);
    if (!m_sums.addStrip(columns, y - segment.halfHeight, y + segment.halfHeight, segment.slope))
        addOutline(segment.corners, columns);
}

/// Whether all rows from `low` to `high` are full in these columns.
bool StrokeRasterizer::areFull(PixelRange columns, double low, double high) const {
    return m_fullPixels.isAnyFull() && m_fullPixels.covers(columns, low, high);
}

/// Adds what of the rectangle lies in the given columns.
inline void StrokeRasterizer::addOutline(const Rectangle& corners, PixelRange columns) {
    for (std::size_t i = 0; i < corners.size(); ++i)
        m_sums.addEdge(corners[i], corners[(i + 1) % corners.size()], columns);
}

/// The triangle that fills the outer side of a bend, unless it is full there.
inline void StrokeRasterizer::addJoin(StrokePoint at, StrokePoint normalBefore, StrokePoint normalAfter) {
    const double twiceArea = normalBefore.x * normalAfter.y - normalBefore.y * normalAfter.x;
    if (std::abs(twiceArea) < 1e-4)
        return; // far below what one step of a colour shows
    const PixelRange columns{columnAt(at.x - m_halfWidth),
                             std::min(columnAt(at.x + m_halfWidth) + 1, m_width)};
    if (areFull(columns, at.y - m_halfWidth, at.y + m_halfWidth))
        return;
    const double side = twiceArea > 0 ? -1 : 1;
    StrokePoint first{at.x + side * normalBefore.x, at.y + side * normalBefore.y};
    StrokePoint second{at.x + side * normalAfter.x, at.y + side * normalAfter.y};
    if (side > 0)
        std::swap(first, second);
    const PixelRange all{0, m_width};
    m_sums.addEdge(at, first, all);
    m_sums.addEdge(first, second, all);
    m_sums.addEdge(second, at, all);
}

/// Draws what of the segment can be seen. The ends that clipping makes lie outside the picture, like all
/// that they leave out, or deep in what is full.
void StrokeRasterizer::addSegment(StrokePoint from, StrokePoint to, StrokePoint normal) {
    const StrokePoint delta{to.x - from.x, to.y - from.y};
    std::optional<SegmentPart> near = SegmentPart{0, 1};
    if (!m_near.contains(from.x, from.y) || !m_near.contains(to.x, to.y))
        near = clippedSegment(from.x, from.y, delta.x, delta.y, m_near);
    if (!near)
        return;
    const auto at = [=](double share) {
        return share == 0   ? from
               : share == 1 ? to
                            : StrokePoint{from.x + share * delta.x, from.y + share * delta.y};
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
    const StrokePoint to{x, y};
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
    const StrokePoint normal{-dy * scale, dx * scale};
    if (!m_lastIsInFull && m_near.contains(m_last.x, m_last.y))
        addJoin(m_last, m_lastNormal, normal);
    addSegment(m_last, to, normal);
    if (work() >= m_workAtSearch)
        findWhatIsFull();
    m_last = to;
    m_lastNormal = normal;
    m_lastIsInFull = m_full.contains(x, y);
}

void StrokeRasterizer::findWhatIsFull() {
    m_sums.findFull(m_fullPixels);
    m_full = m_fullPixels.greatBox(m_halfWidth + 1);
    searchLater();
}

void StrokeRasterizer::paint(PixelGrid image, const CoverageRamp& colors) {
    m_sums.paint(image, colors);
    m_lastNormal = {0, 0};
    m_full = nowhere;
    m_fullPixels.clear();
    m_lastIsInFull = false;
    searchLater();
}
