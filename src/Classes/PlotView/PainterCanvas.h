// The canvas over a painter: turns y over and puts hairlines and images on whole device pixels.
#pragma once

#include "Classes/PlotView/PlotCanvas.h"

#include <QTransform>

#include <utility>

/// Draws through a painter that the caller keeps, whose origin is the top left corner of an area of `height`
/// points. Device pixels are those of the painter's own transformation, so an area may lie anywhere in a
/// picture.
class PainterCanvas : public PlotCanvas {
  public:
    enum class Output { Pixels, Vector };

    PainterCanvas(QPainter& painter, double height, Output output = Output::Pixels);

    void save() override;
    void restore() override;
    void clip(const QRectF& rect) override;
    void rotate(QPointF about, double degrees) override;
    void fillRect(const QRectF& rect, const QColor& color) override;
    void strokeRect(const QRectF& rect, const QColor& color) override;
    void hairline(QPointF start, double length, Qt::Orientation direction, const QColor& color) override;
    void line(QPointF from, QPointF to, double dash, const QColor& color) override;
    void gradient(const QRectF& rect, const QGradientStops& stops, int degrees) override;
    void text(const QRectF& rect, const AttributedLabel& label, TextRole role, const QColor& color) override;
    void image(const QRectF& target, const QImage& image, double opacity) override;
    void group(const QRectF& rect, double opacity, const std::function<void(QPainter&)>& paint) override;

  private:
    QPointF flipped(QPointF point) const { return {point.x(), m_height - point.y()}; }
    QRectF flipped(const QRectF& rect) const;
    bool snaps() const;                       ///< whether device pixels are whole and upright here
    QRectF snapped(const QRectF& rect) const; ///< edges of a painter rectangle on device pixels
    double hairlineWidth() const;             ///< in points
    QRectF thinned(QRectF rect, Qt::Orientation direction) const; ///< to a hairline, down or to the left
    std::pair<double, double> seenPart(QPointF start, QPointF way) const;
    void uprightLine(QPointF start, QPointF end, double dash, const QColor& color);
    void fill(const QRectF& painterRect, const QColor& color);
    void textLine(QPointF baseline, const QString& text, QFont font, const QColor& color);

    QPainter& m_painter;
    double m_height;
    Output m_output;
};
