// The plot page: it follows its document, its tools and titles work, and it is laid out as stated.
#include "Classes/Axes/XAxis.h"
#include "Classes/Axes/XAxisManager.h"
#include "Classes/CurvesSidebar/CCurveViewController.h"
#include "Classes/CurvesSidebar/CSmartListView.h"
#include "Classes/GraphViewController/PaneSplitter.h"
#include "Classes/GraphViewController/PlotTitleField.h"
#include "Classes/PlotView/XVerticalLabel.h"
#include "PageFixture.h"

#include <QLabel>
#include <QToolButton>

#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

class GraphViewControllerTest : public PageFixture {
  protected:
    GraphViewControllerTest() {
        addData();
        addCurve()->setY_data_index(2);
        controller.fitToData();
    }

    PlotTitleField& plotTitle() { return part<PlotTitleField>("plotArea_titleLabel"); }
    PlotTitleField& axisXTitle() { return part<PlotTitleField>("axisX_titleLabel"); }
    PlotTitleField& axisYTitle() { return part<PlotTitleField>("axisY_titleLabel"); }
    QSize container() { return part("plotViewContainer").size(); }
    QColor paperAt(const char* name) {
        QWidget& view = part(name);
        QImage image(view.size(), QImage::Format_RGB32);
        view.render(&image);
        return image.pixelColor(2, image.height() - 3);
    }
};

TEST_F(GraphViewControllerTest, startsFittedToTheData) {
    EXPECT_DOUBLE_EQ(scene().axisY()->minValue(), 10 - 1.5);
    EXPECT_DOUBLE_EQ(scene().axisY()->maxValue(), 40 + 1.5);
    EXPECT_EQ(scene().curves(), document.curves());
}

TEST_F(GraphViewControllerTest, followsTheDocumentKeyByKey) {
    document.setShowHorizontalLines(false);
    document.setAxisMinX(0.5);
    EXPECT_FALSE(scene().options.showHorizontalLines);
    EXPECT_EQ(scene().options.axisMinX, 0.5);
    document.setAxisMinX(std::nullopt);
    EXPECT_TRUE(std::isnan(scene().options.axisMinX));
    document.setAxisX_type(XAxisManager::sharedManager().axisInfoWithId(u"zen"_qs));
    EXPECT_EQ(scene().axisX()->ticks(), nullptr);
    const XAxisHandle axis = scene().axisX();
    document.setAxisX_type(nullptr);
    EXPECT_EQ(scene().axisX(), axis) << "a kind that cannot be made changes nothing";
    controller.setDocument(nullptr);
    document.setAxisMinX(7);
    EXPECT_TRUE(std::isnan(scene().options.axisMinX));
}

TEST_F(GraphViewControllerTest, takesOneDocumentAtATime) {
    const support::AssertionRecorder assertions;
    MoxDocument other;
    controller.setDocument(&other);
    EXPECT_EQ(assertions.texts(), std::vector<std::string>{"XGraphViewController already has a document!"});
    EXPECT_EQ(controller.document(), &document);
}

TEST_F(GraphViewControllerTest, rowsFollowTheCurves) {
    auto& list = part<CSmartListView>("curvesList");
    const auto shownCurves = [&] {
        QList<XCurveHandle> curves;
        for (const CSmartListView::Row& row : list.viewControllers())
            curves += qobject_cast<CCurveViewController*>(row.get())->curve();
        return curves;
    };
    QTest::mouseClick(&part("addCurveButton"), Qt::LeftButton);
    document.insertCurveAtIndex(XCurve::make(), 0);
    EXPECT_EQ(document.curves().size(), 3);
    EXPECT_EQ(shownCurves(), document.curves());
    EXPECT_EQ(scene().curves(), document.curves());
    EXPECT_EQ(part<QLabel>("curvesCountLabel").text(), u"3"_qs);
    const XCurveHandle second = document.curves()[1];
    qobject_cast<CCurveViewController*>(list.viewControllers()[1].get())->onDeleteCurve();
    EXPECT_FALSE(document.curves().contains(second));
    EXPECT_EQ(shownCurves(), document.curves());
    while (!document.curves().isEmpty())
        document.removeCurve(document.curves().first());
    EXPECT_FALSE(part("noCurvesView").isHidden());
    QTest::mouseClick(&part("firstCurveButton"), Qt::LeftButton);
    EXPECT_TRUE(part("noCurvesView").isHidden());
    EXPECT_EQ(controller.itemsCount(), 1);
    EXPECT_NE(controller.viewControllerForItem(0), nullptr);
    document.removeDataSourceAtIndex(0);
    EXPECT_FALSE(part("addCurveButton").isEnabled());
    EXPECT_EQ(controller.status(), u"No data source yet"_qs);
    controller.onAddCurve();
    EXPECT_EQ(document.curves().size(), 1) << "no curve without a data source";
}

