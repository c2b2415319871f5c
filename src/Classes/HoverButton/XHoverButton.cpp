// Follows the pointer and draws the picture that fits.
#include "Classes/HoverButton/XHoverButton.h"

#include "Core/Assertions.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/Pictures.h"
#include "Platform/Widgets/StylePainting.h"
#include "Platform/Widgets/VelquinStyle.h"

#include <QEvent>
#include <QPainter>

XHoverButton::XHoverButton(QWidget* parent) : QAbstractButton(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void XHoverButton::setImage(const QString& name) {
    if (name == m_normalImageName)
        return;
    m_normalImageName = name;
    if (!m_hoverImageName.isEmpty())
        setupImages();
    updateGeometry();
    update();
}

void XHoverButton::setAlternateImage(const QString& name) {
    m_alternateImageName = name;
    update();
}

const QString& XHoverButton::shownImageName() const {
    if (isDown() && !m_alternateImageName.isEmpty())
        return m_alternateImageName;
    return m_hovered && isEnabled() && !m_hoverImageName.isEmpty() ? m_hoverImageName : m_normalImageName;
}

QSize XHoverButton::sizeHint() const {
    return Pictures::size(m_normalImageName);
}

void XHoverButton::setupImages() {
    const QString hover = m_normalImageName + QLatin1String("_hover");
    const bool exists = Pictures::exists(hover);
    xAssert(exists, "No hover image \"%@\"for XHoverButton", hover.toStdString());
    m_hoverImageName = exists ? hover : m_normalImageName;
}

void XHoverButton::setHovered(bool hovered) {
    m_hovered = hovered;
    update();
}

bool XHoverButton::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::Show:
        if (m_hoverImageName.isEmpty())
            setupImages();
        setHovered(underMouse() && isActiveWindow());
        break;
    case QEvent::Enter:
        if (m_hoverImageName.isEmpty())
            setupImages();
        setHovered(isActiveWindow());
        break;
    case QEvent::Leave:
    case QEvent::Hide:
    case QEvent::WindowDeactivate:
        setHovered(false);
        break;
    default:
        break;
    }
    return QAbstractButton::event(event);
}

void XHoverButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (!isEnabled())
        painter.setOpacity(0.5);
    const QPixmap picture =
        Pictures::pixmap(shownImageName(), devicePixelRatioF(), Appearance::instance().theme());
    const QSizeF size = picture.deviceIndependentSize();
    const QRectF place(QPointF((width() - size.width()) / 2, (height() - size.height()) / 2), size);
    painter.drawPixmap(StylePainting::onDevicePixels(painter, place).topLeft(), picture);
    if (hasFocus() && VelquinStyle::focusRingInside(this))
        StylePainting::drawRing(painter, rect(), 4, 2, currentColors().accent);
}
