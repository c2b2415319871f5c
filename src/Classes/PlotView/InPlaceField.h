// A text field that looks like the text it holds until it is edited.
#pragma once

#include <QLineEdit>
#include <QString>

class PlotCanvas;

/// Return and losing the focus keep what was typed; Escape brings back what was there before.
class InPlaceField : public QLineEdit {
    Q_OBJECT

  public:
    explicit InPlaceField(QWidget* parent = nullptr);

    /// Whether an editing session is under way: from getting the focus to losing it, a menu of the field
    /// itself included.
    bool isEditing() const { return m_isEditing; }

  Q_SIGNALS:
    void editingBegan();
    /// After the focus was lost. `kept` is false after Escape.
    void editingEnded(bool kept);
    /// A menu took the keyboard for a while; Escape now brings back the text of this moment.
    void interrupted();
    /// Return or Escape: whoever shows the field moves the focus on.
    void left();

  protected:
    /// Called instead of the field's own drawing while it is not edited; the canvas covers the field.
    virtual void paintAtRest(PlotCanvas& canvas) = 0;

    void paintEvent(QPaintEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    QString m_before; ///< the text when the session began
    bool m_isEditing = false;
    bool m_isKept = true;
};
