// The one program listens to later launches.
#pragma once

#include "Classes/SingleInstance/InstanceClaim.h"

#include <QLocalServer>
#include <QObject>

#include <functional>

/// Takes requests of its own user alone, one frame a connection; whatever else comes in ends its connection
/// and changes nothing. Holds the lock to its own end, so that nobody else listens at the place. Main thread.
class InstanceServer : public QObject {
    Q_OBJECT

  public:
    using Serve = std::function<InstanceReply(const InstanceRequest&)>;

    static constexpr std::chrono::milliseconds usualPatience{5'000};
    static constexpr int greatestConnections = 32;

    /// A connection that has not sent its request after `patience` is closed.
    InstanceServer(InstancePlace place, InstanceLock lock,
                   std::chrono::milliseconds patience = usualPatience);
    ~InstanceServer() override;

    /// Requests are carried out from the event loop. A socket that a former program left is taken over. False
    /// if there can be no socket, which is logged.
    bool listen(Serve serve);
    /// Nobody is heard any more; who was not yet accepted looks for another one.
    void close();

  private:
    void takeConnection();

    const InstancePlace m_place;
    const InstanceLock m_lock;
    const std::chrono::milliseconds m_patience;
    Serve m_serve;
    QLocalServer m_server;
};
