// The side of the conversation that answers.
#include "Classes/SingleInstance/InstanceServer.h"

#include "Platform/Core/Log.h"

#include <QFile>
#include <QLocalSocket>
#include <QPointer>
#include <QTimer>

#include <utility>

namespace {

/// One launch's request, from its first byte to the reply. Belongs to its socket.
class Conversation : public QObject {
  public:
    Conversation(QLocalSocket& socket, InstanceServer::Serve serve, std::chrono::milliseconds patience)
        : QObject(&socket), m_socket(socket), m_serve(std::move(serve)) {
        // One byte more than the largest frame is no frame any more.
        socket.setReadBufferSize(InstanceMessage::largestFrame + 1);
        connect(&socket, &QLocalSocket::readyRead, this, &Conversation::read);
        connect(&socket, &QLocalSocket::disconnected, &socket, &QObject::deleteLater);
        m_timeLimit.setSingleShot(true);
        connect(&m_timeLimit, &QTimer::timeout, &socket, &QLocalSocket::abort);
        m_timeLimit.start(patience);
        read(); // what came before anybody listened
    }

  private:
    void read() {
        if (m_isServing)
            return;
        m_received += m_socket.read(InstanceMessage::largestFrame + 1 - m_received.size());
        InstanceMessage::Frame frame{};
        switch (InstanceMessage::takeFrame(m_received, frame)) {
        case InstanceMessage::Taken::Incomplete:
            return;
        case InstanceMessage::Taken::Broken:
            return m_socket.abort();
        case InstanceMessage::Taken::Whole:
            break;
        }
        const auto request = frame.kind == InstanceMessage::Kind::Request && m_received.isEmpty()
                                 ? InstanceMessage::decodedRequest(frame.payload)
                                 : std::nullopt;
        // Who does not wait any more has started a program of its own.
        if (!request || !isOtherEndThere(static_cast<int>(m_socket.socketDescriptor())))
            return m_socket.abort();
        answer(*request);
    }

    void answer(const InstanceRequest& request) {
        m_isServing = true;
        m_timeLimit.stop();
        m_socket.write(InstanceMessage::encodedAccepted());
        m_socket.flush();
        // Carrying it out may run an event loop, in which this can go.
        const QPointer<QLocalSocket> socket(&m_socket);
        const InstanceServer::Serve serve = m_serve;
        InstanceReply reply{1, {}};
        try {
            reply = serve(request);
        } catch (const std::exception& error) {
            reply.errors += QString::fromUtf8(error.what());
        }
        if (socket.isNull())
            return;
        socket->write(InstanceMessage::encoded(reply));
        socket->disconnectFromServer(); // once all is written
    }

    QLocalSocket& m_socket;
    const InstanceServer::Serve m_serve;
    QTimer m_timeLimit;
    QByteArray m_received;
    bool m_isServing = false;
};

} // namespace

InstanceServer::InstanceServer(InstancePlace place, InstanceLock lock, std::chrono::milliseconds patience)
    : m_place(std::move(place)), m_lock(std::move(lock)), m_patience(patience) {
    connect(&m_server, &QLocalServer::newConnection, this, &InstanceServer::takeConnection);
}

InstanceServer::~InstanceServer() {
    close();
}

bool InstanceServer::listen(Serve serve) {
    m_serve = std::move(serve);
    const QString socket = QFile::decodeName(m_place.socket);
    QFile::remove(socket); // of one that crashed: the lock is ours
    if (m_server.listen(socket))
        return true;
    qCInfo(velquinLog, "no socket for later launches: %s", qUtf8Printable(m_server.errorString()));
    return false;
}

void InstanceServer::close() {
    m_server.close(); // takes the socket's file away, too
    const auto sockets = m_server.findChildren<QLocalSocket*>();
    qDeleteAll(sockets);
}

void InstanceServer::takeConnection() {
    while (QLocalSocket* socket = m_server.nextPendingConnection()) {
        const bool isOurs = userAtOtherEnd(static_cast<int>(socket->socketDescriptor())) == m_place.user;
        if (isOurs && m_server.findChildren<QLocalSocket*>().size() <= greatestConnections)
            new Conversation(*socket, m_serve, m_patience); // the socket owns it
        else
            delete socket;
    }
}
