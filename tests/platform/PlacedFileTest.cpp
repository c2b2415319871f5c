// Files that take a name in one step: what others may have put under it, and what may fail meanwhile.
#include "Platform/Core/PlacedFile.h"

#include "Platform/Core/FileDescriptor.h"
#include "support/TestSupport.h"

#include <QFile>

#include <cerrno>
#include <cstddef>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <thread>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using PlacedFile::Existing;
using PlacedFile::Result;
using support::ScratchFolder;

namespace {

using Outcome = Result::Outcome;

unsigned modeOf(const QString& path) {
    struct stat status = {};
    EXPECT_EQ(::lstat(qPrintable(path), &status), 0);
    return status.st_mode;
}

struct Planted {
    const char* what;
    std::function<void(const std::string& name, const std::string& victim)> plant;
    Outcome replacing = Outcome::Written;
};

const Planted everything[] = {
    {"link", [](const auto& name, const auto& victim) { std::filesystem::create_symlink(victim, name); }},
    {"link to nothing",
     [](const auto& name, const auto& victim) { std::filesystem::create_symlink(victim + ".new", name); }},
    {"second name",
     [](const auto& name, const auto& victim) { std::filesystem::create_hard_link(victim, name); }},
    {"pipe", [](const auto& name, const auto&) { ASSERT_EQ(::mkfifo(name.c_str(), 0666), 0); }},
    {"folder", [](const auto& name, const auto&) { std::filesystem::create_directory(name); },
     Outcome::Failed},
};

TEST(PlacedFile, nothingPlantedRedirectsTheBytes) {
    for (const Planted& planted : everything) {
        for (const Existing existing : {Existing::Replace, Existing::Keep}) {
            const ScratchFolder folder;
            const QString victim = folder.write(u"victim"_s, "precious");
            const QString name = folder.path(u"name"_s);
            planted.plant(name.toStdString(), victim.toStdString());
            const bool replaces = existing == Existing::Replace;
            const Result result = replaces ? PlacedFile::writeInSharedFolder(name, "new")
                                           : PlacedFile::write(name, "new", {.existing = existing});
            EXPECT_EQ(result.outcome, replaces ? planted.replacing : Outcome::NameTaken) << planted.what;
            EXPECT_EQ(ScratchFolder::read(victim), "precious") << planted.what;
            EXPECT_EQ(folder.fileNames(), (QStringList{u"name"_s, u"victim"_s})) << planted.what;
            EXPECT_EQ(modeOf(name) == (S_IFREG | 0600), replaces && result.isWritten()) << planted.what;
        }
    }
}

TEST(PlacedFile, updatesTheFileBehindALinkAndNothingButAFile) {
    const ScratchFolder folder;
    const QString file = folder.write(u"old.mox"_s, "old");
    ASSERT_EQ(::chmod(qPrintable(file), 0640), 0);
    ASSERT_TRUE(QFile::link(u"old.mox"_s, folder.path(u"link"_s)));
    EXPECT_TRUE(PlacedFile::write(folder.path(u"link"_s), "new").isWritten());
    EXPECT_EQ(ScratchFolder::read(file), "new");
    EXPECT_EQ(modeOf(file), S_IFREG | 0640U);

    const auto reason = [](const QString& path) { return PlacedFile::write(path, "x").reason; };
    EXPECT_EQ(reason(folder.path()), u"Is a directory"_s);
    EXPECT_EQ(reason(folder.path(u"none/a.mox"_s)), u"No such file or directory"_s);
    EXPECT_EQ(reason(file + u"/a.mox"_s), u"Not a directory"_s);
    EXPECT_EQ(reason(u"/dev/null"_s), u"Invalid argument"_s);
    ASSERT_TRUE(QFile::link(u"loop"_s, folder.path(u"loop"_s)));
    EXPECT_EQ(reason(folder.path(u"loop"_s)), u"Too many levels of symbolic links"_s);
    EXPECT_EQ(folder.fileNames(), (QStringList{u"link"_s, u"loop"_s, u"old.mox"_s}));
}

/// A call of the system that fails while all of these bits are set in its third argument.
struct FailingCall {
    unsigned number;
    unsigned error;
    unsigned bits = 0;
};

/// Does it on a thread of its own, whose calls fail.
void withFailing(const std::vector<FailingCall>& calls, const std::function<void()>& work) {
    std::vector<sock_filter> filter;
    constexpr auto load = BPF_LD | BPF_W | BPF_ABS;
    constexpr auto isEqual = BPF_JMP | BPF_JEQ | BPF_K;
    for (const FailingCall& call : calls)
        filter.insert(filter.end(),
                      {BPF_STMT(load, offsetof(seccomp_data, nr)), BPF_JUMP(isEqual, call.number, 0, 4),
                       BPF_STMT(load, offsetof(seccomp_data, args[2])),
                       BPF_STMT(BPF_ALU | BPF_AND | BPF_K, call.bits), BPF_JUMP(isEqual, call.bits, 0, 1),
                       BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | call.error)});
    filter.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    std::thread([&] {
        const sock_fprog program{static_cast<unsigned short>(filter.size()), filter.data()};
        ASSERT_EQ(::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
        ASSERT_EQ(::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program), 0);
        work();
    }).join();
}

constexpr FailingCall noUnnamedFiles{SYS_openat, EOPNOTSUPP, O_TMPFILE & ~O_DIRECTORY};
// Some processors' kernels never had the calls without folders.
#ifdef SYS_link
constexpr unsigned linkCall = SYS_link;
#else
constexpr unsigned linkCall = SYS_linkat;
#endif
#ifdef SYS_rename
constexpr unsigned renameCall = SYS_rename;
#else
constexpr unsigned renameCall = SYS_renameat;
#endif

