// The rectangle that is being selected, and the cross-hair that keys move.
#pragma once

#include "Classes/PlotView/PlotDrawing.h"

struct PlotSelection;

namespace PlotDrawing {

/// Dashed, and clipped to the plot. Kept: its size takes the axes to be linear, so on a logarithmic axis its
/// far edge is not under the mouse.
void drawSelection(PlotCanvas& canvas, const PlotLayout& layout, const XAxis& axisX, const XAxis& axisY,
                   const PlotSelection& selection, const PlotStyles& styles);

/// Four arms around a pixel that stays clear.
void drawCrossHair(PlotCanvas& canvas, const PlotLayout& layout, QPointF pixel, const PlotStyles& styles);

} // namespace PlotDrawing
