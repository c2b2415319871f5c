// The message handler and the assertion reporter behind the fixtures.
#include "support/TestSupport.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QLoggingCategory>
#include <QTimer>

#include <gtest/gtest.h>

#include <mutex>
#include <utility>

namespace support {
namespace {

/// What the fixtures in force want to know; messages and assertions come from any thread.
struct Recording {
    std::mutex mutex;
    QStringList expectedWarnings;
    QStringList logLines;
    bool recordsLog = false;
    std::vector<AssertionFailure> assertions;
};

Recording& recording() {
    static Recording theRecording;
    return theRecording;
}

void handleMessage(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    Recording& state = recording();
    const std::lock_guard lock(state.mutex);
    if (qstrcmp(context.category, "velquin") == 0) {
        if (state.recordsLog)
            state.logLines.append(text);
        return;
    }
    if (type == QtDebugMsg || type == QtInfoMsg)
        return;
    // The offscreen platform says so of every window that has a least size.
    if (text == QLatin1String("This plugin does not support propagateSizeHints()"))
        return;
    for (qsizetype i = 0; i < state.expectedWarnings.size(); ++i) {
        if (text.contains(state.expectedWarnings[i])) {
            state.expectedWarnings.removeAt(i);
            return;
        }
    }
    // The same of tool windows, menus and whatever else it cannot raise, grab or open, expected or not.
    if (text.startsWith(QLatin1String("This plugin does not support ")))
        return;
    ADD_FAILURE() << "unexpected warning: " << text.toStdString();
}

void failTest(const AssertionFailure& failure) {
    ADD_FAILURE() << "failed assertion: " << failure.what() << " (" << failure.sourcePath << ":"
                  << failure.line << ")";
}

} // namespace

void installTestHandlers() {
    qInstallMessageHandler(handleMessage);
    setAssertionReporter(failTest);
}

ExpectedWarnings::ExpectedWarnings(QStringList texts) {
    const std::lock_guard lock(recording().mutex);
    recording().expectedWarnings = std::move(texts);
}

ExpectedWarnings::~ExpectedWarnings() {
    const std::lock_guard lock(recording().mutex);
    for (const QString& text : std::exchange(recording().expectedWarnings, {}))
        ADD_FAILURE() << "this warning did not come: " << text.toStdString();
}

LogRecorder::LogRecorder() {
    const std::lock_guard lock(recording().mutex);
    recording().logLines.clear();
    recording().recordsLog = true;
    QLoggingCategory::setFilterRules(QStringLiteral("velquin=true"));
}

LogRecorder::~LogRecorder() {
    QLoggingCategory::setFilterRules({});
    const std::lock_guard lock(recording().mutex);
    recording().recordsLog = false;
}

QStringList LogRecorder::lines() const {
    const std::lock_guard lock(recording().mutex);
    return recording().logLines;
}

AssertionRecorder::AssertionRecorder(AssertionPolicy policy) : m_scope(policy) {
    const std::lock_guard lock(recording().mutex);
    recording().assertions.clear();
    m_previous = setAssertionReporter([](const AssertionFailure& failure) {
        const std::lock_guard reporterLock(recording().mutex);
        recording().assertions.push_back(failure);
    });
}

AssertionRecorder::~AssertionRecorder() {
    setAssertionReporter(std::move(m_previous));
}

std::vector<AssertionFailure> AssertionRecorder::failures() const {
    const std::lock_guard lock(recording().mutex);
    return recording().assertions;
}

std::vector<std::string> AssertionRecorder::texts() const {
    std::vector<std::string> texts;
    for (const AssertionFailure& failure : failures())
        texts.emplace_back(failure.what());
    return texts;
}

ScratchFolder::ScratchFolder() {
    EXPECT_TRUE(m_folder.isValid()) << m_folder.errorString().toStdString();
}

QString ScratchFolder::path(const QString& name) const {
    return name.isEmpty() ? m_folder.path() : m_folder.filePath(name);
}

QString ScratchFolder::write(const QString& name, const QByteArray& bytes) const {
    QFile file(path(name));
    const bool written = file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
    EXPECT_TRUE(written) << file.errorString().toStdString();
    return file.fileName();
}

QByteArray ScratchFolder::read(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly))
        << path.toStdString() << ": " << file.errorString().toStdString();
    return file.readAll();
}

QStringList ScratchFolder::fileNames() const {
    return QDir(m_folder.path())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot, QDir::Name);
}

std::optional<MainThreadLoop>& mainThreadLoop() {
    static std::optional<MainThreadLoop> loop;
    return loop;
}

bool waitUntil(const std::function<bool()>& done, int seconds) {
    QElapsedTimer elapsed;
    elapsed.start();
    QTimer wake; // so that the time limit is looked at when nothing else happens
    wake.start(50);
    bool reached = false;
    MainThread::runUntil([&] { return (reached = done()) || elapsed.elapsed() > qint64{seconds} * 1000; });
    EXPECT_TRUE(reached) << "not reached within " << seconds << " s";
    return reached;
}

int rounds(int usual) {
    const int asked = qEnvironmentVariableIntValue("VELQUIN_ROUNDS");
    return asked > 0 ? asked : usual;
}

} // namespace support
