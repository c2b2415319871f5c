// What is drawn over a plot at work: the mouse's marks, the selection, the ruler with its labels; and that
// lines stay sharp.
#include "Classes/Axes/XAxis.h"
#include "Classes/Axes/XAxisManager.h"
#include "Classes/PlotView/MouseTicks.h"
#include "Classes/PlotView/PainterCanvas.h"
#include "Classes/PlotView/PlotOverlay.h"
#include "Classes/PlotView/PlotScene.h"
#include "Classes/PlotView/RulerDrawing.h"
#include "Classes/PlotView/SelectionDrawing.h"
#include "render/SmallPlot.h"
#include "support/RecordingCanvas.h"

#include <QImage>
#include <QPainter>
#include <QTransform>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

namespace {

using support::FixedMeasure;
using support::RecordingCanvas;
using testing::ElementsAre;
using testing::IsEmpty;

// A plot rectangle of 300 x 200 points at 36,29.
using support::smallPlot;

std::shared_ptr<XAxis> axisOf(const char* kind, double min, double max, int length) {
    std::shared_ptr<XAxis> axis = XAxisManager::sharedManager().createAxisWithTypeId(QLatin1String(kind));
    axis->setRangeMinMax(min, max);
    axis->setPixelLength(length);
    return axis;
}

class OverlayDrawingTest : public testing::Test {
  protected:
    const PlotStyles styles;
    // A unit a pixel.
    std::shared_ptr<XAxis> x = axisOf("numeric", 0, 300, 300), y = axisOf("numeric", 0, 200, 200);

