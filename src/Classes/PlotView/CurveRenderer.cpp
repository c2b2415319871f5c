// One pass over the rows: the line through the reducer into the stroker or a path, then the shapes on top.
#include "Classes/PlotView/CurveRenderer.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/PlotView/CurvePixelReader.h"
#include "Classes/PlotView/CurveStrokes.h"
#include "Classes/PlotView/PointSprites.h"
#include "Core/Assertions.h"
#include "Core/PixelMath.h"
#include "Core/PolylineCompressor.h"
#include "Core/SegmentClip.h"
#include "Platform/Core/Log.h"

#include <QPainter>
#include <QPainterPath>
#include <QPen>

#include <algorithm>
#include <cmath>
#include <memory>
#include <utility>

namespace {

constexpr int maxSide = 32767; ///< of an image; its rows and columns fit everywhere

/// A copy of the axis that maps to device pixels.
std::unique_ptr<XAxis> deviceAxis(const XAxis& axis, double devicePixelRatio) {
    std::unique_ptr<XAxis> copy = axis.copy();
    const double length = std::round(axis.pixelLength() * devicePixelRatio);
    copy->setPixelLength(static_cast<int>(std::clamp(length, 0.0, double{maxSide} + 1)));
    return copy;
}

bool isVisible(float colorAlpha) {
    return colorAlpha > 0;
} // not for NaN

/// Hands the reduced line on to `Sink`: moveTo, lineTo, and strokePath at the end of every sub-path.
template <class Sink>
class LineDrawing {
  public:
    LineDrawing(Sink& sink, const std::stop_token& stop) : m_sink(sink), m_stop(stop) {}

    /// Reads all rows. Returns the number of point lists drawn.
    int run(CurvePixelReader& reader, const XAxis& axisX, const XAxis& axisY) {
        PolylineCompressor compressor(
            [&reader](const float*& x, const float*& y) { return reader.getChunkOfData(x, y); },
            [this](std::span<const PlotPoint> points, bool needMoveTo) {
                return drawPointsNeedMoveTo(points, needMoveTo);
            });
        compressor.setExtent(static_cast<std::uint64_t>(axisX.pixelLength()),
                             static_cast<std::uint64_t>(axisY.pixelLength()));
        compressor.run();
        m_sink.strokePath();
        return m_segmentsInCurve;
    }

  private:
    /// Returns true to end the run.
    bool drawPointsNeedMoveTo(std::span<const PlotPoint> points, bool needMoveTo) {
        if (m_stop.stop_requested())
            return true;
        if (needMoveTo)
            m_sink.strokePath();
        for (const PlotPoint& point : points) {
            if (!xAssert(isFinite(point.x), "Bad plot point!") ||
                !xAssert(isFinite(point.y), "Bad plot point!"))
                continue; // as if the row were missing
            if (std::exchange(needMoveTo, false))
                m_sink.moveTo(point.x, point.y);
            else
                m_sink.lineTo(point.x, point.y);
        }
        ++m_segmentsInCurve;
        return false;
    }

    Sink& m_sink;
    const std::stop_token& m_stop;
    int m_segmentsInCurve = 0;
};

/// Sub-paths as strokes of a painter, in points, y downwards. What lies far outside is cut off: no vector
/// format takes every number.
class VectorStrokes {
  public:
    VectorStrokes(QPainter& painter, double width, double height, const QPen& pen)
        : m_painter(painter), m_height(height), m_pen(pen),
          m_box(ClipBox::around(width, height, pen.widthF() + 10)) {}

    void moveTo(float x, float y) { m_last = {x, m_height - y}; }

    void lineTo(float x, float y) {
        const QPointF from = std::exchange(m_last, {x, m_height - y});
        const QPointF delta = m_last - from;
        const std::optional<SegmentPart> part =
            clippedSegment(from.x(), from.y(), delta.x(), delta.y(), m_box);
        if (!part)
            return;
        const QPointF begin = part->begin > 0 ? from + part->begin * delta : from;
        if (m_path.isEmpty() || m_path.currentPosition() != begin)
            m_path.moveTo(begin);
        m_path.lineTo(part->end < 1 ? from + part->end * delta : m_last);
    }

    void strokePath() {
        if (!m_path.isEmpty())
            m_painter.strokePath(m_path, m_pen);
        m_path.clear();
    }

