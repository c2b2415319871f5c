// Small helpers without a home of their own.
#pragma once

#include <QRectF>

class XUtility {
  public:
    /// A rectangle of the same area with width and height not negative: for rectangles dragged in any
    /// direction.
    static QRectF normalizeRect(const QRectF& rect);
};
