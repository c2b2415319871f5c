// Paints the line that the tabs stand on.
#include "Classes/WindowControllers/TabRow.h"

#include "Platform/Widgets/Appearance.h"

#include <QPaintEvent>
#include <QPainter>

void TabRow::paintEvent(QPaintEvent* event) {
    QPainter(this).fillRect(event->rect(), currentColors().bezel);
}
