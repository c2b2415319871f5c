// The window of a document: tabs in step with sources, menus, drops, what the status line says.
#include "WindowFixture.h"

#include "Classes/DropHere/XDropHereView.h"
#include "Classes/GraphViewController/XGraphViewController.h"
#include "Classes/TabBar/QXNewSourceTabBarItem.h"
#include "Platform/Core/NotificationCenter.h"

#include <QLabel>
#include <QLayout>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QToolButton>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

class MoxDocumentWindowTest : public WindowFixture {};

TEST_F(MoxDocumentWindowTest, aNewDocumentShowsItsPlotAndTheDropTab) {
    MoxDocumentWindow& window = newWindow();
    ASSERT_EQ(window.dataSourcesTabBar().tabs().size(), 1U);
    EXPECT_NE(qobject_cast<QXNewSourceTabBarItem*>(window.dataSourcesTabBar().tabs()[0]), nullptr);
    EXPECT_TRUE(window.isPlotSelected());
    EXPECT_EQ(window.dataSourcesTabBar().selectedTab(), nullptr) << "one selection in both bars";
    EXPECT_EQ(window.dataSourcesTabBar().tabBarsLinkIdentifier(),
              QString::asprintf("tabbar_%p", static_cast<void*>(&window.document())));
    EXPECT_EQ(window.document().undoManager().levelsOfUndo(), 10U);
    EXPECT_EQ(window.statusLine().message(), u"No data source yet"_qs);
    EXPECT_EQ(window.focusWidget(), &window.graphViewController().plotView());
    EXPECT_EQ(window.windowTitle(), u"Untitled[*] — Velquin"_qs);
    EXPECT_EQ(newWindow().documentName(), u"Untitled 2"_qs);

    const auto* add = window.findChild<QToolButton*>(u"addDataSourceButton"_qs);
    EXPECT_EQ(QRect(add->mapTo(&window, QPoint()), add->size()), QRect(4, 32, 24, 22));
    EXPECT_EQ(window.graphTabBar().tabs()[0]->width(), 140);
}

TEST_F(MoxDocumentWindowTest, tabsStayInStepWithSourcesWhateverIsUndone) {
    MoxDocumentWindow& window = windowWith({u"1"_qs, u"2"_qs, u"3"_qs});
    EXPECT_EQ(tabsOf(window), u"1 2 3"_qs);
    alerts.plan = {0};
    window.dataSourcesTabBar().tabs()[1]->onClose();
    EXPECT_EQ(alerts.messages, QStringList{u"Delete datasource"_qs});
    EXPECT_EQ(alerts.reason, u"The datasource will be deleted"_qs);
    EXPECT_EQ(tabsOf(window), u"1 3"_qs);
    EXPECT_EQ(window.dataSourcesTabBar().selectedIndex(), 0);
    const char* steps[] = {"undo", "redo", "undo", "undo", "undo", "undo", "redo", "redo", "redo", "redo"};
    const char* expected[] = {"1 2 3", "1 3", "1 2 3", "1 2", "1", " and more", "1", "1 2", "1 2 3", "1 3"};
    for (std::size_t i = 0; i < std::size(steps); ++i) {
        trigger(window, steps[i]);
        EXPECT_EQ(tabsOf(window), QLatin1String(expected[i])) << i;
        EXPECT_EQ(window.isDropTabSelected(), i == 5) << "the drop tab is back and selected, or away";
    }
}

TEST_F(MoxDocumentWindowTest, whatPagesTellWhileTheWindowGoesReachesNobody) {
    MoxDocumentWindow& window = windowWith({u"1"_qs, u"2"_qs});
    const QPointer<XViewController> second = &pageOf(window, 1);
    pageOf(window, 0).toldAtTheEnd = second;
    delete &window;
    EXPECT_TRUE(second.isNull());
}

TEST_F(MoxDocumentWindowTest, keptACancelledCloseLetsATabOutliveItsSource) {
    MoxDocumentWindow& window = windowWith({u"1"_qs, u"2"_qs});
    alerts.plan = {1};
    window.dataSourcesTabBar().tabs()[1]->onClose();
    EXPECT_EQ(tabsOf(window), u"1 2"_qs) << "cancelled";
    trigger(window, "undo");
    EXPECT_EQ(tabsOf(window), u"1 and more"_qs) << "kept: the tab of the source that is gone stays";
    {
        const support::AssertionRecorder assertions;
        add(window, u"3"_qs);
        EXPECT_EQ(assertions.texts(),
                  std::vector<std::string>{"Datasources/tabs order broken: newTabIndex=2, index=1"});
    }
    EXPECT_EQ(tabsOf(window), u"1 3"_qs) << "and does not stop the program";

    trigger(window, "undo");
    alerts.plan = {0};
    window.dataSourcesTabBar().tabs()[1]->onClose();
    EXPECT_EQ(tabsOf(window), u"1"_qs) << "closing such a tab removes no other source";
    trigger(window, "undo");
    EXPECT_TRUE(window.document().dataSourcesManager().dataSources().empty());
    EXPECT_EQ(tabsOf(window), u" and more"_qs) << "a close that happened clears the mark";
}

