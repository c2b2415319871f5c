// The decimal logarithm against the C library's in long double, one by one and many at once.
#include "Core/DecimalLogarithm.h"

#include "support/Numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using Limits = std::numeric_limits<double>;

double powerOfTen(int exponent) {
    return std::stod("1e" + std::to_string(exponent));
}

TEST(DecimalLogarithm, IsExactAtPowersOfTenAndCloseEverywhere) {
    std::mt19937_64 random(3);
    std::uniform_real_distribution<double> share(-1, 1), decade(-15, 0), usual(-3, 9);
    std::vector<double> values = {Limits::min(), Limits::max(), Limits::denorm_min(), std::sqrt(2),
                                  1 / 512.0};
    for (int exponent = -307; exponent <= 308; ++exponent) {
        const double power = powerOfTen(exponent);
        ASSERT_EQ(decimalLogarithm(power), exponent);
        for (const double edge : {power, std::ldexp(1, exponent)})
            values.insert(values.end(), {std::nextafter(edge, 0), edge, std::nextafter(edge, support::inf)});
    }
    for (int step = 0; step <= 1024; ++step) // where the table's entries begin and end
        for (const double edge : {1 + step / 512.0, 4 + step / 128.0})
            values.insert(values.end(), {std::nextafter(edge, 0), edge, std::nextafter(edge, support::inf)});
    for (int i = 0; i < 300'000; ++i) {
        values.push_back(std::bit_cast<double>(random() >> 1));                   // any magnitude
        values.push_back(std::bit_cast<double>(random() >> 12 >> random() % 52)); // denormal
        values.push_back(1 + share(random) * std::pow(10, decade(random)));
        values.push_back(std::pow(10, usual(random)));
    }
    for (const double value : values) {
        if (!(value > 0) || std::isinf(value) || value == 1)
            continue;
        const long double expected = std::log10(static_cast<long double>(value));
        const long double unit = std::ldexp(1.0L, std::ilogb(expected) - 52);
        const long double most = std::abs(expected) > 0.1L ? 0.51L : 2;
        ASSERT_LE(std::abs(decimalLogarithm(value) - expected), most * unit) << std::hexfloat << value;
    }
}

TEST(DecimalLogarithm, HasNoFiniteValueAtZeroBelowAndBeyond) {
    EXPECT_EQ(decimalLogarithm(1), 0);
    EXPECT_EQ(decimalLogarithm(support::inf), support::inf);
    for (const double zero : {0.0, -0.0})
        EXPECT_EQ(decimalLogarithm(zero), -support::inf);
    for (const double none :
         {-Limits::denorm_min(), -1.0, -Limits::max(), -support::inf, support::nan, -support::nan})
        EXPECT_TRUE(std::isnan(decimalLogarithm(none))) << none;
}

TEST(DecimalLogarithm, IsTheSameOfManyAtOnce) {
    const double unusual[] = {
        0, -0.0, -1, support::inf, -support::inf, support::nan, Limits::denorm_min(), Limits::min() / 3};
    std::mt19937_64 random(4);
    for (std::size_t count = 0; count < 70; ++count) {
        for (const std::size_t unusualEvery : {1U, 2U, 7U, 1000U}) {
            std::vector<double> values(count), logarithms(count);
            for (double& value : values)
                value = random() % unusualEvery == 0 && unusualEvery < 1000
                            ? unusual[random() % std::size(unusual)]
                            : std::bit_cast<double>(random() >> 1);
            decimalLogarithms(values, logarithms);
            for (std::size_t i = 0; i < count; ++i) {
                const double expected = decimalLogarithm(values[i]);
                ASSERT_TRUE(logarithms[i] == expected || (std::isnan(logarithms[i]) && std::isnan(expected)))
                    << values[i] << " at " << i << " of " << count;
            }
        }
    }
}

} // namespace
