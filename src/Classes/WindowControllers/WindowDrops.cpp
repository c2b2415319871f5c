// Drags over a window and over its text fields.
#include "Classes/WindowControllers/WindowDrops.h"

#include "Classes/DropHere/DroppedData.h"
#include "Classes/DropHere/XDropHereView.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/StylePainting.h"

#include <QDropEvent>
#include <QMimeData>
#include <QPainter>
#include <QWidget>
#include <QWindow>

#include <utility>

namespace {

/// Lies over a page and lets the mouse through.
class PageOutline : public QWidget {
  public:
    explicit PageOutline(QWidget* page) : QWidget(page) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        hide();
    }

  protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        StylePainting::drawRing(painter, rect(), 0, 2, currentColors().accent);
    }
};

bool isDrag(QEvent::Type type) {
    return type == QEvent::DragEnter || type == QEvent::DragMove || type == QEvent::Drop;
}

bool carriesFile(const QDropEvent& event) {
    const auto dropped = DroppedData::from(*event.mimeData());
    return dropped && dropped->kind == DroppedData::Kind::File;
}

} // namespace

WindowDrops::WindowDrops(QWidget& window, QWidget& page, Dropped dropped)
    : QObject(&window), m_window(window), m_outline(new PageOutline(&page)), m_dropped(std::move(dropped)) {
    window.setAcceptDrops(true);
    window.installEventFilter(this);
}

bool WindowDrops::eventFilter(QObject* object, QEvent* event) {
    if (object == &m_window) {
        if (event->type() == QEvent::Show && m_window.windowHandle() != nullptr)
            m_window.windowHandle()->installEventFilter(this);
        return handle(*event);
    }
    // What the system's window gets, before it finds the widget under the pointer.
    if (!isDrag(event->type()) || !takesFromField(*static_cast<QDropEvent*>(event)))
        return false;
    return handle(*event);
}

bool WindowDrops::takesFromField(const QDropEvent& event) const {
    const QWidget* target = m_window.childAt(event.position().toPoint());
    while (target != nullptr && !target->acceptDrops())
        target = target->parentWidget();
    return target != nullptr && target != &m_window &&
           qobject_cast<const XDropHereView*>(target) == nullptr && carriesFile(event);
}

bool WindowDrops::handle(QEvent& event) {
    if (event.type() == QEvent::DragLeave) {
        setDragging(false);
        return true;
    }
    if (!isDrag(event.type()))
        return false;
    auto& drag = static_cast<QDropEvent&>(event);
    // A text of our own fields that misses its goal is no data.
    const bool isOwnText = drag.source() != nullptr && !drag.mimeData()->hasUrls();
    if (isOwnText)
        drag.ignore();
    const bool accepted = !isOwnText && acceptDrag(drag);
    const bool isDrop = event.type() == QEvent::Drop;
    setDragging(accepted && !isDrop);
    if (accepted && isDrop) {
        if (const auto dropped = DroppedData::from(*drag.mimeData()))
            m_dropped(*dropped);
    }
    return true;
}

void WindowDrops::setDragging(bool dragging) {
    if (std::exchange(m_isDragging, dragging) == dragging)
        return;
    if (m_outline != nullptr) {
        m_outline->setGeometry(m_outline->parentWidget()->rect());
        m_outline->raise();
        m_outline->setVisible(dragging);
    }
    // One, however many are dragged: the first counts.
    Q_EMIT messageChanged(dragging ? tr("Drop to add 1 data source") : QString());
}
