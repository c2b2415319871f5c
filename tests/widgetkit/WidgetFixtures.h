// What several widget tests share: a view controller, deferred deletion, the colour of a drawn pixel.
#pragma once

#include "Platform/Core/MainThread.h"
#include "Platform/Core/XViewController.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
#include <QPointer>
#include <QWidget>

#include <memory>

/// A page with a plain view.
class FakePage : public XViewController {
  public:
    explicit FakePage(const char* title = "page") { setTitle(QString::fromUtf8(title)); }
    ~FakePage() override { delete m_view.data(); }

    QWidget* view() override { return m_view; }
    void onBecameVisible() override { ++becameVisible; }

    int becameVisible = 0;

  private:
    QPointer<QWidget> m_view = new QWidget;
};

/// Carries out what waits for a later round of events.
inline void finishDeletions() {
    MainThread::runUntil([] { return true; });
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
}

/// The widget and its children as they are drawn, `ratio` device pixels a logical one.
inline QImage drawn(QWidget& widget, double ratio = 1) {
    QImage image(widget.size() * ratio, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::magenta);
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren | QWidget::DrawWindowBackground);
    return image;
}
