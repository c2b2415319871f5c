// The grouping of points by pixel, one by one, and a block at a time where many fall on one pixel column.
#include "Core/PolylineCompressor.h"

#include "Core/FloatQuad.h"
#include "Core/PixelMath.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

enum Slot : std::size_t { First, LeastX, GreatestX, LeastY, GreatestY, Last };

constexpr unsigned allEdges = 255;
constexpr unsigned columnChanged = 1;
constexpr unsigned rowChanged = 2;
constexpr unsigned bothChanged = columnChanged | rowChanged;
constexpr PlotPoint noPoint{-1, std::numeric_limits<float>::quiet_NaN(),
                            std::numeric_limits<float>::quiet_NaN()};

constexpr std::size_t blockLength = 16;

/// Least and greatest of a block.
struct BlockRange {
    FloatQuad low;
    FloatQuad high;

    explicit BlockRange(FloatQuad first) : low(first), high(first) {}
    void add(FloatQuad values) {
        low = least(values, low);
        high = greatest(values, high);
    }
    float minimum() const { return std::min({low[0], low[1], low[2], low[3]}); }
    float maximum() const { return std::max({high[0], high[1], high[2], high[3]}); }
};

/// `truncatedPixel` of each of four values that are not negative.
IntQuad truncatedPixels(FloatQuad values) {
    return truncated(least(values, quadOf(1 << 30)));
}

/// Puts the four extremes in the order of the data.
void sortByIndex(std::array<PlotPoint, 6>& group) {
    constexpr std::array<std::pair<Slot, Slot>, 5> network{{{LeastX, LeastY},
                                                            {GreatestX, GreatestY},
                                                            {LeastX, GreatestX},
                                                            {LeastY, GreatestY},
                                                            {GreatestX, LeastY}}};
    for (const auto& [a, b] : network) {
        if (group[a].index > group[b].index)
            std::swap(group[a], group[b]);
    }
}

} // namespace

PolylineCompressor::PolylineCompressor(DataCallback fetch, DrawCallback draw)
    : m_fetch(std::move(fetch)), m_draw(std::move(draw)) {}

void PolylineCompressor::setExtent(std::uint64_t width, std::uint64_t height) {
    m_width = static_cast<float>(width);
    m_height = static_cast<float>(height);
}

void PolylineCompressor::run() {
    m_group.fill(noPoint);
    m_pending = noPoint;
    m_previousInvalid = m_segmentInvisible = false;
    m_previousOutcode = allEdges;

    const float* x = nullptr;
    const float* y = nullptr;
    std::uint32_t base = 0;
    std::size_t count = m_fetch(x, y);
    while (count > 0) {
        std::size_t nextBlock = 0; // where a block may begin: not within one that was refused
        for (std::size_t i = 0; i + 1 < count;) {
            const auto index = static_cast<std::int32_t>(base + static_cast<std::uint32_t>(i));
            if (i >= nextBlock && i + blockLength < count) {
                if (takeBlock(x + i, y + i, index)) {
                    i += blockLength;
                    continue;
                }
                if (i > 0 && areApart(x + i, y + i)) {
                    if (stepApart(x + i, y + i, index))
                        return;
                    i += blockLength;
                    continue;
                }
                nextBlock = i + blockLength;
            }
            if (step(x[i], y[i], index, false))
                return;
            ++i;
        }
        // Only the fetch that follows the last point of a chunk tells whether it is the last of all; it may
        // overwrite the chunk.
        const float lastX = x[count - 1];
        const float lastY = y[count - 1];
        base += static_cast<std::uint32_t>(count);
        count = m_fetch(x, y);
        if (step(lastX, lastY, static_cast<std::int32_t>(base - 1), count == 0))
            return;
    }
    finish();
}

/// Returns true when the run is to end.
inline bool PolylineCompressor::step(float x, float y, std::int32_t index, bool isLast) {
    if (!isFinite(x) || !isFinite(y)) {
        m_previousInvalid = true;
        return false;
    }
    const unsigned outcode =
        (x < 0 ? 1U : 0U) | (x > m_width ? 2U : 0U) | (y < 0 ? 16U : 0U) | (y > m_height ? 32U : 0U);
    m_segmentInvisible = (m_previousOutcode & outcode) != 0;
    if (m_segmentInvisible)
        m_changeFlags = bothChanged;
    m_previousOutcode = outcode;

    const PlotPoint point{index, x, y};
    const int pixelX = truncatedPixel(x);
    const int pixelY = truncatedPixel(y);
    if (m_firstPoint) {
        m_group.fill(point);
        m_firstPoint = false;
    } else {
        unsigned change =
            (pixelX != m_lastPixelX ? columnChanged : 0) | (pixelY != m_lastPixelY ? rowChanged : 0);
        if (m_previousInvalid && change != 0)
            change = bothChanged;
        m_changeFlags |= change;
        if (isLast || m_changeFlags == bothChanged) {
            if (flushGroup())
                return true;
            m_group.fill(point);
            m_groupNeedsMoveTo = m_segmentInvisible || m_previousInvalid;
            m_changeFlags = 0;
        } else {
            // Strict, so that of equal points the earlier one stays.
            if (x < m_group[LeastX].x)
                m_group[LeastX] = point;
            if (x > m_group[GreatestX].x)
                m_group[GreatestX] = point;
            if (y < m_group[LeastY].y)
                m_group[LeastY] = point;
            if (y > m_group[GreatestY].y)
                m_group[GreatestY] = point;
        }
    }
    m_group[Last] = point;
    m_lastPixelX = pixelX;
    m_lastPixelY = pixelY;
    m_previousInvalid = false;
    return false;
}

