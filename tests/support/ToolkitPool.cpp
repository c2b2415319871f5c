// For ThreadSanitizer: what the toolkit would do on threads of its own, such as scaling images, it does on
// the thread that asks. Its locks are not instrumented, so that every hand-over to such a thread would be
// reported.
#include <QThreadPool>

#include <functional>

/// Found before the toolkit's own, since programs come before their libraries.
void QThreadPool::start(std::function<void()> work, int) {
    work();
}
