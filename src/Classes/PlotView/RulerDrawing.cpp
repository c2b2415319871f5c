// Draws line, guides, intervals and cards in view coordinates.
#include "Classes/PlotView/RulerDrawing.h"

#include "Classes/Axes/XTimeAxis.h"
#include "Classes/PlotView/PlotCanvas.h"
#include "Classes/PlotView/PlotOverlay.h"
#include "Classes/PlotView/PlotStyles.h"
#include "Core/NumberText.h"

#include <QTransform>

#include <algorithm>
#include <cmath>
#include <typeinfo>

using namespace Qt::StringLiterals;

namespace PlotDrawing {
namespace {

constexpr double dash = 4;
constexpr double ruler_axis_line_width = 2;
constexpr double degreesPerRadian = 180 / 3.14159265358979323846;

// One axis's part of the ruler, in view coordinates along it.
struct Span {
    AxisInView view;
    double start; ///< on a pixel's centre
    double delta;

    double end() const { return start + delta; }
    double center() const { return start + delta / 2; }
};

Span spanOf(const AxisInView& view, double origin, double end) {
    const double pixel = view.axis.valueToPixel(origin);
    return {view, std::round(pixel) + view.margin + 0.5, view.axis.valueToPixel(end) - pixel};
}

// A card keeps its colours in every style. `place` is the lower left corner of its outline.
void drawCard(PlotCanvas& canvas, QPointF place, const QString& text, const TextMeasure& measure) {
    const AttributedLabel label = plainLabel(text);
    const QSizeF size = measure.size(label, TextRole::TickLabel);
    const QRectF bounds = rulerTextBounds(size);
    const QRectF card(place, bounds.size() + QSizeF(1, 1)); // its outline runs on pixel centres
    canvas.fillRect(card, Qt::white);
    canvas.strokeRect(card, QColor(0x80, 0x80, 0x80));
    canvas.text({place - bounds.topLeft(), size}, label, TextRole::TickLabel, Qt::black);
}

void drawInterval(PlotCanvas& canvas, const Span& span, const QRectF& plot, const QColor& color) {
    const QRectF bar =
        span.view.rect(span.start, span.view.crossMargin, span.delta, ruler_axis_line_width).normalized();
    canvas.fillRect(bar.intersected(plot), color);
}

// Beside the axis, centred on its interval as far as the plot allows.
void drawIntervalLabel(PlotCanvas& canvas, const Span& span, const QString& text,
                       const TextMeasure& measure) {
    const QRectF bounds = rulerTextBounds(measure.size(plainLabel(text), TextRole::TickLabel));
    const double length = span.view.direction == Qt::Horizontal ? bounds.width() : bounds.height();
    const double least = ruler_axis_line_width + span.view.margin + tick_label_spacing;
    const double most = span.view.edge - length - tick_label_spacing;
    const double along = std::min(std::max(std::floor(span.center() - length / 2), least), most);
    drawCard(canvas, span.view.point(along, span.view.crossMargin + tick_label_spacing), text, measure);
}

// How far a rectangle must go to lie within another one.
QPointF wayInto(const QRectF& room, const QRectF& rect) {
    const auto way = [](double start, double end, double roomStart, double roomEnd) {
        return start < roomStart ? roomStart - start : std::min(0.0, roomEnd - end);
    };
    return {way(rect.left(), rect.right(), room.left(), room.right()),
            way(rect.top(), rect.bottom(), room.top(), room.bottom())};
}

void drawDistance(PlotCanvas& canvas, const Span& x, const Span& y, const QRectF& plot, const QString& text,
                  const TextMeasure& measure) {
    // From left to right, so that the text is upright.
    const bool reversed = x.delta < 0;
    const QPointF start = reversed ? QPointF(x.end(), y.end()) : QPointF(x.start, y.start);
    const double dx = reversed ? -x.delta : x.delta;
    const double dy = reversed ? -y.delta : y.delta;
    const double degrees = std::atan2(dy, dx) * degreesPerRadian;

    const QRectF bounds = rulerTextBounds(measure.size(plainLabel(text), TextRole::TickLabel));
    const QPointF place = start + QPointF(std::floor((std::hypot(dx, dy) - bounds.width()) / 2),
                                          static_cast<double>(tick_label_spacing));
    const QRectF card(place, bounds.size() + QSizeF(1, 1));
    const QRectF turned = QTransform::fromTranslate(start.x(), start.y())
                              .rotate(degrees)
                              .translate(-start.x(), -start.y())
                              .mapRect(card);
    const QPointF shift = wayInto(plot, turned);
    canvas.save();
    canvas.rotate(start + shift, degrees);
    drawCard(canvas, place + shift, text, measure);
    canvas.restore();
}

bool measuresAlike(const XAxis& axisX, const XAxis& axisY) {
    return typeid(axisX) == typeid(axisY) && dynamic_cast<const XTimeAxis*>(&axisX) == nullptr;
}

} // namespace

QRectF rulerTextBounds(QSizeF textSize) {
    constexpr int below = tick_label_spacing / 2;
    return {-static_cast<double>(tick_label_spacing), -static_cast<double>(below),
            std::ceil(textSize.width()) + 2 * tick_label_spacing,
            std::ceil(textSize.height()) + tick_label_spacing};
}

void drawRuler(PlotCanvas& canvas, const PlotLayout& layout, const XAxis& axisX, const XAxis& axisY,
               const PlotSelection& selection, const PlotStyles& styles, const TextMeasure& measure) {
    if (selection.isEmpty())
        return;
    const Span x = spanOf(AxisInView::x(axisX, layout), selection.origin.x(), selection.end.x());
    const Span y = spanOf(AxisInView::y(axisY, layout), selection.origin.y(), selection.end.y());
    if (!std::isfinite(x.delta) || !std::isfinite(y.delta))
        return;
    const QRectF plot = layout.plotRect();
    const QColor color = styles.color(u"SelectionColor"_s);
    canvas.save();
    canvas.clip(plot);
    canvas.line({x.start, y.start}, {x.end(), y.end()}, dash, color);
    for (const double at : {x.start, x.end()})
        canvas.line({at, plot.top()}, {at, plot.bottom()}, dash, color);
    for (const double at : {y.start, y.end()})
        canvas.line({plot.left(), at}, {plot.right(), at}, dash, color);
    drawInterval(canvas, x, plot, color);
    drawInterval(canvas, y, plot, color);
    drawIntervalLabel(canvas, x, axisX.humanReadableIntervalEnd(selection.origin.x(), selection.end.x()),
                      measure);
    drawIntervalLabel(canvas, y, axisY.humanReadableIntervalEnd(selection.origin.y(), selection.end.y()),
                      measure);
    if (measuresAlike(axisX, axisY)) {
        const int precision = std::min(axisX.pixelPrecision(), axisY.pixelPrecision());
        const std::string distance =
            stringFromDoubleWithPrecision(std::hypot(selection.width(), selection.height()), precision);
        drawDistance(canvas, x, y, plot, QString::fromStdString(distance), measure);
    }
    canvas.restore();
}

} // namespace PlotDrawing
