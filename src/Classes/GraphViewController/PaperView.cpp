#include "Classes/GraphViewController/PaperView.h"

#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>

PaperView::PaperView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void PaperView::setPaper(const QColor& color) {
    m_paper = color;
    update();
}

void PaperView::paintEvent(QPaintEvent* event) {
    QPainter(this).fillRect(event->rect(), m_paper);
}

void PaperView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Q_EMIT resized();
}

void PaperView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        Q_EMIT doubleClicked(event->position().toPoint());
}
