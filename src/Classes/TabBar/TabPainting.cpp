// Paints tabs in the colours of the theme.
#include "Classes/TabBar/TabPainting.h"

#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/StylePainting.h"

#include <QLinearGradient>
#include <QPainter>

namespace TabPainting {

QPainterPath outline(QSizeF size, double inset) {
    const double cornerLeft = size.height() / 3 + inset - 0.5;
    const double cornerRight = size.width() - cornerLeft;
    const double left = inset;
    const double right = size.width() - inset;
    const double top = inset;
    const double foot = size.height() - inset;
    QPainterPath path(QPointF(left, foot));
    path.lineTo(cornerLeft - 1.6, top + 3.1);
    path.quadTo(QPointF(cornerLeft - 0.6, top), QPointF(cornerLeft + 2.6, top));
    path.lineTo(cornerRight - 2.6, top);
    path.quadTo(QPointF(cornerRight + 0.6, top), QPointF(cornerRight + 1.6, top + 3.1));
    path.lineTo(right, foot);
    return path;
}

void draw(QPainter& painter, QSizeF size, bool selected, Outline style) {
    const ThemeColors& colors = currentColors();
    const double line = StylePainting::hairline(painter);
    const QPainterPath shape = outline(size, line / 2);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (selected) {
        painter.fillPath(shape, colors.window);
        // Over the line at the bar's foot, so that the tab runs into its page.
        const QRectF foot(line, size.height() - line, size.width() - 2 * line, line);
        painter.fillRect(StylePainting::onDevicePixels(painter, foot), colors.window);
    } else {
        QLinearGradient shade(0, 0, 0, size.height());
        QColor clear = colors.tabShade;
        clear.setAlpha(0);
        shade.setColorAt(0, clear);
        shade.setColorAt(0.6, colors.tabShadeMid);
        shade.setColorAt(1, colors.tabShade);
        painter.fillPath(shape, colors.bezel);
        painter.fillPath(shape, shade);
    }
    QPen pen(colors.tabLine, line);
    if (style == Outline::Dashed)
        pen.setDashPattern({3 / line, 3 / line});
    pen.setCapStyle(Qt::FlatCap);
    painter.strokePath(shape, pen);
    painter.restore();
}

} // namespace TabPainting
