// Looks through the folder, trusting nothing that lies there.
#include "Classes/Recovery/AutosaveFolder.h"

#include "Platform/Core/Log.h"
#include "Platform/Core/PlacedFile.h"
#include "Platform/Core/PropertyList.h"

#include <QDateTime>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype mostLeft = 100;
constexpr off_t greatestAutosave = 257LL * 1024 * 1024; ///< a document's bound, and its envelope
constexpr qint64 mostBytes = 512LL * 1024 * 1024; ///< that are held at once; the rest waits for another start
constexpr qint64 interruptedAfterSeconds = 3600;
constexpr mode_t folderMode = 0700;

/// Why a file can never be offered; a `system_error` says that it cannot be now.
struct Unusable : std::runtime_error {
    using std::runtime_error::runtime_error;
};

void makeFolders(const QString& folder) {
    const QByteArray name = QFile::encodeName(folder);
    if (::mkdir(name.constData(), folderMode) == 0 || errno == EEXIST)
        return;
    const qsizetype slash = folder.lastIndexOf(u'/');
    if (errno != ENOENT || slash <= 0)
        failWithErrno();
    makeFolders(folder.left(slash));
    if (::mkdir(name.constData(), folderMode) != 0 && errno != EEXIST)
        failWithErrno();
}

/// The user's own folder, for the user alone.
void checkFolder(const QString& folder) {
    const FileDescriptor opened(
        ::open(QFile::encodeName(folder).constData(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status = {};
    if (!opened.isOpen() || ::fstat(opened.get(), &status) != 0)
        failWithErrno();
    if (status.st_uid != ::geteuid())
        throw std::system_error(EPERM, std::generic_category());
    if ((status.st_mode & 07777) != folderMode && ::fchmod(opened.get(), folderMode) != 0)
        failWithErrno();
}

bool isSameFile(const struct stat& one, const QByteArray& path) {
    struct stat other = {};
    return ::lstat(path.constData(), &other) == 0 && one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

QByteArray contentOf(const FileDescriptor& descriptor) {
    QFile file;
    QByteArray bytes;
    if (file.open(descriptor.get(), QIODevice::ReadOnly))
        bytes = file.read(greatestAutosave);
    if (file.error() != QFileDevice::NoError)
        throw std::system_error(EIO, std::generic_category(), file.errorString().toStdString());
    return bytes;
}

/// Absent if a living program holds it, or it went meanwhile.
std::optional<LeftAutosave> take(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    FileDescriptor opened(::open(name.constData(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status = {};
    if (!opened.isOpen() && errno == ENOENT)
        return std::nullopt;
    if (!opened.isOpen() && (errno == ELOOP || errno == EISDIR || errno == ENXIO)) // a socket is the last
        throw Unusable("not a file");
    if (!opened.isOpen() || ::fstat(opened.get(), &status) != 0)
        failWithErrno();
    if (!S_ISREG(status.st_mode) || status.st_uid != ::geteuid())
        throw Unusable("not a file of this user");
    if (status.st_size > greatestAutosave)
        throw Unusable("too large");
    const bool isLocked = ::flock(opened.get(), LOCK_EX | LOCK_NB) == 0;
    if (!isLocked && errno == EWOULDBLOCK)
        return std::nullopt;
    if (!isSameFile(status, name)) // its program replaced or removed it while it was opened here
        return std::nullopt;
    const PropertyList::ReadResult content = PropertyList::read(contentOf(opened));
    auto record = AutosaveRecord::fromPlist(content.value.value_or(QVariant()));
    if (content.value && AutosaveRecord::isOfLaterVersion(*content.value))
        return std::nullopt;
    if (!record)
        throw Unusable(content.error.isEmpty() ? "not an autosave" : content.error.toStdString());
    if (!isLocked && record->process.isRunning())
        return std::nullopt;
    return LeftAutosave{std::make_shared<AutosaveFile>(path, std::move(opened)), std::move(*record)};
}

/// A program that was killed while it wrote leaves its temporary file.
void removeInterruptedWrites(const QDir& folder) {
    const QDateTime bound = QDateTime::currentDateTime().addSecs(-interruptedAfterSeconds);
    const QString pattern = QLatin1String(PlacedFile::temporaryPrefix) + u'*';
    for (const QFileInfo& file : folder.entryInfoList({pattern}, QDir::Files | QDir::Hidden | QDir::System)) {
        if (file.lastModified() < bound)
            QFile::remove(file.filePath());
    }
}

} // namespace

QString AutosaveFolder::standardPath() {
    QString state = qEnvironmentVariable("XDG_STATE_HOME");
    if (!QDir::isAbsolutePath(state))
        state = QDir::homePath() + u"/.local/state"_qs;
    return QDir::cleanPath(state) + u"/velquin/autosave"_qs;
}

std::optional<QString> AutosaveFolder::make(const QString& folder) {
    try {
        makeFolders(folder);
        checkFolder(folder);
    } catch (const std::system_error& failure) {
        return QString::fromLocal8Bit(failure.code().message().c_str());
    }
    return std::nullopt;
}

std::vector<LeftAutosave> AutosaveFolder::takeLeft(const QString& path, const std::stop_token& stop) {
    const QDir folder(path);
    if (!folder.exists())
        return {};
    if (const auto reason = make(path)) {
        qCWarning(velquinLog, "autosaves in %s: %s", qUtf8Printable(path), qUtf8Printable(*reason));
        return {};
    }
    removeInterruptedWrites(folder);
    std::vector<LeftAutosave> left;
    const QString pattern = u'*' + QLatin1String(AutosaveFile::suffix);
    const QStringList names =
        folder.entryList({pattern}, QDir::AllEntries | QDir::Hidden | QDir::System, QDir::Time);
    qint64 bytes = 0;
    for (const QString& name : names.first(std::min(names.size(), mostLeft))) {
        if (stop.stop_requested())
            break;
        const QString file = folder.filePath(name);
        bytes += std::min<qint64>(QFileInfo(file).size(), greatestAutosave);
        if (bytes > mostBytes)
            break;
        try {
            if (auto taken = take(file))
                left.push_back(std::move(*taken));
        } catch (const Unusable& unusable) {
            qCWarning(velquinLog, "autosave %s: %s", qUtf8Printable(file), unusable.what());
            AutosaveFile(file, FileDescriptor()).setAside();
        } catch (const std::system_error& failure) {
            qCWarning(velquinLog, "autosave %s: %s", qUtf8Printable(file), failure.what());
        }
    }
    std::stable_sort(left.begin(), left.end(), [](const LeftAutosave& one, const LeftAutosave& other) {
        return one.record.savedAt > other.record.savedAt;
    });
    return left;
}
