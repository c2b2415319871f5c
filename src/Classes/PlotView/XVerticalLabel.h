// A label that reads upwards: the title of the y axis beside the plot.
#pragma once

#include <QColor>
#include <QFont>
#include <QString>
#include <QWidget>

/// Clicked with the mouse or by Return, Space or F2, it asks to be edited.
class XVerticalLabel : public QWidget {
    Q_OBJECT

  public:
    explicit XVerticalLabel(QWidget* parent = nullptr);

    const QString& stringValue() const { return m_stringValue; }
    void setStringValue(const QString& value);
    void setTextColor(const QColor& color);
    void setBackgroundColor(const QColor& color); ///< white at first

  Q_SIGNALS:
    void clicked();

  protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    QString m_stringValue;
    QColor m_textColor = Qt::black;
    QColor m_backgroundColor = Qt::white;
};
