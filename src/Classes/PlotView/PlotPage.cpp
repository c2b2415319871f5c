// Draws the plot, its titles and its legend into their rooms.
#include "Classes/PlotView/PlotPage.h"

#include "Classes/PlotView/PainterCanvas.h"
#include "Classes/PlotView/PlotDrawing.h"

#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>

using namespace Qt::StringLiterals;

void paintPage(QPainter& painter, const PlotPage& page, PageOutput output,
               const std::function<void(PlotCanvas& plot)>& drawPlot) {
    const auto kind =
        output == PageOutput::Vector ? PainterCanvas::Output::Vector : PainterCanvas::Output::Pixels;
    PainterCanvas paper(painter, page.size.height(), kind);
    paper.fillRect(QRectF(QPointF(0, 0), page.size), page.styles.color(u"BackgroundColor"_s));

    const TitleLayout& rooms = page.rooms;
    painter.save();
    painter.translate(rooms.plotView.left(),
                      page.size.height() - rooms.plotView.top() - rooms.plotView.height());
    PainterCanvas plot(painter, rooms.plotView.height(), kind);
    drawPlot(plot);
    painter.restore();

    const FontTextMeasure measure;
    const auto drawTitle = [&](const QRectF& room, const QString& title, TextRole role, bool upwards) {
        PlotDrawing::drawTitleInRoom(paper, room, title, role, upwards, page.styles, measure);
    };
    drawTitle(rooms.plotAreaTitle, page.plotAreaTitle, TextRole::PlotTitle, false);
    drawTitle(rooms.axisTitleX, page.axisTitleX, TextRole::AxisTitle, false);
    drawTitle(rooms.axisTitleY.adjusted(0, page.underPlot, 0, 0), page.axisTitleY, TextRole::AxisTitle, true);
}

bool writePdfPage(QIODevice& device, QSizeF size, const QString& title,
                  const std::function<void(QPainter& painter)>& paint) {
    QPdfWriter writer(&device);
    writer.setPageSize(QPageSize(size, QPageSize::Point, QString(), QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF(0, 0, 0, 0));
    writer.setTitle(title);
    constexpr int resolution = 720; // ten units a point: glyphs are placed on whole units
    writer.setResolution(resolution);
    QPainter painter;
    if (!painter.begin(&writer))
        return false;
    painter.scale(resolution / 72.0, resolution / 72.0);
    paint(painter);
    return painter.end();
}
