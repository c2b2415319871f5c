// The strip under the menu bar in which the tab bars stand.
#pragma once

#include <QWidget>

class TabRow : public QWidget {
    Q_OBJECT

  public:
    using QWidget::QWidget;

  protected:
    void paintEvent(QPaintEvent* event) override;
};
