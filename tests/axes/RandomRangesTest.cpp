// Marks, texts and edits of every kind of axis at ranges that nobody would choose.
#include "Classes/Axes/XAxis.h"
#include "Classes/Axes/XAxisManager.h"

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <chrono>
#include <cmath>
#include <random>

namespace {

class Chance {
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

bool isBefore(const XAxisTick& a, const XAxisTick& b) {
    return a.value < b.value;
}

TEST(RandomRanges, GiveFewMarksInOrderAndTexts) {
    Chance chance;
    std::chrono::nanoseconds longest{};
    std::string slowest;
    for (int i = 0, n = support::rounds(2'000); i < n; ++i) {
        const XValueRange range = chance.range();
        const int length = chance.length();
        for (const XAxisInfo& kind : XAxisManager::sharedManager().axisTypes()) {
            SCOPED_TRACE(testing::Message() << kind.typeId().toStdString() << " " << std::hexfloat
                                            << range.minimum << " " << range.maximum << ", " << length);
            const auto axis = kind.makeAxis();
            axis->setPixelLength(length);
            axis->setRangeMinMax(range.minimum, range.maximum);
            const auto begin = std::chrono::steady_clock::now();
            const XAxisTicks ticks = axis->ticks();
            const std::size_t bands = axis->colors() ? axis->colors()->size() : 0;
            const auto took = std::chrono::steady_clock::now() - begin;
            if (took > longest) {
                longest = took;
                slowest = kind.typeId().toStdString() + " " + std::to_string(range.minimum) + " " +
                          std::to_string(range.maximum) + " " + std::to_string(length);
            }
            // A mark a pixel, and those before and behind the range.
            ASSERT_LE(ticks ? ticks->size() : 0, static_cast<std::size_t>(length) + 100);
            ASSERT_LE(bands, static_cast<std::size_t>(length) + 100);
            const bool isInOrder = !ticks || std::is_sorted(ticks->begin(), ticks->end(), isBefore);
            ASSERT_TRUE(isInOrder);
            // Whatever they are, they end.
            axis->humanReadableValue(axis->pixelToValue(length / 2));
            axis->humanReadableIntervalEnd(range.minimum, range.maximum);
            axis->valueToPixel(range.maximum);
            axis->moveOnPixels(7);
            axis->zoomWithFactorWithPixelsOrigin(0.5, length / 3);
            axis->alignRanges();
        }
    }
    std::printf("slowest list: %s: %ld us\n", slowest.c_str(), static_cast<long>(longest.count() / 1000));
}

} // namespace
