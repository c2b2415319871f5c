// Columns to pixels through the axes, and the choice of the shapes that can be seen.
#include "Classes/PlotView/CurvePixelReader.h"

#include "Classes/Axes/XAxis.h"
#include "Core/PixelMath.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace {

constexpr std::size_t rim = 8; ///< rows at either end of a chunk that is passed over

} // namespace

/// The column that `index` (1-based, 0 for none) or an expression names; empty when there is none.
CurvePixelReader::Column CurvePixelReader::columnOf(bool usesExpression, const XTable& evaluated,
                                                    const XTable& table, int index) {
    const XTable& source = usesExpression ? evaluated : table;
    if (!source || (!usesExpression && index < 1))
        return {};
    const std::uint64_t number = usesExpression ? 0 : static_cast<std::uint64_t>(index) - 1;
    return {source->column(number), source->blockRanges(number)};
}

CurvePixelReader::CurvePixelReader(const CurveSnapshot& curve, const XAxis& axisX, const XAxis& axisY,
                                   double pixelsPerPoint, std::stop_token stop,
                                   const CurveRenderer::Progress& progress)
    : m_curve(curve), m_axisX(axisX), m_axisY(axisY), m_pixelsPerPoint(pixelsPerPoint),
      m_stop(std::move(stop)), m_progress(progress) {
    prepareData();
}

void CurvePixelReader::prepareData() {
    m_xData = columnOf(m_curve.xUsesExpression, m_curve.xEvaluated, m_curve.table, m_curve.xIndex);
    m_yData = columnOf(m_curve.yUsesExpression, m_curve.yEvaluated, m_curve.table, m_curve.yIndex);
    m_pointsizeData =
        columnOf(m_curve.pointsizeUsesExpression, m_curve.pointsizeEvaluated, nullptr, 0).values;
    m_dataSize = m_curve.rows();
    for (const std::span<const double> column : {m_xData.values, m_yData.values, m_pointsizeData}) {
        if (!column.empty())
            m_dataSize = std::min<std::uint64_t>(m_dataSize, column.size());
    }
    // Where no shapes can be drawn nobody can see the map of shapes, so it is not filled either: it would
    // cost more than all the rest of the pass.
    const bool hasShape = m_curve.ticksShape != nullptr && m_curve.ticksShape->drawCallback() != nullptr;
    const bool hasSize = m_curve.pointsizeUsesExpression ? !m_pointsizeData.empty() : m_curve.ticksSize > 0;
    m_ticksNeeded = hasShape && hasSize;
    if (m_ticksNeeded)
        m_reach = m_pointsizeData.empty() ? m_curve.ticksSize * m_pixelsPerPoint + 1
                                          : std::numeric_limits<double>::infinity();
}

std::size_t CurvePixelReader::getChunkOfData(const float*& x, const float*& y) {
    if (m_progress)
        m_progress(m_currentDataIndex);
    if (m_stop.stop_requested() || m_currentDataIndex >= m_dataSize)
        return 0;
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(rowsPerChunk, m_dataSize - m_currentDataIndex));
    x = m_xPixels.data();
    y = m_yPixels.data();
    const bool isPassedOver = isOutOfView(m_axisX, m_xData, count) || isOutOfView(m_axisY, m_yData, count);
    if (const std::size_t delivered = isPassedOver ? readRim(count) : 0) {
        m_currentDataIndex += count;
        return delivered;
    }
    readPixels(0, count, 0);
    if (m_ticksNeeded)
        collectTicks(count);
    m_currentDataIndex += count;
    return count;
}

/// What the next rows lie within; {NaN, NaN} if it is not known.
XValueRange CurvePixelReader::rangeOfNext(const Column& column, std::size_t count) const {
    static_assert(rowsPerChunk % XPTableData::rowsPerBlock == 0);
    if (column.values.empty())
        return {static_cast<double>(m_currentDataIndex), static_cast<double>(m_currentDataIndex + count - 1)};
    XValueRange range;
    for (std::size_t at = 0; at < count; at += XPTableData::rowsPerBlock) {
        const std::uint64_t block = (m_currentDataIndex + at) / XPTableData::rowsPerBlock;
        if (block >= column.blocks.size())
            return {};
        range.minimum = std::fmin(range.minimum, column.blocks[block].minimum);
        range.maximum = std::fmax(range.maximum, column.blocks[block].maximum);
    }
    return range;
}

/// Whether all of the next rows that have a place on the axis lie beyond the same end of it. Axes keep the
/// order of values; a pixel or more to spare is more than their rounding.
bool CurvePixelReader::isOutOfView(const XAxis& axis, const Column& column, std::size_t count) const {
    const XValueRange range = rangeOfNext(column, count);
    const double first = axis.valueToPixel(range.minimum);
    const double last = axis.valueToPixel(range.maximum);
    const double end = axis.pixelLength() + m_reach;
    return (first < -m_reach && last < -m_reach) || (first > end && last > end);
}

/// Of the next rows, that lie beyond one edge, reads as many as leave the reducer of the line in the same
/// state as all: a point there ends what was before, and each that follows only takes the place of its
/// predecessor. Returns their number, 0 if there are too few points at the ends to tell.
std::size_t CurvePixelReader::readRim(std::size_t count) {
    if (count <= 2 * rim)
        return 0;
    readPixels(0, rim, 0);
    readPixels(count - rim, rim, rim);
    const auto points = [this](std::size_t begin) {
        int found = 0;
        for (std::size_t i = begin; i < begin + rim; ++i)
            found += isFinite(m_xPixels[i]) && isFinite(m_yPixels[i]) ? 1 : 0;
        return found;
    };
    return points(0) >= 2 && points(rim) >= 2 ? 2 * rim : 0;
}

/// Reads `count` of the next rows, after `skipped` others, to `place` in both buffers.
void CurvePixelReader::readPixels(std::size_t skipped, std::size_t count, std::size_t place) {
    readPixels(m_axisX, m_xData, skipped, std::span(m_xPixels).subspan(place, count));
    readPixels(m_axisY, m_yData, skipped, std::span(m_yPixels).subspan(place, count));
}

void CurvePixelReader::readPixels(const XAxis& axis, const Column& column, std::size_t skipped,
                                  std::span<float> pixels) const {
    const std::uint64_t first = m_currentDataIndex + skipped;
    if (column.values.empty())
        axis.valueFromRangeTo(static_cast<std::int64_t>(first), pixels.size(), pixels.data());
    else
        axis.valuesToPixelsFromToCount(column.values.data() + first, pixels.data(), pixels.size());
}

void CurvePixelReader::collectTicks(std::size_t count) {
    const auto width = static_cast<float>(m_axisX.pixelLength());
    const auto height = static_cast<float>(m_axisY.pixelLength());
    const auto scale = static_cast<float>(m_pixelsPerPoint);
    auto size = static_cast<float>(m_curve.ticksSize) * scale;
    for (std::size_t i = 0; i < count; ++i) {
        if (!m_pointsizeData.empty())
            size = static_cast<float>(m_pointsizeData[m_currentDataIndex + i]) * scale;
        if (!(size > 0) || !isFinite(size))
            continue;
        const float x = m_xPixels[i];
        const float y = m_yPixels[i];
        // False for NaN, too.
        if (x >= -size && x < width + size && y >= -size && y < height + size)
            m_tickCompressor.add({truncatedPixel(x), truncatedPixel(y), truncatedPixel(size * 4)});
    }
}
