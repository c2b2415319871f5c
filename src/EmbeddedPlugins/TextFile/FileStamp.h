// What a data file was at one moment, to tell later whether it is another one now.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

/// Of a regular file that may be read. Files that the system makes up as they are read have none, since they
/// are never the same.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;     ///< bytes
    std::int64_t modified = 0; ///< nanoseconds since the epoch
    std::int64_t taken = 0;    ///< by this machine's clock, nanoseconds since the epoch

    static std::optional<FileStamp> ofDescriptor(int descriptor);
    static std::optional<FileStamp> ofPath(const QString& path); ///< follows links
};

/// Whether other bytes may stand in the file now than when `before` was taken. Owner, rights and the time of
/// reading do not count. A file that was written within the clock tick in which `before` was taken may have
/// been written once more within that tick: it counts as changed.
bool hasChanged(const FileStamp& before, const FileStamp& now);
