#include "Classes/PlotView/XPlotView.h"

#include "Classes/PlotView/PainterCanvas.h"

#include <QPaintEvent>
#include <QPainter>

XPlotView::XPlotView(QWidget* parent) : QWidget(parent), m_scene([this] { update(); }) {
    setAttribute(Qt::WA_OpaquePaintEvent); // every paint covers all it was asked for
    setFocusPolicy(Qt::StrongFocus);
}

void XPlotView::paintEvent(QPaintEvent* event) {
    m_scene.setDevicePixelRatio(devicePixelRatioF()); // the window may have moved to another screen
    QPainter painter(this);
    PainterCanvas canvas(painter, height());
    const QRect dirty = event->rect();
    m_scene.draw(canvas,
                 QRectF(dirty.x(), height() - dirty.y() - dirty.height(), dirty.width(), dirty.height()));
}

void XPlotView::resizeEvent(QResizeEvent*) {
    m_scene.setBounds(size());
}
