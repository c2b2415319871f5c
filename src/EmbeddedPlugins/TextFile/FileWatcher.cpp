// The system's events, which of them concern whom, and the notices made of them.
#include "EmbeddedPlugins/TextFile/FileWatcher.h"

#include "EmbeddedPlugins/TextFile/FileStamp.h"
#include "EmbeddedPlugins/TextFile/PathWalk.h"
#include "Platform/Core/MainThread.h"

#include <QFile>

#include <linux/magic.h>
#include <sys/inotify.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <limits>
#include <utility>

namespace {

constexpr std::uint32_t folderEvents =
    IN_CREATE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO | IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
constexpr std::uint32_t writeEvents = IN_MODIFY | IN_CLOSE_WRITE | IN_ATTRIB;
constexpr std::uint32_t fileEvents = writeEvents | IN_DELETE_SELF | IN_MOVE_SELF | IN_DONT_FOLLOW;

FileWatcher* theWatcher = nullptr;

/// What is written there by other machines causes no events here.
bool liesElsewhere(const std::string& file) {
    constexpr std::array<std::uint32_t, 8> remote{NFS_SUPER_MAGIC,  SMB_SUPER_MAGIC,  CIFS_SUPER_MAGIC,
                                                  SMB2_SUPER_MAGIC, FUSE_SUPER_MAGIC, V9FS_MAGIC,
                                                  CEPH_SUPER_MAGIC, AFS_SUPER_MAGIC};
    struct statfs fileSystem {};
    return statfs(file.c_str(), &fileSystem) == 0 &&
           std::ranges::find(remote, static_cast<std::uint32_t>(fileSystem.f_type)) != remote.end();
}

/// All that tells one state of a file from another; empty when there is no file.
std::string stateOf(const QString& path) {
    const std::optional<FileStamp> stamp = FileStamp::ofPath(path);
    return stamp ? QStringLiteral("%1 %2 %3 %4")
                       .arg(stamp->device)
                       .arg(stamp->inode)
                       .arg(stamp->size)
                       .arg(stamp->modified)
                       .toStdString()
                 : std::string();
}

} // namespace

void Settling::event(Time now) {
    if (!m_first)
        m_first = now;
    m_last = now;
}

std::optional<Settling::Time> Settling::due() const {
    return m_first ? std::optional(std::min(m_last + quiet, *m_first + longest)) : std::nullopt;
}

/// A path that is watched.
struct FileWatcher::Place {
    struct Entry {
        int watch;        ///< the system's number
        std::string name; ///< of what is watched in the folder; empty for the file itself
    };
    struct Listener {
        quint64 id;
        std::function<void()> changed;
    };

    QString path;
    std::vector<Listener> listeners;
    std::vector<Entry> entries;
    Settling settling;
    bool isPolled = false;
    std::string seen; ///< by the last look, when it is polled
};

/// Looks at a file; on a worker, since a machine that does not answer may keep it waiting.
class FileWatcher::Look : public Operation {
  public:
    Look(QPointer<FileWatcher> watcher, QString path)
        : m_watcher(std::move(watcher)), m_path(std::move(path)) {}

    void main() override {
        std::string seen = stateOf(m_path);
        if (!isCancelled())
            MainThread::perform([watcher = m_watcher, path = m_path, seen = std::move(seen)] {
                if (watcher != nullptr)
                    watcher->takeLook(path, seen);
            });
    }

  private:
    QPointer<FileWatcher> m_watcher; ///< for the main thread alone
    QString m_path;
};

FileWatcher::FileWatcher(QObject* parent) : FileWatcher(System{inotify_add_watch}, parent) {}

FileWatcher::FileWatcher(System system, QObject* parent)
    : QObject(parent), m_system(std::move(system)), m_inotify(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    m_clock.start();
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &FileWatcher::tell);
    connect(&m_pollTimer, &QTimer::timeout, this, &FileWatcher::poll);
    if (m_inotify < 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_inotify, QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, &FileWatcher::readEvents);
}

FileWatcher::~FileWatcher() {
    if (theWatcher == this)
        theWatcher = nullptr;
    m_notifier.reset();
    if (m_inotify >= 0)
        close(m_inotify);
}

FileWatcher* FileWatcher::shared() {
    return theWatcher;
}

void FileWatcher::setShared(FileWatcher* watcher) {
    theWatcher = watcher;
}

// ---- Who watches what

FileWatcher::Watch FileWatcher::watch(const QString& path, std::function<void()> changed) {
    if (m_notifier != nullptr)
        readEvents(); // what happened before concerns those before
    std::unique_ptr<Place>& place = m_places[path];
    const bool isNew = place == nullptr;
    if (isNew) {
        place = std::make_unique<Place>();
        place->path = path;
    }
    place->listeners.push_back({++m_lastId, std::move(changed)});
    if (isNew)
        arm(*place);
    return {this, m_lastId};
}

void FileWatcher::end(quint64 id) {
    for (auto place = m_places.begin(); place != m_places.end(); ++place) {
        if (std::erase_if(place->second->listeners, [id](const auto& each) { return each.id == id; }) == 0)
            continue;
        if (place->second->listeners.empty()) {
            m_places.erase(place);
            dropUnusedWatches();
        }
        return;
    }
}

