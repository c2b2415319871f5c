// The sound of a shutter, where there is something to play it.
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace ShutterSound {

/// Starts one of the desktop's own players and does not wait for it. Silent without a screen, without a
/// player, and where the desktop wants no sounds. Main thread.
void play();

/// The first player that is installed, with its arguments for that file; empty without one. `find` gives the
/// path of a program, or nothing.
QStringList playerCommand(const QString& file, const std::function<QString(const QString& program)>& find);

} // namespace ShutterSound
