// Columns to pixels through the axes, and the choice of the shapes that can be seen.
#include "Classes/PlotView/CurvePixelReader.h"

#include "Classes/Axes/XAxis.h"
#include "Core/PixelMath.h"

#include <algorithm>
#include <utility>

namespace {

/// The column that `index` (1-based, 0 for none) or an expression names; empty when there is none.
std::span<const double> columnOf(bool usesExpression, const XTable& evaluated, const XTable& table,
                                 int index) {
    if (usesExpression)
        return evaluated ? evaluated->column(0) : std::span<const double>();
    return table && index >= 1 ? table->column(static_cast<std::uint64_t>(index) - 1)
                               : std::span<const double>();
}

} // namespace

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
    m_pointsizeData = columnOf(m_curve.pointsizeUsesExpression, m_curve.pointsizeEvaluated, nullptr, 0);
    m_dataSize = m_curve.rows();
    for (const std::span<const double> column : {m_xData, m_yData, m_pointsizeData}) {
        if (!column.empty())
            m_dataSize = std::min<std::uint64_t>(m_dataSize, column.size());
    }
    // Where no shapes can be drawn nobody can see the map of shapes, so it is not filled either: it would
    // cost more than all the rest of the pass.
    const bool hasShape = m_curve.ticksShape != nullptr && m_curve.ticksShape->drawCallback() != nullptr;
    const bool hasSize = m_curve.pointsizeUsesExpression ? !m_pointsizeData.empty() : m_curve.ticksSize > 0;
    m_ticksNeeded = hasShape && hasSize;
}

std::size_t CurvePixelReader::getChunkOfData(const float*& x, const float*& y) {
    if (m_progress)
        m_progress(m_currentDataIndex);
    if (m_stop.stop_requested() || m_currentDataIndex >= m_dataSize)
        return 0;
    const auto count =
        static_cast<std::size_t>(std::min<std::uint64_t>(rowsPerChunk, m_dataSize - m_currentDataIndex));
    readPixels(m_axisX, m_xData, count, m_xPixels);
    readPixels(m_axisY, m_yData, count, m_yPixels);
    if (m_ticksNeeded)
        collectTicks(count);
    m_currentDataIndex += count;
    x = m_xPixels.data();
    y = m_yPixels.data();
    return count;
}

void CurvePixelReader::readPixels(const XAxis& axis, std::span<const double> column, std::size_t count,
                                  Pixels& pixels) const {
    if (column.empty())
        axis.valueFromRangeTo(static_cast<std::int64_t>(m_currentDataIndex), count, pixels.data());
    else
        axis.valuesToPixelsFromToCount(column.data() + m_currentDataIndex, pixels.data(), count);
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
