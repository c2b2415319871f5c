// The plot page's two panes: the list of curves, the tools, the titles around the plot and the legend in it.
#include "Classes/CurvesSidebar/CCurveViewController.h"
#include "Classes/CurvesSidebar/CSmartListView.h"
#include "Classes/GraphViewController/XGraphViewController.h"
#include "Classes/PlotView/LegendDrawing.h"
#include "Classes/PlotView/TitleLayout.h"
#include "Core/Assertions.h"
#include "Core/LegendPlacement.h"
#include "MoxDocument.h"
#include "Platform/Widgets/FlippedGeometry.h"
#include "Platform/Widgets/Pictures.h"
#include "Platform/Widgets/ThemeColors.h"
#include "Platform/Widgets/VelquinStyle.h"
#include "ui_XGraphViewController.h"

#include <QAction>
#include <QButtonGroup>
#include <QMouseEvent>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr QSize axisYEditorSize{240, 26};

QRect flippedRect(const QRectF& room, int height) {
    return FlippedGeometry::flipped(room, height).toRect();
}

/// Lets the keyboard come to everything in `block` after `last`, in its own order. Returns where it is then.
QWidget* focusAfter(QWidget* last, QWidget& block) {
    QList<QWidget*> members;
    for (QWidget* next = block.nextInFocusChain(); next != &block; next = next->nextInFocusChain()) {
        if (block.isAncestorOf(next) && next->focusPolicy() != Qt::NoFocus)
            members += next;
    }
    for (QWidget* member : members) {
        QWidget::setTabOrder(last, member);
        last = member;
    }
    return last;
}

} // namespace

// --- Curves
// ----------------------------------------------------------------------------------------------------

void XGraphViewController::setUpSidebar() {
    QFont bold = m_ui->curvesLabel->font();
    bold.setBold(true);
    m_ui->curvesLabel->setFont(bold);
    m_ui->curvesCountLabel->setForegroundRole(hintRole);
    m_ui->noCurvesLabel->setForegroundRole(hintRole);
    m_ui->addCurveButton->setIcon(Pictures::icon(u"add"_s));
    VelquinStyle::setOverlayScrollBars(*m_ui->curvesListScrollView);
    for (QAbstractButton* button : {static_cast<QAbstractButton*>(m_ui->addCurveButton),
                                    static_cast<QAbstractButton*>(m_ui->firstCurveButton)})
        connect(button, &QAbstractButton::clicked, this, &XGraphViewController::onAddCurve);
    curvesChanged();
}

int XGraphViewController::itemsCount() const {
    return m_document == nullptr ? 0 : static_cast<int>(m_document->curves().size());
}

std::shared_ptr<CCurveViewController> XGraphViewController::makeRow() {
    CCurveViewControllerDelegate* delegate = this;
    auto row =
        std::make_shared<CCurveViewController>(m_document->dataSourcesManager().arrayController(), delegate);
    connect(row.get(), &CCurveViewController::heightChanged, m_ui->curvesList, &CSmartListView::updateLayout);
    connect(row.get(), &CCurveViewController::faultChanged, this, &XGraphViewController::updateStatusLine);
    return row;
}

std::shared_ptr<XViewController> XGraphViewController::viewControllerForItem(int index) {
    auto row = makeRow();
    row->setCurve(m_document->curves()[index]);
    return row;
}

void XGraphViewController::insertCurveAtIndex(const XCurveHandle& curve, int index) {
    const auto row = makeRow();
    m_ui->curvesList->insertViewControllerAtIndex(row, index);
    row->setCurve(curve);
    curvesChanged();
    plotView().update();
}

void XGraphViewController::removeCurveAtIndex(int index) {
    const std::vector<CCurveViewController*> all = rows();
    const auto place = static_cast<std::size_t>(index);
    const bool hadFocus = place < all.size() && all[place]->view()->isAncestorOf(m_view->focusWidget());
    m_ui->curvesList->removeViewControllerAtIndex(index);
    curvesChanged();
    if (hadFocus)
        focusRow(place);
    plotView().update();
}

