// A finished picture to the clipboard or into a file.
#pragma once

#include "Platform/Core/PlacedFile.h"

#include <QImage>
#include <QString>

namespace ImageExport {

/// Replaces the clipboard's contents; false, leaving them, when the picture cannot be encoded. Main thread.
bool copyToClipboard(const QImage& image);
/// Best quality, into a new file that is there whole or not at all; a name that is taken stays as it is. Any
/// thread.
PlacedFile::Result saveAsJPEG(const QImage& image, const QString& path);
PlacedFile::Result saveAsPNG(const QImage& image, const QString& path);

} // namespace ImageExport
