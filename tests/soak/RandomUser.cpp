// Chooses among the deeds of a user, and does them through widgets alone.
#include "soak/RandomUser.h"

#include "Classes/Axes/XAxisManager.h"
#include "Classes/CurvesSidebar/ExpressionField.h"
#include "Classes/ExpressionEvaluator/XExpressionEvaluator.h"
#include "Classes/GraphViewController/XGraphViewController.h"
#include "Classes/Recovery/AutosaveFolder.h"
#include "Classes/TabBar/QXTabBar.h"
#include "Classes/WindowControllers/MoxDocumentWindow.h"
#include "Classes/WindowControllers/WindowMenus.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "MoxDocument.h"
#include "support/TestSupport.h"
#include "widgetkit/WidgetFixtures.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype mostWindows = 3;
constexpr std::size_t mostSources = 5;
constexpr qsizetype mostCurves = 9;

/// What ends the program, or writes where others read.
const char* const untouchedCommands[] = {"&Quit", "Snapshot to &PDF", "Dump &x Axis Test Case"};

QByteArray numbers(int rows, int phase) {
    QByteArray text;
    for (int row = 0; row < rows; ++row)
        text += QByteArray::number(row) + ',' +
                QByteArray::number(std::sin((row + phase) * 0.001) * 100, 'f', 3) + ',' +
                QByteArray::number(row * 7919LL % 1000) + '\n';
    return text;
}

void write(const QString& path, const QByteArray& bytes, QIODevice::OpenMode mode = QIODevice::Truncate) {
    QFile file(path);
    const bool written = file.open(QIODevice::WriteOnly | mode) && file.write(bytes) == bytes.size();
    EXPECT_TRUE(written) << path.toStdString();
}

bool isUsable(const QWidget* widget) {
    return widget->isVisible() && widget->isEnabled() && !widget->rect().isEmpty();
}

bool isNothingAutosaved() {
    return QDir(AutosaveFolder::standardPath()).isEmpty();
}

} // namespace

constexpr RandomUser::Deed RandomUser::deeds[] = {{"drags on the plot", 10, &RandomUser::dragOnPlot},
                                                  {"turns of the wheel", 10, &RandomUser::turnWheel},
                                                  {"keys on the plot", 8, &RandomUser::pressKeysOnPlot},
                                                  {"commands", 12, &RandomUser::chooseCommand},
                                                  {"undos and redos", 10, &RandomUser::undoAndRedo},
                                                  {"expressions", 8, &RandomUser::typeExpression},
                                                  {"any control", 30, &RandomUser::useAnyControl},
                                                  {"curves", 6, &RandomUser::changeCurves},
                                                  {"plot options", 5, &RandomUser::changePlot},
                                                  {"settings and reloads", 6, &RandomUser::changeSettings},
                                                  {"files", 5, &RandomUser::changeFiles},
                                                  {"tabs", 6, &RandomUser::changeTabs},
                                                  {"sizes of the window", 4, &RandomUser::resizeWindow},
                                                  {"windows", 2, &RandomUser::changeWindows}};

RandomUser::RandomUser(ApplicationDelegate& application, QString folder, int rows, unsigned seed)
    : m_application(application), m_folder(std::move(folder)), m_rows(rows), m_engine(seed),
      m_dialogs([this](unsigned bound) { return below(bound); },
                [this](const FilePanel& panel) { return choosePaths(panel); }) {
    write(path("master.csv"), numbers(m_rows, 0));
    startOver();
    makeDocument();
}

QString RandomUser::path(const char* name) const {
    return m_folder + u'/' + QLatin1String(name);
}