std::vector<CCurveViewController*> XGraphViewController::rows() const {
    std::vector<CCurveViewController*> rows;
    for (const CSmartListView::Row& row : m_ui->curvesList->viewControllers())
        rows.push_back(qobject_cast<CCurveViewController*>(row.get()));
    return rows;
}

void XGraphViewController::removeRows() {
    const std::vector<CCurveViewController*> all = rows();
    for (auto row = all.rbegin(); row != all.rend(); ++row) {
        (*row)->setCurve(nullptr); // ends what the user is at, while there is a document to tell
        m_ui->curvesList->removeViewControllerAtIndex(static_cast<int>(all.rend() - row) - 1);
    }
    curvesChanged();
}

void XGraphViewController::curveRemoved(const XCurveHandle& curve) {
    if (!xAssert(curve != nullptr, "nil in onDeleteCurve handler!"))
        return;
    endBursts();
    m_document->removeCurve(curve);
    plotView().scene().setCurves(m_document->curves());
}

/// The row that took the place of one that went, or else what can follow the last of them.
void XGraphViewController::focusRow(std::size_t index) {
    if (const std::vector<CCurveViewController*> all = rows(); !all.empty())
        all[std::min(index, all.size() - 1)]->takeFocus();
    else if (m_ui->firstCurveButton->isEnabled())
        m_ui->firstCurveButton->setFocus(Qt::TabFocusReason);
    else
        plotView().setFocus(Qt::TabFocusReason);
}

/// Of the rows: a button that takes no focus has not ended them.
void XGraphViewController::endBursts() {
    for (CCurveViewController* row : rows())
        row->endBursts();
}

void XGraphViewController::foldAll(bool folded) {
    for (CCurveViewController* row : rows())
        row->setFolded(folded);
}

void XGraphViewController::curvesChanged() {
    const auto count = static_cast<int>(m_ui->curvesList->viewControllers().size());
    m_ui->curvesCountLabel->setText(QString::number(count));
    m_ui->noCurvesView->setVisible(count == 0);
    m_ui->curvesListScrollView->setVisible(count > 0);
    orderFocus();
    updateStatusLine();
}

void XGraphViewController::orderFocus() {
    QWidget* last = m_ui->firstCurveButton;
    for (CCurveViewController* row : rows())
        last = row->chainTabOrderAfter(last);
    last = focusAfter(last, *m_ui->changedFilesBar);
    last = focusAfter(last, *m_ui->toolStrip);
    QWidget::setTabOrder(last, m_ui->plotView);
    if (m_graphLegend != nullptr)
        last = focusAfter(m_ui->plotView, *m_graphLegend);
}

// --- Tools
// -----------------------------------------------------------------------------------------------------

void XGraphViewController::setUpTools() {
    m_mouseModes = new QButtonGroup(this);
    m_mouseModes->addButton(m_ui->panButton, 0);
    m_mouseModes->addButton(m_ui->zoomButton, 1);
    m_mouseModes->addButton(m_ui->rulerButton, 2);
    const std::pair<QToolButton*, QString> pictures[] = {
        {m_ui->panButton, u"pan"_s},         {m_ui->zoomButton, u"zoom"_s},
        {m_ui->rulerButton, u"ruler"_s},     {m_ui->fitButton, u"fit"_s},
        {m_ui->stickyRulerButton, u"pin"_s}, {m_ui->inspectorButton, u"inspector"_s}};
    for (const auto& [button, name] : pictures)
        button->setIcon(Pictures::icon(name));
    connect(m_mouseModes, &QButtonGroup::idClicked, this, &XGraphViewController::setMouseMode);
    connect(m_ui->fitButton, &QAbstractButton::clicked, this, [this] {
        fitToData();
        updateTools(); // a second click leaves it on
    });
    connect(m_ui->stickyRulerButton, &QAbstractButton::clicked, this,
            &XGraphViewController::toggleStickyRuler);
}

