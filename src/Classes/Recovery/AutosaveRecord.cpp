// The document's own property list goes in unchanged, under one key of an envelope.
#include "Classes/Recovery/AutosaveRecord.h"

#include "Classes/WindowControllers/DocumentController.h"

#include <QFile>

#include <climits>

using namespace Qt::StringLiterals;

namespace {

constexpr int formatVersion = 1;
constexpr qsizetype longestName = 255;

namespace Key {
constexpr QLatin1String version("VelquinAutosave");
constexpr QLatin1String document("Document");
constexpr QLatin1String name("Name");
constexpr QLatin1String savedAt("SavedAt");
constexpr QLatin1String editedSince("EditedSince");
constexpr QLatin1String originalPath("OriginalPath");
constexpr QLatin1String workingFolder("WorkingFolder");
constexpr QLatin1String originalSize("OriginalSize");
constexpr QLatin1String originalHash("OriginalHash");
constexpr QLatin1String processId("ProcessId");
constexpr QLatin1String processStart("ProcessStart");
constexpr QLatin1String endedOnDemand("EndedOnDemand");
} // namespace Key

/// One line that can be shown.
QString shownName(const QVariant& value) {
    const QString name = value.toString().simplified().left(longestName);
    return name.isEmpty() ? DocumentController::tr("Untitled") : name;
}

/// An absolute path that was kept as bytes; empty if that is none.
QString pathOf(const QVariant& value) {
    const QByteArray path = value.toByteArray();
    const bool isPath = path.startsWith('/') && path.size() < PATH_MAX && !path.contains('\0');
    return isPath ? QFile::decodeName(path) : QString();
}

QDateTime localTime(const QVariant& value) {
    const QDateTime time = value.toDateTime();
    return time.isValid() ? time.toLocalTime() : QDateTime::currentDateTime();
}

} // namespace

QVariantMap AutosaveRecord::toPlist() const {
    QVariantMap plist{{Key::version, formatVersion},
                      {Key::document, document.plist},
                      {Key::name, name},
                      {Key::savedAt, savedAt},
                      {Key::editedSince, document.editedSince},
                      {Key::workingFolder, QFile::encodeName(document.workingFolder)},
                      {Key::processId, process.id},
                      {Key::processStart, process.start},
                      {Key::endedOnDemand, endedOnDemand}};
    if (!document.filePath.isEmpty()) // as bytes: a file's name need not be text
        plist[Key::originalPath] = QFile::encodeName(document.filePath);
    if (document.onDisk) {
        plist[Key::originalSize] = document.onDisk->size;
        plist[Key::originalHash] = document.onDisk->hash;
    }
    return plist;
}

bool AutosaveRecord::isOfLaterVersion(const QVariant& root) {
    return root.toMap()[Key::version].toLongLong() > formatVersion;
}

std::optional<AutosaveRecord> AutosaveRecord::fromPlist(const QVariant& root) {
    const QVariantMap plist = root.toMap();
    if (plist[Key::version].toInt() != formatVersion ||
        plist[Key::document].typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    AutosaveRecord record{
        .document = {.plist = plist[Key::document].toMap(),
                     .filePath = {},
                     .onDisk = {},
                     .editedSince = localTime(plist[Key::editedSince]),
                     .workingFolder = {}},
        .name = shownName(plist[Key::name]),
        .savedAt = localTime(plist[Key::savedAt]),
        .process = {plist[Key::processId].toLongLong(), plist[Key::processStart].toULongLong()},
        .endedOnDemand = plist[Key::endedOnDemand].toBool()};
    record.document.filePath = pathOf(plist[Key::originalPath]);
    record.document.workingFolder = pathOf(plist[Key::workingFolder]);
    if (plist.contains(Key::originalHash))
        record.document.onDisk = {plist[Key::originalSize].toLongLong(),
                                  plist[Key::originalHash].toByteArray()};
    return record;
}
