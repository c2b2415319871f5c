// Encodes the picture and hands it to whoever keeps it.
#include "Classes/GraphViewController/ImageExport.h"

#include "Classes/PlotView/PngWriter.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QImageWriter>
#include <QMimeData>

#include <memory>
#include <optional>

namespace ImageExport {
namespace {

/// `encode` writes to the device it is given, and returns the reason of a failure.
template <class Encode>
PlacedFile::Result save(const QString& path, Encode encode) {
    QBuffer bytes;
    bytes.open(QIODevice::WriteOnly);
    if (const std::optional<QString> failure = encode(bytes))
        return {PlacedFile::Result::Outcome::Failed, *failure};
    return PlacedFile::write(path, bytes.data(), {.existing = PlacedFile::Existing::Keep});
}

} // namespace

bool copyToClipboard(const QImage& image) {
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    if (writePng(image, png))
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
    return save(path, [&](QIODevice& device) {
        QImageWriter writer(&device, "JPEG");
        writer.setQuality(100);
        return writer.write(image) ? std::nullopt : std::optional(writer.errorString());
    });
}

PlacedFile::Result saveAsPNG(const QImage& image, const QString& path) {
    return save(path, [&](QIODevice& device) { return writePng(image, device); });
}

} // namespace ImageExport
