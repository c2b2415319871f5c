// A handler that writes one byte into a pipe, which the event loop reads.
#include "Classes/Recovery/EndSignals.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace {

std::atomic<int> pipeOfHandler = -1;
static_assert(std::atomic<int>::is_always_lock_free, "used in a signal handler");

extern "C" void writeToPipe(int) {
    const int before = errno;
    const char byte = 0;
    // A full pipe holds requests enough.
    [[maybe_unused]] const ssize_t written = ::write(pipeOfHandler, &byte, 1);
    errno = before;
}

} // namespace

EndSignals::EndSignals() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        failWithErrno();
    m_reading = FileDescriptor(ends[0]);
    m_writing = FileDescriptor(ends[1]);
    m_notifier = std::make_unique<QSocketNotifier>(m_reading.get(), QSocketNotifier::Read);
    connect(m_notifier.get(), &QSocketNotifier::activated, this, [this] {
        std::array<char, 16> bytes{};
        while (::read(m_reading.get(), bytes.data(), bytes.size()) > 0) {
        }
        Q_EMIT endRequested();
    });
    pipeOfHandler = m_writing.get();
    struct sigaction handling = {};
    handling.sa_handler = writeToPipe;
    handling.sa_flags = SA_RESTART;
    sigemptyset(&handling.sa_mask);
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        ::sigaction(numbers[i], nullptr, &m_former[i]);
        if (m_former[i].sa_handler != SIG_IGN)
            ::sigaction(numbers[i], &handling, nullptr);
    }
}

EndSignals::~EndSignals() {
    for (std::size_t i = 0; i < numbers.size(); ++i)
        ::sigaction(numbers[i], &m_former[i], nullptr);
    pipeOfHandler = -1;
}
