// Writes a file without a name, or under one of its own, and gives it the wanted one in a single call.
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

/// A nameless file cannot get a name: /proc is missing, a sandbox forbids it, or there are no links.
struct LinkRefused {};

/// A file that has no name yet, or only one of its own that goes with the object.
class NewFile {
  public:
    enum class Start { Nameless, Named };

    /// A nameless start is a wish: not every file system can do it.
    NewFile(const fs::path& folder, mode_t mode, Start start);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    int descriptor() const { return m_file.get(); }
    void writeAndSync(std::string_view bytes) const;
    /// Closes the file and gives it the name; false when that is taken and to be kept. Throws LinkRefused.
    bool takeName(const fs::path& name, Existing existing);

  private:
    bool link(const fs::path& name); ///< of a nameless file; false when it is taken
    bool takeFreeName(const fs::path& name);

    const fs::path m_temporary;
    const fs::path* m_ownName = nullptr; ///< what goes with the object
    FileDescriptor m_file;
};

NewFile::NewFile(const fs::path& folder, mode_t mode, Start start)
    : m_temporary(folder / (temporaryPrefix + std::to_string(QRandomGenerator::system()->generate64()))) {
    if (start == Start::Nameless)
        m_file = FileDescriptor(::open(folder.c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, mode));
    if (m_file.isOpen())
        return;
    constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
    m_file = FileDescriptor(::open(m_temporary.c_str(), flags, mode));
    failUnless(m_file.isOpen());
    m_ownName = &m_temporary;
}

NewFile::~NewFile() {
    if (m_ownName != nullptr)
        ::unlink(m_ownName->c_str());
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
    const bool keeps = existing == Existing::Keep;
    if (m_ownName == nullptr && !link(keeps ? name : m_temporary))
        return false;
    m_file.close(); // network file systems report a full disk only now
    if (keeps && m_ownName != &name)
        return takeFreeName(name);
    if (!keeps)
        failUnless(std::rename(m_temporary.c_str(), name.c_str()) == 0);
    m_ownName = nullptr;
    return true;
}

bool NewFile::link(const fs::path& name) {
    const std::string nameless = "/proc/self/fd/" + std::to_string(descriptor());
    if (::linkat(AT_FDCWD, nameless.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
        m_ownName = &name;
        return true;
    }
    failUnless(errno != ENOSPC && errno != EDQUOT);
    if (errno != EEXIST || &name == &m_temporary)
        throw LinkRefused();
    return false;
}

bool NewFile::takeFreeName(const fs::path& name) {
    const char* const temporary = m_temporary.c_str();
    if (::renameat2(AT_FDCWD, temporary, AT_FDCWD, name.c_str(), RENAME_NOREPLACE) == 0) {
        m_ownName = nullptr;
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
    m_ownName = nullptr;
    return true;
}

Result place(const fs::path& name, std::string_view bytes, const Policy& policy, NewFile::Start start) {
    const bool updates = policy.existing == Existing::Update;
    const std::optional<mode_t> mode = updates ? modeOfUpdated(name) : std::nullopt;
    const fs::path folder = name.has_parent_path() ? name.parent_path() : fs::path(".");
    NewFile file(folder, policy.mode, start);
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
        fs::path name = QFile::encodeName(path).toStdString();
        if (policy.existing == Existing::Update)
            name = withLinksFollowed(name);
        const std::string_view content(bytes.constData(), static_cast<std::size_t>(bytes.size()));
        try {
            return place(name, content, policy, NewFile::Start::Nameless);
        } catch (const LinkRefused&) {
            return place(name, content, policy, NewFile::Start::Named);
        }
    } catch (const std::system_error& failure) {
        return {Outcome::Failed, QString::fromLocal8Bit(failure.code().message().c_str())};
    }
}

} // namespace PlacedFile
