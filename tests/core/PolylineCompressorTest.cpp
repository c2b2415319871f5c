// The reduced line: what is kept of each group of points, where it breaks, and that chunks do not matter.
#include "Core/PolylineCompressor.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace {

const float gap = std::numeric_limits<float>::quiet_NaN();
const float inf = std::numeric_limits<float>::infinity();

struct Line {
    std::vector<float> x;
    std::vector<float> y;
    void add(float px, float py) {
        x.push_back(px);
        y.push_back(py);
    }
};

struct Reduced {
    std::string text; ///< "M 0 1 L 2": lists of rows; M begins a sub-path, L continues it
    std::vector<PlotPoint> points;
};

/// One buffer for all chunks, as the renderer has it. `stopAfter` lists, the run is asked to end.
Reduced reduce(const Line& line, std::size_t chunk = 4096, std::size_t stopAfter = 1000000) {
    Reduced result;
    std::size_t at = 0;
    std::size_t lists = 0;
    std::vector<float> x(chunk), y(chunk);
    const auto fetch = [&](const float*& px, const float*& py) {
        const std::size_t count = std::min(chunk, line.x.size() - at);
        std::fill(x.begin(), x.end(), gap);
        std::copy_n(line.x.begin() + static_cast<std::ptrdiff_t>(at), count, x.begin());
        std::copy_n(line.y.begin() + static_cast<std::ptrdiff_t>(at), count, y.begin());
        px = x.data();
        py = y.data();
        at += count;
        return count;
    };
    const auto draw = [&](std::span<const PlotPoint> points, bool needMoveTo) {
        result.text += needMoveTo ? "M" : "L";
        for (const PlotPoint& point : points) {
            result.text += " " + std::to_string(point.index);
            result.points.push_back(point);
        }
        result.text += "\n";
        return ++lists >= stopAfter;
    };
    PolylineCompressor compressor(fetch, draw);
    compressor.setExtent(100, 50);
    compressor.run();
    return result;
}

TEST(PolylineCompressor, KeepsTheFirstTheExtremesAndTheLastOfEachGroup) {
    struct Row {
        const char* name;
        std::vector<std::pair<float, float>> points;
        const char* expected;
    };
    const Row rows[] = {
        {"no points", {}, ""},
        {"nothing but NaN", {{gap, 1}, {1, gap}, {inf, 1}}, ""},
        {"one point draws no line", {{1, 1}}, ""},
        {"two pixels", {{1, 1}, {5, 5}}, "M 0\nL 1\n"},
        {"a column collapses",
         {{1, 5}, {1.1F, 9}, {1.2F, 20}, {1.3F, 2}, {1.4F, 7}, {3, 30}, {5, 40}},
         "M 0 2 3 4\nL 5\nL 6\n"},
        {"ties keep the earlier point",
         {{1, 5}, {1, 9}, {1, 9}, {1, 2}, {1, 2}, {1, 5}, {3, 30}, {9, 40}},
         "M 0 1 3 5\nL 6\nL 7\n"},
        {"a gap breaks the line", {{1, 1}, {9, 9}, {gap, 0}, {20, 20}, {29, 29}}, "M 0\nL 1\nM 3\nL 4\n"},
        {"a gap along one row of pixels", {{1, 1}, {5, 1}, {gap, 0}, {9, 1}, {20, 1}}, "M 0 1\nM 3\nL 4\n"},
        {"a gap within one pixel is ignored",
         {{1, 1}, {1.5F, 1.5F}, {gap, 0}, {1.2F, 1.2F}, {9, 9}},
         "M 0 1 3\nL 4\n"},
        {"kept: a lone point between two gaps is dropped",
         {{1, 1}, {9, 9}, {gap, 0}, {20, 20}, {gap, 0}, {30, 30}, {39, 39}},
         "M 0\nL 1\nM 5\nL 6\n"},
        {"beyond one edge", {{-5, 1}, {-9, 9}, {-1, 20}, {10, 20}, {20, 30}}, "M 2 3\nL 4\n"},
        {"from outside to outside, across",
         {{-5, 10}, {105, 20}, {105, 30}, {50, 30}},
         "M 0\nL 1\nM 2\nL 3\n"},
        {"the last point is not finite", {{1, 1}, {9, 9}, {20, 20}, {gap, 1}}, "M 0\nL 1\nL 2\n"},
        {"far beyond every integer", {{-3e38F, 3e38F}, {3e38F, -3e38F}}, "M 0\nL 1\n"},
    };
    for (const Row& row : rows) {
        Line line;
        for (const auto& [x, y] : row.points)
            line.add(x, y);
        EXPECT_EQ(reduce(line).text, row.expected) << row.name;
    }
}

