// One pass of an expression over all rows of a table, on the calling thread and on processors that are free.
#pragma once

#include "Classes/ExpressionEvaluator/ExpressionErrors.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

class RowEvaluator;
class XPTableData;
struct PreparedExpression;

/// Rows are handed out in slices, in their order. Where no row depends on another, helper threads with
/// parsers of their own take slices, too: the results are the same, bit for bit. Used once.
class EvaluationRun {
  public:
    /// Told a percentage, ascending from 0, about a hundred times; with fewer than 100 rows at each of them.
    /// On the thread of `run`.
    using ProgressReport = std::function<void(float percentage)>;

    /// `results` has a place for each row of the table. All must outlive the run.
    EvaluationRun(const PreparedExpression& expression, const XPTableData& table, std::span<double> results,
                  std::stop_token stop, ProgressReport report);

    /// Returns why there is no result: the first error in row order decides, if it is one that ends the
    /// evaluation. When `stop` is requested it returns within a row or a block of each thread, and the
    /// results are of no use.
    std::optional<std::string> run();

  private:
    struct Slice {
        std::uint64_t first = 0;
        std::uint64_t end = 0;
    };

    std::optional<Slice> takeSlice();
    void evaluateSlice(RowEvaluator& evaluator, Slice slice);
    void reportDueProgress();
    void help();

    const PreparedExpression& m_expression;
    const XPTableData& m_table;
    const std::span<double> m_results;
    const std::stop_token m_stop;
    const ProgressReport m_report;

    std::mutex m_mutex; ///< of all below
    std::uint64_t m_nextRow = 0;
    std::uint64_t m_nextProgressRow = 0;
    std::vector<std::uint64_t> m_dueProgressRows; ///< taken by whatever thread, not reported yet
    std::optional<RowError> m_firstError;         ///< in row order, as far as rows are evaluated
    std::uint64_t m_firstErrorRow = 0;            ///< of the slice of that error
};
