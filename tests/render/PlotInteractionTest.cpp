// Gestures on a plot, drag by drag: what each does to the axes, and what no gesture may do to them.
#include "Classes/PlotView/PlotInteraction.h"
#include "Classes/Axes/XAxis.h"
#include "Classes/Axes/XAxisManager.h"
#include "Classes/Axes/XLogAxis.h"
#include "Classes/PlotView/PlotLayout.h"
#include "render/SmallPlot.h"
#include "support/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

namespace {

using Interaction = PlotInteraction;
using WheelZooms = PlotInteraction::WheelZooms;

// A plot rectangle of 300 x 200 pixels at 36,29.
using support::inf;
using support::smallPlot;

class PlotInteractionTest : public testing::Test {
  protected:
    PlotInteractionTest() { useAxes("numeric", {0, 300}, {0, 200}); } // a unit a pixel

    void useAxes(const char* kind, XValueRange rangeX, XValueRange rangeY) {
        const auto make = [kind](const XValueRange& range, int length) {
            auto axis = XAxisManager::sharedManager().createAxisWithTypeId(QLatin1String(kind));
            axis->setRangeMinMax(range.minimum, range.maximum);
            axis->setPixelLength(length);
            return axis;
        };
        x = make(rangeX, smallPlot.selfWidth);
        y = make(rangeY, smallPlot.selfHeight);
    }
    PlotAxes axes() { return {*x, *y, smallPlot}; }
    // Pixels of the plot rectangle instead of the view.
    static QPointF at(double pixelX, double pixelY) { return {36 + pixelX, 29 + pixelY}; }
    Interaction::Effects drag(QPointF from, QPointF to) {
        plot.press(axes(), from);
        return plot.drag(axes(), to);
    }
    const PlotSelection& selection() { return plot.overlay().selection; }
    void expectRanges(XValueRange wantedX, XValueRange wantedY, const std::string& name) {
        EXPECT_NEAR(x->minValue(), wantedX.minimum, 1e-9) << name << ": least x";
        EXPECT_NEAR(x->maxValue(), wantedX.maximum, 1e-9) << name << ": greatest x";
        EXPECT_NEAR(y->minValue(), wantedY.minimum, 1e-9) << name << ": least y";
        EXPECT_NEAR(y->maxValue(), wantedY.maximum, 1e-9) << name << ": greatest y";
    }

