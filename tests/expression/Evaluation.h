// Runs expressions over small tables and keeps all that a delegate hears.
#pragma once

#include "Classes/ExpressionEvaluator/XExpressionEvaluatorTask.h"

#include <QString>

#include <initializer_list>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

using Values = std::vector<double>;

inline std::shared_ptr<XPTableData> tableOf(std::initializer_list<Values> columns,
                                            std::vector<std::string> names = {}) {
    auto table = std::make_shared<XPTableData>();
    std::uint64_t index = 0;
    for (const Values& column : columns) {
        for (std::uint64_t row = 0; row < column.size(); ++row)
            table->writeValueAtColRow(column[row], index, row);
        ++index;
    }
    table->setColumnNames(std::move(names));
    return table;
}

/// A column of many rows, f(row).
template <class F>
Values many(std::size_t rows, F f) {
    Values values(rows);
    for (std::size_t row = 0; row < rows; ++row)
        values[row] = f(static_cast<double>(row));
    return values;
}

struct RecordingDelegate : XExpressionEvaluatorDelegate {
    struct Outcome {
        std::vector<float> progress;
        std::vector<std::shared_ptr<const XPTableData>> results;
        std::vector<quint64> generations; ///< of the results
        std::vector<std::string> failures;
    };

    void progressChangedPercentage(const QString&, float percentage, quint64) override {
        const std::lock_guard lock(mutex);
        outcome.progress.push_back(percentage);
    }
    void expressionEvaluatedData(const QString&, std::shared_ptr<const XPTableData> result,
                                 quint64 generation) override {
        const std::lock_guard lock(mutex);
        outcome.results.push_back(std::move(result));
        outcome.generations.push_back(generation);
    }
    void expressionFailed(const QString&, const QString& reason, quint64) override {
        const std::lock_guard lock(mutex);
        outcome.failures.push_back(reason.toStdString());
    }
    Outcome heard() {
        const std::lock_guard lock(mutex);
        return outcome;
    }

    std::mutex mutex;
    Outcome outcome;
};

/// Evaluates on this thread.
inline RecordingDelegate::Outcome evaluated(const QString& expression,
                                            std::shared_ptr<const XPTableData> table) {
    const auto delegate = std::make_shared<RecordingDelegate>();
    XExpressionEvaluatorTask task(expression, std::move(table), delegate, 1);
    task.main();
    return delegate->heard();
}

/// The values of a result; empty without one.
inline Values valuesOf(const RecordingDelegate::Outcome& outcome) {
    if (outcome.results.size() != 1)
        return {};
    const auto column = outcome.results.front()->column(0);
    return {column.begin(), column.end()};
}
