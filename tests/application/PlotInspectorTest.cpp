// The plot inspector: its controls over both axes, and the document that it shows.
#include "ApplicationDelegate.h"
#include "Classes/Axes/XAxis.h"
#include "Classes/Axes/XAxisManager.h"
#include "Classes/GraphViewController/XGraphViewController.h"
#include "Classes/PlotInspector/AxisLimitField.h"
#include "Classes/PlotInspector/AxisOptionsView.h"
#include "Classes/SmallViews/PlacePicker.h"
#include "Core/LegendPlacement.h"
#include "Platform/Widgets/VelquinStyle.h"
#include "shell/WindowFixture.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QToolButton>

#include <array>

using namespace Qt::StringLiterals;

namespace {

using Limit = std::optional<double>;

class PlotInspectorTest : public WindowFixture {
  protected:
    PlotInspectorTest() {
        activate(window);
        application.setPlotInspectorVisible(true);
        EXPECT_TRUE(support::waitUntil([&] { return inspector().window()->isActiveWindow(); }));
    }

    static void activate(QWidget& window) {
        window.activateWindow();
        EXPECT_TRUE(support::waitUntil([&] { return window.isActiveWindow(); }));
    }
    XPlotInspectorWindowController& inspector() { return *application.plotInspector(); }
    MoxDocument& document() { return window.document(); }
    /// By its object name, in the part of that axis or in the window.
    template <class Widget = QLineEdit>
    Widget& control(const char* name, const char* part = "content") {
        auto* of = inspector().window()->findChild<QWidget*>(QLatin1String(part));
        return *of->findChild<Widget*>(QLatin1String(name));
    }
    static void type(QLineEdit& field, const QString& text, Qt::Key end = Qt::Key_Return) {
        field.setFocus();
        field.selectAll();
        QTest::keyClicks(&field, text.isEmpty() ? u"\b"_s : text);
        if (end != Qt::Key())
            QTest::keyClick(&field, end);
    }
    static QVariant limit(const Limit& value) { return QVariant::fromValue(value); }

