// Strokes, texts, gradients and images over a painter.
#include "Classes/PlotView/PainterCanvas.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QImage>
#include <QLineF>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <QPen>
#include <QStringList>

#include <algorithm>
#include <cmath>

PainterCanvas::PainterCanvas(QPainter& painter, double height, Output output)
    : m_painter(painter), m_height(height), m_output(output) {}

QRectF PainterCanvas::flipped(const QRectF& rect) const {
    return {rect.x(), m_height - rect.y() - rect.height(), rect.width(), rect.height()};
}

bool PainterCanvas::snaps() const {
    return m_output == Output::Pixels && m_painter.deviceTransform().type() <= QTransform::TxScale;
}

QRectF PainterCanvas::snapped(const QRectF& rect) const {
    if (!snaps())
        return rect;
    const QTransform toDevice = m_painter.deviceTransform();
    const QRectF device = toDevice.mapRect(rect);
    const QRectF whole(QPointF(std::round(device.left()), std::round(device.top())),
                       QPointF(std::round(device.right()), std::round(device.bottom())));
    return toDevice.inverted().mapRect(whole);
}

double PainterCanvas::hairlineWidth() const {
    if (!snaps())
        return 1;
    const double ratio = m_painter.deviceTransform().m11();
    return std::max(1.0, std::floor(ratio)) / ratio;
}

void PainterCanvas::fill(const QRectF& painterRect, const QColor& color) {
    // Without antialiasing a pixel is covered when its centre is: the edges are exact, whatever was rounded.
    m_painter.setRenderHint(QPainter::Antialiasing, !snaps());
    m_painter.fillRect(painterRect, color);
}

void PainterCanvas::save() {
    m_painter.save();
}

void PainterCanvas::restore() {
    m_painter.restore();
}

void PainterCanvas::clip(const QRectF& rect) {
    m_painter.setClipRect(snapped(flipped(rect)), Qt::IntersectClip);
}

void PainterCanvas::rotate(QPointF about, double degrees) {
    const QPointF center = flipped(about);
    m_painter.translate(center);
    m_painter.rotate(-degrees); // the painter's angles grow clockwise
    m_painter.translate(-center);
}

void PainterCanvas::fillRect(const QRectF& rect, const QColor& color) {
    fill(snapped(flipped(rect)), color);
}

void PainterCanvas::strokeRect(const QRectF& rect, const QColor& color) {
    const QRectF outer = snapped(flipped(rect));
    const double width = std::min({hairlineWidth(), outer.width(), outer.height()});
    const double innerHeight = outer.height() - 2 * width;
    fill({outer.left(), outer.top(), outer.width(), width}, color);
    fill({outer.left(), outer.bottom() - width, outer.width(), width}, color);
    if (innerHeight > 0) { // the corners are covered once, which shows where the colour is not opaque
        fill({outer.left(), outer.top() + width, width, innerHeight}, color);
        fill({outer.right() - width, outer.top() + width, width, innerHeight}, color);
    }
}

void PainterCanvas::hairline(QPointF start, double length, Qt::Orientation direction, const QColor& color) {
    const bool horizontal = direction == Qt::Horizontal;
    const QRectF rect = horizontal ? QRectF(start, QSizeF(length, 1)) : QRectF(start, QSizeF(1, length));
    fill(thinned(snapped(flipped(rect)), direction), color);
}

QRectF PainterCanvas::thinned(QRectF rect, Qt::Orientation direction) const {
    if (direction == Qt::Horizontal)
        rect.setTop(rect.bottom() - hairlineWidth());
    else
        rect.setWidth(hairlineWidth());
    return rect;
}

// From where to where, in parts of its way, a line may be seen: one that ends far away has too many dashes.
std::pair<double, double> PainterCanvas::seenPart(QPointF start, QPointF way) const {
    std::pair<double, double> seen(0, 1);
    if (!m_painter.hasClipping())
        return seen;
    const QRectF room = m_painter.clipBoundingRect().adjusted(-2, -2, 2, 2);
    const auto limit = [&seen](double from, double step, double low, double high) {
        if (step == 0) {
            if (from < low || from > high)
                seen.second = 0;
            return;
        }
        const auto [enter, leave] = std::minmax({(low - from) / step, (high - from) / step});
        seen = {std::max(seen.first, enter), std::min(seen.second, leave)};
    };
    limit(start.x(), way.x(), room.left(), room.right());
    limit(start.y(), way.y(), room.top(), room.bottom());
    return seen;
}

// Each dash by itself, on whole device pixels.
void PainterCanvas::uprightLine(QPointF start, QPointF end, double dash, const QColor& color) {
    const auto direction = start.x() == end.x() ? Qt::Vertical : Qt::Horizontal;
    const QPointF half = direction == Qt::Vertical ? QPointF(0.5, 0) : QPointF(0, 0.5);
    const double length = QLineF(start, end).length();
    const double on = dash > 0 ? dash : length;
    for (double at = 0; at < length; at += on + dash) {
        const QPointF from = start + (end - start) * (at / length);
        const QPointF to = start + (end - start) * (std::min(at + on, length) / length);
        const QRectF rect = QRectF(from, to).normalized();
        fill(thinned(snapped({rect.topLeft() - half, rect.bottomRight() + half}), direction), color);
    }
}