    std::vector<std::string> tick(const AxisInView& view, double mouse) {
        RecordingCanvas canvas;
        const bool isX = view.direction == Qt::Horizontal;
        PlotDrawing::drawMouseTick(canvas, view, isX ? smallPlot.bottomStrip() : smallPlot.leftStrip(), mouse,
                                   styles, FixedMeasure());
        return canvas.lines;
    }
    std::string tickText(const AxisInView& view, double mouse) {
        for (const std::string& line : tick(view, mouse))
            if (line.starts_with("text"))
                return line;
        return {};
    }
    std::vector<std::string> ruler(QPointF from, QPointF to, const char* containing = "") {
        RecordingCanvas canvas;
        PlotDrawing::drawRuler(canvas, smallPlot, *x, *y, {from, to}, styles, FixedMeasure());
        return canvas.linesWith(containing);
    }
};

TEST_F(OverlayDrawingTest, theMousesMarkFadesOutIntoTheLabelsBesideIt) {
    const AxisInView viewX = AxisInView::x(*x, smallPlot), viewY = AxisInView::y(*y, smallPlot);
    EXPECT_THAT(tick(viewX, 136.4),
                ElementsAre("save", "clip 36,0 300x34", "fill 125,10 21x14 #ffffff",
                            "gradient at 180 75,10 50x14", "gradient at 0 146,10 50x14",
                            "vertical 136,24 long 10 #808080", "text '100' 125,10 21x14 #000000", "restore"));
    EXPECT_THAT(tick(viewY, 79.6),
                ElementsAre("save", "clip 0,29 41x200", "fill 0,72 36x14 #ffffff",
                            "gradient at 270 0,52 36x20", "gradient at 90 0,86 36x20",
                            "horizontal 31,80 long 10 #808080", "text '51' 12,72 14x14 #000000", "restore"));
    struct Row {
        const char* name;
        AxisInView view;
        double mouse;
        const char* text;
    };
    const Row rows[] = {{"the left end", viewX, 36, "text '0' 46,10 7x14 #000000"},
                        {"the right end", viewX, 336, "text '300' 305,10 21x14 #000000"},
                        {"left of the plot", viewX, 35, ""},
                        {"right of the plot", viewX, 337, ""},
                        {"the foot", viewY, 29, "text '0' 19,33 7x14 #000000"},
                        {"the top", viewY, 229, "text '200' 5,211 21x14 #000000"},
                        {"below the plot", viewY, 28, ""},
                        {"above the plot", viewY, 230, ""}};
    for (const Row& row : rows)
        EXPECT_EQ(tickText(row.view, row.mouse), row.text) << row.name;
    EXPECT_EQ(tickText(AxisInView::x(*axisOf("zen", 0, 300, 300), smallPlot), 100), "") << "no marks";
}

TEST_F(OverlayDrawingTest, theSelectionIsADashedRectangleWithinThePlot) {
    const auto draw = [this](QPointF from, QPointF to) {
        RecordingCanvas canvas;
        PlotDrawing::drawSelection(canvas, smallPlot, *x, *y, {from, to}, styles);
        return canvas.lines;
    };
    const std::vector<std::string> rectangle = {"save",
                                                "clip 36,29 300x200",
                                                "line 46.5,49.5 to 86.5,49.5 dash 3 #000000",
                                                "line 46.5,79.5 to 86.5,79.5 dash 3 #000000",
                                                "line 46.5,49.5 to 46.5,79.5 dash 3 #000000",
                                                "line 86.5,49.5 to 86.5,79.5 dash 3 #000000",
                                                "restore"};
    EXPECT_EQ(draw({10, 20}, {50.9, 50}), rectangle);
    EXPECT_EQ(draw({50, 50}, {10, 20}), rectangle) << "to the left and down";
    EXPECT_THAT(draw({10, 20}, {10, 20}), IsEmpty());
    x = axisOf("log", 1, 1000, 300);
    EXPECT_EQ(draw({10, 20}, {109.9, 50}).at(2), "line 136.5,49.5 to 166.5,49.5 dash 3 #000000")
        << "kept: as wide as on a linear axis";
}

TEST_F(OverlayDrawingTest, theRulerShowsWhatItMeasures) {
    EXPECT_EQ(PlotDrawing::rulerTextBounds({20.2, 14}), QRectF(-5, -2, 31, 19));
    EXPECT_THAT(
        ruler({100, 50}, {200, 150}),
        ElementsAre(
            "save", "clip 36,29 300x200", //
            "line 136.5,79.5 to 236.5,179.5 dash 4 #000000", "line 136.5,29 to 136.5,229 dash 4 #000000",
            "line 236.5,29 to 236.5,229 dash 4 #000000", "line 36,79.5 to 336,79.5 dash 4 #000000",
            "line 36,179.5 to 336,179.5 dash 4 #000000", //
            "fill 136.5,29 100x2 #000000", "fill 36,79.5 2x100 #000000", "fill 171,34 32x20 #ffffff",
            "stroke 171,34 32x20 #808080",
            "text '100' 176,36 21x14 #000000", //
            "fill 41,120 32x20 #ffffff", "stroke 41,120 32x20 #808080",
            "text '100' 46,122 21x14 #000000", //
            "save", "rotate 136.5,79.5 by 45", "fill 191.5,84.5 32x20 #ffffff",
            "stroke 191.5,84.5 32x20 #808080", "text '141' 196.5,86.5 21x14 #000000", "restore", "restore"));
    EXPECT_THAT(ruler({100, 50}, {100, 50}), IsEmpty());
    EXPECT_THAT(ruler({100, 50}, {100, INFINITY}), IsEmpty());

    PlotStyles black;
    black.update(PlotStyles::blackBackgroundStyles());
    RecordingCanvas canvas;
    PlotDrawing::drawRuler(canvas, smallPlot, *x, *y, {{100, 50}, {200, 50}}, black, FixedMeasure());
    EXPECT_EQ(canvas.linesWith("#ffffff").size(), 5U + 2U + 3U) << "white lines, and cards that stay white";
    EXPECT_EQ(canvas.linesWith("text").size(), canvas.linesWith("#000000").size()) << "with black text";
}

TEST_F(OverlayDrawingTest, theDistanceReadsAlongTheRulerAndNeverUpsideDown) {
    struct Row {
        const char* name;
        QPointF to; // from 150,100
        const char* rotation;
    };
    const Row rows[] = {{"up to the right", {200, 150}, "rotate 186.5,129.5 by 45"},
                        {"down to the right", {200, 50}, "rotate 186.5,129.5 by -45"},
                        {"up to the left", {100, 150}, "rotate 136.5,179.5 by -45"},
                        {"down to the left", {100, 50}, "rotate 136.5,79.5 by 45"},
                        {"left", {50, 100}, "rotate 86.5,129.5 by 0"},
                        {"straight up", {150, 180}, "rotate 186.5,129.5 by 90"},
                        {"straight down", {150, 20}, "rotate 186.5,129.5 by -90"}};
    for (const Row& row : rows)
        EXPECT_THAT(ruler({150, 100}, row.to, "rotate"), ElementsAre(row.rotation)) << row.name;

    y = axisOf("numeric", 0, 2, 200);
    EXPECT_NE(ruler({0, 0}, {3, 1}, "3.162").size(), 0U) << "to the digits of the finer axis";
    const auto distances = [this](const char* kindX, const char* kindY) {
        x = axisOf(kindX, 1, 300, 300);
        y = axisOf(kindY, 1, 200, 200);
        return ruler({100, 100}, {150, 150}, "rotate").size();
    };
    EXPECT_EQ(distances("log", "log"), 1U);
    EXPECT_EQ(distances("numeric", "log"), 0U) << "axes of two kinds";
    EXPECT_EQ(distances("timeline", "timeline"), 0U) << "time is no distance";
}

// A canvas that keeps where cards come to lie.
class CardCanvas : public RecordingCanvas {
  public:
    std::vector<QRectF> cards;

