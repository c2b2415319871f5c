// The line at the foot of a document's window: one message, and values in columns that do not jump.
#pragma once

#include "Platform/Core/XViewController.h"

#include <QWidget>

#include <vector>

class QHBoxLayout;
class QLabel;

/// Its texts can be selected and copied.
class StatusLine : public QWidget {
    Q_OBJECT

  public:
    explicit StatusLine(QWidget* parent = nullptr);

    QString message() const { return m_message; }
    /// The one part that the keyboard reaches.
    QLabel* messageLabel() const { return m_messageLabel; }
    void setMessage(const QString& message);
    const Readouts& readouts() const { return m_readouts; }
    /// A column keeps its width while the labels stay the same, and widens for longer values.
    void setReadouts(const Readouts& readouts);

    QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    struct Column {
        QLabel* label;
        QLabel* value;
    };

    QLabel* addText(QPalette::ColorRole ink);
    void makeColumns(const Readouts& readouts);
    void elide();

    QHBoxLayout* m_layout;
    QLabel* m_messageLabel;
    std::vector<Column> m_columns;
    QString m_message;
    Readouts m_readouts;
};
