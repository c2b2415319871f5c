// The rows of the menus.
#include "Classes/WindowControllers/MenuTable.h"

#include "Classes/GraphViewController/XGraphViewController.h"
#include "Classes/WindowControllers/DocumentController.h"
#include "Classes/WindowControllers/EditCommands.h"
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

bool canPaste(const Window& window) {
    const QWidget* focus = window.menus().focus();
    return EditCommands::isText(focus) ? EditCommands::can(EditCommand::Paste, focus) : !hasSource(window);
}

void paste(Window& window) {
    if (EditCommands::isText(window.menus().focus()))
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
        QAction* action = menu.addAction(asMenuText(each->documentName()), each, [each] {
            each->show();
            each->raise();
            each->activateWindow();
        });
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

// --- The table
// -------------------------------------------------------------------------------------------------

constexpr MenuCommand fileCommands[] = {
    {.name = "new",
     .text = "&New",
     .keys = "Ctrl+N",
     .help = "A new document",
     .perform = [](Window& window) { window.documents().newDocument(); }},
    {.name = "open",
     .text = "&Open…",
     .keys = "Ctrl+O",
     .help = "Open documents or data files",
     .perform = [](Window& window) { window.documents().openWithPanel(window); }},
    {.name = "openRecent",
     .text = "Open &Recent",
     .help = "Documents that were opened before",
     .isEnabled = [](const Window& window) { return !window.documents().recentDocuments().isEmpty(); },
     .fillSubmenu = fillRecent},
    separator,
    {.name = "close",
     .text = "&Close",
     .keys = "Ctrl+W",
     .help = "Close this document",
     .perform = [](Window& window) { window.close(); }},
    {.name = "save",
     .text = "&Save",
     .keys = "Ctrl+S",
     .help = "Save this document",
     .perform = [](Window& window) { window.save(); }},
    {.name = "saveAs",
     .text = "Save &As…",
     .keys = "Ctrl+Shift+S",
     .help = "Save this document in another file",
     .perform = [](Window& window) { window.saveAs(); }},
    separator,
    {.name = "quit",
     .text = "&Quit",
     .keys = "Ctrl+Q",
     .help = "Close all documents and quit",
     .perform = [](Window& window) { window.documents().quit(); }},
};

constexpr MenuCommand editCommands[] = {
    {.name = "undo",
     .text = "&Undo",
     .keys = "Ctrl+Z",
     .help = "Take the last step back",
     .perform = undo,
     .isEnabled =
         [](const Window& window) {
             return canInText<EditCommand::Undo>(window) || window.document().undoManager().canUndo();
         },
     .textNow = undoText},
    {.name = "redo",
     .text = "&Redo",
     .keys = "Ctrl+Shift+Z Ctrl+Y",
     .help = "Make the step again",
     .perform = redo,
     .isEnabled =
         [](const Window& window) {
             return canInText<EditCommand::Redo>(window) || window.document().undoManager().canRedo();
         },
     .textNow = redoText},
    separator,
    {.name = "cut",
     .text = "Cu&t",
     .keys = "Ctrl+X",
     .help = "Move the selected text to the clipboard",
     .perform = performInText<EditCommand::Cut>,
     .isEnabled = canInText<EditCommand::Cut>},
    {.name = "copy",
     .text = "&Copy",
     .keys = "Ctrl+C",
     .help = "Copy what is selected",
     .perform = performInText<EditCommand::Copy>,
     .isEnabled = canInText<EditCommand::Copy>},
    {.name = "paste",
     .text = "&Paste",
     .keys = "Ctrl+V",
     .help = "Put the clipboard's text into the field, or into a new data source while there is none",
     .perform = paste,
     .isEnabled = canPaste},
    separator,
    {.name = "selectAll",
     .text = "Select &All",
     .keys = "Ctrl+A",
     .help = "Select everything in the field",
     .perform = performInText<EditCommand::SelectAll>,
     .isEnabled = canInText<EditCommand::SelectAll>},
};

constexpr MenuCommand dataCommands[] = {
    {.name = "addTextFile",
     .text = "Add Text &File…",
     .keys = "Ctrl+Shift+O",
     .help = "Add a data source that reads a file",
     .perform = [](Window& window) { window.addTextFileDatasource(); }},
    {.name = "addTextEditor",
     .text = "Add Text &Editor",
     .keys = "Ctrl+Shift+T",
     .help = "Add a data source whose text is typed or pasted",
     .perform = [](Window& window) { window.addTextEditorDatasource(); }},
    separator,
    {.name = "reload",
     .text = "&Reload",
     .keys = "F5",
     .help = "Read the data again: the selected source, or all of them",
     .perform = [](Window& window) { window.onReloadData(); },
     .isEnabled = [](const Window& window) { return hasSource(window) && !window.isDropTabSelected(); },
     .whyDisabled = "There is nothing to read"},
    separator,
    {.name = "removeDataSource",
     .text = "Re&move Data Source",
     .keys = "Ctrl+Shift+W",
     .help = "Remove the data source whose tab is selected",
     .perform = [](Window& window) { window.closeSelectedTab(); },
     .isEnabled = [](const Window& window) { return window.isDataSourceTabSelected(); },
     .whyDisabled = "Select the tab of a data source first"},
};

template <int mode>
void setMouseMode(Window& window) {
    window.graphViewController().setMouseMode(mode);
}

template <int mode>
bool isMouseMode(const Window& window) {
    return window.graphViewController().mouseMode() == mode;
}

template <void (XGraphViewController::*edit)()>
void editTitle(Window& window) {
    (window.graphViewController().*edit)();
}

bool isPlotSelected(const Window& window) {
    return window.isPlotSelected();
}

constexpr auto selectPlotFirst = "Select the tab of the plot first";

constexpr MenuCommand plotCommands[] = {
    {.name = "addCurve",
     .text = "&Add Curve",
     .keys = "Ctrl+Shift+N",
     .help = "Add a curve",
     .perform = [](Window& window) { window.onAddCurve(); },
     .isEnabled = hasSource,
     .whyDisabled = "Add a data source first"},
    separator,
    {.name = "fit",
     .text = "&Fit to Data",
     .keys = "Ctrl+0",
     .help = "Show all data and follow them",
     .perform = [](Window& window) { window.onFitToData(); },
     .isEnabled = isPlotSelected,
     .whyDisabled = selectPlotFirst},
    {.name = "alignX",
     .text = "Align &X Axis",
     .help = "Round both ends of the time axis",
     .perform = [](Window& window) { window.graphViewController().alignXAxis(); },
     .isEnabled = [](const Window& window) { return window.isPlotSelected() && window.hasTimeAxis(); },
     .whyDisabled = "Only a time axis can be aligned"},
    separator,
    {.name = "pan",
     .text = "&Pan",
     .keys = "Ctrl+1",
     .help = "Drag to move the plot",
     .perform = setMouseMode<0>,
     .isEnabled = isPlotSelected,
     .isChecked = isMouseMode<0>,
     .choiceGroup = "mouseModes",
     .whyDisabled = selectPlotFirst},
    {.name = "zoom",
     .text = "&Zoom",
     .keys = "Ctrl+2",
     .help = "Drag a rectangle to zoom in",
     .perform = setMouseMode<1>,
     .isEnabled = isPlotSelected,
     .isChecked = isMouseMode<1>,
     .choiceGroup = "mouseModes",
     .whyDisabled = selectPlotFirst},
    {.name = "ruler",
     .text = "&Ruler",
     .keys = "Ctrl+3",
     .help = "Drag to measure",
     .perform = setMouseMode<2>,
     .isEnabled = isPlotSelected,
     .isChecked = isMouseMode<2>,
     .choiceGroup = "mouseModes",
     .whyDisabled = selectPlotFirst},
    {.name = "stickyRuler",
     .text = "&Sticky Ruler",
     .help = "Keep the measurement when the button is released",
     .perform = [](Window& window) { window.graphViewController().toggleStickyRuler(); },
     .isEnabled = [](const Window& window) { return window.isPlotSelected() && isMouseMode<2>(window); },
     .isChecked = [](const Window& window) { return window.graphViewController().plotView().stickyRuler(); },
     .whyDisabled = "Choose the ruler first"},
    {.name = "wheelZooms",
     .text = "&Wheel Zooms",
     .help = "Which axes the mouse wheel zooms",
     .fillSubmenu = fillWheelZooms},
    separator,
    {.name = "editTitle",
     .text = "Edit Plot &Title",
     .help = "Give the plot a title",
     .perform = editTitle<&XGraphViewController::editPlotTitle>,
     .isEnabled = isPlotSelected,
     .whyDisabled = selectPlotFirst},
    {.name = "editTitleX",
     .text = "Edit x Axis Title",
     .help = "Give the x axis a title",
     .perform = editTitle<&XGraphViewController::editAxisXTitle>,
     .isEnabled = isPlotSelected,
     .whyDisabled = selectPlotFirst},
    {.name = "editTitleY",
     .text = "Edit y Axis Title",
     .help = "Give the y axis a title",
     .perform = editTitle<&XGraphViewController::editAxisYTitle>,
     .isEnabled = isPlotSelected,
     .whyDisabled = selectPlotFirst},
    separator,
    {.name = "showLegend",
     .text = "Show &Legend",
     .help = "Show or hide the legend",
     .perform = [](Window& window) { window.document().setShowLegend(!window.document().showLegend()); },
     .isChecked = [](const Window& window) { return window.document().showLegend(); }},
    {.name = "blackBackground",
     .text = "&Black Background",
     .help = "Draw the plot on black, or on white again",
     .perform =
         [](Window& window) {
             XGraphViewController& plot = window.graphViewController();
             plot.setBlackBackground(!plot.blackBackground());
         },
     .isChecked = [](const Window& window) { return window.graphViewController().blackBackground(); }},
};

constexpr MenuCommand windowCommands[] = {
    {.name = "nextTab",
     .text = "&Next Tab",
     .keys = "Ctrl+PgDown",
     .help = "Select the next tab",
     .perform = [](Window& window) { window.selectNextTab(1); }},
    {.name = "previousTab",
     .text = "&Previous Tab",
     .keys = "Ctrl+PgUp",
     .help = "Select the previous tab",
     .perform = [](Window& window) { window.selectNextTab(-1); }},
    separator,
    {.name = "standardSize",
     .text = "&Standard Size",
     .help = "920 by 550, so that pictures of plots are of one size",
     .perform = [](Window& window) { window.onPrepareToSnapshot(); }},
};

constexpr MenuRows theTable[] = {
    {"&File", fileCommands},
    {"&Edit", editCommands},
    {"&Data", dataCommands},
    {"&Plot", plotCommands},
    {"&Window", windowCommands, fillWindows},
};

} // namespace

std::span<const MenuRows> menuTable() {
    return theTable;
}
