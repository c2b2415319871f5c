// What is drawn where, as lines of text, and that it is sharp on real pixels.
#include "Classes/PlotView/PlotDrawing.h"
#include "Classes/Axes/XAxis.h"
#include "Classes/PlotView/PainterCanvas.h"
#include "Classes/PlotView/PlotStyles.h"
#include "render/SmallPlot.h"
#include "support/RecordingCanvas.h"

#include <QImage>
#include <QPainter>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using support::FixedMeasure;
using support::RecordingCanvas;
using testing::ElementsAre;

// A plot rectangle at 36,29 of 300 x 200 points.
using support::smallPlot;
const PlotStyles styles;

// An axis with the marks and bands that a test gives it.
class GivenAxis : public XAxis {
  public:
    GivenAxis(double min, double max, int length) {
        setRangeMinMax(min, max);
        setPixelLength(length);
    }
    XAxisTicks ticks() const override { return given ? given : XAxis::ticks(); }
    XAxisColorRanges colors() const override { return bands; }

    XAxisTicks given;
    XAxisColorRanges bands;
};

TEST(PlotDrawing, gridLinesStandAtTheMarksWithinThePlot) {
    const GivenAxis axis(0, 10, 300); // marks at 0, 5, 10, 15 and each unit between
    RecordingCanvas x, y;
    PlotDrawing::drawGridLines(x, AxisInView::x(axis, smallPlot), 0, styles);
    EXPECT_THAT(x.lines, ElementsAre("vertical 186,29 long 200 #b3b3b3")); // not on the frame's own edges
    const GivenAxis low(1, 11, 200);
    PlotDrawing::drawGridLines(y, AxisInView::y(low, smallPlot), 1, styles);
    EXPECT_EQ(y.lines.size(), 7U); // 2 to 4 and 6 to 9: those of 1 and 11 lie on the frame
    EXPECT_EQ(y.lines.front(), "horizontal 36,49 long 300 #e6e6e6");
}

TEST(PlotDrawing, originsAreDrawnWhereZeroIsInThePlot) {
    struct Row {
        const char* name;
        XValueRange x, y;
        bool showX, showY;
        std::vector<std::string> lines;
    };
    const std::string horizontal = "horizontal 36,129 long 300 #4d4d4d",
                      vertical = "vertical 186,29 long 200 #4d4d4d";
    const Row rows[] = {
        {"both", {-1, 1}, {-1, 1}, true, true, {horizontal, vertical}},
        {"y = 0 alone", {-1, 1}, {-1, 1}, true, false, {horizontal}},
        {"x = 0 alone", {-1, 1}, {-1, 1}, false, true, {vertical}},
        {"zero below and left", {1, 2}, {1, 2}, true, true, {}},
        {"y = 0 on the foot", {-1, 1}, {0, 1}, true, false, {}},
        {"no range", {0, 0}, {0, 0}, true, true, {}},
        {"kept: x = 0 goes when y = 0 lies farther up than the plot is wide",
         {-1, 1},
         {-2, -1},
         true,
         true,
         {}},
        {"kept: the margin counts in that test only when y = 0 is shown",
         {-1, 1},
         {-1.6, -0.6},
         false,
         true,
         {vertical}},
        {"kept: so showing y = 0 may hide x = 0", {-1, 1}, {-1.6, -0.6}, true, true, {}},
    };
    for (const Row& row : rows) {
        const GivenAxis x(row.x.minimum, row.x.maximum, 300), y(row.y.minimum, row.y.maximum, 200);
        RecordingCanvas canvas;
        PlotDrawing::drawOrigins(canvas, smallPlot, x, y, row.showX, row.showY, styles);
        EXPECT_EQ(canvas.lines, row.lines) << row.name;
    }
}

