// Takes drags and hands drops over.
#include "Classes/DropHere/XDropHereView.h"

#include "Classes/DropHere/DroppedData.h"
#include "Classes/DropHere/XDropHereDelegate.h"
#include "Core/Assertions.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/Pictures.h"

#include <QDragEnterEvent>
#include <QPainter>
#include <QPointer>

XDropHereView::XDropHereView(QWidget* parent) : QWidget(parent) {
    setAcceptDrops(true);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize XDropHereView::sizeHint() const {
    return Pictures::size(m_dropzoneImage);
}

void XDropHereView::setDragging(bool dragging) {
    m_isDragging = dragging;
    update();
}

void XDropHereView::dragEnterEvent(QDragEnterEvent* event) {
    if (acceptDrag(*event))
        setDragging(true);
}

void XDropHereView::dragLeaveEvent(QDragLeaveEvent*) {
    setDragging(false);
}

void XDropHereView::dropEvent(QDropEvent* event) {
    const auto dropped = acceptDrag(*event) ? DroppedData::from(*event->mimeData()) : std::nullopt;
    setDragging(false);
    if (!dropped)
        return;
    if (dropped->kind == DroppedData::Kind::File) {
        if (xAssert(m_delegate != nullptr, "Delegate doesn't respond to fileDropped:onDropzone:"))
            m_delegate->fileDroppedOnDropzone(dropped->text, *this);
    } else if (xAssert(m_delegate != nullptr, "Delegate doesn't respond to textDropped:onDropzone:")) {
        m_delegate->textDroppedOnDropzone(dropped->text, *this);
    }
}

void XDropHereView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.drawPixmap(0, 0,
                       Pictures::pixmap(m_isDragging ? m_dropzoneImage_hover : m_dropzoneImage,
                                        devicePixelRatioF(), Appearance::instance().theme()));
}
