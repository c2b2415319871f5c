// A bar of overlapping tabs, one of them selected and shown in a client view.
#pragma once

#include "Classes/TabBar/QXTabBarItemDelegate.h"
#include "Platform/Core/NotificationCenter.h"

#include <QPointer>
#include <QString>
#include <QWidget>

#include <vector>

class QXTabBarDelegate;
class QXTabBarItem;

/// Bars with the same link identifier are one selection group: selecting a tab in one deselects all tabs of
/// the others. Tabs are children of their bar. With the keyboard focus on the bar, the arrow keys, Home and
/// End select. Main thread.
class QXTabBar : public QWidget, private QXTabBarItemDelegate {
    Q_OBJECT

  public:
    static constexpr int barHeight = 29;

    explicit QXTabBar(QWidget* parent = nullptr);
    ~QXTabBar() override;

    /// Where the selected tab's view is shown; may be absent.
    void setClientViewForTabControllers(QWidget* view);
    QWidget* clientViewForTabControllers() const { return m_clientView; }

    const QString& tabBarsLinkIdentifier() const { return m_linkIdentifier; }
    void setTabBarsLinkIdentifier(QString identifier) { m_linkIdentifier = std::move(identifier); }

    /// Free space at the ends, in points.
    void setPaddingLeft(int padding);
    void setPaddingRight(int padding);

    /// Asked before a tab closes; not owned. Without one, tabs do not close.
    void setDelegate(QXTabBarDelegate* delegate) { m_delegate = delegate; }

    const std::vector<QXTabBarItem*>& tabs() const { return m_tabs; }
    QXTabBarItem* selectedTab() const { return m_selectedItem; }
    int selectedIndex() const; ///< -1 when none is
    /// A bad index fails an assertion and gives null.
    QXTabBarItem* tabWithIndex(int index) const;

    /// Appends without selecting; returns the tab's index.
    int addTab(QXTabBarItem* tab);
    /// Inserts without changing the selection. A bad index fails an assertion and appends.
    int insertTabAtIndex(QXTabBarItem* tab, int index);
    /// The tab goes, with its view controller, after the event that is being handled.
    void removeTab(QXTabBarItem* tab);
    void removeTabAtIndex(int index);

    /// -1 selects nothing.
    void selectTabWithIndex(int index);

    void layoutTabs();
    void ensureVisibleTabWithIndex(int index);
    void onDrag();

    QSize sizeHint() const override { return {200, barHeight}; }
    QSize minimumSizeHint() const override { return {100, barHeight}; }

  Q_SIGNALS:
    void selectionChanged(int index);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void onClick(QXTabBarItem& tab) override;
    void onClose(QXTabBarItem& tab) override;

    void tabBarWillBeSelected(QObject* sender);
    int indexOf(const QXTabBarItem* tab) const;
    void hideContent();
    void showContent();
    void restack();
    void showFocus();

    std::vector<QXTabBarItem*> m_tabs;
    QXTabBarItem* m_selectedItem = nullptr;
    QPointer<QWidget> m_clientView;
    QString m_linkIdentifier;
    QXTabBarDelegate* m_delegate = nullptr;
    int m_paddingLeft = 0;
    int m_paddingRight = 0;
    NotificationCenter::Registration m_registration;
};
