// One line over the table of a settings page: what was noticed, and one click that mends it.
#pragma once

#include <QPointer>
#include <QString>
#include <QWidget>

class NoticeButton;
class QVariantAnimation;
class XHoverButton;

/// Takes the room between the settings and the table: little while it shows nothing, unfolding for a notice.
class NoticeBar : public QWidget {
    Q_OBJECT

  public:
    explicit NoticeBar(QWidget* parent = nullptr);

    /// Shows a notice, announced to assistive technology; an empty text folds the bar. Without `action` there
    /// is no button.
    void showNotice(const QString& text, const QString& action, bool isFault);
    const QString& text() const { return m_text; }

  Q_SIGNALS:
    void actionClicked();
    void dismissed();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void layOut();
    int openHeight() const;
    void unfold(bool open);

    QString m_text;
    bool m_isFault = false;
    QWidget* m_box; ///< clips what lies in the notice while it unfolds
    NoticeButton* m_action;
    XHoverButton* m_close;
    QPointer<QVariantAnimation> m_unfolding;
};
