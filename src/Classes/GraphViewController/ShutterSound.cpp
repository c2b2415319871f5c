// Finds a player, and hands it the sound as a file.
#include "Classes/GraphViewController/ShutterSound.h"

#include "Platform/Widgets/Appearance.h"

#include <QFile>
#include <QGuiApplication>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryFile>

#include <memory>
#include <utility>

using namespace Qt::StringLiterals;

namespace ShutterSound {
namespace {

bool hasScreen() {
    const QString platform = QGuiApplication::platformName();
    return platform == u"xcb" || platform.startsWith(u"wayland");
}

/// Players read files: the sound is laid down once, and goes with the program.
QString soundFile() {
    static const std::unique_ptr<QTemporaryFile> file(
        QTemporaryFile::createNativeFile(u":/sounds/shutter.wav"_s));
    return file ? file->fileName() : QString();
}

} // namespace

QStringList playerCommand(const QString& file, const std::function<QString(const QString&)>& find) {
    const std::pair<QString, QStringList> players[] = {
        {u"canberra-gtk-play"_s, {u"-f"_s}}, {u"pw-play"_s, {}}, {u"paplay"_s, {}}, {u"aplay"_s, {u"-q"_s}}};
    for (const auto& [program, arguments] : players) {
        if (const QString path = find(program); !path.isEmpty())
            return QStringList(path) + arguments + QStringList(file);
    }
    return {};
}

void play() {
    if (!hasScreen() || !Appearance::instance().eventSounds())
        return;
    const QString file = soundFile();
    if (file.isEmpty())
        return;
    QStringList command =
        playerCommand(file, [](const QString& program) { return QStandardPaths::findExecutable(program); });
    if (command.isEmpty())
        return;
    QProcess player;
    player.setProgram(command.takeFirst());
    player.setArguments(command);
    player.setStandardOutputFile(QProcess::nullDevice());
    player.setStandardErrorFile(QProcess::nullDevice());
    player.startDetached();
}

} // namespace ShutterSound