void XGraphViewController::setInspectorAction(QAction& action) {
    QToolButton* button = m_ui->inspectorButton;
    const auto follow = [button, &action] {
        button->setEnabled(action.isEnabled());
        button->setChecked(action.isChecked());
    };
    connect(&action, &QAction::changed, button, follow);
    connect(button, &QAbstractButton::clicked, &action, [follow, &action] {
        action.trigger();
        follow(); // whatever the click did to the button itself
    });
    follow();
}

void XGraphViewController::updateTools() {
    if (QAbstractButton* mode = m_mouseModes->button(mouseMode()))
        mode->setChecked(true);
    m_ui->fitButton->setChecked(isFittedToData());
    m_ui->stickyRulerButton->setChecked(plotView().stickyRuler());
    m_ui->stickyRulerButton->setEnabled(mouseMode() == 2);
    m_ui->addCurveButton->setEnabled(canAddCurve());
    m_ui->firstCurveButton->setEnabled(canAddCurve());
    const QString toolTip = canAddCurve() ? tr("Add a curve (Ctrl+Shift+N)") : tr("Add a data source first");
    m_ui->addCurveButton->setToolTip(toolTip);
    m_ui->firstCurveButton->setToolTip(toolTip);
    Q_EMIT commandStatesChanged();
}

void XGraphViewController::updateStatusLine() {
    const std::vector<CCurveViewController*> all = rows();
    const auto faulty =
        std::find_if(all.begin(), all.end(), [](const auto* row) { return !row->fault().isEmpty(); });
    if (faulty != all.end())
        setStatus((*faulty)->fault());
    else
        setStatus(canAddCurve() ? plotView().message() : tr("No data source yet"));
}

void XGraphViewController::updateStatus(const std::optional<QString>& status) {
    if (status)
        setStatus(*status);
    else
        updateStatusLine();
}

// --- The plot and its titles
// -----------------------------------------------------------------------------------

void XGraphViewController::setUpPlotView() {
    plotView().setDelegate(this);
    plotView().installEventFilter(this);
    connect(&plotView(), &XPlotView::mouseModeChanged, this, &XGraphViewController::updateTools);
    connect(&plotView(), &XPlotView::stickyRulerChanged, this, &XGraphViewController::updateTools);
    connect(&plotView(), &XPlotView::autoFitToDataChanged, this, &XGraphViewController::updateTools);
    connect(&plotView(), &XPlotView::stylesChanged, this, &XGraphViewController::stylesChanged);
    connect(&plotView(), &XPlotView::messageChanged, this, &XGraphViewController::updateStatusLine);
    connect(&plotView(), &XPlotView::readoutsChanged, this, [this] { setReadouts(plotView().readouts()); });
    // Wider labels push the frame that the legend keeps inside of.
    connect(&plotView(), &XPlotView::rangesChanged, this, [this] {
        plotView().scene().calculateMargins();
        setLegendLocation();
    });
    m_graphLegend = new XGraphLegend(&plotView());
    m_graphLegend->hide();
    m_graphLegend->setDelegate(this);
}

void XGraphViewController::setUpTitles() {
    m_ui->plotArea_titleLabel->setRole(TextRole::PlotTitle);
    m_ui->axisY_verticalLabel->setFont(plotFont(TextRole::AxisTitle));
    const std::pair<PlotTitleField*, bool*> fields[] = {{m_ui->plotArea_titleLabel, &m_plotArea_inFocus},
                                                        {m_ui->axisX_titleLabel, &m_axisXTitle_inFocus},
                                                        {m_ui->axisY_titleLabel, &m_axisYTitle_inFocus}};
    for (const auto& [field, inFocus] : fields) {
        connect(field, &InPlaceField::editingBegan, this, [inFocus = inFocus] { *inFocus = true; });
        connect(field, &InPlaceField::editingEnded, this, [this, inFocus = inFocus] {
            *inFocus = false;
            updateLayout();
        });
        connect(field, &InPlaceField::left, this, [this] { plotView().setFocus(); });
    }
    connect(m_ui->axisY_verticalLabel, &XVerticalLabel::clicked, this, &XGraphViewController::editAxisYTitle);
    connect(m_ui->plotViewContainer, &PaperView::resized, this, &XGraphViewController::updateLayout);
    connect(m_ui->plotViewContainer, &PaperView::doubleClicked, this, &XGraphViewController::editTitleAt);
    connect(m_ui->plotPane, &PaperView::doubleClicked, this,
            [this](QPoint position) { editTitleAt(m_ui->plotViewContainer->mapFromParent(position)); });
}

