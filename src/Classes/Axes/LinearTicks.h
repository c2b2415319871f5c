// Where a linear scale has its marks: a pure function of the range and of the room there is.
#pragma once

#include "Classes/Axes/XAxisTick.h"

/// The marks and what they were derived from.
struct LinearTicks {
    double rangeStep = 0; ///< the power of ten at or below the range's width
    double niceValue = 0; ///< the first major mark, at or below the range's start
    double tickStep = 0;  ///< between major marks
    int exponent = 0;     ///< of ten: the precision that the labels were printed with
    XAxisTicks ticks;     ///< null when the range has no marks; empty when it is shorter than one step
};

/// Where the marks are counted from.
enum class TickAnchor {
    Range, ///< zero when it lies within the range, else the power of ten below its start
    Zero,  ///< zero always: the marks stay where they are while the range moves
};

/// Major marks at 1, 2 or 5 times a power of ten, from the last at or below `min` to one step past `max`,
/// each followed by its minor marks; strictly ascending. `spanOf150Pixels` is the value width of 150 pixels:
/// major marks stand 60 to 150 pixels apart. A mark is at zero whenever zero lies within the range. No marks
/// for a range that is not finite or not ascending, for a step that would not change the values it is added
/// to, and where there would be more than 10,000 major marks.
LinearTicks makeLinearTicks(double min, double max, double spanOf150Pixels,
                            TickAnchor anchor = TickAnchor::Range);

/// The power of ten at or below `value`, 10^floor(log10(value)).
double powerOfTenBelow(double value);
