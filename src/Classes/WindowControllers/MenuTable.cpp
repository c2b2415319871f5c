// The rows of the menus.
#include "Classes/WindowControllers/MenuTable.h"

#include "Classes/GraphViewController/XGraphViewController.h"
#include "Classes/WindowControllers/ApplicationActions.h"
#include "Classes/WindowControllers/DocumentController.h"
#include "Classes/WindowControllers/EditCommands.h"
#include "Classes/WindowControllers/FocusRegions.h"
#include "Classes/WindowControllers/MoxDocumentWindow.h"
#include "Classes/WindowControllers/WindowMenus.h"
#include "MoxDocument.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QFileInfo>
#include <QMenu>

#include <utility>

namespace {

using Window = MoxDocumentWindow;

constexpr MenuCommand separator{};

QString tr(const char* text) {
    return QCoreApplication::translate("WindowMenus", text);
}

/// File names may hold the mark of mnemonics.
QString asMenuText(QString text) {
    return text.replace(QLatin1Char('&'), QLatin1String("&&"));
}

bool hasSource(const Window& window) {
    return !window.document().dataSourcesManager().dataSources().empty();
}

// --- Undo and text
// --------------------------------------------------------------------------------------------

template <EditCommand command>
void performInText(Window& window) {
    EditCommands::perform(command, window.menus().focus());
}

template <EditCommand command>
bool canInText(const Window& window) {
    return EditCommands::can(command, window.menus().focus());
}

void undo(Window& window) {
    if (canInText<EditCommand::Undo>(window))
        performInText<EditCommand::Undo>(window);
    else
        window.document().undoManager().undo();
}

void redo(Window& window) {
    if (canInText<EditCommand::Redo>(window))
        performInText<EditCommand::Redo>(window);
    else
        window.document().undoManager().redo();
}

QString withName(const char* verb, const QString& step) {
    return step.isEmpty() ? tr(verb) : tr(verb) + QLatin1Char(' ') + asMenuText(step);
}

QString undoText(const Window& window) {
    return withName("&Undo", canInText<EditCommand::Undo>(window)
                                 ? tr("Typing")
                                 : window.document().undoManager().undoActionName());
}

QString redoText(const Window& window) {
    return withName("&Redo", canInText<EditCommand::Redo>(window)
                                 ? tr("Typing")
                                 : window.document().undoManager().redoActionName());
}

bool canUndo(const Window& window) {
    return canInText<EditCommand::Undo>(window) || window.document().undoManager().canUndo();
}

bool canRedo(const Window& window) {
    return canInText<EditCommand::Redo>(window) || window.document().undoManager().canRedo();
}

bool canPaste(const Window& window) {
    return canInText<EditCommand::Paste>(window) || !hasSource(window);
}

void paste(Window& window) {
    if (canInText<EditCommand::Paste>(window))
        performInText<EditCommand::Paste>(window);
    else
        window.paste();
}

// --- Submenus
// --------------------------------------------------------------------------------------------------

void fillRecent(QMenu& menu, Window& window) {
    DocumentController& documents = window.documents();
    for (const QString& path : documents.recentDocuments()) {
        QAction* action = menu.addAction(asMenuText(QFileInfo(path).fileName()),
                                         [&window, path] { window.documents().openFile(path, &window); });
        action->setToolTip(path);
        action->setEnabled(QFileInfo::exists(path));
    }
    menu.addSeparator();
    menu.addAction(tr("&Clear Menu"), [&documents] { documents.clearRecentDocuments(); });
}

void fillWindows(QMenu& menu, Window& window) {
    menu.addSeparator();
    for (MoxDocumentWindow* each : window.documents().windows()) {
        QAction* action =
            menu.addAction(asMenuText(each->documentName()), each, [each] { each->bringToFront(); });
        action->setCheckable(true);
        action->setChecked(each == &window);
    }
}

void fillWheelZooms(QMenu& menu, Window& window) {
    using Zooms = XPlotView::WheelZooms;
    XGraphViewController& plot = window.graphViewController();
    auto* group = new QActionGroup(&menu);
    const std::pair<const char*, Zooms> rows[] = {
        {"&Both Axes", Zooms::BothAxes}, {"&X Only", Zooms::XOnly}, {"&Y Only", Zooms::YOnly}};
    for (const auto& [text, zooms] : rows) {
        QAction* action =
            menu.addAction(tr(text), &window, [&plot, zooms = zooms] { plot.setWheelZooms(zooms); });
        action->setCheckable(true);
        action->setChecked(plot.wheelZooms() == zooms);
        group->addAction(action);
    }
}

// --- The application around the documents
// ----------------------------------------------------------------------

template <void (ApplicationActions::*action)()>
void askApplication(Window& window) {
    (window.documents().application()->*action)();
}

/// Commands that the application carries out.
constexpr MenuState applicationState{
    [](const Window& window) { return window.documents().application() != nullptr; },
    "There is no application around this window"};

// --- The table
// -------------------------------------------------------------------------------------------------

constexpr MenuCommand fileCommands[] = {
    {"new", "&New", "Ctrl+N", "A new document", [](Window& window) { window.documents().newDocument(); }},
    {"open", "&Open…", "Ctrl+O", "Open documents or data files",
     [](Window& window) { window.documents().openWithPanel(window); }},
    {"openRecent",
     "Open &Recent",
     "",
     "Documents that were opened before",
     nullptr,
     {[](const Window& window) { return !window.documents().recentDocuments().isEmpty(); }},
     fillRecent},
    separator,
    {"close", "&Close", "Ctrl+W", "Close this document", [](Window& window) { window.close(); }},
    {"save", "&Save", "Ctrl+S", "Save this document", [](Window& window) { window.save(); }},
    {"saveAs", "Save &As…", "Ctrl+Shift+S", "Save this document in another file",
     [](Window& window) { window.saveAs(); }},
    separator,
    {"quit", "&Quit", "Ctrl+Q", "Close all documents and quit",
     [](Window& window) { window.documents().quit(); }},
};

constexpr MenuCommand editCommands[] = {
    {"undo",
     "&Undo",
     "Ctrl+Z",
     "Take the last step back",
     undo,
     {canUndo, nullptr, nullptr, nullptr, undoText}},
    {"redo",
     "&Redo",
     "Ctrl+Shift+Z Ctrl+Y",
     "Make the step again",
     redo,
     {canRedo, nullptr, nullptr, nullptr, redoText}},
    separator,
    {"cut",
     "Cu&t",
     "Ctrl+X",
     "Move the selected text to the clipboard",
     performInText<EditCommand::Cut>,
     {canInText<EditCommand::Cut>}},
    {"copy",
     "&Copy",
     "Ctrl+C",
     "Copy what is selected",
     performInText<EditCommand::Copy>,
     {canInText<EditCommand::Copy>}},
    {"paste",
     "&Paste",
     "Ctrl+V",
     "Put the clipboard's text into the field, or into a new data source while there is none",
     paste,
     {canPaste}},
    separator,
    {"selectAll",
     "Select &All",
     "Ctrl+A",
     "Select everything in the field",
     performInText<EditCommand::SelectAll>,
     {canInText<EditCommand::SelectAll>}},
    separator,
    {"preferences", "Pr&eferences…", "Ctrl+,", "Where snapshots go, and other settings",
     askApplication<&ApplicationActions::showPreferencesWindow>, applicationState},
};

constexpr MenuCommand dataCommands[] = {
    {"addTextFile", "Add Text &File…", "Ctrl+Shift+O", "Add a data source that reads a file",
     [](Window& window) { window.addTextFileDatasource(); }},
    {"addTextEditor", "Add Text &Editor", "Ctrl+Shift+T", "Add a data source whose text is typed or pasted",
     [](Window& window) { window.addTextEditorDatasource(); }},
    separator,
    {"reload",
     "&Reload",
     "F5",
     "Read the data again: the selected source, or all of them",
     [](Window& window) { window.onReloadData(); },
     {[](const Window& window) { return hasSource(window) && !window.isDropTabSelected(); },
      "There is nothing to read"}},
    separator,
    {"removeDataSource",
     "Re&move Data Source",
     "Ctrl+Shift+W",
     "Remove the data source whose tab is selected",
     [](Window& window) { window.closeSelectedTab(); },
     {[](const Window& window) { return window.isDataSourceTabSelected(); },
      "Select the tab of a data source first"}},
};

template <int mode>
void setMouseMode(Window& window) {
    window.graphViewController().setMouseMode(mode);
}

template <int mode>
bool isMouseMode(const Window& window) {
    return window.graphViewController().mouseMode() == mode;
}

template <void (XGraphViewController::*action)()>
void onPlot(Window& window) {
    (window.graphViewController().*action)();
}

bool isPlotSelected(const Window& window) {
    return window.isPlotSelected();
}

/// Commands that need the plot on the screen.
constexpr MenuState plotState(MenuTest isChecked = nullptr, const char* choiceGroup = nullptr) {
    return {isPlotSelected, "Select the tab of the plot first", isChecked, choiceGroup};
}

constexpr auto mouseModes = "mouseModes";

constexpr MenuCommand plotCommands[] = {
    {"addCurve",
     "&Add Curve",
     "Ctrl+Shift+N",
     "Add a curve",
     [](Window& window) { window.onAddCurve(); },
     {hasSource, "Add a data source first"}},
    separator,
    {"fit", "&Fit to Data", "Ctrl+0", "Show all data and follow them",
     [](Window& window) { window.onFitToData(); }, plotState()},
    {"alignX",
     "Align &X Axis",
     "",
     "Round both ends of the time axis",
     [](Window& window) { window.graphViewController().alignXAxis(); },
     {[](const Window& window) { return window.isPlotSelected() && window.hasTimeAxis(); },
      "Only a time axis can be aligned"}},
    separator,
    {"pan", "&Pan", "Ctrl+1", "Drag to move the plot", setMouseMode<0>,
     plotState(isMouseMode<0>, mouseModes)},
    {"zoom", "&Zoom", "Ctrl+2", "Drag a rectangle to zoom in", setMouseMode<1>,
     plotState(isMouseMode<1>, mouseModes)},
    {"ruler", "&Ruler", "Ctrl+3", "Drag to measure", setMouseMode<2>, plotState(isMouseMode<2>, mouseModes)},
    {"stickyRuler",
     "&Sticky Ruler",
     "",
     "Keep the measurement when the button is released",
     [](Window& window) { window.graphViewController().toggleStickyRuler(); },
     {[](const Window& window) { return window.isPlotSelected() && isMouseMode<2>(window); },
      "Choose the ruler first",
      [](const Window& window) { return window.graphViewController().plotView().stickyRuler(); }}},
    {"wheelZooms", "&Wheel Zooms", "", "Which axes the mouse wheel zooms", nullptr, {}, fillWheelZooms},
    separator,
    {"editTitle", "Edit Plot &Title", "", "Give the plot a title",
     onPlot<&XGraphViewController::editPlotTitle>, plotState()},
    {"editTitleX", "Edit x Axis Title", "", "Give the x axis a title",
     onPlot<&XGraphViewController::editAxisXTitle>, plotState()},
    {"editTitleY", "Edit y Axis Title", "", "Give the y axis a title",
     onPlot<&XGraphViewController::editAxisYTitle>, plotState()},
    separator,
    {"showLegend",
     "Show &Legend",
     "",
     "Show or hide the legend",
     [](Window& window) { window.document().setShowLegend(!window.document().showLegend()); },
     {nullptr, nullptr, [](const Window& window) { return window.document().showLegend(); }}},
    {"blackBackground",
     "&Black Background",
     "",
     "Draw the plot on black, or on white again",
     [](Window& window) {
         XGraphViewController& plot = window.graphViewController();
         plot.setBlackBackground(!plot.blackBackground());
     },
     {nullptr, nullptr, [](const Window& window) { return window.graphViewController().blackBackground(); }}},
};

void fillDiagnostics(QMenu& menu, Window& window) {
    XGraphViewController& plot = window.graphViewController();
    menu.addAction(tr("Snapshot to &PDF"), &plot, &XGraphViewController::onMakeSnapshotToPDF)
        ->setToolTip(tr("Write the plot as it is shown to /tmp/snapshot.pdf"));
    menu.addAction(tr("Dump &x Axis Test Case"), &plot, &XGraphViewController::dumpXAxisTestCase)
        ->setToolTip(tr("Write the marks of the x axis to a file in /tmp"));
}

constexpr MenuCommand snapshotCommands[] = {
    {"snapshotToFile", "Snapshot to &File", "Ctrl+Shift+E", "Save a picture of the plot as it is shown",
     onPlot<&XGraphViewController::onMakeSnapshotToFile>, plotState()},
    {"snapshotToClipboard", "Snapshot to &Clipboard", "Ctrl+Shift+C",
     "Copy a picture of the plot as it is shown", onPlot<&XGraphViewController::onMakeSnapshotToClipboard>,
     plotState()},
    {"revealSnapshots", "&Reveal Snapshots Folder", "", "Show the folder in which snapshots are saved",
     onPlot<&XGraphViewController::onRevealSnapshotsFolder>},
    separator,
    {"prepareToSnapshot", "&Prepare to Snapshot", "",
     "Give the window 920 by 550, so that pictures of plots are of one size",
     [](Window& window) { window.onPrepareToSnapshot(); }},
    separator,
    {"exportPicture", "&Export Picture…", "Ctrl+E", "Write a picture of any size, or a page or drawing",
     [](Window& window) {
         window.graphViewController().onExportPicture(QFileInfo(window.documentName()).completeBaseName());
     }},
    {"diagnostics", "&Diagnostics", "", "What helps to find faults of the program", nullptr, plotState(),
     fillDiagnostics},
};

constexpr MenuCommand windowCommands[] = {
    {"nextTab", "&Next Tab", "Ctrl+PgDown", "Select the next tab",
     [](Window& window) { window.selectNextTab(1); }},
    {"previousTab", "&Previous Tab", "Ctrl+PgUp", "Select the previous tab",
     [](Window& window) { window.selectNextTab(-1); }},
    {"nextRegion", "Next &Region", "F6", "Put the keyboard into the next part of the window",
     [](Window& window) { FocusRegions::selectNext(window, 1); }},
    {"previousRegion", "Previous Re&gion", "Shift+F6",
     "Put the keyboard into the previous part of the window",
     [](Window& window) { FocusRegions::selectNext(window, -1); }},
    separator,
    {"plotInspector",
     "Plot &Inspector",
     "Ctrl+I",
     "Show or hide titles, axes and legend of the plot in front",
     [](Window& window) {
         ApplicationActions& application = *window.documents().application();
         application.setPlotInspectorVisible(!application.plotInspectorVisible());
     },
     {applicationState.isEnabled, applicationState.whyDisabled,
      [](const Window& window) {
          const ApplicationActions* application = window.documents().application();
          return application != nullptr && application->plotInspectorVisible();
      }}},
};

constexpr MenuCommand helpCommands[] = {
    {"communityForum", "Community &Forum", "", "Open the forum in the web browser",
     askApplication<&ApplicationActions::openCommunityForum>, applicationState},
    {"reportBug", "Report a &Bug", "", "Open the page for faults in the web browser",
     askApplication<&ApplicationActions::openCommunityForumBugReport>, applicationState},
    {"requestFeature", "&Request a Feature", "", "Open the page for wishes in the web browser",
     askApplication<&ApplicationActions::openCommunityForumFeatureRequest>, applicationState},
    separator,
    {"checkForUpdates", "Check for &Updates…", "", "See whether there is a newer version",
     [](Window& window) { window.documents().application()->checkForUpdates(&window); }, applicationState},
    separator,
    {"about", "&About Velquin", "", "Which version this is",
     askApplication<&ApplicationActions::onAboutPanel>, applicationState},
};

constexpr MenuRows theTable[] = {{"&File", fileCommands},         {"&Edit", editCommands},
                                 {"&Data", dataCommands},         {"&Plot", plotCommands},
                                 {"&Snapshot", snapshotCommands}, {"&Window", windowCommands, fillWindows},
                                 {"&Help", helpCommands}};

} // namespace

std::span<const MenuRows> menuTable() {
    return theTable;
}
