// Draws the link.
#include "Classes/SmallViews/XHrefButton.h"

#include "Platform/Widgets/Appearance.h"

#include <QPainter>

XHrefButton::XHrefButton(QWidget* parent) : QAbstractButton(parent) {
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QFont XHrefButton::titleFont() const {
    QFont underlined(font());
    underlined.setUnderline(true);
    return underlined;
}

QSize XHrefButton::sizeHint() const {
    return QFontMetrics(titleFont()).size(Qt::TextSingleLine, text());
}

void XHrefButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setFont(titleFont());
    painter.setPen(isEnabled() ? currentColors().accent : currentColors().disabled);
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter, text());
}