  private:
    QPainter& m_painter;
    double m_height;
    QPen m_pen;
    ClipBox m_box;
    QPainterPath m_path;
    QPointF m_last;
};

void logTicks(const TickCompressor& ticks) {
    const std::size_t size = ticks.entries().size();
    const std::size_t buckets = ticks.bucketCount();
    qCDebug(velquinLog).noquote() << QString::asprintf(
        "tickCompressor: size %d, %d buckets, load factor avg %d, max %d", static_cast<int>(size),
        static_cast<int>(buckets), buckets == 0 ? 0 : static_cast<int>(size / buckets), 1);
}

/// Calls `draw(entry, opacity)` for every shape of the curve, in the order of their first rows.
template <class Draw>
void drawShapes(const CurvePixelReader& reader, float colorAlpha, const std::stop_token& stop, Draw&& draw) {
    if (!reader.ticksNeeded() || stop.stop_requested())
        return;
    logTicks(reader.ticks());
    OverlapRamp ramp(colorAlpha);
    for (const TickCompressor::Entry& entry : reader.ticks().entries()) {
        if (entry.key.size4 == 0)
            continue;
        if (stop.stop_requested())
            return;
        draw(entry, ramp.opacityFor(entry.count));
    }
}

/// Reads all rows for their shapes alone.
void readShapes(CurvePixelReader& reader) {
    const float* x = nullptr;
    const float* y = nullptr;
    while (reader.getChunkOfData(x, y) != 0) {
    }
}

} // namespace

QImage CurveRenderer::renderImage(const CurveSnapshot& curve, const XAxis& axisX, const XAxis& axisY,
                                  double devicePixelRatio, const std::stop_token& stop,
                                  const Progress& progress) {
    const std::unique_ptr<XAxis> deviceX = deviceAxis(axisX, devicePixelRatio);
    const std::unique_ptr<XAxis> deviceY = deviceAxis(axisY, devicePixelRatio);
    const auto reader =
        std::make_unique<CurvePixelReader>(curve, *deviceX, *deviceY, devicePixelRatio, stop, progress);
    const int width = deviceX->pixelLength();
    const int height = deviceY->pixelLength();
    if (reader->rows() == 0 || stop.stop_requested() || width > maxSide || height > maxSide)
        return {};
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return {};
    image.fill(Qt::transparent);

    const double lineWidth = curve.lineWidth * devicePixelRatio;
    if (reader->hasColumns() && isVisible(curve.colorAlpha)) {
        if (curve.lineWidth >= 1) {
            const RgbaColor& color = curve.color;
            CurveStrokes strokes(
                {.image = {reinterpret_cast<std::uint32_t*>(image.bits()), image.bytesPerLine() / 4},
                 .width = width,
                 .height = height,
                 .lineWidth = lineWidth,
                 .colors = coverageRamp(color.red, color.green, color.blue, curve.colorAlpha),
                 .isOpaque = curve.colorAlpha >= 1},
                stop);
            LineDrawing(strokes, stop).run(*reader, *deviceX, *deviceY);
            strokes.finish();
        } else if (reader->ticksNeeded()) {
            readShapes(*reader);
        }
        if (reader->ticksNeeded()) {
            PointSprites sprites(image, *curve.ticksShape, curve.color, lineWidth);
            drawShapes(
                *reader, curve.colorAlpha, stop,
                [&](const TickCompressor::Entry& entry, double opacity) { sprites.draw(entry, opacity); });
        }
    }
    if (stop.stop_requested())
        return {};
    image.setDevicePixelRatio(devicePixelRatio);
    return image;
}

void CurveRenderer::paintVector(QPainter& painter, const CurveSnapshot& curve, const XAxis& axisX,
                                const XAxis& axisY, const std::stop_token& stop) {
    const std::unique_ptr<XAxis> pointsX = deviceAxis(axisX, 1);
    const std::unique_ptr<XAxis> pointsY = deviceAxis(axisY, 1);
    const Progress noProgress;
    const auto reader = std::make_unique<CurvePixelReader>(curve, *pointsX, *pointsY, 1, stop, noProgress);
    if (!reader->hasColumns() || !isVisible(curve.colorAlpha))
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (curve.lineWidth >= 1) {
        QPen pen = outlinePen(curve.color, curve.colorAlpha, curve.lineWidth);
        pen.setJoinStyle(Qt::BevelJoin);
        VectorStrokes strokes(painter, pointsX->pixelLength(), pointsY->pixelLength(), pen);
        LineDrawing(strokes, stop).run(*reader, *pointsX, *pointsY);
    } else if (reader->ticksNeeded()) {
        readShapes(*reader);
    }
    const double penWidth = std::max(1, curve.lineWidth);
    drawShapes(*reader, curve.colorAlpha, stop, [&](const TickCompressor::Entry& entry, double opacity) {
        drawShape(painter, *curve.ticksShape, entry, pointsY->pixelLength(),
                  outlinePen(curve.color, opacity, penWidth));
    });
    painter.restore();
}