/// Five curves of a large file and a small one.
void RandomUser::makeDocument() {
    MoxDocumentWindow& window = m_application.documents().newDocument();
    MoxDocument& made = window.document();
    for (const char* name : {"data.csv", "live.csv"})
        made.addDatasourceWithSettings(QLatin1String(XPTextFile::identifier),
                                       {{u"Filename"_qs, path(name)}, {u"DelimiterType"_qs, 1}});
    const char* const expressions[] = {nullptr, nullptr, "sin(c1)+c2*0.5", "c3-c2", nullptr};
    for (const char* expression : expressions) {
        const XCurveHandle curve = made.addNewCurve();
        curve->setX_data_index(1);
        curve->setY_data_index(made.curves().size() == 1 ? 2 : 3);
        if (expression != nullptr) {
            curve->setY_data_expression(QString(QLatin1String(expression)));
            curve->setY_uses_expression(true);
        }
    }
    made.curves().last()->setDataSource(made.dataSourcesManager().dataSourceAtIndex(1));
    EXPECT_EQ(made.writeToURL(path("soak.mox")), std::nullopt);
    m_application.showPreferencesWindow(); // which are made once and stay
    m_application.setPlotInspectorVisible(true);
    m_documentBytes = support::ScratchFolder::read(path("soak.mox"));
    settle();
    made.setPlotAreaTitle(u"title"_qs);
    (void)support::waitUntil([] { return !isNothingAutosaved(); }); // by a thread that stays
    closeEverything();
}

