// The slow parts of exporting a picture, for a thread of their own: a look at it, its size, and its file.
#pragma once

#include "Classes/PlotView/RecordedPicture.h"

#include <QImage>
#include <QSize>
#include <QString>

#include <optional>
#include <stop_token>

/// What a picture will be.
struct PictureSurvey {
    QImage preview;   ///< all of it, within the room it was given
    qint64 bytes = 0; ///< of its file
    QString failure;  ///< why it cannot be made; empty if it can
};

/// All of these may be called by any thread and end soon after a stop, with a result of no meaning.
namespace PictureWork {

/// `room` is in device pixels. A picture of up to 8 million pixels is encoded to know its size; of a larger
/// one the size is estimated from two smaller ones.
PictureSurvey survey(const RecordedPicture& picture, QSize room, const std::stop_token& stop);

/// Writes the file, which is there whole or as it was before. Returns the reason of a failure.
std::optional<QString> write(const RecordedPicture& picture, const QString& path,
                             const std::stop_token& stop);

} // namespace PictureWork
