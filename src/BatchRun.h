// Runs the outputs of a command line without a window.
#pragma once

#include "CommandLine.h"

/// Opens the one FILE, waits until it is read and evaluated, writes every output. Returns the exit code: 0
/// done, 1 the work failed, 2 wrong usage; a failure is one line on standard error.
int runBatch(const CommandLine& line);

/// Prints "velquin: FILE: reason" to standard error; without a file, "velquin: reason".
void reportFailure(const QString& file, const QString& reason);
