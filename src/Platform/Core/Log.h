// The program's own log: one category, off by default.
#pragma once

#include <QLoggingCategory>
#include <QString>

/// Category "velquin"; switched on with QT_LOGGING_RULES="velquin=true".
Q_DECLARE_LOGGING_CATEGORY(velquinLog)

/// Logs a line that names its method, in the form "%s %@".
void logMethod(const char* method, const QString& text);
