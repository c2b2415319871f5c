// The legend: what it lists, how it is drawn, dragged and stored, and how a title in it is edited.
#include "Classes/PlotView/LegendDrawing.h"
#include "Classes/PlotView/PainterCanvas.h"
#include "Classes/PlotView/XGraphLegend.h"
#include "Classes/PlotView/XPointsLibrary.h"
#include "PageFixture.h"

#include <QImage>
#include <QLineEdit>
#include <QPainter>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace {

class LegendTest : public PageFixture {
  protected:
    LegendTest() {
        addData();
        for (const QString& title : {u"Air"_qs, u"Water, 1 m"_qs, u"Wind"_qs})
            addCurve(title);
        document.setShowLegend(true);
        controller.setLegendVisible(true);
    }

    XGraphLegend& legend() { return controller.graphLegend(); }
    /// The titles shown, from the top.
    QStringList listed() {
        QStringList titles;
        for (auto row = legend().curveViews().rbegin(); row != legend().curveViews().rend(); ++row) {
            if (!(*row)->isHidden())
                titles += (*row)->textLabel()->text();
        }
        return titles;
    }
    /// Presses on the first curve's sample, moves by that much (y upwards) and releases.
    void drag(QPoint by) {
        const QPoint from = legend().mapTo(&plotView(), QPoint(20, 20));
        const QPoint to = from + QPoint(by.x(), -by.y());
        const auto inLegend = [&](QPoint point) { return legend().mapFrom(&plotView(), point); };
        QTest::mousePress(&legend(), Qt::LeftButton, {}, inLegend(from));
        QTest::mouseMove(&legend(), inLegend((from + to) / 2));
        QTest::mouseMove(&legend(), inLegend(to));
        QTest::mouseRelease(&legend(), Qt::LeftButton, {}, inLegend(to));
    }
    QLineEdit& title(int curve) {
        const auto& rows = legend().curveViews();
        return *rows[rows.size() - 1 - static_cast<std::size_t>(curve)]->textLabel();
    }
    void clickTitle(int curve) {
        const QPoint middle = title(curve).mapTo(&legend(), title(curve).rect().center());
        QTest::mouseClick(&legend(), Qt::LeftButton, {}, middle);
    }
};

TEST_F(LegendTest, listsVisibleCurvesWithATitleFromTheTop) {
    EXPECT_EQ(listed(), (QStringList{u"Air"_qs, u"Water, 1 m"_qs, u"Wind"_qs}));
    const QRect frame = legend().frame();
    EXPECT_EQ(frame.height(), 10 + 3 * 30);
    EXPECT_EQ(frame.topLeft() + QPoint(frame.width() + 10, frame.height() + 10),
              QPoint(plotView().width(), plotView().height()))
        << "created top right, ten points in";
    EXPECT_EQ(frame.width(),
              LegendDrawing::rowWidth(document.curves()[1]->title(), FontTextMeasure())); // the longest
    document.curves()[1]->setIsVisible(false);
    document.curves()[2]->setTitle({});
    EXPECT_EQ(listed(), QStringList{u"Air"_qs});
    EXPECT_EQ(legend().frame().height(), 40);
    EXPECT_EQ(legend().frame().y() + 50, plotView().height()) << "it keeps its place";
    document.undoManager().closeTurnGroup();
    document.removeCurve(document.curves()[0]);
    EXPECT_EQ(legend().frame().size(), QSize(0, 10));
    EXPECT_TRUE(legend().isHidden());
    document.undoManager().undo();
    EXPECT_EQ(listed(), QStringList{u"Air"_qs});
    EXPECT_TRUE(legend().isVisibleTo(&plotView()));
    controller.setLegendVisible(false);
    EXPECT_TRUE(legend().isHidden());
}

struct SampleRow {
    const char* name;
    int lineWidth;
    float alpha;
    int shape;
    int size;
    bool sizeIsExpression;
    QRect inked;    ///< y downwards
    double opacity; ///< in the middle of the inked area
};

