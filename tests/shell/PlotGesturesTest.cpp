// The plot under mouse and keyboard, by real events on its widget.
#include "Classes/Axes/XAxis.h"
#include "Classes/PlotView/QuickHelpCard.h"
#include "Classes/PlotView/XPlotView.h"
#include "support/TableSource.h"
#include "support/TestSupport.h"

#include <QApplication>
#include <QScreen>
#include <QSignalSpy>
#include <QWheelEvent>
#include <QtTest/QTest>

#include <gtest/gtest.h>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

class StatusDelegate : public XPlotViewDelegate {
  public:
    int cleared = 0;
    void updateStatus(const std::optional<QString>& status) override { cleared += status ? 0 : 1; }
};

// The areas that a widget was asked to paint.
class PaintRecorder : public QObject {
  public:
    QList<QRect> areas;
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint)
            areas << static_cast<QPaintEvent*>(event)->rect();
        return false;
    }
};

class PlotGesturesTest : public testing::Test {
  protected:
    PlotGesturesTest() {
        PlotOptions& options = view.scene().options;
        options.axisMinX = options.axisMaxX = options.axisMinY = options.axisMaxY = NAN;
        options.showHorizontalLines = options.showVerticalLines = true;
        view.resize(500, 300);
        view.setDelegate(&delegate);
        view.scene().setRenderGrace(std::chrono::milliseconds(0));
        view.show();
        view.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&view));
        view.setFocus();
        reset();
    }

    // A unit a pixel, from 0 on.
    void reset() {
        const PlotLayout& layout = view.scene().calculateMargins();
        view.scene().axisX()->setRangeMinMax(0, layout.selfWidth);
        view.scene().axisY()->setRangeMinMax(0, layout.selfHeight);
        view.scene().calculateMargins();
        view.scene().axisX()->setRangeMinMax(0, layout.selfWidth);
        view.scene().autoFitToData = true;
        settle();
    }
    void settle() {
        (void)support::waitUntil([this] {
            view.repaint();
            return view.scene().renderTaskCount() == 0;
        });
        QApplication::processEvents();
    }
    double minX() { return view.scene().axisX()->minValue(); }
    double minY() { return view.scene().axisY()->minValue(); }
    // The widget's position of a pixel of the plot.
    QPoint at(int x, int y) {
        const PlotLayout& layout = view.scene().layout();
        return {layout.marginLeft + x, view.height() - 1 - layout.marginBottom - y};
    }
    void press(QPoint point) { QTest::mousePress(&view, Qt::LeftButton, {}, point); }
    void move(QPoint point, Qt::KeyboardModifiers modifiers = {}) {
        QMouseEvent event(QEvent::MouseMove, point, view.mapToGlobal(point), Qt::NoButton, m_held, modifiers);
        QApplication::sendEvent(&view, &event);
    }
    void drag(QPoint from, QPoint to) {
        press(from);
        m_held = Qt::LeftButton;
        move(to);
    }
    void release(QPoint point) {
        m_held = Qt::NoButton;
        QTest::mouseRelease(&view, Qt::LeftButton, {}, point);
    }
    void wheel(QPoint point, QPoint angle, Qt::KeyboardModifiers modifiers = {}) {
        QWheelEvent event(point, view.mapToGlobal(point), {}, angle, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(&view, &event);
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(&view, key, modifiers); }
    void addCurve() {
        XCurveHandle curve = XCurve::make();
        curve->setDataSource(
            std::make_shared<support::TableSource>(support::makeTable({{0, 200, 400}, {0, 200, 50}})));
        curve->setX_data_index(1);
        curve->setY_data_index(2);
        view.scene().setCurves({curve});
        settle();
    }

    StatusDelegate delegate;
    XPlotView view;

  private:
    Qt::MouseButtons m_held;
};

TEST_F(PlotGesturesTest, aDragMovesThePlotWithTheHandAndEndsFitting) {
    press(at(100, 100));
    const QSignalSpy fitting(&view, &XPlotView::autoFitToDataChanged),
        ranges(&view, &XPlotView::rangesChanged);
    drag(at(100, 100), at(130, 140));
    release(at(130, 140));
    move(at(160, 160));
    EXPECT_EQ(minX(), -30);
    EXPECT_EQ(minY(), -40) << "downwards on the screen is downwards in the data";
    EXPECT_EQ(ranges.count(), 1);
    ASSERT_EQ(fitting.count(), 1);
    EXPECT_EQ(fitting[0][0], false);
    key(Qt::Key_Home);
    EXPECT_EQ(fitting.count(), 2);
    EXPECT_EQ(minX(), -11);
    view.setMouseMode(rulerMouseMode);
    drag(at(50, 50), at(80, 80));
    const QPointF origin = view.scene().overlay.selection.origin;
    QTest::mousePress(&view, Qt::RightButton, {}, at(10, 10));
    EXPECT_EQ(view.scene().overlay.selection.origin, origin) << "the other buttons do nothing";
}

