// Strokes against a slow reference that looks at 256 places of every pixel, and what overlaps must not do.
#include "Core/StrokeRasterizer.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace {

struct Point {
    double x, y;
};
using Polyline = std::vector<Point>;

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

double cross(Point a, Point b, Point p) {
    return (b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x);
}

/// Within the rectangle of a segment, or within the triangle of the bevel that follows it.
bool isCovered(const Polyline& line, double lineWidth, Point p) {
    const double half = lineWidth / 2;
    const auto normal = [&](std::size_t i) {
        const double dx = line[i + 1].x - line[i].x, dy = line[i + 1].y - line[i].y;
        const double length = std::hypot(dx, dy);
        return Point{-dy / length * half, dx / length * half};
    };
    for (std::size_t i = 0; i + 1 < line.size(); ++i) {
        const double dx = line[i + 1].x - line[i].x, dy = line[i + 1].y - line[i].y;
        const double length = std::hypot(dx, dy);
        const double along = ((p.x - line[i].x) * dx + (p.y - line[i].y) * dy) / length;
        if (along >= 0 && along <= length && std::abs(cross(line[i], line[i + 1], p)) <= half * length)
            return true;
        if (i + 2 == line.size())
            continue;
        const Point at = line[i + 1], before = normal(i), after = normal(i + 1);
        for (const double side : {-1.0, 1.0}) {
            const Point a{at.x + side * before.x, at.y + side * before.y};
            const Point b{at.x + side * after.x, at.y + side * after.y};
            const bool outer = side * (before.x * after.y - before.y * after.x) < 0;
            const double s1 = cross(at, a, p), s2 = cross(a, b, p), s3 = cross(b, at, p);
            if (outer && ((s1 >= 0 && s2 >= 0 && s3 >= 0) || (s1 <= 0 && s2 <= 0 && s3 <= 0)))
                return true;
        }
    }
    return false;
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
        {"upright", {{12.3, 3}, {12.3, 27}}, 2, 0.05},
        {"steep", {{10, 2}, {13, 28}}, 1, 0.05},
        {"flat, leftwards", {{35, 12}, {3, 9}}, 1.5, 0.05},
        {"diagonal and thin", {{3, 3}, {27, 27}}, 0.3, 0.05},
        {"out at the left", {{-20, 5}, {20, 15}}, 3, 0.05},
        {"out at the right and above", {{20, 15}, {1e6, 1e6}}, 3, 0.05},
        {"across from far away", {{-1e9, -1e9 + 3}, {1e9, 1e9 + 3}}, 4, 0.05},
        {"in front of the lower edge", {{5, -0.25}, {35, -0.25}}, 1, 0.05},
        {"as wide as the picture", {{-30, -10}, {80, 60}}, 60, 0.05},
        {"over all of it", {{-30, -10}, {80, 60}}, 3e9, 0.01},
        {"wholly outside", {{-30, 60}, {80, 100}}, 10, 0.01},
        {"a bevel to the right", {{5, 5}, {20, 25}, {35, 5}}, 5, 0.3},
        {"a bevel to the left", {{5, 25}, {20, 5}, {35, 25}}, 5, 0.3},
        {"back on itself", {{5, 5}, {30, 20}, {6, 6}}, 4, 0.5},
        {"a corner outside", {{10, 10}, {45, 15}, {12, 22}}, 4, 0.3},
    };
    for (const Row& row : rows) {
        const Picture picture = painted(row.line, row.lineWidth, 1);
        double sum = 0;
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                int hits = 0;
                for (int place = 0; place < 256; ++place)
                    hits += isCovered(row.line, row.lineWidth,
                                      {x + (place % 16 + 0.5) / 16, height - y - (place / 16 + 0.5) / 16});
                const double difference = std::abs(picture.alpha(x, y) - hits / 256.0);
                sum += difference;
                EXPECT_LE(difference, row.tolerance) << row.name << " at " << x << ", " << y;
            }
        }
        EXPECT_LE(sum / (width * height), row.tolerance / 50) << row.name << ": mean difference";
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
