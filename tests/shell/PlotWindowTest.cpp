// A document's plot: the page follows the document.
#include "Classes/Axes/XAxis.h"
#include "Classes/Axes/XAxisManager.h"
#include "Classes/GraphViewController/XGraphViewController.h"
#include "Classes/PluginsManager/XPluginsManager.h"
#include "EmbeddedPlugins/TextEditor/XPTextEditor.h"
#include "EmbeddedPlugins/TextFile/XPTextFileFactory.h"
#include "MoxDocument.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

class PlotPageTest : public testing::Test {
  protected:
    PlotPageTest() {
        XPluginsManager::setFactories({std::make_shared<XPTextFileFactory>()});
        document.addDatasourceWithSettings(QLatin1String(XPTextEditor::identifier),
                                           {{u"Text"_qs, u"1 10\n2 20\n3 40\n"_qs}});
        EXPECT_TRUE(support::waitUntil([this] { return !document.isReading(); }));
        document.addNewCurve()->setY_data_index(2);
        controller.view()->resize(920, 550);
        controller.setDocument(&document);
    }
    ~PlotPageTest() override { controller.setDocument(nullptr); }

    PlotScene& scene() { return controller.plotView().scene(); }

    MoxDocument document;
    XGraphViewController controller;
};

TEST_F(PlotPageTest, startsFittedToTheData) {
    EXPECT_DOUBLE_EQ(scene().axisY()->minValue(), 10 - 1.5);
    EXPECT_DOUBLE_EQ(scene().axisY()->maxValue(), 40 + 1.5);
    EXPECT_EQ(scene().curves(), document.curves());
}

TEST_F(PlotPageTest, titlesTakeRoomOnlyWhenTheyHaveText) {
    const QRect without = controller.plotView().geometry();
    EXPECT_EQ(without, QRect(8, 8, 920 - 20, 550 - 16));
    document.setPlotAreaTitle(u"Tide"_qs);
    document.setAxisTitleX(u"Time"_qs);
    document.setAxisTitleY(u"m"_qs);
    EXPECT_EQ(controller.plotView().geometry(), without.adjusted(20, 38, 0, -20));
    document.setPlotAreaTitle(std::nullopt);
    EXPECT_EQ(controller.plotView().geometry(), without.adjusted(20, 0, 0, -20));
}

TEST_F(PlotPageTest, followsTheDocumentKeyByKey) {
    document.setShowHorizontalLines(false);
    document.setAxisMinX(0.5);
    EXPECT_FALSE(scene().options.showHorizontalLines);
    EXPECT_EQ(scene().options.axisMinX, 0.5);
    document.setAxisMinX(std::nullopt);
    EXPECT_TRUE(std::isnan(scene().options.axisMinX));
    document.setAxisX_type(XAxisManager::sharedManager().axisInfoWithId(u"zen"_qs));
    EXPECT_EQ(scene().axisX()->ticks(), nullptr);
    document.addNewCurve();
    EXPECT_EQ(scene().curves().size(), 2);
    controller.setDocument(nullptr);
    document.setAxisMinX(7);
    EXPECT_TRUE(std::isnan(scene().options.axisMinX));
}

TEST_F(PlotPageTest, takesOneDocumentAtATime) {
    const support::AssertionRecorder assertions;
    MoxDocument other;
    controller.setDocument(&other);
    EXPECT_EQ(assertions.texts(), std::vector<std::string>{"XGraphViewController already has a document!"});
    EXPECT_EQ(controller.document(), &document);
}

} // namespace
