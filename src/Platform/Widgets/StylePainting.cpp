// Boxes, rings and hairlines, aligned to the device grid of the painter.
#include "Platform/Widgets/StylePainting.h"

#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/Pictures.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace StylePainting {
namespace {

class Antialiased {
  public:
    explicit Antialiased(QPainter& painter) : m_painter(painter) {
        m_painter.save();
        m_painter.setRenderHint(QPainter::Antialiasing);
    }
    ~Antialiased() { m_painter.restore(); }
    Antialiased(const Antialiased&) = delete;
    Antialiased& operator=(const Antialiased&) = delete;

  private:
    QPainter& m_painter;
};

QPainterPath roundedPath(const QRectF& rect, double radius) {
    QPainterPath path;
    path.addRoundedRect(rect, std::max(0.0, radius), std::max(0.0, radius));
    return path;
}

/// What lies between a rounded rectangle and the same one, smaller by `width` on each side.
QPainterPath framePath(const QRectF& rect, double radius, double width) {
    const QRectF inner = rect.adjusted(width, width, -width, -width);
    return roundedPath(rect, radius).subtracted(roundedPath(inner, radius - width));
}

} // namespace

double hairline(const QPainter& painter) {
    const double ratio = std::max(1.0, painter.deviceTransform().m11());
    return std::max(1.0, std::floor(ratio)) / ratio;
}

QRectF onDevicePixels(const QPainter& painter, const QRectF& rect) {
    const QTransform toDevice = painter.deviceTransform();
    const QRectF device = toDevice.mapRect(rect);
    const QPointF topLeft(std::round(device.left()), std::round(device.top()));
    const QPointF bottomRight(std::round(device.right()), std::round(device.bottom()));
    return toDevice.inverted().mapRect(QRectF(topLeft, bottomRight));
}

void drawBox(QPainter& painter, const QRectF& rect, double radius, const QColor& fill,
             const QColor& outline) {
    const Antialiased scope(painter);
    const QRectF box = onDevicePixels(painter, rect);
    if (fill.isValid())
        painter.fillPath(roundedPath(box, radius), fill);
    if (outline.isValid())
        painter.fillPath(framePath(box, radius, hairline(painter)), outline);
}

void drawRing(QPainter& painter, const QRectF& rect, double radius, double width, const QColor& color) {
    const Antialiased scope(painter);
    painter.fillPath(framePath(onDevicePixels(painter, rect), radius, width), color);
}

void drawField(QPainter& painter, const QRectF& rect, const FieldState& state) {
    const ThemeColors& colors = currentColors();
    constexpr double radius = 3;
    if (!state.enabled) {
        drawBox(painter, rect, radius, {}, colors.edge);
        return;
    }
    drawBox(painter, rect, radius, colors.field, state.hovered ? colors.edge2 : colors.edge);
    if (state.faulty || state.focused) {
        drawRing(painter, rect, radius, state.focused ? 2 : hairline(painter),
                 state.faulty ? colors.errorText : colors.accent);
        return;
    }
    const Antialiased scope(painter);
    const QRectF box = onDevicePixels(painter, rect);
    const double foot = hairline(painter);
    painter.setClipRect(QRectF(box.left(), box.bottom() - foot, box.width(), foot), Qt::IntersectClip);
    painter.fillPath(framePath(box, radius, foot), colors.edge2);
}

void drawIcon(QPainter& painter, const QRectF& rect, const QString& name, const QColor& ink, int side) {
    const double ratio = std::max(1.0, painter.device()->devicePixelRatioF());
    const QPointF corner = rect.center() - QPointF(side, side) / 2;
    const QRectF place = onDevicePixels(painter, QRectF(corner, QSizeF(side, side)));
    painter.drawPixmap(place.topLeft(), Pictures::tinted(name, ink, ratio, QSize(side, side)));
}

} // namespace StylePainting
