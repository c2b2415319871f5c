// Tells when what stands at a path may have become another: written to, replaced, removed, come back.
#pragma once

#include "Platform/Core/OperationQueue.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// Makes one notice of a burst of events: a while after the last, or after the first if they do not end.
class Settling {
  public:
    using Time = std::chrono::milliseconds;

    static constexpr Time quiet{150};
    static constexpr Time longest{500};

    void event(Time now);
    /// When the notice is due; nothing while there was no event.
    std::optional<Time> due() const;
    void told() { m_first.reset(); }

  private:
    std::optional<Time> m_first;
    Time m_last{};
};

/// Every folder on the way to a file is watched for the one name that the way takes, and the file itself for
/// writes; links are followed, and their folders are watched, too. Files that cannot be watched (the system
/// has no watches left, or the file lies on another machine) are looked at every two seconds instead.
/// Main thread.
class FileWatcher : public QObject {
    Q_OBJECT

  public:
    struct System {
        /// As inotify_add_watch, or what a test puts in its place.
        std::function<int(int, const char*, std::uint32_t)> addWatch;
        std::chrono::milliseconds pollInterval{2000};
    };

    explicit FileWatcher(QObject* parent = nullptr);
    explicit FileWatcher(System system, QObject* parent = nullptr);
    ~FileWatcher() override;

    /// The program's, or null: then nobody watches. The watcher takes itself back when it goes.
    static FileWatcher* shared();
    static void setShared(FileWatcher* watcher);

    /// Ends the notices when it goes; it may outlive the watcher.
    class Watch {
      public:
        Watch() = default;
        ~Watch() { end(); }
        Watch(Watch&& other) noexcept;
        Watch& operator=(Watch&& other) noexcept;
        Watch(const Watch&) = delete;
        Watch& operator=(const Watch&) = delete;
        void end();

      private:
        friend class FileWatcher;
        Watch(FileWatcher* watcher, quint64 id) : m_watcher(watcher), m_id(id) {}
        QPointer<FileWatcher> m_watcher;
        quint64 m_id = 0;
    };

    /// Calls `changed` whenever something happened at the absolute path and then was quiet for a moment: not
    /// always did the file change. Watches of one path share what the system has to do for them.
    [[nodiscard]] Watch watch(const QString& path, std::function<void()> changed);

    /// What the system watches for all of them; for tests.
    std::size_t systemWatchCount() const { return m_systemWatches.size(); }

  private:
    struct Place;
    class Look;

    void end(quint64 id);
    void arm(Place& place);
    int addSystemWatch(Place& place, const std::string& path, std::uint32_t mask);
    void dropUnusedWatches();
    void readEvents();
    void takeEvent(int watch, std::uint32_t mask, const char* name);
    void startTimer();
    void tell();
    void poll();
    void takeLook(const QString& path, const std::string& seen);

    System m_system;
    int m_inotify = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    std::map<QString, std::unique_ptr<Place>> m_places;
    std::map<int, bool> m_systemWatches; ///< by the system's number; whether one is in use
    quint64 m_lastId = 0;
    QElapsedTimer m_clock;
    QTimer m_timer;
    QTimer m_pollTimer;
    OperationQueue m_looks{1}; ///< last: it ends before what its results go to
};
