// Fixtures that tests of every target share: expected warnings, log lines, failed assertions, a scratch
// folder.
#pragma once

#include "Core/Assertions.h"
#include "Platform/Core/MainThread.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace support {

/// Announces warnings for a scope: one for each text, which the warning contains. A text that did not come
/// fails the test; so does, anywhere, a warning or critical message that was not announced.
class ExpectedWarnings {
  public:
    explicit ExpectedWarnings(QStringList texts);
    ~ExpectedWarnings();
    ExpectedWarnings(const ExpectedWarnings&) = delete;
    ExpectedWarnings& operator=(const ExpectedWarnings&) = delete;
};

/// Switches the program's log on for a scope and keeps its lines, of all threads.
class LogRecorder {
  public:
    LogRecorder();
    ~LogRecorder();
    LogRecorder(const LogRecorder&) = delete;
    LogRecorder& operator=(const LogRecorder&) = delete;

    QStringList lines() const;
};

/// Collects failed assertions of all threads for a scope and sets the policy of this thread. Without one, a
/// failed assertion fails the test.
class AssertionRecorder {
  public:
    explicit AssertionRecorder(AssertionPolicy policy = AssertionPolicy::ReportOnly);
    ~AssertionRecorder();
    AssertionRecorder(const AssertionRecorder&) = delete;
    AssertionRecorder& operator=(const AssertionRecorder&) = delete;

    std::vector<AssertionFailure> failures() const;
    /// The texts alone, in order.
    std::vector<std::string> texts() const;

  private:
    AssertionScope m_scope;
    AssertionReporter m_previous;
};

/// A folder that goes with its test.
class ScratchFolder {
  public:
    ScratchFolder();

    QString path(const QString& name = {}) const; ///< the folder, or a file in it
    /// Writes a file and returns its path.
    QString write(const QString& name, const QByteArray& bytes) const;
    static QByteArray read(const QString& path);
    QStringList fileNames() const; ///< sorted, hidden ones included

  private:
    QTemporaryDir m_folder;
};

/// Runs the event loop until `done()` holds, at most `seconds`; the test fails when the time is over. Unlike
/// `MainThread::runUntil` it cannot hang a broken build.
[[nodiscard]] bool waitUntil(const std::function<bool()>& done, int seconds = 20);

/// How often to try by chance: `usual`, or VELQUIN_ROUNDS for a long look by hand.
int rounds(int usual);

/// The loop of every test; a test of shutting down ends it and puts a new one in its place.
std::optional<MainThreadLoop>& mainThreadLoop();

/// For the test's main function alone.
void installTestHandlers();

} // namespace support
