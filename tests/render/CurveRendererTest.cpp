// Rendered curves against the whole, unreduced line; shapes against their outlines; and what draws nothing.
#include "Classes/PlotView/CurveRenderer.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/Axes/XLogAxis.h"
#include "Classes/PlotView/PointSprites.h"
#include "Classes/PlotView/XPointsLibrary.h"
#include "core/StrokeReference.h"
#include "support/Numbers.h"
#include "support/TableSource.h"

#include <QPainter>
#include <QPainterPath>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <random>

namespace {

using support::inf;
using support::nan;
constexpr int width = 120;
constexpr int height = 80;

XAxis& axis(int length, double min, double max) {
    static std::vector<std::unique_ptr<XAxis>> axes;
    axes.push_back(std::make_unique<XAxis>());
    axes.back()->setRangeMinMax(min, max);
    axes.back()->setPixelLength(length);
    return *axes.back();
}

/// A curve of two columns, black, without shapes; x and y are pixels on `render`'s axes.
CurveSnapshot curveOf(std::vector<double> x, std::vector<double> y) {
    CurveSnapshot curve;
    curve.table = support::makeTable({std::move(x), std::move(y)});
    curve.xIndex = 1;
    curve.yIndex = 2;
    curve.color = {0, 0, 0, 1};
    return curve;
}

CurveSnapshot shapesOf(int identifier, int size, std::vector<double> x, std::vector<double> y) {
    CurveSnapshot curve = curveOf(std::move(x), std::move(y));
    curve.lineWidth = 0;
    curve.ticksShape = XPointsLibrary::sharedLibrary().pointDescriptionWithId(identifier);
    curve.ticksSize = size;
    return curve;
}

QImage render(const CurveSnapshot& curve, double devicePixelRatio = 1, const std::stop_token& stop = {},
              const CurveRenderer::Progress& progress = {}) {
    return CurveRenderer::renderImage(curve, axis(width, 0, width), axis(height, 0, height), devicePixelRatio,
                                      stop, progress);
}

double alpha(const QImage& image, int x, int y) {
    return qAlpha(image.pixel(x, y)) / 255.0;
}

struct Difference {
    double mean = 0;
    double greatest = 0;
};

/// Of all pixels but `border` columns at either side.
Difference difference(const QImage& image, const std::function<double(int, int)>& expectedAlpha,
                      int border = 0) {
    Difference result;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = border; x < image.width() - border; ++x) {
            const double d = std::abs(alpha(image, x, y) - expectedAlpha(x, y));
            result.mean += d / (image.width() * image.height());
            result.greatest = std::max(result.greatest, d);
        }
    }
    return result;
}

bool isEmpty(const QImage& image) {
    return difference(image, [](int, int) { return 0; }).greatest == 0;
}

TEST(CurveRenderer, LooksLikeTheUnreducedLine) {
    constexpr int rows = 6000;
    std::mt19937 random(11);
    std::uniform_real_distribution<double> uniform(0, 1);
    double level = height / 2.0;
    struct Row {
        const char* name;
        std::function<double(double)> y; ///< of the share of the rows
        double meanTolerance;
        double greatestTolerance; ///< 1 where the rim of what the line fills is ragged
    };
    const Row table[] = {
        {"noise", [&](double) { return height * (0.1 + 0.8 * uniform(random)); }, 0.018, 1},
        {"walk", [&](double) { return level += uniform(random) - 0.5 + (height / 2.0 - level) / 500; }, 0.012,
         1},
        {"sine", [&](double t) { return height * (0.5 + 0.4 * std::sin(18 * t)); }, 0.006, 0.5},
        {"gaps",
         [&](double t) { return uniform(random) < 0.01 ? nan : height * (0.5 + 0.4 * std::sin(18 * t)); },
         0.008, 0.6},
        {"mostly outside the view", [&](double t) { return height * (0.5 + 3 * std::sin(30 * t)); }, 0.006,
         0.4},
    };
    for (const Row& row : table) {
        std::vector<double> x, y;
        std::vector<reference::Polyline> lines(1);
        for (int i = 0; i < rows; ++i) {
            const double t = static_cast<double>(i) / rows;
            x.push_back(1.2 * width * t - 0.1 * width);
            y.push_back(row.y(t));
            if (std::isnan(y.back()))
                lines.emplace_back();
            else
                lines.back().push_back({x.back(), y.back()});
        }
        CurveSnapshot curve = curveOf(x, y);
        for (const int lineWidth : {1, 2, 4}) {
            reference::Stroke all(width, height);
            for (const reference::Polyline& line : lines)
                all.add(line, lineWidth);
            for (const float opacity : {1.0F, 0.5F}) {
                curve.lineWidth = lineWidth;
                curve.colorAlpha = opacity;
                const QImage image = render(curve);
                // A line may end at its first point outside: of a wide line that is still seen at the border.
                const Difference d = difference(
                    image, [&](int px, int py) { return opacity * all.coverage(px, py); }, lineWidth);
                EXPECT_LE(d.mean, row.meanTolerance)
                    << row.name << ", width " << lineWidth << ", " << opacity;
                EXPECT_LE(d.greatest, row.greatestTolerance)
                    << row.name << ", width " << lineWidth << ", " << opacity;
            }
        }
    }
}

