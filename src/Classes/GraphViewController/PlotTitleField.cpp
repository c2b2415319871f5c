// Draws the title as the plot does, unless it is being edited.
#include "Classes/GraphViewController/PlotTitleField.h"

#include "Classes/PlotView/PlotCanvas.h"
#include "Classes/PlotView/PlotStyles.h"
#include "Platform/Widgets/StylePainting.h"
#include "Platform/Widgets/ThemeColors.h"

#include <QFontMetricsF>
#include <QPaintEvent>
#include <QPainter>

using namespace Qt::StringLiterals;

PlotTitleField::PlotTitleField(QWidget* parent) : InPlaceField(parent) {
    setAlignment(Qt::AlignCenter);
    setCursor(Qt::IBeamCursor);
    setRole(m_role);
}

void PlotTitleField::setRole(TextRole role) {
    m_role = role;
    setFont(plotFont(role));
}

void PlotTitleField::setStyles(const PlotStyles& styles) {
    m_ink = styles.color(u"TitleColor"_s);
    m_paper = styles.color(u"BackgroundColor"_s);
    // Selection and ring have to show on this paper, whatever the theme of the windows is.
    const Theme theme = styles.isDark() ? Theme::Dark : Theme::Light;
    m_ring = themeColors(theme).accent;
    QPalette colors = themePalette(theme);
    colors.setColor(QPalette::Text, m_ink);
    setPalette(colors);
    update();
}

void PlotTitleField::paintAtRest(PlotCanvas& canvas) {
    const QFontMetricsF metrics(font());
    const AttributedLabel label = plainLabel(metrics.elidedText(text(), Qt::ElideMiddle, width()));
    const QSizeF size = FontTextMeasure().size(label, m_role);
    const QPointF middle(width() / 2.0, height() / 2.0);
    canvas.text({middle - QPointF(size.width() / 2, size.height() / 2), size}, label, m_role, m_ink);
}

void PlotTitleField::paintEvent(QPaintEvent* event) {
    if (isEditing())
        QPainter(this).fillRect(rect(), m_paper);
    InPlaceField::paintEvent(event);
    if (!isEditing())
        return;
    QPainter painter(this);
    StylePainting::drawRing(painter, rect(), 3, 2, m_ring);
}
