// A document's keys, one by one, to the plot view, and its curves to the list beside it.
#include "Classes/GraphViewController/XGraphViewController.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/CurvesSidebar/CSmartListView.h"
#include "Core/Assertions.h"
#include "MoxDocument.h"
#include "Platform/Widgets/Binding.h"
#include "ui_XGraphViewController.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>

namespace {

constexpr const char* observedKeys[] = {"curves",
                                        "axisTitleX",
                                        "axisTitleY",
                                        "plotAreaTitle",
                                        "showOriginX",
                                        "showOriginY",
                                        "showHorizontalLines",
                                        "showVerticalLines",
                                        "axisMaxX",
                                        "axisMinX",
                                        "axisMaxY",
                                        "axisMinY",
                                        "axisX_type",
                                        "axisY_type"};

/// Not a number lets a limit follow the data.
double limitOf(const std::optional<double>& limit) {
    return limit.value_or(std::numeric_limits<double>::quiet_NaN());
}

} // namespace

XGraphViewController::XGraphViewController(QObject* parent)
    : XViewController(parent), m_ui(std::make_unique<Ui::XGraphViewController>()), m_view(new QWidget) {
    m_ui->setupUi(m_view);
    setTitle(tr("Plot area"));
    m_ui->splitView->setStretchFactor(1, 1);
    setUpSidebar();
    setUpTools();
    setUpSnapshots();
    setUpPlotView();
    setUpTitles();
    stylesChanged();
    updateTools();
    updateLayout();
}

XGraphViewController::~XGraphViewController() {
    setDocument(nullptr);
    delete m_view.data();
}

XPlotView& XGraphViewController::plotView() {
    return *m_ui->plotView;
}

const XPlotView& XGraphViewController::plotView() const {
    return *m_ui->plotView;
}

void XGraphViewController::onBecameVisible() {
    plotView().setFocus();
}

// --- The document
// ----------------------------------------------------------------------------------------------

void XGraphViewController::setDocument(MoxDocument* document) {
    if (!xAssert(document == nullptr || m_document == nullptr,
                 "XGraphViewController already has a document!"))
        return;
    if (m_document != nullptr)
        detach();
    m_document = document;
    if (m_document != nullptr)
        attach();
}

void XGraphViewController::attach() {
    m_observation = Observation(*m_document, observedKeys,
                                [this](const KeyChange& change) { observeValueForKeyPath(change); });
    for (const char* name : {Notifications::dataSourceWasRemoved, Notifications::dataSourceWasAdded,
                             Notifications::dataSourceUpdated})
        m_registrations.push_back(NotificationCenter::defaultCenter().observe(
            name, nullptr, [this](QObject*) { dataSourcesChanged(); }));
    bind(m_ui->plotArea_titleLabel, *m_document, "plotAreaTitle");
    bind(m_ui->axisX_titleLabel, *m_document, "axisTitleX");
    bind(m_ui->axisY_titleLabel, *m_document, "axisTitleY");
    takeOptions();
    setCurves();
    m_ui->changedFilesBar->setSources(&m_document->dataSourcesManager());
    takeCurves();
    takeAxis(m_document->axisX_type(), &PlotScene::setAxisX);
    takeAxis(m_document->axisY_type(), &PlotScene::setAxisY);
    setLegendVisible(m_document->showLegend());
    updateLayout();
    dataSourcesChanged();
    fitToData();
}

void XGraphViewController::detach() {
    m_observation.end();
    m_curveObservations.clear();
    m_registrations.clear();
    if (m_view != nullptr) {
        for (QWidget* field : {m_ui->plotArea_titleLabel, m_ui->axisX_titleLabel, m_ui->axisY_titleLabel})
            unbind(field);
        m_graphLegend->setCurves({}); // which ends an editing session of the document's undo manager
        removeRows();
        m_ui->changedFilesBar->setSources(nullptr);
    }
    m_document = nullptr;
}

