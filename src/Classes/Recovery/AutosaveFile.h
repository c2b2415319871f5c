// The file of one autosave, held by a lock as long as its program lives.
#pragma once

#include "Platform/Core/FileDescriptor.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// The lock lies on the file itself and goes with the process, however that ends: an autosave that can be
/// locked has nobody any more, whatever process has its number by now. Each new content is locked before it
/// gets the name, so that there is no moment without.
///
/// Used by one thread at a time. The file outlives the object; only `remove` takes it away.
class AutosaveFile {
  public:
    static constexpr const char* suffix = ".autosave";

    /// A name without meaning in that folder; nothing is on the disk until something is written.
    explicit AutosaveFile(const QString& folder);
    /// A file that somebody left, locked by that descriptor.
    AutosaveFile(QString path, FileDescriptor lock);

    const QString& path() const { return m_path; }

    /// Replaces the content in one step; makes the folder if need be. On failure returns the system's reason,
    /// and what was there before stays.
    std::optional<QString> write(const QByteArray& bytes);
    void remove();
    /// Gives the file a name by which it is not offered again, but can be looked into.
    void setAside();
    /// The path after `setAside`.
    static QString asidePath(const QString& path);

  private:
    QString m_path;
    FileDescriptor m_lock;
};
