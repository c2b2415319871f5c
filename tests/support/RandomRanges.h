// Ranges of axes at random: any two numbers, a few ulps, the ends of the numbers, times, and what people look
// at.
#pragma once

#include "EmbeddedPlugins/Common/XValueRange.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <random>

namespace support {

/// Ranges and lengths of axes, the same in every run.
class RandomRanges {
  public:
    XValueRange range() {
        switch (m_engine() % 6) {
        case 0: // any two numbers at all
            return {anyDouble(), anyDouble()};
        case 1: { // a few ulps apart
            const double least = anyDouble();
            double greatest = least;
            for (auto ulps = 1 + m_engine() % 5; ulps > 0; --ulps)
                greatest = std::nextafter(greatest, INFINITY);
            return {least, greatest};
        }
        case 2: // from the ends of the numbers
            return {pick(), pick()};
        case 3: { // a time, and spans from a nanosecond to ten million years
            const double start = std::uniform_real_distribution(-1e11, 1e11)(m_engine);
            return {start, start + magnitude(-9, 14)};
        }
        default: { // what people look at
            const double start = std::uniform_real_distribution(-1.0, 1.0)(m_engine) * magnitude(-6, 9);
            return {start, start + magnitude(-9, 9)};
        }
        }
    }
    int length() { return static_cast<int>(m_engine() % 8 == 0 ? m_engine() % 3 : m_engine() % 16'384); }

  private:
    double anyDouble() { return std::bit_cast<double>(m_engine()); }
    double magnitude(int least, int greatest) {
        return std::pow(10, std::uniform_real_distribution<double>(least, greatest)(m_engine));
    }
    double pick() {
        static constexpr double ends[] = {
            0,       -0.0,   5e-324, -5e-324, 2.2250738585072014e-308, 1e-300,  1,
            1e15,    9.3e18, 1e308,  -1e308,  1.7976931348623157e308,  -1e-300, -1,
            -9.3e18, 86400,  -6.3e10};
        return ends[m_engine() % std::size(ends)];
    }

    std::mt19937_64 m_engine{20260101};
};

} // namespace support
