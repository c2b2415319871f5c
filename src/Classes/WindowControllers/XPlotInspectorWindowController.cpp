// Follows the document in front and ties the controls to its keys.
#include "Classes/WindowControllers/XPlotInspectorWindowController.h"

#include "Classes/WindowControllers/DocumentController.h"
#include "Classes/WindowControllers/EditCommands.h"
#include "Classes/WindowControllers/MoxDocumentWindow.h"
#include "Classes/WindowControllers/ToolStacking.h"
#include "Core/LegendPlacement.h"
#include "MoxDocument.h"
#include "Platform/Widgets/Binding.h"
#include "Platform/Widgets/ThemeColors.h"
#include "Platform/Widgets/VelquinStyle.h"
#include "ui_XPlotInspectorWindow.h"

#include <QEvent>
#include <QScreen>

#include <algorithm>
#include <utility>

namespace {

constexpr int leastWidth = 272;
constexpr int distance = 8; ///< to the document's frame
constexpr int placesInRow = 3;

int indexOf(const std::optional<LegendPlace>& place) {
    return place ? place->row * placesInRow + place->column : -1;
}

} // namespace

XPlotInspectorWindowController::XPlotInspectorWindowController(DocumentController& documents, QObject* parent)
    : XWindowController(parent), m_documents(documents), m_ui(std::make_unique<Ui::XPlotInspectorWindow>()) {
    window()->setWindowFlags(Qt::Tool | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                             Qt::WindowCloseButtonHint);
    window()->setAttribute(Qt::WA_QuitOnClose, false);
    m_ui->setupUi(window());
    awakeFromNib();
    if (MoxDocumentWindow* main = documents.mainWindow())
        setCurrentDocument(&main->document());
}

XPlotInspectorWindowController::~XPlotInspectorWindowController() {
    setCurrentDocument(nullptr);
    window()->removeEventFilter(this);
    m_ui->content->removeEventFilter(this);
}

void XPlotInspectorWindowController::awakeFromNib() {
    for (QLabel* head : {m_ui->plotHead, m_ui->legendHead}) {
        QFont bold = head->font();
        bold.setBold(true);
        head->setFont(bold);
    }
    m_ui->titleLabel->setForegroundRole(labelRole);
    m_ui->placeLabel->setForegroundRole(labelRole);
    m_ui->placeHint->setForegroundRole(hintRole);
    m_ui->placeHint->setFont(VelquinStyle::smallFont(m_ui->placeHint->font()));
    VelquinStyle::setOverlayScrollBars(*m_ui->scrollArea);
    // Each axis has the line along it, where the other one is 0, and the grid lines at its own marks.
    m_ui->axisX->setAxis(axisKeysX, {tr("x axis"), tr("Line at y = 0"), tr("Vertical grid lines")});
    m_ui->axisY->setAxis(axisKeysY, {tr("y axis"), tr("Line at x = 0"), tr("Horizontal grid lines")});
    for (const AxisOptionsView* axis : {m_ui->axisX, m_ui->axisY})
        connect(axis, &AxisOptionsView::refused, this, &XPlotInspectorWindowController::tellRefusal);
    connect(m_ui->placePicker, &PlacePicker::placeChosen, this, [this](int place) {
        if (m_currentDocument != nullptr)
            m_currentDocument->placeLegend(
                LegendPlacement::anchorAt({place % placesInRow, place / placesInRow}));
    });
    emptyControls();
    window()->installEventFilter(this);
    m_ui->content->installEventFilter(this);

    NotificationCenter& center = NotificationCenter::defaultCenter();
    m_registrations.push_back(center.observe(Notifications::documentDidBecomeActive, nullptr,
                                             [this](QObject* object) { documentBecomeActive(object); }));
    m_registrations.push_back(center.observe(Notifications::documentDidBecomeInactive, nullptr,
                                             [this](QObject* object) { documentBecomeInactive(object); }));
    connect(&m_documents, &DocumentController::documentWillClose, this,
            [this](MoxDocumentWindow& closing) { documentBecomeInactive(&closing.document()); });
}

// --- The document
// ----------------------------------------------------------------------------------------------

void XPlotInspectorWindowController::documentBecomeActive(QObject* object) {
    setCurrentDocument(qobject_cast<MoxDocument*>(object));
}

void XPlotInspectorWindowController::documentBecomeInactive(QObject* object) {
    if (object == m_currentDocument)
        setCurrentDocument(nullptr);
}

