// What stands in a table for a value that is not there.
#pragma once

#include <limits>

constexpr double missing = std::numeric_limits<double>::quiet_NaN();