TEST_F(GraphViewControllerTest, stepsOfANumberEndWhereAnotherButtonIsPressed) {
    const XCurveHandle curve = document.curves().first();
    const int width = curve->lineWidth();
    for (const char* button : {"deleteButton", "addCurveButton"}) {
        forgetChanges();
        part("lineWidthField").setFocus();
        QTest::keyClick(&part("lineWidthField"), Qt::Key_Up);
        QTest::mouseClick(&part(button), Qt::LeftButton);
        EXPECT_NE(document.curves().size(), 1) << button;
        document.undoManager().undo();
        EXPECT_EQ(document.curves(), QList{curve}) << button;
        EXPECT_EQ(curve->lineWidth(), width + 1) << button << " is a step of its own";
        document.undoManager().undo();
        EXPECT_EQ(curve->lineWidth(), width) << button;
        EXPECT_TRUE(support::waitUntil(
            [this] { return page().findChildren<QWidget*>(u"lineWidthField"_qs).size() == 1; }));
    }
}

TEST_F(GraphViewControllerTest, theKeyboardStaysInTheListWhenItsRowGoes) {
    addCurve();
    addCurve();
    auto& list = part<CSmartListView>("curvesList");
    const auto viewOf = [&](std::size_t index) { return list.viewControllers()[index]->view(); };
    const auto remove = [this] {
        QTest::keyClick(page().focusWidget(), Qt::Key_Delete, Qt::ControlModifier | Qt::ShiftModifier);
    };
    viewOf(1)->findChild<QWidget*>(u"opacityField"_qs)->setFocus();
    for (const std::size_t next : {1U, 0U}) {
        remove();
        ASSERT_EQ(list.viewControllers().size(), next + 1);
        EXPECT_TRUE(viewOf(next)->isAncestorOf(page().focusWidget())) << next;
    }
    remove();
    EXPECT_TRUE(part("firstCurveButton").hasFocus());
}

TEST_F(GraphViewControllerTest, toolsFollowThePlotAndThePlotFollowsThem) {
    int told = 0;
    QObject::connect(&controller, &XGraphViewController::commandStatesChanged, &page(), [&] { ++told; });
    const auto click = [this](const char* name) { QTest::mouseClick(&part(name), Qt::LeftButton); };
    const auto isOn = [this](const char* name) { return part<QToolButton>(name).isChecked(); };
    const char* const modes[] = {"panButton", "zoomButton", "rulerButton"};
    for (const int mode : {1, 2, 0, 2}) {
        told = 0;
        click(modes[mode]);
        EXPECT_EQ(controller.mouseMode(), mode);
        EXPECT_TRUE(isOn(modes[mode]));
        EXPECT_EQ(part("stickyRulerButton").isEnabled(), mode == 2);
        EXPECT_EQ(controller.status(), plotView().message());
        EXPECT_GT(told, 0);
    }
    click("stickyRulerButton");
    EXPECT_TRUE(plotView().stickyRuler() && isOn("stickyRulerButton"));
    controller.setMouseMode(0);
    EXPECT_TRUE(isOn("panButton") && !isOn("rulerButton"));
    EXPECT_TRUE(isOn("fitButton"));
    click("fitButton");
    EXPECT_TRUE(isOn("fitButton")) << "a second click is another fit";
    plotView().panBy({30, 0});
    EXPECT_FALSE(isOn("fitButton"));
    click("fitButton");
    EXPECT_TRUE(isOn("fitButton") && scene().autoFitToData);
}

