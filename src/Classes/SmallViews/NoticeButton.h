// The button of a notice, and the colours that notices and faults have.
#pragma once

#include <QAbstractButton>
#include <QColor>

struct NoticeColors {
    QColor text, fill, edge;

    static NoticeColors current(bool isFault);
};

/// Outlined in the ink of its notice.
class NoticeButton : public QAbstractButton {
    Q_OBJECT

  public:
    explicit NoticeButton(QWidget* parent = nullptr);

    void setFault(bool isFault) { m_isFault = isFault; }
    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    bool m_isFault = false;
};