bool knowsUnnamedFiles(const ScratchFolder& folder) {
    const FileDescriptor file(::open(qPrintable(folder.path()), O_WRONLY | O_TMPFILE | O_CLOEXEC, 0600));
    return file.isOpen();
}

/// Who does not come to the call that fails.
enum class Spared { None, Keeping, KeepingTaken };

struct FaultRow {
    const char* name;
    std::vector<FailingCall> calls;
    const char* reason = "";   ///< or it is written all the same
    bool needsUnnamed = false; ///< of the scratch folder's file system
    Spared spared = Spared::None;
};

const FaultRow faultRows[] = {
    {"none", {}},
    {"no files without names", {noUnnamedFiles}},
    {"naming them forbidden", {{SYS_linkat, EPERM}}},
    {"no rename to free names", {noUnnamedFiles, {SYS_renameat2, EINVAL}}},
    {"no links either", {noUnnamedFiles, {SYS_renameat2, EINVAL}, {linkCall, EPERM}}},
    {"folder cannot be synced", {{SYS_openat, EACCES, O_DIRECTORY}}},
    {"disk full", {{SYS_write, ENOSPC}}, "No space left on device"},
    {"disk full, named", {noUnnamedFiles, {SYS_write, ENOSPC}}, "No space left on device"},
    {"sync", {{SYS_fsync, EIO}}, "Input/output error"},
    {"quota, told late", {noUnnamedFiles, {SYS_close, EDQUOT}}, "Disk quota exceeded"},
    {"no room for the name", {{SYS_linkat, ENOSPC}}, "No space left on device", true},
    {"closing", {{SYS_close, EIO}}, "Input/output error", true, Spared::KeepingTaken},
    {"renaming", {{renameCall, EBUSY}}, "Device or resource busy", true, Spared::Keeping},
    {"renaming, named",
     {noUnnamedFiles, {renameCall, EBUSY}, {SYS_renameat2, EBUSY}},
     "Device or resource busy"},
    {"read-only", {noUnnamedFiles, {SYS_openat, EROFS, O_CREAT}}, "Read-only file system"},
};

TEST(PlacedFile, isThereWholeOrAsItWasAndNothingBeside) {
    const bool hasUnnamed = knowsUnnamedFiles(ScratchFolder());
    for (const FaultRow& row : faultRows) {
        if (row.needsUnnamed && !hasUnnamed)
            continue;
        for (const Existing existing : {Existing::Keep, Existing::Replace, Existing::Update}) {
            for (const bool isThere : {false, true}) {
                SCOPED_TRACE(row.name + std::to_string(static_cast<int>(existing)) + (isThere ? "old" : ""));
                const ScratchFolder folder;
                const QString file = isThere ? folder.write(u"a"_s, "old") : folder.path(u"a"_s);
                ASSERT_EQ(isThere ? ::chmod(qPrintable(file), 0640) : 0, 0);
                Result result;
                withFailing(row.calls, [&] {
                    result = PlacedFile::write(file, "new", {.existing = existing, .mode = 0600});
                });
                const bool keeps = existing == Existing::Keep;
                const bool isSpared = keeps && (row.spared == Spared::Keeping ||
                                                (row.spared == Spared::KeepingTaken && isThere));
                const bool fails = *row.reason != '\0' && !isSpared;
                EXPECT_EQ(result.reason, QLatin1String(fails ? row.reason : ""));
                EXPECT_EQ(result.outcome, fails              ? Outcome::Failed
                                          : keeps && isThere ? Outcome::NameTaken
                                                             : Outcome::Written);
                EXPECT_EQ(folder.fileNames(),
                          isThere || result.isWritten() ? QStringList(u"a"_s) : QStringList());
                if (!folder.fileNames().isEmpty()) {
                    EXPECT_EQ(ScratchFolder::read(file), result.isWritten() ? "new" : "old");
                    const bool isNew = result.isWritten() && (existing == Existing::Replace || !isThere);
                    EXPECT_EQ(modeOf(file) & 0777, isNew ? 0600U : 0640U);
                }
            }
        }
    }
    if (!hasUnnamed)
        GTEST_SKIP()
            << "no room for the name, closing, renaming: the scratch folder knows no files without names";
}

TEST(PlacedFile, theLastWordIsAskedOfAWholeFileThatHasNoNameYet) {
    for (const auto& calls : {std::vector<FailingCall>{}, {noUnnamedFiles}}) {
        const ScratchFolder folder;
        const QString file = folder.write(u"a"_s, "old");
        const bool isNamed = !calls.empty() || !knowsUnnamedFiles(folder);
        QByteArray seen;
        qsizetype names = 0;
        const auto refuses = [&](int descriptor) {
            seen = ScratchFolder::read(u"/proc/self/fd/%1"_s.arg(descriptor));
            names = folder.fileNames().size();
            return u"no"_s;
        };
        withFailing(calls, [&] {
            EXPECT_EQ(PlacedFile::write(file, "new", {.lastWord = refuses}).reason, u"no"_s);
            EXPECT_EQ(seen, "new");
            EXPECT_THROW(PlacedFile::write(file, "new", {.lastWord = [](int) -> std::optional<QString> {
                                               throw std::runtime_error("no");
                                           }}),
                         std::runtime_error);
        });
        EXPECT_EQ(names, isNamed ? 2 : 1) << "a program that is killed now leaves nothing beside";
        EXPECT_EQ(ScratchFolder::read(file), "old");
        EXPECT_EQ(folder.fileNames(), QStringList(u"a"_s));
    }
}

} // namespace
