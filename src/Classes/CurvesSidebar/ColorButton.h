// A button that shows a colour and lets the user choose another one.
#pragma once

#include <QColor>
#include <QPointer>
#include <QPushButton>

class QColorDialog;

/// While the dialog is open, each colour tried is announced; whoever shows them puts the first one back when
/// the choice was not accepted.
class ColorButton : public QPushButton {
    Q_OBJECT

  public:
    explicit ColorButton(QWidget* parent = nullptr);

    const QColor& color() const { return m_color; }
    void setColor(const QColor& color);
    /// Opens the dialog over the window; does nothing while it is open.
    void chooseColor();
    QColorDialog* dialog() const;

  Q_SIGNALS:
    void choiceBegan();
    void colorTried(const QColor& color);
    void choiceEnded(bool accepted);

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    QColor m_color;
    QPointer<QColorDialog> m_dialog;
};