void XGraphViewController::stylesChanged() {
    const PlotStyles& styles = plotView().scene().styles();
    const QColor paper = styles.color(u"BackgroundColor"_s);
    m_ui->plotPane->setPaper(paper);
    m_ui->plotViewContainer->setPaper(paper);
    m_ui->axisY_verticalLabel->setBackgroundColor(paper);
    m_ui->axisY_verticalLabel->setTextColor(styles.color(u"TitleColor"_s));
    for (PlotTitleField* field : {m_ui->plotArea_titleLabel, m_ui->axisX_titleLabel, m_ui->axisY_titleLabel})
        field->setStyles(styles);
}

QString XGraphViewController::titleText(const std::optional<QString>& (MoxDocument::*key)() const) const {
    return m_document == nullptr ? QString() : (m_document->*key)().value_or(QString());
}

TitleLayout XGraphViewController::titleRooms() const {
    return layoutTitles(QRectF(QPointF(0, 0), m_ui->plotViewContainer->size()),
                        {.plotArea = m_plotArea_inFocus || !titleText(&MoxDocument::plotAreaTitle).isEmpty(),
                         .axisX = m_axisXTitle_inFocus || !titleText(&MoxDocument::axisTitleX).isEmpty(),
                         .axisY = !titleText(&MoxDocument::axisTitleY).isEmpty()});
}

void XGraphViewController::updateLayout() {
    const QString axisY = titleText(&MoxDocument::axisTitleY);
    const QSize container = m_ui->plotViewContainer->size();
    const TitleLayout rooms = titleRooms();
    const auto place = [&](QWidget* field, const QRectF& room) {
        field->setEnabled(!room.isEmpty());
        field->setVisible(!room.isEmpty());
        field->setGeometry(flippedRect(room, container.height()));
    };
    plotView().setGeometry(flippedRect(rooms.plotView, container.height()));
    plotView().scene().setBounds(plotView().size()); // a hidden view is told of its size only when shown
    place(m_ui->plotArea_titleLabel, rooms.plotAreaTitle);
    place(m_ui->axisX_titleLabel, rooms.axisTitleX);
    // Along the plot itself, not along the labels under it.
    const int underPlot = plotView().scene().layout().marginBottom;
    m_ui->axisY_verticalLabel->setStringValue(axisY);
    place(m_ui->axisY_verticalLabel, rooms.axisTitleY.adjusted(0, underPlot, 0, 0));
    // The y title is edited lying, in a field over the plot's edge.
    QRect editor(QPoint(0, 0), axisYEditorSize);
    editor.moveTop(std::max(0, (container.height() - underPlot - editor.height()) / 2));
    m_ui->axisY_titleLabel->setGeometry(editor);
    m_ui->axisY_titleLabel->setVisible(m_axisYTitle_inFocus);
    m_ui->axisY_verticalLabel->setVisible(!axisY.isEmpty() && !m_axisYTitle_inFocus);
    setLegendLocation();
}

void XGraphViewController::edit(PlotTitleField& field, bool& inFocus) {
    inFocus = true;
    updateLayout();
    field.setFocus(Qt::OtherFocusReason);
    field.selectAll();
}

void XGraphViewController::editPlotTitle() {
    edit(*m_ui->plotArea_titleLabel, m_plotArea_inFocus);
}