TEST_F(GraphViewControllerTest, theStatusLineSaysWhyAnExpressionHasNoResult) {
    EXPECT_EQ(controller.status(), plotView().message());
    const XCurveHandle curve = document.curves()[0];
    curve->setY_data_expression(u"nosuch("_qs);
    curve->setY_uses_expression(true);
    EXPECT_TRUE(support::waitUntil([&] { return !curve->yExpressionError().isEmpty(); }));
    EXPECT_TRUE(controller.status().contains(curve->yExpressionError())) << controller.status().toStdString();
    document.removeCurve(curve);
    EXPECT_EQ(controller.status(), plotView().message()) << "gone with its row";
}

TEST_F(GraphViewControllerTest, blackBackgroundHasAWayBackAndNoSeam) {
    document.setAxisTitleX(u"x"_qs); // titles leave a corner of the container free
    document.setAxisTitleY(u"y"_qs);
    for (const bool black : {true, false}) {
        controller.setBlackBackground(black);
        const QColor paper = black ? Qt::black : Qt::white;
        for (const char* view : {"plotPane", "plotViewContainer", "plotView"})
            EXPECT_EQ(paperAt(view), paper) << view;
        EXPECT_EQ(controller.blackBackground(), black);
    }
    EXPECT_EQ(scene().styles().color(u"GridColor"_qs), PlotStyles().color(u"GridColor"_qs));
}

TEST_F(GraphViewControllerTest, titlesTakeRoomWhenTheyHaveTextOrTheKeyboard) {
    const QRect whole(QPoint(0, 0), container());
    EXPECT_EQ(plotView().geometry(), whole);
    EXPECT_FALSE(axisXTitle().isEnabled() || plotTitle().isEnabled());
    document.setPlotAreaTitle(u"Tide"_qs);
    document.setAxisTitleX(u"Time"_qs);
    document.setAxisTitleY(u"m"_qs);
    EXPECT_EQ(plotView().geometry(), whole.adjusted(20, 38, 0, -20));
    EXPECT_EQ(plotTitle().text(), u"Tide"_qs);
    document.setPlotAreaTitle(std::nullopt);
    document.setAxisTitleX(QString());
    EXPECT_EQ(plotView().geometry(), whole.adjusted(20, 0, 0, 0));
    controller.editAxisXTitle();
    EXPECT_EQ(plotView().geometry().height(), container().height() - 20) << "room before there is text";
    QTest::keyClicks(&axisXTitle(), u"Local time"_qs);
    QTest::keyClick(&axisXTitle(), Qt::Key_Return);
    EXPECT_EQ(document.axisTitleX(), QString(u"Local time"_qs));
    EXPECT_TRUE(plotView().hasFocus());
    controller.editPlotTitle();
    EXPECT_EQ(plotView().geometry().top(), 38);
    QTest::keyClicks(&plotTitle(), u"never mind"_qs);
    QTest::keyClick(&plotTitle(), Qt::Key_Escape);
    EXPECT_EQ(document.plotAreaTitle(), std::nullopt);
    EXPECT_EQ(plotView().geometry().top(), 0);
    controller.editAxisYTitle();
    QTest::keyClicks(&axisYTitle(), u"Height"_qs);
    QTest::keyClick(&axisYTitle(), Qt::Key_Return);
    EXPECT_EQ(part<XVerticalLabel>("axisY_verticalLabel").stringValue(), u"Height"_qs);
    EXPECT_TRUE(axisYTitle().isHidden());
}

