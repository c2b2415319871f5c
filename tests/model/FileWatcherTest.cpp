// Files that change on the disk: what is noticed, what is not, and when it is told.
#include "EmbeddedPlugins/TextFile/FileWatcher.h"
#include "EmbeddedPlugins/TextFile/FileStamp.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <cerrno>
#include <fcntl.h>
#include <functional>
#include <sys/inotify.h>
#include <sys/stat.h>

namespace {

using std::chrono::milliseconds;
using namespace Qt::StringLiterals;

void append(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::Append) && file.write(bytes) == bytes.size());
}

/// As `mv` does, over what is there.
void moveOver(const QString& from, const QString& to) {
    ASSERT_EQ(rename(QFile::encodeName(from).constData(), QFile::encodeName(to).constData()), 0);
}

/// A watcher with one watch, and how often that was told.
struct Watched {
    explicit Watched(const QString& path, FileWatcher::System system = {inotify_add_watch})
        : watcher(std::move(system)), watch(watcher.watch(path, [this] { ++told; })) {}

    bool notices(const std::function<void()>& change) {
        const int before = told;
        change();
        return support::waitUntil([&] { return told > before; });
    }

    int told = 0;
    FileWatcher watcher;
    FileWatcher::Watch watch;
};

TEST(Settling, MakesOneNoticeOfABurst) {
    Settling settling;
    EXPECT_EQ(settling.due(), std::nullopt);
    settling.event(milliseconds(1000));
    EXPECT_EQ(settling.due(), milliseconds(1150));
    settling.event(milliseconds(1100));
    EXPECT_EQ(settling.due(), milliseconds(1250)) << "not while it goes on";
    for (int at = 1200; at <= 2000; at += 100)
        settling.event(milliseconds(at));
    EXPECT_EQ(settling.due(), milliseconds(1500)) << "but no later than that";
    settling.told();
    EXPECT_EQ(settling.due(), std::nullopt);
}

