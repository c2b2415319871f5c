// Takes the rooms of the titles that are shown off the page.
#include "Classes/PlotView/TitleLayout.h"

#include <algorithm>

QRectF plotContainer(QSizeF page) {
    constexpr double left = 8, top = 8, right = 12, bottom = 8;
    return {left, bottom, std::max(0.0, page.width() - left - right),
            std::max(0.0, page.height() - top - bottom)};
}

TitleLayout layoutTitles(const QRectF& container, ShownTitles shown) {
    const double bottom = shown.axisX ? axisTitleHeight : 0;
    const double top = shown.plotArea ? plotAreaTitleHeight : 0;
    const double left = shown.axisY ? axisTitleHeight : 0;

    TitleLayout layout;
    const double width = std::max(0.0, container.width() - left);
    const double height = std::max(0.0, container.height() - top - bottom);
    layout.plotView = {container.x() + left, container.y() + bottom, width, height};
    if (shown.plotArea)
        layout.plotAreaTitle = {layout.plotView.x(), container.y() + container.height() - top, width, top};
    if (shown.axisX)
        layout.axisTitleX = {layout.plotView.x(), container.y(), width, bottom};
    if (shown.axisY)
        layout.axisTitleY = {container.x(), layout.plotView.y(), left, height};
    return layout;
}
