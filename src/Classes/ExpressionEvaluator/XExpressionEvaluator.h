// Evaluates expressions over tables in the background, for delegates.
#pragma once

#include "Classes/ExpressionEvaluator/XExpressionEvaluatorTask.h"
#include "Platform/Core/OperationQueue.h"

#include <QString>

#include <cstddef>
#include <memory>

/// Main thread.
class XExpressionEvaluator {
  public:
    static constexpr std::size_t mostAtOnce = 4; ///< evaluations; each needs a thread, which stays

    XExpressionEvaluator();

    /// Made at the first call, on the main thread; ends with the application object unless `shutDown` came
    /// before.
    static XExpressionEvaluator& sharedInstance();
    /// Cancels everything and waits for the threads to end. `main` calls it while the main thread's loop
    /// still lives.
    static void shutDown();

    /// Cancels the evaluation of the same expression for the same delegate, then queues a new one. Returns
    /// its generation: greater than all before it, in the whole process. A delegate that keeps the generation
    /// it started last for a purpose may take what comes with that generation or a later one: an old result
    /// never replaces a newer one, and one result serves two purposes that share an expression. `table` may
    /// be null: the evaluation fails. `delegate` is held weakly.
    quint64
    startEvaluateExpressionWithDataDelegate(const QString& expression,
                                            std::shared_ptr<const XPTableData> table,
                                            const std::shared_ptr<XExpressionEvaluatorDelegate>& delegate);
    void cancelEvaluatingExpressionWithDelegate(const QString& expression,
                                                const XExpressionEvaluatorDelegate* delegate);
    /// Also from the delegate's destructor.
    void cancelAllOperationsForDelegate(const XExpressionEvaluatorDelegate* delegate);

    /// No evaluation is listed: what they handed to the main thread was handed over before.
    /// `MainThread::runUntil` may wait for it.
    bool isIdle() const { return m_evalTasksQueue.isIdle(); }

  private:
    OperationQueue m_evalTasksQueue;
};
