// Draws the notice and its button in the colours of warnings and faults.
#include "EmbeddedPlugins/Common/NoticeBar.h"

#include "Classes/HoverButton/XHoverButton.h"
#include "Classes/SmallViews/NoticeButton.h"
#include "Platform/Widgets/Animation.h"
#include "Platform/Widgets/StylePainting.h"

#include <QAccessible>
#include <QEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QVariantAnimation>

#include <algorithm>

namespace {

constexpr int foldedHeight = 15;
constexpr int marginAbove = 11;
constexpr int marginBelow = 16;
constexpr int boxHeight = 32;
constexpr int textLeft = 34;
constexpr int closeRoom = 34; ///< right of the button
constexpr int unfoldMilliseconds = 100;

} // namespace

NoticeBar::NoticeBar(QWidget* parent)
    : QWidget(parent), m_box(new QWidget(this)), m_action(new NoticeButton(m_box)),
      m_close(new XHoverButton(m_box)) {
    setFixedHeight(foldedHeight);
    m_close->setImage(QStringLiteral("tab_close"));
    m_close->setAlternateImage(QStringLiteral("tab_close_pressed"));
    m_close->setFocusPolicy(Qt::StrongFocus);
    m_close->setToolTip(tr("Dismiss this notice (Esc)"));
    m_close->setAccessibleName(tr("Dismiss this notice"));
    m_box->hide();
    connect(m_action, &QAbstractButton::clicked, this, &NoticeBar::actionClicked);
    connect(m_close, &QAbstractButton::clicked, this, &NoticeBar::dismissed);
}

void NoticeBar::showNotice(const QString& text, const QString& action, bool isFault) {
    if (text == m_text && action == m_action->text())
        return;
    const bool wasOpen = !m_text.isEmpty();
    m_text = text;
    m_isFault = isFault;
    if (!text.isEmpty()) {
        m_action->setFault(isFault);
        m_action->setText(action);
        m_action->setVisible(!action.isEmpty());
        m_action->setToolTip(action.isEmpty() ? QString() : text);
        m_action->setAccessibleName(action);
        m_action->setAccessibleDescription(text);
        setAccessibleName(text);
        layOut();
        QAccessibleEvent alert(this, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
    m_box->setVisible(!text.isEmpty());
    if (wasOpen == text.isEmpty())
        unfold(!text.isEmpty());
    update();
}

int NoticeBar::openHeight() const {
    return marginAbove + marginBelow + boxHeight + std::max(0, fontMetrics().height() - 16);
}

void NoticeBar::unfold(bool open) {
    const int from = height();
    const int to = open ? openHeight() : foldedHeight;
    if (m_unfolding != nullptr)
        m_unfolding->stop();
    m_unfolding =
        Animation::run(*this, unfoldMilliseconds, QEasingCurve::OutQuad, [this, from, to](double part) {
            setFixedHeight(from + static_cast<int>(part * (to - from)));
        });
}

void NoticeBar::layOut() {
    const int boxInside = openHeight() - marginAbove - marginBelow;
    m_box->setGeometry(0, marginAbove, width(), std::max(0, std::min(boxInside, height() - marginAbove)));
    const QSize size = m_action->sizeHint();
    m_action->setGeometry(width() - closeRoom - size.width(), (boxInside - size.height()) / 2, size.width(),
                          size.height());
    const QSize cross = m_close->sizeHint();
    m_close->setGeometry(width() - 11 - cross.width(), (boxInside - cross.height()) / 2, cross.width(),
                         cross.height());
    const int textRight = m_action->text().isEmpty() ? width() - closeRoom : m_action->x() - 8;
    const bool fits = fontMetrics().horizontalAdvance(m_text) <= textRight - textLeft;
    setToolTip(fits ? QString() : m_text);
}

void NoticeBar::resizeEvent(QResizeEvent*) {
    layOut();
}

void NoticeBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        setFixedHeight(m_text.isEmpty() ? foldedHeight : openHeight());
        layOut();
    }
}

void NoticeBar::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && !m_text.isEmpty())
        Q_EMIT dismissed();
    else
        QWidget::keyPressEvent(event);
}

void NoticeBar::paintEvent(QPaintEvent*) {
    if (m_text.isEmpty())
        return;
    QPainter painter(this);
    const NoticeColors colors = NoticeColors::current(m_isFault);
    const QRect box(0, marginAbove, width(), openHeight() - marginAbove - marginBelow);
    StylePainting::drawBox(painter, box, 4, colors.fill, colors.edge);
    StylePainting::drawIcon(painter, QRectF(10, marginAbove, 16, box.height()),
                            m_isFault ? QStringLiteral("error") : QStringLiteral("warn"), colors.text);
    const int right = m_action->text().isEmpty() ? width() - closeRoom : m_action->x() - 8;
    const QRect room(textLeft, marginAbove, right - textLeft, box.height());
    painter.setPen(colors.text);
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                     fontMetrics().elidedText(m_text, Qt::ElideMiddle, room.width()));
}
