// Where an output of the command line goes: a file that appears whole or not at all, or standard output.
#pragma once

#include <QIODevice>
#include <QString>

#include <functional>
#include <optional>

/// Opens `path` ("-" is standard output), lets `write` fill it and closes it. Returns the reason of a
/// failure; a regular file that was there before is then as it was. Links are followed; devices are written
/// directly.
std::optional<QString> writeOutput(const QString& path, const std::function<bool(QIODevice&)>& write);
