// The data source that reads a delimited text file.
#pragma once

#include "Classes/DataSourcesManager/XDataSourceProtocol.h"
#include "Platform/Core/OperationQueue.h"

#include <QPointer>
#include <QTimer>

#include <cstdint>
#include <functional>
#include <memory>

class QIODevice;
class XPDataReader;

/// Main thread; `data` under its lock from any thread.
///
/// Reads are asked for with `read` and started from the event loop, one at a time: requests that come before
/// the start, or while a read is being cancelled, are one.
class XPTextFile : public XDataSourceProtocol {
    Q_OBJECT
    Q_PROPERTY(QString filename READ filename WRITE setFilename)
    OBSERVED(int, skiplines, setSkiplines, 0)
    OBSERVED(int, everyNthLine, setEveryNthLine, 1)
    Q_PROPERTY(int delimiterType READ delimiterType WRITE setDelimiterType)
    OBSERVED(bool, extractColumnNames, setExtractColumnNames, false)
    Q_PROPERTY(bool isLoading READ isLoading)
    Q_PROPERTY(double progress READ progress)
    Q_PROPERTY(QString readError READ readError)
    Q_PROPERTY(bool isLive READ isLive WRITE setLive)
    Q_PROPERTY(bool isChangedOnDisk READ isChangedOnDisk)

  public:
    static constexpr const char* identifier = "com.quarnix.textfile";
    static constexpr const char* name = "Text File";

    /// Makes the settings view of a source; handed in by the program, once.
    using ConfigViewMaker = std::function<std::unique_ptr<XViewController>(XPTextFile&)>;
    static void setConfigViewMaker(ConfigViewMaker maker);

    explicit XPTextFile(QObject* parent = nullptr);
    ~XPTextFile() override;

    QString pluginIdentifier() const override;
    QString pluginName() const override;
    std::optional<QVariantMap> plist() const override;
    void setPlist(const QVariantMap& settings) override;
    std::span<const char* const> kvoKeys() const override;
    std::unique_ptr<XViewController> configViewController() override;

    /// The path, perhaps with "~" for the home folder. Setting it renames the tab and adds it to the recent
    /// files.
    const QString& filename() const { return m_filename; }
    void setFilename(QString filename);
    /// The folder from which a relative name counts; the process's own until it is set. Not saved.
    void setWorkingFolder(const QString& folder) { m_workingFolder = folder; }
    /// Where the file lies: the home folder spelled out, and relative to the working folder of this process
    /// at most. Empty without a name.
    QString path() const;
    /// See XPDataReader. Setting 0 switches `extractColumnNames` off: numbers have no header line.
    int delimiterType() const { return m_delimiterType; }
    void setDelimiterType(int type);
    /// A field of the settings view was emptied: "skiplines", "everyNthLine" or "extractColumnNames" becomes
    /// 0.
    void setNilValueForKey(const char* key);

    bool read() override;
    void clean() override;
    bool isLoading() const override { return m_isLoading; }
    const QString& readError() const override { return m_readError; }
    /// Whether the file is read by itself whenever it changes. A setting of the user's for that path, in
    /// every document; nothing of the source's own, nothing to undo.
    bool isLive() const;
    void setLive(bool live);
    /// Whether the file is another one than the one that was read last. Announced for every newer state of
    /// the file, too. Only where a FileWatcher is shared.
    bool isChangedOnDisk() const { return m_isChangedOnDisk; }
    /// Whether the read that runs, or the latest one, was started because the file had changed.
    bool isReadByItself() const { return m_isReadByItself; }
    /// What part of the input was read, 0 to 1; NaN when no read runs or the length is unknown.
    double progress() const;
    std::uint64_t inputStreamLength() const { return m_inputStreamLength; }
    /// Bytes that the next tables may take, instead of a part of the machine's free memory.
    void setMemoryLimit(std::optional<std::uint64_t> bytes) { m_memoryLimit = bytes; }

    XTable data() const override;
    void setData(XTable table) override;
    QStringList columnNames() const override;
    std::mutex& tableMutex() const override { return m_tableMutex; }
    const QString& title() const override { return m_title; }
    void setTitle(QString title) override;

    /// Puts a path at the front of the user defaults' "TextFilePluginRecentFiles".
    void addFilenameToHistory(const QString& filename);
    bool isSandboxed() const { return false; }

  protected:
    /// Checks the input; false, with `readError` set, when there is none to read. Keeps what it opened.
    virtual bool initReadData();
    /// The stream of the input that was checked, and its length; null when there is none.
    virtual std::unique_ptr<QIODevice> createInputStream();
    void setReadError(const QString& reason);
    void setInputStreamLength(std::uint64_t length) { m_inputStreamLength = length; }

  private:
    class Follower;

    struct ReadResult {
        XTable table;
        QString error;
        bool failed = false;
    };

    void startRead();
    static void handOver(const QPointer<XPTextFile>& source, ReadResult result);
    void finishRead(const ReadResult& result);
    void closeReadData();
    void letGoOf(XTable table);
    void endLoading(bool failed);
    void setIsLoading(bool loading);
    void requestRead();

    QString m_title;
    QString m_filename;
    QString m_workingFolder;
    int m_delimiterType = 0;
    QString m_readError;
    std::unique_ptr<QIODevice> m_input;    ///< opened by `initReadData`
    std::uint64_t m_inputStreamLength = 0; ///< bytes; 0 when unknown
    std::optional<std::uint64_t> m_memoryLimit;
    bool m_isLoading = false;
    bool m_readRequested = false;
    bool m_isChangedOnDisk = false;
    bool m_isReadByItself = false;
    QTimer m_progressTimer;
    mutable std::mutex m_tableMutex;
    XTable m_data;
    mutable QStringList m_columnNames; ///< made when asked for; empty means not made
    /// Lets go of tables that nobody reads any more.
    std::shared_ptr<OperationQueue> m_disposal = std::make_shared<OperationQueue>(1);
    std::unique_ptr<Follower> m_follower;   ///< of the file on the disk
    std::unique_ptr<XPDataReader> m_reader; ///< last, so that its thread ends first
};
