// Replaces a file in one step: a temporary file beside it, synced, then renamed over it.
#include "Platform/Core/FileDescriptor.h"
#include "Platform/Core/PropertyList.h"

#include <QFile>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace {

using std::filesystem::path;

/// Removes the temporary file unless it became the real one.
struct StrayFile {
    path name;
    ~StrayFile() {
        if (!name.empty())
            ::unlink(name.c_str());
    }
};

path withLinksFollowed(path file) {
    constexpr int mostLinks = 40;
    std::error_code ignored;
    for (int i = 0; i < mostLinks && std::filesystem::is_symlink(file, ignored); ++i)
        file = file.parent_path() / std::filesystem::read_symlink(file);
    return file;
}

/// The mode of the file that is replaced, or absent if there is none. A file that may not be written is not
/// replaced either, and only plain files are.
std::optional<mode_t> modeOfReplaced(const path& target) {
    struct stat status = {};
    if (::stat(target.c_str(), &status) != 0) {
        if (errno == ENOENT)
            return std::nullopt;
        failWithErrno();
    }
    if (!S_ISREG(status.st_mode))
        throw std::system_error(S_ISDIR(status.st_mode) ? EISDIR : EINVAL, std::generic_category());
    if (::access(target.c_str(), W_OK) != 0)
        failWithErrno();
    return status.st_mode & 07777;
}

void writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            failWithErrno();
        bytes.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
}

/// Absent once the file stands.
std::optional<PropertyList::FileError> replaceFile(const path& target, std::string_view bytes,
                                                   const PropertyList::LastWord& lastWord, mode_t modeOfNew) {
    const std::optional<mode_t> mode = modeOfReplaced(target);
    const path folder = target.has_parent_path() ? target.parent_path() : path(".");
    const path temporaryName =
        folder / (PropertyList::temporaryPrefix + std::to_string(QRandomGenerator::global()->generate64()));
    FileDescriptor file(::open(temporaryName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, modeOfNew));
    if (!file.isOpen())
        failWithErrno();
    StrayFile stray{temporaryName};
    if (mode && ::fchmod(file.get(), *mode) != 0)
        failWithErrno();
    writeAll(file.get(), bytes);
    if (::fsync(file.get()) != 0)
        failWithErrno();
    if (lastWord) {
        if (auto refused = lastWord(file.get()))
            return refused;
    }
    file.close();
    if (::rename(temporaryName.c_str(), target.c_str()) != 0)
        failWithErrno();
    stray.name.clear();
    // The new file stands; that its name is not on the disk yet is no reason to call it failed.
    const FileDescriptor folderHandle(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folderHandle.isOpen())
        ::fsync(folderHandle.get());
    return std::nullopt;
}

} // namespace

std::optional<PropertyList::FileError> PropertyList::writeAtomically(const QString& path,
                                                                     const QByteArray& bytes,
                                                                     const LastWord& lastWord,
                                                                     unsigned mode) {
    try {
        const QByteArray name = QFile::encodeName(path);
        return replaceFile(withLinksFollowed(name.toStdString()),
                           {bytes.constData(), static_cast<std::size_t>(bytes.size())}, lastWord, mode);
    } catch (const std::system_error& failure) {
        return FileError{QString::fromLocal8Bit(failure.code().message().c_str())};
    }
}
