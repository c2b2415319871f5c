// The zone on which files and texts are dropped.
#pragma once

#include <QString>
#include <QWidget>

class XDropHereDelegate;

/// Draws "drop_here", and "drop_here_hover" while something is dragged over it.
class XDropHereView : public QWidget {
    Q_OBJECT

  public:
    explicit XDropHereView(QWidget* parent = nullptr);

    /// Not owned. A drop without a delegate fails an assertion and is lost.
    void setDelegate(XDropHereDelegate* delegate) { m_delegate = delegate; }
    bool isDragging() const { return m_isDragging; }

    QSize sizeHint() const override;

  protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

  private:
    void setDragging(bool dragging);

    const QString m_dropzoneImage = QStringLiteral("drop_here");
    const QString m_dropzoneImage_hover = QStringLiteral("drop_here_hover");
    XDropHereDelegate* m_delegate = nullptr;
    bool m_isDragging = false;
};