TEST(PlotDrawing, labelsStandBelowAndLeftOfThePlotWithBandsInTheirColour) {
    GivenAxis axis(0, 100, 300);
    axis.given = std::make_shared<const std::vector<XAxisTick>>(std::vector<XAxisTick>{
        {-10, QStringLiteral("before"), {}, 0, 0},
        {0, QStringLiteral("0"), {}, 0, 0},
        {10, {}, {}, 1, 0},
        {30, QStringLiteral("in"), {}, 0, 0},
        {50, QStringLiteral("end"), {}, 0, 0},
        {60, {}, AttributedLabel{QStringLiteral("103"), 2}, 0, 0},
        {70, QStringLiteral("aside"), {}, 0, 10},
        {100, QStringLiteral("edge"), {}, 0, 0},
    });
    axis.bands = std::make_shared<const std::vector<XAxisColorRange>>(
        std::vector<XAxisColorRange>{{-50, -20, QStringLiteral("TickColor_weekend")},
                                     {20, 50, QStringLiteral("TickColor_weekend")},
                                     {55, 300, QStringLiteral("TickColor_weekend")}});
    RecordingCanvas x;
    PlotDrawing::drawAxis(x, AxisInView::x(axis, smallPlot), styles, FixedMeasure());
    EXPECT_THAT(x.lines, ElementsAre("text '0' 33,10 7x14 #000000", "text 'in' 120,10 14x14 #b30000",
                                     "text 'end' 176,10 21x14 #000000", "text '10^3' 206,10 21x14 #000000",
                                     "text 'aside' 259,10 35x14 #b30000", "horizontal 96,29 long 90 #b30000",
                                     "horizontal 201,29 long 135 #b30000"));

    GivenAxis up(0, 10, 200);
    RecordingCanvas y;
    PlotDrawing::drawAxis(y, AxisInView::y(up, smallPlot), styles, FixedMeasure());
    // Right-aligned, 5 beside the plot; the last lies on the upper edge and is left out.
    EXPECT_THAT(y.lines, ElementsAre("text '0' 23.5,23 7x14 #000000", "text '5' 23.5,123 7x14 #000000"));
}

TEST(PlotDrawing, aSecondLineGivesWayToTheOneBeforeIt) {
    GivenAxis axis(0, 300, 300);
    axis.given = std::make_shared<const std::vector<XAxisTick>>(
        std::vector<XAxisTick>{{100, QStringLiteral("12:00\nSat Jun 01"), {}, 0, 0},
                               {150, QStringLiteral("00:00\nSun Jun 02"), {}, 0, 0},
                               {200, QStringLiteral("00:00\nMon Jun 03"), {}, 0, 0}});
    RecordingCanvas x;
    PlotDrawing::drawAxis(x, AxisInView::x(axis, smallPlot), styles, FixedMeasure());
    ASSERT_EQ(x.lines.size(), 3U);
    EXPECT_THAT(x.lines[0], testing::HasSubstr("Sat Jun 01"));
    EXPECT_THAT(x.lines[1], testing::StartsWith("text '00:00' "));
    EXPECT_THAT(x.lines[2], testing::HasSubstr("Mon Jun 03"));
}

TEST(PlotDrawing, titlesAreCentredOnThePlotAndEmptyOnesLeftOut) {
    RecordingCanvas canvas;
    PlotDrawing::drawAxisTitles(canvas, smallPlot,
                                {QStringLiteral("Plot"), QStringLiteral("time"), QStringLiteral("depth")},
                                styles, FixedMeasure());
    EXPECT_THAT(canvas.lines,
                ElementsAre("text 'Plot' 172,215 28x14 #555555", "text 'time' 172,3 28x14 #555555", "save",
                            "rotate 10,129 by 90", "text 'depth' -7.5,122 35x14 #555555", "restore"));
    RecordingCanvas none;
    PlotDrawing::drawAxisTitles(none, smallPlot, {std::nullopt, QString(), std::nullopt}, styles,
                                FixedMeasure());
    EXPECT_TRUE(none.lines.empty());
}

// --- On real pixels
// --------------------------------------------------------------------------------------------

QImage painted(double ratio, QSize points, const std::function<void(PainterCanvas&)>& draw) {
    QImage image(QSize(qRound(points.width() * ratio), qRound(points.height() * ratio)),
                 QImage::Format_RGB32);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::white);
    QPainter painter(&image);
    PainterCanvas canvas(painter, points.height());
    draw(canvas);
    return image;
}

// Runs of equal colour along a row of pixels: "7 white, 1 black".
std::string runs(const QImage& image, bool alongX, int at) {
    std::string text;
    const int length = alongX ? image.width() : image.height();
    for (int i = 0, start = 0; i < length; ++i) {
        const auto pixel = [&](int k) { return alongX ? image.pixel(k, at) : image.pixel(at, k); };
        if (i + 1 < length && pixel(i + 1) == pixel(i))
            continue;
        text += (text.empty() ? "" : ", ") + std::to_string(i + 1 - start) + " " +
                (pixel(i) == 0xffffffff   ? "white"
                 : pixel(i) == 0xff000000 ? "black"
                                          : "blurred");
        start = i + 1;
    }
    return text;
}

