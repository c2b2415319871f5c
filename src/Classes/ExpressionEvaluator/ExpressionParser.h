// The parser library's parser for one expression, its variables bound to the columns of a table.
#pragma once

#include "Classes/ExpressionEvaluator/ExpressionErrors.h"

#include <muparserx/mpParser.h>

#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <string>
#include <vector>

class XPTableData;
struct PreparedExpression;

/// For one thread, which made it.
class ExpressionParser {
  public:
    /// Where a variable's values come from.
    struct Source {
        std::optional<std::span<const double>> column; ///< else the row number
    };

    /// `table` must outlive it; `expressionErrors::prepareLibrary` ran before.
    ExpressionParser(const PreparedExpression& expression, const XPTableData& table);

    /// Why the expression must not be evaluated at all.
    const std::optional<RowError>& setUpError() const { return m_setUpError; }
    /// An evaluation more or less changes no other row's value.
    bool isStateless() const { return m_isStateless; }
    /// The value for a row. Throws whatever the library throws; parses the text when it is called first.
    const mup::IValue& evaluate(std::uint64_t row);

    const mup::ParserX& parser() const { return m_parser; }
    /// Null for what is no variable of this parser.
    const Source* sourceOf(mup::IValue& operand) const;

  private:
    struct Variable {
        mup::Value* cell; ///< where the parser looks
        Source source;
    };

    void define(const std::string& name, Source source);

    mup::ParserX m_parser{mup::pckALL_NON_COMPLEX};
    std::deque<mup::Value> m_cells;
    std::vector<Variable> m_variables;
    bool m_isStateless;
    std::optional<RowError> m_setUpError;
};