void RandomUser::startOver() {
    QFile::remove(path("data.csv"));
    EXPECT_TRUE(QFile::copy(path("master.csv"), path("data.csv")));
    write(path("live.csv"), numbers(1'000, 0));
    if (!m_documentBytes.isEmpty())
        write(path("soak.mox"), m_documentBytes);
}

void RandomUser::act() {
    if (m_application.documents().windows().isEmpty())
        m_application.documents().openFile(path("soak.mox"), nullptr);
    const unsigned sum =
        std::accumulate(std::begin(deeds), std::end(deeds), 0U,
                        [](unsigned total, const Deed& deed) { return total + deed.weight; });
    unsigned chosen = below(sum);
    const Deed* deed = std::begin(deeds);
    for (; chosen >= deed->weight; ++deed)
        chosen -= deed->weight;
    QTimer::singleShot(0, this, &RandomUser::leaveMenus); // one that opens runs a loop of its own
    if (QApplication::activeModalWidget() != nullptr)
        useAnyControl();
    else
        (this->*deed->perform)();
    ++m_counts[deed->name];
    leaveMenus();
    unsigned rounds = below(4);
    if (below(5) == 0)
        settle();
    else
        (void)support::waitUntil([&] { return isIdle() || rounds == 0 || --rounds == 0; });
}

void RandomUser::settle() {
    const auto isAllDone = [this] {
        return isIdle() && (!m_application.documents().windows().isEmpty() || isNothingAutosaved());
    };
    (void)support::waitUntil(isAllDone, 300);
    finishDeletions();
}

bool RandomUser::isIdle() {
    const auto& windows = m_application.documents().windows();
    return XExpressionEvaluator::sharedInstance().isIdle() &&
           std::ranges::none_of(windows, [](MoxDocumentWindow* each) {
               return each->document().isReading() ||
                      each->graphViewController().plotView().scene().renderTaskCount() > 0;
           });
}

void RandomUser::closeEverything() {
    leaveMenus();
    for (MoxDocumentWindow* each : QList(m_application.documents().windows()))
        each->closeNow();
    for (QWidget* each : QApplication::topLevelWidgets()) {
        if (each->isVisible())
            each->close();
    }
    finishDeletions();
}

// --- What the user sees

MoxDocumentWindow& RandomUser::window() {
    auto& documents = m_application.documents();
    return documents.mainWindow() != nullptr && below(4) != 0 ? *documents.mainWindow()
                                                              : *anyOf(documents.windows());
}

MoxDocument& RandomUser::document() {
    return window().document();
}

QPoint RandomUser::anyPointOf(const QWidget& widget) {
    return {static_cast<int>(below(static_cast<unsigned>(std::max(1, widget.width())))),
            static_cast<int>(below(static_cast<unsigned>(std::max(1, widget.height()))))};
}

Qt::KeyboardModifiers RandomUser::anyModifiers() {
    const Qt::KeyboardModifier some[] = {Qt::ShiftModifier, Qt::ControlModifier, Qt::AltModifier};
    return below(4) == 0 ? Qt::KeyboardModifiers(some[below(3)]) : Qt::KeyboardModifiers();
}

/// An open menu, which may run a loop of its own, or an open list: chooses something and closes it.
void RandomUser::leaveMenus() {
    for (int i = 0; i < 5; ++i) {
        const QPointer<QWidget> popup = QApplication::activePopupWidget();
        if (popup == nullptr)
            return;
        if (auto* menu = qobject_cast<QMenu*>(popup)) {
            QAction* action = menu->actions().isEmpty()
                                  ? nullptr
                                  : menu->actions()[below(static_cast<unsigned>(menu->actions().size()))];
            const bool isUntouched =
                action == nullptr || std::ranges::any_of(untouchedCommands, [&](const char* text) {
                    return action->text() == QLatin1String(text);
                });
            if (!isUntouched && action->isEnabled() && below(2) == 0) {
                menu->setActiveAction(action);
                QTest::keyClick(menu, Qt::Key_Return);
            }
        } else {
            QTest::keyClick(popup, below(2) == 0 ? Qt::Key_Down : Qt::Key_Up);
            if (popup != nullptr)
                QTest::keyClick(popup, Qt::Key_Return);
        }
        if (popup != nullptr && popup->isVisible())
            popup->close();
    }
}

QStringList RandomUser::choosePaths(const FilePanel& panel) {
    switch (below(5) == 0 ? -1 : static_cast<int>(panel.purpose)) {
    case static_cast<int>(FilePanel::Purpose::OpenOne):
    case static_cast<int>(FilePanel::Purpose::OpenSeveral):
        return {path(below(2) == 0 ? "data.csv" : "live.csv")};
    case static_cast<int>(FilePanel::Purpose::Save):
        return {path("saved") + u'.' + (panel.defaultSuffix.isEmpty() ? u"mox"_qs : panel.defaultSuffix)};
    case static_cast<int>(FilePanel::Purpose::ChooseFolder):
        return {m_folder};
    default:
        return {};
    }
}

// --- Hands

void RandomUser::mouse(QEvent::Type type, QWidget& widget, QPoint point, Qt::MouseButton button,
                       Qt::MouseButtons held) {
    QMouseEvent event(type, point, widget.mapToGlobal(point), button, held, anyModifiers());
    QApplication::sendEvent(&widget, &event);
}

void RandomUser::drag(QWidget& widget) {
    const QPointer<QWidget> alive(&widget);
    const QPoint start = anyPointOf(widget);
    mouse(QEvent::MouseButtonPress, widget, start, Qt::LeftButton, Qt::LeftButton);
    for (unsigned i = below(8); i > 0 && alive != nullptr; --i) {
        mouse(QEvent::MouseMove, widget, anyPointOf(widget), Qt::NoButton, Qt::LeftButton);
        QCoreApplication::processEvents();
    }
    if (alive != nullptr && below(8) == 0)
        QTest::keyClick(alive, Qt::Key_Escape);
    if (alive != nullptr)
        mouse(QEvent::MouseButtonRelease, widget, anyPointOf(widget), Qt::LeftButton, Qt::NoButton);
}

void RandomUser::wheel(QWidget& widget) {
    const QPoint point = anyPointOf(widget);
    const QPoint angle(0, static_cast<int>(below(481)) - 240);
    QWheelEvent event(point, widget.mapToGlobal(point), {}, angle, Qt::NoButton, anyModifiers(),
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(&widget, &event);
}

void RandomUser::pressKeys(QWidget& widget) {
    const Qt::Key keys[] = {Qt::Key_Left, Qt::Key_Right,  Qt::Key_Up,       Qt::Key_Down,   Qt::Key_Home,
                            Qt::Key_End,  Qt::Key_Plus,   Qt::Key_Minus,    Qt::Key_Escape, Qt::Key_Space,
                            Qt::Key_Tab,  Qt::Key_Return, Qt::Key_1,        Qt::Key_2,      Qt::Key_Delete,
                            Qt::Key_C,    Qt::Key_F6,     Qt::Key_Backspace};
    const QPointer<QWidget> alive(&widget);
    for (unsigned i = 1 + below(5); i > 0 && alive != nullptr; --i)
        QTest::keyClick(alive, keys[below(std::size(keys))], anyModifiers());
}

// --- Deeds

void RandomUser::dragOnPlot() {
    MoxDocumentWindow& on = window();
    if (below(3) == 0)
        on.graphViewController().setMouseMode(static_cast<int>(below(3)));
    drag(on.graphViewController().plotView());
}

void RandomUser::turnWheel() {
    XPlotView& plot = window().graphViewController().plotView();
    for (unsigned i = 1 + below(6); i > 0; --i)
        wheel(plot);
}

void RandomUser::pressKeysOnPlot() {
    XPlotView& plot = window().graphViewController().plotView();
    if (plot.isVisible()) {
        plot.setFocus();
        pressKeys(plot);
    }
}

void RandomUser::chooseCommand() {
    const char* const names[] = {"new",
                                 "save",
                                 "saveAs",
                                 "cut",
                                 "copy",
                                 "paste",
                                 "selectAll",
                                 "reload",
                                 "addCurve",
                                 "fit",
                                 "alignX",
                                 "pan",
                                 "zoom",
                                 "ruler",
                                 "stickyRuler",
                                 "editTitle",
                                 "editTitleX",
                                 "editTitleY",
                                 "showLegend",
                                 "blackBackground",
                                 "nextTab",
                                 "previousTab",
                                 "nextRegion",
                                 "previousRegion",
                                 "plotInspector",
                                 "preferences",
                                 "exportPicture",
                                 "snapshotToFile",
                                 "snapshotToClipboard",
                                 "prepareToSnapshot"};
    QAction* action = window().menus().action(names[below(std::size(names))]);
    if (action->isEnabled())
        action->trigger();
}

void RandomUser::undoAndRedo() {
    const QPointer<MoxDocumentWindow> on = &window();
    for (unsigned i = 1 + below(12); i > 0 && on != nullptr; --i) {
        on->menus().action(below(5) < 3 ? "undo" : "redo")->trigger();
        if (below(2) == 0)
            QCoreApplication::processEvents();
    }
}

void RandomUser::typeExpression() {
    const QList<ExpressionField*> fields = window().findChildren<ExpressionField*>();
    if (fields.isEmpty())
        return;
    const QPointer<ExpressionField> field = anyOf(fields);
    const char* const texts[] = {"sin(c1)+c2*0.5", "c2*", "row/2", "sqrt(abs(c3))", "c9", "avg", "",
                                 "c1>500?c2:c3"};
    if (!isUsable(field))
        return;
    field->setFocus();
    field->selectAll();
    QTest::keyClicks(field, QString(QLatin1String(texts[below(std::size(texts))])));
    const Qt::Key ends[] = {Qt::Key_Return, Qt::Key_Tab, Qt::Key_Escape, Qt::Key_Down};
    if (field != nullptr)
        QTest::keyClick(field, ends[below(std::size(ends))]);
}

void RandomUser::useAnyControl() {
    QWidgetList usable;
    if (QWidget* modal = QApplication::activeModalWidget()) {
        if (below(4) == 0) {
            modal->close();
            return;
        }
        usable = modal->findChildren<QWidget*>();
    } else {
        usable = QApplication::allWidgets();
    }
    usable.removeIf([](const QWidget* each) { return !isUsable(each); });
    if (usable.isEmpty())
        return;
    QWidget& widget = *anyOf(usable);
    switch (below(8)) {
    case 0:
        return drag(widget);
    case 1:
        return wheel(widget);
    case 2:
        return pressKeys(widget);
    case 3:
        return QTest::mouseDClick(&widget, Qt::LeftButton, anyModifiers(), anyPointOf(widget));
    default:
        QTest::mouseClick(&widget, below(8) == 0 ? Qt::RightButton : Qt::LeftButton, anyModifiers(),
                          anyPointOf(widget));
    }
}

void RandomUser::changeCurves() {
    MoxDocument& of = document();
    const XCurves curves = of.curves();
    if (curves.size() < mostCurves && below(3) == 0) {
        of.addNewCurve();
        return;
    }
    if (curves.isEmpty())
        return;
    const XCurveHandle curve = anyOf(curves);
    const auto& sources = of.dataSourcesManager().dataSources();
    switch (below(5)) {
    case 0:
        of.removeCurve(curve);
        break;
    case 1: // to another place
        of.removeCurve(curve);
        of.insertCurveAtIndex(curve, static_cast<int>(below(static_cast<unsigned>(curves.size()))));
        break;
    case 2:
        curve->setDataSource(sources.empty() ? nullptr
                                             : sources[below(static_cast<unsigned>(sources.size()))]);
        break;
    case 3:
        curve->setIsVisible(!curve->isVisible());
        break;
    default:
        curve->setY_data_index(static_cast<int>(below(4)));
    }
}

void RandomUser::changePlot() {
    MoxDocument& of = document();
    const auto& kinds = XAxisManager::sharedManager().axisTypes();
    const XAxisInfo* kind = &kinds[below(static_cast<unsigned>(kinds.size()))];
    const std::optional<double> limit =
        below(2) == 0 ? std::nullopt : std::optional(static_cast<double>(below(2000)) - 1000);
    switch (below(6)) {
    case 0:
        return of.setAxisX_type(kind);
    case 1:
        return of.setAxisY_type(kind);
    case 2:
        return of.setAxisMinX(limit);
    case 3:
        return of.setAxisMaxY(limit);
    case 4:
        return of.setPlotAreaTitle(below(2) == 0 ? std::nullopt : std::optional(u"title"_qs));
    default:
        return of.placeLegend({static_cast<int>(below(16)), double(below(300)), double(below(300))});
    }
}

void RandomUser::changeSettings() {
    MoxDocument& of = document();
    const auto& sources = of.dataSourcesManager().dataSources();
    if (sources.empty())
        return;
    auto* source = qobject_cast<XPTextFile*>(sources[below(static_cast<unsigned>(sources.size()))].get());
    switch (below(6)) {
    case 0:
        source->setSkiplines(static_cast<int>(below(4)));
        break;
    case 1:
        source->setEveryNthLine(static_cast<int>(below(4)));
        break;
    case 2:
        source->setDelimiterType(static_cast<int>(below(4)));
        break;
    case 3:
        source->setExtractColumnNames(below(2) == 0);
        break;
    case 4:
        source->setLive(!source->isLive());
        break;
    default:
        return of.onReloadData();
    }
    source->read();
}

void RandomUser::changeFiles() {
    const QString live = path("live.csv");
    switch (below(6)) {
    case 0:
        return write(path("data.csv"), "5,6,7\n", QIODevice::Append);
    case 1:
        return write(live, "5,6,7\n8,9", QIODevice::Append);
    case 2: {
        const QString other = path("other.csv");
        write(other, numbers(500, static_cast<int>(below(100))));
        QFile::remove(live);
        EXPECT_TRUE(QFile::rename(other, live));
        return;
    }
    case 3:
        return write(live, {});
    case 4:
        QFile::remove(live);
        return;
    default:
        EXPECT_TRUE(QFile::resize(path("data.csv"), QFileInfo(path("master.csv")).size() / (1 + below(3))));
    }
}

void RandomUser::changeTabs() {
    const QPointer<MoxDocumentWindow> on = &window();
    switch (below(4)) {
    case 0:
        if (on->document().dataSourcesManager().dataSources().size() < mostSources)
            on->document().textDropped(u"1 2 3\n4 5 6\n"_qs);
        break;
    case 1:
        on->closeSelectedTab();
        break;
    default:
        on->selectNextTab(below(2) == 0 ? 1 : -1);
    }
}

void RandomUser::resizeWindow() {
    window().resize(500 + static_cast<int>(below(900)), 350 + static_cast<int>(below(600)));
}

void RandomUser::changeWindows() {
    DocumentController& documents = m_application.documents();
    switch (below(4)) {
    case 0:
        window().close();
        break;
    case 1:
        documents.openFile(path("soak.mox"), &window());
        break;
    case 2:
        window().bringToFront();
        break;
    default:
        if (documents.windows().size() < mostWindows)
            documents.newDocument();
    }
    while (documents.windows().size() > mostWindows)
        documents.windows().first()->closeNow();
}
