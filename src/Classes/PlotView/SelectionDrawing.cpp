// Draws a dashed rectangle, bands along one axis, or two lines.
#include "Classes/PlotView/SelectionDrawing.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/PlotView/PlotCanvas.h"
#include "Classes/PlotView/PlotOverlay.h"
#include "Classes/PlotView/PlotStyles.h"
#include "Core/ClampToInt.h"

using namespace Qt::StringLiterals;

namespace PlotDrawing {
namespace {

constexpr double selectionDash = 3;

struct Extent {
    double start;
    double length;
};

Extent extentOf(const AxisInView& view, double origin, double size) {
    const XAxis& axis = view.axis;
    return {clampToInt(axis.valueToPixel(origin)) + view.margin + 0.5,
            static_cast<double>(clampToInt(size * axis.pixelLength() / (axis.maxValue() - axis.minValue())))};
}

} // namespace

void drawSelection(PlotCanvas& canvas, const PlotLayout& layout, const XAxis& axisX, const XAxis& axisY,
                   const PlotSelection& selection, const PlotStyles& styles) {
    if (selection.isEmpty())
        return;
    const auto [left, width] =
        extentOf(AxisInView::x(axisX, layout), selection.origin.x(), selection.width());
    const auto [bottom, height] =
        extentOf(AxisInView::y(axisY, layout), selection.origin.y(), selection.height());
    const QRectF rect = QRectF(left, bottom, width, height).normalized();
    const QColor color = styles.color(u"SelectionColor"_s);
    canvas.save();
    canvas.clip(layout.plotRect());
    canvas.line(rect.topLeft(), rect.topRight(), selectionDash, color);
    canvas.line(rect.bottomLeft(), rect.bottomRight(), selectionDash, color);
    canvas.line(rect.topLeft(), rect.bottomLeft(), selectionDash, color);
    canvas.line(rect.topRight(), rect.bottomRight(), selectionDash, color);
    canvas.restore();
}

void drawCrossHair(PlotCanvas& canvas, const PlotLayout& layout, QPointF pixel, const PlotStyles& styles) {
    constexpr double clear = 3;
    constexpr double arm = 9;
    canvas.save();
    canvas.clip(layout.plotRect());
    for (const double start : {-clear - arm, clear + 1}) {
        const QRectF across(pixel.x() + start, pixel.y(), arm, 1);
        const QRectF along(pixel.x(), pixel.y() + start, 1, arm);
        for (const QRectF& bar : {across, along}) {
            canvas.fillRect(bar.adjusted(-1, -1, 1, 1), styles.color(u"BackgroundColor"_s));
            canvas.fillRect(bar, styles.color(u"SelectionColor"_s));
        }
    }
    canvas.restore();
}

} // namespace PlotDrawing
