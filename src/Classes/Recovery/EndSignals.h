// The system's requests to end, as an event of the main loop.
#pragma once

#include "Platform/Core/FileDescriptor.h"

#include <QObject>
#include <QSocketNotifier>

#include <array>
#include <csignal>
#include <memory>

/// Listens for SIGTERM, SIGINT and SIGHUP while it lives; one at a time. One that was ignored when the
/// program started (nohup) stays ignored. Signals are handled, not blocked, so that programs that are started
/// from here have them as usual. A repeated one does not cut short what the first has begun: some senders
/// send everything twice. SIGQUIT ends the program at once. Main thread.
class EndSignals : public QObject {
    Q_OBJECT

  public:
    EndSignals();
    ~EndSignals() override;

  Q_SIGNALS:
    /// Arrives in nested loops, too: while an alert stands or a menu is open.
    void endRequested();

  private:
    static constexpr std::array<int, 3> numbers{SIGTERM, SIGINT, SIGHUP};

    std::array<struct sigaction, numbers.size()> m_former{};
    FileDescriptor m_reading;
    FileDescriptor m_writing;
    std::unique_ptr<QSocketNotifier> m_notifier;
};
