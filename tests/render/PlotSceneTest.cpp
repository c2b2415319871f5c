// The plot scene: what it draws in which order, when it renders, and how its axes follow the data.
#include "Classes/PlotView/PlotScene.h"
#include "Classes/Axes/XAxis.h"
#include "Classes/Axes/XAxisManager.h"
#include "support/RecordingCanvas.h"
#include "support/TableSource.h"
#include "support/TestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace {

using namespace std::chrono_literals;
using support::RecordingCanvas;
using testing::ElementsAre;

class PlotSceneTest : public testing::Test {
  protected:
    PlotSceneTest() {
        scene.setRenderGrace(0ms);
        scene.options.axisMinX = scene.options.axisMaxX = scene.options.axisMinY = scene.options.axisMaxY =
            NAN;
        scene.setAxisX(XAxisManager::sharedManager().createAxisWithTypeId(QStringLiteral("zen")));
        scene.setAxisY(XAxisManager::sharedManager().createAxisWithTypeId(QStringLiteral("zen")));
        scene.setBounds({200, 100}); // no labels: all of it is plot
    }

    static XCurveHandle curve(const std::vector<double>& x, const std::vector<double>& y) {
        XCurveHandle made = XCurve::make();
        made->setDataSource(std::make_shared<support::TableSource>(support::makeTable({x, y})));
        made->setX_data_index(1);
        made->setY_data_index(2);
        return made;
    }

    std::vector<std::string> draw() {
        RecordingCanvas canvas;
        scene.draw(canvas, QRectF(0, 0, 200, 100));
        return canvas.lines;
    }
    std::vector<std::string> drawnImages() {
        RecordingCanvas canvas;
        scene.draw(canvas, QRectF(0, 0, 200, 100));
        return canvas.linesWith("image");
    }
    void render() {
        draw();
        ASSERT_TRUE(support::waitUntil([this] { return scene.renderTaskCount() == 0; }));
    }
    static void expectRange(const XAxis& axis, double min, double max, const char* name) {
        EXPECT_DOUBLE_EQ(axis.minValue(), min) << name;
        EXPECT_DOUBLE_EQ(axis.maxValue(), max) << name;
    }

    int redraws = 0;
    PlotScene scene{[this] { ++redraws; }};
};

TEST_F(PlotSceneTest, drawsFromTheBackgroundToTheTitles) {
    scene.setAxisX(std::make_unique<XAxis>());
    scene.options.showOriginX = scene.options.showVerticalLines = true;
    scene.options.titles.axisX = QStringLiteral("t");
    scene.axisX()->setRangeMinMax(-1, 1);
    scene.axisY()->setRangeMinMax(-1, 1);
    std::string verbs;
    for (const std::string& line : draw())
        if (const std::string verb = line.substr(0, line.find(' ')); !verbs.ends_with(verb))
            verbs += " " + verb + (verb == "vertical" ? line.substr(line.rfind(' ')) : "");
    // The secondary grid's many lines, then the one of the grid: x = 0.
    std::string folded;
    for (std::size_t at = 0, next; at < verbs.size(); at = next) {
        next = std::min(verbs.find(" vertical", at + 1), verbs.size());
        if (const std::string part = verbs.substr(at, next - at); !folded.ends_with(part))
            folded += part;
    }
    EXPECT_EQ(
        folded,
        " save clip save clip fill stroke vertical #e6e6e6 vertical #b3b3b3 horizontal restore text restore");

    scene.options.dimGrid = true;
    scene.setAxisX(XAxisManager::sharedManager().createAxisWithTypeId(QStringLiteral("zen")));
    scene.options.titles = {};
    EXPECT_THAT(draw(),
                ElementsAre("save", "clip 0,0 200x100", "save", "clip 0,0 200x100",
                            "fill 0,0 200x100 #ffffff", "stroke 0,0 200x100 #e6e6e6", "restore", "restore"));
}

TEST_F(PlotSceneTest, startsWithTheRangesOfAnEmptyView) {
    const PlotScene fresh;
    expectRange(*fresh.axisX(), 0, 0.3, "kept: the range meant for y goes to x");
    expectRange(*fresh.axisY(), 0, 0, "kept: and y has none");
    EXPECT_TRUE(fresh.autoFitToData);
}

