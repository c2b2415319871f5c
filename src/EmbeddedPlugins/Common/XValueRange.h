// A range of values: the least and the greatest.
#pragma once

#include <limits>

/// A plain pair. NaN in both says that nothing valid was found; as a filter, a bound that is not finite is
/// open.
struct XValueRange {
    double minimum = std::numeric_limits<double>::quiet_NaN();
    double maximum = std::numeric_limits<double>::quiet_NaN();

    bool operator==(const XValueRange&) const = default; // NaN is never equal
};
