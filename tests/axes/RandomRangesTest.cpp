// Marks, texts and edits of every kind of axis at ranges that nobody would choose.
#include "Classes/Axes/XAxis.h"
#include "Classes/Axes/XAxisManager.h"

#include "support/RandomRanges.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>

namespace {

bool isBefore(const XAxisTick& a, const XAxisTick& b) {
    return a.value < b.value;
}

TEST(RandomRanges, GiveFewMarksInOrderAndTexts) {
    support::RandomRanges chance;
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
