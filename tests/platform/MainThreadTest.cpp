// The hops to the main thread: order, exceptions, nested waiting, shutting down.
#include "Platform/Core/MainThread.h"
#include "support/TestSupport.h"

#include <QTimer>

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace {

TEST(MainThread, workOfManyThreadsRunsOnceThereAndInTheOrderOfEachThread) {
    constexpr int threadCount = 4;
    constexpr int pieces = 500;
    std::vector<std::vector<int>> arrived(threadCount); // no lock: only the main thread touches it
    int total = 0;
    std::vector<std::jthread> threads;
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < pieces; ++i) {
                const auto work = [&, thread, i] {
                    EXPECT_TRUE(MainThread::isCurrent());
                    arrived[static_cast<std::size_t>(thread)].push_back(i);
                    ++total;
                };
                if (i % 100 == 99)
                    EXPECT_TRUE(MainThread::performAndWait(work));
                else
                    MainThread::perform(work);
            }
        });
    }
    ASSERT_TRUE(support::waitUntil([&] { return total == threadCount * pieces; }));
    for (const std::vector<int>& ofThread : arrived)
        EXPECT_TRUE(ofThread.size() == pieces && std::is_sorted(ofThread.begin(), ofThread.end()));
}

TEST(MainThread, performRunsLaterAndPerformAndWaitAtOnceOnTheMainThreadItself) {
    std::string order;
    MainThread::perform([&] { order += 'b'; });
    EXPECT_TRUE(MainThread::performAndWait([&] { order += 'a'; }));
    EXPECT_EQ(order, "a");
    EXPECT_TRUE(support::waitUntil([&] { return order == "ab"; }));
}

TEST(MainThread, anExceptionOfTheWorkReachesTheWorkerThatWaits) {
    std::string caught;
    bool ended = false;
    std::jthread worker([&] {
        try {
            MainThread::performAndWait([] { throw std::runtime_error("spilled"); });
        } catch (const std::runtime_error& error) {
            caught = error.what();
        }
        MainThread::perform([&] { ended = true; });
    });
    EXPECT_TRUE(support::waitUntil([&] { return ended; }));
    EXPECT_EQ(caught, "spilled");
}

TEST(MainThread, runUntilAsksAfterHandedOverWorkAndAfterOtherEvents) {
    int ran = 0;
    for (int i = 0; i < 10; ++i)
        MainThread::perform([&] { ++ran; });
    MainThread::serveUntil([&] { return ran == 3; });
    EXPECT_EQ(ran, 3); // not a piece more
    MainThread::runUntil([&] { return ran >= 5; });
    EXPECT_EQ(ran, 10); // what was handed over has arrived, too
    bool timed = false;
    QTimer::singleShot(0, [&] { timed = true; });
    MainThread::runUntil([&] { return timed; });
    EXPECT_TRUE(timed);
}

TEST(MainThread, aPieceMayWaitForALaterPiece) {
    std::string order;
    MainThread::perform([&] {
        order += '(';
        MainThread::runUntil([&] { return order.find('x') != std::string::npos; });
        order += ')';
    });
    MainThread::perform([&] { order += 'x'; });
    MainThread::perform([&] { order += 'y'; });
    EXPECT_TRUE(support::waitUntil([&] { return order.size() == 4; }));
    EXPECT_EQ(order, "(xy)"); // nothing that waits is left when the inner one returns
}

TEST(MainThread, theEndOfTheLoopEndsEveryWaitAndDropsTheWork) {
    for (int round = 0; round < 100; ++round) { // the workers arrive before, while and after the loop ends
        std::vector<std::jthread> workers;
        for (int i = 0; i < 2; ++i) {
            workers.emplace_back([] {
                auto held = std::make_shared<int>();
                const std::weak_ptr<int> watched = held;
                const auto work = [](const std::shared_ptr<int>& keeps) {
                    return [keeps] { ADD_FAILURE() << "ran without a loop"; };
                };
                EXPECT_FALSE(MainThread::performAndWait(work(std::exchange(held, nullptr))));
                EXPECT_TRUE(watched.expired()); // the work is gone before its waiter goes on
                MainThread::perform(work(held));
            });
        }
        support::mainThreadLoop().reset();
        workers.clear(); // joins
        support::mainThreadLoop().emplace();
    }
    const support::AssertionRecorder recorder;
    const MainThreadLoop second;
    EXPECT_EQ(recorder.texts(), std::vector<std::string>{"There is a main thread loop already"});
}

} // namespace
