// Draws the part that is done.
#include "Classes/SmallViews/XMiniProgressIndicator.h"

#include "Core/ClampToInt.h"
#include "Platform/Core/MainThread.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/StylePainting.h"

#include <QPainter>
#include <QPointer>
#include <QThread>

XMiniProgressIndicator::XMiniProgressIndicator(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
}

void XMiniProgressIndicator::setPercentage(float percentage) {
    m_percentage.store(percentage, std::memory_order_relaxed);
    if (QThread::currentThread() == thread())
        percentageChanged();
    else
        MainThread::perform([self = QPointer(this)] {
            if (self != nullptr)
                self->percentageChanged();
        });
}

void XMiniProgressIndicator::percentageChanged() {
    const float done = percentage();
    const QString text = done > 0 && done < 100 ? tr("%1 %").arg(clampToInt(done)) : QString();
    if (text != accessibleDescription())
        setAccessibleDescription(text);
    update();
}

void XMiniProgressIndicator::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), currentColors().window);
    const auto done = static_cast<double>(percentage());
    if (done > 0 && done < 100) {
        const QRectF part(0, 0, width() * done / 100, height());
        painter.fillRect(StylePainting::onDevicePixels(painter, part), currentColors().text2);
    }
}
