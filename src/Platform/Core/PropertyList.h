// Property lists: XML written, XML and binary read, as variants.
#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <optional>

/// Values are QVariantMap (keys sorted), QVariantList, QString, bool, qint64 (or quint64), double, float
/// (written with its own shortest digits), QByteArray and QDateTime (years 1 to 9999, written to the second).
/// Doubles survive bit for bit, -0.0 included.
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

} // namespace PropertyList
