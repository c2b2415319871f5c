// The shape and shading of a tab.
#pragma once

#include <QPainterPath>
#include <QSizeF>

class QPainter;

namespace TabPainting {

enum class Outline { Solid, Dashed };

/// The tab's sides and top, from the left foot corner to the right one, `inset` inside its frame. Each side
/// leans in by a third of the height; the top corners are rounded.
QPainterPath outline(QSizeF size, double inset);

/// The tab without its words: the selected one is the flap of its page and has no foot; the others lie in the
/// page's shadow.
void draw(QPainter& painter, QSizeF size, bool selected, Outline style);

} // namespace TabPainting