/// Watches the way to the file as it is now; what it was before is no longer watched.
void FileWatcher::arm(Place& place) {
    place.entries.clear();
    place.isPolled = m_inotify < 0;
    const std::string file = walkPath(QFile::encodeName(place.path).toStdString(),
                                      [&](const std::string& folder, const std::string& name) {
                                          const int watch = addSystemWatch(place, folder, folderEvents);
                                          if (watch >= 0)
                                              place.entries.push_back({watch, name});
                                      });
    if (!file.empty() && FileStamp::ofPath(QFile::decodeName(file.c_str()))) {
        const int watch = addSystemWatch(place, file, fileEvents);
        if (watch >= 0)
            place.entries.push_back({watch, std::string()});
        place.isPolled = place.isPolled || liesElsewhere(file);
    }
    dropUnusedWatches();
    if (!place.isPolled)
        return;
    place.seen = stateOf(place.path);
    if (!m_pollTimer.isActive())
        m_pollTimer.start(m_system.pollInterval);
}

/// -1 when the system does not watch it; unless it is gone, the place is polled then.
int FileWatcher::addSystemWatch(Place& place, const std::string& path, std::uint32_t mask) {
    const int watch = m_inotify < 0 ? -1 : m_system.addWatch(m_inotify, path.c_str(), mask);
    if (watch >= 0)
        m_systemWatches[watch] = true;
    else if (errno != ENOENT && errno != ENOTDIR)
        place.isPolled = true;
    return watch;
}

void FileWatcher::dropUnusedWatches() {
    for (auto& [watch, isUsed] : m_systemWatches)
        isUsed = false;
    for (const auto& [path, place] : m_places)
        for (const Place::Entry& entry : place->entries)
            m_systemWatches[entry.watch] = true;
    std::erase_if(m_systemWatches, [this](const auto& each) {
        if (!each.second)
            inotify_rm_watch(m_inotify, each.first);
        return !each.second;
    });
}

// ---- Events

void FileWatcher::readEvents() {
    alignas(inotify_event) std::array<char, std::size_t{16} * 1024> buffer;
    ssize_t length = 0;
    while ((length = ::read(m_inotify, buffer.data(), buffer.size())) > 0) {
        for (std::size_t at = 0; at + sizeof(inotify_event) <= static_cast<std::size_t>(length);) {
            inotify_event event{};
            std::memcpy(&event, buffer.data() + at, sizeof event);
            const char* name = event.len > 0 ? buffer.data() + at + sizeof event : "";
            takeEvent(event.wd, event.mask, name);
            at += sizeof event + event.len;
        }
    }
    startTimer();
}

void FileWatcher::takeEvent(int watch, std::uint32_t mask, const char* name) {
    if ((mask & IN_IGNORED) != 0)
        m_systemWatches.erase(watch); // the system let go of it
    for (const auto& [path, place] : m_places) {
        const bool concerns = std::ranges::any_of(place->entries, [&](const Place::Entry& entry) {
            return entry.watch == watch && (*name == '\0' || entry.name == name);
        });
        if (!concerns && (mask & IN_Q_OVERFLOW) == 0)
            continue;
        place->settling.event(Settling::Time(m_clock.elapsed()));
        if ((mask & writeEvents) == 0)
            arm(*place);
    }
}

void FileWatcher::startTimer() {
    std::optional<Settling::Time> first;
    for (const auto& [path, place] : m_places)
        if (const auto due = place->settling.due(); due && (!first || *due < *first))
            first = due;
    if (first)
        m_timer.start(std::max(Settling::Time(0), *first - Settling::Time(m_clock.elapsed())));
    else
        m_timer.stop();
}

/// Listeners may end any watch, begin others, and let go of the watcher.
void FileWatcher::tell() {
    const QPointer<FileWatcher> self(this);
    const Settling::Time now(m_clock.elapsed());
    std::vector<std::pair<QString, quint64>> due;
    for (const auto& [path, place] : m_places) {
        if (place->settling.due().value_or(Settling::Time::max()) > now)
            continue;
        place->settling.told();
        for (const Place::Listener& listener : place->listeners)
            due.emplace_back(path, listener.id);
    }
    for (const auto& [path, id] : due) {
        const auto place = m_places.find(path);
        if (place == m_places.end())
            continue;
        const auto& listeners = place->second->listeners;
        const auto found = std::ranges::find(listeners, id, &Place::Listener::id);
        if (found == listeners.end())
            continue;
        const std::function<void()> changed = found->changed;
        changed();
        if (self == nullptr)
            return;
    }
    startTimer();
}

// ---- Looking from time to time

void FileWatcher::poll() {
    if (!m_looks.isIdle())
        return; // another machine lets one wait
    bool any = false;
    for (const auto& [path, place] : m_places) {
        any = any || place->isPolled;
        if (place->isPolled)
            m_looks.add(std::make_shared<Look>(QPointer<FileWatcher>(this), path));
    }
    if (!any)
        m_pollTimer.stop();
}

void FileWatcher::takeLook(const QString& path, const std::string& seen) {
    const auto place = m_places.find(path);
    if (place == m_places.end() || std::exchange(place->second->seen, seen) == seen)
        return;
    place->second->settling.event(Settling::Time(m_clock.elapsed()));
    startTimer();
}

FileWatcher::Watch::Watch(Watch&& other) noexcept
    : m_watcher(std::move(other.m_watcher)), m_id(std::exchange(other.m_id, 0)) {}

FileWatcher::Watch& FileWatcher::Watch::operator=(Watch&& other) noexcept {
    if (this != &other) {
        end();
        m_watcher = std::move(other.m_watcher);
        m_id = std::exchange(other.m_id, 0);
    }
    return *this;
}

void FileWatcher::Watch::end() {
    if (const quint64 id = std::exchange(m_id, 0); m_watcher != nullptr && id != 0)
        m_watcher->end(id);
}