TEST_F(MoxDocumentWindowTest, theStatusLineTellsOfTheSelectedPageOrTheLastNews) {
    MoxDocumentWindow& window = windowWith({u"1"_qs, u"2"_qs});
    window.graphViewController().setStatus({});
    pageOf(window, 0).setStatus(u"one: 1 row"_qs);
    pageOf(window, 1).setFault(u"two is gone"_qs);
    EXPECT_EQ(window.statusLine().message(), u"two is gone"_qs);
    window.dataSourcesTabBar().selectTabWithIndex(0);
    EXPECT_EQ(window.statusLine().message(), u"one: 1 row"_qs);
    pageOf(window, 0).setReadouts({{u"x"_qs, u"-12345678.125"_qs}, {u"y"_qs, u"2"_qs}});
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    const auto placeOfX = [&] {
        const auto texts = window.statusLine().findChildren<QLabel*>();
        const auto found = std::find_if(texts.begin(), texts.end(),
                                        [](const QLabel* text) { return text->text() == u"x"_qs; });
        return found == texts.end() ? QPoint() : (*found)->pos();
    };
    window.statusLine().layout()->activate();
    const QPoint place = placeOfX();
    pageOf(window, 0).setReadouts({{u"x"_qs, u"1"_qs}, {u"y"_qs, u"2"_qs}});
    window.statusLine().layout()->activate();
    EXPECT_EQ(placeOfX(), place) << "columns do not jump";
    window.showMessage(u"news"_qs);
    EXPECT_EQ(window.statusLine().message(), u"news"_qs);
}

struct CommandRow {
    const char* situation;
    void (*make)(MoxDocumentWindow&);
    const char* enabled; ///< of those that are asked
    const char* disabled;
};

TEST_F(MoxDocumentWindowTest, commandsAreEnabledWhereTheyMakeSense) {
    const CommandRow rows[] = {
        {"empty, plot selected", [](MoxDocumentWindow&) {}, "new save fit pan paste addTextFile showLegend",
         "undo redo cut addCurve reload removeDataSource alignX stickyRuler openRecent"},
        {"drop tab", [](MoxDocumentWindow& window) { window.dataSourcesTabBar().selectTabWithIndex(0); },
         "paste addTextFile", "addCurve reload removeDataSource fit pan"},
        {"source tab", [](MoxDocumentWindow& window) { add(window, u"1"_qs); },
         "undo addCurve reload removeDataSource", "redo paste fit zoom"},
        {"plot again, ruler",
         [](MoxDocumentWindow& window) {
             window.graphTabBar().selectTabWithIndex(0);
             trigger(window, "ruler");
         },
         "addCurve reload fit stickyRuler undo", "paste removeDataSource alignX redo"},
        {"undone", [](MoxDocumentWindow& window) { trigger(window, "undo"); }, "redo paste",
         "undo addCurve reload"},
    };
    MoxDocumentWindow& window = newWindow();
    for (const CommandRow& row : rows) {
        row.make(window);
        for (const bool wanted : {true, false}) {
            const QString names = QLatin1String(wanted ? row.enabled : row.disabled);
            for (const QString& name : names.split(u' ')) {
                const QAction* action = window.menus().action(name.toLatin1().constData());
                ASSERT_NE(action, nullptr) << name.toStdString();
                EXPECT_EQ(action->isEnabled(), wanted) << row.situation << ": " << name.toStdString();
            }
        }
    }
    EXPECT_EQ(window.menus().action("addCurve")->toolTip(), u"Add a data source first"_qs);
    EXPECT_TRUE(window.menus().action("ruler")->isChecked());
    EXPECT_EQ(window.menus().action("redo")->text(), u"&Redo Add Datasource"_qs);
}