void XPlotInspectorWindowController::setCurrentDocument(MoxDocument* document) {
    if (document == m_currentDocument)
        return;
    if (m_currentDocument != nullptr)
        EditCommands::commitTyping(*window());
    if (m_documentWindow != nullptr)
        m_documentWindow->setTool(nullptr);
    m_documentWindow = nullptr;
    m_currentDocument = document;
    if (document == nullptr)
        return emptyControls();
    const auto shows = [document](const MoxDocumentWindow* each) { return &each->document() == document; };
    if (const auto found = std::ranges::find_if(m_documents.windows(), shows);
        found != m_documents.windows().end()) {
        m_documentWindow = *found;
        m_documentWindow->setTool(window());
        ToolStacking::keepInFrontOf(*window(), m_documentWindow);
    }
    bindControls();
}

void XPlotInspectorWindowController::bindControls() {
    MoxDocument& document = *m_currentDocument;
    bind(m_ui->titleField, document, "plotAreaTitle");
    bind(m_ui->showLegendBox, document, "showLegend");
    unbind(m_ui->placePicker);
    follow(m_ui->placePicker, document, "legendAlignment", [this](const QVariant& alignment) {
        m_ui->placePicker->setPlace(indexOf(LegendPlacement::placeOf(alignment.toInt())));
    });
    m_ui->axisX->setDocument(&document);
    m_ui->axisY->setDocument(&document);
    m_ui->content->setEnabled(true);
    if (m_lastFocus != nullptr)
        m_lastFocus->setFocus(Qt::OtherFocusReason);
    m_lastFocus = nullptr;
}

void XPlotInspectorWindowController::emptyControls() {
    m_lastFocus = window()->focusWidget();
    m_ui->content->setEnabled(false);
    for (QWidget* control :
         std::initializer_list<QWidget*>{m_ui->titleField, m_ui->showLegendBox, m_ui->placePicker})
        unbind(control);
    m_ui->titleField->clear();
    m_ui->showLegendBox->setChecked(false);
    m_ui->placePicker->setPlace(-1);
    m_ui->axisX->setDocument(nullptr);
    m_ui->axisY->setDocument(nullptr);
}

void XPlotInspectorWindowController::tellRefusal(const QString& reason) {
    const QString before = std::exchange(m_refusal, reason);
    if (m_documentWindow == nullptr)
        return;
    if (reason.isEmpty())
        m_documentWindow->replaceMessage(before, reason);
    else
        m_documentWindow->showMessage(reason);
}

// --- The window
// ------------------------------------------------------------------------------------------------

QPoint XPlotInspectorWindowController::placeBeside(const QRect& documentFrame, QSize frame,
                                                   const QRect& screen) {
    const int right = documentFrame.x() + documentFrame.width() + distance;
    const int left = documentFrame.x() - distance - frame.width();
    const int farthest = screen.x() + screen.width() - frame.width();
    const int x = right <= farthest ? right : left >= screen.x() ? left : farthest;
    const int lowest = screen.y() + screen.height() - frame.height();
    return {std::max(screen.x(), std::min(x, farthest)),
            std::max(screen.y(), std::min(documentFrame.y(), lowest))};
}

void XPlotInspectorWindowController::show() {
    const QWidget* beside = m_documentWindow;
    if (beside != nullptr)
        window()->setScreen(beside->screen());
    fitToContent();
    if (!m_lastPlace && beside != nullptr) {
        // The frame that the desktop will put around it is likely to be like the document's.
        const QRect frame = beside->frameGeometry();
        const QSize size = window()->size() + (frame.size() - beside->size());
        m_lastPlace = placeBeside(frame, size, beside->screen()->availableGeometry()) +
                      (beside->geometry().topLeft() - frame.topLeft());
    }
    if (m_lastPlace) // of the content, which later changes of its size keep
        window()->setGeometry(QRect(*m_lastPlace, window()->size()));
    window()->show();
    window()->raise();
    window()->activateWindow();
}

/// As high as the controls, but not higher than the screen: then they scroll.
void XPlotInspectorWindowController::fitToContent() {
    const QSize wanted = m_ui->content->minimumSizeHint();
    const int room = window()->screen()->availableGeometry().height() -
                     (window()->frameGeometry().height() - window()->height());
    window()->setFixedSize(std::max(leastWidth, wanted.width()), std::min(wanted.height(), room));
}

bool XPlotInspectorWindowController::eventFilter(QObject* object, QEvent* event) {
    if (object == m_ui->content && event->type() == QEvent::LayoutRequest) {
        fitToContent();
    } else if (object == window() && event->type() == QEvent::Close) {
        EditCommands::commitTyping(*window());
        m_lastPlace = window()->geometry().topLeft();
    } else if (object == window() && event->type() == QEvent::Hide && !event->spontaneous()) {
        Q_EMIT closed();
    }
    return XWindowController::eventFilter(object, event);
}