    std::unique_ptr<XAxis> x, y;
    Interaction plot;
};

TEST_F(PlotInteractionTest, aDragPansSelectsOrMeasuresByMode) {
    EXPECT_EQ(drag(at(50, 50), at(80, 90)), Interaction::Redraw | Interaction::RangesEdited);
    plot.drag(axes(), at(90, 90)); // from where the last step ended
    expectRanges({-40, 260}, {-40, 160}, "the plot follows the hand to the right and upwards");
    EXPECT_TRUE(selection().isEmpty());

    for (const int mode : {zoomMouseMode, rulerMouseMode}) {
        useAxes("numeric", {0, 300}, {0, 200});
        plot.setMouseMode(mode);
        EXPECT_EQ(drag(at(50.9, 60.9), at(20, 100)), Interaction::Redraw | Interaction::RangesEdited);
        EXPECT_EQ(selection().origin, QPointF(50, 60)) << "fractions of pixels do not count";
        EXPECT_EQ(QPointF(selection().width(), selection().height()), QPointF(-30, 40));
        expectRanges({0, 300}, {0, 200}, "selecting moves nothing");
        EXPECT_TRUE(plot.setMouseMode(panMouseMode) & Interaction::Redraw);
        EXPECT_TRUE(selection().isEmpty()) << "another mode drops it";
        EXPECT_EQ(plot.drag(axes(), at(0, 0)), Interaction::NoEffect) << "and ends the drag";
    }
    plot.setMouseMode(3);
    EXPECT_EQ(drag(at(50, 50), at(80, 90)), Interaction::NoEffect) << "no such mode";
    expectRanges({0, 300}, {0, 200}, "no such mode");
}

TEST_F(PlotInteractionTest, selectingBeyondAnEdgeScrolls) {
    struct Row {
        const char* name;
        QPointF to; // of the view, 336 x 229
        XValueRange x, y;
    };
    const Row rows[] = {
        {"right", {346, 100}, {10, 310}, {0, 200}},  {"on the right edge", {336, 100}, {0, 300}, {0, 200}},
        {"left", {30, 100}, {-6, 294}, {0, 200}},    {"on the left edge", {36, 100}, {0, 300}, {0, 200}},
        {"above", {100, 233}, {0, 300}, {4, 204}},   {"below", {100, 25}, {0, 300}, {-4, 196}},
        {"a corner", {340, 0}, {4, 304}, {-29, 171}}};
    for (const int mode : {zoomMouseMode, rulerMouseMode}) {
        plot.setMouseMode(mode);
        for (const Row& row : rows) {
            useAxes("numeric", {0, 300}, {0, 200});
            drag(at(50, 50), row.to);
            EXPECT_EQ(selection().end, row.to - QPointF(36, 29)) << row.name << ": the point before it moved";
            expectRanges(row.x, row.y, row.name);
        }
    }
}

TEST_F(PlotInteractionTest, releasingZoomsIntoARectangleThatHasBothSizes) {
    struct Row {
        const char* name;
        QPointF from, to;
        XValueRange x, y;
    };
    const Row rows[] = {{"upwards", {50, 60}, {150, 100}, {50, 150}, {60, 100}},
                        {"downwards and back", {150, 100}, {50, 60}, {50, 150}, {60, 100}},
                        {"no width", {50, 60}, {50, 100}, {0, 300}, {0, 200}},
                        {"no height", {50, 60}, {150, 60}, {0, 300}, {0, 200}},
                        {"a click", {50, 60}, {50, 60}, {0, 300}, {0, 200}}};
    plot.setMouseMode(zoomMouseMode);
    for (const Row& row : rows) {
        useAxes("numeric", {0, 300}, {0, 200});
        drag(at(row.from.x(), row.from.y()), at(row.to.x(), row.to.y()));
        EXPECT_EQ(plot.release(axes()), Interaction::Redraw) << row.name;
        expectRanges(row.x, row.y, row.name);
        EXPECT_TRUE(selection().isEmpty()) << row.name;
    }
    // 1e-15 is lost in a difference to 1e15.
    useAxes("log", {1e-15, 1e15}, {1e-15, 1e15});
    drag(at(299, 199), at(0, 0));
    plot.release(axes());
    EXPECT_DOUBLE_EQ(x->minValue(), 1e-15);
    EXPECT_EQ(plot.release(axes()), Interaction::NoEffect) << "released before";
}

TEST_F(PlotInteractionTest, aReleasedRulerGoesUnlessItIsSticky) {
    plot.setMouseMode(rulerMouseMode);
    drag(at(0, 0), at(50, 0));
    EXPECT_FALSE(selection().isEmpty()) << "one size is enough";
    plot.modifiersChanged(Qt::AltModifier);
    EXPECT_EQ(plot.release(axes()), Interaction::Redraw | Interaction::RulerReleased);
    EXPECT_TRUE(selection().isEmpty());
    EXPECT_FALSE(plot.dimGrid());

    plot.setStickyRuler(true);
    drag(at(0, 0), at(50, 0));
    plot.modifiersChanged(Qt::AltModifier);
    EXPECT_EQ(plot.release(axes()), Interaction::Redraw);
    EXPECT_FALSE(selection().isEmpty());
    EXPECT_FALSE(plot.dimGrid());
    EXPECT_EQ(plot.setStickyRuler(false), Interaction::Redraw | Interaction::RulerReleased);
    EXPECT_TRUE(selection().isEmpty());
}

TEST_F(PlotInteractionTest, theWheelZoomsAboutTheMouse) {
    struct Row {
        const char* name;
        double notches;
        Qt::KeyboardModifiers modifiers;
        WheelZooms setting;
        double factorX, factorY;
    };
    const Qt::KeyboardModifiers shift = Qt::ShiftModifier, alt = Qt::AltModifier;
    const Row rows[] = {{"a notch in", 1, {}, WheelZooms::BothAxes, 0.9, 0.9},
                        {"a notch out", -1, {}, WheelZooms::BothAxes, 1.1, 1.1},
                        {"a sixteenth", 1.0 / 16, {}, WheelZooms::BothAxes, 1 - 0.1 / 16, 1 - 0.1 / 16},
                        {"five in", 5, {}, WheelZooms::BothAxes, 0.5, 0.5},
                        {"far in", 80, {}, WheelZooms::BothAxes, 0.5, 0.5},
                        {"far out", -10, {}, WheelZooms::BothAxes, 1.5, 1.5},
                        {"Shift", 1, shift, WheelZooms::BothAxes, 1, 0.9},
                        {"Alt", 1, alt, WheelZooms::BothAxes, 0.9, 1},
                        {"both", 1, shift | alt, WheelZooms::BothAxes, 1, 1},
                        {"x only", 1, {}, WheelZooms::XOnly, 0.9, 1},
                        {"y only", 1, {}, WheelZooms::YOnly, 1, 0.9},
                        {"Shift over x only", 1, shift, WheelZooms::XOnly, 1, 0.9},
                        {"Alt over y only", 1, alt, WheelZooms::YOnly, 0.9, 1}};
    for (const Row& row : rows) {
        useAxes("numeric", {0, 300}, {0, 200});
        plot.wheelZooms = row.setting;
        EXPECT_EQ(plot.wheel(axes(), at(60.9, 50.9), row.notches, row.modifiers),
                  Interaction::Redraw | Interaction::RangesEdited);
        expectRanges({60 - 60 * row.factorX, 60 + 240 * row.factorX},
                     {50 - 50 * row.factorY, 50 + 150 * row.factorY}, row.name);
    }
}

// Whatever is done to an axis for however long, it shows a finite range that ascends, and does what was asked
// or nothing.
TEST_F(PlotInteractionTest, noGestureEverBreaksAnAxis) {
    struct Gesture {
        const char* name;
        std::function<void(Interaction&, const PlotAxes&)> perform;
    };
    const auto zoom = [](double notches) {
        return [=](Interaction& with, const PlotAxes& axes) { with.wheel(axes, at(70, 150), notches, {}); };
    };
    const auto pan = [](double pixels) {
        return [=](Interaction&, const PlotAxes& axes) { Interaction::panBy(axes, {pixels, pixels}); };
    };
    const Gesture gestures[] = {
        {"zoom in", zoom(5)},
        {"zoom out", zoom(-5)},
        {"pan down", pan(-150)},
        {"pan up", pan(150)},
        {"align", [](Interaction&, const PlotAxes& axes) { Interaction::alignX(axes); }}};
    const auto span = [](const XAxis& axis) { return axis.maxValue() / axis.minValue(); };
    const auto check = [&](const XAxis& axis, double spanBefore, bool zoomedOut) {
        ASSERT_TRUE(std::isfinite(axis.minValue()) && std::isfinite(axis.maxValue()));
        ASSERT_LT(axis.minValue(), axis.maxValue());
        for (const int pixel : {0, 100, axis.pixelLength() - 1})
            ASSERT_NEAR(axis.valueToPixel(axis.pixelToValue(pixel)), pixel, 0.5);
        if (zoomedOut && axis.minValue() > 0) {
            ASSERT_GE(span(axis), spanBefore * (1 - 1e-9)) << "never narrower";
        }
    };
    for (const char* kind : {"numeric", "log", "pseudolog", "timeline", "zen"})
        for (const Gesture& first : gestures)
            for (const Gesture& second : gestures) {
                useAxes(kind, {1, 2000}, {0.5, 3});
                for (int step = 0; step < 3000; ++step) {
                    const Gesture& gesture = step < 1500 ? first : second;
                    SCOPED_TRACE(std::string(kind) + ", " + first.name + ", then " + second.name);
                    const double spanX = span(*x), spanY = span(*y);
                    gesture.perform(plot, axes());
                    const bool zoomedOut = &gesture == gestures + 1;
                    ASSERT_NO_FATAL_FAILURE(check(*x, spanX, zoomedOut));
                    ASSERT_NO_FATAL_FAILURE(check(*y, spanY, zoomedOut));
                }
                if (const XAxisTicks marks = x->ticks()) {
                    EXPECT_LT(marks->size(), 5000U) << kind;
                }
            }
}

TEST_F(PlotInteractionTest, aRangeThatCannotBeEditedStaysAsItIs) {
    struct Row {
        const char* name;
        XValueRange range, panned;
    };
    const Row rows[] = {{"backwards: it may be moved, but not turned over", {-4, -6}, {-4.5, -6.5}},
                        {"empty", {5, 5}, {5, 5}},
                        {"no number", {NAN, NAN}, {NAN, NAN}},
                        {"endless", {0, inf}, {0, inf}},
                        {"too wide for a difference", {-1.7e308, 1.7e308}, {-1.7e308, 1.7e308}},
                        {"a few representable values", {1, 1 + 1e-14}, {1, 1 + 1e-14}},
                        {"subnormal", {0, 1e-320}, {0, 1e-320}}};
    for (const Row& row : rows) {
        useAxes("numeric", {0, 300}, row.range);
        Interaction::panBy(axes(), {0, -50});
        EXPECT_EQ(std::isnan(y->minValue()), std::isnan(row.panned.minimum)) << row.name;
        if (!std::isnan(row.panned.minimum)) {
            EXPECT_EQ(y->minValue(), row.panned.minimum) << row.name;
            EXPECT_EQ(y->maxValue(), row.panned.maximum) << row.name;
        }
    }
    // The end of its values stops both ends, however small the step.
    useAxes("log", {1e-200, 1e-190}, {1e190, 1e200});
    Interaction::panBy(axes(), {5, -5});
    EXPECT_EQ(x->maxValue(), 1e-190);
    EXPECT_EQ(y->minValue(), 1e190);
    XLogAxis fresh;
    fresh.setPixelLength(300);
    Interaction::zoomBy({fresh, *y, smallPlot}, 2);
    EXPECT_EQ(fresh.minValue(), 0) << "a range that cannot be set again";
}

TEST_F(PlotInteractionTest, altDimsTheGridWhileSomethingIsSelected) {
    EXPECT_EQ(plot.modifiersChanged(Qt::AltModifier), Interaction::NoEffect);
    EXPECT_FALSE(plot.dimGrid()) << "nothing is selected";
    for (const int mode : {zoomMouseMode, rulerMouseMode}) {
        plot.setMouseMode(mode);
        const std::function<void()> ends[] = {
            [this] { plot.modifiersChanged({}); }, [this] { plot.focusLost(); }, [this] { plot.escape(); },
            [this] { plot.release(axes()); }, [this] { plot.setMouseMode(panMouseMode); }};
        for (const auto& end : ends) {
            drag(at(50, 50), at(80, 90));
            EXPECT_EQ(plot.modifiersChanged(Qt::AltModifier | Qt::ShiftModifier), Interaction::Redraw);
            EXPECT_EQ(plot.modifiersChanged(Qt::AltModifier), Interaction::NoEffect) << "no change";
            EXPECT_TRUE(plot.dimGrid());
            end();
            EXPECT_FALSE(plot.dimGrid()) << "end " << &end - ends;
        }
    }
}

TEST_F(PlotInteractionTest, escapeEndsADragAndRestoresNothingElse) {
    EXPECT_EQ(plot.escape(), Interaction::NoEffect);
    drag(at(50, 50), at(80, 50));
    plot.escape();
    plot.drag(axes(), at(200, 50)); // the button is still down
    expectRanges({-30, 270}, {0, 200}, "a pan");
    plot.setMouseMode(zoomMouseMode);
    drag(at(50, 50), at(310, 100));
    plot.escape();
    EXPECT_EQ(plot.release(axes()), Interaction::NoEffect);
    expectRanges({-20, 280}, {0, 200}, "a rectangle that had scrolled");
    plot.setMouseMode(rulerMouseMode);
    plot.setStickyRuler(true);
    drag(at(50, 50), at(80, 90));
    plot.release(axes());
    EXPECT_TRUE(plot.escape() & Interaction::RulerReleased) << "a measurement that stayed";
    EXPECT_TRUE(selection().isEmpty());
}

TEST_F(PlotInteractionTest, keysMeasureWithACrossHair) {
    EXPECT_EQ(plot.moveCrossHair(axes(), {1, 0}), Interaction::NoEffect) << "none while panning";
    plot.setMouseMode(rulerMouseMode);
    plot.moveCrossHair(axes(), {1, 0});
    EXPECT_EQ(plot.overlay().crossHair, at(151, 100)) << "from the middle";
    plot.escape();
    EXPECT_FALSE(plot.overlay().crossHair);
    plot.enter(at(20, 30));
    plot.moveCrossHair(axes(), {-1, 10});
    EXPECT_EQ(plot.overlay().crossHair, at(19, 40)) << "from the mouse";
    EXPECT_EQ(plot.overlay().pointer(), at(19, 40));

    plot.confirm(axes());
    plot.moveCrossHair(axes(), {0, 20});
    plot.move(at(21, 31));
    EXPECT_TRUE(plot.overlay().crossHair) << "a jolt of the mouse does not end it";
    plot.moveCrossHair(axes(), {-25, 0});
    EXPECT_EQ(QPointF(selection().width(), selection().height()), QPointF(-25, 20));
    EXPECT_EQ(plot.overlay().crossHair, at(0, 60)) << "stops at the edge";
    expectRanges({-6, 294}, {0, 200}, "which scrolls");
    plot.moveCrossHair(axes(), {900, 900});
    EXPECT_EQ(plot.overlay().crossHair, at(300, 200));
    EXPECT_TRUE(plot.confirm(axes()) & Interaction::RulerReleased);
    EXPECT_TRUE(selection().isEmpty());
    EXPECT_EQ(plot.move(at(22, 31)), Interaction::Redraw);
    EXPECT_FALSE(plot.overlay().crossHair) << "the mouse takes over";
}

TEST_F(PlotInteractionTest, theStatusLineSaysWhatADragDoesAndWhatLiesUnderTheMouse) {
    const auto texts = [this] {
        std::string all = plot.message().toStdString();
        for (const Readout& readout : plot.readouts(axes()))
            all += " | " + (readout.label + u' ' + readout.value).toStdString();
        return all;
    };
    EXPECT_EQ(texts(), "Drag to pan, wheel to zoom");
    plot.enter(at(40, 70));
    EXPECT_EQ(texts(), "Drag to pan, wheel to zoom | x 40 | y 70");
    plot.move(at(40, -10));
    EXPECT_EQ(texts(), "Drag to pan, wheel to zoom") << "beside the plot";
    plot.setMouseMode(zoomMouseMode);
    EXPECT_EQ(texts(), "Drag a rectangle to zoom in");
    drag(at(50, 60), at(20, 100));
    EXPECT_EQ(texts(), "Release to zoom in, Esc to cancel | x 20 | y 100");
    plot.setMouseMode(rulerMouseMode);
    plot.leave();
    EXPECT_EQ(texts(), "Drag to measure");
    drag(at(50, 60), at(20, 100));
    EXPECT_EQ(texts(), "Hold Alt to dim the grid, Esc to cancel | Δx 30 | Δy 40");
}

} // namespace
