// Logarithmic scales: their transforms, the labels of their decades, and where their marks stand.
#pragma once

#include "Classes/Axes/XAxisTick.h"

#include <cstddef>
#include <span>

/// From a value to the unit that lies evenly along the axis, and back; both ascending.
struct LogTransform {
    double (*toLog)(double value);
    double (*fromLog)(double log);
    /// `toLog` of each of at most `mostAtOnce` values, bit for bit, into as many places elsewhere.
    void (*toLogs)(std::span<const double> values, std::span<double> logs);
    static constexpr std::size_t mostAtOnce = 512;
};

/// Decades: log10(v) and 10^t. Values at or below 0 become minus infinity or NaN.
extern const LogTransform logTransform;

/// Decades of either sign from 10 and -10 on, +-log10(|v|); between them v / 10, so that every value has a
/// place. Continuous: +-10 becomes +-1.
extern const LogTransform pseudoLogTransform;

/// A range in transformed units and its scale.
struct LogSpan {
    double minLog = 0;
    double maxLog = 0;
    double pixelsPerLog = 0; ///< pixels a transformed unit, which is a decade
};

/// "10" with k raised; +10 or -10, by the sign of k, with |k| raised.
AttributedLabel logDecadeLabel(int k);
AttributedLabel pseudoLogDecadeLabel(int k);

/// The marks of a scale: each decade with nine minor marks where decades are more than 50 pixels wide, else
/// every so many decades. Some lie outside the span. Strictly ascending, a few thousand at most whatever the
/// span; null where it is not finite, not ascending, or has no pixels.
XAxisTicks makeLogTicks(const LogSpan& span);
/// The same for the pseudo-log transform; wide decades have linear marks between -10 and 10, made only
/// where the span shows them.
XAxisTicks makePseudoLogTicks(const LogSpan& span);
