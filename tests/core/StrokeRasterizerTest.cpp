// Strokes against the slow reference, and what overlaps must not do.
#include "Core/StrokeRasterizer.h"

#include "core/StrokeReference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace {

using reference::Point;
using reference::Polyline;

constexpr int width = 40;
constexpr int height = 30;

struct Picture {
    std::vector<std::uint32_t> pixels = std::vector<std::uint32_t>(width * height);
    PixelGrid grid() { return {pixels.data(), width}; }
    double alpha(int column, int row) const {
        return static_cast<double>(pixels[static_cast<std::size_t>(row * width + column)] >> 24U) / 255;
    }
};

void stroke(StrokeRasterizer& rasterizer, const Polyline& line) {
    rasterizer.moveTo(line.front().x, line.front().y);
    for (const Point& point : line)
        rasterizer.lineTo(point.x, point.y);
}

Picture painted(const Polyline& line, double lineWidth, double alpha) {
    Picture picture;
    StrokeRasterizer rasterizer(width, height, lineWidth);
    stroke(rasterizer, line);
    rasterizer.paint(picture.grid(), coverageRamp(1, 1, 1, alpha));
    return picture;
}

TEST(StrokeRasterizer, CoversTheAreaOfItsOutline) {
    struct Row {
        const char* name;
        Polyline line;
        double lineWidth;
        double tolerance; ///< of one pixel; where parts meet within a pixel their shares add up
    };
    const Row rows[] = {
        {"along a row of pixels", {{5, 10.5}, {30, 10.5}}, 1, 0.01},
        {"between two rows", {{5, 10}, {30, 10}}, 1, 0.01},
        {"upright", {{12.3, 3}, {12.3, 27}}, 2, 0.08},
        {"steep", {{10, 2}, {13, 28}}, 1, 0.08},
        {"flat, leftwards", {{35, 12}, {3, 9}}, 1.5, 0.08},
        {"diagonal and thin", {{3, 3}, {27, 27}}, 0.3, 0.08},
        {"out at the left", {{-20, 5}, {20, 15}}, 3, 0.08},
        {"out at the right and above", {{20, 15}, {1e6, 1e6}}, 3, 0.08},
        {"across from far away", {{-1e9, -1e9 + 3}, {1e9, 1e9 + 3}}, 4, 0.08},
        {"in front of the lower edge", {{5, -0.25}, {35, -0.25}}, 1, 0.08},
        {"as wide as the picture", {{-30, -10}, {80, 60}}, 60, 0.08},
        {"over all of it", {{-30, -10}, {80, 60}}, 3e9, 0.01},
        {"wholly outside", {{-30, 60}, {80, 100}}, 10, 0.01},
        {"a bevel to the right", {{5, 5}, {20, 25}, {35, 5}}, 5, 0.3},
        {"a bevel to the left", {{5, 25}, {20, 5}, {35, 25}}, 5, 0.3},
        {"back on itself", {{5, 5}, {30, 20}, {6, 6}}, 4, 0.5},
        {"a corner outside", {{10, 10}, {45, 15}, {12, 22}}, 4, 0.3},
    };
    for (const Row& row : rows) {
        const Picture picture = painted(row.line, row.lineWidth, 1);
        reference::Stroke stroke(width, height);
        stroke.add(row.line, row.lineWidth);
        double sum = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const double difference = std::abs(picture.alpha(x, y) - stroke.coverage(x, y));
                sum += difference;
                EXPECT_LE(difference, row.tolerance) << row.name << " at " << x << ", " << y;
            }
        }
        EXPECT_LE(sum / (width * height), row.tolerance / 30) << row.name << ": mean difference";
    }
}

TEST(StrokeRasterizer, ATranslucentStrokeIsOneUnion) {
    Polyline zigzag;
    for (int i = 0; i < 400; ++i)
        zigzag.push_back({2 + i * 0.09, i % 2 == 0 ? 3.0 : 27.0});
    const Picture picture = painted(zigzag, 4, 0.5);
    EXPECT_EQ(picture.alpha(20, 15) * 255, 128) << "the inside is full";
    EXPECT_LE(*std::max_element(picture.pixels.begin(), picture.pixels.end()) >> 24U, 128U);

    Picture smooth; // no seam at the joints of a wide line: its middle is full everywhere
    StrokeRasterizer rasterizer(width, height, 6);
    Polyline arc;
    for (int i = 0; i <= 50; ++i)
        arc.push_back({20 - 14 * std::cos(i * 0.0628), 5 + 14 * std::sin(i * 0.0628)});
    stroke(rasterizer, arc);
    rasterizer.paint(smooth.grid(), coverageRamp(0, 0, 0, 1));
    for (std::size_t i = 1; i + 1 < arc.size(); ++i)
        EXPECT_EQ(smooth.alpha(static_cast<int>(arc[i].x), height - 1 - static_cast<int>(arc[i].y)), 1) << i;
}

