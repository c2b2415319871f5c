// The two hops from a worker to the main thread, and the main thread's wait for workers.
#pragma once

#include <functional>
#include <list>
#include <memory>

class QSocketNotifier;

/// The main thread is the one that made the `MainThreadLoop`. Work that is handed over runs in the order of
/// its arrival, each piece once, from the event loop (nested loops included).
namespace MainThread {

using Work = std::function<void()>;

bool isCurrent();

/// Hands `work` over and returns at once. From the main thread itself, too, it runs later, from the event
/// loop. Work that arrives after the loop ended is dropped (destroyed on the caller's thread).
void perform(Work work);

/// Work that already has its place among what is handed over.
class Errand {
  public:
    explicit Errand(Work work);
    ~Errand();
    Errand(Errand&& other) noexcept;
    Errand& operator=(Errand&& other) noexcept;

    struct Piece;

  private:
    friend void perform(Errand errand) noexcept;

    std::unique_ptr<std::list<Piece>> m_place; ///< of one piece
};

/// As above; needs no memory. For workers that must hand over whatever happened to them.
void perform(Errand errand) noexcept;

/// Hands `work` over and waits until it has run; on the main thread it runs at once. Returns whether it ran:
/// when the program shuts down, waiting ends at once and the work is dropped. An exception that the work
/// throws on behalf of a worker is rethrown on the worker.
bool performAndWait(Work work);

/// Runs the event loop until `done()` holds and no handed-over work waits: a result that was handed over
/// before a worker became idle has then arrived. `done` is asked after every piece of work and every round of
/// other events and stays true once it is. Main thread only. This is how the main thread waits for queues and
/// readers: it never blocks on a worker. A worker that makes `done()` true must hand something over
/// afterwards, if only `[] {}`.
void runUntil(const std::function<bool()>& done);

/// As `runUntil`, but serves handed-over work alone and no other events: for destructors. Ends early when the
/// loop has ended. An exception of a piece is logged.
void serveUntil(const std::function<bool()>& done);

} // namespace MainThread

/// Receives handed-over work on the main thread: made once by `main` (or a test) after the application
/// object. Destroying it ends every wait of `performAndWait`; work that did not run is dropped.
class MainThreadLoop {
  public:
    MainThreadLoop();
    ~MainThreadLoop();
    MainThreadLoop(const MainThreadLoop&) = delete;
    MainThreadLoop& operator=(const MainThreadLoop&) = delete;

  private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};
