// Where the plot rectangle lies in its view: margins measured on the axis labels.
#pragma once

#include <QRectF>
#include <QSizeF>

class TextMeasure;
class XAxis;

inline constexpr int tick_height = 5;        ///< points
inline constexpr int tick_label_spacing = 5; ///< points

/// Whole points, y upwards. The caller gives the axes their lengths: `selfWidth` and `selfHeight`.
struct PlotLayout {
    QSizeF bounds; ///< of the view
    int marginTop = 0;
    int marginRight = 0;
    int marginBottom = 0;
    int marginLeft = 0;
    int selfWidth = 0; ///< of the plot rectangle
    int selfHeight = 0;
    int topEdge = 0; ///< of the plot rectangle, from the view's origin
    int rightEdge = 0;

    QRectF plotRect() const {
        return {static_cast<double>(marginLeft), static_cast<double>(marginBottom),
                static_cast<double>(selfWidth), static_cast<double>(selfHeight)};
    }

    /// Where the x axis's labels and marks stand, and where those of the y axis do.
    QRectF bottomStrip() const {
        return {static_cast<double>(marginLeft), 0, static_cast<double>(selfWidth),
                static_cast<double>(tick_height + marginBottom)};
    }
    QRectF leftStrip() const {
        return {0, static_cast<double>(marginBottom), static_cast<double>(tick_height + marginLeft),
                static_cast<double>(selfHeight)};
    }

    bool operator==(const PlotLayout&) const = default;
};

/// The bottom margin holds the x labels; the left margin the widest of the values at some twenty evenly
/// spaced pixels of the y axis, whatever length that axis has at the moment.
PlotLayout calculateMargins(QSizeF bounds, const XAxis& axisX, const XAxis& axisY,
                            const TextMeasure& measure);