TEST(CurveRenderer, ATranslucentLineIsNeverDarkerThanItsColor) {
    std::vector<double> x, y;
    for (int i = 0; i < 3000; ++i) {
        x.push_back(width / 2.0 * (1 + std::sin(i * 0.7)));
        y.push_back(height / 2.0 * (1 + std::cos(i * 0.37)));
    }
    CurveSnapshot curve = curveOf(x, y);
    curve.colorAlpha = 0.5F;
    for (const int lineWidth : {1, 4}) {
        curve.lineWidth = lineWidth;
        const QImage image = render(curve);
        const Difference d =
            difference(image, [&](int px, int py) { return std::min(alpha(image, px, py), 0.503); });
        EXPECT_EQ(d.greatest, 0) << "width " << lineWidth;
    }
}

/// The shape painted with the toolkit's own paths, y downwards.
QImage directly(int identifier, double size, const std::vector<QPointF>& centres, double pen,
                double opacity) {
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const XGraphPointDescription* shape = XPointsLibrary::sharedLibrary().pointDescriptionWithId(identifier);
    const QColor color = QColor::fromRgbF(0, 0, 0, static_cast<float>(opacity));
    for (const QPointF& centre : centres) {
        QPainterPath path;
        shape->drawCallback()(path, static_cast<float>(centre.x()), static_cast<float>(height - centre.y()),
                              static_cast<float>(size));
        if (shape->isFilled())
            painter.fillPath(path, color);
        else
            painter.strokePath(path, QPen(color, pen, Qt::SolidLine, Qt::FlatCap, Qt::MiterJoin));
    }
    return image;
}

TEST(CurveRenderer, StampedShapesEqualDrawnOnes) {
    const std::vector<QPointF> centres{{20, 20}, {22, 23}, {0, 0}, {width, height}, {-3, 40}, {60, 41}};
    std::vector<double> x, y;
    for (const QPointF& centre : centres) {
        x.push_back(centre.x() + (centre.x() < 0 ? -0.4 : 0.4)); // cut off, not rounded
        y.push_back(centre.y() + 0.4);
    }
    for (const int identifier : {1, 2, 3, 4, 5, 6}) {
        for (const int size : {1, 2, 4, 8, 200}) { // the last one is drawn by its path
            for (const float opacity : {1.0F, 0.3F}) {
                CurveSnapshot curve = shapesOf(identifier, size, x, y);
                curve.colorAlpha = opacity;
                // A single hit is painted like two.
                const double painted = overlapOpacities(opacity)[opacity < 1 ? 1 : 0];
                const QImage expected = directly(identifier, size, centres, 1, painted);
                const Difference d =
                    difference(render(curve), [&](int px, int py) { return alpha(expected, px, py); });
                // The toolkit blends the crossing of thin lines twice.
                EXPECT_LE(d.greatest, identifier >= 4 ? 0.07 : 0.04)
                    << "shape " << identifier << ", size " << size << ", " << opacity;
            }
        }
    }
}