    void rotate(QPointF about, double degrees) override {
        m_turn =
            QTransform::fromTranslate(about.x(), about.y()).rotate(degrees).translate(-about.x(), -about.y());
    }
    void restore() override { m_turn = {}; }
    void strokeRect(const QRectF& rect, const QColor&) override { cards.push_back(m_turn.mapRect(rect)); }

  private:
    QTransform m_turn;
};

TEST_F(OverlayDrawingTest, theLabelsOfTheRulerStayWithinThePlot) {
    const QPointF ends[] = {{-500, -300}, {-5, 100},  {2, 2},      {150, 100},
                            {298, 199},   {310, -40}, {9000, 7000}};
    for (const QPointF& from : ends)
        for (const QPointF& to : ends) {
            CardCanvas canvas;
            PlotDrawing::drawRuler(canvas, smallPlot, *x, *y, {from, to}, styles, FixedMeasure());
            for (const QRectF& card : canvas.cards)
                EXPECT_TRUE(smallPlot.plotRect().adjusted(-0.01, -0.01, 0.01, 0.01).contains(card))
                    << from.x() << ',' << from.y() << " to " << to.x() << ',' << to.y();
        }
}

TEST_F(OverlayDrawingTest, theMouseIsFollowedByDrawingStripsAlone) {
    PlotScene scene;
    scene.setAxisX(x);
    scene.setAxisY(y);
    scene.setBounds({400, 300});
    x->setRangeMinMax(0, 300);
    y->setRangeMinMax(0, 200);
    scene.overlay.mouseInside = true;
    scene.overlay.mouseLocation = {200, 150};
    const auto textsIn = [&scene](const QRectF& dirty) {
        RecordingCanvas canvas;
        scene.draw(canvas, dirty);
        return canvas.linesWith("text").size();
    };
    const std::size_t all = textsIn({0, 0, 400, 300});
    const QRectF strip = scene.layout().leftStrip();
    EXPECT_EQ(scene.requestedDirtyRect(), strip);
    EXPECT_LT(textsIn(strip), all - 2) << "without the labels of the x axis";
    EXPECT_TRUE(scene.requestedDirtyRect().isEmpty()) << "nor another round";
    textsIn(strip);
    EXPECT_EQ(scene.requestedDirtyRect(), strip) << "the same strip on its own account asks again";

    scene.overlay.selection.end = {10, 0};
    EXPECT_EQ(textsIn({0, 0, 400, 300}), all - 2) << "no marks while something is selected";
}

TEST(PlotStyles, blackBackgroundHasAWayBack) {
    const QVariantMap white = PlotStyles::defaultStyles(), black = PlotStyles::blackBackgroundStyles();
    EXPECT_EQ(white.keys(), black.keys()) << "each takes back what the other set";
    PlotStyles both;
    both.update(black);
    EXPECT_TRUE(both.isDark());
    const QColor back = both.color(QStringLiteral("BackgroundColor"));
    for (const char* ink : {"LabelColor", "TitleColor", "TickColor_weekend", "SelectionColor", "AxisColor"})
        EXPECT_GT(both.color(QLatin1String(ink)).lightness(), back.lightness() + 150) << ink;
    for (const QGradientStop& stop : both.gradient(QStringLiteral("MouseTickPaddingGradient")))
        EXPECT_EQ(stop.second.rgb() & 0xFFFFFFU, back.rgb() & 0xFFFFFFU);
}

TEST(PainterCanvas, drawsUprightDashesOnWholePixelsAtEveryScale) {
    for (const double scale : {1.0, 1.5, 2.0}) {
        QImage image(QSize(120, 90) * scale, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(scale);
        image.fill(Qt::white);
        QPainter painter(&image);
        PainterCanvas canvas(painter, 90);
        canvas.clip({0, 0, 120, 90});
        canvas.line({10.5, 11}, {10.5, 80}, 3, Qt::black);
        canvas.line({-1e9, 40.5}, {1e9, 40.5}, 4, Qt::black); // only what is seen is cut into dashes
        painter.end();
        int inks = 0;
        for (int row = 0; row < image.height(); ++row)
            for (int col = 0; col < image.width(); ++col) {
                const QRgb pixel = image.pixel(col, row);
                EXPECT_TRUE(pixel == 0xFFFFFFFF || pixel == 0xFF000000) << scale << ": " << col << ',' << row;
                inks += pixel == 0xFF000000 ? 1 : 0;
            }
        const double hairline = std::floor(scale);
        EXPECT_NEAR(inks, (120 + 69) / 2.0 * scale * hairline, 10 * scale * hairline) << scale;
    }
}

} // namespace
