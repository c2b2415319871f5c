// What becomes of a source when its file changes: offered or read by itself, how often, and what is kept.
#include "EmbeddedPlugins/TextFile/LiveFile.h"
#include "EmbeddedPlugins/TextFile/FileWatcher.h"
#include "EmbeddedPlugins/TextFile/LiveFiles.h"
#include "EmbeddedPlugins/TextFile/LiveStep.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "Platform/Core/UserDefaults.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>

#include <fcntl.h>
#include <sys/stat.h>

namespace {

using std::chrono::milliseconds;
using Kind = LiveStep::Kind;
using namespace Qt::StringLiterals;

LiveStep waitUntil(int until) {
    return {Kind::Wait, milliseconds(until)};
}

TEST(LiveStep, DecidesByWhatIsOnTheDisk) {
    const FileStamp old{1, 2, 30, 4, 5'000'000'000};
    FileStamp grown = old;
    grown.size = 40;
    FileStamp empty = old;
    empty.size = 0;
    LiveFacts changed;
    changed.read = old;
    changed.onDisk = grown;
    changed.isLive = changed.hasRows = true;
    changed.now = milliseconds(10'000);
    changed.lastRead = milliseconds(9'000);
    const auto with = [&](auto edit) {
        LiveFacts facts = changed;
        edit(facts);
        return nextStep(facts);
    };
    EXPECT_EQ(with([](auto&) {}), LiveStep{Kind::Read});
    EXPECT_EQ(with([&](auto& f) { f.onDisk = old; }), LiveStep{Kind::UpToDate});
    EXPECT_EQ(with([](auto& f) { f.isLive = false; }), LiveStep{Kind::Offer});
    EXPECT_EQ(with([](auto& f) { f.hasGivenUp = true; }), LiveStep{Kind::Offer}) << "it would fail again";
    EXPECT_EQ(with([](auto& f) { f.isReading = true; }), LiveStep{Kind::Wait}) << "never cut short";
    EXPECT_EQ(with([](auto& f) { f.lastRead = milliseconds(9'800); }), waitUntil(10'300)) << "twice a second";
    EXPECT_EQ(with([](auto& f) { f.isEvaluating = true; }), waitUntil(10'100)) << "never starved";

    const auto gone = [](LiveFacts& f) {
        f.onDisk.reset();
        f.awaySince = milliseconds(9'000);
    };
    EXPECT_EQ(with(gone), waitUntil(11'000));
    EXPECT_EQ(with([&](auto& f) { gone(f), f.now = milliseconds(11'000); }), LiveStep{Kind::Read});
    EXPECT_EQ(with([&](auto& f) { gone(f), f.isReading = true; }), LiveStep{Kind::Wait});
    EXPECT_EQ(with([&](auto& f) { gone(f), f.isInFault = true; }), LiveStep{Kind::UpToDate}) << "known";
    const auto emptied = [&](LiveFacts& f) {
        f.onDisk = empty;
        f.awaySince = milliseconds(9'500);
    };
    EXPECT_EQ(with(emptied), waitUntil(11'500)) << "as while it is written anew";
    EXPECT_EQ(with([&](auto& f) { emptied(f), f.now = milliseconds(11'500); }), LiveStep{Kind::Read});
    EXPECT_EQ(with([&](auto& f) { emptied(f), f.hasRows = false; }), LiveStep{Kind::Read});
}

/// Reading at a steady pace whatever the file does: a second of changes every 10 ms, with reads that last.
TEST(LiveStep, KeepsItsPaceWhileAFileGrows) {
    for (const int readLasts : {20, 1'300}) {
        LiveFacts facts;
        facts.isLive = facts.hasRows = true;
        facts.onDisk = FileStamp{1, 2, 0, 0, 1};
        int reads = 0;
        for (int now = 0; now < 10'000; now += 10) {
            facts.now = milliseconds(now);
            facts.onDisk->size = facts.onDisk->modified = now + 1;
            facts.isReading = facts.lastRead && now < facts.lastRead->count() + readLasts;
            if (nextStep(facts).kind != Kind::Read)
                continue;
            ++reads;
            facts.read = facts.onDisk;
            facts.lastRead = facts.now;
        }
        EXPECT_EQ(reads, readLasts == 20 ? 20 : 8) << readLasts;
    }
}

class LiveSource : public testing::Test {
  protected:
    LiveSource() {
        makeOld(file);
        FileWatcher::setShared(&watcher);
        source.setFilename(file);
        source.read();
        EXPECT_TRUE(support::waitUntil([this] { return !source.isLoading(); }));
        QObject::connect(&source, &Observable::keyChanged, [this](const KeyChange& change) {
            news += change.key == std::string_view("isChangedOnDisk") && change.newValue.toBool();
        });
    }

    /// Written long before it is looked at.
    static void makeOld(const QString& path) {
        const timespec longAgo[2] = {{1'000, 0}, {1'000, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, QFile::encodeName(path).constData(), longAgo, 0), 0);
    }
    static void append(const QString& path, const QByteArray& bytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::Append) && file.write(bytes) == bytes.size());
    }
    static std::uint64_t rows(const XPTextFile& of) { return of.data() ? of.data()->rowsNumber() : 0; }
    bool comesToRows(std::uint64_t count) {
        return support::waitUntil([=, this] { return rows(source) == count && !source.isLoading(); });
    }
    bool isOffered() {
        return support::waitUntil([this] { return source.isChangedOnDisk(); });
    }

    support::ScratchFolder folder;
    QString file = folder.write(u"sea.csv"_s, "1\n2\n");
    FileWatcher watcher;
    XPTextFile source;
    int news = 0;
};

TEST_F(LiveSource, OffersAChangeUntilItIsRead) {
    append(file, "3\n");
    ASSERT_TRUE(isOffered());
    EXPECT_EQ(rows(source), 2U) << "nobody asked to read it";
    EXPECT_EQ(news, 1);
    append(file, "4\n");
    ASSERT_TRUE(support::waitUntil([this] { return news == 2; })) << "the next change is told, too";
    source.read();
    EXPECT_TRUE(comesToRows(4));
    EXPECT_FALSE(source.isChangedOnDisk());

    // Neither rights nor our own reading change it; an event of a neighbour's watch says that it was seen.
    makeOld(file);
    ASSERT_TRUE(isOffered()) << "a touched file may be another";
    source.read();
    ASSERT_TRUE(comesToRows(4));
    int seen = 0;
    const auto watch = watcher.watch(source.filename(), [&] { ++seen; });
    ASSERT_EQ(chmod(QFile::encodeName(file).constData(), 0600), 0);
    ASSERT_TRUE(support::waitUntil([&] { return seen == 1; }));
    EXPECT_FALSE(source.isChangedOnDisk());

    source.clean();
    append(file, "5\n");
    ASSERT_TRUE(support::waitUntil([&] { return seen == 2; }));
    EXPECT_FALSE(source.isChangedOnDisk()) << "a source that was let go of follows nothing";
}

TEST_F(LiveSource, AFileThatGoesAndComesBackKeepsItsTable) {
    const QString aside = folder.path(u"aside"_s);
    ASSERT_TRUE(QFile::rename(file, aside));
    ASSERT_TRUE(support::waitUntil([this] { return !source.readError().isEmpty(); }));
    EXPECT_EQ(rows(source), 2U);
    EXPECT_FALSE(source.isChangedOnDisk());
    ASSERT_TRUE(QFile::rename(aside, file));
    EXPECT_TRUE(support::waitUntil([this] { return source.readError().isEmpty(); })) << "the same file again";
    EXPECT_EQ(news, 0);

    source.setLive(true);
    ASSERT_TRUE(QFile::remove(file));
    ASSERT_TRUE(support::waitUntil([this] { return !source.readError().isEmpty(); }));
    EXPECT_EQ(rows(source), 2U);
    folder.write(u"sea.csv"_s, "1\n2\n3\n");
    EXPECT_TRUE(comesToRows(3));
    EXPECT_EQ(source.readError(), QString());
}

TEST_F(LiveSource, ReadsByItselfWhereTheUserWantsIt) {
    XPTextFile other;
    other.setFilename(folder.path(u"./sea.csv"_s));
    other.read();
    ASSERT_TRUE(support::waitUntil([&] { return !other.isLoading(); }));
    const std::optional<QVariantMap> settings = source.plist();
    append(file, "3\n");
    ASSERT_TRUE(isOffered());
    source.setLive(true);
    EXPECT_TRUE(comesToRows(3)) << "what was offered is read";
    EXPECT_TRUE(other.isLive()) << "the choice is of the file";
    ASSERT_TRUE(support::waitUntil([&] { return rows(other) == 3; }));
    EXPECT_EQ(source.plist(), settings);
    EXPECT_EQ(UserDefaults::standard().stringList(u"LiveFiles"_s), QStringList{file});

    bool wasWithoutRows = false;
    QObject::connect(&source, &Observable::keyChanged,
                     [&](const KeyChange&) { wasWithoutRows = wasWithoutRows || rows(source) == 0; });
    ASSERT_TRUE(QFile::resize(file, 0)); // and written anew a while later
    ASSERT_TRUE(support::waitUntil([&] { return other.isLive() && QFile(file).size() == 0; }));
    int seen = 0;
    const auto watch = watcher.watch(source.filename(), [&] { ++seen; });
    ASSERT_TRUE(support::waitUntil([&] { return seen > 0; }));
    append(file, "1\n2\n3\n4\n5\n");
    EXPECT_TRUE(comesToRows(5));
    EXPECT_FALSE(wasWithoutRows);
    EXPECT_TRUE(source.isReadByItself());

    ASSERT_EQ(rename(QFile::encodeName(folder.write(u"new"_s, "7\n")).constData(),
                     QFile::encodeName(file).constData()),
              0);
    EXPECT_TRUE(comesToRows(1));
    other.setLive(false);
    EXPECT_FALSE(source.isLive());
    append(file, "8\n");
    EXPECT_TRUE(isOffered());
}

TEST_F(LiveSource, WhatCannotBeReadToTheEndIsNotTriedAgainByItself) {
    source.setLive(true);
    source.setMemoryLimit(64);
    append(file, QByteArray("1 2 3 4 5 6 7 8\n").repeated(1000));
    ASSERT_TRUE(support::waitUntil([this] { return !source.readError().isEmpty(); }));
    EXPECT_EQ(rows(source), 2U);
    append(file, "1\n");
    EXPECT_TRUE(isOffered());
    source.setMemoryLimit(1 << 20);
    source.read();
    EXPECT_TRUE(comesToRows(1003));
    append(file, "1\n");
    EXPECT_TRUE(comesToRows(1004)) << "it goes on once it was read";
}

/// A source whose reads last as long as the test likes.
struct SlowSource final : LiveFileSource {
    bool isReadingFile() const override { return isReading; }
    bool hasRowsOfFile() const override { return true; }
    void readByItself() override { ++reads; }
    void fileIsBack() override {}
    void setChangedOnDisk(bool) override {}
    void isLiveChanged() override {}

    bool isReading = true;
    int reads = 0;
};

TEST_F(LiveSource, AChangeDuringAReadIsReadAfterIt) {
    LiveFiles::set(file, true);
    source.clean();
    SlowSource slow;
    LiveFile live(slow);
    live.readBegins(file);
    live.fileOpened(FileStamp::ofPath(file), false);
    int seen = 0;
    const auto watch = watcher.watch(file, [&] { ++seen; });
    append(file, "3\n");
    ASSERT_TRUE(support::waitUntil([&] { return seen == 1; }));
    EXPECT_EQ(slow.reads, 0) << "the one that runs is let finish";
    slow.isReading = false;
    live.readEnded(false);
    EXPECT_TRUE(support::waitUntil([&] { return slow.reads == 1; }));
}

TEST(LiveFiles, AreTheLatestOnesByTheirAbsolutePath) {
    const int more = LiveFiles::most + 5;
    for (int i = 0; i < more; ++i)
        LiveFiles::set(u"/data/%1.csv"_s.arg(i), true);
    const QStringList kept = UserDefaults::standard().stringList(u"LiveFiles"_s);
    ASSERT_EQ(kept.size(), LiveFiles::most);
    EXPECT_EQ(kept.first(), u"/data/%1.csv"_s.arg(more - 1));
    EXPECT_FALSE(LiveFiles::contains(u"/data/4.csv"_s));
    EXPECT_TRUE(LiveFiles::contains(u"/data/old/../5.csv"_s));
    LiveFiles::set(u"~/sea.csv"_s, true);
    EXPECT_TRUE(LiveFiles::contains(QDir::homePath() + u"/sea.csv"_s));
    LiveFiles::set({}, true);
    EXPECT_FALSE(LiveFiles::contains({}));
}

} // namespace
