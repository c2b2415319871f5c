// The legend as it is drawn: on the screen by its view, in pictures without one.
#pragma once

#include "Classes/PlotModel/XCurve.h"
#include "Core/LegendPlacement.h"

#include <QRectF>
#include <QSizeF>
#include <QString>

class PlotCanvas;
struct PlotLayout;
class TextMeasure;

/// Points, y upwards. Titles that are longer than `longestTitle` are shortened in the middle.
namespace LegendDrawing {

inline constexpr double spacing = 10; ///< around the box, between rows, and between sample and title
inline constexpr double rowHeight = 20;
inline constexpr double sampleWidth = 60;
inline constexpr double titleX = spacing + sampleWidth + spacing;
inline constexpr double longestTitle = 320;

/// Whether the curve has a row: hidden curves and those without a title have none.
bool isListed(const XCurve& curve);

QString shownTitle(const QString& title);
/// Width of a row with this title.
double rowWidth(const QString& title, const TextMeasure& measure);
/// Where the title lies in a row whose lower left corner is at `row`.
QRectF titleRect(QPointF row, const QString& title, const TextMeasure& measure);

/// The box of those curves; (0, 10) when none is listed.
QSizeF boxSize(const QList<XCurveHandle>& curves, const TextMeasure& measure);

void drawBox(PlotCanvas& canvas, const QRectF& box);
/// Line and points of a curve, `sampleWidth` x `rowHeight` at that corner.
void drawSample(PlotCanvas& canvas, QPointF corner, const XCurve& curve);
void drawTitle(PlotCanvas& canvas, QPointF row, const QString& title, const TextMeasure& measure);

/// The lower left corner of a box in the plot view: at its anchor, but not over the axis labels as long as
/// there is room inside the plot frame. An alignment of 0 is where a legend is created; a direction of which
/// the alignment says nothing is taken from `present`, the corner the box has.
QPointF placeInPlot(QSizeF box, const LegendAnchor& anchor, const PlotLayout& layout, QPointF present = {});

/// Box and rows, the first curve at the top. `origin` is the box's lower left corner.
void drawLegend(PlotCanvas& canvas, QPointF origin, const QList<XCurveHandle>& curves,
                const TextMeasure& measure);

} // namespace LegendDrawing
