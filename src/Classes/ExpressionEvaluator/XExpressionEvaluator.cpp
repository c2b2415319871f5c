// The queue of evaluations and its one shared instance.
#include "Classes/ExpressionEvaluator/XExpressionEvaluator.h"

#include "Classes/ExpressionEvaluator/ExpressionErrors.h"

#include <QCoreApplication>

#include <atomic>
#include <mutex>
#include <utility>

namespace {

struct Shared {
    std::mutex mutex;
    std::unique_ptr<XExpressionEvaluator> evaluator;
};

/// Never destroyed: it is asked to shut down, or the application object's end does.
Shared& shared() {
    static Shared& theShared = *new Shared;
    return theShared;
}

quint64 nextGeneration() {
    static std::atomic<quint64> generation{0};
    return ++generation;
}

} // namespace

XExpressionEvaluator::XExpressionEvaluator() : m_evalTasksQueue(mostAtOnce) {
    expressionErrors::prepareLibrary();
}

XExpressionEvaluator& XExpressionEvaluator::sharedInstance() {
    const std::lock_guard lock(shared().mutex);
    if (!shared().evaluator) {
        static const bool endsWithTheApplication = (qAddPostRoutine(&XExpressionEvaluator::shutDown), true);
        static_cast<void>(endsWithTheApplication);
        shared().evaluator = std::make_unique<XExpressionEvaluator>();
    }
    return *shared().evaluator;
}

void XExpressionEvaluator::shutDown() {
    std::unique_ptr<XExpressionEvaluator> ending;
    {
        const std::lock_guard lock(shared().mutex);
        ending = std::move(shared().evaluator);
    }
    // Its end serves work for the main thread, which may ask for the shared instance: not under the lock.
    ending.reset();
}

quint64 XExpressionEvaluator::startEvaluateExpressionWithDataDelegate(
    const QString& expression, std::shared_ptr<const XPTableData> table,
    const std::shared_ptr<XExpressionEvaluatorDelegate>& delegate) {
    const quint64 generation = nextGeneration();
    m_evalTasksQueue.addUnderLock([&](std::span<const std::shared_ptr<Operation>> listed) {
        for (const auto& operation : listed) {
            auto& task = static_cast<XExpressionEvaluatorTask&>(*operation);
            if (task.isFor(delegate.get()) && task.expression() == expression)
                task.cancel();
        }
        return std::make_shared<XExpressionEvaluatorTask>(expression, std::move(table), delegate, generation);
    });
    return generation;
}

void XExpressionEvaluator::cancelEvaluatingExpressionWithDelegate(
    const QString& expression, const XExpressionEvaluatorDelegate* delegate) {
    m_evalTasksQueue.cancelIf([&](Operation& operation) {
        const auto& task = static_cast<XExpressionEvaluatorTask&>(operation);
        return task.isFor(delegate) && task.expression() == expression;
    });
}

void XExpressionEvaluator::cancelAllOperationsForDelegate(const XExpressionEvaluatorDelegate* delegate) {
    m_evalTasksQueue.cancelIf([delegate](Operation& operation) {
        return static_cast<XExpressionEvaluatorTask&>(operation).isFor(delegate);
    });
}
