// Evaluates an expression over runs of rows of a table.
#pragma once

#include "Classes/ExpressionEvaluator/ExpressionErrors.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>

class XPTableData;
struct PreparedExpression;

/// One set of parser, variables and function states: for one thread, which made it.
class RowEvaluator {
  public:
    virtual ~RowEvaluator() = default;

    /// Evaluates the rows from `firstRow` on, one for each place of `results`; NaN where there is an error,
    /// of which the first is returned. Ends early, with some results not written, when `stop` is requested.
    virtual std::optional<RowError> evaluate(std::uint64_t firstRow, std::span<double> results,
                                             const std::stop_token& stop) = 0;
};

/// A compiled program where there can be one, else the parser. An expression that cannot be set up makes an
/// evaluator with that error in each row. `table` must outlive it; `expressionErrors::prepareLibrary` ran
/// before.
std::unique_ptr<RowEvaluator> makeRowEvaluator(const PreparedExpression& expression,
                                               const XPTableData& table);

/// The parser whatever the expression: what programs must equal.
std::unique_ptr<RowEvaluator> makeParserRowEvaluator(const PreparedExpression& expression,
                                                     const XPTableData& table);
