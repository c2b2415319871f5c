// Prepares the text, runs it over the rows and hands the outcome to the delegate.
#include "Classes/ExpressionEvaluator/XExpressionEvaluatorTask.h"

#include "Classes/ExpressionEvaluator/EvaluationRun.h"
#include "Classes/ExpressionEvaluator/ExpressionErrors.h"
#include "Classes/ExpressionEvaluator/ExpressionText.h"
#include "Platform/Core/FreeMemory.h"
#include "Platform/Core/Log.h"

#include <ctime>
#include <utility>

XExpressionEvaluatorTask::XExpressionEvaluatorTask(QString expression,
                                                   std::shared_ptr<const XPTableData> table,
                                                   std::weak_ptr<XExpressionEvaluatorDelegate> delegate,
                                                   quint64 generation)
    : m_expression(std::move(expression)), m_table(std::move(table)), m_delegate(std::move(delegate)),
      m_delegateIdentity(m_delegate.lock().get()), m_generation(generation) {}

void XExpressionEvaluatorTask::main() {
    if (!m_table)
        return fail(QStringLiteral("There is no data."));
    if (m_expression.size() > expressionText::longestText) {
        fail(QStringLiteral("The expression is longer than %1 characters.").arg(expressionText::longestText));
        return report(100);
    }
    try {
        const QString text =
            expressionText::withColumnVariables(m_expression, m_table->columnNames(), stopToken());
        const auto prepared = expressionText::prepare(text, m_table->columnsNumber());
        if (!prepared && !isCancelled()) {
            logMethod("-[XExpressionEvaluatorTask initWithExpression:withData:delegate:]",
                      QStringLiteral("Couldn't convert expression string to ASCII encoding"));
            return fail(
                QStringLiteral("The expression has characters outside of ASCII, beyond names of columns."));
        }
        if (prepared && !isCancelled())
            evaluate(*prepared);
    } catch (const std::exception& error) {
        fail(QString::fromUtf8(expressionErrors::describe(error).reason.c_str()));
    }
    report(100);
}

void XExpressionEvaluatorTask::evaluate(const PreparedExpression& prepared) {
    tzset(); // one time zone for all rows: the one of now
    expressionErrors::prepareLibrary();
    const std::uint64_t rows = m_table->rowsNumber();
    const auto result = std::make_shared<XPTableData>();
    result->setMemoryLimit(FreeMemory::tableLimit());
    result->writeNullAtColRow(0, rows - 1);
    EvaluationRun run(prepared, *m_table, result->writableColumn(0), stopToken(),
                      [this](float percentage) { report(percentage); });
    const std::optional<std::string> failure = run.run();
    if (isCancelled())
        return;
    if (failure)
        return fail(QString::fromStdString(*failure));
    result->summarizeColumns();
    m_result = result;
    if (const auto delegate = m_delegate.lock())
        delegate->expressionEvaluatedData(m_expression, m_result, m_generation);
}

void XExpressionEvaluatorTask::report(float percentage) {
    if (const auto delegate = m_delegate.lock())
        delegate->progressChangedPercentage(m_expression, percentage, m_generation);
    else
        cancel();
}

void XExpressionEvaluatorTask::fail(const QString& reason) {
    if (isCancelled())
        return;
    if (const auto delegate = m_delegate.lock())
        delegate->expressionFailed(m_expression, reason, m_generation);
}