TEST(CurveRenderer, OverlapsAreShownByOpacity) {
    const auto opacityOf = [](const std::vector<int>& hits) { // of the last shape; each at a place of its own
        std::vector<double> x, y;
        for (std::size_t i = 0; i < hits.size(); ++i) {
            x.insert(x.end(), static_cast<std::size_t>(hits[i]), 10.0 + 20.0 * static_cast<double>(i));
            y.insert(y.end(), static_cast<std::size_t>(hits[i]), 40);
        }
        CurveSnapshot curve = shapesOf(2, 4, x, y);
        curve.colorAlpha = 0.01F;
        return alpha(render(curve), static_cast<int>(x.back()), 40);
    };
    const auto stacked = [](int shapes) { return 1 - std::pow(0.99, shapes); };
    struct Row {
        const char* name;
        std::vector<int> hits;
        double expected;
    };
    const Row rows[] = {
        {"kept: one hit is painted like two stacked shapes", {1}, stacked(2)},
        {"ten hits", {10}, stacked(11)},
        {"each its own", {10, 3}, stacked(4)},
        {"more hits than the ramp has entries", {5000}, 0.999},
        {"kept: a hit after 257 hits keeps their opacity", {257, 1}, stacked(258)},
    };
    for (const Row& row : rows)
        EXPECT_NEAR(opacityOf(row.hits), row.expected, 0.004) << row.name;
    EXPECT_EQ(overlapOpacities(1), std::vector<double>{1.0});
    EXPECT_LE(overlapOpacities(1e-30F).size(), 10000U) << "the ramp is bounded";
}

TEST(CurveRenderer, SizesMayComeFromAnExpression) {
    CurveSnapshot curve = shapesOf(2, 5, {20, 40, 60, 80, 100}, {40, 40, 40, 40, 40});
    curve.pointsizeUsesExpression = true;
    curve.pointsizeEvaluated = support::makeTable({{3, nan, inf, -3, 0}});
    const QImage image = render(curve);
    EXPECT_EQ(alpha(image, 22, 38), 1) << "half-size 3";
    EXPECT_EQ(alpha(image, 24, 38), 0) << "half-size 3";
    for (const int x : {40, 60, 80, 100})
        EXPECT_EQ(alpha(image, x, 40), 0) << "a size that is not finite and positive draws nothing, at " << x;
    curve.pointsizeEvaluated = nullptr;
    EXPECT_TRUE(isEmpty(render(curve))) << "not evaluated";
}

TEST(CurveRenderer, WhatCannotBeSeenDrawsNothing) {
    const std::vector<double> x{10, 50, 90}, y{10, 70, 20};
    struct Row {
        const char* name;
        std::function<void(CurveSnapshot&)> change;
        bool isEmpty;
    };
    const int max = std::numeric_limits<int>::max();
    const auto table = [](const std::vector<double>& ofX, const std::vector<double>& ofY) {
        return [=](CurveSnapshot& c) { c.table = support::makeTable({ofX, ofY}); };
    };
    const auto pointsOfSize = [](int size) {
        return [=](CurveSnapshot& c) {
            c.lineWidth = 0;
            c.ticksSize = size;
        };
    };
    const Row rows[] = {
        {"the curve itself", [](CurveSnapshot&) {}, false},
        {"alpha 0", [](CurveSnapshot& c) { c.colorAlpha = 0; }, true},
        {"negative alpha", [](CurveSnapshot& c) { c.colorAlpha = -1; }, true},
        {"NaN alpha", [](CurveSnapshot& c) { c.colorAlpha = std::numeric_limits<float>::quiet_NaN(); }, true},
        {"tiny alpha ends", [](CurveSnapshot& c) { c.colorAlpha = 1e-30F; }, true},
        {"no line, no shape", [](CurveSnapshot& c) { c.lineWidth = 0; }, true},
        {"negative width", [](CurveSnapshot& c) { c.lineWidth = -max; }, true},
        {"greatest width", [=](CurveSnapshot& c) { c.lineWidth = max; }, false},
        {"no columns at all", [](CurveSnapshot& c) { c.xIndex = c.yIndex = 0; }, true},
        {"columns that do not exist", [](CurveSnapshot& c) { c.xIndex = c.yIndex = 7; }, true},
        {"x is the row number", [](CurveSnapshot& c) { c.xIndex = 0; }, false},
        {"only NaN", table({nan, nan}, {1, nan}), true},
        {"a single point", table({10}, {10}), true},
        {"beyond every float", table({-1e308, 1e308}, {1, 1}), true},
        {"kept: points without a line", pointsOfSize(2), false},
        {"negative size", pointsOfSize(-2), true},
        {"greatest size", pointsOfSize(max), false},
        {"greatest ring",
         [=](CurveSnapshot& c) {
             c.ticksShape = XPointsLibrary::sharedLibrary().pointDescriptionWithId(6);
             c.ticksSize = c.lineWidth = max;
         },
         false},
    };
    for (const Row& row : rows) {
        CurveSnapshot curve = curveOf(x, y);
        curve.ticksShape = XPointsLibrary::sharedLibrary().pointDescriptionWithId(1);
        row.change(curve);
        const QImage image = render(curve);
        ASSERT_EQ(image.size(), QSize(width, height)) << row.name;
        EXPECT_EQ(isEmpty(image), row.isEmpty) << row.name;
    }
    EXPECT_TRUE(render(CurveSnapshot{}).isNull()) << "no rows";
}

