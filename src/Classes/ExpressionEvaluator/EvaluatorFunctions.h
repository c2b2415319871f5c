// The functions that expressions have beyond those of the parser library: signals (mean, delta, integrate,
// lowpass, highpass, fir, percentile, mod) and time (time, year, month, dayofmonth, hour, minute, second,
// dayofweek, dayofyear, mktimestamp).
#pragma once

namespace mup {
class ParserX;
}

/// Registers new function objects with `parser`: each occurrence in an expression keeps its own state from
/// row to row. Also limits the arrays and factorials of the library.
void defineEvaluatorFunctions(mup::ParserX& parser);
