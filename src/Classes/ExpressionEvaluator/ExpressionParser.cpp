// Sets the library's parser up and gives its variables the values of a row.
#include "Classes/ExpressionEvaluator/ExpressionParser.h"

#include "Classes/ExpressionEvaluator/EvaluatorFunctions.h"
#include "Classes/ExpressionEvaluator/ExpressionText.h"
#include "Core/MissingValue.h"
#include "EmbeddedPlugins/Common/XPTableData.h"

#include <algorithm>
#include <utility>

namespace {} // namespace

/// Assigning a variable costs as much as an operation, so that those it cannot use are not even made.
ExpressionParser::ExpressionParser(const PreparedExpression& expression, const XPTableData& table)
    : m_isStateless(!expression.dependsOnRowOrder) {
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
            define("row", {});
        for (const std::uint64_t column : expression.columns)
            define(std::string(1, 'c').append(std::to_string(column + 1)), {table.column(column)});
        m_parser.DefineConst("nan", mup::Value(missing));
    } catch (mup::ParserError& error) {
        m_setUpError = expressionErrors::describe(error);
        m_setUpError->endsEvaluation = true;
    }
}

void ExpressionParser::define(const std::string& name, Source source) {
    mup::Value* cell = &m_cells.emplace_back(0.0);
    m_parser.DefineVar(name, mup::Variable(cell));
    m_variables.push_back({cell, source});
}

const mup::IValue& ExpressionParser::evaluate(std::uint64_t row) {
    for (const auto& [cell, source] : m_variables) {
        if (!source.column)
            *cell = static_cast<mup::int_type>(row);
        else
            *cell = row < source.column->size() ? (*source.column)[row] : missing;
    }
    return m_parser.Eval();
}

const ExpressionParser::Source* ExpressionParser::sourceOf(mup::IValue& operand) const {
    const auto* variable = dynamic_cast<mup::Variable*>(&operand);
    const auto found = std::find_if(m_variables.begin(), m_variables.end(), [&](const Variable& candidate) {
        return variable != nullptr && candidate.cell == variable->GetPtr();
    });
    return found == m_variables.end() ? nullptr : &found->source;
}