TEST(StrokeRasterizer, WhatItLeavesOutCannotBeSeen) {
    // Thousands of long segments: the middle is soon full, and only its surroundings go on changing.
    std::mt19937 random(9);
    std::normal_distribution<double> normal;
    Polyline line;
    for (int i = 0; i < 4000; ++i)
        line.push_back({width * (0.5 + 0.2 * normal(random)), height * (0.45 + 0.17 * normal(random))});
    for (const double lineWidth : {0.2, 1.0, 4.0}) {
        const Picture picture = painted(line, lineWidth, 1);
        reference::Stroke stroke(width, height);
        stroke.add(line, lineWidth);
        int partly = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                // Sums are never less than the union, but for what the reference misses between its places.
                EXPECT_GE(picture.alpha(x, y), stroke.coverage(x, y) - 0.08) << x << ", " << y;
                if (std::abs(x - width * 0.5) < 5 && std::abs(y - height * 0.45) < 4) {
                    EXPECT_EQ(picture.alpha(x, y), 1) << x << ", " << y << ", " << lineWidth << " wide";
                }
                partly += stroke.coverage(x, y) > 0.05 && stroke.coverage(x, y) < 0.95 ? 1 : 0;
            }
        }
        EXPECT_GT(partly, 50) << "the data leave no rim to look at";
    }
}

TEST(StrokeRasterizer, PaintsOverWhatWasPaintedBeforeAndForgets) {
    Picture picture;
    StrokeRasterizer rasterizer(width, height, 4);
    const CoverageRamp colors = coverageRamp(1, 0, 0, 0.5);
    for (const Polyline& line : {Polyline{{5, 15}, {35, 15}}, Polyline{{20, 3}, {20, 27}}}) {
        stroke(rasterizer, line);
        rasterizer.paint(picture.grid(), colors);
    }
    EXPECT_NEAR(picture.alpha(20, 15), 0.75, 0.005) << "two strokes of alpha 0.5";
    EXPECT_NEAR(picture.alpha(10, 15), 0.5, 0.005);
    const Picture before = picture;
    rasterizer.paint(picture.grid(), colors);
    EXPECT_EQ(picture.pixels, before.pixels) << "nothing was left to paint";

    std::vector<Picture> same(2);
    StrokeRasterizer thin(width, height, 0.3);
    for (Picture& each : same) {
        stroke(thin, {{5, 3}, {20, 27}, {35, 3}});
        thin.paint(each.grid(), colors);
    }
    EXPECT_EQ(same[0].pixels, same[1].pixels) << "a stroke leaves nothing behind";
}

TEST(StrokeRasterizer, TakesAnyFiniteCoordinates) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> exponent(-10, 38);
    for (const double lineWidth : {1e-3, 1.0, 50.0, 4294967294.0}) {
        Picture picture;
        StrokeRasterizer rasterizer(width, height, lineWidth);
        rasterizer.moveTo(0, 0);
        for (int i = 0; i < 20000; ++i)
            rasterizer.lineTo((i % 3 - 1) * std::pow(10, exponent(random)),
                              (i % 5 - 2) * std::pow(10, exponent(random)));
        rasterizer.paint(picture.grid(), coverageRamp(1, 1, 1, 1));
        EXPECT_GT(*std::max_element(picture.pixels.begin(), picture.pixels.end()), 0U) << lineWidth;
        const Picture before = picture;
        rasterizer.paint(picture.grid(), coverageRamp(0, 0, 0, 1));
        EXPECT_EQ(picture.pixels, before.pixels) << "sums were left over, width " << lineWidth;
    }
}

TEST(StrokeRasterizer, DrawsNothingWhereThereIsNoPicture) {
    std::mt19937 random(6);
    std::normal_distribution<double> normal;
    for (const int columns : {0, 1, 2}) {
        for (const int rows : {0, 1, 30}) {
            Picture picture;
            StrokeRasterizer rasterizer(columns, rows, 2);
            rasterizer.moveTo(0, 0);
            for (int i = 0; i < 3000; ++i)
                rasterizer.lineTo(3 * normal(random), 20 * normal(random));
            rasterizer.paint(picture.grid(), coverageRamp(1, 1, 1, 1));
            for (int pixel = 0; pixel < width * height; ++pixel) {
                const bool isInside = pixel % width < columns && pixel / width < rows;
                EXPECT_EQ(picture.pixels[static_cast<std::size_t>(pixel)] != 0, isInside)
                    << columns << " x " << rows << " at " << pixel;
            }
        }
    }
}

TEST(StrokeRasterizer, RampsStayWithinTheirColor) {
    struct Row {
        const char* name;
        double alpha;
        std::uint32_t full;
    };
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const Row& row : {Row{"opaque", 1, 0xffff8000}, Row{"half", 0.5, 0x80804000},
                           Row{"beyond 1", 7, 0xffff8000}, Row{"negative", -1, 0}, Row{"NaN", nan, 0}})
        EXPECT_EQ(coverageRamp(1, 0.5, -3, row.alpha).back(), row.full) << row.name;
}

} // namespace