/// Takes the next points at once if all of them lie in the picture, on the pixel column of a group that has
/// not left it: none of them ends the group. Else it takes none and returns false.
inline bool PolylineCompressor::takeBlock(const float* x, const float* y, std::int32_t index) {
    if (truncatedPixel(x[blockLength - 1]) != m_lastPixelX || (m_changeFlags & columnChanged) != 0 ||
        m_previousOutcode != 0 || m_previousInvalid)
        return false;
    BlockRange xs(quadAt(x));
    BlockRange ys(quadAt(y));
    FloatQuad sum = quadAt(x) + quadAt(y); // of all: NaN as soon as one is NaN
    for (std::size_t i = 4; i < blockLength; i += 4) {
        const FloatQuad nextX = quadAt(x + i);
        const FloatQuad nextY = quadAt(y + i);
        xs.add(nextX);
        ys.add(nextY);
        sum += nextX + nextY;
    }
    const float left = xs.minimum();
    const float right = xs.maximum();
    const float low = ys.minimum();
    const float high = ys.maximum();
    const float total = sum[0] + sum[1] + sum[2] + sum[3];
    if (total != total || !(left >= 0 && right <= m_width && low >= 0 && high <= m_height) ||
        truncatedPixel(left) != m_lastPixelX || truncatedPixel(right) != m_lastPixelX)
        return false;
    const auto pointAt = [=](std::size_t i) {
        return PlotPoint{
            static_cast<std::int32_t>(static_cast<std::uint32_t>(index) + static_cast<std::uint32_t>(i)),
            x[i], y[i]};
    };
    const auto pointWith = [&](const float* values, float value) {
        return pointAt(static_cast<std::size_t>(std::find(values, values + blockLength, value) - values));
    };
    if (left < m_group[LeastX].x)
        m_group[LeastX] = pointWith(x, left);
    if (right > m_group[GreatestX].x)
        m_group[GreatestX] = pointWith(x, right);
    if (low < m_group[LeastY].y)
        m_group[LeastY] = pointWith(y, low);
    if (high > m_group[GreatestY].y)
        m_group[GreatestY] = pointWith(y, high);
    if (truncatedPixel(low) != m_lastPixelY || truncatedPixel(high) != m_lastPixelY)
        m_changeFlags |= rowChanged;
    m_group[Last] = pointAt(blockLength - 1);
    m_lastPixelY = truncatedPixel(m_group[Last].y);
    m_segmentInvisible = false;
    return true;
}

/// Whether each of the next points, before which another one stands in memory, lies in the picture and on
/// another column and another row of pixels than the point before it: groups of one point each, as in a line
/// in no order.
inline bool PolylineCompressor::areApart(const float* x, const float* y) const {
    if (truncatedPixel(x[0]) == truncatedPixel(x[1]) || m_firstPoint || m_previousInvalid ||
        m_previousOutcode != 0 || m_groupNeedsMoveTo)
        return false;
    IntQuad apart{-1, -1, -1, -1};
    for (std::size_t i = 0; i < blockLength; i += 4) {
        const FloatQuad nextX = quadAt(x + i);
        const FloatQuad nextY = quadAt(y + i);
        apart &= (nextX >= 0) & (nextX <= m_width) & (nextY >= 0) & (nextY <= m_height);
        apart &= truncatedPixels(nextX) != truncatedPixels(quadAt(x + i - 1));
        apart &= truncatedPixels(nextY) != truncatedPixels(quadAt(y + i - 1));
    }
    return (apart[0] & apart[1] & apart[2] & apart[3]) != 0;
}

/// Takes the next points, which are apart. Returns true when the run is to end.
bool PolylineCompressor::stepApart(const float* x, const float* y, std::int32_t index) {
    if (flushGroup())
        return true;
    PlotPoint point{index, x[0], y[0]};
    for (std::size_t i = 1; i < blockLength; ++i) {
        if (m_draw({&point, 1}, false))
            return true;
        point = {static_cast<std::int32_t>(static_cast<std::uint32_t>(index) + static_cast<std::uint32_t>(i)),
                 x[i], y[i]};
    }
    m_group.fill(point);
    m_changeFlags = 0;
    m_segmentInvisible = false;
    m_lastPixelX = truncatedPixel(point.x);
    m_lastPixelY = truncatedPixel(point.y);
    return false;
}

std::span<const PlotPoint> PolylineCompressor::buildOutputList() {
    if (m_group[First].index == m_group[Last].index)
        return std::span(m_group).first(1);
    sortByIndex(m_group);
    std::size_t kept = 1;
    for (std::size_t i = 1; i < m_group.size(); ++i) {
        if (m_group[i].index != m_group[kept - 1].index)
            m_group[kept++] = m_group[i];
    }
    return std::span(m_group).first(kept);
}

bool PolylineCompressor::flushGroup() {
    const std::span<const PlotPoint> list = buildOutputList();
    if (!m_groupNeedsMoveTo) {
        if (m_pending.index != -1)
            m_draw({&m_pending, 1}, true); // a stop is noticed at the list that follows
        m_pending = noPoint;
        return m_draw(list, false);
    }
    if (list.size() == 1) {
        m_pending = list[0];
        return false;
    }
    m_pending = noPoint;
    return m_draw(list, true);
}

void PolylineCompressor::finish() {
    const std::span<const PlotPoint> list = buildOutputList();
    if (!m_groupNeedsMoveTo) {
        if (m_pending.index != -1)
            m_draw({&m_pending, 1}, true);
        m_draw(list, false);
    } else if (list.size() > 1) {
        m_draw(list, true);
    }
}
