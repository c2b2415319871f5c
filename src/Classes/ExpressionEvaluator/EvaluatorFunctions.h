// The functions that expressions have beyond those of the parser library: signals (mean, delta, integrate,
// lowpass, highpass, fir, percentile, mod) and time (time, year, month, dayofmonth, hour, minute, second,
// dayofweek, dayofyear, mktimestamp).
#pragma once

namespace mup {
class ParserX;
}

/// Registers new function objects with `parser`. Each occurrence in an expression keeps its own state from
/// row to row. Also puts a limit on the arrays that zeros, ones and eye make.
void defineEvaluatorFunctions(mup::ParserX& parser);
