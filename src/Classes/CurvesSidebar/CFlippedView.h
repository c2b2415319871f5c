// A plain view whose coordinates grow downwards.
#pragma once

#include <QWidget>

/// Every widget of the toolkit grows downwards; the class says so where a frame's direction matters.
class CFlippedView : public QWidget {
    Q_OBJECT

  public:
    using QWidget::QWidget;

    bool isFlipped() const { return true; }
};
