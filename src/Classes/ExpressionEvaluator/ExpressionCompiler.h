// Translates an expression into a postfix program, where that gives the parser library's values for certain.
#pragma once

#include "Core/PostfixProgram.h"

#include <optional>

class ExpressionParser;

/// A program whose value is the library's in each row, bit for bit (a NaN is a NaN), where the library
/// evaluates each row without an error. Nothing for all else: texts, arrays, bits, functions with a state,
/// the clock, whatever fails in some rows or in all, operands of mixed types, and a stack of more than 64
/// values.
///
/// The library parses: what is translated is its own postfix form, so that there is no second grammar. It
/// evaluates row 0 for that, for an expression without state from row to row an evaluation that nobody
/// notices.
std::optional<PostfixProgram> compiled(ExpressionParser& parser);
