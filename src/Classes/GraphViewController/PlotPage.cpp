// Layout and titles of the plot page.
#include "Classes/GraphViewController/PlotPage.h"

#include "Classes/PlotView/PainterCanvas.h"
#include "Classes/PlotView/XPlotView.h"

#include <QPaintEvent>
#include <QPainter>

namespace {

bool isShown(const std::optional<QString>& title) {
    return title && !title->isEmpty();
}

} // namespace

PlotPage::PlotPage(QWidget* parent) : QWidget(parent), m_plotView(new XPlotView(this)) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusProxy(m_plotView);
}

void PlotPage::setTitles(const PlotDrawing::Titles& titles) {
    m_titles = titles;
    updateLayout();
    update();
}

void PlotPage::updateLayout() {
    m_rooms = layoutTitles(plotContainer(size()),
                           {isShown(m_titles.plotArea), isShown(m_titles.axisX), isShown(m_titles.axisY)});
    const QRectF& plot = m_rooms.plotView;
    m_plotView->setGeometry(
        QRectF(plot.x(), height() - plot.y() - plot.height(), plot.width(), plot.height()).toRect());
}

void PlotPage::resizeEvent(QResizeEvent*) {
    updateLayout();
}

void PlotPage::paintEvent(QPaintEvent* event) {
    const PlotScene& scene = m_plotView->scene();
    const FontTextMeasure measure;
    QPainter painter(this);
    painter.fillRect(event->rect(), scene.styles().color(QStringLiteral("BackgroundColor")));
    PainterCanvas canvas(painter, height());
    const auto draw = [&](const QRectF& room, const std::optional<QString>& title, TextRole role,
                          bool upwards) {
        PlotDrawing::drawTitleInRoom(canvas, room, title.value_or(QString()), role, upwards, scene.styles(),
                                     measure);
    };
    draw(m_rooms.plotAreaTitle, m_titles.plotArea, TextRole::PlotTitle, false);
    draw(m_rooms.axisTitleX, m_titles.axisX, TextRole::AxisTitle, false);
    // Along the plot itself, not along the labels under it.
    draw(m_rooms.axisTitleY.adjusted(0, scene.layout().marginBottom, 0, 0), m_titles.axisY,
         TextRole::AxisTitle, true);
}
