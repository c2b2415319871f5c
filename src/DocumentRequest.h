// Opens the document that a FILE of the command line stands for, and applies what the command line asks of
// it.
#pragma once

#include "CommandLine.h"

#include <QDir>
#include <QString>

#include <memory>
#include <optional>
#include <variant>

class MoxDocument;

/// What went wrong with which file. `wrongUsage` ends the program with 2 instead of 1.
struct RequestFailure {
    QString file;
    QString reason;
    bool wrongUsage = false;
};

/// A property list or *.mox is opened as a document; anything else becomes the text-file data source of a new
/// one. Reading has begun when it returns. Relative names of data in a document count from `workingFolder`.
std::variant<std::unique_ptr<MoxDocument>, RequestFailure>
openRequested(const QString& file, const CommandLine& line, const QDir& workingFolder = QDir::current());

/// The first data source whose last read failed, or null.
std::optional<RequestFailure> firstReadFailure(const MoxDocument& document);

/// The first expression of a curve that delivered no result.
std::optional<RequestFailure> firstEvaluationFailure(const MoxDocument& document, const QString& file);

/// Adds the curves and sets the plot area; to be called when the data sources are read, since columns may be
/// named.
std::optional<RequestFailure> applyRequest(MoxDocument& document, const QString& file,
                                           const CommandLine& line);
