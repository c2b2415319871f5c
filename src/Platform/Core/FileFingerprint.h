// What a file held when it was last read or written, to notice that somebody else changed it.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

/// Of the bytes alone. Dates, owner and inode are left out on purpose: a touched file, or one that was
/// replaced by a copy of itself, has lost nothing that could be overwritten, and two writes within one tick
/// of the file system's clock are told apart nevertheless.
struct FileFingerprint {
    qint64 size = 0;
    QByteArray hash;

    static FileFingerprint of(const QByteArray& bytes);
    bool operator==(const FileFingerprint&) const = default;
};

enum class FileChange { None, Gone, Changed };

/// What became of the file. One that cannot be looked into counts as changed. Reads no more than what it
/// held.
FileChange changeSince(const FileFingerprint& known, const QString& path);