TEST(CurveRenderer, WorksInDevicePixels) {
    CurveSnapshot curve = shapesOf(2, 4, {60}, {40});
    for (const double ratio : {1.0, 1.5, 2.0}) {
        const QImage image = render(curve, ratio);
        ASSERT_EQ(image.size(), QSize(width, height) * ratio) << ratio;
        EXPECT_EQ(image.devicePixelRatio(), ratio);
        int covered = 0;
        for (int x = 0; x < image.width(); ++x)
            covered += alpha(image, x, image.height() / 2) == 1 ? 1 : 0;
        EXPECT_EQ(covered, 8 * ratio) << "a square of half-size 4, ratio " << ratio;
    }
    CurveSnapshot line = curveOf({0, width}, {40, 40});
    line.lineWidth = 2;
    EXPECT_EQ(alpha(render(line, 2), 50, 78), 1) << "2 points are 4 pixels";
    EXPECT_EQ(alpha(render(line, 2), 50, 77), 0) << "2 points are 4 pixels";
    CurveSnapshot thinRing = shapesOf(6, 10, {60}, {40});
    EXPECT_NEAR(alpha(render(thinRing, 2), 120, 60), 0.5, 0.1) << "width 0 is one device pixel";
}

/// Counts the values that it and its copies convert.
template <class Axis>
class CountingAxis : public Axis {
  public:
    CountingAxis(int length, double min, double max) {
        this->setRangeMinMax(min, max);
        this->setPixelLength(length);
    }
    std::unique_ptr<XAxis> copy() const override { return std::make_unique<CountingAxis>(*this); }
    int valuesToPixelsFromToCount(const double* from, float* to, std::size_t count) const override {
        *converted += count;
        return Axis::valuesToPixelsFromToCount(from, to, count);
    }
    std::shared_ptr<std::size_t> converted = std::make_shared<std::size_t>(0);
};

