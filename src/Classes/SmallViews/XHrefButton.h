// A button that looks like a link.
#pragma once

#include <QAbstractButton>

/// Its whole title is underlined in the colour of links; the pointer over it is a hand.
class XHrefButton : public QAbstractButton {
    Q_OBJECT

  public:
    explicit XHrefButton(QWidget* parent = nullptr);

    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QFont titleFont() const;
};
