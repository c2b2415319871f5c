// A window that belongs to no document: made once, brought to the front, closed by Escape or Ctrl+W.
#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

/// Owns its window. The program does not go on for its sake. Main thread.
class XWindowController : public QObject {
    Q_OBJECT

  public:
    ~XWindowController() override;

    QWidget* window() const { return m_window; }
    /// A window that was closed comes back over the middle of the one in front.
    void makeKeyAndOrderFront();

  protected:
    explicit XWindowController(QObject* parent = nullptr);

  private:
    QPointer<QWidget> m_window;
};
