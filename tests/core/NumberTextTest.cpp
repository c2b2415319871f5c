// Numbers as text at a precision.
#include "Core/NumberText.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

struct NumberRow {
    const char* name;
    double value;
    int precision;
    std::string text;
};

TEST(NumberText, showsDecimalsDownToThePrecisionWithoutTrailingZeros) {
    const double inf = std::numeric_limits<double>::infinity();
    const int least = std::numeric_limits<int>::min();
    const NumberRow rows[] = {
        {"fewer decimals than asked for", 1.25, -3, "1.25"},
        {"a whole number loses its point", 3.0, -2, "3"},
        {"a zero in the middle stays", 10.05, -4, "10.05"},
        {"zeros of a number without a point stay", 1200, 0, "1200"},
        {"a positive precision does not round to tens", 1234.4, 2, "1234"},
        {"rounded, halves to even", 2.5, 0, "2"},
        {"rounded at the last decimal", 0.26, -1, "0.3"},
        {"zero", 0.0, -3, "0"},
        {"negative zero", -0.0, 0, "0"},
        {"rounded to negative zero with decimals", -0.001, -2, "0"},
        {"rounded to negative zero without decimals", -0.4, 1, "0"},
        {"a small negative number keeps its sign", -0.05, -2, "-0.05"},
        {"infinite", -inf, -2, "-inf"},
        {"not a number, whatever its sign", -std::numeric_limits<double>::quiet_NaN(), 0, "nan"},
        {"the least precision there is", 0.5, least, "0.5"},
        {"cut at 49 characters", 1e60, 0, "9999999999999999493871352970740188669636450110134"},
    };
    for (const NumberRow& row : rows)
        EXPECT_EQ(stringFromDoubleWithPrecision(row.value, row.precision), row.text) << row.name;
    EXPECT_EQ(stringFromDoubleWithPrecision(-1.7976931348623157e308, least).size(), 49U);
}

} // namespace
