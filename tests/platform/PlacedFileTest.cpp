// Files that take a name in one step, and what others may have planted under it.
#include "Platform/Core/PlacedFile.h"
#include "support/TestSupport.h"

#include <QFile>

#include <csignal>
#include <filesystem>
#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;
using PlacedFile::Existing;
using PlacedFile::Result;

namespace {

using Outcome = Result::Outcome;

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
            const support::ScratchFolder folder;
            const QString victim = folder.write(u"victim"_s, "precious");
            const QString name = folder.path(u"name"_s);
            planted.plant(name.toStdString(), victim.toStdString());
            const bool replaces = existing == Existing::Replace;
            const Result result = replaces ? PlacedFile::writeInSharedFolder(name, "new")
                                           : PlacedFile::write(name, "new", existing);
            EXPECT_EQ(result.outcome, replaces ? planted.replacing : Outcome::NameTaken) << planted.what;
            EXPECT_EQ(support::ScratchFolder::read(victim), "precious") << planted.what;
            EXPECT_EQ(folder.fileNames(), (QStringList{u"name"_s, u"victim"_s})) << planted.what;
            struct stat status = {};
            ASSERT_EQ(::lstat(qPrintable(name), &status), 0);
            EXPECT_EQ(status.st_mode == (S_IFREG | 0600), replaces && result.isWritten()) << planted.what;
        }
    }
}

TEST(PlacedFile, isThereWholeOrNotAtAll) {
    const support::ScratchFolder folder;
    const QString file = folder.path(u"a"_s);
    EXPECT_TRUE(PlacedFile::write(file, "new", Existing::Keep).isWritten());
    EXPECT_EQ(support::ScratchFolder::read(file), "new");

    rlimit before = {};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const rlimit full{.rlim_cur = 1000, .rlim_max = before.rlim_max};
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &full), 0);
    const Result failure = PlacedFile::write(folder.path(u"b"_s), QByteArray(2000, 'x'), Existing::Keep);
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, oldHandler);
    EXPECT_EQ(failure.reason, u"File too large"_s);
    EXPECT_EQ(PlacedFile::write(folder.path(u"none/a"_s), "x", Existing::Keep).reason,
              u"No such file or directory"_s);
    EXPECT_EQ(folder.fileNames(), QStringList(u"a"_s));
}

} // namespace
