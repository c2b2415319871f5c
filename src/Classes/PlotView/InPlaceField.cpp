// Shows the field of the style while it is edited, and its text alone otherwise.
#include "Classes/PlotView/InPlaceField.h"

#include "Classes/PlotView/PainterCanvas.h"

#include <QKeyEvent>
#include <QPainter>

#include <utility>

InPlaceField::InPlaceField(QWidget* parent) : QLineEdit(parent) {
    setFrame(false);
    setAutoFillBackground(false);
}

void InPlaceField::paintEvent(QPaintEvent* event) {
    if (m_isEditing) {
        QLineEdit::paintEvent(event);
        return;
    }
    QPainter painter(this);
    PainterCanvas canvas(painter, height());
    paintAtRest(canvas);
}

void InPlaceField::focusInEvent(QFocusEvent* event) {
    QLineEdit::focusInEvent(event);
    if (std::exchange(m_isEditing, true))
        return;
    m_before = text();
    m_isKept = true;
    Q_EMIT editingBegan();
}

void InPlaceField::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() == Qt::PopupFocusReason) {
        m_before = text();
        Q_EMIT interrupted();
        return;
    }
    if (!std::exchange(m_isEditing, false))
        return;
    deselect();
    update();
    Q_EMIT editingEnded(m_isKept);
}

void InPlaceField::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        m_isKept = false;
        setText(m_before);
        Q_EMIT left();
        return;
    }
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    QLineEdit::keyPressEvent(event);
    if (isReturn)
        Q_EMIT left();
}
