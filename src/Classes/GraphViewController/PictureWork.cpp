// Draws the picture small for a look, and encodes samples of it for its size.
#include "Classes/GraphViewController/PictureWork.h"

#include "Classes/GraphViewController/ExportChoices.h"
#include "Platform/Core/FreeMemory.h"
#include "Platform/Core/PlacedFile.h"

#include <QBuffer>

#include <algorithm>
#include <cmath>
#include <exception>
#include <variant>

using namespace Qt::StringLiterals;

namespace {

constexpr double pixelsToEncode = 8e6;
constexpr double smallSample = 1e6;
constexpr double largeSample = 4e6;
constexpr int finer = 2; ///< a preview is drawn so much larger and scaled down, which keeps its text readable

/// Takes no more once it was stopped, which ends the encoders.
class StoppableBuffer : public QBuffer {
  public:
    explicit StoppableBuffer(std::stop_token stop) : m_stop(std::move(stop)) { open(QIODevice::WriteOnly); }

  protected:
    qint64 writeData(const char* bytes, qint64 size) override {
        return m_stop.stop_requested() ? -1 : QBuffer::writeData(bytes, size);
    }

  private:
    std::stop_token m_stop;
};

using Encoded = std::variant<QByteArray, QString>; ///< or the reason of a failure

Encoded encoded(const RecordedPicture& picture, const std::stop_token& stop) {
    try {
        StoppableBuffer buffer(stop);
        if (std::optional<QString> failure = picture.encode(buffer, stop))
            return *failure;
        return buffer.data();
    } catch (const std::exception& error) {
        return QString::fromUtf8(error.what());
    }
}

double areaOf(const RecordedPicture& picture) {
    const QSize size = picture.pixels();
    return static_cast<double>(size.width()) * size.height();
}

/// Curve and image of it: two pictures in memory at once.
QString noMemory() {
    return ExportPicture::tr("There is no memory for a picture of this size.");
}

bool fitsIntoMemory(const RecordedPicture& picture) {
    return isVectorFormat(picture.format()) ||
           areaOf(picture) * 8 < static_cast<double>(FreeMemory::tableLimit());
}

/// The size grows with a power of the area, which two samples show: marks and edges grow slower than areas.
std::variant<qint64, QString> estimatedBytes(const RecordedPicture& picture, const std::stop_token& stop) {
    double sizes[2] = {};
    const double areas[] = {smallSample, largeSample};
    for (int i = 0; i < 2; ++i) {
        const double scale = picture.scale() * std::sqrt(areas[i] / areaOf(picture));
        const Encoded sample = encoded(picture.scaled(scale), stop);
        if (const auto* failure = std::get_if<QString>(&sample))
            return *failure;
        sizes[i] = static_cast<double>(std::get<QByteArray>(sample).size());
    }
    const double power =
        std::clamp(std::log(sizes[1] / sizes[0]) / std::log(largeSample / smallSample), 0.3, 1.0);
    return static_cast<qint64>(sizes[1] * std::pow(areaOf(picture) / largeSample, power));
}

std::variant<qint64, QString> bytesOf(const RecordedPicture& picture, const std::stop_token& stop) {
    if (!fitsIntoMemory(picture))
        return noMemory();
    if (!isVectorFormat(picture.format()) && areaOf(picture) > pixelsToEncode)
        return estimatedBytes(picture, stop);
    const Encoded whole = encoded(picture, stop);
    if (const auto* failure = std::get_if<QString>(&whole))
        return *failure;
    return std::get<QByteArray>(whole).size();
}

QImage previewOf(const RecordedPicture& picture, QSize room, const std::stop_token& stop) {
    const QSizeF points = picture.points();
    const double fit = std::min(room.width() / points.width(), room.height() / points.height());
    const QSize size = (points * fit).toSize().expandedTo({1, 1});
    QImage large = picture.scaled(fit * finer).draw(stop);
    if (large.isNull())
        return large;
    large.setDevicePixelRatio(1);
    return large.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
}

} // namespace

PictureSurvey PictureWork::survey(const RecordedPicture& picture, QSize room, const std::stop_token& stop) {
    PictureSurvey survey;
    survey.preview = previewOf(picture, room, stop);
    const auto bytes = bytesOf(picture, stop);
    if (const auto* failure = std::get_if<QString>(&bytes))
        survey.failure = *failure;
    else
        survey.bytes = std::get<qint64>(bytes);
    return survey;
}

std::optional<QString> PictureWork::write(const RecordedPicture& picture, const QString& path,
                                          const std::stop_token& stop) {
    if (!fitsIntoMemory(picture))
        return noMemory();
    const Encoded bytes = encoded(picture, stop);
    if (const auto* failure = std::get_if<QString>(&bytes))
        return *failure;
    if (stop.stop_requested())
        return ExportPicture::tr("It was cancelled.");
    const PlacedFile::Result result = PlacedFile::write(path, std::get<QByteArray>(bytes));
    return result.isWritten() ? std::nullopt : std::optional(result.reason);
}
