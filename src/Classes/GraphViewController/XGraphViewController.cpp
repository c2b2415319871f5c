// A document's keys, one by one, to the plot view.
#include "Classes/GraphViewController/XGraphViewController.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/GraphViewController/PlotPage.h"
#include "Core/Assertions.h"
#include "MoxDocument.h"

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
    : XViewController(parent), m_page(std::make_unique<PlotPage>()) {
    setTitle(QStringLiteral("Plot area"));
}

XGraphViewController::~XGraphViewController() = default;

void XGraphViewController::setDocument(MoxDocument* document) {
    if (!xAssert(document == nullptr || m_document == nullptr,
                 "XGraphViewController already has a document!"))
        return;
    m_observation.end();
    m_document = document;
    if (document == nullptr)
        return;
    m_observation = Observation(*document, observedKeys,
                                [this](const KeyChange& change) { observeValueForKeyPath(change); });
    takeAxis(document->axisX_type(), &PlotScene::setAxisX);
    takeAxis(document->axisY_type(), &PlotScene::setAxisY);
    takeOptions();
    takeTitles();
    takeCurves();
    fitToData();
}

QWidget* XGraphViewController::view() {
    return m_page.get();
}

XPlotView& XGraphViewController::plotView() {
    return m_page->plotView();
}

void XGraphViewController::fitToData() {
    plotView().scene().fitToData();
}

void XGraphViewController::onBecameVisible() {
    plotView().setFocus();
}

void XGraphViewController::observeValueForKeyPath(const KeyChange& change) {
    const auto isKey = [&change](const char* key) { return std::strcmp(change.key, key) == 0; };
    if (isKey("curves"))
        return takeCurves();
    if (isKey("axisX_type"))
        takeAxis(m_document->axisX_type(), &PlotScene::setAxisX);
    else if (isKey("axisY_type"))
        takeAxis(m_document->axisY_type(), &PlotScene::setAxisY);
    else if (isKey("axisTitleX") || isKey("axisTitleY") || isKey("plotAreaTitle"))
        takeTitles();
    else
        takeOptions();
    plotView().update();
}

void XGraphViewController::takeAxis(const XAxisInfo* kind, void (PlotScene::*setAxis)(XAxisHandle)) {
    if (XAxisHandle axis = kind != nullptr ? kind->makeAxis() : nullptr)
        (plotView().scene().*setAxis)(std::move(axis));
}

void XGraphViewController::takeCurves() {
    plotView().scene().setCurves(m_document->curves());
    plotView().update();
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

void XGraphViewController::takeTitles() {
    m_page->setTitles({m_document->plotAreaTitle(), m_document->axisTitleX(), m_document->axisTitleY()});
}
