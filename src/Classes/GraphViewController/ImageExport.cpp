#include "Classes/GraphViewController/ImageExport.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <memory>

namespace ImageExport {

void copyToClipboard(const QImage& image) {
    QBuffer png;
    png.open(QIODevice::WriteOnly);
    image.save(&png, "PNG");
    auto contents = std::make_unique<QMimeData>();
    // The bytes come first: other programs ask for them, and a picture alone would be encoded for each
    // request.
    contents->setData(QStringLiteral("image/png"), png.data());
    contents->setImageData(image);
    QGuiApplication::clipboard()->setMimeData(contents.release());
}

bool saveAsJPEG(const QImage& image, const QString& path) {
    return image.save(path, "JPEG", 100);
}

bool saveAsPNG(const QImage& image, const QString& path) {
    return image.save(path, "PNG");
}

} // namespace ImageExport
