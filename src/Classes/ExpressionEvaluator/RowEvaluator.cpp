// The parser behind an evaluation, and the copy that is enough for an expression that is just a column.
#include "Classes/ExpressionEvaluator/RowEvaluator.h"

#include "Classes/ExpressionEvaluator/EvaluatorFunctions.h"
#include "Classes/ExpressionEvaluator/ExpressionText.h"
#include "EmbeddedPlugins/Common/XPTableData.h"

#include <muparserx/mpParser.h>

#include <algorithm>
#include <deque>
#include <limits>
#include <utility>
#include <vector>

namespace {

constexpr double missing = std::numeric_limits<double>::quiet_NaN();

class ColumnCopy final : public RowEvaluator {
  public:
    explicit ColumnCopy(std::span<const double> column) : m_column(column) {}

    std::optional<RowError> evaluate(std::uint64_t firstRow, std::span<double> results,
                                     const std::stop_token&) override {
        const std::uint64_t start = std::min<std::uint64_t>(firstRow, m_column.size());
        const std::uint64_t count = std::min<std::uint64_t>(results.size(), m_column.size() - start);
        const auto copied = m_column.subspan(start, count);
        std::fill(std::copy(copied.begin(), copied.end(), results.begin()), results.end(), missing);
        return {};
    }

  private:
    std::span<const double> m_column;
};

class ParserRowEvaluator final : public RowEvaluator {
  public:
    ParserRowEvaluator(const PreparedExpression& expression, const XPTableData& table);

    std::optional<RowError> evaluate(std::uint64_t firstRow, std::span<double> results,
                                     const std::stop_token& stop) override;

  private:
    struct ColumnVariable {
        mup::Value* value;
        std::span<const double> column;
    };

    mup::Value* newVariable(const std::string& name);
    void assignVariables(std::uint64_t row);
    std::optional<RowError> evaluateRow(double& result);

    mup::ParserX m_parser{mup::pckALL_NON_COMPLEX};
    std::deque<mup::Value> m_values; // where the parser's variables look
    mup::Value* m_row = nullptr;
    std::vector<ColumnVariable> m_columns;
    std::optional<RowError> m_setUpError;
};

/// Assigning a variable costs as much as an operation, so that those it cannot use are not even made.
ParserRowEvaluator::ParserRowEvaluator(const PreparedExpression& expression, const XPTableData& table) {
    if (auto misplaced = expressionText::misplacedLogicalOperator(expression.text)) {
        m_setUpError = {true, std::move(*misplaced)};
        return;
    }
    if (auto assignment = expressionText::assignmentIn(expression.text)) {
        m_setUpError = {true, std::move(*assignment)};
        return;
    }
    try {
        m_parser.SetExpr(expression.text);
        defineEvaluatorFunctions(m_parser);
        if (expression.usesRow)
            m_row = newVariable("row");
        for (const std::uint64_t column : expression.columns)
            m_columns.push_back(
                {newVariable(std::string(1, 'c').append(std::to_string(column + 1))), table.column(column)});
        m_parser.DefineConst("nan", mup::Value(missing));
    } catch (mup::ParserError& error) {
        m_setUpError = expressionErrors::describe(error);
        m_setUpError->endsEvaluation = true;
    }
}

mup::Value* ParserRowEvaluator::newVariable(const std::string& name) {
    mup::Value* value = &m_values.emplace_back(0.0);
    m_parser.DefineVar(name, mup::Variable(value));
    return value;
}

void ParserRowEvaluator::assignVariables(std::uint64_t row) {
    if (m_row != nullptr)
        *m_row = static_cast<mup::int_type>(row);
    for (const auto& [value, column] : m_columns)
        *value = row < column.size() ? column[row] : missing;
}

std::optional<RowError> ParserRowEvaluator::evaluateRow(double& result) {
    result = missing;
    try {
        const mup::IValue& value = m_parser.Eval();
        switch (value.GetType()) {
        case 'f':
        case 'i':
        case 'b':
            result = value.GetFloat();
            return {};
        case 's':
            return RowError{true, "The result is a text, not a number."};
        case 'm':
            return RowError{true, "The result is an array, not a number."};
        default:
            return RowError{true, "The result is not a number."};
        }
    } catch (mup::ParserError& error) {
        return expressionErrors::describe(error);
    } catch (const std::exception& error) {
        return expressionErrors::describe(error);
    }
}

std::optional<RowError> ParserRowEvaluator::evaluate(std::uint64_t firstRow, std::span<double> results,
                                                     const std::stop_token& stop) {
    std::optional<RowError> firstError = m_setUpError;
    if (firstError) {
        std::fill(results.begin(), results.end(), missing);
        return firstError;
    }
    std::uint64_t row = firstRow;
    for (double& result : results) {
        if (stop.stop_requested())
            break;
        assignVariables(row++);
        std::optional<RowError> error = evaluateRow(result);
        if (error && !firstError)
            firstError = std::move(error);
    }
    return firstError;
}

} // namespace

std::unique_ptr<RowEvaluator> makeRowEvaluator(const PreparedExpression& expression,
                                               const XPTableData& table) {
    if (expression.bareColumn)
        return std::make_unique<ColumnCopy>(table.column(*expression.bareColumn));
    return std::make_unique<ParserRowEvaluator>(expression, table);
}
