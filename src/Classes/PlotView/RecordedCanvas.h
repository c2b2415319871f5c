// A canvas that keeps what is drawn on it, for another thread to draw.
#pragma once

#include "Classes/PlotView/PlotCanvas.h"

#include <cstddef>
#include <vector>

/// Each verb becomes a step that owns its values.
class RecordedCanvas : public PlotCanvas {
  public:
    using Step = std::function<void(PlotCanvas& canvas)>;

    std::size_t stepCount() const { return m_steps.size(); }
    std::vector<Step> takeSteps() { return std::move(m_steps); }

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
    std::vector<Step> m_steps;
};
