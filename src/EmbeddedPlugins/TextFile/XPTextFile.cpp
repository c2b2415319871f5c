// Settings, reads and the table of a text file; and the factory of this kind and of the text editor's.
#include "EmbeddedPlugins/TextFile/XPTextFile.h"

#include "Classes/PlotModel/PlistValues.h"
#include "Core/Assertions.h"
#include "EmbeddedPlugins/TextEditor/XPTextEditor.h"
#include "EmbeddedPlugins/TextFile/InputFile.h"
#include "EmbeddedPlugins/TextFile/LiveFile.h"
#include "EmbeddedPlugins/TextFile/LiveFiles.h"
#include "EmbeddedPlugins/TextFile/XPDataReader.h"
#include "EmbeddedPlugins/TextFile/XPTextFileFactory.h"
#include "Platform/Core/FreeMemory.h"
#include "Platform/Core/MainThread.h"
#include "Platform/Core/NotificationCenter.h"
#include "Platform/Core/UserDefaults.h"
#include "Platform/Core/XViewController.h"

#include <QDir>
#include <QFile>
#include <QStringDecoder>

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <system_error>
#include <utility>

namespace {

/// Giving back the memory of so many cells takes long enough to be felt.
constexpr std::uint64_t manyCells = 1 << 20;

class TableRelease : public Operation {
  public:
    explicit TableRelease(XTable table) : m_table(std::move(table)) {}

    void main() override { m_table.reset(); }

  private:
    XTable m_table;
};

constexpr int progressIntervalMs = 40;
constexpr int defaultMaxRecentFiles = 15;

XPTextFile::ConfigViewMaker& fileViewMaker() {
    static XPTextFile::ConfigViewMaker maker;
    return maker;
}

/// "b" of "/a/b" and of "/a/b/".
QString lastPathComponent(const QString& path) {
    QStringView rest = path;
    while (rest.size() > 1 && rest.endsWith(u'/'))
        rest.chop(1);
    return rest.size() > 1 ? rest.mid(rest.lastIndexOf(u'/') + 1).toString() : rest.toString();
}

/// A name as the file has it, a byte-order mark included.
QString nameFromUtf8(const std::string& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::ConvertInitialBom);
    return decoder.decode(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

} // namespace

/// What the file that is followed does to its source.
class XPTextFile::Follower final : public LiveFileSource {
  public:
    explicit Follower(XPTextFile& source) : m_source(source), file(*this) {}

  private:
    bool isReadingFile() const override { return m_source.isLoading(); }
    bool hasRowsOfFile() const override {
        const XTable table = m_source.data();
        return table != nullptr && table->rowsNumber() > 0 && table->columnsNumber() > 0;
    }
    void readByItself() override {
        m_source.m_isReadByItself = true;
        m_source.requestRead();
    }
    void fileIsBack() override { m_source.setReadError(QString()); }
    void setChangedOnDisk(bool changed) override {
        m_source.assign(m_source.m_isChangedOnDisk, changed, "isChangedOnDisk");
    }
    void isLiveChanged() override { m_source.announce("isLive", {}, m_source.isLive()); }

    XPTextFile& m_source;

