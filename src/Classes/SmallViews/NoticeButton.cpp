// Paints the button in the colours of its notice.
#include "Classes/SmallViews/NoticeButton.h"

#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/StylePainting.h"

#include <QPainter>

#include <algorithm>

NoticeColors NoticeColors::current(bool isFault) {
    const ThemeColors& colors = currentColors();
    return isFault ? NoticeColors{colors.errorText, colors.errorFill, colors.errorEdge}
                   : NoticeColors{colors.warnText, colors.warnFill, colors.warnEdge};
}

NoticeButton::NoticeButton(QWidget* parent) : QAbstractButton(parent) {
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
}

QSize NoticeButton::sizeHint() const {
    return {fontMetrics().horizontalAdvance(text()) + 24, 22 + std::max(0, fontMetrics().height() - 16)};
}

void NoticeButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const NoticeColors colors = NoticeColors::current(m_isFault);
    const QColor veil = isDown() ? currentColors().pressed : underMouse() ? currentColors().hover : QColor();
    StylePainting::drawBox(painter, rect(), 3, veil, colors.text);
    painter.setPen(colors.text);
    painter.drawText(rect(), Qt::AlignCenter, text());
}
