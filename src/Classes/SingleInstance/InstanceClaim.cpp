// The lock, and the side of the conversation that asks.
#include "Classes/SingleInstance/InstanceClaim.h"

#include <QCoreApplication>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

namespace {

constexpr auto betweenLooks = 20ms; // between two looks at whether another start is ready
constexpr int greatestRefusals = 3;

/// A connection to the one; closes with the object.
class Connection {
  public:
    explicit Connection(const InstancePlace& place)
        : m_socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
        sockaddr_un address{};
        address.sun_family = AF_UNIX;
        std::memcpy(address.sun_path, place.socket.constData(),
                    static_cast<std::size_t>(place.socket.size()));
        // A queue that is full (EAGAIN) is that of one who does not answer.
        if (::connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
            m_isOpen = true;
        else
            m_isFull = errno == EAGAIN;
    }
    ~Connection() {
        if (m_socket >= 0)
            ::close(m_socket);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    bool isOpen() const { return m_isOpen; }
    bool isFull() const { return m_isFull; }
    bool isWith(uid_t user) const { return userAtOtherEnd(m_socket) == user; }

    bool send(QByteArrayView bytes, Clock::time_point deadline) const {
        while (!bytes.isEmpty()) {
            if (!waitFor(POLLOUT, deadline))
                return false;
            const ssize_t sent =
                ::send(m_socket, bytes.data(), static_cast<std::size_t>(bytes.size()), MSG_NOSIGNAL);
            if (sent > 0)
                bytes = bytes.sliced(sent);
            else if (errno != EINTR && errno != EAGAIN)
                return false;
        }
        return true;
    }

    enum class Outcome { Received, Ended, TimedOut };
    Outcome receive(InstanceMessage::Frame& frame, Clock::time_point deadline) {
        for (;;) {
            const auto taken = InstanceMessage::takeFrame(m_received, frame);
            if (taken != InstanceMessage::Taken::Incomplete)
                return taken == InstanceMessage::Taken::Whole ? Outcome::Received : Outcome::Ended;
            if (!waitFor(POLLIN, deadline))
                return Outcome::TimedOut;
            std::array<char, 4096> block;
            const ssize_t size = ::recv(m_socket, block.data(), block.size(), 0);
            if (size > 0)
                m_received.append(block.data(), size);
            else if (size == 0 || (errno != EINTR && errno != EAGAIN))
                return Outcome::Ended;
        }
    }

  private:
    bool waitFor(short event, Clock::time_point deadline) const {
        for (;;) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
            if (left <= 0ms)
                return false;
            pollfd polled{m_socket, event, 0};
            const int ready = ::poll(&polled, 1, static_cast<int>(left.count()));
            if (ready > 0)
                return true;
            if (ready < 0 && errno != EINTR)
                return false;
        }
    }

    int m_socket;
    bool m_isOpen = false;
    bool m_isFull = false;
    QByteArray m_received;
};

InstanceReply endedTooEarly() {
    return {1,
            {QCoreApplication::translate("SingleInstance", "the program that runs already did not answer")}};
}

enum class Handing { Refused, HangsOrIsNoFriend };

std::variant<InstanceReply, Handing> handOver(Connection& connection, const InstancePlace& place,
                                              const QByteArray& request, const InstancePatience& patience) {
    using InstanceMessage::Frame;
    using InstanceMessage::Kind;
    if (!connection.isWith(place.user))
        return Handing::HangsOrIsNoFriend;
    const auto answerBy = Clock::now() + patience.answer;
    Frame frame{};
    if (!connection.send(request, answerBy))
        return Clock::now() < answerBy ? Handing::Refused : Handing::HangsOrIsNoFriend;
    const auto accepted = connection.receive(frame, answerBy);
    if (accepted == Connection::Outcome::Ended)
        return Handing::Refused;
    if (accepted == Connection::Outcome::TimedOut || frame.kind != Kind::Accepted)
        return Handing::HangsOrIsNoFriend;
    if (connection.receive(frame, Clock::now() + patience.work) != Connection::Outcome::Received ||
        frame.kind != Kind::Reply)
        return endedTooEarly();
    return InstanceMessage::decodedReply(frame.payload).value_or(endedTooEarly());
}

} // namespace

std::optional<uid_t> userAtOtherEnd(int socket) {
    ucred credentials{};
    socklen_t size = sizeof credentials;
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0 || size != sizeof credentials)
        return std::nullopt;
    return credentials.uid;
}

bool isOtherEndThere(int socket) {
    pollfd polled{socket, POLLRDHUP, 0};
    return ::poll(&polled, 1, 0) == 0;
}

std::optional<InstanceLock> InstanceLock::at(const InstancePlace& place) {
    constexpr mode_t ownersAlone = 0600;
    const int file =
        ::open(place.lock.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, ownersAlone);
    if (file < 0)
        return std::nullopt;
    return InstanceLock(file);
}

bool InstanceLock::take() const {
    return ::flock(m_file, LOCK_EX | LOCK_NB) == 0;
}

InstanceLock::InstanceLock(InstanceLock&& other) noexcept : m_file(std::exchange(other.m_file, -1)) {}

InstanceLock& InstanceLock::operator=(InstanceLock&& other) noexcept {
    std::swap(m_file, other.m_file);
    return *this;
}

InstanceLock::~InstanceLock() {
    if (m_file >= 0)
        ::close(m_file);
}

InstanceClaim claimInstance(const InstancePlace& place, const InstanceRequest& request,
                            const InstancePatience& patience) {
    std::optional<InstanceLock> lock = InstanceLock::at(place);
    if (!lock)
        return IsAlone{};
    const std::optional<QByteArray> bytes = InstanceMessage::encoded(request);
    const auto startedBy = Clock::now() + patience.start;
    int refusals = 0;
    do {
        if (lock->take())
            return IsFirst{std::move(*lock)};
        if (!bytes)
            return IsAlone{};
        Connection connection(place);
        if (connection.isOpen()) {
            auto handed = handOver(connection, place, *bytes, patience);
            if (auto* reply = std::get_if<InstanceReply>(&handed))
                return std::move(*reply);
            if (std::get<Handing>(handed) == Handing::HangsOrIsNoFriend || ++refusals == greatestRefusals)
                return IsAlone{};
        } else if (connection.isFull()) {
            return IsAlone{};
        }
        ::poll(nullptr, 0,
               static_cast<int>(betweenLooks.count())); // it starts or quits: the lock or the socket comes
    } while (Clock::now() < startedBy);
    return IsAlone{};
}
