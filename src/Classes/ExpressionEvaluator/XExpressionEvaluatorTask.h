// One evaluation: an expression over a table, for a delegate, on a thread of the evaluator's queue.
#pragma once

#include "EmbeddedPlugins/Common/XPTableData.h"
#include "Platform/Core/OperationQueue.h"

#include <QString>

#include <memory>

/// Who asked for an evaluation. Called on the evaluation's thread. `generation` is what starting it returned.
class XExpressionEvaluatorDelegate {
  public:
    virtual ~XExpressionEvaluatorDelegate() = default;

    /// 0 to 100, ascending; 100 comes last of all, after a cancellation or a failure, too.
    virtual void progressChangedPercentage(const QString& expression, float percentage,
                                           quint64 generation) = 0;
    /// One column, with as many rows as the table had.
    virtual void expressionEvaluatedData(const QString& expression, std::shared_ptr<const XPTableData> result,
                                         quint64 generation) = 0;
    /// There is no result, for this reason. Not called for an evaluation that was cancelled.
    virtual void expressionFailed(const QString& expression, const QString& reason, quint64 generation) = 0;

  protected:
    XExpressionEvaluatorDelegate() = default;
    XExpressionEvaluatorDelegate(const XExpressionEvaluatorDelegate&) = default;
    XExpressionEvaluatorDelegate& operator=(const XExpressionEvaluatorDelegate&) = default;
};

/// Holds its delegate weakly: when the delegate has gone the evaluation ends without a word.
class XExpressionEvaluatorTask : public Operation {
  public:
    /// Parses nothing: a long text must not stop the main thread. `table` may be null.
    XExpressionEvaluatorTask(QString expression, std::shared_ptr<const XPTableData> table,
                             std::weak_ptr<XExpressionEvaluatorDelegate> delegate, quint64 generation);

    /// Sets the parser up and evaluates. Without a table, or with a text that is not ASCII when its column
    /// names are replaced, `expressionFailed` is all the delegate hears.
    void main() override;

    const QString& expression() const { return m_expression; }
    /// Whether it works for this delegate, which may have gone.
    bool isFor(const XExpressionEvaluatorDelegate* delegate) const { return delegate == m_delegateIdentity; }
    std::shared_ptr<const XPTableData> result() const { return m_result; } ///< after `main`; null without one

  private:
    void evaluate(const struct PreparedExpression& prepared);
    void report(float percentage);
    void fail(const QString& reason);

    const QString m_expression;
    const std::shared_ptr<const XPTableData> m_table;
    const std::weak_ptr<XExpressionEvaluatorDelegate> m_delegate;
    const XExpressionEvaluatorDelegate* const m_delegateIdentity; ///< to compare alone
    const quint64 m_generation;
    std::shared_ptr<const XPTableData> m_result;
};
