// What a second launch and the program that already runs say to each other, as bytes.
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <optional>

/// A second launch's command line, and what it takes to understand it elsewhere.
struct InstanceRequest {
    QString workingFolder;   ///< absolute; relative names count from it
    QString activationToken; ///< of the launcher, for Wayland; may be empty
    QString startupId;       ///< of the launcher, for X11; may be empty
    QStringList arguments;   ///< without the program's name
};

/// How the second launch is to end.
struct InstanceReply {
    int exitCode = 0;   ///< 0 to 255
    QStringList errors; ///< one line each, for its standard error
};

/// Frames: "Vlqn", version and kind (16 bits each), the payload's length (32 bits), the payload; numbers are
/// big-endian. A text is its length in bytes and that much UTF-8. Later versions keep the head's layout.
/// Whatever was received is checked to the last byte.
namespace InstanceMessage {

inline constexpr qsizetype largestFrame = qsizetype{1} << 20; ///< bytes, the head included

enum class Kind : quint16 {
    Request = 1,
    Accepted = 2, ///< the request will be carried out; a reply follows
    Reply = 3,
};

struct Frame {
    Kind kind;
    QByteArray payload;
};

enum class Taken { Incomplete, Broken, Whole };

/// Takes the first frame out of `received`. `Incomplete` leaves it as it is; after `Broken` the rest means
/// nothing.
Taken takeFrame(QByteArray& received, Frame& frame);

/// A whole frame; absent when it would be over `largestFrame`.
std::optional<QByteArray> encoded(const InstanceRequest& request);
/// Errors that do not fit are left out.
QByteArray encoded(const InstanceReply& reply);
QByteArray encodedAccepted();

std::optional<InstanceRequest> decodedRequest(const QByteArray& payload);
std::optional<InstanceReply> decodedReply(const QByteArray& payload);

} // namespace InstanceMessage