TEST_F(PlotSceneTest, followsTheDataUntilToldOtherwise) {
    const XCurveHandle first = curve({0, 20}, {0, 2}), hidden = curve({-90, 90}, {0, 1}),
                       empty = XCurve::make();
    hidden->setIsVisible(false);
    scene.setCurves({empty, first, hidden});
    const auto source = std::dynamic_pointer_cast<support::TableSource>(first->dataSource());

    source->setData(support::makeTable({{0, 40}, {0, 4}}));
    expectRange(*scene.axisX(), -2, 42, "new data; a curve without any, and a hidden one, are left out");
    expectRange(*scene.axisY(), -0.2, 4.2, "both axes");

    scene.autoFitToData = false;
    source->setData(support::makeTable({{0, 80}, {0, 4}}));
    expectRange(*scene.axisX(), -2, 42, "no longer following");

    scene.options.axisMinX = 10;
    scene.fitToData();
    expectRange(*scene.axisX(), 10, 83.5, "a fixed end has no margin");
    EXPECT_TRUE(scene.autoFitToData);

    scene.setAxisX(std::make_unique<XAxis>());
    expectRange(*scene.axisX(), 10, 83.5, "a new axis takes over the range");

    scene.setCurves({});
    scene.fitToData();
    expectRange(*scene.axisY(), -11, 11, "without data");
}

TEST_F(PlotSceneTest, aLogarithmicAxisFitsPositiveValues) {
    const XCurveHandle shown = curve({1, 2, 3}, {-50, 1, 1000});
    scene.setCurves({shown});
    scene.fitToData();
    render();
    scene.setAxisY(XAxisManager::sharedManager().createAxisWithTypeId(QStringLiteral("log")));
    scene.options.axisMaxY = 1000;
    scene.fitToData();
    EXPECT_DOUBLE_EQ(scene.axisY()->minValue(), std::pow(10, -3 / 20.0));
    EXPECT_DOUBLE_EQ(scene.axisY()->maxValue(), 1000);
}

TEST_F(PlotSceneTest, rendersInTheBackgroundAndShowsTheOldImageMeanwhile) {
    const XCurveHandle shown = curve({0, 20}, {0, 2});
    const XCurveHandle hidden = curve({0, 20}, {0, 2});
    hidden->setIsVisible(false);
    scene.setCurves({shown, hidden});
    scene.fitToData();
    EXPECT_TRUE(drawnImages().empty()); // there is none yet
    redraws = 0;
    render();
    EXPECT_GT(redraws, 0);
    EXPECT_TRUE(hidden->renderedImage().isNull());
    EXPECT_THAT(drawnImages(), ElementsAre("image of 200x100 at 0.9 0,0 200x100"));
    EXPECT_EQ(scene.renderTaskCount(), 0U); // and it is up to date

    scene.axisX()->moveOnPixels(50);
    scene.axisY()->zoomWithFactorWithPixelsOrigin(0.5, 0);
    EXPECT_THAT(drawnImages(), ElementsAre("image of 200x100 at 0.9 50,0 200x200")); // moved and stretched
    render();
    EXPECT_THAT(drawnImages(), ElementsAre("image of 200x100 at 0.9 0,0 200x100"));

    scene.setDevicePixelRatio(1.5);
    EXPECT_THAT(drawnImages(),
                ElementsAre("image of 200x100 at 0.9 0,0 200x100")); // stale, but better than nothing
    render();
    EXPECT_THAT(drawnImages(), ElementsAre("image of 300x150 at 0.9 0,0 200x100"));

    shown->setNeedsRedraw(true);
    drawnImages();
    EXPECT_GT(scene.renderTaskCount(), 0U);
    render();

    scene.setAxisX(std::make_unique<XAxis>());
    EXPECT_TRUE(shown->renderedImage().isNull());
}

TEST_F(PlotSceneTest, queuesOneTaskForEachCurveAndAxisState) {
    scene.setRenderGrace(1h); // nothing is rendered: tasks are as they were queued
    scene.setCurves({curve({0, 20}, {0, 2}), curve({0, 20}, {0, 3})});
    scene.fitToData();
    draw();
    draw();
    EXPECT_EQ(scene.renderTaskCount(), 2U);

    const double min = scene.axisX()->minValue(), max = scene.axisX()->maxValue();
    scene.axisX()->moveOnPixels(7);
    draw();
    // Those of the old range were cancelled, and leave.
    EXPECT_TRUE(support::waitUntil([this] { return scene.renderTaskCount() == 2; }));
    scene.axisX()->setRangeMinMax(min, max);
    draw();
    scene.axisX()->moveOnPixels(7);
    scene.setRenderGrace(0ms);
    draw(); // back at a range whose task may still be listed, but was cancelled
    EXPECT_TRUE(support::waitUntil([this] { return scene.renderTaskCount() == 0; }));
    EXPECT_EQ(drawnImages().size(), 2U);
}

TEST_F(PlotSceneTest, drawsVectorsAsOneGroupForEachVisibleCurve) {
    scene.setCurves({curve({0, 20}, {0, 2})});
    scene.fitToData();
    RecordingCanvas canvas;
    scene.draw(canvas, QRectF(0, 0, 200, 100), PlotScene::CurveOutput::Vector);
    EXPECT_THAT(canvas.linesWith("group"), ElementsAre("group at 0.9 0,0 200x100"));
    EXPECT_EQ(scene.renderTaskCount(), 0U);
}

} // namespace
