// Writes, locks and removes the file of an autosave.
#include "Classes/Recovery/AutosaveFile.h"

#include "Classes/Recovery/AutosaveFolder.h"
#include "Platform/Core/PlacedFile.h"

#include <QFile>
#include <QFileInfo>
#include <QUuid>

#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>

using namespace Qt::StringLiterals;

namespace {

constexpr unsigned fileMode = 0600;

} // namespace

AutosaveFile::AutosaveFile(const QString& folder)
    : m_path(folder + u'/' + QUuid::createUuid().toString(QUuid::WithoutBraces) + QLatin1String(suffix)) {}

AutosaveFile::AutosaveFile(QString path, FileDescriptor lock)
    : m_path(std::move(path)), m_lock(std::move(lock)) {}

std::optional<QString> AutosaveFile::write(const QByteArray& bytes) {
    if (auto reason = AutosaveFolder::make(QFileInfo(m_path).path()))
        return reason;
    FileDescriptor lock;
    const auto takeLock = [&](int descriptor) -> std::optional<QString> {
        lock = FileDescriptor(::fcntl(descriptor, F_DUPFD_CLOEXEC, 0)); // shares the lock of the original
        if (!lock.isOpen())
            return qt_error_string();
        // Where the file system has no locks, the process named within tells whether it is in use.
        ::flock(lock.get(), LOCK_EX | LOCK_NB);
        return std::nullopt;
    };
    const auto result = PlacedFile::write(m_path, bytes, {.mode = fileMode, .lastWord = takeLock});
    if (!result.isWritten())
        return result.reason;
    m_lock = std::move(lock);
    return std::nullopt;
}

void AutosaveFile::remove() {
    QFile::remove(m_path);
    m_lock = FileDescriptor();
}

QString AutosaveFile::asidePath(const QString& path) {
    return path + u".damaged"_qs;
}

void AutosaveFile::setAside() {
    ::rename(QFile::encodeName(m_path).constData(), QFile::encodeName(asidePath(m_path)).constData());
}
