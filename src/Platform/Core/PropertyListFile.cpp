// Replaces a file in one step: a temporary file beside it, synced, then renamed over it.
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
#include <utility>

namespace {

using std::filesystem::path;

[[noreturn]] void failWithErrno() {
    throw std::system_error(errno, std::generic_category());
}

class FileDescriptor {
  public:
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
    ~FileDescriptor() {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int get() const { return m_descriptor; }
    void close() {
        if (::close(std::exchange(m_descriptor, -1)) != 0) // network file systems report a full disk here
            failWithErrno();
    }

  private:
    int m_descriptor;
};

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

void replaceFile(const path& target, std::string_view bytes) {
    const std::optional<mode_t> mode = modeOfReplaced(target);
    const path folder = target.has_parent_path() ? target.parent_path() : path(".");
    const path temporaryName =
        folder / (".velquin-" + std::to_string(QRandomGenerator::global()->generate64()));
    FileDescriptor file(::open(temporaryName.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    if (file.get() < 0)
        failWithErrno();
    StrayFile stray{temporaryName};
    if (mode && ::fchmod(file.get(), *mode) != 0)
        failWithErrno();
    writeAll(file.get(), bytes);
    if (::fsync(file.get()) != 0)
        failWithErrno();
    file.close();
    if (::rename(temporaryName.c_str(), target.c_str()) != 0)
        failWithErrno();
    stray.name.clear();
    // The new file stands; that its name is not on the disk yet is no reason to call it failed.
    const FileDescriptor folderHandle(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folderHandle.get() >= 0)
        ::fsync(folderHandle.get());
}

} // namespace

std::optional<PropertyList::FileError> PropertyList::writeAtomically(const QString& path,
                                                                     const QByteArray& bytes) {
    try {
        const QByteArray name = QFile::encodeName(path);
        replaceFile(withLinksFollowed(name.toStdString()),
                    {bytes.constData(), static_cast<std::size_t>(bytes.size())});
    } catch (const std::system_error& failure) {
        return FileError{QString::fromLocal8Bit(failure.code().message().c_str())};
    }
    return std::nullopt;
}