TEST_F(PlotGesturesTest, theWheelZoomsByItsAngleWhicheverWayThePlatformTurnsIt) {
    struct Row {
        const char* name;
        QPoint angle;
        Qt::KeyboardModifiers modifiers;
        double x, y; // factors
    };
    const Row rows[] = {{"a notch", {0, 120}, {}, 0.9, 0.9},
                        {"a touchpad's step", {0, 15}, {}, 1 - 0.1 / 8, 1 - 0.1 / 8},
                        {"sideways", {-120, 0}, {}, 1.1, 1.1},
                        {"Shift", {0, 120}, Qt::ShiftModifier, 1, 0.9},
                        {"Alt, turned over", {120, 0}, Qt::AltModifier, 0.9, 1},
                        {"Alt, turned over and slanted", {120, -15}, Qt::AltModifier, 0.9, 1},
                        {"Alt, as it was", {0, 120}, Qt::AltModifier, 0.9, 1},
                        {"no movement", {0, 0}, {}, 1, 1}};
    for (const Row& row : rows) {
        reset();
        wheel(at(100, 50), row.angle, row.modifiers);
        EXPECT_NEAR(minX(), 100 - 100 * row.x, 1e-9) << row.name;
        EXPECT_NEAR(minY(), 50 - 50 * row.y, 1e-9) << row.name;
        EXPECT_EQ(view.scene().autoFitToData, row.angle.isNull()) << row.name;
    }
}

TEST_F(PlotGesturesTest, aRectangleZoomsAndARulerReports) {
    view.setMouseMode(zoomMouseMode);
    drag(at(50, 60), at(150, 100));
    release(at(150, 100));
    EXPECT_EQ(minX(), 50);
    EXPECT_EQ(view.scene().axisY()->maxValue(), 100);
    EXPECT_EQ(delegate.cleared, 0);

    reset();
    view.setMouseMode(rulerMouseMode);
    const QSignalSpy messages(&view, &XPlotView::messageChanged),
        readouts(&view, &XPlotView::readoutsChanged);
    drag(at(50, 60), at(150, 100));
    EXPECT_EQ(view.readouts(), (Readouts{{u"Δx"_s, u"100"_s}, {u"Δy"_s, u"40"_s}}));
    EXPECT_EQ(messages.count(), 1);
    EXPECT_GE(readouts.count(), 1);
    delegate.cleared = 0;
    release(at(150, 100));
    EXPECT_EQ(delegate.cleared, 1);
    EXPECT_EQ(messages.count(), 2);

    view.setStickyRuler(true);
    drag(at(50, 60), at(150, 100));
    release(at(150, 100));
    EXPECT_EQ(delegate.cleared, 1) << "it stays";
    key(Qt::Key_Escape);
    EXPECT_EQ(delegate.cleared, 2);
}

TEST_F(PlotGesturesTest, altDimsTheGridUntilItIsReleasedOrTheFocusGoes) {
    const auto dims = [this] { return view.scene().options.dimGrid; };
    QTest::keyPress(&view, Qt::Key_Alt);
    EXPECT_FALSE(dims()) << "nothing is selected";
    view.setMouseMode(rulerMouseMode);
    drag(at(50, 60), at(150, 100));
    QTest::keyPress(&view, Qt::Key_Alt, Qt::AltModifier);
    EXPECT_TRUE(dims());
    QTest::keyRelease(&view, Qt::Key_Alt);
    EXPECT_FALSE(dims());
    move(at(160, 100), Qt::AltModifier);
    EXPECT_TRUE(dims()) << "a key that the window manager took";
    view.clearFocus();
    EXPECT_FALSE(dims());
}

TEST_F(PlotGesturesTest, keysPanZoomAndMeasure) {
    struct Row {
        const char* name;
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        QPointF shown; // the range's new start
    };
    const Row rows[] = {{"right", Qt::Key_Right, {}, {20, 0}},
                        {"left", Qt::Key_Left, {}, {-20, 0}},
                        {"up", Qt::Key_Up, {}, {0, 20}},
                        {"down, far", Qt::Key_Down, Qt::ShiftModifier, {0, -100}},
                        {"not ours", Qt::Key_Right, Qt::ControlModifier, {0, 0}},
                        {"of a key pad", Qt::Key_Right, Qt::KeypadModifier, {20, 0}}};
    for (const Row& row : rows) {
        reset();
        key(row.key, row.modifiers);
        EXPECT_EQ(QPointF(minX(), minY()), row.shown) << row.name;
    }
    reset();
    const double width = view.scene().axisX()->maxValue();
    key(Qt::Key_Plus, Qt::ShiftModifier);
    EXPECT_NEAR(view.scene().axisX()->maxValue() - minX(), width * 0.8, 1e-9);
    key(Qt::Key_Minus);
    EXPECT_NEAR(view.scene().axisX()->maxValue() - minX(), width, 1e-9) << "the way back";

    reset();
    view.setMouseMode(zoomMouseMode);
    key(Qt::Key_Left);
    const double start = view.scene().overlay.crossHair->x() - view.scene().layout().marginLeft;
    key(Qt::Key_Return);
    for (int i = 0; i < 3; ++i) {
        key(Qt::Key_Right, Qt::ControlModifier);
        key(Qt::Key_Up);
    }
    key(Qt::Key_Enter, Qt::KeypadModifier);
    EXPECT_EQ(minX(), start);
    EXPECT_EQ(view.scene().axisX()->maxValue(), minX() + 30);
    EXPECT_EQ(view.scene().axisY()->maxValue(), minY() + 3);
}

