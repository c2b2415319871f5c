// Paints the paper, and a veil over all that lies on it.
#include "Classes/GraphViewController/PaperView.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

#include <utility>

namespace {

/// Lies over everything, for the mouse as if it were not there. An effect of the toolkit would leave out the
/// views that cover all they paint.
class Veil : public QWidget {
  public:
    Veil(QWidget* parent, const QColor& color) : QWidget(parent), m_color(color) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setGeometry(parent->rect());
        raise();
        show();
    }

  protected:
    void paintEvent(QPaintEvent* event) override { QPainter(this).fillRect(event->rect(), m_color); }

  private:
    const QColor m_color;
};

} // namespace

PaperView::PaperView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void PaperView::setPaper(const QColor& color) {
    m_paper = color;
    veil();
    update();
}

void PaperView::setOpacity(double opacity) {
    m_opacity = opacity;
    veil();
}

void PaperView::veil() {
    delete std::exchange(m_veil, nullptr);
    if (m_opacity >= 1)
        return;
    QColor color = m_paper;
    color.setAlphaF(static_cast<float>(1 - m_opacity));
    m_veil = new Veil(this, color);
}

void PaperView::paintEvent(QPaintEvent* event) {
    QPainter(this).fillRect(event->rect(), m_paper);
}

void PaperView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    veil();
    Q_EMIT resized();
}

void PaperView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        Q_EMIT doubleClicked(event->position().toPoint());
}
