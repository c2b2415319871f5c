// The operation queue: how many at once, what is listed, cancelling, faults, and where operations end.
#include "Platform/Core/OperationQueue.h"
#include "Platform/Core/MainThread.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <atomic>
#include <latch>
#include <mutex>
#include <pthread.h>
#include <stdexcept>
#include <string>
#include <system_error>

namespace {

class Task : public Operation {
  public:
    explicit Task(std::function<void(Task&)> work, std::function<void()> atEnd = {})
        : m_work(std::move(work)), m_atEnd(std::move(atEnd)) {}
    ~Task() override {
        if (m_atEnd)
            m_atEnd();
    }
    void main() override { m_work(*this); }

    void waitForCancel() const {
        std::mutex mutex;
        std::condition_variable_any wake;
        std::unique_lock lock(mutex);
        wake.wait(lock, stopToken(), [] { return false; });
    }

  private:
    std::function<void(Task&)> m_work;
    std::function<void()> m_atEnd;
};

std::shared_ptr<Task> task(std::function<void(Task&)> work, std::function<void()> atEnd = {}) {
    return std::make_shared<Task>(std::move(work), std::move(atEnd));
}

TEST(OperationQueue, runsNAtOnceAndNoMore) {
    constexpr int limit = 3;
    std::latch firstThree(limit); // passed only if three operations run at once
    std::atomic<int> running = 0;
    std::atomic<int> most = 0;
    std::atomic<int> ran = 0;
    OperationQueue queue(limit);
    for (int i = 0; i < 20; ++i) {
        queue.add(task([&, i](Task&) {
            const int now = ++running;
            if (now > most)
                most = now;
            if (i < limit)
                firstThree.arrive_and_wait();
            ++ran;
            --running;
        }));
    }
    MainThread::runUntil([&] { return queue.isIdle(); });
    EXPECT_EQ(ran, 20);
    EXPECT_EQ(most, limit);
}

TEST(OperationQueue, runsInTheOrderOfAddingAndListsAnOperationUntilItsHandOverRan) {
    std::vector<std::size_t> listed;
    std::string order;
    OperationQueue queue(1);
    for (const char name : {'a', 'b', 'c'}) {
        queue.add(task([&, name](Task&) {
            MainThread::performAndWait([&, name] {
                order += name;
                listed.push_back(queue.operationCount());
            });
        }));
    }
    MainThread::runUntil([&] { return queue.isIdle(); });
    EXPECT_EQ(order, "abc");
    EXPECT_EQ(listed, (std::vector<std::size_t>{3, 2, 1}));
}

TEST(OperationQueue, cancelsByPredicateAndRunsWhatIsCancelled) {
    std::atomic<int> cancelled = 0;
    std::atomic<int> finished = 0;
    const auto waits = [&](Task& self) {
        self.waitForCancel();
        ++cancelled;
    };
    OperationQueue queue(2);
    const auto first = task(waits);
    const auto second = task(waits);
    queue.add(first);
    queue.add(second);
    queue.add(task([&](Task& self) { finished += self.isCancelled() ? 0 : 1; }));
    queue.cancelIf([&](Operation& operation) { return &operation == second.get(); });
    MainThread::runUntil([&] { return queue.operationCount() == 1; });
    EXPECT_FALSE(first->isCancelled());

    std::size_t seen = 0;
    queue.addUnderLock([&](auto listed) {
        seen = listed.size();
        listed.front()->cancel();
        return nullptr;
    });
    MainThread::runUntil([&] { return queue.isIdle(); });
    EXPECT_EQ(seen, 1U);
    EXPECT_EQ(cancelled, 2);
    EXPECT_EQ(finished, 1);
}

TEST(OperationQueue, anExceptionIsLoggedAndTheQueueGoesOn) {
    const support::LogRecorder log;
    std::atomic<bool> next = false;
    OperationQueue queue(1);
    queue.add(task([](Task&) { throw std::runtime_error("spilled"); }));
    queue.add(task([](Task&) { throw 1; }));
    queue.add(task([&](Task&) { next = true; }));
    MainThread::runUntil([&] { return queue.isIdle(); });
    EXPECT_TRUE(next);
    EXPECT_EQ(log.lines(), (QStringList{QStringLiteral("-[Operation main] spilled"),
                                        QStringLiteral("-[Operation main] unknown exception")}));
}

/// For its lifetime the system starts no thread, for want of room for its stack.
class NoMoreThreads {
  public:
    NoMoreThreads() {
        pthread_getattr_default_np(&m_usual);
        pthread_attr_t greedy = m_usual;
        pthread_attr_setstacksize(&greedy, std::size_t{1} << 50U);
        pthread_setattr_default_np(&greedy);
    }
    ~NoMoreThreads() {
        pthread_setattr_default_np(&m_usual);
        pthread_attr_destroy(&m_usual);
    }
    NoMoreThreads(const NoMoreThreads&) = delete;
    NoMoreThreads& operator=(const NoMoreThreads&) = delete;

  private:
    pthread_attr_t m_usual{};
};

TEST(OperationQueue, makesDoWithTheThreadsThatTheSystemHas) {
    OperationQueue queue(2);
    std::atomic<int> ran = 0;
    const auto add = [&] { queue.add(task([&](Task&) { ++ran; })); };
    {
        const NoMoreThreads none;
        EXPECT_THROW(add(), std::system_error);
        EXPECT_TRUE(queue.isIdle()) << "nothing waits for a thread that never comes";
    }
    std::latch isBusy(1);
    std::latch mayEnd(1);
    queue.add(task([&](Task&) {
        isBusy.count_down();
        mayEnd.wait();
    }));
    isBusy.wait();
    {
        const NoMoreThreads none;
        add();
    }
    mayEnd.count_down();
    MainThread::runUntil([&] { return queue.isIdle(); });
    EXPECT_EQ(ran, 1);
}

TEST(OperationQueue, anOperationIsReleasedOnTheMainThread) {
    int released = 0;
    OperationQueue queue(2);
    for (int i = 0; i < 10; ++i) {
        queue.add(task([](Task&) {},
                       [&] {
                           EXPECT_TRUE(MainThread::isCurrent());
                           ++released;
                       }));
    }
    EXPECT_TRUE(support::waitUntil([&] { return released == 10; }));
    EXPECT_TRUE(queue.isIdle());
}

TEST(OperationQueue, itsEndCancelsAndServesTheHandOversItWaitsFor) {
    for (int round = 0; round < 20; ++round) {
        int handedOver = 0;
        std::atomic<int> ran = 0;
        {
            OperationQueue queue(2);
            for (int i = 0; i < 5; ++i) {
                queue.add(task([&](Task& self) {
                    self.waitForCancel();
                    EXPECT_TRUE(MainThread::performAndWait([&] { ++handedOver; }));
                    ++ran;
                }));
            }
        }
        EXPECT_EQ(handedOver, 5);
        EXPECT_EQ(ran, 5);
    }
}

} // namespace
