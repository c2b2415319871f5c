// The ruler: a line between two points, guides to the axes, and what it measures.
#pragma once

#include "Classes/PlotView/PlotDrawing.h"

struct PlotSelection;

namespace PlotDrawing {

/// The card around a text of that many points, from the text's lower left corner. Whole points.
QRectF rulerTextBounds(QSizeF textSize);

/// The distances along both axes, and, where both count alike and not in time, the straight one along the
/// line, which never reads upside down. All stays within the plot; nothing where a distance is not finite.
void drawRuler(PlotCanvas& canvas, const PlotLayout& layout, const XAxis& axisX, const XAxis& axisY,
               const PlotSelection& selection, const PlotStyles& styles, const TextMeasure& measure);

} // namespace PlotDrawing
