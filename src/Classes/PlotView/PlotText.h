// The text of a plot: its fonts, and how large a text is in them.
#pragma once

#include "Classes/Axes/XAxisTick.h"

#include <QFont>
#include <QSizeF>

/// What a text is for, which decides its font.
enum class TextRole { TickLabel, PlotTitle, AxisTitle };

/// Fonts are sized in pixels, so that a picture is the same on every screen.
QFont plotFont(TextRole role);
/// The raised part of a label.
QFont superscriptFont(TextRole role);
/// Gives the plot's font names a family that is installed. Once, by the program, before the first text.
void installFontSubstitutions();

/// A label without a raised part.
AttributedLabel plainLabel(const QString& text);

/// Tells the room of a text in points; lines are separated by '\n'.
class TextMeasure {
  public:
    TextMeasure() = default;
    virtual ~TextMeasure() = default;
    TextMeasure(const TextMeasure&) = delete;
    TextMeasure& operator=(const TextMeasure&) = delete;

    virtual QSizeF size(const AttributedLabel& label, TextRole role) const = 0;
};

/// Measures with the fonts themselves.
class FontTextMeasure : public TextMeasure {
  public:
    QSizeF size(const AttributedLabel& label, TextRole role) const override;
};
