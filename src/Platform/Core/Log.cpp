// The logging category and the form of a line that names its method.
#include "Platform/Core/Log.h"

// Above every level that is logged: nothing is shown unless the user switches the category on.
Q_LOGGING_CATEGORY(velquinLog, "velquin", QtFatalMsg)

void logMethod(const char* method, const QString& text) {
    qCInfo(velquinLog, "%s %s", method, qUtf8Printable(text));
}
