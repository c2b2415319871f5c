// A long line drawn by two threads against the same line drawn whole, and its end in the middle.
#include "Classes/PlotView/CurveStrokes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <vector>

namespace {

constexpr int pictureHeight = 200;
using Picture = std::vector<std::uint32_t>;

struct Subpath {
    std::vector<float> x;
    std::vector<float> y;
};

/// Of points in no order, some of them outside.
std::vector<Subpath> subpaths(int count, int points, int pictureWidth) {
    std::mt19937 random(4);
    std::uniform_real_distribution<float> place(-0.1F, 1.1F);
    std::vector<Subpath> made(static_cast<std::size_t>(count));
    for (Subpath& subpath : made) {
        for (int i = 0; i < points; ++i) {
            subpath.x.push_back(static_cast<float>(pictureWidth) * place(random));
            subpath.y.push_back(pictureHeight * place(random));
        }
    }
    return made;
}

StrokeTarget targetOf(Picture& picture, int pictureWidth, double alpha) {
    picture.assign(static_cast<std::size_t>(pictureWidth) * pictureHeight, 0);
    return {.image = {picture.data(), pictureWidth},
            .width = pictureWidth,
            .height = pictureHeight,
            .lineWidth = 0.4,
            .colors = coverageRamp(1, 1, 1, alpha),
            .isOpaque = alpha >= 1};
}

Picture drawnInSlices(const std::vector<Subpath>& line, int pictureWidth, double alpha,
                      const std::stop_token& stop = {}) {
    Picture picture;
    CurveStrokes strokes(targetOf(picture, pictureWidth, alpha), stop);
    for (const Subpath& subpath : line) {
        strokes.moveTo(subpath.x[0], subpath.y[0]);
        for (std::size_t i = 1; i < subpath.x.size(); ++i)
            strokes.lineTo(subpath.x[i], subpath.y[i]);
        strokes.strokePath();
    }
    strokes.finish();
    return picture;
}

Picture drawnWhole(const std::vector<Subpath>& line, int pictureWidth, double alpha) {
    Picture picture;
    const StrokeTarget target = targetOf(picture, pictureWidth, alpha);
    StrokeRasterizer rasterizer(pictureWidth, pictureHeight, target.lineWidth);
    for (const Subpath& subpath : line) {
        rasterizer.moveTo(subpath.x[0], subpath.y[0]);
        for (std::size_t i = 1; i < subpath.x.size(); ++i)
            rasterizer.lineTo(subpath.x[i], subpath.y[i]);
        if (!target.isOpaque)
            rasterizer.paint(target.image, target.colors);
    }
    rasterizer.paint(target.image, target.colors);
    return picture;
}

TEST(CurveStrokes, TwoThreadsDrawThePictureOfOne) {
    struct Row {
        const char* name;
        int subpaths;
        int points;
        double alpha;
        int pictureWidth = 300;
    };
    for (const Row& row :
         {Row{"a short line", 1, 50, 1}, Row{"one line", 1, 30'000, 1}, Row{"with gaps", 9'000, 2, 1},
          Row{"translucent", 5, 4'000, 0.5}, Row{"translucent with gaps", 6'000, 2, 0.02},
          Row{"too narrow for two", 1, 30'000, 1, 20}}) {
        const std::vector<Subpath> line = subpaths(row.subpaths, row.points, row.pictureWidth);
        const Picture sliced = drawnInSlices(line, row.pictureWidth, row.alpha);
        const Picture whole = drawnWhole(line, row.pictureWidth, row.alpha);
        int worst = 0;
        for (std::size_t i = 0; i < whole.size(); ++i)
            worst = std::max(
                worst, std::abs(static_cast<int>(sliced[i] >> 24U) - static_cast<int>(whole[i] >> 24U)));
        EXPECT_LE(worst, 1) << row.name;
        EXPECT_GT(std::count_if(whole.begin(), whole.end(), [](auto pixel) { return pixel != 0; }), 1000)
            << row.name;
    }
}

TEST(CurveStrokes, AStopLeavesOutWhatTheOtherThreadHasNotDrawn) {
    std::stop_source stop;
    stop.request_stop();
    const Picture picture = drawnInSlices(subpaths(1, 30'000, 300), 300, 1, stop.get_token());
    EXPECT_EQ(picture[299 + 100 * 300], 0U) << "drawn although nobody wants it";
}

TEST(CurveStrokes, MayGoWithoutAFinish) {
    Picture picture;
    CurveStrokes strokes(targetOf(picture, 300, 1), {});
    for (int i = 0; i < 30'000; ++i)
        strokes.lineTo(static_cast<float>(i % 300), static_cast<float>(i % 7));
    EXPECT_EQ(std::count(picture.begin(), picture.end(), 0U), 300 * pictureHeight)
        << "painted before the end";
}

} // namespace
