// A start of the program: either it is the one for its user and display, or it hands its command line to the
// one.
#pragma once

#include "Classes/SingleInstance/InstanceMessage.h"
#include "Classes/SingleInstance/InstancePlace.h"

#include <chrono>
#include <optional>
#include <variant>

/// The right to be the one. The system takes it back from a process that dies, however it dies, so nothing
/// stale is left.
class InstanceLock {
  public:
    /// Not taken yet; absent when the file cannot be made.
    static std::optional<InstanceLock> at(const InstancePlace& place);
    /// False while another process has it.
    bool take() const;

    InstanceLock(InstanceLock&& other) noexcept;
    InstanceLock& operator=(InstanceLock&& other) noexcept;
    InstanceLock(const InstanceLock&) = delete;
    InstanceLock& operator=(const InstanceLock&) = delete;
    ~InstanceLock();

  private:
    explicit InstanceLock(int file) : m_file(file) {}

    int m_file; ///< -1 when moved away
};

/// This start is the one.
struct IsFirst {
    InstanceLock lock;
};
/// There is one that cannot be reached: this start stays for itself and is reached by nobody.
struct IsAlone {};
using InstanceClaim = std::variant<IsFirst, InstanceReply, IsAlone>;

struct InstancePatience {
    std::chrono::milliseconds start{10'000}; ///< with one that starts or quits and does not listen
    std::chrono::milliseconds answer{2'000}; ///< with one that listens, until it accepts
    std::chrono::milliseconds work{60'000};  ///< from then on, until it has done what was asked
};

/// Becomes the one, or hands `request` over and waits for the reply. Carried out by the one exactly when it
/// accepted; what it did not accept in time it does not carry out later. Blocks; needs no event loop.
InstanceClaim claimInstance(const InstancePlace& place, const InstanceRequest& request,
                            const InstancePatience& patience = {});

/// The user at the other end of a connected local socket, as the system knows it; absent when it does not.
std::optional<uid_t> userAtOtherEnd(int socket);
/// Whether the other end still waits for what comes.
bool isOtherEndThere(int socket);
