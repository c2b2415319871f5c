// Places the mark and its label within the axis.
#include "Classes/PlotView/MouseTicks.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/PlotView/PlotCanvas.h"
#include "Classes/PlotView/PlotStyles.h"
#include "Core/ClampToInt.h"

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace PlotDrawing {
namespace {

// Around the mouse, but clear of the axis's ends.
double labelStart(const AxisInView& view, double mouse, double length, int inset) {
    double start = clampToInt(mouse) - std::round(length / 2);
    start = std::max<double>(start, view.margin + inset);
    return start + length > view.edge - inset ? view.edge - length - inset : start;
}

} // namespace

void drawMouseTick(PlotCanvas& canvas, const AxisInView& view, const QRectF& strip, double mouse,
                   const PlotStyles& styles, const TextMeasure& measure) {
    if (!view.axis.ticks() || !(view.margin <= mouse && mouse <= view.edge))
        return;
    const bool horizontal = view.direction == Qt::Horizontal;
    const AttributedLabel label = plainLabel(
        view.axis.humanReadableValue(view.axis.pixelToValue(clampToInt(std::round(mouse) - view.margin))));
    const QSizeF size = measure.size(label, TextRole::TickLabel);
    const double length = horizontal ? size.width() : size.height();
    const double width = horizontal ? size.height() : size.width();
    const double pad = styles.number(horizontal ? u"MouseTickPaddingSizeX"_s : u"MouseTickPaddingSizeY"_s);
    const double start = labelStart(view, mouse, length, clampToInt(0.2 * pad));
    // Labels stand off the plot on either axis; the y axis's backing covers all that is left of it.
    const double across = horizontal
                              ? clampToInt(view.crossMargin + 5 - width - tick_height - tick_label_spacing)
                              : clampToInt(view.crossMargin - width - 5 - tick_height);
    const double backStart = horizontal ? across : 0;
    const double backWidth = horizontal ? width : view.crossMargin;
    const QGradientStops fade = styles.gradient(u"MouseTickPaddingGradient"_s);

    canvas.save();
    canvas.clip(strip);
    canvas.fillRect(view.rect(start, backStart, length, backWidth), styles.color(u"BackgroundColor"_s));
    canvas.gradient(view.rect(start - pad, backStart, pad, backWidth), fade, horizontal ? 180 : 270);
    canvas.gradient(view.rect(start + length, backStart, pad, backWidth), fade, horizontal ? 0 : 90);
    canvas.hairline(view.point(std::round(mouse), view.crossMargin - tick_height), 2.0 * tick_height,
                    view.crossDirection(), styles.color(u"TickColor"_s));
    canvas.text(view.rect(start, across, length, width), label, TextRole::TickLabel,
                styles.color(u"LabelColor"_s));
    canvas.restore();
}

} // namespace PlotDrawing