  public:
    LiveFile file; ///< last: it tells the rest
};

XPTextFile::XPTextFile(QObject* parent)
    : XDataSourceProtocol(parent), m_title(QStringLiteral("[No file]")),
      m_follower(std::make_unique<Follower>(*this)) {
    m_progressTimer.setInterval(progressIntervalMs);
    connect(&m_progressTimer, &QTimer::timeout, this, [this] { announce("progress", {}, progress()); });
}

/// The end of a queue serves what waits for the main thread, such as the start of a read: it comes when
/// nothing of this object is left that could be found.
XPTextFile::~XPTextFile() {
    MainThread::perform([disposal = std::move(m_disposal)] {});
}

void XPTextFile::setConfigViewMaker(ConfigViewMaker maker) {
    fileViewMaker() = std::move(maker);
}

std::unique_ptr<XViewController> XPTextFile::configViewController() {
    return fileViewMaker() ? fileViewMaker()(*this) : nullptr;
}

QString XPTextFile::pluginIdentifier() const {
    return QLatin1String(identifier);
}

QString XPTextFile::pluginName() const {
    return QLatin1String(name);
}

std::span<const char* const> XPTextFile::kvoKeys() const {
    static constexpr std::array<const char*, 5> keys{"filename", "skiplines", "delimiterType", "everyNthLine",
                                                     "extractColumnNames"};
    return keys;
}

// ---- Settings

std::optional<QVariantMap> XPTextFile::plist() const {
    return QVariantMap{{QStringLiteral("Filename"), filename()},
                       {QStringLiteral("Skiplines"), qint64{skiplines()}},
                       {QStringLiteral("EveryNthLine"), qint64{everyNthLine()}},
                       {QStringLiteral("DelimiterType"), qint64{delimiterType()}},
                       {QStringLiteral("ExtractColumnNames"), extractColumnNames()}};
}

void XPTextFile::setPlist(const QVariantMap& settings) {
    setFilename(PlistValues::string(settings.value(QStringLiteral("Filename"))).value_or(QString()));
    setSkiplines(PlistValues::integer(settings.value(QStringLiteral("Skiplines"))));
    setEveryNthLine(PlistValues::integer(settings.value(QStringLiteral("EveryNthLine"))));
    setDelimiterType(PlistValues::integer(settings.value(QStringLiteral("DelimiterType"))));
    // Kept: after the delimiter type, so that a header switch saved along with type 0 stays on.
    setExtractColumnNames(PlistValues::boolean(settings.value(QStringLiteral("ExtractColumnNames"))));
    addFilenameToHistory(filename());
}

QString XPTextFile::path() const {
    const QString path = expandedPath(m_filename);
    return path.isEmpty() || m_workingFolder.isEmpty() ? path : QDir(m_workingFolder).absoluteFilePath(path);
}

void XPTextFile::setFilename(QString filename) {
    const bool wasLive = isLive();
    const QString old = std::exchange(m_filename, std::move(filename));
    setTitle(m_filename.isEmpty() ? QStringLiteral("[No file]") : lastPathComponent(m_filename));
    addFilenameToHistory(m_filename);
    announce("filename", old, m_filename);
    if (isLive() != wasLive)
        announce("isLive", wasLive, isLive());
}

bool XPTextFile::isLive() const {
    return LiveFiles::contains(path());
}

// NOLINTNEXTLINE(readability-make-member-function-const): it changes what all sources of that file do
void XPTextFile::setLive(bool live) {
    LiveFiles::set(path(), live); // which tells all sources of that file
}

void XPTextFile::setDelimiterType(int type) {
    const int old = std::exchange(m_delimiterType, type);
    if (type == 0)
        setExtractColumnNames(false);
    announce("delimiterType", old, type);
}

void XPTextFile::setNilValueForKey(const char* key) {
    if (std::strcmp(key, "skiplines") == 0)
        setSkiplines(0);
    else if (std::strcmp(key, "everyNthLine") == 0)
        setEveryNthLine(0);
    else if (std::strcmp(key, "extractColumnNames") == 0)
        setExtractColumnNames(false);
}

void XPTextFile::setTitle(QString title) {
    assign(m_title, std::move(title), "title");
}

void XPTextFile::addFilenameToHistory(const QString& filename) {
    if (filename.isEmpty())
        return;
    UserDefaults& defaults = UserDefaults::standard();
    const QString key = QStringLiteral("TextFilePluginRecentFiles");
    const int wanted = defaults.integer(QStringLiteral("MaxRecentFiles"));
    const int maximum = wanted == 0 ? defaultMaxRecentFiles : wanted;
    QStringList recent = defaults.stringList(key);
    recent.removeAll(filename);
    // Kept: trimmed before the insertion, so the list may hold one more than the maximum.
    while (recent.size() > std::max(maximum, 0))
        recent.removeLast();
    recent.prepend(filename);
    defaults.set(key, recent);
}

// ---- Reading

bool XPTextFile::initReadData() {
    m_follower->file.readBegins(path()); // before the file is opened, so that no change is missed
    InputFile input = openInputFile(path());
    m_follower->file.fileOpened(input.stamp, input.file == nullptr);
    setReadError(input.refusal);
    m_input = std::move(input.file);
    m_inputStreamLength = input.length;
    return m_input != nullptr;
}

std::unique_ptr<QIODevice> XPTextFile::createInputStream() {
    return std::move(m_input);
}

bool XPTextFile::read() {
    m_isReadByItself = false;
    requestRead();
    return true;
}

/// The start is left to the event loop, and so is the end of a read that is cancelled for another: nothing
/// waits in a nested loop, in which this object could be read again, cleaned or destroyed; and several
/// requests are one.
void XPTextFile::requestRead() {
    m_readRequested = true;
    if (m_reader != nullptr) {
        m_reader->cancelReading();
    } else if (!m_isLoading) {
        MainThread::perform([self = QPointer<XPTextFile>(this)] {
            if (self != nullptr)
                self->startRead();
        });
    }
    setIsLoading(true);
}

/// Starts the read that was asked for, if it still is.
void XPTextFile::startRead() {
    if (!std::exchange(m_readRequested, false) || !initReadData()) {
        endLoading(false);
        return;
    }
    m_reader = std::make_unique<XPDataReader>(createInputStream());
    m_reader->setExtractColumnNames(extractColumnNames());
    m_reader->setDelimiterType(delimiterType());
    m_reader->setSkiplines(skiplines());
    m_reader->setEveryNthLine(everyNthLine());
    m_reader->setMemoryLimit(m_memoryLimit ? *m_memoryLimit : FreeMemory::tableLimit());
    const QPointer<XPTextFile> self(this);
    m_reader->setCompletionHandler([self](std::shared_ptr<XPTableData> table) {
        handOver(self, {std::move(table), QString(), false});
    });
    m_reader->setErrorHandler([self](const QString& reason) { handOver(self, {nullptr, reason, true}); });
    m_progressTimer.start();
    m_reader->startReading();
}

/// On the reader's thread, which ends before the object does; the hand-over may arrive when the object is
/// gone.
void XPTextFile::handOver(const QPointer<XPTextFile>& source, ReadResult result) {
    MainThread::perform([source, result = std::move(result)] {
        if (source != nullptr)
            source->finishRead(result);
    });
}

void XPTextFile::finishRead(const ReadResult& result) {
    const QPointer<XPTextFile> self(this); // observers may let go of this object
    const bool cancelled = m_reader->isCancelled();
    closeReadData();
    if (cancelled) {
        // The data are cleared until the next read completes.
        if (data() != nullptr)
            setData(nullptr);
    } else if (result.failed) {
        setReadError(result.error);
    } else {
        setData(result.table);
    }
    if (self == nullptr)
        return;
    if (m_readRequested)
        startRead();
    else
        endLoading(result.failed);
}

void XPTextFile::endLoading(bool failed) {
    const QPointer<XPTextFile> self(this);
    setIsLoading(false);
    if (self != nullptr && !m_isLoading)
        m_follower->file.readEnded(failed);
}

void XPTextFile::closeReadData() {
    m_progressTimer.stop();
    m_reader.reset();
}

void XPTextFile::clean() {
    m_readRequested = false;
    m_follower->file.stop();
    if (m_reader != nullptr)
        m_reader->cancelReading();
    setData(nullptr);
}

void XPTextFile::setIsLoading(bool loading) {
    if (loading != m_isLoading)
        assign(m_isLoading, loading, "isLoading");
}

void XPTextFile::setReadError(const QString& reason) {
    if (reason != m_readError)
        assign(m_readError, reason, "readError");
}

double XPTextFile::progress() const {
    if (m_reader == nullptr || m_inputStreamLength == 0)
        return std::numeric_limits<double>::quiet_NaN();
    return static_cast<double>(m_reader->readSoFar()) / static_cast<double>(m_inputStreamLength);
}

// ---- The table

XTable XPTextFile::data() const {
    const std::lock_guard lock(m_tableMutex);
    return m_data;
}

void XPTextFile::setData(XTable table) {
    XTable old = table;
    {
        const std::lock_guard lock(m_tableMutex);
        m_data.swap(old);
        m_columnNames.clear();
    }
    const QPointer<XPTextFile> self(this);
    NotificationCenter::defaultCenter().post(Notifications::dataSourceUpdated, this);
    if (self != nullptr)
        announce("data", QVariant::fromValue(old), QVariant::fromValue(table));
    if (self != nullptr && old != nullptr && old->rowsNumber() * old->columnsNumber() > manyCells)
        letGoOf(std::move(old));
}

void XPTextFile::letGoOf(XTable table) {
    try {
        m_disposal->add(std::make_shared<TableRelease>(std::move(table)));
    } catch (const std::system_error&) {
        // The system has no thread left: the table went here, with the operation that holds it.
    }
}

QStringList XPTextFile::columnNames() const {
    const std::lock_guard lock(m_tableMutex);
    if (m_columnNames.isEmpty()) {
        m_columnNames.append(QStringLiteral("Row number"));
        const std::uint64_t columns = m_data == nullptr ? 0 : m_data->columnsNumber();
        for (std::uint64_t i = 0; i < columns; ++i) {
            const auto& names = m_data->columnNames();
            m_columnNames.append(i < names.size() ? nameFromUtf8(names[i])
                                                  : QStringLiteral("Column %1").arg(i + 1));
        }
    }
    return m_columnNames;
}

// ---- The factory

QMap<QString, QString> XPTextFileFactory::supportedPlugins() const {
    return {{QLatin1String(XPTextFile::identifier), QLatin1String(XPTextFile::name)},
            {QLatin1String(XPTextEditor::identifier), QLatin1String(XPTextEditor::name)}};
}

XDataSource XPTextFileFactory::createPluginOfIdentifier(const QString& identifier) const {
    if (identifier == QLatin1String(XPTextFile::identifier))
        return std::make_shared<XPTextFile>();
    if (identifier == QLatin1String(XPTextEditor::identifier))
        return std::make_shared<XPTextEditor>();
    xAssert(false, "Unknown plugin id for XPTextFileFactory: %@", identifier.toStdString());
    return nullptr;
}
