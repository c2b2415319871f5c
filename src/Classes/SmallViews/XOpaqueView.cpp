// Fills the view.
#include "Classes/SmallViews/XOpaqueView.h"

#include "Platform/Widgets/Appearance.h"

#include <QPaintEvent>
#include <QPainter>

XOpaqueView::XOpaqueView(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void XOpaqueView::paintEvent(QPaintEvent* event) {
    QPainter(this).fillRect(event->rect(), currentColors().window);
}
