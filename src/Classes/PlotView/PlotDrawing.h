// The parts of a plot, drawn one by one on a canvas: everything but the curves.
#pragma once

#include "Classes/PlotView/PlotLayout.h"
#include "Classes/PlotView/PlotText.h"

#include <QPointF>
#include <QRectF>

#include <optional>

class PlotCanvas;
class PlotStyles;
class XAxis;

/// One axis as it lies in the view. What is drawn for both axes is written once, over this.
struct AxisInView {
    const XAxis& axis;
    Qt::Orientation direction; ///< horizontal: the x axis
    int margin;                ///< view coordinate of pixel 0, along the axis
    int edge;                  ///< view coordinate of the plot rectangle's end, along the axis
    int crossMargin;           ///< the plot rectangle's start across the axis
    int crossLength;           ///< and its length there

    static AxisInView x(const XAxis& axis, const PlotLayout& layout);
    static AxisInView y(const XAxis& axis, const PlotLayout& layout);

    /// The point at these view coordinates along and across the axis.
    QPointF point(double along, double across) const;
    QRectF rect(double along, double across, double length, double width) const;
    Qt::Orientation crossDirection() const;
};

namespace PlotDrawing {

void drawBackground(PlotCanvas& canvas, const PlotLayout& layout, const PlotStyles& styles);
void drawFrame(PlotCanvas& canvas, const PlotLayout& layout, const PlotStyles& styles);

/// Lines across the plot at the marks of one level that lie strictly within it: 0 the grid, 1 the secondary
/// grid.
void drawGridLines(PlotCanvas& canvas, const AxisInView& view, int level, const PlotStyles& styles);

/// The horizontal line of y = 0 and the vertical line of x = 0.
void drawOrigins(PlotCanvas& canvas, const PlotLayout& layout, const XAxis& axisX, const XAxis& axisY,
                 bool showOriginX, bool showOriginY, const PlotStyles& styles);

/// Labels of the major marks, and the axis's coloured bands.
void drawAxis(PlotCanvas& canvas, const AxisInView& view, const PlotStyles& styles,
              const TextMeasure& measure);

/// Covers what lies outside `kept` within `area` with the background: for devices that do not clip.
void coverAround(PlotCanvas& canvas, const QRectF& area, const QRectF& kept, const PlotStyles& styles);

struct Titles {
    std::optional<QString> plotArea;
    std::optional<QString> axisX;
    std::optional<QString> axisY;
};

/// The titles inside the plot view, over whatever lies there; absent and empty ones are left out.
void drawAxisTitles(PlotCanvas& canvas, const PlotLayout& layout, const Titles& titles,
                    const PlotStyles& styles, const TextMeasure& measure);

/// A title centred in a room of its own; `upwards` reads from bottom to top.
void drawTitleInRoom(PlotCanvas& canvas, const QRectF& room, const QString& title, TextRole role,
                     bool upwards, const PlotStyles& styles, const TextMeasure& measure);

} // namespace PlotDrawing
