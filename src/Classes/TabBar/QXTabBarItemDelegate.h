// What a tab tells the bar it stands in.
#pragma once

class QXTabBarItem;

class QXTabBarItemDelegate {
  public:
    virtual ~QXTabBarItemDelegate() = default;

    virtual void onClick(QXTabBarItem& tab) = 0;
    /// The tab's close button was pressed.
    virtual void onClose(QXTabBarItem& tab) = 0;
};
