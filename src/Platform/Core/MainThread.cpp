// The mailbox of the main thread: a locked queue of work and an eventfd that wakes the event loop.
// Queued Qt calls would do the same, but ThreadSanitizer cannot see into the packaged Qt and reports them.
#include "Platform/Core/MainThread.h"

#include "Core/Assertions.h"
#include "Platform/Core/Log.h"

#include <QEventLoop>
#include <QSocketNotifier>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <list>
#include <mutex>
#include <sys/eventfd.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

struct MainThread::Errand::Piece {
    /// A worker that waits for its piece; lives on the worker's stack. Guarded by the mailbox's mutex.
    struct Waiter {
        bool finished = false;
        bool ran = false;
        std::exception_ptr exception;
    };

    Work work;
    Waiter* waiter = nullptr; ///< null if nobody waits
};

namespace {

using Piece = MainThread::Errand::Piece;

struct Mailbox {
    std::mutex mutex;
    std::condition_variable arrived;  ///< a piece was handed over
    std::condition_variable finished; ///< a waiter's piece has run or was dropped
    std::list<Piece> pieces;
    int wakeUp = -1; ///< the eventfd; readable while there are pieces; -1 while there is no loop
};

/// Never destroyed: a worker may still look into it while the program exits.
Mailbox& mailbox() {
    static Mailbox& theMailbox = *new Mailbox;
    return theMailbox;
}

std::atomic<std::thread::id> mainThreadId{std::this_thread::get_id()};

/// Under the mutex. Does not touch the one piece in `place` if there is no loop that could run it.
bool handOver(Mailbox& box, std::list<Piece>& place) {
    if (box.wakeUp < 0)
        return false;
    box.pieces.splice(box.pieces.end(), place);
    eventfd_write(box.wakeUp, 1);
    box.arrived.notify_one();
    return true;
}

/// Under the mutex, with at least one piece.
Piece takeFirst(Mailbox& box) {
    Piece piece = std::move(box.pieces.front());
    box.pieces.pop_front();
    eventfd_t count = 0;
    if (box.pieces.empty())
        eventfd_read(box.wakeUp, &count);
    return piece;
}

/// Runs the work and destroys it before the waiter goes on: it may refer to the waiter's stack.
void run(Piece piece) {
    if (!piece.waiter)
        return piece.work();
    std::exception_ptr exception;
    try {
        piece.work();
    } catch (...) {
        exception = std::current_exception();
    }
    piece.work = nullptr;
    Mailbox& box = mailbox();
    const std::lock_guard lock(box.mutex);
    *piece.waiter = {.finished = true, .ran = true, .exception = std::move(exception)};
    box.finished.notify_all();
}

bool isMailboxEmpty() {
    Mailbox& box = mailbox();
    const std::lock_guard lock(box.mutex);
    return box.pieces.empty();
}

/// One piece a call, so that other events get their turn between two of them.
void runFirst() {
    Mailbox& box = mailbox();
    std::unique_lock lock(box.mutex);
    if (box.pieces.empty()) // a nested loop served it
        return;
    Piece piece = takeFirst(box);
    lock.unlock();
    run(std::move(piece));
}

} // namespace

bool MainThread::isCurrent() {
    return mainThreadId == std::this_thread::get_id();
}

MainThread::Errand::Errand(Work work) : m_place(std::make_unique<std::list<Piece>>()) {
    m_place->push_back({std::move(work)});
}

MainThread::Errand::~Errand() = default;
MainThread::Errand::Errand(Errand&& other) noexcept = default;
MainThread::Errand& MainThread::Errand::operator=(Errand&& other) noexcept = default;

void MainThread::perform(Work work) {
    perform(Errand(std::move(work)));
}

void MainThread::perform(Errand errand) noexcept {
    Mailbox& box = mailbox();
    const std::lock_guard lock(box.mutex);
    handOver(box, *errand.m_place);
}

bool MainThread::performAndWait(Work work) {
    if (isCurrent()) {
        work();
        return true;
    }
    Mailbox& box = mailbox();
    Piece::Waiter waiter;
    std::list<Piece> place;
    place.push_back({std::move(work), &waiter});
    std::unique_lock lock(box.mutex);
    if (!handOver(box, place))
        return false;
    box.finished.wait(lock, [&] { return waiter.finished; });
    lock.unlock();
    if (waiter.exception)
        std::rethrow_exception(waiter.exception);
    return waiter.ran;
}

void MainThread::runUntil(const std::function<bool()>& done) {
    if (!xAssert(isCurrent(), "Only the main thread runs the event loop"))
        return;
    QEventLoop loop;
    // A worker hands its result over before it is seen to be idle: what is waiting belongs to what was done.
    while (!done() || !isMailboxEmpty())
        loop.processEvents(QEventLoop::WaitForMoreEvents);
}

void MainThread::serveUntil(const std::function<bool()>& done) {
    Mailbox& box = mailbox();
    while (!done()) {
        std::unique_lock lock(box.mutex);
        box.arrived.wait(lock, [&] { return !box.pieces.empty() || box.wakeUp < 0; });
        if (box.wakeUp < 0)
            return;
        Piece piece = takeFirst(box);
        lock.unlock();
        try {
            run(std::move(piece));
        } catch (const std::exception& exception) {
            logMethod("MainThread::serveUntil", QString::fromUtf8(exception.what()));
        }
    }
}

MainThreadLoop::MainThreadLoop() {
    Mailbox& box = mailbox();
    const std::lock_guard lock(box.mutex);
    if (!xAssert(box.wakeUp < 0, "There is a main thread loop already"))
        return;
    box.wakeUp = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (box.wakeUp < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
    mainThreadId = std::this_thread::get_id();
    m_notifier = std::make_unique<QSocketNotifier>(box.wakeUp, QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [] { runFirst(); });
}

MainThreadLoop::~MainThreadLoop() {
    if (!m_notifier)
        return;
    m_notifier.reset();
    Mailbox& box = mailbox();
    std::list<Piece> dropped;
    {
        const std::lock_guard lock(box.mutex);
        close(std::exchange(box.wakeUp, -1));
        dropped.swap(box.pieces);
    }
    // What the work holds goes before its waiter does; it may hand more over, which is dropped, too.
    for (Piece& piece : dropped)
        piece.work = nullptr;
    const std::lock_guard lock(box.mutex);
    for (const Piece& piece : dropped) {
        if (piece.waiter)
            piece.waiter->finished = true;
    }
    box.finished.notify_all();
}
