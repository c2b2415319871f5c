// The threads of a queue, and where its operations end.
#include "Platform/Core/OperationQueue.h"

#include "Platform/Core/Log.h"
#include "Platform/Core/MainThread.h"

#include <algorithm>
#include <exception>
#include <new>
#include <system_error>
#include <utility>

namespace {

void logFault(const QString& text) {
    try {
        logMethod("-[Operation main]", text);
    } catch (const std::bad_alloc&) {
        // Not even a line in the log can be had.
    }
}

void runGuarded(Operation& operation) {
    try {
        operation.main();
    } catch (const std::bad_alloc&) {
        logFault(QStringLiteral("not enough memory"));
    } catch (const std::exception& exception) {
        logFault(QString::fromUtf8(exception.what()));
    } catch (...) {
        logFault(QStringLiteral("unknown exception"));
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
    m_waiting.push_back(operation);
    m_listed.push_back(std::move(operation));
    m_changed.notify_one();
}

void OperationQueue::startThread() {
    try {
        m_threads.emplace_back([this] { work(); });
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

void OperationQueue::work() {
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_ending || !m_waiting.empty(); });
        if (m_waiting.empty())
            break;
        std::shared_ptr<Operation> operation = std::move(m_waiting.front());
        m_waiting.pop_front();
        ++m_busyThreads;
        lock.unlock();

        runGuarded(*operation);

        lock.lock();
        --m_busyThreads;
        std::erase(m_listed, operation);
        lock.unlock();
        MainThread::perform([operation = std::move(operation)] {});
        lock.lock();
    }
    --m_liveThreads;
    lock.unlock();
    MainThread::perform([] {}); // the destructor asks again
}
