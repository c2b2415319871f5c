// A plain view in the colour of the plot's own background.
#pragma once

#include <QColor>
#include <QWidget>

/// Around the plot, so that there is no seam between them.
class PaperView : public QWidget {
    Q_OBJECT

  public:
    explicit PaperView(QWidget* parent = nullptr);

    void setPaper(const QColor& color);

    /// 0 to 1: lets the paper behind show through all that lies in this view.
    double opacity() const { return m_opacity; }
    void setOpacity(double opacity);

  Q_SIGNALS:
    void resized();
    /// In the view's own coordinates.
    void doubleClicked(QPoint position);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

  private:
    void veil();

    QColor m_paper = Qt::white;
    double m_opacity = 1;
    QWidget* m_veil = nullptr; ///< there while the view is not opaque
};