TEST(FileStamp, TellsWhetherOtherBytesMayStandThere) {
    const FileStamp before{1, 2, 3, 4'000'000'000, 9'000'000'000};
    const auto with = [&](auto member, auto value) {
        FileStamp now = before;
        now.*member = value;
        return now;
    };
    EXPECT_FALSE(hasChanged(before, before));
    EXPECT_FALSE(hasChanged(before, with(&FileStamp::taken, std::int64_t{1})));
    EXPECT_TRUE(hasChanged(before, with(&FileStamp::device, std::uint64_t{9})));
    EXPECT_TRUE(hasChanged(before, with(&FileStamp::inode, std::uint64_t{9})));
    EXPECT_TRUE(hasChanged(before, with(&FileStamp::size, std::int64_t{9})));
    EXPECT_TRUE(hasChanged(before, with(&FileStamp::modified, std::int64_t{4'000'000'001})));
    const FileStamp atOnce = with(&FileStamp::taken, before.modified + 1'000'000);
    EXPECT_TRUE(hasChanged(atOnce, before)) << "written within the tick in which it was looked at";

    EXPECT_FALSE(FileStamp::ofPath(u"/proc/self/stat"_s));
    EXPECT_FALSE(FileStamp::ofPath(u"/dev/null"_s));
    EXPECT_FALSE(FileStamp::ofPath(u"/nowhere"_s));
}

TEST(FileWatcher, NoticesWhateverHappensToAFile) {
    const support::ScratchFolder folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"a/b"_s));
    const QString file = folder.write(u"a/b/sea.csv"_s, "1\n");
    Watched it(file);
    EXPECT_TRUE(it.notices([&] { append(file, "2\n"); }));
    EXPECT_TRUE(it.notices([&] { ASSERT_TRUE(QFile::resize(file, 0)); }));
    EXPECT_TRUE(it.notices([&] { moveOver(folder.write(u"new"_s, "3\n"), file); })) << "replaced";
    EXPECT_TRUE(it.notices([&] { append(file, "4\n"); })) << "the one that replaced it";
    EXPECT_TRUE(it.notices([&] { QFile::remove(file); }));
    EXPECT_TRUE(it.notices([&] { folder.write(u"a/b/sea.csv"_s, "5\n"); })) << "come back";
    EXPECT_TRUE(it.notices([&] { moveOver(folder.path(u"a"_s), folder.path(u"away"_s)); }));
    EXPECT_TRUE(it.notices([&] { ASSERT_TRUE(QDir(folder.path()).mkpath(u"a/b"_s)); }));
    EXPECT_TRUE(it.notices([&] { folder.write(u"a/b/sea.csv"_s, "6\n"); })) << "in a new folder";
    EXPECT_TRUE(it.notices([&] { append(file, "7\n"); }));

    const int before = it.told;
    EXPECT_TRUE(it.notices([&] {
        for (int i = 0; i < 100; ++i)
            append(file, "8\n");
    }));
    EXPECT_EQ(it.told, before + 1) << "a burst is one notice";
}

TEST(FileWatcher, FollowsLinksAndTheirChanges) {
    const support::ScratchFolder folder;
    ASSERT_TRUE(QDir(folder.path()).mkpath(u"one"_s) && QDir(folder.path()).mkpath(u"two"_s));
    folder.write(u"one/sea.csv"_s, "1\n");
    folder.write(u"two/sea.csv"_s, "2\n");
    const auto link = [&](const QString& target, const QString& name) {
        ASSERT_TRUE(QFile::link(target, folder.path(name)));
    };
    link(u"one"_s, u"current"_s); // relative
    link(folder.path(u"current/sea.csv"_s), u"latest.csv"_s);
    Watched it(folder.path(u"latest.csv"_s));
    EXPECT_TRUE(it.notices([&] { append(folder.path(u"one/sea.csv"_s), "1\n"); }));
    EXPECT_TRUE(it.notices([&] {
        link(u"two"_s, u"next"_s);
        moveOver(folder.path(u"next"_s), folder.path(u"current"_s));
    })) << "a link on the way leads elsewhere";
    EXPECT_TRUE(it.notices([&] { append(folder.path(u"two/sea.csv"_s), "2\n"); }));
    EXPECT_TRUE(it.notices([&] {
        ASSERT_TRUE(QFile::remove(folder.path(u"latest.csv"_s)));
        link(u"latest.csv"_s, u"latest.csv"_s);
    })) << "a link to itself ends nowhere, but it ends";

    Watched neighbour(folder.path(u"other.csv"_s));
    it.told = 0;
    EXPECT_TRUE(neighbour.notices([&] { folder.write(u"other.csv"_s, "1\n"); }));
    EXPECT_EQ(it.told, 0) << "what else is in the folder is nobody's business";
}

TEST(FileWatcher, SharesWhatTheSystemWatchesAndLetsItGo) {
    const support::ScratchFolder folder;
    const QString file = folder.write(u"sea.csv"_s, "1\n");
    int second = 0;
    Watched it(file);
    const std::size_t ofOne = it.watcher.systemWatchCount();
    EXPECT_GT(ofOne, 1U);
    auto other = it.watcher.watch(file, [&] {
        ++second;
        it.watch.end(); // a listener may end watches, its neighbour's too
    });
    EXPECT_EQ(it.watcher.systemWatchCount(), ofOne);
    EXPECT_TRUE(it.notices([&] { append(file, "2\n"); }));
    EXPECT_EQ(second, 1);
    append(file, "3\n");
    EXPECT_TRUE(support::waitUntil([&] { return second == 2; }));
    EXPECT_EQ(it.told, 1);
    other.end();
    EXPECT_EQ(it.watcher.systemWatchCount(), 0U);
}

TEST(FileWatcher, LooksFromTimeToTimeWhereTheSystemWatchesNoMore) {
    const support::ScratchFolder folder;
    const QString file = folder.write(u"sea.csv"_s, "1\n");
    const auto noMore = [](int, const char*, std::uint32_t) {
        errno = ENOSPC;
        return -1;
    };
    Watched it(file, {noMore, milliseconds(10)});
    EXPECT_EQ(it.watcher.systemWatchCount(), 0U);
    EXPECT_TRUE(it.notices([&] { append(file, "2\n"); }));
    EXPECT_TRUE(it.notices([&] { moveOver(folder.write(u"new"_s, "3\n4\n"), file); }));
    EXPECT_TRUE(it.notices([&] { QFile::remove(file); }));
    EXPECT_TRUE(it.notices([&] { folder.write(u"sea.csv"_s, "1\n"); }));
}

} // namespace
