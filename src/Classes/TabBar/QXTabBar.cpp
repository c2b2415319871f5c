// Lays tabs out, keeps one selected and shows its content.
#include "Classes/TabBar/QXTabBar.h"

#include "Classes/TabBar/QXTabBarDelegate.h"
#include "Classes/TabBar/QXTabBarItem.h"
#include "Classes/TabBar/TabAccessibility.h"
#include "Core/Assertions.h"
#include "Core/TabLayout.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/FlippedGeometry.h"
#include "Platform/Widgets/StylePainting.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

bool QXTabBarDelegate::tabBarWillCloseTabWithIndex(QXTabBar&, int) {
    xAssert(false,
            "QXTabBar delegate doesn't respond to willCloseTabWithIndex - fix it or remove the delegate");
    return false;
}

void QXTabBarDelegate::tabBarDidCloseTabWithIndex(QXTabBar&, int) {}

QXTabBar::QXTabBar(QWidget* parent) : QWidget(parent) {
    installTabAccessibility();
    setFocusPolicy(Qt::TabFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_OpaquePaintEvent);
    m_registration = NotificationCenter::defaultCenter().observe(
        Notifications::tabBarWillSelectItem, nullptr,
        [this](QObject* sender) { tabBarWillBeSelected(sender); });
}

QXTabBar::~QXTabBar() {
    // The registration must be gone before the tabs are.
    m_registration.end();
    hideContent();
}

void QXTabBar::setClientViewForTabControllers(QWidget* view) {
    hideContent();
    if (m_clientView != nullptr)
        m_clientView->removeEventFilter(this);
    m_clientView = view;
    if (m_clientView != nullptr)
        m_clientView->installEventFilter(this);
    showContent();
}

void QXTabBar::setPaddingLeft(int padding) {
    m_paddingLeft = padding;
    layoutTabs();
}

void QXTabBar::setPaddingRight(int padding) {
    m_paddingRight = padding;
    layoutTabs();
}

int QXTabBar::indexOf(const QXTabBarItem* tab) const {
    const auto found = std::find(m_tabs.begin(), m_tabs.end(), tab);
    return found == m_tabs.end() ? -1 : static_cast<int>(found - m_tabs.begin());
}

int QXTabBar::selectedIndex() const {
    return indexOf(m_selectedItem);
}

QXTabBarItem* QXTabBar::tabWithIndex(int index) const {
    const bool valid = index >= 0 && index < static_cast<int>(m_tabs.size());
    if (!xAssert(valid, "QXTabBar:tabWithIndex called with invalid index %ld", index))
        return nullptr;
    return m_tabs[static_cast<std::size_t>(index)];
}

int QXTabBar::addTab(QXTabBarItem* tab) {
    return insertTabAtIndex(tab, static_cast<int>(m_tabs.size()));
}

int QXTabBar::insertTabAtIndex(QXTabBarItem* tab, int index) {
    const auto count = static_cast<int>(m_tabs.size());
    if (!xAssert(index >= 0 && index <= count, "QXTabBar:insertTabAtIndex called with invalid index %ld",
                 index))
        index = count;
    tab->setDelegate(this);
    m_tabs.insert(m_tabs.begin() + index, tab);
    tab->setParent(this);
    tab->show();
    restack();
    layoutTabs();
    showFocus();
    return index;
}

void QXTabBar::removeTab(QXTabBarItem* tab) {
    const int index = indexOf(tab);
    if (index < 0)
        return;
    if (tab == m_selectedItem)
        selectTabWithIndex(-1);
    m_tabs.erase(m_tabs.begin() + index);
    // A click in the tab or in its content may have led here: both outlive the event.
    tab->setDelegate(nullptr);
    tab->hide();
    tab->deleteLater();
    layoutTabs();
    showFocus();
}

void QXTabBar::removeTabAtIndex(int index) {
    if (QXTabBarItem* tab = tabWithIndex(index))
        removeTab(tab);
}

void QXTabBar::selectTabWithIndex(int index) {
    if (index != -1)
        NotificationCenter::defaultCenter().post(Notifications::tabBarWillSelectItem, this);
    hideContent();
    m_selectedItem = nullptr;
    for (std::size_t i = 0; i < m_tabs.size(); ++i) {
        const bool selected = static_cast<int>(i) == index;
        m_tabs[i]->setSelected(selected);
        if (selected)
            m_selectedItem = m_tabs[i];
    }
    restack();
    showContent();
    showFocus();
    const QXTabBarItem* selected = m_selectedItem;
    Q_EMIT selectionChanged(selectedIndex());
    if (selected != nullptr && selected == m_selectedItem && selected->viewController() != nullptr)
        selected->viewController()->onBecameVisible();
}