void XGraphViewController::editAxisXTitle() {
    edit(*m_ui->axisX_titleLabel, m_axisXTitle_inFocus);
}

void XGraphViewController::editAxisYTitle() {
    m_ui->axisY_titleLabel->raise();
    edit(*m_ui->axisY_titleLabel, m_axisYTitle_inFocus);
}

void XGraphViewController::editTitleAt(QPoint position) {
    const QRect plot = plotView().geometry();
    if (position.y() < plot.top())
        editPlotTitle();
    else if (position.y() > plot.bottom())
        editAxisXTitle();
    else if (position.x() < plot.left())
        editAxisYTitle();
}

bool XGraphViewController::eventFilter(QObject* object, QEvent* event) {
    noticeModifiers(object, event);
    if (object == &plotView() && event->type() == QEvent::MouseButtonDblClick) {
        // Beside the plot frame are the labels of the axes.
        const auto* click = static_cast<QMouseEvent*>(event); // NOLINT(*-static-cast-downcast): by its type
        const PlotLayout& layout = plotView().scene().layout();
        const QPoint position = click->position().toPoint();
        const bool below = position.y() >= plotView().height() - layout.marginBottom;
        const bool beside = position.x() < layout.marginLeft;
        if (click->button() == Qt::LeftButton && below != beside) {
            below ? editAxisXTitle() : editAxisYTitle();
            return true;
        }
    }
    return XViewController::eventFilter(object, event);
}

// --- The legend
// ------------------------------------------------------------------------------------------------

void XGraphViewController::setLegendVisible(bool visible) {
    m_legendVisible = visible;
    setLegendLocation();
}

void XGraphViewController::setLegendLocation() {
    const QRect frame = m_graphLegend->frame();
    if (m_document != nullptr) {
        const QPointF corner =
            LegendDrawing::placeInPlot(frame.size(),
                                       {m_document->legendAlignment(), m_document->legendMargins().width(),
                                        m_document->legendMargins().height()},
                                       plotView().scene().layout(), frame.topLeft());
        m_graphLegend->setFrame({corner.toPoint(), frame.size()});
    }
    m_graphLegend->setVisible(m_legendVisible && !frame.isEmpty());
}

void XGraphViewController::legendWantsResize(XGraphLegend& legend, QSize size) {
    legend.setFrame({legend.frame().topLeft(), size});
    setLegendLocation();
}

void XGraphViewController::legendMoved(XGraphLegend& legend) {
    const QRect frame = legend.frame();
    const LegendFrame inside =
        LegendPlacement::clamped({static_cast<double>(frame.x()), static_cast<double>(frame.y()),
                                  static_cast<double>(frame.width()), static_cast<double>(frame.height())},
                                 plotView().width(), plotView().height());
    legend.setFrame({QPointF(inside.x, inside.y).toPoint(), frame.size()});
}

void XGraphViewController::legendMovingFinished(XGraphLegend& legend) {
    if (m_document == nullptr)
        return;
    const QRect frame = legend.frame();
    const LegendAnchor anchor = LegendPlacement::nearestAnchor(
        {static_cast<double>(frame.x()), static_cast<double>(frame.y()), static_cast<double>(frame.width()),
         static_cast<double>(frame.height())},
        plotView().width(), plotView().height());
    m_document->placeLegend(anchor);
    setLegendLocation();
}

void XGraphViewController::legendTitleWillChange(XGraphLegend&) {
    gestureBegan();
}

void XGraphViewController::legendTitleChangesEnded(XGraphLegend&, bool kept) {
    kept ? gestureEnded() : gestureCancelled();
}

void XGraphViewController::gestureBegan() {
    if (m_document != nullptr)
        m_document->undoManager().beginUndoGrouping();
}

void XGraphViewController::gestureEnded() {
    if (m_document != nullptr)
        m_document->undoManager().endUndoGrouping();
}

void XGraphViewController::gestureCancelled() {
    if (m_document != nullptr)
        m_document->undoManager().cancelUndoGrouping();
}
