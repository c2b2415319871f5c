// The row: where its controls lie, what they write, how it follows its curve and the sources, names and keys.
#include "Classes/CurvesSidebar/ExpressionField.h"
#include "Classes/HoverButton/XHoverButton.h"
#include "Classes/PlotModel/CurveKeys.h"
#include "Classes/PlotView/XPointsLibrary.h"
#include "Classes/ValueEncodings/ColorEncoding.h"
#include "Platform/Widgets/VelquinStyle.h"
#include "RowFixture.h"

#include <QFontMetrics>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QSpinBox>

#include <algorithm>
#include <set>

namespace {

TEST_F(CurveRow, everyControlHasItsPlaceAtAnyWidth) {
    for (const int width : {186, 216, 248, 420}) {
        resize(width);
        const int R = width - 8;
        const int left = static_cast<int>(std::lround(0.46 * (R - 84)));
        const std::vector<std::pair<const char*, QRect>> places{
            {"deleteButton", {4, 4, 13, 13}},
            {"curveName", {24, 2, width - 80, 18}},
            {"foldButton", {R - 42, 1, 20, 20}},
            {"visibleButton", {R - 20, 1, 20, 20}},
            {"dataSourcesPopupButton", {28, 25, R - 28, 24}},
            {"xRowPopupButton", {24, 49, R - 44, 27}},
            {"yRowPopupButton", {24, 76, R - 44, 27}},
            {"xRowTextField", {28, 52, R - 52, 27}},
            {"yRowTextField", {28, 79, R - 52, 27}},
            {"xUseExpressionButton", {R - 20, 54, 20, 20}},
            {"yUseExpressionButton", {R - 20, 81, 20, 20}},
            {"xExpressionProgress", {32, 76, R - 60, 2}},
            {"yExpressionProgress", {32, 103, R - 60, 2}},
            {"colorButton", {28, 106, 30, 24}},
            {"randomColorButton", {59, 108, 20, 20}},
            {"lineWidthField", {84, 106, left, 24}},
            {"opacityField", {84 + left + 4, 106, R - 88 - left, 24}},
            {"shapePopupButton", {28, 133, 30, 24}},
            {"nextShapeButton", {59, 135, 20, 20}},
            {"pointSizeField", {84, 133, R - 108, 24}},
            {"pointSizeRowTextField", {84, 133, R - 108, 24}},
            {"pointsizeUseExpressionButton", {R - 20, 135, 20, 20}},
        };
        for (const auto& [name, frame] : places)
            EXPECT_EQ(control(name)->geometry(), frame) << name << " at " << width;
    }
    EXPECT_EQ(row->view()->height(), 165);
}

/// What is drawn in the frame of a column's choice, between the letter and the switch, that is not ground.
QRect boxIn(const QImage& image) {
    QRect box;
    for (int y = 49; y < 79; ++y) {
        for (int x = 25; x < image.width() - 30; ++x) {
            if (image.pixel(x, y) != currentColors().window.rgb())
                box |= QRect(x, y, 1, 1);
        }
    }
    return box;
}

TEST_F(CurveRow, anExpressionTakesTheVeryPixelsOfTheColumn) {
    const QRect expected(28, 52, 188, 24);
    for (const bool uses : {false, true}) {
        curve->setX_uses_expression(uses);
        const QImage image = drawn(*row->view());
        EXPECT_EQ(boxIn(image), expected);
        for (const QPoint edge : {QPoint(150, 52), QPoint(28, 64), QPoint(215, 64)})
            EXPECT_EQ(image.pixelColor(edge), currentColors().edge) << uses << edge.x();
        EXPECT_EQ(image.pixelColor(150, 75), uses ? currentColors().edge2 : currentColors().edge);
    }
    // Neither reaches beyond its box for the pointer.
    EXPECT_EQ(row->view()->childAt(100, 77), control("xExpressionProgress"));
    EXPECT_EQ(row->view()->childAt(100, 78), nullptr);
}

TEST_F(CurveRow, numbersAndUnitsFitTheNarrowestRow) {
    for (const char* family : {"Liberation Sans", "DejaVu Sans"}) {
        QFont font(QString::fromLatin1(family));
        font.setPixelSize(13);
        window.setFont(font);
        resize(186);
        for (const char* name : {"lineWidthField", "opacityField"}) {
            auto* field = control<QSpinBox>(name);
            field->setValue(field->maximum());
            const auto* text = field->findChild<QLineEdit*>();
            EXPECT_LE(2 + text->fontMetrics().horizontalAdvance(text->text()), text->width())
                << name << family;
            EXPECT_LT(text->geometry().right(), field->width()) << name << family;
        }
        EXPECT_EQ(control<QSpinBox>("opacityField")->text(),
                  family[0] == 'D' ? QStringLiteral("100%") : QStringLiteral("100 %"));
    }
}

TEST_F(CurveRow, everyControlWritesItsKey) {
    const auto second = std::make_shared<NamedSource>("second", QStringList{QStringLiteral("a")});
    list.insertObjectAtIndex(second, 1);
    const auto expression = [this](const char* key) {
        return curve->valueForKey(key)
            .value<std::optional<QString>>()
            .value_or(QStringLiteral("none"))
            .toStdString();
    };
    const std::vector<
        std::tuple<const char*, std::function<void()>, std::function<std::string()>, const char*>>
        cases{
            {"title", [&] { enter("curveName", "Water"); }, [&] { return value("title"); }, "Water"},
            {"x column", [&] { choose("xRowPopupButton", 3); }, [&] { return value("x_data_index"); }, "3"},
            {"y column", [&] { choose("yRowPopupButton", 0); }, [&] { return value("y_data_index"); }, "0"},
            {"x switch", [&] { click("xUseExpressionButton"); }, [&] { return value("x_uses_expression"); },
             "true"},
            {"x expression", [&] { enter("xRowTextField", "c1*2"); },
             [&] { return expression("x_data_expression"); }, "c1*2"},
            {"y switch", [&] { click("yUseExpressionButton"); }, [&] { return value("y_uses_expression"); },
             "true"},
            {"y expression", [&] { enter("yRowTextField", "row"); },
             [&] { return expression("y_data_expression"); }, "row"},
            {"y emptied", [&] { enter("yRowTextField", ""); },
             [&] { return expression("y_data_expression"); }, "none"},
            {"x switch back", [&] { click("xUseExpressionButton"); },
             [&] { return value("x_uses_expression"); }, "false"},
            {"line width", [&] { enter("lineWidthField", "3"); }, [&] { return value("lineWidth"); }, "3"},
            {"no line", [&] { enter("lineWidthField", "0"); },
             [&] { return control<QSpinBox>("lineWidthField")->text().toStdString(); }, "none"},
            {"opacity", [&] { enter("opacityField", "60"); },
             [&] { return std::to_string(std::lround(curve->colorAlpha() * 100)); }, "60"},
            {"point size", [&] { enter("pointSizeField", "7"); }, [&] { return value("ticksSize"); }, "7"},
            {"size switch", [&] { click("pointsizeUseExpressionButton"); },
             [&] { return expression("pointsize_data_expression"); }, "7"},
            {"shape", [&] { choose("shapePopupButton", 2); },
             [&] { return curve->ticksShape()->displayName().toStdString(); }, "Ring"},
            {"hide", [&] { click("visibleButton"); }, [&] { return value("isVisible"); }, "false"},
            {"show", [&] { click("visibleButton"); }, [&] { return value("isVisible"); }, "true"},
            {"source", [&] { choose("dataSourcesPopupButton", 1); },
             [&] { return curve->dataSource()->title().toStdString(); }, "second"},
        };
    for (const auto& [name, act, outcome, expected] : cases) {
        act();
        EXPECT_EQ(outcome(), expected) << name;
    }
    EXPECT_EQ(control<XHoverButton>("yUseExpressionButton")->normalImageName(),
              QStringLiteral("expression_enabled"));
    EXPECT_EQ(control<XHoverButton>("xUseExpressionButton")->normalImageName(),
              QStringLiteral("expression_disabled"));
}

TEST_F(CurveRow, showingNeverWrites) {
    QStringList written;
    const Observation watch(*curve, curveUndoKeys,
                            [&](const KeyChange& change) { written << QLatin1String(change.key); });
    curve->setX_data_index(9);
    curve->setLineWidth(200);
    curve->setColorAlpha(0);
    written.clear();
    EXPECT_EQ(control<QComboBox>("xRowPopupButton")->currentIndex(), -1);
    EXPECT_EQ(control<QComboBox>("xRowPopupButton")->placeholderText(), QStringLiteral("Column 9"));
    source->setNames({QStringLiteral("time")});
    row->dataSourceUpdated();
    row->setCurve(curve);
    for (int i = 0; i < 40; ++i)
        QTest::keyClick(QApplication::focusWidget() == nullptr ? row->view() : QApplication::focusWidget(),
                        Qt::Key_Tab);
    EXPECT_EQ(written, QStringList());
    source->setNames(QStringList(9, QStringLiteral("c")));
    EXPECT_EQ(control<QComboBox>("xRowPopupButton")->currentIndex(), 9) << "the column is back";
}

TEST_F(CurveRow, choicesFollowSourcesAndColumns) {
    auto* sources = control<QComboBox>("dataSourcesPopupButton");
    auto* columns = control<QComboBox>("yRowPopupButton");
    const auto second = std::make_shared<NamedSource>("second", QStringList{QStringLiteral("a")});
    list.insertObjectAtIndex(second, 0);
    EXPECT_EQ(sources->currentText(), QStringLiteral("harbour.csv")) << "one came before it";
    curve->setDataSource(second);
    EXPECT_EQ(sources->currentIndex(), 0);
    EXPECT_EQ(columns->count(), 2);
    EXPECT_EQ(columns->currentIndex(), -1);
    second->setNames({QStringLiteral("a"), QStringLiteral("b")});
    EXPECT_EQ(columns->currentText(), QStringLiteral("b"));

    NotificationCenter::defaultCenter().post(Notifications::dataSourceWillBeRemoved, second.get());
    list.removeObjectAtIndex(0);
    EXPECT_EQ(curve->dataSource(), nullptr);
    EXPECT_EQ(sources->currentIndex(), -1);
    EXPECT_FALSE(columns->isEnabled());
    EXPECT_EQ(curve->y_data_index(), 2);
}

TEST_F(CurveRow, thePlaceholderNamesTheColor) {
    auto* title = control<QLineEdit>("curveName");
    curve->setColor({1, 0, 0, 1});
    EXPECT_EQ(title->placeholderText(), QStringLiteral("Red curve"));
    curve->setColor({0, 0, 1, 1});
    EXPECT_EQ(title->placeholderText(), QStringLiteral("Blue curve"));
    EXPECT_EQ(control("colorButton")->accessibleName(), QStringLiteral("Colour of Air"));
    curve->setTitle({});
    EXPECT_EQ(control("colorButton")->accessibleName(), QStringLiteral("Colour of Blue curve"));
}

TEST_F(CurveRow, anotherColorKeepsAllButTheHue) {
    std::set<int> hues;
    for (int i = 0; i < 200; ++i) {
        const RgbaColor before = RgbaColor::fromHsb(0.9, 0.6, 0.5, 0.25);
        curve->setColor(before);
        click("randomColorButton");
        const RgbaColor::Hsb after = curve->color().hsb();
        EXPECT_GT(after.hue, 0.0999);
        EXPECT_LT(after.hue, 0.1991);
        EXPECT_NEAR(after.saturation, 0.6, 1e-9);
        EXPECT_NEAR(after.brightness, 0.5, 1e-9);
        EXPECT_EQ(curve->color().alpha, 0.25);
        hues.insert(static_cast<int>(std::lround(after.hue * 1000)));
    }
    EXPECT_GT(hues.size(), 20U);
}

TEST_F(CurveRow, nextShapeGoesThroughAllAndSetsTheSize) {
    std::string shapes;
    for (int i = 0; i < 7; ++i) {
        click("nextShapeButton");
        shapes += curve->ticksShape()->displayName().toStdString() + std::to_string(curve->ticksSize()) + " ";
        EXPECT_EQ(control("pointSizeField")->isEnabled(), curve->ticksShape()->identifier() != 0);
    }
    EXPECT_EQ(shapes, "Square4 Diamond4 X4 Plus4 Ring4 None0 Circle4 ");
    curve->setTicksSize(0);
    choose("shapePopupButton", 3);
    EXPECT_EQ(curve->ticksSize(), 4) << "a marker that is chosen is seen";
}

TEST_F(CurveRow, leavesByButtonKeyAndMenu) {
    click("deleteButton");
    control("lineWidthField")->setFocus();
    QTest::keyClick(control("lineWidthField"), Qt::Key_Delete, Qt::ControlModifier | Qt::ShiftModifier);
    const std::unique_ptr<QMenu> menu(row->makeMenu());
    menu->actions().last()->trigger();
    EXPECT_EQ(deleted, std::vector<XCurveHandle>(3, curve));
}

TEST_F(CurveRow, foldsByButtonAndMenu) {
    QSignalSpy heights(row.get(), &CCurveViewController::heightChanged);
    click("yUseExpressionButton");
    EXPECT_TRUE(control("yRowTextField")->hasFocus()) << "ready to be typed into";
    row->setFolded(true);
    EXPECT_EQ(row->view()->height(), 27);
    EXPECT_TRUE(control("foldButton")->hasFocus()) << "the focus stays where it can be seen";
    const auto all = row->view()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
    for (const QWidget* each : all)
        EXPECT_EQ(each->isVisible(), each->y() < 24) << each->objectName().toStdString();
    click("foldButton");
    EXPECT_EQ(row->view()->height(), 165);
    EXPECT_TRUE(control("yRowTextField")->isVisible());
    EXPECT_FALSE(control("yRowPopupButton")->isVisible());

    const support::ExpectedWarnings warnings(offscreenPopup());
    QTest::keyClick(control("yRowTextField"), Qt::Key_F10, Qt::ShiftModifier);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_NE(menu, nullptr);
    QStringList texts;
    for (QAction* action : menu->actions()) {
        texts << action->text();
        if (!action->isSeparator() && action != menu->actions().last())
            action->trigger();
    }
    EXPECT_EQ(texts, QStringLiteral("Hide,Fold,Fold All,,Remove Curve").split(u','));
    EXPECT_FALSE(curve->isVisible());
    EXPECT_TRUE(row->isFolded());
    EXPECT_EQ(calls, "fold all ");
    EXPECT_EQ(heights.count(), 3);
    menu->close();
}

TEST_F(CurveRow, tabGoesThroughTheRowInOrder) {
    curve->setY_uses_expression(true);
    row->chainTabOrderAfter(nullptr);
    control("curveName")->setFocus();
    QStringList visited;
    for (int i = 0; i < 16; ++i) {
        visited << QApplication::focusWidget()->objectName();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(visited.join(u' '),
              QStringLiteral("curveName foldButton visibleButton dataSourcesPopupButton xRowPopupButton "
                             "xUseExpressionButton yRowTextField yUseExpressionButton colorButton "
                             "randomColorButton lineWidthField opacityField shapePopupButton nextShapeButton "
                             "pointSizeField pointsizeUseExpressionButton"));
}

TEST_F(CurveRow, everyControlIsNamedAfterTheCurve) {
    std::set<QString> names;
    for (const QWidget* each : row->view()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        EXPECT_TRUE(each->accessibleName().contains(QStringLiteral("Air")))
            << each->objectName().toStdString();
        EXPECT_TRUE(names.insert(each->accessibleName()).second) << each->accessibleName().toStdString();
        const bool isProgress = each->objectName().endsWith(QStringLiteral("Progress"));
        EXPECT_EQ(each->toolTip().isEmpty(), isProgress) << each->objectName().toStdString();
        EXPECT_TRUE(VelquinStyle::focusRingInside(each));
    }
    EXPECT_EQ(control("yRowPopupButton")->accessibleName(), QStringLiteral("y column of Air"));
}

TEST_F(CurveRow, theSpineShowsColorHidingAndContrast) {
    const auto spine = [this](int x) { return drawn(*row->view()).pixelColor(x, 80); };
    curve->setColor({1, 0.5, 0, 1});
    EXPECT_EQ(spine(0), QColor(255, 128, 0));
    EXPECT_EQ(spine(2), QColor(255, 128, 0));
    EXPECT_EQ(spine(3), currentColors().window);
    curve->setIsVisible(false);
    EXPECT_EQ(spine(0), QColor(248, 203, 159)) << "35 %";
    EXPECT_EQ(spine(2), currentColors().edge2) << "too pale against the window";
    EXPECT_EQ(drawn(*row->view()).pixelColor(100, 164), currentColors().line);
}

} // namespace