TEST(CurveRenderer, RowsOutOfViewCostLittleAndChangeNothing) {
    constexpr std::size_t rows = 30000;
    std::mt19937 random(21);
    std::uniform_real_distribution<double> uniform(0, 1);
    struct Row {
        const char* name;
        std::function<double(double)> x; ///< of the row
        double mostConverted;            ///< share of the rows, on the average of all views
    };
    const Row table[] = {
        {"ascending", [](double row) { return row + 0.25; }, 0.4},
        {"descending", [=](double row) { return rows - row; }, 0.4},
        {"to and fro", [=](double row) { return rows * (0.5 + 0.49 * std::sin(row / 3000)); }, 0.7},
        {"gaps", [&](double row) { return uniform(random) < 0.3 ? nan : row; }, 0.4},
        {"gaps of thousands", [](double row) { return std::fmod(row, 5000) < 2500 ? row : nan; }, 0.9},
        {"mostly gaps", [&](double row) { return uniform(random) < 0.8 ? nan : row; }, 1.1},
        {"in jumps", [](double row) { return row - 0.9 * std::fmod(row, 4096); }, 0.5},
        {"row numbers", [](double row) { return row; }, 0.4},
        {"in any order", [&](double) { return rows * uniform(random); }, 1.1},
    };
    const auto check = [&]<class Axis>(const Row& row, Axis) {
        std::vector<double> x, y;
        for (std::size_t i = 0; i < rows; ++i) {
            x.push_back(row.x(static_cast<double>(i)));
            y.push_back(uniform(random) < 0.1 ? inf : 1 + height * uniform(random));
        }
        CurveSnapshot full = shapesOf(2, 12, x, y);
        full.colorAlpha = 0.02F; // so that what lies behind other shapes is seen
        CurveSnapshot summarized = full;
        auto copy = std::make_shared<XPTableData>();
        for (std::size_t i = 0; i < rows; ++i) {
            copy->writeValueAtColRow(x[i], 0, i);
            copy->writeValueAtColRow(y[i], 1, i);
        }
        copy->summarizeColumns();
        summarized.table = copy;
        if (std::string(row.name) == "row numbers")
            summarized.xIndex = 0;
        std::size_t converted = 0;
        constexpr int views = 6;
        int drawn = 0;
        for (int view = 0; view < views; ++view) {
            // Every other view begins close to the end of a chunk.
            const double low = view % 2 == 0 ? 4096 * (1 + view) + 5 : rows * uniform(random);
            const CountingAxis<Axis> axisX(width, low, low + 30 + 1000 * uniform(random));
            CountingAxis<Axis> axisY(height, 1, height);
            for (CurveSnapshot* curve : {&full, &summarized}) {
                curve->lineWidth = view % 3;
                curve->ticksShape = view % 2 == 0 || view % 3 == 0
                                        ? XPointsLibrary::sharedLibrary().pointDescriptionWithId(2)
                                        : nullptr;
            }
            const QImage expected = CurveRenderer::renderImage(full, axisX, axisY, 1, {});
            ASSERT_EQ(*axisY.converted, rows);
            *axisY.converted = 0;
            EXPECT_EQ(CurveRenderer::renderImage(summarized, axisX, axisY, 1, {}), expected)
                << row.name << ", view " << view << " from " << low;
            drawn += isEmpty(expected) ? 0 : 1;
            converted += *axisY.converted;
        }
        EXPECT_LE(static_cast<double>(converted) / (views * rows), row.mostConverted) << row.name;
        EXPECT_GE(drawn, views / 2) << row.name;
    };
    for (const Row& row : table) {
        check(row, XAxis());
        check(row, XLogAxis());
    }
}

TEST(CurveRenderer, EndsSoonWhenCancelled) {
    std::vector<double> x(100000), y(100000);
    for (std::size_t i = 0; i < x.size(); ++i)
        x[i] = y[i] = static_cast<double>(i % 80);
    CurveSnapshot curve = curveOf(x, y);
    for (const int lineWidth : {0, 1}) {
        curve.lineWidth = lineWidth;
        curve.ticksSize = 1;
        curve.ticksShape = XPointsLibrary::sharedLibrary().pointDescriptionWithId(1);
        std::stop_source stop;
        std::uint64_t furthest = 0;
        const QImage image = render(curve, 1, stop.get_token(), [&](std::uint64_t rows) {
            furthest = rows;
            if (rows >= 8192)
                stop.request_stop();
        });
        EXPECT_TRUE(image.isNull());
        EXPECT_EQ(furthest, 8192U) << "polled at every chunk, width " << lineWidth;
    }
}

TEST(CurveRenderer, VectorsLookLikeTheImage) {
    std::vector<double> x, y;
    for (int i = 0; i < 500; ++i) {
        x.push_back(i * 0.25);
        y.push_back(i % 100 == 50 ? nan : height * (0.5 + 0.6 * std::sin(i * 0.05)));
    }
    x.insert(x.end(), {1e30, 60});
    y.insert(y.end(), {1e30, 20});
    for (const int lineWidth : {2, 0}) {
        CurveSnapshot curve = shapesOf(5, 5, x, y);
        curve.lineWidth = lineWidth;
        QImage vector(width, height, QImage::Format_ARGB32_Premultiplied);
        vector.fill(Qt::transparent);
        {
            QPainter painter(&vector);
            CurveRenderer::paintVector(painter, curve, axis(width, 0, width), axis(height, 0, height));
        }
        const Difference d = difference(render(curve), [&](int px, int py) { return alpha(vector, px, py); });
        EXPECT_LE(d.mean, 0.003) << "width " << lineWidth;
        EXPECT_LE(d.greatest, 0.3) << "width " << lineWidth;
    }
}

} // namespace
