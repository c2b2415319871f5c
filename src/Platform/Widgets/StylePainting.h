// What the style and the self-drawn widgets paint with: hairlines on whole device pixels, boxes, focus rings.
#pragma once

#include <QColor>
#include <QIcon>
#include <QRectF>
#include <QSizeF>

class QPainter;

namespace StylePainting {

/// One hairline in logical units: floor(ratio) device pixels, at least one.
double hairline(const QPainter& painter);

/// The rectangle with its edges moved to the nearest device pixels.
QRectF onDevicePixels(const QPainter& painter, const QRectF& rect);

/// Fills `rect` with rounded corners and draws its outline inside it, a hairline wide. Invalid colours are
/// left out.
void drawBox(QPainter& painter, const QRectF& rect, double radius, const QColor& fill, const QColor& outline);

/// A line inside the outer edge of `rect`, `width` logical pixels wide.
void drawRing(QPainter& painter, const QRectF& rect, double radius, double width, const QColor& color);

/// A field's body: white with a dark foot, an accent outline of 2 px when focused, an error outline.
struct FieldState {
    bool enabled = true;
    bool hovered = false;
    bool focused = false;
    bool faulty = false;
};
void drawField(QPainter& painter, const QRectF& rect, const FieldState& state);

/// A one-colour icon, centred in `rect` at `side` logical pixels.
void drawIcon(QPainter& painter, const QRectF& rect, const QString& name, const QColor& ink, int side = 16);

} // namespace StylePainting
