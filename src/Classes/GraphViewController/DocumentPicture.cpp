// From a document's properties to the options of a picture.
#include "Classes/GraphViewController/DocumentPicture.h"

#include "MoxDocument.h"

#include <limits>

PlotPictureOptions pictureOptionsOf(const MoxDocument& document) {
    constexpr double followsTheData = std::numeric_limits<double>::quiet_NaN();
    PlotPictureOptions options;
    options.plotAreaTitle = document.plotAreaTitle().value_or(QString());
    options.axisTitleX = document.axisTitleX().value_or(QString());
    options.axisTitleY = document.axisTitleY().value_or(QString());
    options.axisX_type = document.axisX_type();
    options.axisY_type = document.axisY_type();
    options.axisMinX = document.axisMinX().value_or(followsTheData);
    options.axisMaxX = document.axisMaxX().value_or(followsTheData);
    options.axisMinY = document.axisMinY().value_or(followsTheData);
    options.axisMaxY = document.axisMaxY().value_or(followsTheData);
    options.showOriginX = document.showOriginX();
    options.showOriginY = document.showOriginY();
    options.showHorizontalLines = document.showHorizontalLines();
    options.showVerticalLines = document.showVerticalLines();
    options.legendAlignment = document.legendAlignment();
    options.legendMargins = document.legendMargins();
    options.curves = document.curves();
    return options;
}
