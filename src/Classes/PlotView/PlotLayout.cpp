// Measures the labels and gives the rest to the plot.
#include "Classes/PlotView/PlotLayout.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/PlotView/PlotText.h"
#include "Core/ClampToInt.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

double widestLabel(const XAxis& axis, const TextMeasure& measure) {
    double widest = 0;
    const int step = std::max(1, axis.pixelLength() / 20);
    // 64-bit: the last step may pass the greatest length there is.
    for (qint64 pixel = 0; pixel < axis.pixelLength(); pixel += step) {
        const QString text = axis.humanReadableValue(axis.pixelToValue(static_cast<int>(pixel)));
        widest = std::max(widest, measure.size(plainLabel(text), TextRole::TickLabel).width());
    }
    return widest;
}

} // namespace

PlotLayout calculateMargins(QSizeF bounds, const XAxis& axisX, const XAxis& axisY,
                            const TextMeasure& measure) {
    PlotLayout layout;
    layout.bounds = bounds;

    const int lines = axisX.labelLines();
    if (lines > 0) {
        const QString sample = lines > 1 ? u"a\nb"_s : u"a"_s;
        const double height = measure.size(plainLabel(sample), TextRole::TickLabel).height();
        layout.marginBottom = clampToInt(tick_label_spacing + height + tick_height + 5);
    }
    layout.topEdge = clampToInt(bounds.height() - layout.marginTop);
    layout.selfHeight = std::max(0, clampToInt(bounds.height() - layout.marginTop - layout.marginBottom));

    const std::unique_ptr<XAxis> measured = axisY.copy();
    measured->setPixelLength(layout.selfHeight);
    if (layout.selfHeight > 0 && measured->ticks()) {
        const int width = clampToInt(widestLabel(*measured, measure));
        if (width > 0)
            layout.marginLeft = tick_label_spacing + std::min(width, 100'000) + tick_height + 5;
    }
    layout.rightEdge = clampToInt(bounds.width() - layout.marginRight);
    layout.selfWidth = std::max(0, clampToInt(bounds.width() - layout.marginLeft - layout.marginRight));
    return layout;
}
