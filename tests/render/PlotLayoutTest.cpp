// Margins, title rooms and fitted ranges: the pure parts of a plot.
#include "Classes/PlotView/PlotLayout.h"
#include "Classes/Axes/XEmptyAxis.h"
#include "Classes/PlotView/FitToData.h"
#include "Classes/PlotView/TitleLayout.h"
#include "support/Numbers.h"
#include "support/RecordingCanvas.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using support::inf;
using support::nan;

class TwoLineAxis : public XAxis {
  public:
    int labelLines() const override { return 2; }
};

TEST(PlotLayout, leavesRoomForTheLabelsBelowAndAtTheLeft) {
    struct Row {
        const char* name;
        QSizeF bounds;
        std::unique_ptr<XAxis> axisX;
        std::unique_ptr<XAxis> axisY;
        XValueRange rangeY;
        PlotLayout expected;
    };
    const auto plain = [] { return std::make_unique<XAxis>(); };
    const auto empty = [] { return std::make_unique<XEmptyAxis>(); };
    // bottom: 5 + 14 + 5 + 5; left: 5 + 7 a character + 5 + 5.
    Row rows[] = {
        {"numbers on both",
         {400.9, 329.9},
         plain(),
         plain(),
         {0, 10},
         {{400.9, 329.9}, 0, 0, 29, 36, 364, 300, 329, 400}},
        {"two lines of labels",
         {400, 343},
         std::make_unique<TwoLineAxis>(),
         plain(),
         {0, 10},
         {{400, 343}, 0, 0, 43, 36, 364, 300, 343, 400}},
        {"no x labels: the plot stands on the foot",
         {400, 300},
         empty(),
         plain(),
         {0, 10},
         {{400, 300}, 0, 0, 0, 36, 364, 300, 300, 400}},
        {"no y labels", {400, 300}, plain(), empty(), {0, 10}, {{400, 300}, 0, 0, 29, 0, 400, 271, 300, 400}},
        {"no y marks", {400, 300}, plain(), plain(), {5, 4}, {{400, 300}, 0, 0, 29, 0, 400, 271, 300, 400}},
        {"a plot less than 20 high is sampled at each pixel",
         {400, 40},
         plain(),
         plain(),
         {0, 0.1},
         {{400, 40}, 0, 0, 29, 43, 357, 11, 40, 400}},
        {"a view that the labels fill",
         {20, 20},
         plain(),
         plain(),
         {0, 10},
         {{20, 20}, 0, 0, 29, 0, 20, 0, 20, 20}},
        {"no view", {0, 0}, plain(), plain(), {0, 10}, {{0, 0}, 0, 0, 29, 0, 0, 0, 0, 0}},
    };
    for (Row& row : rows) {
        row.axisY->setRangeMinMax(row.rangeY.minimum, row.rangeY.maximum);
        const PlotLayout layout =
            calculateMargins(row.bounds, *row.axisX, *row.axisY, support::FixedMeasure());
        EXPECT_EQ(layout, row.expected)
            << row.name << ": left " << layout.marginLeft << ", bottom " << layout.marginBottom << ", plot "
            << layout.selfWidth << " x " << layout.selfHeight;
    }
}

TEST(TitleLayout, givesEachShownTitleARoomOutsideThePlot) {
    const QRectF container = plotContainer({703, 434});
    EXPECT_EQ(container, QRectF(8, 8, 683, 418));
    struct Row {
        const char* name;
        ShownTitles shown;
        TitleLayout expected;
    };
    const Row rows[] = {
        {"none", {false, false, false}, {{8, 8, 683, 418}, {}, {}, {}}},
        {"the plot's own", {true, false, false}, {{8, 8, 683, 380}, {8, 388, 683, 38}, {}, {}}},
        {"x", {false, true, false}, {{8, 28, 683, 398}, {}, {8, 8, 683, 20}, {}}},
        {"y", {false, false, true}, {{28, 8, 663, 418}, {}, {}, {8, 8, 20, 418}}},
        {"all",
         {true, true, true},
         {{28, 28, 663, 360}, {28, 388, 663, 38}, {28, 8, 663, 20}, {8, 28, 20, 360}}},
    };
    for (const Row& row : rows) {
        const TitleLayout layout = layoutTitles(container, row.shown);
        EXPECT_EQ(layout.plotView, row.expected.plotView) << row.name;
        EXPECT_EQ(layout.plotAreaTitle, row.expected.plotAreaTitle) << row.name;
        EXPECT_EQ(layout.axisTitleX, row.expected.axisTitleX) << row.name;
        EXPECT_EQ(layout.axisTitleY, row.expected.axisTitleY) << row.name;
    }
    EXPECT_TRUE(
        layoutTitles(plotContainer({10, 10}), {true, true, true}).plotView.isEmpty()); // never negative
}

TEST(FitToData, goesAroundTheDataUnlessALimitIsFixed) {
    struct Row {
        const char* name;
        std::vector<XValueRange> ofCurves;
        double fixedMin, fixedMax;
        XValueRange range;
        bool marginAtMin, marginAtMax;
    };
    const Row rows[] = {
        {"no curves", {}, nan, nan, {-10, 10}, true, true},
        {"the first curve replaces the default", {{2, 3}}, nan, nan, {2, 3}, true, true},
        {"the others widen it", {{2, 3}, {-1, 2.5}, {2, 7}}, nan, nan, {-1, 7}, true, true},
        {"a curve without values spoils nothing",
         {{nan, nan}, {2, 3}, {nan, nan}},
         nan,
         nan,
         {2, 3},
         true,
         true},
        {"nor does an infinite one", {{-inf, inf}, {2, 3}}, nan, nan, {2, 3}, true, true},
        {"a fixed start has no margin", {{2, 3}}, 0, nan, {0, 3}, false, true},
        {"an infinite limit is none", {{2, 3}}, -inf, 9, {2, 9}, true, false},
        {"far values are cut", {{-1e300, 1e300}}, nan, nan, {-1e26, 1e26}, true, true},
        {"a single value", {{5, 5}}, nan, nan, {4, 6}, true, true},
        {"zero alone", {{0, 0}}, nan, nan, {0, 10}, true, true},
        {"kept: a single negative value reverses the range", {{-5, -5}}, nan, nan, {-4, -6}, true, true},
    };
    for (const Row& row : rows) {
        const FittedRange fitted = fitRange(row.ofCurves, row.fixedMin, row.fixedMax);
        EXPECT_DOUBLE_EQ(fitted.range.minimum, row.range.minimum) << row.name;
        EXPECT_DOUBLE_EQ(fitted.range.maximum, row.range.maximum) << row.name;
        EXPECT_EQ(fitted.marginAtMin, row.marginAtMin) << row.name;
        EXPECT_EQ(fitted.marginAtMax, row.marginAtMax) << row.name;
    }
}

} // namespace
