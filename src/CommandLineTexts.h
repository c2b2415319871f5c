// What is written about the command line, for people and for shells: all of it made from the one table of
// options.
#pragma once

#include <QString>

namespace CommandLineTexts {

/// The text of --help.
QString help();

/// The options as sections of a manual page, in the language of man(7).
QString manualSections();

// Whole files that complete the command line in a shell.
QString bashCompletion();
QString zshCompletion();
QString fishCompletion();

} // namespace CommandLineTexts
