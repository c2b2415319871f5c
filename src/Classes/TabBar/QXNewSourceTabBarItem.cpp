// Draws the drop zone's tab.
#include "Classes/TabBar/QXNewSourceTabBarItem.h"

#include "Platform/Widgets/StylePainting.h"

#include <QPainter>

QXNewSourceTabBarItem::QXNewSourceTabBarItem(Controller viewController, QWidget* parent)
    : QXTabBarItem(CloseButton::No, std::move(viewController), parent) {
    setAccessibleName(tr("New data source"));
}

QRect QXNewSourceTabBarItem::titleRect() const {
    return rect();
}

void QXNewSourceTabBarItem::drawTitle(QPainter& painter) {
    constexpr int glyph = 14;
    constexpr int gap = 5;
    const QFont font = titleFont();
    const QString word = tr("New");
    const int wordWidth = QFontMetrics(font).horizontalAdvance(word);
    const int left = (width() - glyph - gap - wordWidth) / 2;
    StylePainting::drawIcon(painter, QRectF(left, 0, glyph, height()), QStringLiteral("drop"), titleColor(),
                            glyph);
    painter.setFont(font);
    painter.setPen(titleColor());
    painter.drawText(QRect(left + glyph + gap, 0, wordWidth + 1, height()), Qt::AlignLeft | Qt::AlignVCenter,
                     word);
}