TEST_F(LegendTest, samplesShowLineAndPoints) {
    const std::array rows{
        SampleRow{"a thin line", 1, 1, 0, 0, false, {0, 9, 60, 1}, 1},
        SampleRow{"a wide line starts further in", 6, 0.8F, 0, 0, false, {2, 7, 56, 6}, 0.8},
        SampleRow{"a faint one still shows", 2, 0.1F, 0, 0, false, {0, 9, 60, 2}, 0.45},
        SampleRow{"wider than the sample", 30, 1, 0, 0, false, {10, 0, 40, 20}, 1},
        SampleRow{"no line, squares of size 3", 0, 1, 2, 3, false, {12, 6, 37, 7}, 0},
        SampleRow{"great sizes end at 10", 0, 1, 2, 30, false, {5, 0, 51, 20}, 0},
        SampleRow{"sizes of an expression are 4", 0, 1, 2, 30, true, {11, 5, 39, 9}, 0},
    };
    for (const SampleRow& row : rows) {
        const XCurveHandle curve = XCurve::make();
        curve->setColor({1, 0, 0, 1});
        curve->setLineWidth(row.lineWidth);
        curve->setColorAlpha(row.alpha);
        curve->setTicksShape(XPointsLibrary::sharedLibrary().pointDescriptionWithId(row.shape));
        curve->setTicksSize(row.size);
        curve->setPointsize_uses_expression(row.sizeIsExpression);
        QImage image(80, 40, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        PainterCanvas canvas(painter, 40);
        LegendDrawing::drawSample(canvas, {10, 10}, *curve);
        painter.end();
        QRect inked;
        for (int y = 0; y < 40; ++y) {
            for (int x = 0; x < 80; ++x) {
                if (image.pixelColor(x, y).alpha() > 100)
                    inked |= QRect(x - 10, y - 10, 1, 1);
            }
        }
        EXPECT_EQ(inked, row.inked) << row.name << " " << inked.x() << "," << inked.y() << " "
                                    << inked.width() << "x" << inked.height();
        EXPECT_NEAR(image.pixelColor(40, 19).alphaF(), row.opacity, 0.01) << row.name;
    }
}

struct DragRow {
    const char* name;
    QPointF part; ///< of the free room, from the bottom left
    int alignment;
};

TEST_F(LegendTest, snapsToNineAnchorsAndStoresThem) {
    const std::array rows{DragRow{"top right", {1, 1}, 9},    DragRow{"top", {0.5, 1}, 13},
                          DragRow{"top left", {0, 1}, 12},    DragRow{"left", {0, 0.5}, 44},
                          DragRow{"middle", {0.5, 0.5}, 45},  DragRow{"right", {1, 0.5}, 41},
                          DragRow{"bottom left", {0, 0}, 36}, DragRow{"bottom", {0.5, 0}, 37},
                          DragRow{"bottom right", {1, 0}, 33}};
    for (const DragRow& row : rows) {
        forgetChanges();
        const QSize room = plotView().size() - legend().frame().size();
        const QPoint wanted(qRound(row.part.x() * room.width()), qRound(row.part.y() * room.height()));
        drag(wanted - legend().frame().topLeft());
        EXPECT_EQ(document.legendAlignment(), row.alignment) << row.name;
        EXPECT_LE(std::abs(document.legendMargins().width()), 1) << row.name;
        EXPECT_LE(std::abs(document.legendMargins().height()), 1) << row.name;
        EXPECT_TRUE(document.isDocumentEdited()) << row.name;
        EXPECT_FALSE(document.undoManager().canUndo()) << row.name;
        for (const QSize& size : {QSize(1200, 700), QSize(1000, 484)}) {
            page().resize(size);
            EXPECT_TRUE(scene().layout().plotRect().toRect().contains(legend().frame()))
                << row.name << ": over the labels";
        }
    }
}

TEST_F(LegendTest, cannotBeDraggedOutOfThePlot) {
    forgetChanges();
    QTest::mouseClick(&legend(), Qt::LeftButton, {}, {20, 20});
    EXPECT_FALSE(document.isDocumentEdited()) << "a click is no drag";
    drag({5000, 5000});
    EXPECT_EQ(document.legendMargins(), QSizeF(0, 0));
    drag({-5000, -40});
    EXPECT_EQ(document.legendAlignment(), 4 + 8);
    EXPECT_EQ(document.legendMargins(), QSizeF(0, 40));
    EXPECT_EQ(legend().frame().x(), scene().layout().marginLeft) << "shown inside the frame";
}

TEST_F(LegendTest, anEditingSessionOfATitleIsOneStep) {
    forgetChanges();
    clickTitle(1);
    EXPECT_FALSE(document.isDocumentEdited()) << "looking is no change";
    ASSERT_TRUE(title(1).hasFocus());
    const int width = legend().width();
    QTest::keyClicks(&title(1), u"Tide gauge at the northern pier"_qs);
    EXPECT_EQ(document.curves()[1]->title(), u"Tide gauge at the northern pier"_qs) << "while typing";
    EXPECT_GT(legend().width(), width);
    QCoreApplication::processEvents(); // an end of the turn is no end of the step
    QTest::keyClicks(&title(1), u"!"_qs);
    QTest::keyClick(&title(1), Qt::Key_Return);
    EXPECT_TRUE(plotView().hasFocus());
    document.undoManager().undo();
    EXPECT_EQ(listed()[1], u"Water, 1 m"_qs);
    EXPECT_FALSE(document.undoManager().canUndo());
}

TEST_F(LegendTest, escapeTakesTheSessionBack) {
    forgetChanges();
    clickTitle(0);
    QTest::keyClicks(&title(0), u"Oops"_qs);
    QTest::keyClick(&title(0), Qt::Key_Escape);
    EXPECT_EQ(document.curves()[0]->title(), u"Air"_qs);
    EXPECT_FALSE(document.isDocumentEdited());
    EXPECT_FALSE(document.undoManager().canRedo());
}

TEST_F(LegendTest, anEmptiedTitleStaysUntilItIsLeft) {
    clickTitle(0);
    QTest::keyClick(&title(0), Qt::Key_Delete);
    EXPECT_EQ(document.curves()[0]->title(), QString());
    EXPECT_EQ(listed().size(), 3);
    QTest::keyClick(&title(0), Qt::Key_Return);
    EXPECT_EQ(listed(), (QStringList{u"Water, 1 m"_qs, u"Wind"_qs}));
}

TEST_F(LegendTest, aSessionEndsWithTheDocument) {
    clickTitle(0);
    QTest::keyClicks(&title(0), u"New"_qs);
    controller.setDocument(nullptr);
    EXPECT_TRUE(document.undoManager().canUndo());
    document.undoManager().undo();
    EXPECT_EQ(document.curves()[0]->title(), u"Air"_qs);
}

} // namespace
