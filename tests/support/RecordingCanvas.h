// A canvas that writes every verb as a line of text, and a text measure without fonts.
#pragma once

#include "Classes/PlotView/PlotCanvas.h"

#include <QImage>
#include <QStringList>

#include <algorithm>
#include <string>
#include <vector>

namespace support {

/// Every character is 7 wide, every line 14 high.
class FixedMeasure : public TextMeasure {
  public:
    QSizeF size(const AttributedLabel& label, TextRole) const override {
        qsizetype longest = 0;
        const QStringList lines = label.text.split(u'\n');
        for (const QString& line : lines)
            longest = std::max(longest, line.size());
        return {7.0 * static_cast<double>(longest), 14.0 * static_cast<double>(lines.size())};
    }
};

/// Rectangles read "x,y widthxheight" with y upwards; colours by name where one was given, else in
/// hexadecimal.
class RecordingCanvas : public PlotCanvas {
  public:
    std::vector<std::string> lines;

    /// The recorded lines that contain the text.
    std::vector<std::string> linesWith(const std::string& text) const {
        std::vector<std::string> found;
        std::ranges::copy_if(lines, std::back_inserter(found),
                             [&](const std::string& line) { return line.find(text) != std::string::npos; });
        return found;
    }

    void save() override { lines.emplace_back("save"); }
    void restore() override { lines.emplace_back("restore"); }
    void clip(const QRectF& rect) override { add("clip", rect); }
    void rotate(QPointF about, double degrees) override {
        lines.push_back("rotate " + text(about) + " by " + number(degrees));
    }
    void fillRect(const QRectF& rect, const QColor& color) override { add("fill", rect, color); }
    void strokeRect(const QRectF& rect, const QColor& color) override { add("stroke", rect, color); }
    void hairline(QPointF start, double length, Qt::Orientation direction, const QColor& color) override {
        lines.push_back((direction == Qt::Horizontal ? "horizontal " : "vertical ") + text(start) + " long " +
                        number(length) + " " + name(color));
    }
    void line(QPointF from, QPointF to, double dash, const QColor& color) override {
        lines.push_back("line " + text(from) + " to " + text(to) + " dash " + number(dash) + " " +
                        name(color));
    }
    void gradient(const QRectF& rect, const QGradientStops&, int degrees) override {
        add("gradient at " + std::to_string(degrees), rect);
    }
    void text(const QRectF& rect, const AttributedLabel& label, TextRole, const QColor& color) override {
        std::string written = label.text.toStdString();
        if (label.superscriptStart < label.text.size())
            written = label.text.left(label.superscriptStart).toStdString() + "^" +
                      label.text.mid(label.superscriptStart).toStdString();
        add("text '" + written + "'", rect, color);
    }
    void image(const QRectF& target, const QImage& image, double opacity) override {
        add("image of " + std::to_string(image.width()) + "x" + std::to_string(image.height()) + " at " +
                number(opacity),
            target);
    }
    void group(const QRectF& rect, double opacity, const std::function<void(QPainter&)>&) override {
        add("group at " + number(opacity), rect);
    }

  private:
    static std::string number(double value) { return QString::number(value, 'g', 6).toStdString(); }
    static std::string text(QPointF point) { return number(point.x()) + "," + number(point.y()); }
    static std::string name(const QColor& color) { return color.name().toStdString(); }
    void add(const std::string& verb, const QRectF& rect) {
        lines.push_back(verb + " " + text(rect.topLeft()) + " " + number(rect.width()) + "x" +
                        number(rect.height()));
    }
    void add(const std::string& verb, const QRectF& rect, const QColor& color) {
        add(verb, rect);
        lines.back() += " " + name(color);
    }
};

} // namespace support
