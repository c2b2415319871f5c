// The evaluator's queue: which results arrive, for whom, and how it ends.
#include "expression/Evaluation.h"

#include "Classes/ExpressionEvaluator/XExpressionEvaluator.h"
#include "Platform/Core/MainThread.h"
#include "support/TestSupport.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <condition_variable>
#include <vector>

namespace {

using testing::ElementsAre;

/// Holds its evaluation at the first report until it is let go.
struct HeldDelegate : RecordingDelegate {
    void progressChangedPercentage(const QString& expression, float percentage, quint64 generation) override {
        std::unique_lock lock(gate);
        reached = true;
        changed.notify_all();
        changed.wait(lock, [this] { return open; });
        lock.unlock();
        RecordingDelegate::progressChangedPercentage(expression, percentage, generation);
    }
    void waitUntilReached() {
        std::unique_lock lock(gate);
        changed.wait(lock, [this] { return reached; });
    }
    void letGo() {
        const std::lock_guard lock(gate);
        open = true;
        changed.notify_all();
    }

    std::mutex gate;
    std::condition_variable changed;
    bool reached = false;
    bool open = false;
};

class Evaluator : public testing::Test {
  protected:
    bool idle() {
        return support::waitUntil([this] { return evaluator.isIdle(); });
    }

    XExpressionEvaluator evaluator;
    std::shared_ptr<const XPTableData> table = tableOf({many(20'000, [](double row) { return row; })});
};

TEST_F(Evaluator, DeliversWithTheGenerationOfItsStart) {
    const auto delegate = std::make_shared<RecordingDelegate>();
    const quint64 first = evaluator.startEvaluateExpressionWithDataDelegate(u"c1*2"_qs, table, delegate);
    const quint64 second = evaluator.startEvaluateExpressionWithDataDelegate(u"c1*3"_qs, table, delegate);
    EXPECT_LT(first, second);
    ASSERT_TRUE(idle());
    EXPECT_THAT(delegate->heard().generations, testing::UnorderedElementsAre(first, second));
    EXPECT_EQ(delegate->heard().results.front()->rowsNumber(), 20'000U);
}

TEST_F(Evaluator, ANewStartOfTheSamePairCancelsTheOldOne) {
    const auto delegate = std::make_shared<HeldDelegate>();
    const auto other = std::make_shared<HeldDelegate>();
    evaluator.startEvaluateExpressionWithDataDelegate(u"c1*2"_qs, table, delegate);
    evaluator.startEvaluateExpressionWithDataDelegate(u"c1*2"_qs, table, other);
    delegate->waitUntilReached();
    const quint64 newer = evaluator.startEvaluateExpressionWithDataDelegate(u"c1*2"_qs, table, delegate);
    delegate->letGo();
    other->letGo();
    ASSERT_TRUE(idle());
    EXPECT_THAT(delegate->heard().generations, ElementsAre(newer));
    EXPECT_EQ(other->heard().results.size(), 1U) << "another delegate's evaluation goes on";
    EXPECT_EQ(delegate->heard().progress.back(), 100);
}

TEST_F(Evaluator, CancelsOneExpressionOrAllOfADelegate) {
    const auto delegate = std::make_shared<HeldDelegate>();
    const auto start = [&](const QString& expression) {
        evaluator.startEvaluateExpressionWithDataDelegate(expression, table, delegate);
    };
    start(u"c1*2"_qs);
    start(u"c1*3"_qs);
    evaluator.cancelEvaluatingExpressionWithDelegate(u"c1*2"_qs, delegate.get());
    delegate->letGo();
    ASSERT_TRUE(idle());
    auto heard = delegate->heard();
    ASSERT_EQ(heard.results.size(), 1U);
    EXPECT_EQ(heard.results.front()->column(0)[1], 3);
    EXPECT_EQ(std::count(heard.progress.begin(), heard.progress.end(), 100.0F), 2)
        << "the cancelled one ends, too";

    delegate->open = false;
    for (int i = 0; i < 8; ++i) // more than run at once
        start(u"c1*%1"_qs.arg(i));
    evaluator.cancelAllOperationsForDelegate(delegate.get());
    delegate->letGo();
    ASSERT_TRUE(idle());
    heard = delegate->heard();
    EXPECT_EQ(heard.results.size(), 1U);
    EXPECT_TRUE(heard.failures.empty()) << "a cancelled evaluation did not fail";
}

TEST_F(Evaluator, ADelegateMayGoWhileItsEvaluationRuns) {
    auto delegate = std::make_shared<HeldDelegate>();
    const std::weak_ptr<HeldDelegate> weak = delegate;
    evaluator.startEvaluateExpressionWithDataDelegate(u"mean(c1,5)"_qs, table, delegate);
    delegate->waitUntilReached();
    evaluator.startEvaluateExpressionWithDataDelegate(u"c1"_qs, nullptr, delegate);
    delegate->letGo();
    delegate.reset();
    ASSERT_TRUE(idle());
    EXPECT_TRUE(weak.expired());
}

TEST_F(Evaluator, CancellingDoesNotWaitForTenThousandRows) {
    const auto delegate = std::make_shared<RecordingDelegate>();
    // About a millisecond a row.
    const QString slow = u"c1*(zeros(80,80)*zeros(80,1))[0,0]"_qs;
    evaluator.startEvaluateExpressionWithDataDelegate(slow, table, delegate);
    ASSERT_TRUE(support::waitUntil([&] { return delegate->heard().progress.size() > 1; }));
    evaluator.cancelAllOperationsForDelegate(delegate.get());
    ASSERT_TRUE(idle());
    const auto heard = delegate->heard();
    EXPECT_LT(heard.progress[heard.progress.size() - 2], 50) << "it went on to row 10,000";
    EXPECT_EQ(heard.progress.back(), 100);
    EXPECT_TRUE(heard.results.empty());
}

TEST_F(Evaluator, FourEvaluationsInAStormOfCancellations) {
    std::vector<std::shared_ptr<RecordingDelegate>> delegates;
    for (int i = 0; i < 4; ++i)
        delegates.push_back(std::make_shared<RecordingDelegate>());
    std::vector<quint64> last(delegates.size());
    const QString expressions[] = {u"sin(c1)*hour(c1)"_qs, u"sin(c1)*c1+row"_qs,
                                   u"percentile(c1,50,9)+bad"_qs};
    const int rounds = support::rounds(50);
    for (int round = 1; round <= rounds; ++round) {
        const auto& met = delegates[round / 2 % delegates.size()];
        const std::size_t reports = met->heard().progress.size();
        for (std::size_t i = 0; i < delegates.size(); ++i) {
            evaluator.cancelAllOperationsForDelegate(delegates[i].get());
            last[i] = evaluator.startEvaluateExpressionWithDataDelegate(
                round == rounds ? u"c1/row"_qs : expressions[round % 3], table, delegates[i]);
        }
        if (round % 2 == 0) { // the next round meets evaluations that have begun
            ASSERT_TRUE(support::waitUntil([&] { return met->heard().progress.size() > reports; }));
        }
    }
    ASSERT_TRUE(idle());
    for (std::size_t i = 0; i < delegates.size(); ++i) {
        EXPECT_EQ(delegates[i]->heard().generations.back(), last[i]);
        EXPECT_EQ(delegates[i]->heard().results.back()->column(0)[7], 1);
    }
}

TEST(SharedEvaluator, EndsWithRunningEvaluationsAndStartsAgain) {
    const auto delegate = std::make_shared<RecordingDelegate>();
    const auto table = tableOf({Values(1'000'000)});
    for (int round = 0; round < 2; ++round) {
        for (const QString& expression :
             {u"mean(c1,9)"_qs, u"sin(c1)"_qs, u"time()"_qs, u"delta(c1)"_qs, u"row"_qs})
            XExpressionEvaluator::sharedInstance().startEvaluateExpressionWithDataDelegate(expression, table,
                                                                                           delegate);
        XExpressionEvaluator::shutDown();
    }
    EXPECT_LT(delegate->heard().results.size(), 10U);
    EXPECT_TRUE(XExpressionEvaluator::sharedInstance().isIdle());
}

} // namespace