TEST(PainterCanvas, drawsHairlinesAsWholeDevicePixels) {
    struct Row {
        double ratio;
        const char *across, *upwards, *frame;
    };
    const Row rows[] = {
        {1, "7 white, 1 black, 12 white", "12 white, 1 black, 7 white",
         "1 black, 8 white, 1 black, 10 white"},
        {1.5, "11 white, 1 black, 18 white", "19 white, 1 black, 10 white",
         "1 black, 13 white, 1 black, 15 white"},
        {2, "14 white, 2 black, 24 white", "24 white, 2 black, 14 white",
         "2 black, 16 white, 2 black, 20 white"},
    };
    for (const Row& row : rows) {
        const QImage upright = painted(row.ratio, {20, 20}, [](PainterCanvas& canvas) {
            canvas.hairline({7, 0}, 20, Qt::Vertical, Qt::black);
        });
        EXPECT_EQ(runs(upright, true, 3), row.across) << row.ratio;
        const QImage level = painted(row.ratio, {20, 20}, [](PainterCanvas& canvas) {
            canvas.hairline({0, 7}, 20, Qt::Horizontal, Qt::black); // 7 from below
        });
        EXPECT_EQ(runs(level, false, 3), row.upwards) << row.ratio;
        const QImage frame = painted(row.ratio, {20, 20}, [](PainterCanvas& canvas) {
            canvas.strokeRect({0, 0, 10, 20}, Qt::black);
        });
        EXPECT_EQ(runs(frame, true, frame.height() / 2), row.frame) << row.ratio;
    }
}

// Black and white columns in turn.
QImage stripes(QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixelColor(x, y, x % 2 == 0 ? Qt::black : Qt::white);
    return image;
}

TEST(PainterCanvas, laysAnImageOfTheSameSizeOntoThePixelsOneToOne) {
    for (const double ratio : {1.0, 1.5, 2.0}) {
        const int pixels = qRound(9 * ratio);
        QImage image = stripes({pixels, pixels});
        image.setDevicePixelRatio(ratio);
        // 7 x 1.5 is between two pixels, and so is the upper edge.
        const QImage result = painted(ratio, {20, 20}, [&](PainterCanvas& canvas) {
            canvas.image({7, 4, 9, 9}, image, 1);
        });
        const int left = qRound(7 * ratio);
        for (int x = 0; x < pixels; ++x)
            EXPECT_EQ(result.pixel(left + x, result.height() / 2), image.pixel(x, 0)) << ratio << ": " << x;
    }
}

TEST(PainterCanvas, drawsOnlyTheVisiblePartOfAHugeImage) {
    QImage halves(100, 10, QImage::Format_ARGB32_Premultiplied);
    halves.fill(Qt::white);
    for (int y = 0; y < 10; ++y)
        for (int x = 0; x < 50; ++x)
            halves.setPixelColor(x, y, Qt::black);
    for (const auto& [left, expected] :
         {std::pair(-0.5e9, "5 white, 10 black, 5 white"), std::pair(-1.5e9, "20 white")}) {
        const QImage result = painted(1, {20, 20}, [&](PainterCanvas& canvas) {
            canvas.clip({5, 0, 10, 20});
            canvas.image({left, -1e9, 2e9, 2e9}, halves, 1);
        });
        EXPECT_EQ(runs(result, true, 10), expected) << left;
    }
}

TEST(PainterCanvas, turnsTextUpwardsAboutItsMiddle) {
    const QImage result = painted(1, {40, 100}, [](PainterCanvas& canvas) {
        canvas.save();
        canvas.rotate({10, 50}, 90);
        canvas.fillRect({10 - 30, 50 - 5, 60, 10}, Qt::black); // a lying rectangle stands
        canvas.restore();
    });
    EXPECT_EQ(runs(result, false, 10), "20 white, 60 black, 20 white");
    EXPECT_EQ(runs(result, true, 50), "5 white, 10 black, 25 white");
}

} // namespace
