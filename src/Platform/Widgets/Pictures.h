// The program's pictures: vectors, drawn in the colours of the theme at the ratio of the screen.
#pragma once

#include "Platform/Widgets/ThemeColors.h"

#include <QCursor>
#include <QIcon>
#include <QPixmap>
#include <QSize>
#include <QString>

/// Pictures are known by the name of their file without its ending. Their colours are written as entities
/// named like the fields of `ThemeColors`; "ink" is the one colour of an icon.
namespace Pictures {

bool exists(const QString& name);

/// The size a picture was drawn for, in logical pixels; null for an unknown name.
QSize size(const QString& name);

/// In the colours of `theme`; `ratio` device pixels a logical one. An unknown name fails an assertion and
/// gives a null pixmap. An empty size is the picture's own.
QPixmap pixmap(const QString& name, double ratio, Theme theme, QSize size = {});

/// The same with "ink" in a colour of one's own: a notice's glyph, a point shape.
QPixmap tinted(const QString& name, const QColor& ink, double ratio, QSize size = {});

/// An icon that follows theme, ratio and state by itself: text2, text under the pointer or the selection,
/// accent when on, disabled.
QIcon icon(const QString& name);

/// The icon of windows and of the program, drawn at the sizes from 16 to 256.
QIcon applicationIcon();

/// "cursor_zoom" (hot spot 10,10) and "cursor_ruler" (11,11).
QCursor zoomCursor(double ratio);
QCursor rulerCursor(double ratio);

} // namespace Pictures
