// Draws grid, origins, axes and titles, once for both directions.
#include "Classes/PlotView/PlotDrawing.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/PlotView/PlotCanvas.h"
#include "Classes/PlotView/PlotStyles.h"
#include "Core/ClampToInt.h"

#include <algorithm>
#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;

// --- Both axes in one
// ------------------------------------------------------------------------------------------

AxisInView AxisInView::x(const XAxis& axis, const PlotLayout& layout) {
    return {
        axis, Qt::Horizontal, layout.marginLeft, layout.rightEdge, layout.marginBottom, layout.selfHeight};
}

AxisInView AxisInView::y(const XAxis& axis, const PlotLayout& layout) {
    return {axis, Qt::Vertical, layout.marginBottom, layout.topEdge, layout.marginLeft, layout.selfWidth};
}

QPointF AxisInView::point(double along, double across) const {
    return direction == Qt::Horizontal ? QPointF(along, across) : QPointF(across, along);
}

QRectF AxisInView::rect(double along, double across, double length, double width) const {
    return {point(along, across),
            direction == Qt::Horizontal ? QSizeF(length, width) : QSizeF(width, length)};
}

Qt::Orientation AxisInView::crossDirection() const {
    return direction == Qt::Horizontal ? Qt::Vertical : Qt::Horizontal;
}

namespace PlotDrawing {
namespace {

void drawTitle(PlotCanvas& canvas, const QRectF& rect, const QString& title, TextRole role,
               const PlotStyles& styles) {
    canvas.text(rect, plainLabel(title), role, styles.color(u"TitleColor"_s));
}

// A text of `size` whose reading direction is upwards, with its middle at the point.
void drawUpwards(PlotCanvas& canvas, QPointF middle, QSizeF size, const QString& title,
                 const PlotStyles& styles) {
    canvas.save();
    canvas.rotate(middle, 90);
    const QRectF rect(middle - QPointF(size.width() / 2, size.height() / 2), size);
    drawTitle(canvas, rect, title, TextRole::AxisTitle, styles);
    canvas.restore();
}

// The band that a mark lies in, if any; marks and bands are walked together, both ascending.
class BandWalk {
  public:
    explicit BandWalk(const XAxisColorRanges& bands) : m_bands(bands) {}

    const XAxisColorRange* at(double value) {
        while (m_bands && m_next < m_bands->size() && (*m_bands)[m_next].end < value)
            ++m_next;
        if (!m_bands || m_next == m_bands->size())
            return nullptr;
        const XAxisColorRange& band = (*m_bands)[m_next];
        return band.start <= value && value < band.end ? &band : nullptr;
    }

