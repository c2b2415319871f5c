// Saving a document whose file somebody else touched, changed, replaced or removed, and where it cannot be
// written.
#include "WindowFixture.h"

#include "Platform/Core/PropertyList.h"

#include <QDir>

#include <csignal>
#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;
using support::ScratchFolder;

namespace {

struct DiskRow {
    const char* name;
    void (*befalls)(const QString& path);
    bool isAsked;
};

void rewrite(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
}

void replace(const QString& path, const QByteArray& bytes) {
    rewrite(path + u".new"_qs, bytes);
    ASSERT_EQ(::rename(qPrintable(path + u".new"_qs), qPrintable(path)), 0);
}

/// As long as before.
QByteArray otherBytes(const QString& path) {
    return ScratchFolder::read(path).replace("showLegend", "SHOWLEGEND");
}

constexpr DiskRow diskRows[] = {
    {"untouched", [](const QString&) {}, false},
    {"touched",
     [](const QString& path) {
         QFile file(path);
         ASSERT_TRUE(
             file.open(QIODevice::ReadWrite) &&
             file.setFileTime(QDateTime(QDate(2001, 2, 3), QTime(4, 5)), QFileDevice::FileModificationTime));
     },
     false},
    {"replaced by a copy", [](const QString& path) { replace(path, ScratchFolder::read(path)); }, false},
    {"removed", [](const QString& path) { ASSERT_TRUE(QFile::remove(path)); }, false},
    {"rewritten at the same length", [](const QString& path) { rewrite(path, otherBytes(path)); }, true},
    {"replaced at the same length", [](const QString& path) { replace(path, otherBytes(path)); }, true},
    {"appended to", [](const QString& path) { rewrite(path, ScratchFolder::read(path) + '\n'); }, true},
    {"replaced by a link",
     [](const QString& path) {
         rewrite(path + u".other"_qs, "other");
         ASSERT_TRUE(QFile::remove(path) && QFile::link(path + u".other"_qs, path));
     },
     true},
};

using Remedy = std::function<void()>;

struct FaultRow {
    const char* name;
    const char* reason;
    Remedy (*befalls)(const QString& folder, const QString& path);
};

/// Root may do everything; anybody else does it as the one who runs the tests.
Remedy withoutRights(const QString& path, mode_t mode) {
    constexpr uid_t nobody = 65534;
    const bool isRoot = ::geteuid() == 0;
    EXPECT_EQ(::chmod(qPrintable(path), mode), 0);
    EXPECT_EQ(isRoot ? ::seteuid(nobody) : 0, 0);
    return [path, isRoot] {
        EXPECT_EQ(isRoot ? ::seteuid(0) : 0, 0);
        EXPECT_EQ(::chmod(qPrintable(path), 0777), 0);
    };
}

constexpr FaultRow faultRows[] = {
    {"no room", "File too large",
     [](const QString&, const QString&) -> Remedy {
         rlimit before = {};
         EXPECT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
         const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
         const rlimit small{.rlim_cur = 100, .rlim_max = before.rlim_max};
         EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
         return [before, oldHandler] {
             EXPECT_EQ(::setrlimit(RLIMIT_FSIZE, &before), 0);
             std::signal(SIGXFSZ, oldHandler);
         };
     }},
    {"read-only folder", "Permission denied",
     [](const QString& folder, const QString&) { return withoutRights(folder, 0555); }},
    {"write-protected file", "Permission denied",
     [](const QString&, const QString& path) { return withoutRights(path, 0444); }},
    {"hidden folder", "Permission denied",
     [](const QString& folder, const QString&) { return withoutRights(folder, 0); }},
    {"folder that is gone", "No such file or directory",
     [](const QString& folder, const QString&) -> Remedy {
         EXPECT_TRUE(QDir().rename(folder, folder + u".away"_qs));
         return [folder] { EXPECT_TRUE(QDir().rename(folder + u".away"_qs, folder)); };
     }},
};

class ChangedOnDisk : public WindowFixture {
  protected:
    static QStringList strayFiles(const QString& folder) {
        return QDir(folder).entryList({u".velquin-*"_qs}, QDir::Files | QDir::Hidden);
    }
    /// A saved document with a change that is not saved.
    MoxDocumentWindow& editedWindow(const QString& path) {
        MoxDocumentWindow& window = windowWith({u"1"_qs});
        EXPECT_EQ(window.document().writeToURL(path), std::nullopt);
        change(window, u"first"_qs);
        return window;
    }
    static void change(MoxDocumentWindow& window, const QString& title) {
        window.document().setPlotAreaTitle(title);
        nextTurn(window);
    }
    static QString titleIn(const QString& path) {
        return PropertyList::read(ScratchFolder::read(path))
            .value.value_or(QVariant())
            .toMap()[u"PlotAreaOptions"_qs]
            .toMap()[u"title"_qs]
            .toString();
    }
};

TEST_F(ChangedOnDisk, isNoticedByWhatTheFileHolds) {
    for (const DiskRow& row : diskRows) {
        SCOPED_TRACE(row.name);
        const QString path = folder.path(QLatin1String(row.name) + u".mox"_qs);
        MoxDocumentWindow& window = editedWindow(path);
        alerts.messages.clear();
        row.befalls(path);
        const QByteArray before = row.isAsked ? ScratchFolder::read(path) : QByteArray();
        alerts.plan = {2}; // "Cancel"
        bool isSaved = !row.isAsked;
        window.save([&](bool saved) { isSaved = saved; });
        EXPECT_EQ(alerts.messages.size(), row.isAsked ? 1 : 0);
        EXPECT_EQ(isSaved, !row.isAsked);
        EXPECT_EQ(window.document().isDocumentEdited(), row.isAsked);
        if (row.isAsked)
            EXPECT_EQ(ScratchFolder::read(path), before);
        else
            EXPECT_EQ(titleIn(path), u"first"_qs);
        EXPECT_TRUE(strayFiles(folder.path()).isEmpty());
    }
}

TEST_F(ChangedOnDisk, savesElsewhereOrOverwritesAndNoticesTheNextChange) {
    const QString path = folder.path(u"a.mox"_qs);
    MoxDocumentWindow& window = editedWindow(path);
    rewrite(path, "other");
    alerts.plan = {0}; // "Save As…"
    panels.paths = {folder.path(u"b.mox"_qs)};
    window.save();
    EXPECT_EQ(alerts.messages, QStringList{u"“a.mox” was changed by another program."_qs});
    EXPECT_EQ(ScratchFolder::read(path), "other");
    EXPECT_EQ(titleIn(folder.path(u"b.mox"_qs)), u"first"_qs);

    const QString now = window.document().filePath();
    for (const char* title : {"second", "third"}) {
        change(window, QLatin1String(title));
        rewrite(now, "other again");
        alerts.plan = {1}; // "Overwrite"
        window.save();
        EXPECT_EQ(titleIn(now), QLatin1String(title));
        EXPECT_FALSE(window.document().isDocumentEdited());
    }
    EXPECT_EQ(alerts.messages.size(), 3);
}

TEST_F(ChangedOnDisk, isAsItWasWhenItCannotBeWrittenAndIsWrittenWhenItCan) {
    ASSERT_EQ(::chmod(qPrintable(folder.path()), 0711), 0); // for whoever has no rights
    for (const FaultRow& row : faultRows) {
        SCOPED_TRACE(row.name);
        const QString home = folder.path(QLatin1String(row.name)), path = home + u"/a.mox"_qs;
        ASSERT_TRUE(QDir().mkdir(home));
        ASSERT_EQ(::chmod(qPrintable(home), 0777), 0);
        MoxDocumentWindow& window = editedWindow(path);
        const QByteArray before = ScratchFolder::read(path);
        alerts.messages.clear();
        alerts.plan = {0}; // "OK"
        bool isSaved = true;
        const Remedy remedy = row.befalls(home, path);
        window.save([&](bool saved) { isSaved = saved; });
        remedy();
        EXPECT_FALSE(isSaved);
        EXPECT_EQ(alerts.messages, QStringList{u"“a.mox” was not saved."_qs});
        EXPECT_TRUE(alerts.reason.startsWith(QLatin1String(row.reason) + u'.'))
            << alerts.reason.toStdString();
        EXPECT_TRUE(window.document().isDocumentEdited());
        EXPECT_EQ(ScratchFolder::read(path), before);
        EXPECT_TRUE(strayFiles(home).isEmpty());
        window.save([&](bool saved) { isSaved = saved; });
        EXPECT_TRUE(isSaved);
        EXPECT_EQ(titleIn(path), u"first"_qs);
        EXPECT_FALSE(window.document().isDocumentEdited());
    }
}

TEST_F(ChangedOnDisk, isNoticedInADocumentThatWasRead) {
    const QString path = folder.path(u"a.mox"_qs);
    editedWindow(path).closeNow();
    documents.openFile(path, nullptr);
    MoxDocumentWindow& window = *documents.windowOfFile(path);
    change(window, u"mine"_qs);
    rewrite(path, otherBytes(path));
    window.save();
    EXPECT_EQ(alerts.messages.value(0), u"“a.mox” was changed by another program."_qs);
}

} // namespace