TEST_F(PlotGesturesTest, theCursorTellsTheMode) {
    const QSignalSpy modes(&view, &XPlotView::mouseModeChanged);
    EXPECT_EQ(view.cursor().shape(), Qt::ArrowCursor);
    view.setMouseMode(zoomMouseMode);
    EXPECT_EQ(view.cursor().hotSpot(), QPoint(10, 10));
    view.setMouseMode(rulerMouseMode);
    EXPECT_EQ(view.cursor().hotSpot(), QPoint(11, 11));
    EXPECT_EQ(view.cursor().pixmap().devicePixelRatio(), view.devicePixelRatioF());
    view.setMouseMode(rulerMouseMode);
    EXPECT_EQ(modes.count(), 2) << "said once";
    view.setMouseMode(panMouseMode);
    EXPECT_EQ(view.cursor().shape(), Qt::ArrowCursor);
}

TEST_F(PlotGesturesTest, theMouseIsFollowedByTwoStripsAndNothingIsLeftBehind) {
    addCurve();
    QTest::mouseMove(&view, at(50, 50));
    settle();
    PaintRecorder paints;
    view.installEventFilter(&paints);
    view.update(); // with which comes what is still to be painted of the new curve; the left strip follows
    EXPECT_TRUE(support::waitUntil([&] { return paints.areas.size() >= 2; }));
    paints.areas.clear();
    move(at(61, 50));
    const PlotLayout& layout = view.scene().layout();
    const QRect bottom(layout.marginLeft, view.height() - layout.marginBottom - tick_height, layout.selfWidth,
                       layout.marginBottom + tick_height);
    const QRect left(0, 0, layout.marginLeft + tick_height, layout.selfHeight);
    EXPECT_TRUE(support::waitUntil([&] { return paints.areas.size() >= 2; }));
    QApplication::processEvents();
    EXPECT_EQ(paints.areas, (QList{bottom, left})) << "and no third";
    view.removeEventFilter(&paints);

    for (const QPoint point : {QPoint(90, 20), QPoint(2, 3), QPoint(300, 180), QPoint(301, 4)}) {
        move(at(point.x(), point.y()));
        QApplication::processEvents();
    }
    QApplication::processEvents();
    const QImage shown = view.screen()->grabWindow(view.winId()).toImage();
    EXPECT_EQ(shown, view.grab().toImage().convertToFormat(shown.format())) << "as if drawn as a whole";
}

TEST_F(PlotGesturesTest, theQuickHelpGivesWayToTheFirstCurveAndToWant) {
    const auto* card = view.findChild<QuickHelpCard*>();
    view.resize(700, 300);
    EXPECT_TRUE(card->isVisible());
    EXPECT_LT(std::abs(card->geometry().center().x() - at(view.scene().layout().selfWidth / 2, 0).x()), 2);
    QWidget* under = view.childAt(card->geometry().center());
    EXPECT_EQ(under, nullptr) << "the mouse reaches the plot";
    view.resize(300, 300);
    EXPECT_FALSE(card->isVisible()) << "no room for its words";
    view.resize(700, 300);
    EXPECT_EQ(card->size(), QSize(560, 166));
    EXPECT_TRUE(view.accessibleDescription().startsWith(u"No curves, x from "_s));
    addCurve();
    EXPECT_FALSE(card->isVisible());
    EXPECT_TRUE(view.accessibleDescription().startsWith(u"1 curve, x from "_s));
}

TEST_F(PlotGesturesTest, aFocusThatCameByKeyIsSeen) {
    const auto edge = [this] { return view.grab().toImage().pixelColor(1, 1); };
    EXPECT_EQ(edge(), QColor(Qt::white));
    view.clearFocus();
    view.setFocus(Qt::TabFocusReason);
    EXPECT_NE(edge(), QColor(Qt::white));
    press(at(5, 5));
    EXPECT_NE(edge(), QColor(Qt::white)) << "a click does not take it away";
}

} // namespace
