// A queue of background operations on threads of its own, at most n at once.
#pragma once

#include "Platform/Core/MainThread.h"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <span>
#include <stop_token>
#include <thread>
#include <vector>

/// A piece of background work that can be cancelled.
class Operation {
  public:
    virtual ~Operation() = default;

    /// The work, on a thread of the queue. A cancelled operation is still run; it polls `isCancelled`.
    /// What it throws is logged and goes no further.
    virtual void main() = 0;
    /// Asks the operation to end early. Any thread.
    virtual void cancel() { m_stop.request_stop(); }

    bool isCancelled() const { return m_stop.stop_requested(); }
    std::stop_token stopToken() const { return m_stop.get_token(); }

  private:
    std::stop_source m_stop;
};

/// Runs operations in the order they were added. An operation stays listed until its `main` has returned,
/// hand-over to the main thread included. Operations are released on the main thread where there is one; that
/// hand-over also wakes `MainThread::runUntil`, which may therefore wait for `isIdle()`.
class OperationQueue {
  public:
    explicit OperationQueue(std::size_t maxConcurrentOperations);
    /// Cancels what is listed, lets it run out and joins the threads; hand-overs that wait for the main
    /// thread are served meanwhile. Not from inside such a hand-over of an own operation: that one would wait
    /// for itself.
    ~OperationQueue();
    OperationQueue(const OperationQueue&) = delete;
    OperationQueue& operator=(const OperationQueue&) = delete;

    /// Throws, with nothing added: std::system_error when the system has no thread for the first operation,
    /// std::bad_alloc without memory.
    void add(std::shared_ptr<Operation> operation);
    /// Adds what `decide` returns, which sees the listed operations under the queue's lock and may cancel
    /// some of them; null adds nothing. `decide` must not call the queue. Throws as `add` does.
    void addUnderLock(
        const std::function<std::shared_ptr<Operation>(std::span<const std::shared_ptr<Operation>>)>& decide);
    /// Cancels the listed operations, running or not, for which `predicate`, asked under the lock, holds.
    void cancelIf(const std::function<bool(Operation&)>& predicate);
    void cancelAll();
    std::size_t operationCount() const;
    bool isIdle() const { return operationCount() == 0; }

  private:
    using Operations = std::vector<std::shared_ptr<Operation>>;

    struct Waiting {
        std::shared_ptr<Operation> operation;
        MainThread::Errand release; ///< on the main thread
    };

    void enqueue(std::shared_ptr<Operation> operation); ///< under the lock
    void startThread();
    /// On a thread of the queue; `wakeUp` is the last that it hands over.
    void work(MainThread::Errand wakeUp);

    const std::size_t m_maxThreads;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;  ///< there is something to run, or the queue ends
    Operations m_listed;                ///< all, in the order they were added
    std::deque<Waiting> m_waiting;      ///< those that have not started
    std::vector<std::thread> m_threads; ///< started on demand, at most m_maxThreads
    std::size_t m_busyThreads = 0;
    std::size_t m_liveThreads = 0;
    bool m_ending = false;
};
