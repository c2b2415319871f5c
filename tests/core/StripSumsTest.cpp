// Strips against the sums of their edges, which go another way.
#include "Core/StripSums.h"

#include "Core/EdgeSums.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

constexpr int pixelsAcross = 40;
constexpr int pixelsUp = 30;

struct Strip {
    PixelRange columns;
    double low;
    double thickness;
    double slope;
};

/// Of each pixel, column by column, from the edges around the strip.
std::vector<double> coverages(const Strip& strip) {
    EdgeSums edges(pixelsAcross, pixelsUp);
    const double rise = strip.slope * strip.columns.count();
    const auto first = static_cast<double>(strip.columns.first);
    const auto end = static_cast<double>(strip.columns.end);
    const double high = strip.low + strip.thickness;
    edges.addEdge({first, strip.low}, {end, strip.low + rise}, {0, pixelsAcross});
    edges.addEdge({end, high + rise}, {first, high}, {0, pixelsAcross});
    std::vector<double> all;
    for (int column = 0; column < pixelsAcross; ++column) {
        double slope = 0;
        double coverage = 0;
        for (int row = 0; row < pixelsUp; ++row)
            all.push_back(coverage += slope += edges.column(column)[row]);
    }
    return all;
}

/// Within a column; a little more, for rounding.
double highest(const Strip& strip, int column) {
    const double left = strip.low + strip.thickness + strip.slope * (column - strip.columns.first);
    return std::max(left, left + strip.slope) + 1e-4;
}

TEST(StripSums, CoverTheAreaBetweenTheirEdges) {
    std::mt19937 random(6);
    std::uniform_int_distribution<int> column(0, pixelsAcross);
    std::uniform_real_distribution<double> low(-12, pixelsUp + 6);
    std::uniform_real_distribution<double> thickness(0.01, 6);
    std::uniform_real_distribution<double> slope(-7, 7);
    StripSums strips(pixelsAcross, pixelsUp); // one for all: what was added before must be gone
    int added = 0;
    for (int i = 0; i < 3000; ++i) {
        const auto [first, end] = std::minmax({column(random), column(random)});
        Strip strip{{first, end}, low(random), thickness(random), slope(random)};
        if (i % 10 == 0)
            strip.slope = 0;
        if (i % 10 == 1)
            strip.slope *= 1e-5;
        if (!strips.add(strip.columns, strip.low, strip.low + strip.thickness, strip.slope))
            continue;
        ++added;
        const std::vector<double> expected = coverages(strip);
        auto next = expected.begin();
        double worst = 0;
        for (int x = 0; x < pixelsAcross; ++x) {
            const PixelRange touched = strips.touchedRows(x);
            for (int y = 0; y < pixelsUp; ++y) {
                const double sum = strips.column(x)[y];
                worst = std::max(worst, std::abs(sum - *next++));
                EXPECT_TRUE(sum == 0 || y < highest(strip, x)) << "above the strip at " << x << ", " << y;
                EXPECT_TRUE(sum == 0 || (y >= touched.first && y < touched.end)) << x << ", " << y;
            }
            strips.clear(x);
        }
        EXPECT_LE(worst, 2e-5) << strip.columns.first << " to " << strip.columns.end << " at " << strip.low
                               << ", " << strip.thickness << " thick, slope " << strip.slope;
    }
    EXPECT_GT(added, 1000);
}

TEST(StripSums, RefuseWhatIsSteepWideOrFarOutside) {
    StripSums strips(pixelsAcross, pixelsUp);
    const double steepest = 18.5;
    EXPECT_TRUE(strips.add({10, 11}, 5, 5.4, steepest));
    EXPECT_FALSE(strips.add({0, pixelsAcross}, 0, 20, 0)) << "wide";
    EXPECT_TRUE(strips.add({0, pixelsAcross}, pixelsUp + 31, pixelsUp + 31.9, 0));
    const std::int64_t before = strips.additions();
    EXPECT_FALSE(strips.add({10, 12}, 5, 5.6, steepest));
    EXPECT_FALSE(strips.add({10, 20}, 5, 6, -4)) << "leaves the margin below";
    EXPECT_FALSE(strips.add({10, 20}, 5, 6, 6)) << "leaves the margin above";
    EXPECT_FALSE(strips.add({0, pixelsAcross}, 1e300, 1e300, 0));
    EXPECT_EQ(strips.additions(), before);
}

} // namespace
