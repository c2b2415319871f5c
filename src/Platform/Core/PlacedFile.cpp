#include "Platform/Core/PlacedFile.h"

#include "Platform/Core/FileDescriptor.h"

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

namespace PlacedFile {
namespace {

namespace fs = std::filesystem;
using Outcome = Result::Outcome;

void failUnless(bool done) {
    if (!done)
        failWithErrno();
}

/// The answer after a step that fails when the name is taken.
bool failUnlessTaken() {
    failUnless(errno == EEXIST);
    return false;
}

fs::path withLinksFollowed(fs::path file) {
    constexpr int mostLinks = 40;
    std::error_code ignored;
    for (int i = 0; i < mostLinks && std::filesystem::is_symlink(file, ignored); ++i)
        file = file.parent_path() / std::filesystem::read_symlink(file);
    return file;
}

/// The mode of the file that gets new contents, or absent if there is none yet.
std::optional<mode_t> modeOfUpdated(const fs::path& file) {
    struct stat status = {};
    if (::stat(file.c_str(), &status) != 0) {
        failUnless(errno == ENOENT);
        return std::nullopt;
    }
    if (!S_ISREG(status.st_mode))
        throw std::system_error(S_ISDIR(status.st_mode) ? EISDIR : EINVAL, std::generic_category());
    failUnless(::faccessat(AT_FDCWD, file.c_str(), W_OK, AT_EACCESS) == 0);
    return status.st_mode & 07777;
}

/// A file that has no name yet, or only one of its own that goes with the object.
class NewFile {
  public:
    NewFile(const fs::path& folder, mode_t mode);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    int descriptor() const { return m_file.get(); }
    void writeAndSync(std::string_view bytes) const;
    /// Closes the file and gives it the name; false when that is taken and to be kept.
    bool takeName(const fs::path& name, Existing existing);

  private:
    std::string pathOfDescriptor() const { return "/proc/self/fd/" + std::to_string(m_file.get()); }
    bool takeFreeName(const fs::path& name);

    const fs::path m_temporary;
    bool m_hasTemporaryName = false;
    FileDescriptor m_file;
};

NewFile::NewFile(const fs::path& folder, mode_t mode)
    : m_temporary(folder / (temporaryPrefix + std::to_string(QRandomGenerator::system()->generate64()))),
      m_file(::open(folder.c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, mode)) {
    if (m_file.isOpen() && ::access(pathOfDescriptor().c_str(), F_OK) == 0)
        return;
    // The file system has no files without a name, or nothing that could name them is mounted.
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    m_file = FileDescriptor(::open(m_temporary.c_str(), flags, mode));
    failUnless(m_file.isOpen());
    m_hasTemporaryName = true;
}

NewFile::~NewFile() {
    if (m_hasTemporaryName)
        ::unlink(m_temporary.c_str());
}

void NewFile::writeAndSync(std::string_view bytes) const {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor(), bytes.data(), bytes.size());
        failUnless(written >= 0 || errno == EINTR);
        bytes.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
    failUnless(::fsync(descriptor()) == 0);
}

bool NewFile::takeName(const fs::path& name, Existing existing) {
    if (!m_hasTemporaryName) {
        failUnless(::linkat(AT_FDCWD, pathOfDescriptor().c_str(), AT_FDCWD, m_temporary.c_str(),
                            AT_SYMLINK_FOLLOW) == 0);
        m_hasTemporaryName = true;
    }
    m_file.close(); // network file systems report a full disk only now
    if (existing == Existing::Keep)
        return takeFreeName(name);
    failUnless(std::rename(m_temporary.c_str(), name.c_str()) == 0);
    m_hasTemporaryName = false;
    return true;
}

bool NewFile::takeFreeName(const fs::path& name) {
    const char* const temporary = m_temporary.c_str();
    if (::renameat2(AT_FDCWD, temporary, AT_FDCWD, name.c_str(), RENAME_NOREPLACE) == 0) {
        m_hasTemporaryName = false;
        return true;
    }
    if (errno != EINVAL && errno != ENOSYS)
        return failUnlessTaken();
    if (::link(temporary, name.c_str()) == 0) // and the temporary name goes with the object
        return true;
    if (errno != EPERM && errno != EOPNOTSUPP)
        return failUnlessTaken();
    struct stat status = {}; // no links either: a name that is taken this very moment is overwritten
    if (::lstat(name.c_str(), &status) == 0)
        return false;
    failUnless(std::rename(temporary, name.c_str()) == 0);
    m_hasTemporaryName = false;
    return true;
}

Result place(const fs::path& name, std::string_view bytes, const Policy& policy) {
    const bool updates = policy.existing == Existing::Update;
    const std::optional<mode_t> mode = updates ? modeOfUpdated(name) : std::nullopt;
    const fs::path folder = name.has_parent_path() ? name.parent_path() : fs::path(".");
    NewFile file(folder, policy.mode);
    if (mode)
        failUnless(::fchmod(file.descriptor(), *mode) == 0);
    file.writeAndSync(bytes);
    if (policy.lastWord) {
        if (const std::optional<QString> refusal = policy.lastWord(file.descriptor()))
            return {Outcome::Failed, *refusal};
    }
    if (!file.takeName(name, policy.existing))
        return {Outcome::NameTaken, {}};
    // The new file stands; that its name is not on the disk yet is no reason to call it failed.
    const FileDescriptor folderHandle(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folderHandle.isOpen())
        ::fsync(folderHandle.get());
    return {};
}

} // namespace

Result write(const QString& path, const QByteArray& bytes, const Policy& policy) {
    try {
        const fs::path name = QFile::encodeName(path).toStdString();
        return place(policy.existing == Existing::Update ? withLinksFollowed(name) : name,
                     {bytes.constData(), static_cast<std::size_t>(bytes.size())}, policy);
    } catch (const std::system_error& failure) {
        return {Outcome::Failed, QString::fromLocal8Bit(failure.code().message().c_str())};
    }
}

} // namespace PlacedFile