void QXTabBar::restack() {
    const int selected = selectedIndex();
    const auto middle = m_tabs.begin() + (selected < 0 ? static_cast<int>(m_tabs.size()) : selected);
    std::for_each(m_tabs.begin(), middle, [](QXTabBarItem* tab) { tab->raise(); });
    std::for_each(m_tabs.rbegin(), std::make_reverse_iterator(middle),
                  [](QXTabBarItem* tab) { tab->raise(); });
    if (m_selectedItem != nullptr)
        m_selectedItem->raise();
}

void QXTabBar::hideContent() {
    if (m_clientView == nullptr || m_selectedItem == nullptr || m_selectedItem->viewController() == nullptr)
        return;
    QWidget* content = m_selectedItem->viewController()->view();
    if (content != nullptr && content->parentWidget() == m_clientView)
        content->hide();
}

void QXTabBar::showContent() {
    if (m_clientView == nullptr || m_selectedItem == nullptr || m_selectedItem->viewController() == nullptr)
        return;
    QWidget* content = m_selectedItem->viewController()->view();
    if (content == nullptr)
        return;
    if (content->parentWidget() != m_clientView)
        content->setParent(m_clientView);
    content->setGeometry(m_clientView->rect());
    content->show();
}

bool QXTabBar::eventFilter(QObject* object, QEvent* event) {
    if (object == m_clientView && event->type() == QEvent::Resize)
        showContent();
    return QWidget::eventFilter(object, event);
}

void QXTabBar::tabBarWillBeSelected(QObject* sender) {
    const auto* bar = qobject_cast<const QXTabBar*>(sender);
    if (bar != nullptr && bar != this && !m_linkIdentifier.isEmpty() &&
        m_linkIdentifier == bar->m_linkIdentifier)
        selectTabWithIndex(-1);
}

void QXTabBar::layoutTabs() {
    std::vector<TabWidths> widths;
    widths.reserve(m_tabs.size());
    for (const QXTabBarItem* tab : m_tabs)
        widths.push_back({tab->minWidth(), tab->maxWidth()});
    const std::vector<TabFrame> frames = ::layoutTabs(widths, width(), m_paddingLeft, m_paddingRight);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        const QRect frame(frames[i].x, 0, frames[i].width, height());
        m_tabs[i]->setGeometry(FlippedGeometry::flipped(frame, height()));
    }
}

void QXTabBar::ensureVisibleTabWithIndex(int) {}

void QXTabBar::onDrag() {}

void QXTabBar::onClick(QXTabBarItem& tab) {
    selectTabWithIndex(indexOf(&tab));
}

void QXTabBar::onClose(QXTabBarItem& tab) {
    if (m_delegate == nullptr)
        return;
    const QPointer<QXTabBar> self(this);
    const QPointer<QXTabBarItem> closing(&tab);
    // The question may run an event loop, in which anything can close.
    if (!m_delegate->tabBarWillCloseTabWithIndex(*this, indexOf(&tab)) || self == nullptr ||
        closing == nullptr)
        return;
    const int index = indexOf(&tab);
    if (index < 0)
        return;
    removeTab(&tab);
    if (m_delegate != nullptr)
        m_delegate->tabBarDidCloseTabWithIndex(*this, index);
    if (self != nullptr && !m_tabs.empty())
        selectTabWithIndex(std::max(0, index - 1));
}

void QXTabBar::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    layoutTabs();
}

void QXTabBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const ThemeColors& colors = currentColors();
    painter.fillRect(rect(), colors.bezel);
    const double line = StylePainting::hairline(painter);
    const QRectF foot(0, height() - line, width(), line);
    painter.fillRect(StylePainting::onDevicePixels(painter, foot), colors.tabLine);
}

void QXTabBar::keyPressEvent(QKeyEvent* event) {
    const auto last = static_cast<int>(m_tabs.size()) - 1;
    const int current = selectedIndex();
    int wanted = -1;
    switch (event->key()) {
    case Qt::Key_Left:
        wanted = std::max(0, current - 1);
        break;
    case Qt::Key_Right:
        wanted = std::min(last, current + 1);
        break;
    case Qt::Key_Home:
    case Qt::Key_Space:
        wanted = event->key() == Qt::Key_Home ? 0 : std::max(0, current);
        break;
    case Qt::Key_End:
        wanted = last;
        break;
    default:
        QWidget::keyPressEvent(event);
        return;
    }
    if (wanted >= 0 && wanted <= last && wanted != current)
        selectTabWithIndex(wanted);
}

void QXTabBar::showFocus() {
    for (std::size_t i = 0; i < m_tabs.size(); ++i) {
        const bool carries = m_selectedItem != nullptr ? m_tabs[i] == m_selectedItem : i == 0;
        m_tabs[i]->setShowsFocus(hasFocus() && carries);
    }
}

void QXTabBar::focusInEvent(QFocusEvent* event) {
    QWidget::focusInEvent(event);
    showFocus();
}

void QXTabBar::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    showFocus();
}
