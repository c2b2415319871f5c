// Turns rectangles the right way round.
#include "Classes/ValueEncodings/XUtility.h"

#include <algorithm>
#include <cmath>

QRectF XUtility::normalizeRect(const QRectF& rect) {
    // Not through right() - left(): x + w - x may differ from w in the last digit.
    return {rect.x() + std::min(rect.width(), 0.0), rect.y() + std::min(rect.height(), 0.0),
            std::abs(rect.width()), std::abs(rect.height())};
}
