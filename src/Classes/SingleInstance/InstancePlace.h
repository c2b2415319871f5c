// Where the one program of a user and a display can be met: a private folder, a socket and a lock in it.
#pragma once

#include <QByteArray>

#include <optional>

#include <sys/types.h>

/// What the place depends on; all as the environment has it.
struct InstanceSurroundings {
    QByteArray runtimeFolder;   ///< XDG_RUNTIME_DIR
    QByteArray temporaryFolder; ///< where folders of all users lie
    QByteArray waylandDisplay;
    QByteArray x11Display;
    QByteArray platform; ///< QT_QPA_PLATFORM; empty for the toolkit's own choice
    uid_t user;

    static InstanceSurroundings current();
};

struct InstancePlace {
    QByteArray socket; ///< path, short enough for one
    QByteArray lock;   ///< path; whoever holds it is the one
    uid_t user;        ///< nobody else is listened to
};

/// The display as a file's name; absent where no display is shared, as on the platform "offscreen".
std::optional<QByteArray> instanceName(const InstanceSurroundings& surroundings);

/// Makes the folder if need be. Absent where there is no display, or no folder that is surely the user's
/// alone: a folder of somebody else, a link, or one that others may enter is not used.
std::optional<InstancePlace> instancePlace(const InstanceSurroundings& surroundings);
