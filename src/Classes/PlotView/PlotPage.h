// A plot with its titles around it, as it is painted: on the screen's behalf and in pictures.
#pragma once

#include "Classes/PlotView/PlotStyles.h"
#include "Classes/PlotView/TitleLayout.h"

#include <QString>

#include <functional>

class PlotCanvas;
class QIODevice;
class QPainter;

struct PlotPage {
    QSizeF size; ///< points
    TitleLayout rooms;
    QString plotAreaTitle; ///< those without a room are left out
    QString axisTitleX;
    QString axisTitleY;
    int underPlot = 0; ///< height of the x axis's labels: the y title stands along the plot itself
    PlotStyles styles;

    /// The plot's own area, with the origin in its corner, and all of the page as seen from there.
    QRectF aroundPlot() const { return {-rooms.plotView.topLeft(), size}; }
};

enum class PageOutput { Pixels, Vector };

/// `drawPlot` gets a canvas of the size of the plot's room. Any thread.
void paintPage(QPainter& painter, const PlotPage& page, PageOutput output,
               const std::function<void(PlotCanvas& plot)>& drawPlot);

/// One page of exactly that size as PDF. False when the device takes no page. Any thread.
bool writePdfPage(QIODevice& device, QSizeF size, const QString& title,
                  const std::function<void(QPainter& painter)>& paint);
