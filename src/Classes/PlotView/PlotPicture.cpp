// Makes an image or a recorded page of the wanted size.
#include "Classes/PlotView/PlotPicture.h"

#include "Classes/PlotView/RecordedPicture.h"
#include "Core/ClampToInt.h"
#include "Platform/Core/WholeWrite.h"

#include <QBuffer>
#include <QFileInfo>
#include <QSaveFile>

#include <array>
#include <cmath>

using namespace Qt::StringLiterals;

QSize pixelsOf(PictureSize size) {
    return {clampToInt(std::round(size.width * size.scale)),
            clampToInt(std::round(size.height * size.scale))};
}

bool isVectorFormat(PictureFormat format) {
    return format == PictureFormat::Pdf || format == PictureFormat::Svg;
}

std::optional<PictureFormat> pictureFormatOfPath(const QString& path) {
    static const std::array<std::pair<QLatin1StringView, PictureFormat>, 5> endings{
        {{"png"_L1, PictureFormat::Png},
         {"jpg"_L1, PictureFormat::Jpeg},
         {"jpeg"_L1, PictureFormat::Jpeg},
         {"pdf"_L1, PictureFormat::Pdf},
         {"svg"_L1, PictureFormat::Svg}}};
    const QString suffix = QFileInfo(path).suffix().toLower();
    for (const auto& [ending, format] : endings)
        if (suffix == ending)
            return format;
    return std::nullopt;
}

QImage drawPicture(const PlotPictureOptions& options, PictureSize size) {
    return RecordedPicture(options, size, PictureFormat::Png).draw();
}

std::optional<QString> writePicture(QIODevice& device, PictureFormat format,
                                    const PlotPictureOptions& options, PictureSize size) {
    // Into memory first: neither painters nor encoders tell of a device that takes no more.
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    if (std::optional<QString> failure = RecordedPicture(options, size, format).encode(buffer))
        return failure;
    if (!writeWhole(device, buffer.data().constData(), buffer.size()))
        return device.errorString();
    return std::nullopt;
}

std::optional<QString> writePicture(const QString& path, const PlotPictureOptions& options,
                                    PictureSize size) {
    const std::optional<PictureFormat> format = pictureFormatOfPath(path);
    if (!format)
        return u"The file's ending is none of png, jpg, pdf and svg."_s;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return file.errorString();
    if (std::optional<QString> failure = writePicture(file, *format, options, size))
        return failure;
    return file.commit() ? std::nullopt : std::optional(file.errorString());
}
