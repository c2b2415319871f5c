// The checks of a path before and after it is opened.
#include "EmbeddedPlugins/TextFile/InputFile.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <optional>
#include <system_error>

namespace {

QString systemError(int number) {
    return QString::fromLocal8Bit(std::generic_category().message(number));
}

std::optional<QString> refusalOf(const struct stat& status) {
    if (S_ISDIR(status.st_mode))
        return systemError(EISDIR);
    if (!S_ISREG(status.st_mode))
        return QStringLiteral("Is not a regular file");
    return std::nullopt;
}

} // namespace

QString expandedPath(const QString& path) {
    const bool home = path == QLatin1String("~") || path.startsWith(QLatin1String("~/"));
    return home ? QDir::homePath() + path.mid(1) : path;
}

InputFile openInputFile(const QString& path) {
    const auto refuse = [](const QString& reason) { return InputFile{nullptr, 0, std::nullopt, reason}; };
    if (path.isEmpty())
        return refuse(QStringLiteral("No file name"));
    const QByteArray name = QFile::encodeName(expandedPath(path));

    struct stat status {};
    if (stat(name.constData(), &status) != 0)
        return refuse(systemError(errno));
    if (const auto reason = refusalOf(status))
        return refuse(*reason);
    // Checked before, because opening a device may have effects, and after, because the path may be another's
    // by then.
    const int descriptor = open(name.constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0)
        return refuse(systemError(errno));
    const bool known = fstat(descriptor, &status) == 0;
    const QString statusError = known ? refusalOf(status).value_or(QString()) : systemError(errno);

    auto file = std::make_unique<QFile>();
    if (!file->open(descriptor, QIODevice::ReadOnly | QIODevice::Unbuffered, QFileDevice::AutoCloseHandle)) {
        close(descriptor);
        return refuse(file->errorString());
    }
    if (!statusError.isEmpty())
        return refuse(statusError);
    return {std::move(file), static_cast<std::uint64_t>(status.st_size), FileStamp::ofDescriptor(descriptor),
            QString()};
}
