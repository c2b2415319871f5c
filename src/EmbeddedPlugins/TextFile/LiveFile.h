// Follows the file of one data source on the disk: tells when it changed, and has it read by itself where
// the user wants that.
#pragma once

#include "EmbeddedPlugins/TextFile/FileWatcher.h"
#include "EmbeddedPlugins/TextFile/LiveStep.h"

#include <QElapsedTimer>
#include <QTimer>

/// What a followed file can ask of its source, and tell it.
class LiveFileSource {
  public:
    virtual bool isReadingFile() const = 0;
    virtual bool hasRowsOfFile() const = 0;
    /// Starts a read that the user did not ask for.
    virtual void readByItself() = 0;
    /// A file that could not be opened is back as it was when its data were read.
    virtual void fileIsBack() = 0;
    /// Called for every state of the file that was noticed, and when what was read is up to date again.
    virtual void setChangedOnDisk(bool changed) = 0;
    virtual void isLiveChanged() = 0;

  protected:
    ~LiveFileSource() = default;
};

/// Does nothing where no FileWatcher is shared. Main thread.
class LiveFile : public QObject {
    Q_OBJECT

  public:
    explicit LiveFile(LiveFileSource& source, QObject* parent = nullptr);
    ~LiveFile() override;

    /// A read of `path` (absolute or relative, with "~" or without) begins: it is followed from here on.
    void readBegins(const QString& path);
    /// What the read's open saw; absent when it was refused or the file has no stamp.
    void fileOpened(const std::optional<FileStamp>& stamp, bool refused);
    void readEnded(bool failed);
    /// Follows nothing until the next read.
    void stop();

  private:
    void look();
    LiveFacts facts();
    void setUpToDate();

    LiveFileSource& m_source;
    QString m_path; ///< as LiveFiles keeps it; empty while nothing is followed
    FileWatcher::Watch m_watch;
    bool m_isLive = false;
    bool m_hasNews = false; ///< something happened since the file was opened
    bool m_isInFault = false;
    bool m_hasGivenUp = false;
    std::optional<FileStamp> m_read;
    std::optional<FileStamp> m_offered; ///< the state that the source was told of last
    std::optional<LiveFacts::Time> m_lastRead;
    std::optional<LiveFacts::Time> m_awaySince;
    QElapsedTimer m_clock;
    QTimer m_timer;
};
