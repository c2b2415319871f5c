// The text of an expression before it is parsed: names of columns become variables, and what it refers to is
// found.
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

/// A text for the parser, and what can be told about it without parsing.
struct PreparedExpression {
    std::string text;                   ///< ASCII
    std::vector<std::uint64_t> columns; ///< table columns, from 0, that it may refer to; ascending
    bool usesRow = false;               ///< may refer to the row number
    bool dependsOnRowOrder = false;     ///< may use a function that keeps state from row to row, or the clock
    std::optional<std::uint64_t> bareColumn; ///< the column that is the whole expression
};

namespace expressionText {

/// The greatest column number that a variable can have, as in c9999.
constexpr std::uint64_t greatestColumnNumber = 9999;
/// A text beyond this many characters is refused before its names are replaced.
constexpr qsizetype longestText = 20'000;

/// Replaces each column name between two quotes by its variable ("speed" by c2), name after name in the order
/// of the columns, whatever the case. Ends early, with some names left, when `stop` is requested.
QString withColumnVariables(QString text, std::span<const std::string> columnNames,
                            const std::stop_token& stop = {});

/// Nothing if `text` is not ASCII. `columnsNumber` is that of the table.
std::optional<PreparedExpression> prepare(const QString& text, std::uint64_t columnsNumber);

/// The message for a logical operator (&&, ||, and, or) that has nothing to its left. The parser library does
/// not look for that mistake: it reads beyond its stack.
std::optional<std::string> misplacedLogicalOperator(std::string_view text);

/// The message for an assignment ("c1 = 5", "row += 1"), which is most likely a comparison that misses a
/// sign.
std::optional<std::string> assignmentIn(std::string_view text);

} // namespace expressionText
