// Writes one after the other; a name that is taken waits for the next second.
#include "Classes/GraphViewController/SnapshotWriter.h"

#include "Classes/GraphViewController/ImageExport.h"
#include "Platform/Core/Log.h"
#include "Platform/Core/MainThread.h"

#include <QTimer>

#include <algorithm>
#include <exception>
#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

using Outcome = PlacedFile::Result::Outcome;

constexpr qint64 aSecond = 1000;

class Writing : public Operation {
  public:
    explicit Writing(std::function<void()> work) : m_work(std::move(work)) {}
    void main() override { m_work(); }

  private:
    std::function<void()> m_work;
};

} // namespace

SnapshotWriter::SnapshotWriter(QObject* parent) : QObject(parent) {}

SnapshotWriter::~SnapshotWriter() {
    m_isEnding = true;
    for (const auto& [key, snapshot] : std::exchange(m_waiting, {}))
        saveNow(snapshot);
}

QString SnapshotWriter::pathOf(const QString& folder, const QDateTime& time, int format) {
    return u"%1/%2.%3"_s.arg(folder, time.toString(u"yyyy-MM-dd HH.mm.ss"_s),
                             format == 1 ? u"jpg"_s : u"png"_s);
}

PlacedFile::Result SnapshotWriter::Snapshot::save() const {
    const QString path = pathOf(folder, time, format);
    return format != 0 ? ImageExport::saveAsJPEG(image, path) : ImageExport::saveAsPNG(image, path);
}

void SnapshotWriter::write(const QImage& image, const QString& folder, int format) {
    add({image, folder, format, m_clock()});
}

void SnapshotWriter::add(const Snapshot& snapshot) {
    m_queue.add(std::make_shared<Writing>([this, snapshot] {
        PlacedFile::Result result;
        try {
            result = snapshot.save();
        } catch (const std::exception& error) {
            result = {Outcome::Failed, QString::fromUtf8(error.what())};
        }
        // The queue's end serves this, so there is someone to tell.
        MainThread::performAndWait([&] { saved(snapshot, result); });
    }));
}

void SnapshotWriter::saved(Snapshot snapshot, const PlacedFile::Result& result) {
    if (result.outcome == Outcome::NameTaken) {
        snapshot.time = snapshot.time.addSecs(1);
        m_isEnding ? saveNow(snapshot) : wait(snapshot);
        return;
    }
    const QString path = pathOf(snapshot.folder, snapshot.time, snapshot.format);
    if (m_isEnding)
        return;
    if (result.isWritten())
        Q_EMIT written(path);
    else
        Q_EMIT failed(path, result.reason);
}

void SnapshotWriter::wait(const Snapshot& snapshot) {
    const QDateTime due = snapshot.time.addMSecs(-snapshot.time.time().msec());
    const int key = m_nextKey++;
    m_waiting.emplace(key, snapshot);
    // A clock that was set back must not hold a picture for longer.
    QTimer::singleShot(std::clamp<qint64>(m_clock().msecsTo(due), 0, aSecond), this,
                       [this, key] { add(m_waiting.extract(key).mapped()); });
}

void SnapshotWriter::saveNow(Snapshot snapshot) {
    PlacedFile::Result result = snapshot.save();
    while (result.outcome == Outcome::NameTaken) {
        snapshot.time = snapshot.time.addSecs(1);
        result = snapshot.save();
    }
    if (!result.isWritten())
        logMethod("SnapshotWriter::saveNow", result.reason);
}
