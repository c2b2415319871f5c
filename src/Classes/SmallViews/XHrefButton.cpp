// Draws the link.
#include "Classes/SmallViews/XHrefButton.h"

#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/VelquinStyle.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

XHrefButton::XHrefButton(QWidget* parent) : QAbstractButton(parent) {
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void XHrefButton::setFocusRing(bool on) {
    VelquinStyle::setFocusRingInside(*this, !on);
}

QSize XHrefButton::sizeHint() const {
    return fontMetrics().size(Qt::TextSingleLine, text());
}

void XHrefButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QColor ink = isEnabled() ? currentColors().accent : currentColors().disabled;
    const QFontMetrics metrics = fontMetrics();
    const bool drawsFocus = hasFocus() && VelquinStyle::focusRingInside(this);
    painter.setPen(ink);
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter, text());
    const int thickness = std::max(1, metrics.lineWidth()) + (drawsFocus ? 1 : 0);
    const int top = (height() - metrics.height()) / 2 + metrics.ascent() + metrics.underlinePos();
    painter.fillRect(0, top, metrics.horizontalAdvance(text()), thickness, ink);
}

void XHrefButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}
