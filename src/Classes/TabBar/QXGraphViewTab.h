// The tab of the plot, which never closes.
#pragma once

#include "Classes/TabBar/QXTabBarItem.h"

class QXGraphViewTab : public QXTabBarItem {
    Q_OBJECT

  public:
    explicit QXGraphViewTab(Controller viewController = {}, QWidget* parent = nullptr)
        : QXTabBarItem(CloseButton::No, std::move(viewController), parent) {}
};
