// One key of the user defaults for each path.
#include "EmbeddedPlugins/TextFile/LiveFiles.h"

#include "EmbeddedPlugins/TextFile/InputFile.h"
#include "Platform/Core/UserDefaults.h"

#include <QDir>

QString LiveFiles::pathKey(const QString& path) {
    return path.isEmpty() ? QString() : QDir::cleanPath(QDir().absoluteFilePath(expandedPath(path)));
}

bool LiveFiles::contains(const QString& path) {
    return !path.isEmpty() &&
           UserDefaults::standard().stringList(QLatin1String(defaultsKey)).contains(pathKey(path));
}

void LiveFiles::set(const QString& path, bool isLive) {
    if (path.isEmpty() || contains(path) == isLive)
        return;
    QStringList paths = UserDefaults::standard().stringList(QLatin1String(defaultsKey));
    paths.removeAll(pathKey(path));
    if (isLive)
        paths.prepend(pathKey(path));
    UserDefaults::standard().set(QLatin1String(defaultsKey), paths.mid(0, most));
}