    ApplicationDelegate application;
    MoxDocumentWindow& window = application.documents().newDocument();
};

struct Axis {
    const char* part;
    AxisKeys keys;
};
constexpr std::array axes{Axis{"axisX", axisKeysX}, Axis{"axisY", axisKeysY}};

TEST_F(PlotInspectorTest, eachControlEditsItsKeyAndFollowsIt) {
    type(control("titleField"), u"Harbour"_s);
    EXPECT_EQ(document().plotAreaTitle(), u"Harbour"_s);
    EXPECT_TRUE(document().isDocumentEdited());
    EXPECT_FALSE(document().undoManager().canUndo()); // as with every option of the plot
    control<QCheckBox>("showLegendBox").click();
    EXPECT_TRUE(document().showLegend());
    for (const auto& [part, keys] : axes) {
        type(control("titleField", part), u"Time"_s, Qt::Key_Tab);
        EXPECT_EQ(document().valueForKey(keys.title).value<std::optional<QString>>(), u"Time"_s);
        document().setValueForKey(keys.title, QVariant::fromValue(std::optional<QString>()));
        EXPECT_EQ(control("titleField", part).text(), QString());

        auto& kinds = control<QComboBox>("kindBox", part);
        EXPECT_EQ(kinds.count(), 5);
        kinds.setFocus();
        QTest::keyClick(&kinds, Qt::Key_Down);
        EXPECT_EQ(document().valueForKey(keys.kind).value<XAxisKind>()->typeId(), u"log"_s);
        document().setValueForKey(
            keys.kind, QVariant::fromValue(XAxisManager::sharedManager().axisInfoWithId(u"zen"_s)));
        EXPECT_EQ(kinds.currentText(), u"No ticks"_s);

        for (const auto& [name, key] :
             {std::pair{"originBox", keys.origin}, std::pair{"gridLinesBox", keys.gridLines}}) {
            auto& box = control<QCheckBox>(name, part);
            box.click();
            EXPECT_FALSE(document().valueForKey(key).toBool()) << key;
            document().setValueForKey(key, true);
            EXPECT_TRUE(box.isChecked()) << key;
        }
    }
}

TEST_F(PlotInspectorTest, theEndsOfARangeAreNumbersOrAbsent) {
    for (const auto& [part, keys] : axes) {
        auto& from = control<AxisLimitField>("fromField", part);
        auto& to = control<AxisLimitField>("toField", part);
        const auto range = [&] {
            return std::pair(document().valueForKey(keys.min).value<Limit>(),
                             document().valueForKey(keys.max).value<Limit>());
        };
        using Range = std::pair<Limit, Limit>;
        type(to, u"25"_s);
        type(from, u"-1.5e1"_s);
        EXPECT_EQ(range(), Range(-15, 25));
        EXPECT_EQ(from.text(), u"-15"_s);
        type(from, {});
        EXPECT_EQ(range(), Range({}, 25));

        // What cannot be taken stays, and is tried again when it may be right.
        for (const QString& text : {u"25"_s, u"much"_s, u"-1e27"_s}) {
            type(from, text);
            EXPECT_EQ(range(), Range({}, 25)) << text.toStdString();
            EXPECT_EQ(from.text(), text);
            EXPECT_TRUE(VelquinStyle::isFaulty(&from)) << text.toStdString();
            EXPECT_EQ(window.statusLine().message(), from.toolTip());
        }
        type(from, u"100"_s);
        type(to, u"200"_s);
        EXPECT_EQ(range(), Range(100, 200));
        EXPECT_FALSE(VelquinStyle::isFaulty(&from));
        type(from, u"300"_s);
        QTest::keyClick(&from, Qt::Key_Escape);
        EXPECT_EQ(from.text(), u"100"_s);
        EXPECT_FALSE(VelquinStyle::isFaulty(&from));
        EXPECT_TRUE(application.plotInspectorVisible());

        // A kind that cannot show a limit says so.
        document().setValueForKey(keys.min, limit(-5));
        const auto setKind = [&](const QString& kind) {
            document().setValueForKey(
                keys.kind, QVariant::fromValue(XAxisManager::sharedManager().axisInfoWithId(kind)));
        };
        for (const auto& [kind, isFaulty] :
             {std::pair(u"log"_s, true), std::pair(u"pseudolog"_s, false), std::pair(u"numeric"_s, false)}) {
            setKind(kind);
            EXPECT_EQ(VelquinStyle::isFaulty(&from), isFaulty) << kind.toStdString();
        }
        const QPoint beside = to.pos();
        setKind(u"timeline"_s);
        QCoreApplication::processEvents();
        EXPECT_GT(to.mapTo(inspector().window(), QPoint()).y(),
                  from.mapTo(inspector().window(), QPoint()).y());
        EXPECT_NE(to.pos(), beside);
        type(to, u"1970-01-02 00:30"_s);
        EXPECT_EQ(range(), Range(-5, 88200));
        type(from, u"60"_s);
        EXPECT_EQ(from.text(), u"1970-01-01 00:01"_s);
        type(from, u"noon"_s);
        EXPECT_EQ(range(), Range(60, 88200));
        EXPECT_TRUE(VelquinStyle::isFaulty(&from));
    }
}

TEST_F(PlotInspectorTest, aLimitShowsWhereThePlotWasMovedByHand) {
    const PlotScene& scene = window.graphViewController().plotView().scene();
    QTest::keyClick(&window.graphViewController().plotView(), Qt::Key_Plus);
    ASSERT_FALSE(scene.autoFitToData);
    const double otherEnd = scene.axisY()->maxValue();
    type(control("fromField", "axisX"), u"-3"_s);
    EXPECT_EQ(scene.axisX()->minValue(), -3);
    EXPECT_EQ(scene.axisY()->maxValue(), otherEnd);
    EXPECT_FALSE(scene.autoFitToData);
}

TEST_F(PlotInspectorTest, theLegendMovesToTheChosenPlace) {
    auto& picker = control<PlacePicker>("placePicker");
    EXPECT_EQ(picker.place(), 2);
    document().textDropped(u"1 2"_s);
    document().addNewCurve()->setTitle(u"Air"_s);
    document().setShowLegend(true);
    window.graphTabBar().selectTabWithIndex(0);
    XGraphLegend& legend = window.graphViewController().graphLegend();
    const auto cells = picker.findChildren<QAbstractButton*>();
    ASSERT_EQ(cells.size(), 9);
    for (int place = 0; place < PlacePicker::count; ++place) {
        const QRect before = legend.frame();
        cells[place]->click();
        const LegendAnchor anchor = LegendPlacement::anchorAt({place % 3, place / 3});
        EXPECT_EQ(document().legendAlignment(), anchor.alignment) << place;
        EXPECT_EQ(document().legendMargins(), QSizeF(anchor.marginX, anchor.marginY)) << place;
        EXPECT_NE(legend.frame(), before) << place; // at once
        EXPECT_FALSE(cells[place]->accessibleName().isEmpty());
    }
    activate(*inspector().window());
    control<QCheckBox>("showLegendBox").setFocus();
    QTest::keyClick(&control<QCheckBox>("showLegendBox"), Qt::Key_Tab);
    EXPECT_TRUE(cells[8]->hasFocus());
    QTest::keyClick(cells[8], Qt::Key_Left);
    EXPECT_EQ(picker.place(), 7);
    document().setLegendAlignment(LegendPlacement::flexibleLeft);
    EXPECT_EQ(picker.place(), -1);
}

TEST_F(PlotInspectorTest, showsTheDocumentInFrontAndGoesOnWhenItIsClicked) {
    EXPECT_EQ(inspector().currentDocument(), &document()); // active before there was an inspector
    MoxDocumentWindow& second = application.documents().newDocument();
    document().setPlotAreaTitle(u"one"_s);
    second.document().setPlotAreaTitle(u"two"_s);
    activate(second);
    QLineEdit& title = control("titleField");
    EXPECT_EQ(title.text(), u"two"_s);
    activate(*inspector().window());
    EXPECT_EQ(inspector().currentDocument(), &second.document());
    EXPECT_TRUE(title.isEnabled());

    // What waits is meant for the document for which it was typed.
    type(title, u"second"_s, Qt::Key());
    document().windowDidBecomeMain();
    EXPECT_EQ(second.document().plotAreaTitle(), u"second"_s);
    EXPECT_EQ(document().plotAreaTitle(), u"one"_s);
    EXPECT_EQ(title.text(), u"one"_s);

    NotificationCenter::defaultCenter().post(Notifications::documentDidBecomeInactive, &second.document());
    EXPECT_EQ(inspector().currentDocument(), &document());
    second.document().setUnedited();
    second.close();
    EXPECT_EQ(inspector().currentDocument(), &document());
    document().setUnedited();
    window.close();
    EXPECT_EQ(inspector().currentDocument(), nullptr);
    for (const QWidget* each : control<QWidget>("content", "scrollArea").findChildren<QWidget*>())
        EXPECT_FALSE(each->isEnabled()) << each->objectName().toStdString();
    EXPECT_EQ(title.text(), QString());
    EXPECT_EQ(control<QComboBox>("kindBox", "axisY").currentIndex(), -1);
    EXPECT_EQ(control<PlacePicker>("placePicker").place(), -1);
}

TEST_F(PlotInspectorTest, isShownAndClosedByTheCommandTheButtonAndItself) {
    auto* button = window.findChild<QToolButton*>(u"inspectorButton"_s);
    const QAction* command = window.menus().action("plotInspector");
    const QWidget* tool = inspector().window();
    const auto state = [&] {
        return std::array{application.plotInspectorVisible(), tool->isVisible(), command->isChecked(),
                          button->isChecked()};
    };
    constexpr std::array shown{true, true, true, true};
    constexpr std::array hidden{false, false, false, false};
    const QPoint place(33, 44);
    inspector().window()->move(place);
    EXPECT_EQ(state(), shown);
    button->click();
    EXPECT_EQ(state(), hidden);
    trigger(window, "plotInspector");
    EXPECT_EQ(state(), shown);
    EXPECT_EQ(tool->pos(), place);
    const QKeyCombination closing[] = {Qt::Key_Escape, Qt::CTRL | Qt::Key_I, Qt::CTRL | Qt::Key_W};
    for (const QKeyCombination keys : closing) {
        application.setPlotInspectorVisible(true);
        activate(*inspector().window());
        QTest::keyClick(&control("titleField"), keys.key(), keys.keyboardModifiers());
        EXPECT_EQ(state(), hidden) << keys.toCombined();
    }
    EXPECT_EQ(application.documents().windows().size(), 1);
}

TEST_F(PlotInspectorTest, theDocumentsCommandsWorkInIt) {
    add(window, u"1 2"_s);
    QLineEdit& title = control("titleField");
    const auto sources = [&] { return document().dataSourcesManager().dataSources().size(); };
    type(title, u"wind"_s, Qt::Key());
    QTest::keyClick(&title, Qt::Key_Z, Qt::ControlModifier); // the field's own typing
    EXPECT_EQ(title.text(), QString());
    QTest::keyClick(&title, Qt::Key_Z, Qt::ControlModifier); // the document's step
    EXPECT_EQ(sources(), 0U);

    type(title, u"Wind"_s, Qt::Key());
    panels.paths = {folder.path(u"wind.mox"_s)};
    QTest::keyClick(&title, Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(document().plotAreaTitle(), u"Wind"_s);
    EXPECT_FALSE(document().isDocumentEdited());
    EXPECT_TRUE(title.hasFocus());
}

TEST(PlotInspectorPlace, isBesideTheDocumentAndOnTheScreen) {
    const QRect screen(0, 20, 1400, 980);
    const std::pair<QRect, QPoint> rows[] = {
        {{10, 50, 900, 600}, {918, 50}},   // right of it
        {{400, 50, 1000, 600}, {120, 50}}, // left of it
        {{0, 20, 1400, 980}, {1128, 20}},  // over it
        {{10, 700, 900, 600}, {918, 400}}, // not below the screen
        {{10, -50, 900, 600}, {918, 20}},  // nor above
        {{-2000, 50, 900, 600}, {0, 50}},  // nor beside
    };
    for (const auto& [frame, place] : rows)
        EXPECT_EQ(XPlotInspectorWindowController::placeBeside(frame, {272, 600}, screen), place);
}

} // namespace
