// Chooses the fonts, and measures with them.
#include "Classes/PlotView/PlotText.h"

#include <QFontMetricsF>
#include <QStringList>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

QFont plotFont(TextRole role) {
    QFont font(role == TextRole::TickLabel   ? u"Helvetica Neue"_s
               : role == TextRole::PlotTitle ? u"Helvetica Neue Bold"_s
                                             : u"Helvetica Neue Bold Italic"_s);
    font.setPixelSize(role == TextRole::PlotTitle ? 24 : 12);
    if (role != TextRole::TickLabel) {
        font.setBold(true); // the name alone does not make it bold
        font.setItalic(role == TextRole::AxisTitle);
        font.setLetterSpacing(QFont::AbsoluteSpacing, 1.1);
    }
    // Widths must not depend on the scale a picture is drawn at.
    font.setHintingPreference(QFont::PreferVerticalHinting);
    return font;
}

QFont superscriptFont(TextRole role) {
    QFont font = plotFont(role);
    font.setPixelSize(font.pixelSize() * 3 / 4);
    return font;
}

void installFontSubstitutions() {
    for (const QString& name :
         {u"Helvetica Neue"_s, u"Helvetica Neue Bold"_s, u"Helvetica Neue Bold Italic"_s})
        QFont::insertSubstitution(name, u"Liberation Sans"_s);
    QFont::insertSubstitution(u"Lucida Grande"_s, u"DejaVu Sans"_s);
    QFont::insertSubstitution(u"Courier New"_s, u"Liberation Mono"_s);
}

AttributedLabel plainLabel(const QString& text) {
    return {text, text.size()};
}

QSizeF FontTextMeasure::size(const AttributedLabel& label, TextRole role) const {
    const QFontMetricsF metrics(plotFont(role));
    const double lineHeight = std::ceil(metrics.ascent() + metrics.descent());
    const qsizetype raisedFrom = std::clamp<qsizetype>(label.superscriptStart, 0, label.text.size());
    double width = 0;
    const QStringList lines = label.text.left(raisedFrom).split(u'\n');
    for (const QString& line : lines)
        width = std::max(width, metrics.horizontalAdvance(line));
    if (raisedFrom < label.text.size())
        width = std::max(
            width, metrics.horizontalAdvance(lines.last()) +
                       QFontMetricsF(superscriptFont(role)).horizontalAdvance(label.text.mid(raisedFrom)));
    return {width, lineHeight * static_cast<double>(lines.size())};
}
