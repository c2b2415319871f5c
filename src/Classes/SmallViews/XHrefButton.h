// A button that looks like a link.
#pragma once

#include <QAbstractButton>

/// Its whole title is underlined in the colour of links; the pointer over it is a hand. Without a ring around
/// it, the line thickens under the keyboard's focus. Return presses it, too.
class XHrefButton : public QAbstractButton {
    Q_OBJECT

  public:
    explicit XHrefButton(QWidget* parent = nullptr);

    /// The ring around it while it has the focus; on at first.
    void setFocusRing(bool on);

    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
};
