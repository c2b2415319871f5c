// One gesture with a row's controls is one step of undo.
#include "Classes/CurvesSidebar/ColorButton.h"
#include "Classes/CurvesSidebar/SpinField.h"
#include "Classes/PlotModel/CurveKeys.h"
#include "RowFixture.h"

#include <QColorDialog>
#include <QLineEdit>
#include <QWheelEvent>

namespace {

/// Observes the curve as a document does, and groups as the owner of rows does.
class UndoRow : public CurveRow {
  protected:
    UndoRow() {
        observation = Observation(*curve, curveUndoKeys, [this](const KeyChange& change) {
            undo.registerUndo([this, change] { curve->setValueForKey(change.key, change.oldValue); });
        });
    }
    void gestureBegan() override { undo.beginUndoGrouping(); }
    void gestureEnded() override { undo.endUndoGrouping(); }
    void gestureCancelled() override { undo.cancelUndoGrouping(); }

    void wheel(const char* name, int notches) {
        auto* field = control(name);
        const QPointF middle = QRectF(field->rect()).center();
        for (int i = 0; i < notches; ++i) {
            QWheelEvent event(middle, field->mapToGlobal(middle), QPoint(), QPoint(0, 120), Qt::NoButton,
                              Qt::NoModifier, Qt::NoScrollPhase, false);
            QApplication::sendEvent(field, &event);
        }
    }
    void press(const char* name, Qt::Key key, int times) {
        control(name)->setFocus();
        for (int i = 0; i < times; ++i)
            QTest::keyClick(control(name), key);
    }
    void leave() { control("foldButton")->setFocus(); }
    SpinField* spin(const char* name) { return control<SpinField>(name); }

    UndoManager undo;
    Observation observation;
};

TEST_F(UndoRow, oneGestureIsOneStep) {
    control<ColorButton>("colorButton");
    const auto color = [this](bool accepted) {
        click("colorButton");
        QColorDialog* dialog = control<ColorButton>("colorButton")->dialog();
        for (const QColor& tried : {QColor(Qt::red), QColor(Qt::green), QColor(Qt::blue)}) {
            dialog->setCurrentColor(tried);
            undo.closeTurnGroup(); // time goes by
            EXPECT_EQ(curve->color().red > 0.5, tried == QColor(Qt::red)) << "shown at once";
        }
        accepted ? dialog->accept() : dialog->reject();
        finishDeletions();
    };
    struct Case {
        const char* name;
        std::function<void()> act;
        int steps;
        const char* key;
    };
    const std::vector<Case> cases{
        {"a typed number",
         [&] {
             enter("lineWidthField", "12");
             leave();
         },
         1, "lineWidth"},
        {"a typed title",
         [&] {
             enter("curveName", "Water");
             leave();
         },
         1, "title"},
        {"the same title",
         [&] {
             enter("curveName", "Air");
             leave();
         },
         0, "title"},
        {"a title taken back",
         [&] {
             QTest::keyClicks(control("curveName"), QStringLiteral("abc"));
             press("curveName", Qt::Key_Escape, 1);
             leave();
         },
         0, "title"},
        {"a wheel",
         [&] {
             spin("lineWidthField")->setFocus();
             wheel("lineWidthField", 5);
             leave();
         },
         1, "lineWidth"},
        {"a wheel that passes by", [&] { wheel("lineWidthField", 5); }, 0, "lineWidth"},
        {"keys",
         [&] {
             press("opacityField", Qt::Key_Down, 3);
             press("opacityField", Qt::Key_PageDown, 2);
             leave();
         },
         1, "colorAlpha"},
        {"keys, a pause, keys",
         [&] {
             press("pointSizeField", Qt::Key_Up, 2);
             EXPECT_TRUE(support::waitUntil([&] { return !spin("pointSizeField")->isInBurst(); }));
             press("pointSizeField", Qt::Key_Up, 2);
             leave();
         },
         2, "ticksSize"},
        {"keys, then a typed number",
         [&] {
             press("lineWidthField", Qt::Key_Up, 3);
             enter("lineWidthField", "9");
             leave();
         },
         2, "lineWidth"},
        {"a typed number, then keys",
         [&] {
             spin("lineWidthField")->setFocus();
             spin("lineWidthField")->selectAll();
             QTest::keyClicks(control("lineWidthField"), QStringLiteral("20"));
             press("lineWidthField", Qt::Key_Up, 3);
             leave();
         },
         2, "lineWidth"},
        {"a column", [&] { choose("xRowPopupButton", 3); }, 1, "x_data_index"},
        {"next shape", [&] { click("nextShapeButton"); }, 1, "ticksSize"},
        {"a shape and its first size",
         [&] {
             curve->setTicksSize(0);
             undo.removeAllActions();
             choose("shapePopupButton", 4);
         },
         1, "title"},
        {"a color", [&] { color(true); }, 1, "color"},
        {"no color after all", [&] { color(false); }, 0, "color"},
    };
    for (const Case& each : cases) {
        const QVariant before = curve->valueForKey(each.key);
        each.act();
        undo.closeTurnGroup();
        int steps = 0;
        for (; undo.canUndo(); ++steps)
            undo.undo();
        EXPECT_EQ(steps, each.steps) << each.name;
        EXPECT_EQ(curve->valueForKey(each.key), before) << each.name;
        undo.removeAllActions();
        leave();
        undo.closeTurnGroup();
    }
}

TEST_F(UndoRow, whatWasCommittedIsNotTheFieldsToUndo) {
    enter("curveName", "Water");
    EXPECT_FALSE(control<QLineEdit>("curveName")->isUndoAvailable());
    QTest::keyClicks(control("curveName"), QStringLiteral("s"));
    EXPECT_TRUE(control<QLineEdit>("curveName")->isUndoAvailable());
    press("lineWidthField", Qt::Key_Home, 1);
    for (const Qt::Key key : {Qt::Key_Delete, Qt::Key_3}) // the unit stays as it is
        press("lineWidthField", key, 1);
    leave();
    EXPECT_EQ(curve->lineWidth(), 3);
    EXPECT_FALSE(control("lineWidthField")->findChild<QLineEdit*>()->isUndoAvailable());
    undo.closeTurnGroup();
    undo.removeAllActions();

    press("lineWidthField", Qt::Key_Up, 2);
    EXPECT_FALSE(undo.canUndo());
    QTest::keyPress(control("lineWidthField"), Qt::Key_Control);
    EXPECT_TRUE(undo.canUndo()) << "before the key that undoes comes";
    undo.undo();
    EXPECT_EQ(curve->lineWidth(), 3);
}

TEST_F(UndoRow, aRowThatGoesEndsItsGesture) {
    press("lineWidthField", Qt::Key_Up, 1);
    EXPECT_FALSE(undo.canUndo());
    row.reset();
    EXPECT_TRUE(undo.canUndo());
}

} // namespace
