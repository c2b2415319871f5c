// Paints and edits text that is turned by a quarter.
#include "Classes/PlotView/XVerticalLabel.h"

#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/StylePainting.h"

#include <QFontMetricsF>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

namespace {

constexpr int roomBesideText = 4; ///< between the text's foot and the right edge

} // namespace

XVerticalLabel::XVerticalLabel(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::IBeamCursor);
}

void XVerticalLabel::setStringValue(const QString& value) {
    m_stringValue = value;
    update();
}

void XVerticalLabel::setTextColor(const QColor& color) {
    m_textColor = color;
    update();
}

void XVerticalLabel::setBackgroundColor(const QColor& color) {
    m_backgroundColor = color;
    update();
}

void XVerticalLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), m_backgroundColor);
    if (hasFocus())
        StylePainting::drawRing(painter, rect(), 3, 2, currentColors().accent);
    painter.setRenderHint(QPainter::TextAntialiasing, true);
    painter.setFont(font());
    painter.setPen(m_textColor);
    const QFontMetricsF metrics(font());
    const QString text = metrics.elidedText(m_stringValue, Qt::ElideMiddle, height());
    painter.translate(width() - roomBesideText, height());
    painter.rotate(-90);
    const double lineHeight = metrics.ascent() + metrics.descent();
    painter.drawText(QRectF(0, -lineHeight, height(), lineHeight), Qt::AlignHCenter | Qt::AlignBottom, text);
}

void XVerticalLabel::mousePressEvent(QMouseEvent* event) {
    event->setAccepted(event->button() == Qt::LeftButton);
}

void XVerticalLabel::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        Q_EMIT clicked();
}

void XVerticalLabel::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
    case Qt::Key_F2:
        Q_EMIT clicked();
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}

void XVerticalLabel::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    update();
}

void XVerticalLabel::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    update();
}
