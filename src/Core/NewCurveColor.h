// The colour of a new curve: as far as possible from the colours in use.
#pragma once

#include "Core/RgbaColor.h"

#include <span>

/// Orange without curves; else the hue in the middle of the widest gap between the hues of `curveColors` on
/// the colour circle, the first of equal gaps.
RgbaColor findBestColor(std::span<const RgbaColor> curveColors);
