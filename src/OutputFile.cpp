// Atomic files and standard output for the command line.
#include "OutputFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

std::optional<QString> writeDirectly(QFile& file, const std::function<bool(QIODevice&)>& write) {
    // Unbuffered writes report a full disk at once; the writer brings its own blocks.
    if (!write(file) || !file.flush())
        return file.errorString();
    return std::nullopt;
}

std::optional<QString> writeToStandardOutput(const std::function<bool(QIODevice&)>& write) {
    QFile output;
    if (!output.open(stdout, QIODevice::WriteOnly | QIODevice::Unbuffered))
        return output.errorString();
    return writeDirectly(output, write);
}

} // namespace

std::optional<QString> writeOutput(const QString& path, const std::function<bool(QIODevice&)>& write) {
    if (path == u"-"_qs)
        return writeToStandardOutput(write);
    const QFileInfo info(path);
    if (info.isDir())
        return u"it is a directory"_qs;
    if (info.exists() && !info.isFile()) { // a device or a pipe: nothing to keep whole
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
            return file.errorString();
        return writeDirectly(file, write);
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return file.errorString();
    if (!write(file)) {
        const QString reason = file.errorString();
        file.cancelWriting();
        return reason;
    }
    if (!file.commit())
        return file.errorString();
    return std::nullopt;
}
