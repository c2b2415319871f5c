// Compares sizes first: the bytes are read only if they can be the same.
#include "Platform/Core/FileFingerprint.h"

#include <QCryptographicHash>
#include <QFile>

#include <cerrno>
#include <sys/stat.h>

FileFingerprint FileFingerprint::of(const QByteArray& bytes) {
    return {bytes.size(), QCryptographicHash::hash(bytes, QCryptographicHash::Blake2b_256)};
}

FileChange changeSince(const FileFingerprint& known, const QString& path) {
    struct stat status = {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0)
        return errno == ENOENT || errno == ENOTDIR ? FileChange::Gone : FileChange::Changed;
    if (!S_ISREG(status.st_mode) || status.st_size != known.size)
        return FileChange::Changed;
    QFile file(path);
    const bool isSame =
        file.open(QIODevice::ReadOnly) && FileFingerprint::of(file.read(known.size)) == known && file.atEnd();
    return isSame ? FileChange::None : FileChange::Changed;
}