void PainterCanvas::line(QPointF from, QPointF to, double dash, const QColor& color) {
    const QPointF way = flipped(to) - flipped(from);
    const double length = std::hypot(way.x(), way.y());
    const auto [first, last] = seenPart(flipped(from), way);
    if (!(first < last) || !(length > 0))
        return;
    // It begins with a whole dash, where that would begin if all of the line were drawn.
    const double begin = dash > 0 ? std::floor(first * length / (2 * dash)) * 2 * dash / length : first;
    const QPointF start = flipped(from) + way * begin;
    const QPointF end = flipped(from) + way * last;
    if (snaps() && (way.x() == 0 || way.y() == 0)) {
        uprightLine(start, end, dash, color);
        return;
    }
    QPen pen(color, hairlineWidth());
    pen.setCapStyle(Qt::FlatCap);
    if (dash > 0)
        pen.setDashPattern({dash / hairlineWidth(), dash / hairlineWidth()});
    m_painter.setRenderHint(QPainter::Antialiasing, true);
    m_painter.setPen(pen);
    m_painter.drawLine(start, end);
}

void PainterCanvas::gradient(const QRectF& rect, const QGradientStops& stops, int degrees) {
    const QRectF area = snapped(flipped(rect));
    const double angle = degrees * 3.14159265358979323846 / 180;
    const QPointF half(std::cos(angle) * area.width() / 2, -std::sin(angle) * area.height() / 2);
    QLinearGradient ramp(area.center() - half, area.center() + half);
    ramp.setStops(stops);
    m_painter.setRenderHint(QPainter::Antialiasing, !snaps());
    m_painter.fillRect(area, ramp);
}

void PainterCanvas::textLine(QPointF baseline, const QString& text, QFont font, const QColor& color) {
    if (m_output == Output::Vector && font.letterSpacing() != 0) {
        // Vector devices scale the letter spacing or lose it: such a text, a title, goes in as outlines.
        QPainterPath outlines;
        outlines.addText(baseline, font, text);
        m_painter.fillPath(outlines, color);
        return;
    }
    // A vector file may be shown elsewhere: it names the family that was measured, not the one asked for.
    if (m_output == Output::Vector)
        font.setFamilies({QFontInfo(font).family()});
    m_painter.setPen(color);
    m_painter.setFont(font);
    m_painter.drawText(baseline, text);
}

void PainterCanvas::text(const QRectF& rect, const AttributedLabel& label, TextRole role,
                         const QColor& color) {
    const QRectF area = flipped(rect);
    const QFont font = plotFont(role);
    const QFontMetricsF metrics(font);
    const qsizetype raisedFrom = std::clamp<qsizetype>(label.superscriptStart, 0, label.text.size());
    const QString raised = label.text.mid(raisedFrom);
    const QFont smallFont = superscriptFont(role);
    const QStringList lines = label.text.left(raisedFrom).split(u'\n');

    m_painter.setRenderHint(QPainter::TextAntialiasing, true);
    double baseline = area.top() + std::round(metrics.ascent());
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const bool carriesRaised = i + 1 == lines.size() && !raised.isEmpty();
        const double ownWidth = metrics.horizontalAdvance(lines[i]);
        const double raisedWidth = carriesRaised ? QFontMetricsF(smallFont).horizontalAdvance(raised) : 0;
        const QPointF start(area.left() + (area.width() - ownWidth - raisedWidth) / 2, baseline);
        textLine(start, lines[i], font, color);
        if (carriesRaised)
            textLine(start + QPointF(ownWidth, -std::round(metrics.ascent() / 3)), raised, smallFont, color);
        baseline += std::ceil(metrics.ascent() + metrics.descent());
    }
}

void PainterCanvas::image(const QRectF& target, const QImage& image, double opacity) {
    QRectF area = flipped(target);
    if (image.isNull() || area.isEmpty())
        return;
    QRectF source(QPointF(0, 0), QSizeF(image.size()));
    bool exact = false;
    if (snaps()) {
        // An image made for this very size is laid onto the pixels one to one.
        const QTransform toDevice = m_painter.deviceTransform();
        const QRectF device = toDevice.mapRect(area);
        exact =
            std::abs(device.width() - source.width()) < 1 && std::abs(device.height() - source.height()) < 1;
        if (exact)
            area = toDevice.inverted().mapRect(
                QRectF(QPointF(std::round(device.left()), std::round(device.top())), source.size()));
    }
    if (!exact && m_painter.hasClipping()) {
        // After a deep zoom the target may be thousands of times the view: only what is seen is scaled.
        const double pixelsX = source.width() / area.width();
        const double pixelsY = source.height() / area.height();
        const QRectF seen = area.intersected(m_painter.clipBoundingRect().adjusted(-1, -1, 1, 1));
        if (seen.isEmpty())
            return;
        source = QRectF((seen.left() - area.left()) * pixelsX, (seen.top() - area.top()) * pixelsY,
                        seen.width() * pixelsX, seen.height() * pixelsY);
        area = seen;
    }
    m_painter.save();
    m_painter.setOpacity(opacity);
    m_painter.setRenderHint(QPainter::Antialiasing, false);
    m_painter.setRenderHint(QPainter::SmoothPixmapTransform, !exact);
    m_painter.drawImage(area, image, source);
    m_painter.restore();
}

void PainterCanvas::group(const QRectF& rect, double opacity, const std::function<void(QPainter&)>& paint) {
    // A scalable-graphics writer puts the opacity on its group element. A page writer has no such groups:
    // there it applies to each stroke and fill, which shows only where a curve's own shapes overlap its line.
    m_painter.save();
    m_painter.setOpacity(opacity);
    m_painter.translate(flipped(rect).topLeft());
    paint(m_painter);
    m_painter.restore();
}
