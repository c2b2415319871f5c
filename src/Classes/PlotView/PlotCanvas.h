// What a plot is drawn on: a dozen verbs in points, y upwards.
#pragma once

#include "Classes/PlotView/PlotText.h"

#include <QBrush>
#include <QColor>
#include <QPointF>
#include <QRectF>

#include <functional>

class QImage;
class QPainter;

/// The origin is the bottom left corner. A hairline is the thinnest line that looks the same everywhere: it
/// covers whole device pixels and starts at its point, growing to the right or upwards.
class PlotCanvas {
  public:
    PlotCanvas() = default;
    virtual ~PlotCanvas() = default;
    PlotCanvas(const PlotCanvas&) = delete;
    PlotCanvas& operator=(const PlotCanvas&) = delete;

    virtual void save() = 0;
    virtual void restore() = 0;
    virtual void clip(const QRectF& rect) = 0;
    /// Turns what is drawn until `restore` counter-clockwise about a point.
    virtual void rotate(QPointF about, double degrees) = 0;

    virtual void fillRect(const QRectF& rect, const QColor& color) = 0;
    /// A hairline along the inside of the edges.
    virtual void strokeRect(const QRectF& rect, const QColor& color) = 0;
    virtual void hairline(QPointF start, double length, Qt::Orientation direction, const QColor& color) = 0;
    /// `dash` points on, as many off; 0 for an unbroken line. A point wide, centred on its ends.
    virtual void line(QPointF from, QPointF to, double dash, const QColor& color) = 0;
    /// The stops run to the right at 0 degrees, upwards at 90.
    virtual void gradient(const QRectF& rect, const QGradientStops& stops, int degrees) = 0;
    /// Lines centred in the rectangle, the first at its top.
    virtual void text(const QRectF& rect, const AttributedLabel& label, TextRole role,
                      const QColor& color) = 0;
    /// The whole image, stretched onto the target.
    virtual void image(const QRectF& target, const QImage& image, double opacity) = 0;
    /// Lets `paint` draw at that opacity, with its origin at the rectangle's top left corner and y downwards.
    /// It may be called later: it owns all it draws.
    virtual void group(const QRectF& rect, double opacity, const std::function<void(QPainter&)>& paint) = 0;
};
