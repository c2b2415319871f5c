// The mark on an axis that follows the mouse, with the value under it.
#pragma once

#include "Classes/PlotView/PlotDrawing.h"

namespace PlotDrawing {

/// The value at the mouse's coordinate along the axis, over a backing that fades out into the labels beside
/// it. Nothing on an axis without marks, or when the mouse is not beside the plot. Stays within `strip`.
void drawMouseTick(PlotCanvas& canvas, const AxisInView& view, const QRectF& strip, double mouse,
                   const PlotStyles& styles, const TextMeasure& measure);

} // namespace PlotDrawing