TEST_F(MoxDocumentWindowTest, everyCommandHasAHelpAndNoKeyIsTakenTwice) {
    const MoxDocumentWindow& window = newWindow();
    QList<QKeySequence> taken;
    for (const QMenu* menu : window.menuBar()->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly)) {
        for (const QAction* action : menu->actions()) {
            EXPECT_TRUE(action->isSeparator() || !action->toolTip().isEmpty())
                << action->text().toStdString();
            for (const QKeySequence& key : action->shortcuts()) {
                EXPECT_FALSE(taken.contains(key)) << key.toString().toStdString();
                taken.append(key);
            }
        }
    }
    EXPECT_GT(taken.size(), 20);
}

TEST_F(MoxDocumentWindowTest, theKeyOfUndoGoesToTypingBeforeTheDocument) {
    MoxDocumentWindow& window = windowWith({u"1"_qs});
    QLineEdit& field = pageOf(window, 0).field();
    window.activateWindow();
    field.setFocus();
    ASSERT_TRUE(support::waitUntil([&] { return field.hasFocus(); }));
    QTest::keyClicks(&field, u"ab"_qs);
    QTest::keyClick(&field, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(field.text(), QString());
    EXPECT_EQ(tabsOf(window), u"1"_qs);
    field.setText(u"handed over"_qs);
    QTest::keyClick(&field, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(tabsOf(window), u" and more"_qs) << "nothing typed: the document's step";
}

TEST_F(MoxDocumentWindowTest, pastedTextIsASourceOnlyWhileThereIsNone) {
    MoxDocumentWindow& window = newWindow();
    QGuiApplication::clipboard()->setText(u"1 2"_qs);
    trigger(window, "paste");
    EXPECT_EQ(tabsOf(window), u"1 2"_qs);
    trigger(window, "paste");
    window.paste();
    EXPECT_EQ(tabsOf(window), u"1 2"_qs);
}

TEST_F(MoxDocumentWindowTest, reloadReadsTheSelectedSourceOrAll) {
    MoxDocumentWindow& window = windowWith({u"1"_qs, u"2"_qs});
    ASSERT_TRUE(support::waitUntil([&] { return !window.document().isReading(); }));
    static constexpr const char* keys[] = {"isLoading"};
    QString began;
    std::vector<Observation> observations;
    for (const XDataSource& source : window.document().dataSourcesManager().dataSources()) {
        const QString name = dynamic_cast<XPTextEditor&>(*source).textData().value_or(QString());
        observations.emplace_back(*source, keys, [&began, name](const KeyChange& change) {
            began += change.newValue.toBool() ? name : QString();
        });
    }
    trigger(window, "reload");
    ASSERT_TRUE(support::waitUntil([&] { return !began.isEmpty() && !window.document().isReading(); }));
    EXPECT_EQ(began, u"2"_qs) << "of the selected tab";
    window.graphTabBar().selectTabWithIndex(0);
    trigger(window, "reload");
    ASSERT_TRUE(support::waitUntil([&] { return began.size() > 2 && !window.document().isReading(); }));
    EXPECT_EQ(began, u"212"_qs);

    MoxDocumentWindow& empty = newWindow();
    empty.dataSourcesTabBar().selectTabWithIndex(0);
    const support::AssertionRecorder assertions;
    empty.onReloadData();
    EXPECT_EQ(assertions.texts(), std::vector<std::string>{"Bad plugin view controller New data source"});
}

struct DropRow {
    const char* name;
    const char* url;
    const char* text;
    const char* overField; ///< whether the pointer is over a text field: "field" or ""
    const char* added;     ///< the new source's name or text; empty for none
};

TEST_F(MoxDocumentWindowTest, takesDropsAnywhere) {
    const DropRow rows[] = {
        {"a file", "file:///data/two%20words%20%C3%BC.csv", nullptr, "", "/data/two words ü.csv"},
        {"a file over a field", "file:///a.csv", "file:///a.csv", "field", "/a.csv"},
        {"a folder is a file", "file:///tmp", nullptr, "", "/tmp"},
        {"another scheme is text", "https://example.org/a.csv", nullptr, "", "https://example.org/a.csv"},
        {"text", nullptr, "1 2", "", "1 2"},
        {"text over a field is the field's", nullptr, "1 2", "field", ""},
    };
    for (const DropRow& row : rows) {
        SCOPED_TRACE(row.name);
        MoxDocumentWindow& window = windowWith({u"first"_qs});
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
        QMimeData data;
        if (row.url != nullptr)
            data.setUrls({QUrl(QString::fromUtf8(row.url))});
        if (row.text != nullptr)
            data.setText(QString::fromUtf8(row.text));
        QLineEdit& field = pageOf(window, 0).field();
        field.setGeometry(100, 100, 200, 24);
        const bool overField = qstrlen(row.overField) > 0;
        const QPointF place = overField ? QPointF(field.mapTo(&window, QPoint(50, 12))) : QPointF(600, 400);
        const auto send = [&](QDropEvent&& event) {
            QCoreApplication::sendEvent(window.windowHandle(), &event);
        };
        send(QDragEnterEvent(place.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier));
        const bool ours = qstrlen(row.added) > 0;
        EXPECT_EQ(window.statusLine().message() == u"Drop to add 1 data source"_qs, ours);
        send(QDropEvent(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier));
        EXPECT_NE(window.statusLine().message(), u"Drop to add 1 data source"_qs);
        const auto sources = window.document().dataSourcesManager().dataSources();
        ASSERT_EQ(sources.size(), ours ? 2U : 1U);
        if (!ours)
            continue;
        const auto* editor = qobject_cast<const XPTextEditor*>(sources.back().get());
        const auto* file = qobject_cast<const XPTextFile*>(sources.back().get());
        EXPECT_EQ(editor != nullptr ? editor->textData().value_or(QString()) : file->filename(),
                  QString::fromUtf8(row.added));
    }
}

TEST_F(MoxDocumentWindowTest, tabsAreWalkedAndRegionsReachedByKey) {
    MoxDocumentWindow& window = windowWith({u"1"_qs, u"2"_qs});
    QString walked;
    for (int i = 0; i < 4; ++i) {
        trigger(window, "nextTab");
        walked +=
            window.isPlotSelected() ? u"plot "_qs : window.dataSourcesTabBar().selectedTab()->title() + u' ';
    }
    EXPECT_EQ(walked, u"plot 1 2 plot "_qs);

    window.activateWindow();
    ASSERT_TRUE(support::waitUntil([&] { return window.isActiveWindow(); }));
    window.graphViewController().plotView().setFocus();
    const std::pair<const char*, const char*> jumps[] = {
        {"nextRegion", "statusLine"}, {"nextRegion", "graphTabBar"},  {"nextRegion", "leftView"},
        {"nextRegion", "toolStrip"},  {"previousRegion", "leftView"}, {"previousRegion", "graphTabBar"}};
    for (const auto& [command, region] : jumps) {
        trigger(window, command);
        const auto* wanted = window.findChild<QWidget*>(QLatin1String(region));
        const QWidget* focus = window.focusWidget();
        EXPECT_TRUE(focus == wanted || wanted->isAncestorOf(focus)) << region;
    }
}

TEST_F(MoxDocumentWindowTest, theWindowShowsTheLegendAndTakesTheSizeOfPictures) {
    MoxDocumentWindow& window = newWindow();
    trigger(window, "showLegend");
    EXPECT_TRUE(window.document().showLegend());
    EXPECT_TRUE(window.menus().action("showLegend")->isChecked());
    trigger(window, "prepareToSnapshot");
    EXPECT_EQ(window.size(), QSize(920, 550));
}

TEST_F(MoxDocumentWindowTest, tellsWhichDocumentIsInFront) {
    QString told;
    NotificationCenter& center = NotificationCenter::defaultCenter();
    MoxDocumentWindow& first = newWindow();
    MoxDocumentWindow& second = newWindow();
    const auto name = [&](QObject* document) { return document == &first.document() ? u'1' : u'2'; };
    const auto active = center.observe(Notifications::documentDidBecomeActive, nullptr,
                                       [&](QObject* document) { (told += u'+') += name(document); });
    const auto inactive = center.observe(Notifications::documentDidBecomeInactive, nullptr,
                                         [&](QObject* document) { (told += u'-') += name(document); });
    for (MoxDocumentWindow* window : {&first, &second}) {
        told.clear();
        window->activateWindow();
        ASSERT_TRUE(support::waitUntil([&] { return window->isActiveWindow(); }));
        EXPECT_EQ(documents.mainWindow(), window);
        EXPECT_TRUE(told.endsWith(window == &first ? u"+1"_qs : u"-1+2"_qs)) << told.toStdString();
    }
    told.clear();
    QWidget tool(nullptr, Qt::Tool);
    tool.show();
    tool.activateWindow();
    ASSERT_TRUE(support::waitUntil([&] { return tool.isActiveWindow(); }));
    EXPECT_EQ(documents.mainWindow(), &second);
    EXPECT_EQ(told, QString());
    second.close(); // the tool stays active: nobody but the controller says who is next
    EXPECT_EQ(documents.mainWindow(), &first);
    EXPECT_EQ(told, u"-2+1"_qs);
}

} // namespace
