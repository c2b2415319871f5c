// Snapshots as files, each named after the second in which it was taken.
#pragma once

#include "Platform/Core/OperationQueue.h"
#include "Platform/Core/PlacedFile.h"

#include <QDateTime>
#include <QImage>
#include <QObject>
#include <QString>

#include <functional>
#include <map>

/// Encodes and writes in the background, one after the other. A file that has the name already is kept: the
/// snapshot then waits for the next second and its name. Main thread.
class SnapshotWriter : public QObject {
    Q_OBJECT

  public:
    using Clock = std::function<QDateTime()>;

    explicit SnapshotWriter(QObject* parent = nullptr);
    /// Ends with everything written; what waits for a second takes its name at once.
    ~SnapshotWriter() override;

    /// In place of the system's, which tells local time.
    void setClock(Clock clock) { m_clock = std::move(clock); }

    /// `format` is the user default "SnapshotsFormat".
    void write(const QImage& image, const QString& folder, int format);

    /// Kept: 1 is JPEG and 0 is PNG, but any other number is JPEG under the extension "png".
    static QString pathOf(const QString& folder, const QDateTime& time, int format);

  Q_SIGNALS:
    void written(const QString& path);
    void failed(const QString& path, const QString& reason);

  private:
    struct Snapshot {
        QImage image;
        QString folder;
        int format;
        QDateTime time;

        PlacedFile::Result save() const;
    };

    void add(const Snapshot& snapshot);
    void saved(Snapshot snapshot, const PlacedFile::Result& result);
    void wait(const Snapshot& snapshot);
    static void saveNow(Snapshot snapshot);

    Clock m_clock = [] { return QDateTime::currentDateTime(); };
    std::map<int, Snapshot> m_waiting; ///< for their seconds
    int m_nextKey = 0;
    bool m_isEnding = false;
    OperationQueue m_queue{1}; ///< last: its end serves what it hands over
};
