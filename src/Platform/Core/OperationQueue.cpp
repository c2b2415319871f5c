// The threads of a queue, and where its operations end.
#include "Platform/Core/OperationQueue.h"

#include "Platform/Core/Log.h"

#include <algorithm>
#include <exception>
#include <new>
#include <system_error>
#include <utility>

namespace {

void logFault(const char* text) {
    try {
        logMethod("-[Operation main]", QString::fromUtf8(text));
    } catch (const std::bad_alloc&) {
        // Not even a line in the log can be had.
    }
}

void runGuarded(Operation& operation) {
    try {
        operation.main();
    } catch (const std::bad_alloc&) {
        logFault("not enough memory");
    } catch (const std::exception& exception) {
        logFault(exception.what());
    } catch (...) {
        logFault("unknown exception");
    }
}

} // namespace

OperationQueue::OperationQueue(std::size_t maxConcurrentOperations)
    : m_maxThreads(std::max<std::size_t>(maxConcurrentOperations, 1)) {}

OperationQueue::~OperationQueue() {
    cancelAll();
    {
        const std::lock_guard lock(m_mutex);
        m_ending = true;
    }
    m_changed.notify_all();
    if (MainThread::isCurrent()) {
        MainThread::serveUntil([this] {
            const std::lock_guard lock(m_mutex);
            return m_liveThreads == 0;
        });
    }
    for (std::thread& thread : m_threads)
        thread.join();
}

void OperationQueue::add(std::shared_ptr<Operation> operation) {
    addUnderLock([&operation](auto) { return std::move(operation); });
}

void OperationQueue::addUnderLock(
    const std::function<std::shared_ptr<Operation>(std::span<const std::shared_ptr<Operation>>)>& decide) {
    const std::lock_guard lock(m_mutex);
    if (std::shared_ptr<Operation> operation = decide(m_listed))
        enqueue(std::move(operation));
}

void OperationQueue::enqueue(std::shared_ptr<Operation> operation) {
    const std::size_t idleThreads = m_liveThreads - m_busyThreads;
    if (m_waiting.size() >= idleThreads && m_threads.size() < m_maxThreads)
        startThread();
    m_waiting.push_back({operation, MainThread::Errand([operation] {})});
    try {
        m_listed.push_back(std::move(operation));
    } catch (...) {
        m_waiting.pop_back();
        throw;
    }
    m_changed.notify_one();
}

void OperationQueue::startThread() {
    try {
        m_threads.emplace_back(&OperationQueue::work, this, MainThread::Errand([] {}));
        ++m_liveThreads;
    } catch (const std::system_error&) {
        if (m_threads.empty())
            throw; // else the threads that there are do the work
    }
}

void OperationQueue::cancelIf(const std::function<bool(Operation&)>& predicate) {
    const std::lock_guard lock(m_mutex);
    for (const auto& operation : m_listed) {
        if (predicate(*operation))
            operation->cancel();
    }
}

void OperationQueue::cancelAll() {
    cancelIf([](Operation&) { return true; });
}

std::size_t OperationQueue::operationCount() const {
    const std::lock_guard lock(m_mutex);
    return m_listed.size();
}

void OperationQueue::work(MainThread::Errand wakeUp) {
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_ending || !m_waiting.empty(); });
        if (m_waiting.empty())
            break;
        Waiting next = std::move(m_waiting.front());
        m_waiting.pop_front();
        ++m_busyThreads;
        lock.unlock();

        runGuarded(*next.operation);

        lock.lock();
        --m_busyThreads;
        std::erase(m_listed, next.operation);
        lock.unlock();
        next.operation.reset();
        MainThread::perform(std::move(next.release));
        lock.lock();
    }
    --m_liveThreads;
    lock.unlock();
    MainThread::perform(std::move(wakeUp)); // the destructor asks again
}
