// What a tab bar asks and tells when the user closes a tab.
#pragma once

class QXTabBar;

class QXTabBarDelegate {
  public:
    virtual ~QXTabBarDelegate() = default;

    /// Whether the tab may close. A delegate must answer this: the default fails an assertion and refuses.
    virtual bool tabBarWillCloseTabWithIndex(QXTabBar& bar, int index);
    /// The tab has left the bar; the bar selects its neighbour afterwards.
    virtual void tabBarDidCloseTabWithIndex(QXTabBar& bar, int index);
};
