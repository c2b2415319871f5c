// What lies over a plot while someone works in it: a selection or measurement, and where the mouse is.
#pragma once

#include <QPointF>

#include <optional>

/// What dragging does. Other numbers are kept, and leave a drag without effect.
enum MouseMode { panMouseMode = 0, zoomMouseMode = 1, rulerMouseMode = 2 };

/// Two points in data units. Both ends are kept, since a difference forgets the smaller of two magnitudes.
struct PlotSelection {
    QPointF origin; ///< where the drag began
    QPointF end;

    double width() const { return end.x() - origin.x(); } ///< may be negative
    double height() const { return end.y() - origin.y(); }
    /// There is no selection unless one of the sizes differs from zero.
    bool isEmpty() const { return width() == 0 && height() == 0; }
};

/// Points count pixels in the view, y upwards: whole numbers are the pixels' lower left corners.
struct PlotOverlay {
    int mouseMode = panMouseMode;
    PlotSelection selection;
    bool mouseInside = false;
    QPointF mouseLocation;
    /// Stands for the mouse while it is moved by keys.
    std::optional<QPointF> crossHair;

    /// Where the marks of the mouse stand on the axes; nowhere while it is outside.
    std::optional<QPointF> pointer() const {
        if (crossHair)
            return crossHair;
        return mouseInside ? std::optional(mouseLocation) : std::nullopt;
    }
};