void XGraphViewController::observeValueForKeyPath(const KeyChange& change) {
    if (m_view == nullptr)
        return;
    const auto isKey = [&change](const char* key) { return std::strcmp(change.key, key) == 0; };
    if (isKey("curves"))
        return takeCurves();
    if (isKey("axisX_type"))
        takeAxis(m_document->axisX_type(), &PlotScene::setAxisX);
    else if (isKey("axisY_type"))
        takeAxis(m_document->axisY_type(), &PlotScene::setAxisY);
    else if (isKey("axisTitleX") || isKey("axisTitleY") || isKey("plotAreaTitle"))
        updateLayout();
    else
        takeOptions();
    static constexpr std::array ofRanges{"axisMinX", "axisMaxX",   "axisMinY",
                                         "axisMaxY", "axisX_type", "axisY_type"};
    if (isFittedToData() && std::ranges::any_of(ofRanges, isKey))
        followData();
    else if (isKey("axisMinX") || isKey("axisMaxX")) // a new limit shows, wherever the plot was moved
        plotView().scene().fitAxisX();
    else if (isKey("axisMinY") || isKey("axisMaxY"))
        plotView().scene().fitAxisY();
    plotView().update();
}

void XGraphViewController::takeAxis(const XAxisInfo* kind, void (PlotScene::*setAxis)(XAxisHandle)) {
    if (XAxisHandle axis = kind != nullptr ? kind->makeAxis() : nullptr) {
        (plotView().scene().*setAxis)(std::move(axis));
        updateLayout(); // the labels take another room
    }
}

void XGraphViewController::takeCurves() {
    plotView().scene().setCurves(m_document->curves());
    m_graphLegend->setCurves(m_document->curves());
    orderFocus();
    static constexpr const char* dataKeys[] = {"dataSource",   "isVisible",         "x_data_index",
                                               "y_data_index", "x_uses_expression", "y_uses_expression"};
    m_curveObservations.clear();
    for (const XCurveHandle& curve : m_document->curves())
        m_curveObservations.emplace_back(*curve, dataKeys, [this](const KeyChange&) { followData(); });
    followData();
    plotView().update();
}

void XGraphViewController::followData() {
    if (m_view != nullptr && isFittedToData())
        plotView().fitToData();
}

void XGraphViewController::takeOptions() {
    PlotOptions& options = plotView().scene().options;
    options.axisMinX = limitOf(m_document->axisMinX());
    options.axisMaxX = limitOf(m_document->axisMaxX());
    options.axisMinY = limitOf(m_document->axisMinY());
    options.axisMaxY = limitOf(m_document->axisMaxY());
    options.showOriginX = m_document->showOriginX();
    options.showOriginY = m_document->showOriginY();
    options.showHorizontalLines = m_document->showHorizontalLines();
    options.showVerticalLines = m_document->showVerticalLines();
}

void XGraphViewController::dataSourcesChanged() {
    if (m_view == nullptr)
        return;
    plotView().update();
    updateTools();
    updateStatusLine();
}

// --- Curves
// ----------------------------------------------------------------------------------------------------

void XGraphViewController::setCurves() {
    const QList<XCurveHandle>& curves = m_document->curves();
    for (int i = 0; i < static_cast<int>(curves.size()); ++i)
        insertCurveAtIndex(curves[i], i);
    curvesChanged();
}

void XGraphViewController::onAddCurve() {
    if (!canAddCurve())
        return;
    endBursts();
    m_document->addNewCurve();
}

bool XGraphViewController::canAddCurve() const {
    return m_document != nullptr && !m_document->dataSourcesManager().dataSources().empty();
}

// --- Commands
// --------------------------------------------------------------------------------------------------

void XGraphViewController::fitToData() {
    plotView().fitToData();
}

void XGraphViewController::alignXAxis() {
    plotView().alignXAxis();
}

void XGraphViewController::dumpXAxisTestCase() const {
    plotView().scene().axisX()->dumpTestInfo();
}

void XGraphViewController::setMouseMode(int mode) {
    plotView().setMouseMode(mode);
}

void XGraphViewController::toggleStickyRuler() {
    plotView().setStickyRuler(!plotView().stickyRuler());
}

void XGraphViewController::setBlackBackground(bool black) {
    m_blackBackground = black;
    plotView().updateStyles(black ? PlotStyles::blackBackgroundStyles() : PlotStyles::defaultStyles());
    Q_EMIT commandStatesChanged();
}

void XGraphViewController::setWheelZooms(XPlotView::WheelZooms which) {
    plotView().setWheelZooms(which);
    Q_EMIT commandStatesChanged();
}
