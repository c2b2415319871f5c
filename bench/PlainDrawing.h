// How a plain program draws: least and greatest per pixel column, the toolkit's painter. For comparison.
#pragma once

#include <QImage>
#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <limits>
#include <span>

namespace plain {

using Values = std::span<const double>;

struct Range {
    double least = std::numeric_limits<double>::infinity();
    double greatest = -std::numeric_limits<double>::infinity();

    void add(double value) {
        least = std::min(least, value);
        greatest = std::max(greatest, value);
    }
};

inline Range rangeOf(Values column) {
    Range range;
    for (const double value : column)
        range.add(value);
    return range;
}

/// First, least, greatest and last of each pixel column, in that order.
inline QPolygonF reduced(Values xs, Values ys, Range x, Range y, QSizeF size) {
    QPolygonF points;
    const double scaleX = size.width() / (x.greatest - x.least);
    const double scaleY = size.height() / (y.greatest - y.least);
    const auto pixelY = [&](double value) { return size.height() - (value - y.least) * scaleY; };
    double column = -1;
    Range here;
    double last = 0;
    const auto flush = [&] {
        if (column < 0)
            return;
        points << QPointF(column, pixelY(here.least)) << QPointF(column, pixelY(here.greatest))
               << QPointF(column, pixelY(last));
    };
    for (std::size_t i = 0; i < xs.size(); ++i) {
        const double pixel = std::floor((xs[i] - x.least) * scaleX);
        if (pixel != column) {
            flush();
            column = pixel;
            here = {};
            points << QPointF(column, pixelY(ys[i]));
        }
        here.add(ys[i]);
        last = ys[i];
    }
    flush();
    return points;
}

/// Curves against the first column, on white.
inline QImage picture(Values xs, std::initializer_list<Values> curves) {
    constexpr Qt::GlobalColor colors[] = {Qt::red, Qt::blue};
    QImage image(920, 550, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const Range x = rangeOf(xs);
    Range y;
    for (const Values ys : curves) {
        const Range range = rangeOf(ys);
        y.add(range.least);
        y.add(range.greatest);
    }
    std::size_t number = 0;
    for (const Values ys : curves) {
        painter.setPen(QPen(colors[number++ % 2], 1));
        painter.drawPolyline(reduced(xs, ys, x, y, image.size()));
    }
    return image;
}

} // namespace plain
