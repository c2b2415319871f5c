// Draws a tab and follows its view controller.
#include "Classes/TabBar/QXTabBarItem.h"

#include "Classes/HoverButton/XHoverButton.h"
#include "Classes/SmallViews/XMiniProgressIndicator.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/FlippedGeometry.h"
#include "Platform/Widgets/StylePainting.h"

#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include <array>

namespace {

constexpr std::array<const char*, 2> controllerKeys{"title", "progress"};
constexpr int closeSide = 13;
constexpr int titleInset = 16;
constexpr int closeRoom = 28; ///< right of the title, where the close button stands
constexpr int faultSide = 12;

} // namespace

QXTabBarItem::QXTabBarItem(Controller viewController, QWidget* parent)
    : QXTabBarItem(CloseButton::Yes, std::move(viewController), parent) {}

QXTabBarItem::QXTabBarItem(CloseButton closeButton, Controller viewController, QWidget* parent)
    : QWidget(parent) {
    resize(100, 100);
    if (closeButton == CloseButton::Yes)
        createCloseButton();
    createProgressIndicator();
    setViewController(std::move(viewController));
}

QXTabBarItem::~QXTabBarItem() = default;

void QXTabBarItem::createCloseButton() {
    m_closeButton = new XHoverButton(this);
    m_closeButton->setImage(QStringLiteral("tab_close"));
    m_closeButton->setAlternateImage(QStringLiteral("tab_close_pressed"));
    m_closeButton->setFocusPolicy(Qt::NoFocus);
    m_closeButton->setToolTip(tr("Close this tab"));
    m_closeButton->hide();
    connect(m_closeButton, &QAbstractButton::clicked, this, &QXTabBarItem::onClose);
}

void QXTabBarItem::createProgressIndicator() {
    m_progressIndicator = new XMiniProgressIndicator(this);
    m_progressIndicator->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_progressIndicator->hide();
}

void QXTabBarItem::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    if (m_closeButton != nullptr)
        m_closeButton->setGeometry(
            FlippedGeometry::flipped(QRect(width() - 24, 8, closeSide, closeSide), height()));
    m_progressIndicator->setGeometry(FlippedGeometry::flipped(QRect(2, 1, width() - 4, 1), height()));
    // Where tabs overlap, a click in a leaning corner belongs to the neighbour that is seen there.
    QPainterPath shape = TabPainting::outline(size(), -1);
    shape.closeSubpath();
    setMask(QRegion(shape.toFillPolygon().toPolygon()));
}

void QXTabBarItem::setSelected(bool selected) {
    if (selected == m_isSelected)
        return;
    m_isSelected = selected;
    update();
}

void QXTabBarItem::setShowsFocus(bool shows) {
    if (shows == m_showsFocus)
        return;
    m_showsFocus = shows;
    update();
}

void QXTabBarItem::setViewController(Controller viewController) {
    m_observation.end();
    m_viewController = std::move(viewController);
    if (m_viewController != nullptr) {
        m_observation = Observation(*m_viewController, controllerKeys, [this](const KeyChange& change) {
            if (change.key == std::string_view("title"))
                titleChanged();
            else
                handleProgressChange(change.newValue.toFloat() * 100);
        });
    }
    titleChanged();
}

void QXTabBarItem::titleChanged() {
    setAccessibleName(title());
    if (m_closeButton != nullptr)
        m_closeButton->setAccessibleName(tr("Close %1").arg(title()));
    m_progressIndicator->setAccessibleName(tr("Progress of %1").arg(title()));
    update();
}

QString QXTabBarItem::title() const {
    return m_viewController == nullptr ? QString() : m_viewController->title();
}

QRect QXTabBarItem::titleRect() const {
    return {titleInset, 0, width() - titleInset - (m_closeButton != nullptr ? closeRoom : titleInset),
            height()};
}

void QXTabBarItem::setFault(const QString& reason) {
    m_fault = reason;
    setAccessibleDescription(reason);
    update();
}

void QXTabBarItem::handleProgressChange(float percentage) {
    const bool underWay = percentage < 100 && percentage != 0; // false for NaN
    if (underWay)
        m_progressIndicator->setPercentage(percentage);
    m_progressIndicator->setVisible(underWay);
}

void QXTabBarItem::onClose() {
    if (m_delegate != nullptr)
        m_delegate->onClose(*this);
}

bool QXTabBarItem::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::Enter:
    case QEvent::Leave:
    case QEvent::WindowDeactivate:
        if (m_closeButton != nullptr)
            m_closeButton->setVisible(event->type() == QEvent::Enter && isActiveWindow());
        break;
    case QEvent::ToolTip: {
        const QString own = toolTip().isEmpty() ? title() : toolTip();
        const QString text = m_fault.isEmpty() ? own : own + QLatin1Char('\n') + m_fault;
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text, this);
        return true;
    }
    default:
        break;
    }
    return QWidget::event(event);
}

void QXTabBarItem::mousePressEvent(QMouseEvent* event) {
    event->setAccepted(event->button() == Qt::LeftButton);
}

void QXTabBarItem::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()) &&
        m_delegate != nullptr)
        m_delegate->onClick(*this);
}

QFont QXTabBarItem::titleFont() const {
    QFont font(QStringLiteral("Lucida Grande"));
    font.setPixelSize(12);
    return font;
}

QColor QXTabBarItem::titleColor() const {
    return m_isSelected ? currentColors().text : currentColors().text2;
}

void QXTabBarItem::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    TabPainting::draw(painter, size(), m_isSelected, outlineStyle());
    drawTitle(painter);
    if (m_showsFocus)
        StylePainting::drawRing(painter, QRectF(rect()).adjusted(9, 4, -9, -4), 4, 2, currentColors().accent);
}

void QXTabBarItem::drawTitle(QPainter& painter) {
    QRect room = titleRect();
    const QFont font = titleFont();
    const QFontMetrics metrics(font);
    if (!m_fault.isEmpty()) {
        constexpr int gap = 4;
        // Elision wants a pixel more than the advance, which is rounded.
        const int width = std::min(metrics.horizontalAdvance(title()) + 1, room.width() - faultSide - gap);
        const int left = room.left() + (room.width() - faultSide - gap - width) / 2;
        StylePainting::drawIcon(painter, QRectF(left, 0, faultSide, height()), QStringLiteral("warn"),
                                currentColors().warnText, faultSide);
        room = QRect(left + faultSide + gap, 0, width, height());
    }
    const QString text = metrics.elidedText(title(), Qt::ElideMiddle, room.width());
    painter.setFont(font);
    painter.setPen(currentColors().tabGlow);
    painter.drawText(room.translated(0, 1), Qt::AlignCenter, text);
    painter.setPen(titleColor());
    painter.drawText(room, Qt::AlignCenter, text);
}
