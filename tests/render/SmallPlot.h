// The layout of a small plot, for tests of what is drawn into it and done with it.
#pragma once

#include "Classes/PlotView/PlotLayout.h"

namespace support {

/// 300 by 200 points of plot, 29 of labels on the left, 36 below.
inline const PlotLayout smallPlot{{336, 229}, 0, 0, 29, 36, 300, 200, 229, 336};

} // namespace support
