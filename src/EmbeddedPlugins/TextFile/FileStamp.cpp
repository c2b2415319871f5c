// Stamps from the system's answers about a file.
#include "EmbeddedPlugins/TextFile/FileStamp.h"

#include <QFile>

#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>

namespace {

/// The longest tick by which usual file systems date a write.
constexpr std::int64_t tick = 20'000'000;

std::optional<FileStamp> stampOf(const struct stat& status, const struct statfs& fileSystem) {
    const auto type = static_cast<std::uint64_t>(fileSystem.f_type);
    if (!S_ISREG(status.st_mode) || type == PROC_SUPER_MAGIC || type == SYSFS_MAGIC)
        return std::nullopt;
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    constexpr std::int64_t second = 1'000'000'000;
    return FileStamp{static_cast<std::uint64_t>(status.st_dev), static_cast<std::uint64_t>(status.st_ino),
                     status.st_size, status.st_mtim.tv_sec * second + status.st_mtim.tv_nsec,
                     std::chrono::duration_cast<std::chrono::nanoseconds>(now).count()};
}

} // namespace

std::optional<FileStamp> FileStamp::ofDescriptor(int descriptor) {
    struct stat status {};
    struct statfs fileSystem {};
    if (fstat(descriptor, &status) != 0 || fstatfs(descriptor, &fileSystem) != 0)
        return std::nullopt;
    return stampOf(status, fileSystem);
}

std::optional<FileStamp> FileStamp::ofPath(const QString& path) {
    const QByteArray name = QFile::encodeName(path);
    struct stat status {};
    struct statfs fileSystem {};
    if (stat(name.constData(), &status) != 0 || statfs(name.constData(), &fileSystem) != 0 ||
        access(name.constData(), R_OK) != 0)
        return std::nullopt;
    return stampOf(status, fileSystem);
}

bool hasChanged(const FileStamp& before, const FileStamp& now) {
    const bool isSame = before.device == now.device && before.inode == now.inode && before.size == now.size &&
                        before.modified == now.modified;
    return !isSame || std::abs(before.taken - before.modified) < tick;
}
