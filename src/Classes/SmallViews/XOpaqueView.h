// A view that covers all of its area with the colour of the window.
#pragma once

#include <QWidget>

/// What lies behind it need not be drawn.
class XOpaqueView : public QWidget {
    Q_OBJECT

  public:
    explicit XOpaqueView(QWidget* parent = nullptr);

    bool isOpaque() const { return true; }

  protected:
    void paintEvent(QPaintEvent* event) override;
};
