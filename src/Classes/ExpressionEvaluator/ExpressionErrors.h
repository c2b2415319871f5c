// What the parser library throws, sorted into the two classes of errors of an evaluation.
#pragma once

#include <exception>
#include <string>

namespace mup {
class ParserError;
}

/// Why a row has no value.
struct RowError {
    bool endsEvaluation; ///< syntax, types, names, arguments: no row has one; else a fault of this row alone
    std::string reason;  ///< for the user; ASCII
};

namespace expressionErrors {

/// Makes the library ready for threads and lets its messages tell their codes. Once in a process, before the
/// first parser and on the main thread; further calls do nothing.
void prepareLibrary();

/// The class follows from the code of the innermost error: one thrown inside a function or operator counts,
/// not the library's wrapping of it. A message without a code ends the evaluation.
RowError describe(mup::ParserError& error);

/// Whatever else comes out of the library, an exhausted memory for one, ends the evaluation.
RowError describe(const std::exception& error);

} // namespace expressionErrors
