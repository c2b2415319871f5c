// Finished pictures of a plot, with its titles around it: pixels or vectors, without a window.
#pragma once

#include "Classes/PlotModel/XCurve.h"

#include <QImage>
#include <QList>
#include <QSizeF>
#include <QString>

#include <limits>
#include <optional>
#include <utility>

class QIODevice;
class XAxisInfo;

/// What a document says about its plot.
struct PlotPictureOptions {
    QString plotAreaTitle; ///< a title that is empty takes no room
    QString axisTitleX;
    QString axisTitleY;
    const XAxisInfo* axisX_type = nullptr; ///< null: the default kind
    const XAxisInfo* axisY_type = nullptr;
    /// Fixed limits; those that are not finite follow the data.
    double axisMinX = std::numeric_limits<double>::quiet_NaN();
    double axisMaxX = std::numeric_limits<double>::quiet_NaN();
    double axisMinY = std::numeric_limits<double>::quiet_NaN();
    double axisMaxY = std::numeric_limits<double>::quiet_NaN();
    bool showOriginX = true;
    bool showOriginY = true;
    bool showHorizontalLines = true;
    bool showVerticalLines = true;
    /// What the axes show; absent: they are fitted to the data and the limits.
    std::optional<std::pair<XValueRange, XValueRange>> ranges;
    bool blackBackground = false;
    bool showLegend = false;
    int legendAlignment = 0; ///< edges that the legend keeps its distance to, as in LegendAnchor
    QSizeF legendMargins;
    QList<XCurveHandle> curves;
};

struct PictureSize {
    int width = 920; ///< points
    int height = 550;
    double scale = 1; ///< device pixels a point; vectors have none
};

QSize pixelsOf(PictureSize size);

enum class PictureFormat { Png, Jpeg, Pdf, Svg };

bool isVectorFormat(PictureFormat format);

/// By the file's ending: png, jpg or jpeg, pdf, svg, in any case.
std::optional<PictureFormat> pictureFormatOfPath(const QString& path);

/// The plot, each visible curve rendered for it. Null when there is no memory for so many pixels. Main
/// thread.
QImage drawPicture(const PlotPictureOptions& options, PictureSize size);

/// Writes the picture. Returns the reason of a failure. A page is exactly `size` points (1/72 inch). Main
/// thread.
std::optional<QString> writePicture(QIODevice& device, PictureFormat format,
                                    const PlotPictureOptions& options, PictureSize size);
/// The same to a file, which is there whole or as it was before.
std::optional<QString> writePicture(const QString& path, const PlotPictureOptions& options, PictureSize size);
