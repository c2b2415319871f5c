// Reads the feed of releases: RSS 2.0, with or without the attributes of an appcast.
#pragma once

#include "Classes/Updates/Version.h"

#include <QByteArray>
#include <QString>
#include <QUrl>

#include <optional>

struct Release {
    Version version;
    QUrl page; ///< where it is offered, http or https; empty when the feed names no such page
};

namespace ReleaseFeed {

inline constexpr qsizetype mostBytes = qsizetype{1} << 20;

struct ReadResult {
    std::optional<Release> newest; ///< of the greatest version; the first of several equal ones
    QString error;                 ///< why there is none, e.g. "it names no version"
};

/// An item's version is that of its enclosure or element in the appcast's namespace, the short one first,
/// else the first in its title. Items for another system are passed over. Bounds: `mostBytes`, depth 32,
/// 1,000 items; document types, and with them entities, are refused. Never throws.
ReadResult read(const QByteArray& bytes);

} // namespace ReleaseFeed
