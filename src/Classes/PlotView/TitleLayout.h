// The rooms of the three titles around a plot view, and what they leave for it.
#pragma once

#include <QRectF>
#include <QSizeF>

/// Which titles take room: those that have a text, or whose field is being edited.
struct ShownTitles {
    bool plotArea = false;
    bool axisX = false;
    bool axisY = false;
};

/// Rectangles in points, y upwards; a title that is not shown has an empty room. The y title reads upwards in
/// a room that is narrow and high.
struct TitleLayout {
    QRectF plotView;
    QRectF plotAreaTitle;
    QRectF axisTitleX;
    QRectF axisTitleY;
};

inline constexpr double plotAreaTitleHeight = 38;
inline constexpr double axisTitleHeight = 20; ///< the width of the y title's room

/// The area of the plot and its titles within the page (or picture) around it.
QRectF plotContainer(QSizeF page);

TitleLayout layoutTitles(const QRectF& container, ShownTitles shown);
