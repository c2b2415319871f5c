// Compares the values of the road that an expression takes with the parser's, over rows of awkward numbers.
#pragma once

#include "Classes/ExpressionEvaluator/ExpressionCompiler.h"
#include "Classes/ExpressionEvaluator/ExpressionErrors.h"
#include "Classes/ExpressionEvaluator/ExpressionParser.h"
#include "Classes/ExpressionEvaluator/ExpressionText.h"
#include "Classes/ExpressionEvaluator/RowEvaluator.h"
#include "EmbeddedPlugins/Common/XPTableData.h"

#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

class EvaluationRoads {
  public:
    EvaluationRoads() {
        using Limits = std::numeric_limits<double>;
        const std::array values = {0.0,
                                   -0.0,
                                   1.0,
                                   -1.0,
                                   2.0,
                                   3.0,
                                   0.5,
                                   -2.5,
                                   0.1,
                                   1e-9,
                                   1.7e9,
                                   1e15 + 0.5,
                                   -2147483648.0,
                                   0x1p63,
                                   1e30,
                                   -1e300,
                                   Limits::max(),
                                   Limits::min(),
                                   Limits::denorm_min(),
                                   -Limits::denorm_min(),
                                   Limits::infinity(),
                                   -Limits::infinity(),
                                   Limits::quiet_NaN(),
                                   -Limits::quiet_NaN()};
        constexpr std::size_t n = values.size();
        for (std::size_t row = 0; row < n * n; ++row) { // each with each, more rows than one block
            m_table.writeValueAtColRow(values[row % n], 0, row);
            m_table.writeValueAtColRow(values[row / n], 1, row);
            m_table.writeValueAtColRow(values[(row * 7 + row / n) % n], 2, row);
        }
        expressionErrors::prepareLibrary();
    }

    bool isCompiled(const std::string& text) const {
        ExpressionParser parser(prepared(text), m_table);
        return compiled(parser).has_value();
    }

    /// What differs between the roads; empty when nothing does. Errors are compared, too.
    std::string difference(const std::string& text) const {
        const PreparedExpression expression = prepared(text);
        // What throws in each row is slow, and has no second road.
        const std::size_t rows = isCompiled(text) ? m_table.rowsNumber() : 20;
        const Outcome taken = outcome(*makeRowEvaluator(expression, m_table), rows);
        const Outcome parsed = outcome(*makeParserRowEvaluator(expression, m_table), rows);
        if (taken.error != parsed.error)
            return text + ": \"" + taken.error + "\", but the parser says \"" + parsed.error + '"';
        for (std::size_t row = 0; row < rows; ++row) {
            const double a = taken.values[row];
            const double b = parsed.values[row];
            // Which of two NaN an operation passes on is the compiler's choice.
            const bool areSame = std::isnan(b)
                                     ? std::isnan(a)
                                     : std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
            if (!areSame)
                return text + ", row " + std::to_string(row) + ": " + std::to_string(a) +
                       ", but the parser gives " + std::to_string(b);
        }
        return {};
    }

  private:
    struct Outcome {
        std::vector<double> values;
        std::string error;
    };

    PreparedExpression prepared(const std::string& text) const {
        return *expressionText::prepare(QString::fromStdString(text), m_table.columnsNumber());
    }

    /// In two runs of rows, as a slice begins anywhere.
    static Outcome outcome(RowEvaluator& evaluator, std::size_t rows) {
        constexpr std::size_t firstRows = 7;
        Outcome outcome{.values = std::vector<double>(rows, -7), .error = {}};
        const std::span<double> values(outcome.values);
        for (const auto& error : {evaluator.evaluate(0, values.first(firstRows), {}),
                                  evaluator.evaluate(firstRows, values.subspan(firstRows), {})})
            if (error)
                outcome.error += error->reason + (error->endsEvaluation ? " (ends)" : " (row)");
        return outcome;
    }

    XPTableData m_table;
};
