// Opens data files: regular files only, so that nothing blocks.
#pragma once

#include "EmbeddedPlugins/TextFile/FileStamp.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>

class QFile;

struct InputFile {
    std::unique_ptr<QFile> file;    ///< open and unbuffered; null when it was refused
    std::uint64_t length = 0;       ///< bytes; 0 for files that the system makes up as they are read
    std::optional<FileStamp> stamp; ///< of the file that was opened
    QString refusal;                ///< why, in the system's words: "No such file or directory"
};

/// The path with "~" or "~/" at its start as the home folder.
QString expandedPath(const QString& path);

/// Opens `path`, where "~" and "~/" stand for the home folder and links are followed. Refuses an empty path,
/// folders, and what is no regular file (a FIFO, socket or device would block, or worse).
InputFile openInputFile(const QString& path);
