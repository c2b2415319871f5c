// Runs the program with windows: one for each FILE.
#pragma once

#include <QApplication>

class InstanceServer;
struct CommandLine;

/// The application object of a run with windows: a fault in an event handler is reported and ends that event
/// only.
class Application : public QApplication {
    Q_OBJECT

  public:
    using QApplication::QApplication;

    bool notify(QObject* receiver, QEvent* event) override;
};

/// Opens the files and runs the event loop; meanwhile `server`, if any, opens those of later launches. What
/// cannot be opened is told on standard error, and over a window where nobody would read that. Returns the
/// exit code; 1 when no FILE could be opened.
int runWindows(const CommandLine& line, InstanceServer* server);
