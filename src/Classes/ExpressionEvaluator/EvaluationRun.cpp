// Hands out slices of rows and brings the threads' errors into row order.
#include "Classes/ExpressionEvaluator/EvaluationRun.h"

#include "Classes/ExpressionEvaluator/ExpressionText.h"
#include "Classes/ExpressionEvaluator/RowEvaluator.h"
#include "Core/VectorState.h"

#include <algorithm>
#include <atomic>
#include <system_error>
#include <thread>
#include <utility>

namespace {

/// After each row with a number that this divides the evaluation may end.
constexpr std::uint64_t pollingRows = 10'000;

/// Fewer rows are done before a helper has started.
constexpr std::uint64_t fewestRowsForHelpers = 2 * pollingRows;

/// A thread that evaluates, counted in the whole process: helpers use processors that no other evaluation
/// has.
class BusyProcessor {
  public:
    static BusyProcessor always() { return BusyProcessor(count.fetch_add(1) >= 0); }
    static BusyProcessor ifOneIsFree() {
        const unsigned processors = std::max(1U, std::thread::hardware_concurrency());
        int busy = count.load();
        while (busy < static_cast<int>(processors)) {
            if (count.compare_exchange_weak(busy, busy + 1))
                return BusyProcessor(true);
        }
        return BusyProcessor(false);
    }
    BusyProcessor(BusyProcessor&& other) noexcept : m_taken(std::exchange(other.m_taken, false)) {}
    BusyProcessor& operator=(BusyProcessor&&) = delete;
    ~BusyProcessor() {
        if (m_taken)
            --count;
    }

    explicit operator bool() const { return m_taken; }

  private:
    explicit BusyProcessor(bool taken) : m_taken(taken) {}

    static inline std::atomic<int> count{0};
    bool m_taken;
};

} // namespace

EvaluationRun::EvaluationRun(const PreparedExpression& expression, const XPTableData& table,
                             std::span<double> results, std::stop_token stop, ProgressReport report)
    : m_expression(expression), m_table(table), m_results(results), m_stop(std::move(stop)),
      m_report(std::move(report)) {}

std::optional<std::string> EvaluationRun::run() {
    const BusyProcessor own = BusyProcessor::always();
    const auto evaluator = makeRowEvaluator(m_expression, m_table);
    std::vector<std::jthread> helpers; // joined before anything they use goes
    const bool mayBeShared = m_results.size() >= fewestRowsForHelpers && !m_expression.dependsOnRowOrder &&
                             !m_expression.bareColumn;
    while (const auto slice = takeSlice()) {
        reportDueProgress();
        evaluateSlice(*evaluator, *slice);
        // The first row alone tells whether the expression makes sense at all.
        if (slice->first == 0 && mayBeShared) {
            while (BusyProcessor processor = BusyProcessor::ifOneIsFree()) {
                try {
                    helpers.emplace_back([this, busy = std::move(processor)] { help(); });
                } catch (const std::system_error&) {
                    break; // the threads that there are do the work
                }
            }
        }
    }
    helpers.clear();
    reportDueProgress();
    if (m_firstError && m_firstError->endsEvaluation)
        return m_firstError->reason;
    return {};
}

void EvaluationRun::help() {
    try {
        const auto evaluator = makeRowEvaluator(m_expression, m_table);
        while (const auto slice = takeSlice())
            evaluateSlice(*evaluator, *slice);
    } catch (const std::exception&) {
        return; // without having taken a slice: the parser could not be made, the calling thread goes on
    }
}

/// Slices end at rows where progress is due and after rows where the evaluation may end.
std::optional<EvaluationRun::Slice> EvaluationRun::takeSlice() {
    const std::lock_guard lock(m_mutex);
    const std::uint64_t rows = m_results.size();
    const bool mayEnd = m_nextRow % pollingRows == 1;
    if (m_nextRow == rows || m_stop.stop_requested() ||
        (mayEnd && m_firstError && m_firstError->endsEvaluation))
        return {};
    const std::uint64_t first = m_nextRow;
    if (first >= m_nextProgressRow) {
        m_dueProgressRows.push_back(first);
        m_nextProgressRow += rows / 100;
    }
    const std::uint64_t nextPollingRow = (first + pollingRows - 1) / pollingRows * pollingRows;
    m_nextRow = std::min({rows, nextPollingRow + 1, std::max(m_nextProgressRow, first + 1)});
    return Slice{first, m_nextRow};
}

void EvaluationRun::evaluateSlice(RowEvaluator& evaluator, Slice slice) {
    clearUpperVectorHalves();
    std::optional<RowError> error;
    try {
        error =
            evaluator.evaluate(slice.first, m_results.subspan(slice.first, slice.end - slice.first), m_stop);
    } catch (const std::exception& exception) {
        error = expressionErrors::describe(exception);
    }
    if (!error)
        return;
    const std::lock_guard lock(m_mutex);
    if (!m_firstError || slice.first < m_firstErrorRow) {
        m_firstError = std::move(error);
        m_firstErrorRow = slice.first;
    }
}

void EvaluationRun::reportDueProgress() {
    std::vector<std::uint64_t> due;
    {
        const std::lock_guard lock(m_mutex);
        due.swap(m_dueProgressRows);
    }
    for (const std::uint64_t row : due)
        m_report(static_cast<float>(row) * 100.0F / static_cast<float>(m_results.size()));
}
