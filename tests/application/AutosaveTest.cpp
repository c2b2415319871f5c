// When changes are kept, what the files hold, and when they go.
#include "RecoveryFixture.h"

#include "Classes/Recovery/AutosaveSchedule.h"
#include "Classes/Recovery/ProcessIdentity.h"

#include <sys/stat.h>

using namespace Qt::StringLiterals;
using std::chrono::seconds;
using support::ScratchFolder;
using support::waitUntil;

namespace {

TEST(AutosaveScheduleTest, waitsForAPauseButNotForEver) {
    struct Row {
        int changedAt;
        int waits;
    };
    AutosaveSchedule schedule{AutosaveIntervals{}};
    const auto check = [&](std::initializer_list<Row> rows) {
        for (const Row& row : rows)
            EXPECT_EQ(schedule.changed(AutosaveSchedule::Time(seconds(row.changedAt))), seconds(row.waits))
                << row.changedAt;
    };
    check({{1000, 30}, {1020, 30}, {1089, 30}, {1100, 20}, {1119, 1}, {1120, 0}, {1500, 0}});
    schedule.written();
    check({{1500, 30}, {1590, 30}, {1600, 20}});
}

using AutosaveTest = RecoveryFixture;

TEST_F(AutosaveTest, holdsTheDocumentAndWhatTiesItToItsFile) {
    MoxDocumentWindow& typed = windowWith({u"1 2 3"_qs});
    MoxDocumentWindow& saved = windowWith({u"4"_qs});
    const QString path = folder.path(u"härbor.mox"_qs);
    ASSERT_EQ(saved.document().writeToURL(path), std::nullopt);
    change(saved, "first");
    ASSERT_TRUE(waitUntilKept(typed));
    ASSERT_TRUE(waitUntilKept(saved));
    const QStringList before = names();
    EXPECT_EQ(before.size(), 2);
    EXPECT_FALSE(before.join(u' ').contains(u"bor"_qs) || before.join(u' ').contains(u"ntitled"_qs));
    change(saved, "second");
    ASSERT_TRUE(waitUntilKept(saved));
    EXPECT_EQ(names(), before) << "one a document";

    struct stat status = {};
    ASSERT_EQ(::stat(qPrintable(autosaves()), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700U);
    for (const QString& name : before) {
        ASSERT_EQ(::stat(qPrintable(autosaves() + u'/' + name), &status), 0);
        EXPECT_EQ(status.st_mode & 07777, 0600U);
        const auto record = AutosaveRecord::fromPlist(content(name));
        ASSERT_TRUE(record);
        const bool isSaved = !record->document.filePath.isEmpty();
        EXPECT_EQ(record->name, isSaved ? u"härbor.mox"_qs : u"Untitled"_qs);
        EXPECT_EQ(record->document.filePath, isSaved ? path : QString());
        EXPECT_EQ(record->document.onDisk,
                  isSaved ? std::optional(FileFingerprint::of(ScratchFolder::read(path))) : std::nullopt);
        EXPECT_LT(record->document.editedSince.secsTo(QDateTime::currentDateTime()), 60);
        EXPECT_EQ(record->process, ProcessIdentity::current());
        EXPECT_FALSE(record->endedOnDemand);
    }
    EXPECT_TRUE(ProcessIdentity::current().isRunning());
    EXPECT_FALSE((ProcessIdentity{ProcessIdentity::current().id, 1}).isRunning()) << "a number is used again";
}

TEST_F(AutosaveTest, goesWhenThereIsNothingLeftToSave) {
    const auto save = [&](MoxDocumentWindow& window) {
        EXPECT_EQ(window.document().writeToURL(folder.path(u"a.mox"_qs)), std::nullopt);
    };
    MoxDocumentWindow& window = windowWith({u"1"_qs});
    const XCurveHandle curve = window.document().addNewCurve();
    nextTurn(window);
    ASSERT_TRUE(waitForFiles(1));
    save(window);
    ASSERT_TRUE(waitForFiles(0));
    curve->setLineWidth(7);
    nextTurn(window);
    ASSERT_TRUE(waitForFiles(1));
    window.document().undoManager().undo();
    ASSERT_FALSE(window.document().isDocumentEdited());
    ASSERT_TRUE(waitForFiles(0));
    change(window, "again");
    ASSERT_TRUE(waitForFiles(1));
    alerts.plan = {2, 1}; // "Cancel", "Discard"
    window.close();
    ASSERT_TRUE(waitUntilKept(window)) << "the window is still there";
    window.close();
    EXPECT_TRUE(waitForFiles(0));
}

TEST_F(AutosaveTest, tellsOnceThatItFailsAndGoesOnTrying) {
    const QString state = folder.write(u"state"_qs, "in the way");
    MoxDocumentWindow& window = windowWith({u"1"_qs});
    const QString told = u"Unsaved changes cannot be kept in case of a crash: Not a directory."_qs;
    for (int i = 0; i < 2; ++i) {
        change(window, "a");
        ASSERT_TRUE(waitUntil([&] { return window.statusLine().message() == told; }));
        window.showMessage(u"another"_qs);
        const support::LogRecorder log;
        ASSERT_TRUE(waitUntil([&] { return log.lines().size() > 2; })) << "it is tried again and again";
        EXPECT_EQ(window.statusLine().message(), u"another"_qs);
        ASSERT_TRUE(QFile::remove(state));
        ASSERT_TRUE(waitUntilKept(window));
        ASSERT_TRUE(QDir(state).removeRecursively());
        folder.write(u"state"_qs, "in the way");
    }
    EXPECT_TRUE(alerts.messages.isEmpty());
}

TEST_F(AutosaveTest, trustsNoFolderOfSomebodyElse) {
    ASSERT_TRUE(QDir().mkpath(folder.path(u"state/velquin"_qs)));
    ASSERT_TRUE(QFile::link(folder.path(), autosaves()));
    EXPECT_NE(AutosaveFolder::make(autosaves()), std::nullopt);
    ASSERT_TRUE(QFile::remove(autosaves()) && QDir().mkdir(autosaves()));
    ASSERT_EQ(::chmod(qPrintable(autosaves()), 0777), 0);
    EXPECT_EQ(AutosaveFolder::make(autosaves()), std::nullopt);
    struct stat status = {};
    ASSERT_EQ(::stat(qPrintable(autosaves()), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0700U);
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(qPrintable(autosaves()), 1, 1), 0);
        EXPECT_EQ(AutosaveFolder::make(autosaves()), u"Operation not permitted"_qs);
    }
}

} // namespace
