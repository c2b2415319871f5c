// The number fields of a curve's row.
#pragma once

#include <QSpinBox>
#include <QTimer>

/// Has no arrows: the arrow and page keys step it, and the wheel while it has the focus. Steps that follow
/// each other within `pauseMilliseconds` are one burst; a typed number stands for itself, and its commit ends
/// the field's own history of undo. The blank before the unit goes where there is no room for it.
class SpinField : public QSpinBox {
    Q_OBJECT

  public:
    static constexpr int pauseMilliseconds = 800;

    explicit SpinField(QWidget* parent = nullptr);

    void stepBy(int steps) override;
    bool isInBurst() const { return m_isInBurst; }
    /// Does not wait for another step.
    void endBurst();

  Q_SIGNALS:
    /// Before the first step of a burst, and after its last one: when the steps pause, when the focus goes,
    /// when something is typed or Control is pressed.
    void burstBegan();
    void burstEnded();

  protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    void fitUnit();

    QString m_unit; ///< as it was set first, with its blank
    QTimer m_pause;
    bool m_isInBurst = false;
    bool m_isTyped = false; ///< since the last commit
};
