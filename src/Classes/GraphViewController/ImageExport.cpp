// Encodes the picture and hands it to whoever keeps it.
#include "Classes/GraphViewController/ImageExport.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QImageWriter>
#include <QMimeData>

#include <memory>

namespace ImageExport {
namespace {

constexpr int usualQuality = -1;

PlacedFile::Result save(const QImage& image, const char* format, int quality, const QString& path) {
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    QImageWriter writer(&bytes, format);
    writer.setQuality(quality);
    if (!writer.write(image))
        return {PlacedFile::Result::Outcome::Failed, writer.errorString()};
    return PlacedFile::write(path, bytes.data(), {.existing = PlacedFile::Existing::Keep});
}

} // namespace

bool copyToClipboard(const QImage& image) {
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    if (!image.save(&png, "PNG"))
        return false;
    auto contents = std::make_unique<QMimeData>();
    // The bytes come first: other programs ask for them, and a picture alone would be encoded for each
    // request.
    contents->setData(QStringLiteral("image/png"), png.data());
    contents->setImageData(image);
    QGuiApplication::clipboard()->setMimeData(contents.release());
    return true;
}

PlacedFile::Result saveAsJPEG(const QImage& image, const QString& path) {
    return save(image, "JPEG", 100, path);
}

PlacedFile::Result saveAsPNG(const QImage& image, const QString& path) {
    return save(image, "PNG", usualQuality, path);
}

} // namespace ImageExport
