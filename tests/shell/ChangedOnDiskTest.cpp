// Saving a document whose file somebody else touched, changed, replaced or removed.
#include "WindowFixture.h"

#include "Platform/Core/PropertyList.h"

#include <QDir>

#include <sys/stat.h>

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

class ChangedOnDisk : public WindowFixture {
  protected:
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
        EXPECT_TRUE(QDir(folder.path()).entryList({u".velquin-*"_qs}, QDir::Files | QDir::Hidden).isEmpty());
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