/// A noisy wave with gaps and with runs outside the view.
Line wildLine(std::size_t count) {
    std::mt19937 random(7);
    std::uniform_real_distribution<float> uniform(0, 1);
    Line line;
    float y = 0;
    for (std::size_t i = 0; i < count; ++i) {
        y = 25 + 40 * std::sin(static_cast<float>(i) / 100) + 4 * uniform(random);
        const float x = 120 * static_cast<float>(i) / static_cast<float>(count) - 10;
        line.add(uniform(random) < 0.01F ? gap : x, uniform(random) < 0.01F ? inf : y);
    }
    return line;
}

/// Hundreds of points on each pixel column, many of them equal or on a border of the picture.
Line denseLine(std::size_t count) {
    std::mt19937 random(8);
    Line line;
    for (std::size_t i = 0; i < count; ++i) {
        const float x = 101 * static_cast<float>(i) / static_cast<float>(count);
        const auto chance = random() % 1000;
        line.add(chance == 0 ? gap : std::floor(8 * x) / 8,
                 chance == 1   ? -1
                 : chance == 2 ? gap
                               : static_cast<float>(i / 5000 % 2 == 0 ? random() % 51 : 25));
    }
    return line;
}

/// Points in no order, seldom on the column or the row of the one before, some in gaps or outside.
Line scatteredLine(std::size_t count) {
    std::mt19937 random(9);
    std::uniform_real_distribution<float> uniform(0, 1);
    Line line;
    for (std::size_t i = 0; i < count; ++i)
        line.add(uniform(random) < 0.003F ? gap : 103 * uniform(random),
                 uniform(random) < 0.003F ? -1 : 50 * uniform(random));
    return line;
}

TEST(PolylineCompressor, SplittingTheRowsIntoChunksChangesNothing) {
    // Short chunks take their points one by one.
    for (const Line& line : {wildLine(4097), denseLine(40000), scatteredLine(20000)}) {
        const std::string whole = reduce(line, 50000).text;
        ASSERT_GT(whole.size(), 1000U);
        for (const std::size_t chunk : {1, 2, 3, 17, 4096, 4097})
            EXPECT_TRUE(reduce(line, chunk).text == whole) << "chunks of " << chunk;
    }
}

TEST(PolylineCompressor, KeepsTheHeightOfEveryPixelColumnInTheOrderOfTheData) {
    std::mt19937 random(3);
    std::uniform_real_distribution<float> uniform(0, 1);
    Line line;
    std::vector<float> least(100, inf), greatest(100, -inf);
    for (int i = 0; i < 100000; ++i) {
        line.add(static_cast<float>(i) / 1000, 50 * uniform(random));
        float& low = least[static_cast<std::size_t>(line.x.back())];
        float& high = greatest[static_cast<std::size_t>(line.x.back())];
        low = std::min(low, line.y.back());
        high = std::max(high, line.y.back());
    }
    const Reduced reduced = reduce(line);
    EXPECT_LE(reduced.points.size(), 6U * 101);
    int previous = -1;
    for (const PlotPoint& point : reduced.points) {
        EXPECT_GT(point.index, previous);
        previous = point.index;
        float& low = least[static_cast<std::size_t>(point.x)];
        float& high = greatest[static_cast<std::size_t>(point.x)];
        low = point.y == low ? inf : low;
        high = point.y == high ? -inf : high;
    }
    EXPECT_THAT(least, testing::Each(inf)) << "the lowest point of a column is missing";
    EXPECT_THAT(greatest, testing::Each(-inf)) << "the highest point of a column is missing";
}

TEST(PolylineCompressor, EndsAtOnceWhenToldTo) {
    for (const Line& line : {wildLine(4097), scatteredLine(4097)}) {
        for (const std::ptrdiff_t lists : {3, 50}) {
            const std::string text = reduce(line, 4096, static_cast<std::size_t>(lists)).text;
            EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), lists);
        }
    }
}

} // namespace
