// Chooses the folder and checks whose it is.
#include "Classes/SingleInstance/InstancePlace.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>

#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

constexpr qsizetype longestReadableName = 40;
constexpr qsizetype longestSocketPath = sizeof(sockaddr_un::sun_path) - 1;
constexpr mode_t permissions = 0777;
constexpr mode_t privateFolder = 0700;

/// The folder itself, not what a link leads to.
std::optional<struct stat> statusOfFolder(const QByteArray& path) {
    struct stat status {};
    if (::lstat(path.constData(), &status) != 0 || !S_ISDIR(status.st_mode))
        return std::nullopt;
    return status;
}

bool isPrivate(const QByteArray& path, uid_t user) {
    const auto status = statusOfFolder(path);
    return status && status->st_uid == user && (status->st_mode & permissions) == privateFolder;
}

/// In such a folder nobody else can take away what is ours.
bool keepsWhatIsOurs(const QByteArray& path, uid_t user) {
    const auto status = statusOfFolder(path);
    const bool othersMayWrite = status && (status->st_mode & (S_IWGRP | S_IWOTH)) != 0;
    return status && (status->st_uid == user || status->st_uid == 0) &&
           (!othersMayWrite || (status->st_mode & S_ISVTX) != 0);
}

std::optional<QByteArray> madePrivate(const QByteArray& path, uid_t user) {
    ::mkdir(path.constData(), privateFolder); // fails when it is there; the check tells
    return isPrivate(path, user) ? std::optional(path) : std::nullopt;
}

std::optional<QByteArray> folderIn(const InstanceSurroundings& surroundings) {
    const QByteArray& runtime = surroundings.runtimeFolder;
    if (runtime.startsWith('/') && isPrivate(runtime, surroundings.user)) {
        if (auto folder = madePrivate(runtime + "/velquin", surroundings.user))
            return folder;
    }
    const QByteArray& temporary = surroundings.temporaryFolder;
    if (!temporary.startsWith('/') || !keepsWhatIsOurs(temporary, surroundings.user))
        return std::nullopt;
    return madePrivate(temporary + "/velquin-" + QByteArray::number(surroundings.user), surroundings.user);
}

/// ":0" and its first screen ":0.0" are one.
QByteArray withoutFirstScreen(QByteArray display) {
    if (display.endsWith(".0") && display.contains(':'))
        display.chop(2);
    return display;
}

} // namespace

InstanceSurroundings InstanceSurroundings::current() {
    return {.runtimeFolder = qgetenv("XDG_RUNTIME_DIR"),
            .temporaryFolder = QFile::encodeName(QDir::tempPath()),
            .waylandDisplay = qgetenv("WAYLAND_DISPLAY"),
            .x11Display = qgetenv("DISPLAY"),
            .platform = qgetenv("QT_QPA_PLATFORM"),
            .user = ::geteuid()};
}

std::optional<QByteArray> instanceName(const InstanceSurroundings& surroundings) {
    const QByteArray& platform = surroundings.platform;
    const bool mayUseWayland = platform.isEmpty() || platform.startsWith("wayland");
    const bool mayUseX11 = platform.isEmpty() || platform.startsWith("xcb");
    QByteArray display;
    if (mayUseWayland && !surroundings.waylandDisplay.isEmpty())
        display = "wayland " + surroundings.waylandDisplay;
    else if ((mayUseX11 || mayUseWayland) && !surroundings.x11Display.isEmpty())
        display = "x11 " + withoutFirstScreen(surroundings.x11Display);
    else
        return std::nullopt;
    const QByteArray name = display.toPercentEncoding(":", {}, '_');
    return name.size() <= longestReadableName
               ? name
               : QCryptographicHash::hash(display, QCryptographicHash::Sha256).toHex().first(32);
}

std::optional<InstancePlace> instancePlace(const InstanceSurroundings& surroundings) {
    const auto name = instanceName(surroundings);
    const auto folder = name ? folderIn(surroundings) : std::nullopt;
    if (!folder)
        return std::nullopt;
    const QByteArray path = *folder + '/' + *name;
    if (path.size() > longestSocketPath)
        return std::nullopt;
    return InstancePlace{path, path + ".lock", surroundings.user};
}
