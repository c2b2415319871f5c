// Between frames that count upwards, as the model has them, and the toolkit's, which count downwards.
#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>

/// Each function is its own inverse; `height` is that of the view the frame or point lies in.
namespace FlippedGeometry {

inline QRect flipped(const QRect& frame, int height) {
    return {frame.x(), height - frame.y() - frame.height(), frame.width(), frame.height()};
}

inline QRectF flipped(const QRectF& frame, double height) {
    return {frame.x(), height - frame.y() - frame.height(), frame.width(), frame.height()};
}

/// A point between pixels. The centre of a pixel row is half a point above its lower edge in both systems.
inline QPointF flipped(const QPointF& point, double height) {
    return {point.x(), height - point.y()};
}

} // namespace FlippedGeometry
