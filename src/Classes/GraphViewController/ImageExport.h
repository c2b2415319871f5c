// A finished picture to the clipboard or into a file.
#pragma once

#include <QImage>
#include <QString>

namespace ImageExport {

/// Replaces the clipboard's contents. Main thread.
void copyToClipboard(const QImage& image);
/// Best quality; returns whether the file was written. What was there before is overwritten in place.
bool saveAsJPEG(const QImage& image, const QString& path);
bool saveAsPNG(const QImage& image, const QString& path);

} // namespace ImageExport
