// Takes what is dropped anywhere in a document's window.
#pragma once

#include <QObject>
#include <QPointer>

#include <functional>

class QDropEvent;
class QWidget;
struct DroppedData;

/// Files are taken from text fields, too; texts are left to them. While a drag is over the window, its page
/// is outlined.
class WindowDrops : public QObject {
    Q_OBJECT

  public:
    using Dropped = std::function<void(const DroppedData&)>;

    WindowDrops(QWidget& window, QWidget& page, Dropped dropped);

  Q_SIGNALS:
    /// What a drop would do; empty when the drag is over.
    void messageChanged(const QString& message);

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    bool handle(QEvent& event);
    bool takesFromField(const QDropEvent& event) const;
    void setDragging(bool dragging);

    QWidget& m_window;
    QPointer<QWidget> m_outline;
    Dropped m_dropped;
    bool m_isDragging = false;
};
