// The two roads of an evaluation: a compiled program, and the parser for all that cannot be compiled.
#include "Classes/ExpressionEvaluator/RowEvaluator.h"

#include "Classes/ExpressionEvaluator/ExpressionCompiler.h"
#include "Classes/ExpressionEvaluator/ExpressionParser.h"
#include "Classes/ExpressionEvaluator/ExpressionText.h"
#include "Core/MissingValue.h"
#include "EmbeddedPlugins/Common/XPTableData.h"

#include <muparserx/mpParser.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace {

/// Looks for a stop before each block of rows, some microseconds' work.
class CompiledRowEvaluator final : public RowEvaluator {
  public:
    explicit CompiledRowEvaluator(PostfixProgram program)
        : m_program(std::move(program)), m_stack(m_program.greatestDepth() * PostfixProgram::blockRows) {}

    std::optional<RowError> evaluate(std::uint64_t firstRow, std::span<double> results,
                                     const std::stop_token& stop) override {
        while (!results.empty() && !stop.stop_requested()) {
            const auto block = results.first(std::min(results.size(), PostfixProgram::blockRows));
            m_program.evaluate(firstRow, block, m_stack);
            firstRow += block.size();
            results = results.subspan(block.size());
        }
        return {};
    }

  private:
    PostfixProgram m_program;
    std::vector<double> m_stack;
};

class ParserRowEvaluator final : public RowEvaluator {
  public:
    explicit ParserRowEvaluator(std::unique_ptr<ExpressionParser> parser) : m_parser(std::move(parser)) {}

    std::optional<RowError> evaluate(std::uint64_t firstRow, std::span<double> results,
                                     const std::stop_token& stop) override;

  private:
    std::optional<RowError> evaluateRow(std::uint64_t row, double& result);

    std::unique_ptr<ExpressionParser> m_parser;
};

std::optional<RowError> ParserRowEvaluator::evaluateRow(std::uint64_t row, double& result) {
    result = missing;
    try {
        const mup::IValue& value = m_parser->evaluate(row);
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
    std::optional<RowError> firstError = m_parser->setUpError();
    if (firstError) {
        std::fill(results.begin(), results.end(), missing);
        return firstError;
    }
    std::uint64_t row = firstRow;
    for (double& result : results) {
        if (stop.stop_requested())
            break;
        std::optional<RowError> error = evaluateRow(row++, result);
        if (error && !firstError)
            firstError = std::move(error);
    }
    return firstError;
}

} // namespace

std::unique_ptr<RowEvaluator> makeRowEvaluator(const PreparedExpression& expression,
                                               const XPTableData& table) {
    if (expression.bareColumn) { // the same program as below, without a parser
        PostfixProgram copy;
        copy.pushColumn(table.column(*expression.bareColumn));
        return std::make_unique<CompiledRowEvaluator>(std::move(copy));
    }
    auto parser = std::make_unique<ExpressionParser>(expression, table);
    if (auto program = compiled(*parser))
        return std::make_unique<CompiledRowEvaluator>(std::move(*program));
    return std::make_unique<ParserRowEvaluator>(std::move(parser));
}

std::unique_ptr<RowEvaluator> makeParserRowEvaluator(const PreparedExpression& expression,
                                                     const XPTableData& table) {
    return std::make_unique<ParserRowEvaluator>(std::make_unique<ExpressionParser>(expression, table));
}
