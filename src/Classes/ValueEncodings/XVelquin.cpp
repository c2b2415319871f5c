// Maps the choice of the user to a folder of the desktop.
#include "Classes/ValueEncodings/XVelquin.h"

#include "Platform/Core/Log.h"
#include "Platform/Core/UserDefaults.h"

#include <QFile>
#include <QStandardPaths>

#include <filesystem>
#include <system_error>

namespace {

std::optional<QString> picturesFolder(QString* failure) {
    const QString path =
        QStandardPaths::writableLocation(QStandardPaths::PicturesLocation) + QStringLiteral("/Velquin");
    std::error_code error;
    std::filesystem::create_directories(path.toStdString(), error);
    if (!error)
        return path;
    const QString reason = QString::fromStdString(error.message());
    logMethod("+[XVelquin snapshotsDirectory]",
              QStringLiteral("Failed to create directory %1: %2").arg(path, reason));
    if (failure != nullptr)
        *failure = QStringLiteral("%1: %2").arg(path, reason);
    return std::nullopt;
}

} // namespace

std::optional<QString> XVelquin::snapshotsDirectory(QString* failure) {
    const UserDefaults& defaults = UserDefaults::standard();
    switch (defaults.integer(QStringLiteral("SnapshotsDirType"))) {
    case 1:
        return QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    case 2:
    case 4:
        return picturesFolder(failure);
    case 3:
        return QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    default:
        if (!defaults.contains(QStringLiteral("SnapshotsDir")))
            return std::nullopt;
        return defaults.string(QStringLiteral("SnapshotsDir"));
    }
}

void XVelquin::setSnapshotsDirectory(const QString& path) {
    UserDefaults& defaults = UserDefaults::standard();
    defaults.set(QStringLiteral("SnapshotsDir"), path);
    defaults.set(QStringLiteral("SnapshotsDirType"), 0);
    // No sandbox stands between the program and the folder: its name is all there is to keep.
    defaults.set(QStringLiteral("SnapshotsDirSecurityBookmark"), QFile::encodeName(path));
}
