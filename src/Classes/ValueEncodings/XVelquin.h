// Where the program keeps what it makes for the user.
#pragma once

#include <QString>

#include <optional>

class XVelquin {
  public:
    /// The folder for snapshots, after the user defaults "SnapshotsDirType" and "SnapshotsDir": 1 the
    /// desktop, 2 and 4 "Velquin" among the pictures (made if missing), 3 the documents, else the stored
    /// path. Absent when there is none or when it cannot be made, which is logged; `failure` then gets path
    /// and reason.
    static std::optional<QString> snapshotsDirectory(QString* failure = nullptr);
    /// Stores a folder that the user chose.
    static void setSnapshotsDirectory(const QString& path);
};
