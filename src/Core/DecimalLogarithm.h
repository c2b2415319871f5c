// The decimal logarithm of many values at once: a curve on a logarithmic axis takes one for every row.
#pragma once

#include <span>

/// log10 of any double. Exact at the powers of ten that are normal numbers; elsewhere within 2 units in the
/// last place, and within 0.51 where the result is beyond +-0.1. Minus infinity at 0, NaN below 0 and of NaN.
double decimalLogarithm(double value);

/// `decimalLogarithm` of each of `values`, bit for bit, to `logarithms`, which must be as long and lie
/// elsewhere. Fastest where all are normal and above 0.
void decimalLogarithms(std::span<const double> values, std::span<double> logarithms);
