// Reads a curve's rows as pixels, chunk by chunk, and collects its point shapes on the way. Rows that lie out
// of view, as the summary of their table says, are passed over.
#pragma once

#include "Classes/PlotModel/XCurve.h"
#include "Classes/PlotView/CurveRenderer.h"
#include "Core/TickCompressor.h"

#include <array>
#include <cstdint>
#include <span>
#include <stop_token>

class XAxis;

/// One pass over all rows that can be drawn. The axes' lengths are in the pixels that are delivered;
/// `pixelsPerPoint` scales the sizes of the shapes. All references must outlive the reader.
class CurvePixelReader {
  public:
    static constexpr std::size_t rowsPerChunk = 4096;

    CurvePixelReader(const CurveSnapshot& curve, const XAxis& axisX, const XAxis& axisY,
                     double pixelsPerPoint, std::stop_token stop, const CurveRenderer::Progress& progress);

    std::uint64_t rows() const { return m_dataSize; }
    /// Whether x or y comes from a column. A curve of row numbers alone is not drawn.
    bool hasColumns() const { return !m_xData.values.empty() || !m_yData.values.empty(); }
    bool ticksNeeded() const { return m_ticksNeeded; }

    /// Points x and y at the pixels of the next rows, y upwards, and returns their number: 0 at the end, or
    /// when cancelled. Both stay valid until the next call. What is not finite in the data is NaN. Of rows
    /// that all lie beyond one edge, neither line nor shape in view, only some are delivered: the reduced
    /// line that is drawn is the same.
    std::size_t getChunkOfData(const float*& x, const float*& y);

    /// The shapes of the rows read so far that can touch the picture; sizes in quarters of a pixel.
    const TickCompressor& ticks() const { return m_tickCompressor; }

  private:
    using Pixels = std::array<float, rowsPerChunk>;
    struct Column {
        std::span<const double> values;      ///< empty: the row number
        std::span<const XValueRange> blocks; ///< ranges of the values; empty: not known
    };

    static Column columnOf(bool usesExpression, const XTable& evaluated, const XTable& table, int index);
    void prepareData();
    XValueRange rangeOfNext(const Column& column, std::size_t count) const;
    bool isOutOfView(const XAxis& axis, const Column& column, std::size_t count) const;
    std::size_t readRim(std::size_t count);
    void readPixels(std::size_t skipped, std::size_t count, std::size_t place);
    void readPixels(const XAxis& axis, const Column& column, std::size_t skipped,
                    std::span<float> pixels) const;
    void collectTicks(std::size_t count);

    const CurveSnapshot& m_curve;
    const XAxis& m_axisX;
    const XAxis& m_axisY;
    double m_pixelsPerPoint;
    std::stop_token m_stop;
    const CurveRenderer::Progress& m_progress;

    Column m_xData;
    Column m_yData;
    std::span<const double> m_pointsizeData; ///< empty: all points have the curve's size
    std::uint64_t m_dataSize = 0;
    std::uint64_t m_currentDataIndex = 0;
    bool m_ticksNeeded = false;
    double m_reach = 1; ///< pixels from a point, beyond which nothing of it is drawn; at least 1
    Pixels m_xPixels{};
    Pixels m_yPixels{};
    TickCompressor m_tickCompressor;
};
