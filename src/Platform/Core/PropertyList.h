// Property lists: XML written, XML and binary read, as variants.
#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <functional>
#include <optional>

/// Values are QVariantMap (keys sorted), QVariantList, QString, bool, qint64 (or quint64), double, float
/// (written with its own shortest digits), QByteArray and QDateTime. Doubles survive bit for bit, -0.0
/// included.
namespace PropertyList {

struct ReadResult {
    std::optional<QVariant> value; ///< absent if the bytes are no property list
    QString error;                 ///< why, without the file's name, e.g. "nested too deeply"
};

/// Reads XML or binary. Bounds: depth 512; entities are refused. Never throws, never crashes on hostile
/// input.
ReadResult read(const QByteArray& bytes);

/// The XML form, with a trailing newline. Control characters that XML cannot carry become U+FFFD.
QByteArray writeXml(const QVariant& value);

/// Whether the bytes begin as a property list does: to tell documents from data files.
bool looksLikePropertyList(const QByteArray& firstBytes);

struct FileError {
    QString reason; ///< the system's words, e.g. "No space left on device"
};
/// Asked with the new file, whole and synced, right before it takes the old one's name; a reason gives the
/// writing up.
using LastWord = std::function<std::optional<FileError>(int descriptor)>;
/// What the temporary file's name begins with; one stays behind when the program is killed meanwhile.
inline constexpr const char* temporaryPrefix = ".velquin-";

/// Writes through a temporary file beside `path` and a rename: the old file or the new one, never a part.
/// Follows links, keeps the mode (a new file gets `mode` without the user's mask), syncs file and folder,
/// leaves no stray file. Any thread.
std::optional<FileError> writeAtomically(const QString& path, const QByteArray& bytes,
                                         const LastWord& lastWord = {}, unsigned mode = 0666);

} // namespace PropertyList
