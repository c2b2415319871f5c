// Keeps each call with its values.
#include "Classes/PlotView/RecordedCanvas.h"

#include <QImage>

void RecordedCanvas::save() {
    m_steps.emplace_back([](PlotCanvas& canvas) { canvas.save(); });
}

void RecordedCanvas::restore() {
    m_steps.emplace_back([](PlotCanvas& canvas) { canvas.restore(); });
}

void RecordedCanvas::clip(const QRectF& rect) {
    m_steps.emplace_back([=](PlotCanvas& canvas) { canvas.clip(rect); });
}

void RecordedCanvas::rotate(QPointF about, double degrees) {
    m_steps.emplace_back([=](PlotCanvas& canvas) { canvas.rotate(about, degrees); });
}

void RecordedCanvas::fillRect(const QRectF& rect, const QColor& color) {
    m_steps.emplace_back([=](PlotCanvas& canvas) { canvas.fillRect(rect, color); });
}

void RecordedCanvas::strokeRect(const QRectF& rect, const QColor& color) {
    m_steps.emplace_back([=](PlotCanvas& canvas) { canvas.strokeRect(rect, color); });
}

void RecordedCanvas::hairline(QPointF start, double length, Qt::Orientation direction, const QColor& color) {
    m_steps.emplace_back([=](PlotCanvas& canvas) { canvas.hairline(start, length, direction, color); });
}

void RecordedCanvas::line(QPointF from, QPointF to, double dash, const QColor& color) {
    m_steps.emplace_back([=](PlotCanvas& canvas) { canvas.line(from, to, dash, color); });
}

void RecordedCanvas::gradient(const QRectF& rect, const QGradientStops& stops, int degrees) {
    m_steps.emplace_back([=](PlotCanvas& canvas) { canvas.gradient(rect, stops, degrees); });
}

void RecordedCanvas::text(const QRectF& rect, const AttributedLabel& label, TextRole role,
                          const QColor& color) {
    m_steps.emplace_back([=](PlotCanvas& canvas) { canvas.text(rect, label, role, color); });
}

void RecordedCanvas::image(const QRectF& target, const QImage& image, double opacity) {
    m_steps.emplace_back([=](PlotCanvas& canvas) { canvas.image(target, image, opacity); });
}

void RecordedCanvas::group(const QRectF& rect, double opacity, const std::function<void(QPainter&)>& paint) {
    m_steps.emplace_back([=](PlotCanvas& canvas) { canvas.group(rect, opacity, paint); });
}