TEST_F(GraphViewControllerTest, doubleClicksBesideThePlotEditTheTitleThere) {
    struct Row {
        QWidget& view;
        QPoint position;
        PlotTitleField& title;
    };
    const int width = plotView().width();
    const int height = plotView().height();
    QWidget& pane = part("plotPane");
    const std::array rows{
        Row{plotView(), {width / 2, height - 4}, axisXTitle()},
        Row{plotView(), {4, height / 2}, axisYTitle()}, Row{pane, {width / 2, 3}, plotTitle()},
        Row{pane, {width / 2, pane.height() - 3}, axisXTitle()}, Row{pane, {3, height / 2}, axisYTitle()}};
    for (const Row& row : rows) {
        QTest::mouseDClick(&row.view, Qt::LeftButton, {}, row.position);
        EXPECT_TRUE(row.title.hasFocus()) << row.title.objectName().toStdString();
        controller.onBecameVisible();
    }
    QTest::mouseDClick(&plotView(), Qt::LeftButton, {}, {width / 2, height / 2});
    EXPECT_TRUE(plotView().hasFocus()) << "the plot itself has other uses for clicks";
    document.setAxisTitleY(u"m"_qs);
    QTest::mouseClick(&part("axisY_verticalLabel"), Qt::LeftButton);
    EXPECT_TRUE(axisYTitle().hasFocus());
}

TEST_F(GraphViewControllerTest, windowSizesAreTheRightPanesAlone) {
    const std::array<std::pair<int, int>, 6> firstWidths{
        {{800, 186}, {859, 186}, {860, 216}, {1099, 216}, {1100, 248}, {1280, 248}}};
    for (const auto& [window, left] : firstWidths)
        EXPECT_EQ(PaneSplitter::firstWidth(window), left) << window;
    QWidget& left = part("leftView");
    EXPECT_EQ(left.width(), 216);
    page().resize(1400, 600);
    EXPECT_EQ(left.width(), 216);
    EXPECT_EQ(part("rightView").width(), 1400 - 216 - 1);
    auto& splitter = part<PaneSplitter>("splitView");
    splitter.setSizes({10, 1390});
    EXPECT_EQ(left.width(), 186);
    splitter.setSizes({900, 500});
    EXPECT_EQ(left.width(), 420);
    EXPECT_EQ(splitter.handle(1)->width(), 7) << "to grab";
    EXPECT_EQ(splitter.handle(1)->mask().boundingRect().width(), 1) << "to see";
}

TEST_F(GraphViewControllerTest, narrowToolsLoseTheirWords) {
    page().resize(216 + 1 + 440, 484);
    EXPECT_EQ(part<QToolButton>("panButton").toolButtonStyle(), Qt::ToolButtonTextBesideIcon);
    EXPECT_EQ(part("panButton").width(), 68);
    page().resize(216 + 1 + 439, 484);
    QCoreApplication::processEvents();
    for (const char* name : {"panButton", "zoomButton", "rulerButton", "fitButton"}) {
        EXPECT_EQ(part<QToolButton>(name).toolButtonStyle(), Qt::ToolButtonIconOnly) << name;
        EXPECT_EQ(part(name).width(), 30) << name;
        EXPECT_FALSE(part(name).accessibleName().isEmpty()) << name;
    }
}

TEST_F(GraphViewControllerTest, theKeyboardGoesFromRowsToToolsToThePlot) {
    addCurve(u"Second"_qs);
    addCurve(u"Third"_qs);
    document.setShowLegend(true);
    controller.setLegendVisible(true);
    document.insertCurveAtIndex(XCurve::make(), 0);
    QList<QWidget*> chain;
    for (QWidget* next = page().nextInFocusChain(); next != &page(); next = next->nextInFocusChain())
        chain += next;
    qsizetype last = -1;
    const auto comesNext = [&](QWidget* widget, const char* name) {
        EXPECT_GT(chain.indexOf(widget), last) << name;
        last = chain.indexOf(widget);
    };
    comesNext(&part("addCurveButton"), "add");
    for (const auto& row : part<CSmartListView>("curvesList").viewControllers())
        comesNext(row->view()->findChild<QWidget*>(u"curveName"_qs), "row");
    comesNext(&part("panButton"), "tools");
    comesNext(&part("fitButton"), "fit");
    comesNext(&plotView(), "plot");
    const auto& legendRows = controller.graphLegend().curveViews();
    comesNext(legendRows[1]->textLabel(), "legend");
    comesNext(legendRows[0]->textLabel(), "legend, the last curve");
}

} // namespace