  private:
    const XAxisColorRanges& m_bands;
    std::size_t m_next = 0;
};

// Beside the plot: below its foot for the x axis, left of it for the y axis; on whole points, with its middle
// on the middle of the mark's grid line.
QRectF labelRect(const AxisInView& view, double pixel, QSizeF size) {
    const auto centered = [](double middle, double length) { return std::round(middle - length / 2); };
    const double markMiddle = clampToInt(view.margin + pixel) + 0.5;
    const double outside = view.crossMargin + 5 - tick_height - tick_label_spacing;
    if (view.direction == Qt::Horizontal)
        return {QPointF(centered(markMiddle, size.width()), std::floor(outside - size.height())), size};
    const int middle = clampToInt(outside - size.width() / 2);
    return {QPointF(middle - size.width() / 2, centered(markMiddle, size.height())), size};
}

void drawLabels(PlotCanvas& canvas, const AxisInView& view, const XAxisColorRanges& bands,
                const PlotStyles& styles, const TextMeasure& measure) {
    const XAxisTicks ticks = view.axis.ticks();
    if (!ticks)
        return;
    BandWalk walk(bands);
    double secondLineEnd = std::numeric_limits<double>::lowest();
    for (const XAxisTick& tick : *ticks) {
        if (tick.level != 0)
            continue;
        const XAxisColorRange* band = walk.at(tick.value);
        const double pixel = view.axis.valueToPixel(tick.value + tick.tickTitleOffset);
        if (!(pixel >= 0 && view.margin + pixel < view.edge))
            continue;
        AttributedLabel label =
            tick.attributedTitle ? *tick.attributedTitle : plainLabel(tick.title.value_or(u""_s));
        QRectF rect = labelRect(view, pixel, measure.size(label, TextRole::TickLabel));
        // A second line is wider than the space between marks: it gives way to the one before it.
        if (const qsizetype secondLine = label.text.indexOf(u'\n'); secondLine >= 0) {
            if (view.direction == Qt::Horizontal && rect.left() < secondLineEnd) {
                label = plainLabel(label.text.left(secondLine));
                rect = labelRect(view, pixel, measure.size(label, TextRole::TickLabel));
            } else {
                secondLineEnd = rect.right();
            }
        }
        const bool highlighted = band != nullptr && !tick.attributedTitle;
        canvas.text(rect, label, TextRole::TickLabel,
                    styles.color(highlighted ? band->colorName : u"LabelColor"_s));
    }
}

void drawBands(PlotCanvas& canvas, const AxisInView& view, const XAxisColorRanges& bands,
               const PlotStyles& styles) {
    if (!bands)
        return;
    for (const XAxisColorRange& band : *bands) {
        const double start = std::max<double>(view.margin, view.margin + view.axis.valueToPixel(band.start));
        const double end = std::min<double>(view.edge, view.margin + view.axis.valueToPixel(band.end));
        if (start < end)
            canvas.hairline(view.point(start, view.crossMargin), end - start, view.direction,
                            styles.color(band.colorName));
    }
}

} // namespace

void drawBackground(PlotCanvas& canvas, const PlotLayout& layout, const PlotStyles& styles) {
    canvas.fillRect({QPointF(0, 0), layout.bounds}, styles.color(u"BackgroundColor"_s));
}

void drawFrame(PlotCanvas& canvas, const PlotLayout& layout, const PlotStyles& styles) {
    canvas.strokeRect(layout.plotRect(), styles.color(u"SecondaryGridColor"_s));
}

void drawGridLines(PlotCanvas& canvas, const AxisInView& view, int level, const PlotStyles& styles) {
    const XAxisTicks ticks = view.axis.ticks();
    if (!ticks)
        return;
    const QColor color = styles.color(level == 0 ? u"GridColor"_s : u"SecondaryGridColor"_s);
    for (const XAxisTick& tick : *ticks) {
        if (tick.level != level)
            continue;
        const int along = clampToInt(view.margin + view.axis.valueToPixel(tick.value));
        if (view.margin < along && along < view.edge)
            canvas.hairline(view.point(along, view.crossMargin), view.crossLength, view.crossDirection(),
                            color);
    }
}

void drawOrigins(PlotCanvas& canvas, const PlotLayout& layout, const XAxis& axisX, const XAxis& axisY,
                 bool showOriginX, bool showOriginY, const PlotStyles& styles) {
    const QColor color = styles.color(u"AxisColor"_s);
    double y0 = axisY.valueToPixel(0);
    const double x0 = axisX.valueToPixel(0);
    if (showOriginX) {
        y0 += layout.marginBottom;
        if (layout.marginBottom < y0 && y0 < layout.topEdge)
            canvas.hairline({static_cast<double>(layout.marginLeft), static_cast<double>(clampToInt(y0))},
                            layout.selfWidth, Qt::Horizontal, color);
    }
    // Kept: the test at the right-hand side looks at y0, so the vertical line goes when y = 0 lies that far
    // up.
    if (showOriginY && layout.marginLeft < x0 + layout.marginLeft && y0 < layout.rightEdge)
        canvas.hairline({static_cast<double>(clampToInt(x0 + layout.marginLeft)),
                         static_cast<double>(layout.marginBottom)},
                        layout.selfHeight, Qt::Vertical, color);
}

void drawAxis(PlotCanvas& canvas, const AxisInView& view, const PlotStyles& styles,
              const TextMeasure& measure) {
    const XAxisColorRanges bands = view.axis.colors();
    drawLabels(canvas, view, bands, styles, measure);
    drawBands(canvas, view, bands, styles);
}

void coverAround(PlotCanvas& canvas, const QRectF& area, const QRectF& kept, const PlotStyles& styles) {
    // Top and bottom count upwards here: `bottom()` of a rectangle is its upper edge.
    const QRectF strips[] = {{area.topLeft(), QPointF(area.right(), kept.top())},
                             {QPointF(area.left(), kept.bottom()), area.bottomRight()},
                             {QPointF(area.left(), kept.top()), kept.bottomLeft()},
                             {kept.topRight(), QPointF(area.right(), kept.bottom())}};
    for (const QRectF& strip : strips)
        if (!strip.isEmpty())
            canvas.fillRect(strip, styles.color(u"BackgroundColor"_s));
}

void drawAxisTitles(PlotCanvas& canvas, const PlotLayout& layout, const Titles& titles,
                    const PlotStyles& styles, const TextMeasure& measure) {
    const QRectF plot = layout.plotRect();
    if (titles.plotArea && !titles.plotArea->isEmpty()) {
        const QSizeF size = measure.size(plainLabel(*titles.plotArea), TextRole::PlotTitle);
        drawTitle(canvas,
                  {{plot.center().x() - size.width() / 2, layout.bounds.height() - size.height()}, size},
                  *titles.plotArea, TextRole::PlotTitle, styles);
    }
    if (titles.axisX && !titles.axisX->isEmpty()) {
        const QSizeF size = measure.size(plainLabel(*titles.axisX), TextRole::AxisTitle);
        drawTitle(canvas, {{plot.center().x() - size.width() / 2, 3}, size}, *titles.axisX,
                  TextRole::AxisTitle, styles);
    }
    if (titles.axisY && !titles.axisY->isEmpty()) {
        const QSizeF size = measure.size(plainLabel(*titles.axisY), TextRole::AxisTitle);
        drawUpwards(canvas, {3 + size.height() / 2, plot.center().y()}, size, *titles.axisY, styles);
    }
}

void drawTitleInRoom(PlotCanvas& canvas, const QRectF& room, const QString& title, TextRole role,
                     bool upwards, const PlotStyles& styles, const TextMeasure& measure) {
    if (title.isEmpty() || room.isEmpty())
        return;
    const QSizeF size = measure.size(plainLabel(title), role);
    if (upwards)
        drawUpwards(canvas, room.center(), size, title, styles);
    else
        drawTitle(canvas, {room.center() - QPointF(size.width() / 2, size.height() / 2), size}, title, role,
                  styles);
}

} // namespace PlotDrawing
