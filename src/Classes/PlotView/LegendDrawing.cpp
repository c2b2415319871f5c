// Draws samples and titles row by row.
#include "Classes/PlotView/LegendDrawing.h"

#include "Classes/PlotView/PlotCanvas.h"
#include "Classes/PlotView/PlotLayout.h"
#include "Classes/PlotView/PointSprites.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace LegendDrawing {
namespace {

// Faint curves still show.
constexpr double leastOpacity = 0.45;
constexpr int sizeOfExpressions = 4;
constexpr int greatestSize = 10;
constexpr float pointY = 10.5F;
constexpr float pointsX[] = {15.5F, 45.5F};

QPen penOf(const XCurve& curve) {
    return outlinePen(curve.color(), std::max<double>(curve.colorAlpha(), leastOpacity),
                      std::max(1, curve.lineWidth()));
}

/// The bar that stands for the line, within the sample.
QRectF lineBar(int lineWidth) {
    const int inset = std::max(0, lineWidth) / 3;
    const double bottom = std::round(rowHeight / 2 - 0.5 * lineWidth);
    return QRectF(inset, bottom, std::max(0.0, sampleWidth - 2 * inset), lineWidth)
        .intersected(QRectF(0, 0, sampleWidth, rowHeight));
}

/// The points' outlines in painter coordinates of the sample, kept inside it: some devices do not clip.
QPainterPath pointsPath(const XCurve& curve, const QPen& pen) {
    const XGraphPointDescription* shape = curve.ticksShape();
    QPainterPath path;
    const int size = curve.pointsize_uses_expression() ? sizeOfExpressions : curve.ticksSize();
    for (const float x : pointsX)
        shape->drawCallback()(path, x, static_cast<float>(rowHeight) - pointY,
                              static_cast<float>(std::min(size, greatestSize)));
    if (!shape->isFilled()) {
        path = QPainterPathStroker(pen).createStroke(path);
    }
    path.setFillRule(Qt::WindingFill);
    QPainterPath sample;
    sample.addRect(0, 0, sampleWidth, rowHeight);
    return sample.contains(path.boundingRect()) ? path : path.intersected(sample);
}

} // namespace

bool isListed(const XCurve& curve) {
    return curve.isVisible() && !curve.title().isEmpty();
}

QString shownTitle(const QString& title) {
    QString line = title;
    line.replace(u'\n', u' ');
    return QFontMetricsF(plotFont(TextRole::TickLabel)).elidedText(line, Qt::ElideMiddle, longestTitle);
}

double rowWidth(const QString& title, const TextMeasure& measure) {
    return titleX + std::ceil(titleRect({}, title, measure).width()) + spacing;
}

QRectF titleRect(QPointF row, const QString& title, const TextMeasure& measure) {
    const QSizeF size = measure.size(plainLabel(shownTitle(title)), TextRole::TickLabel);
    return {row + QPointF(titleX, std::floor((rowHeight - size.height()) / 2)), size};
}

QSizeF boxSize(const QList<XCurveHandle>& curves, const TextMeasure& measure) {
    QSizeF size(0, spacing);
    for (const XCurveHandle& curve : curves) {
        if (isListed(*curve))
            size = {std::max(size.width(), rowWidth(curve->title(), measure)),
                    size.height() + rowHeight + spacing};
    }
    return size;
}

QPointF placeInPlot(QSizeF box, const LegendAnchor& anchor, const PlotLayout& layout, QPointF present) {
    const LegendFrame frame =
        LegendPlacement::located({present.x(), present.y(), box.width(), box.height()},
                                 anchor.alignment == 0 ? LegendPlacement::created : anchor,
                                 layout.bounds.width(), layout.bounds.height());
    const QRectF plot = layout.plotRect();
    const LegendFrame kept =
        LegendPlacement::keptWithin(frame, {plot.x(), plot.y(), plot.width(), plot.height()});
    return {std::floor(kept.x), std::floor(kept.y)};
}

void drawBox(PlotCanvas& canvas, const QRectF& box) {
    canvas.fillRect(box, Qt::white);
    canvas.strokeRect(box, Qt::black);
}

void drawSample(PlotCanvas& canvas, QPointF corner, const XCurve& curve) {
    const QPen pen = penOf(curve);
    const QColor color = pen.color();
    const QRectF bar = lineBar(curve.lineWidth()).translated(corner);
    if (curve.lineWidth() == 1)
        canvas.hairline(bar.topLeft(), bar.width(), Qt::Horizontal, color); // never thinner than a pixel
    else if (!bar.isEmpty())
        canvas.fillRect(bar, color);
    if (curve.ticksShape() == nullptr || curve.ticksShape()->drawCallback() == nullptr)
        return;
    canvas.group({corner, QSizeF(sampleWidth, rowHeight)}, 1,
                 [path = pointsPath(curve, pen), color](QPainter& painter) {
                     painter.setRenderHint(QPainter::Antialiasing, true);
                     painter.fillPath(path, color);
                 });
}

void drawTitle(PlotCanvas& canvas, QPointF row, const QString& title, const TextMeasure& measure) {
    canvas.text(titleRect(row, title, measure), plainLabel(shownTitle(title)), TextRole::TickLabel,
                Qt::black);
}

void drawLegend(PlotCanvas& canvas, QPointF origin, const QList<XCurveHandle>& curves,
                const TextMeasure& measure) {
    const QSizeF size = boxSize(curves, measure);
    if (size.width() <= 0)
        return;
    drawBox(canvas, {origin, size});
    QPointF row = origin + QPointF(0, size.height());
    for (const XCurveHandle& curve : curves) {
        if (!isListed(*curve))
            continue;
        row.ry() -= rowHeight + spacing;
        drawSample(canvas, row + QPointF(spacing, 0), *curve);
        drawTitle(canvas, row, curve->title(), measure);
    }
}

} // namespace LegendDrawing
