// The run with windows: opening files, and the rim at which faults of event handlers end.
#include "WindowRun.h"

#include "BatchRun.h"
#include "CommandLine.h"
#include "Core/Assertions.h"
#include "DocumentRequest.h"
#include "MoxDocument.h"

bool Application::notify(QObject* receiver, QEvent* event) {
    try {
        return QApplication::notify(receiver, event);
    } catch (const std::exception& error) {
        reportFailure({}, QString::fromUtf8(error.what()));
        return false;
    }
}

int runWindows(const CommandLine& line) {
    for (const QString& file : line.files)
        reportFailure(file, QStringLiteral("no window yet"));
    return 1;
}
