#include "Platform/Core/PlacedFile.h"

#include "Platform/Core/WholeWrite.h"

#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace PlacedFile {
namespace {

using Outcome = Result::Outcome;

Result failed(const QString& reason) {
    return {Outcome::Failed, reason};
}

Result failedWithErrno() {
    return failed(QString::fromStdString(std::generic_category().message(errno)));
}

Result resultOf(bool done) {
    if (done)
        return {};
    return errno == EEXIST ? Result{Outcome::NameTaken, {}} : failedWithErrno();
}

/// For file systems that cannot rename to a free name only.
Result giveFreeNameSlowly(const char* temporary, const char* name) {
    if (::link(temporary, name) == 0) {
        ::unlink(temporary);
        return {};
    }
    if (errno != EPERM && errno != EOPNOTSUPP)
        return resultOf(false);
    struct stat status = {}; // no links either: a name that is taken this very moment is overwritten
    if (::lstat(name, &status) == 0)
        return {Outcome::NameTaken, {}};
    return resultOf(std::rename(temporary, name) == 0);
}

Result giveName(const char* temporary, const char* name, Existing existing) {
    if (existing == Existing::Replace)
        return std::rename(temporary, name) == 0 ? Result() : failedWithErrno();
    if (::renameat2(AT_FDCWD, temporary, AT_FDCWD, name, RENAME_NOREPLACE) == 0)
        return {};
    return errno == EINVAL || errno == ENOSYS ? giveFreeNameSlowly(temporary, name) : resultOf(false);
}

Result writeAll(int descriptor, const QByteArray& bytes) {
    QFile file;
    file.open(descriptor, QIODevice::WriteOnly | QIODevice::Unbuffered);
    if (!writeWhole(file, bytes.constData(), bytes.size()))
        return failed(file.errorString());
    return ::fsync(descriptor) == 0 ? Result() : failedWithErrno();
}

} // namespace

Result write(const QString& path, const QByteArray& bytes, Existing existing, unsigned mode) {
    const QByteArray name = QFile::encodeName(path);
    const QString stray = QStringLiteral("/.velquin-%1").arg(QRandomGenerator::system()->generate64());
    const QByteArray temporary = QFile::encodeName(QFileInfo(path).absolutePath() + stray);
    const int descriptor =
        ::open(temporary.constData(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
    if (descriptor < 0)
        return failedWithErrno();
    Result result = writeAll(descriptor, bytes);
    // Network file systems report a full disk only now.
    if (::close(descriptor) != 0 && result.isWritten())
        result = failedWithErrno();
    if (result.isWritten())
        result = giveName(temporary.constData(), name.constData(), existing);
    if (!result.isWritten())
        ::unlink(temporary.constData());
    return result;
}

} // namespace PlacedFile
