// What an ended program left: taking hold of it, offering it, opening it again; and ending on demand.
#include "RecoveryFixture.h"

#include "Classes/Recovery/DocumentSafety.h"
#include "Classes/Recovery/RecoveryOffer.h"

#include <QSignalSpy>

#include <csignal>
#include <stop_token>
#include <sys/stat.h>
#include <thread>

using namespace Qt::StringLiterals;
using support::ScratchFolder;
using support::waitUntil;

namespace {

class RecoveryTest : public RecoveryFixture {
  protected:
    static void look(RecoveryOffer& offer, MoxDocumentWindow& window) {
        offer.ask(window);
        MainThread::runUntil([&] { return !offer.isLooking(); });
    }
};

class LeftFiles : public RecoveryFixture {
  protected:
    std::size_t taken() const { return AutosaveFolder::takeLeft(autosaves()).size(); }
    QString write(const QString& name, const QByteArray& bytes) const {
        return folder.write(u"state/velquin/autosave/"_qs + name, bytes);
    }
};

TEST_F(LeftFiles, areHeldByTheLiving) {
    ASSERT_TRUE(waitUntilKept(windowWith({u"1"_qs})));
    EXPECT_EQ(taken(), 0U);
    letGo();
    const auto held = AutosaveFolder::takeLeft(autosaves());
    ASSERT_EQ(held.size(), 1U);
    EXPECT_EQ(taken(), 0U) << "a second program finds it held";
    ASSERT_EQ(held[0].file->write(PropertyList::writeXml(held[0].record.toPlist())), std::nullopt);
    EXPECT_EQ(taken(), 0U) << "the new content is held as well";
}

TEST_F(LeftFiles, areNotReadOnceTheLookingIsToEnd) {
    ASSERT_TRUE(waitUntilKept(windowWith({u"1"_qs})));
    letGo();
    std::stop_source end;
    end.request_stop();
    EXPECT_TRUE(AutosaveFolder::takeLeft(autosaves(), end.get_token()).empty());
    EXPECT_EQ(taken(), 1U);
}

TEST_F(LeftFiles, thatAreDamagedOrStrangeAreSetAsideAndBlockNothing) {
    ASSERT_TRUE(waitUntilKept(windowWith({u"1"_qs})));
    const QByteArray good = ScratchFolder::read(autosaves() + u'/' + names().value(0));
    letGo();
    write(u"garbage.autosave"_qs, "garbage");
    write(u"empty.autosave"_qs, "");
    write(u"part.autosave"_qs, good.first(good.size() / 2));
    write(u"other.autosave"_qs, PropertyList::writeXml(QVariantMap{{u"a"_qs, 1}}));
    write(u"future.autosave"_qs, QByteArray(good).replace("<key>VelquinAutosave</key>\n\t<integer>1",
                                                          "<key>VelquinAutosave</key>\n\t<integer>2"));
    ASSERT_TRUE(QFile::resize(write(u"huge.autosave"_qs, ""), 300LL << 20));
    ASSERT_TRUE(QFile::link(folder.write(u"elsewhere"_qs, good), autosaves() + u"/link.autosave"_qs));
    ASSERT_TRUE(QDir().mkdir(autosaves() + u"/folder.autosave"_qs));
    ASSERT_EQ(::mkfifo(qPrintable(autosaves() + u"/pipe.autosave"_qs), 0600), 0);
    int strange = 8;
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(qPrintable(write(u"foreign.autosave"_qs, good)), 1, 1), 0);
        ++strange;
    }
    const support::LogRecorder log;
    EXPECT_EQ(taken(), 1U);
    EXPECT_EQ(log.lines().size(), strange) << log.lines().join(u'\n').toStdString();
    EXPECT_EQ(names("*.damaged").size(), strange);
    EXPECT_EQ(names().size(), 2) << "a later version's stays for that version";
    EXPECT_EQ(taken(), 1U);
    EXPECT_EQ(log.lines().size(), strange) << "looked at once";
    EXPECT_EQ(ScratchFolder::read(folder.path(u"elsewhere"_qs)), good);
}

TEST_F(LeftFiles, ofInterruptedWritesGoAfterAWhile) {
    ASSERT_EQ(AutosaveFolder::make(autosaves()), std::nullopt);
    QFile old(write(u".velquin-1"_qs, "part"));
    ASSERT_TRUE(old.open(QIODevice::ReadWrite) &&
                old.setFileTime(QDateTime::currentDateTime().addDays(-1), QFileDevice::FileModificationTime));
    write(u".velquin-2"_qs, "of a living program");
    EXPECT_EQ(taken(), 0U);
    EXPECT_EQ(QDir(autosaves()).entryList(QDir::Files | QDir::Hidden), QStringList{u".velquin-2"_qs});
}

struct RecoverRow {
    const char* name;
    bool hasFile;
    void (*meanwhile)(RecoveryFixture&, DocumentController&, const QString& path);
    bool keepsItsFile;
    bool warnsWhenSaved;
};

constexpr RecoverRow recoverRows[] = {
    {"untitled", false, [](RecoveryFixture&, DocumentController&, const QString&) {}, false, false},
    {"of a file", true, [](RecoveryFixture&, DocumentController&, const QString&) {}, true, false},
    {"of a file that is gone", true,
     [](RecoveryFixture&, DocumentController&, const QString& path) { ASSERT_TRUE(QFile::remove(path)); },
     true, false},
    {"of a file that was changed", true,
     [](RecoveryFixture&, DocumentController&, const QString& path) {
         QFile file(path);
         ASSERT_TRUE(file.open(QIODevice::Append) && file.write("\n") == 1);
     },
     true, true},
    {"of a file that is open", true,
     [](RecoveryFixture&, DocumentController& documents, const QString& path) {
         documents.openFile(path, nullptr);
     },
     true, false},
    {"of a file that is open and edited", true,
     [](RecoveryFixture&, DocumentController& documents, const QString& path) {
         documents.openFile(path, nullptr);
         documents.windowOfFile(path)->document().setPlotAreaTitle(u"other"_qs);
     },
     false, false},
};

TEST_F(RecoveryTest, bringsTheDocumentBackAsItWas) {
    RecoveryOffer offer(documents, *controller, autosaves());
    for (const RecoverRow& row : recoverRows) {
        SCOPED_TRACE(row.name);
        const QString path = folder.path(QLatin1String(row.name) + u".mox"_qs);
        MoxDocumentWindow& before = windowWith({u"1 2 3"_qs});
        if (row.hasFile) {
            ASSERT_EQ(before.document().writeToURL(path), std::nullopt);
        }
        change(before, "changed");
        before.document().addNewCurve();
        nextTurn(before);
        const QVariantMap plist = before.document().plist();
        const QString title = before.windowTitle();
        ASSERT_TRUE(waitUntilKept(before));
        MoxDocumentWindow& first = crash();
        row.meanwhile(*this, documents, path);
        const bool othersAreEdited = documents.windows().last()->document().isDocumentEdited();

        alerts.messages.clear();
        alerts.plan = {0};
        look(offer, first);
        EXPECT_EQ(alerts.messages, QStringList{u"Velquin ended unexpectedly."_qs});
        EXPECT_TRUE(alerts.reason.contains(u'“' + title.section(u"[*]"_qs, 0, 0) + u'”'))
            << alerts.reason.toStdString();
        ASSERT_EQ(documents.windows().size(), othersAreEdited ? 2 : 1);
        MoxDocumentWindow& window = *documents.windows().last();
        EXPECT_EQ(window.document().plist(), plist);
        EXPECT_EQ(window.document().filePath(), row.keepsItsFile ? path : QString());
        EXPECT_EQ(window.windowTitle(), title);
        EXPECT_TRUE(window.document().isDocumentEdited());
        EXPECT_FALSE(window.document().undoManager().canUndo());
        EXPECT_FALSE(names().isEmpty()) << "stays until it is saved";

        panels.paths = {folder.path(u"elsewhere.mox"_qs)};
        alerts.plan = {1}; // "Overwrite"
        window.save();
        EXPECT_EQ(alerts.messages.size(), row.warnsWhenSaved ? 2 : 1);
        EXPECT_FALSE(window.document().isDocumentEdited());
        alerts.plan.clear();
        const QList<MoxDocumentWindow*> open = documents.windows();
        for (MoxDocumentWindow* each : open)
            each->closeNow();
        ASSERT_TRUE(waitForFiles(0));
    }
}

TEST_F(RecoveryTest, asksAgainLaterAndBeforeAnythingIsThrownAway) {
    windowWith({u"1"_qs});
    windowWith({u"2"_qs});
    ASSERT_TRUE(waitForFiles(2));
    MoxDocumentWindow& window = crash();
    RecoveryOffer offer(documents, *controller, autosaves());
    const QString ended = u"Velquin ended unexpectedly."_qs;
    const QString sure = u"Discard the kept changes to 2 documents?"_qs;
    alerts.plan = {2}; // "Later"
    look(offer, window);
    EXPECT_EQ(names().size(), 2);
    alerts.plan = {1, 0, 1, 1}; // "Discard…", "Cancel"; "Discard…", "Discard"
    look(offer, window);
    EXPECT_EQ(alerts.messages, (QStringList{ended, ended, sure, ended, sure}));
    EXPECT_TRUE(names().isEmpty());
    look(offer, window);
    EXPECT_EQ(alerts.messages.size(), 5) << "nothing is left";
    EXPECT_TRUE(window.isUntouched());
}

TEST_F(RecoveryTest, asksOverAnotherWindowOrTellsThatThereIsNone) {
    windowWith({u"1"_qs});
    ASSERT_TRUE(waitForFiles(1));
    MoxDocumentWindow* window = &crash();
    RecoveryOffer offer(documents, *controller, autosaves());
    const QSignalSpy foundNobody(&offer, &RecoveryOffer::foundNobody);
    for (const bool isAlone : {true, false}) {
        if (!isAlone)
            newWindow();
        offer.ask(*window);
        window->closeNow(); // while it looks
        MainThread::runUntil([&] { return !offer.isLooking(); });
        EXPECT_EQ(foundNobody.size(), 1);
        EXPECT_EQ(alerts.messages.size(), isAlone ? 0 : 1);
        window = &newWindow();
    }
}

TEST_F(RecoveryTest, saysNothingWhenItEndsMeanwhile) {
    windowWith({u"1"_qs});
    ASSERT_TRUE(waitForFiles(1));
    MoxDocumentWindow* window = &crash();
    bool foundNobody = false;
    for (const bool isHandedOver : {false, true}) {
        for (const bool hasWindow : {true, false}) {
            {
                RecoveryOffer offer(documents, *controller, autosaves());
                QObject::connect(&offer, &RecoveryOffer::foundNobody, [&] { foundNobody = true; });
                offer.ask(*window);
                if (!hasWindow)
                    window->closeNow();
                while (isHandedOver && offer.isLooking())
                    std::this_thread::yield();
            }
            MainThread::runUntil([] { return true; });
            EXPECT_TRUE(alerts.messages.isEmpty());
            EXPECT_FALSE(foundNobody);
            EXPECT_EQ(AutosaveFolder::takeLeft(autosaves()).size(), 1U) << "nobody holds it any more";
        }
        window = &newWindow();
    }
}

TEST_F(RecoveryTest, keepsADamagedDocumentAsideAndOpensTheOthers) {
    MoxDocumentWindow& good = windowWith({u"1"_qs});
    ASSERT_TRUE(waitUntilKept(good));
    QVariantMap bad = content(names().value(0));
    bad[u"Document"_qs] = QVariantMap{{u"Curves"_qs, 1}};
    bad[u"Name"_qs] = u"Bad\nname"_qs;
    folder.write(u"state/velquin/autosave/x.autosave"_qs, PropertyList::writeXml(bad));
    RecoveryOffer offer(documents, *controller, autosaves());
    MoxDocumentWindow& window = crash();
    const support::AssertionRecorder assertions;
    alerts.plan = {0, 0};
    look(offer, window);
    EXPECT_EQ(alerts.messages.value(1), u"“Bad name” cannot be recovered."_qs);
    EXPECT_TRUE(alerts.reason.contains(u"x.autosave.damaged"_qs)) << alerts.reason.toStdString();
    EXPECT_EQ(names("*.damaged"), QStringList{u"x.autosave.damaged"_qs});
    ASSERT_EQ(documents.windows().size(), 1);
    EXPECT_EQ(tabsOf(*documents.windows().first()), u"1"_qs);
}

struct EndRow {
    const char* name;
    void (*ends)();
};

constexpr EndRow endRows[] = {
    {"SIGTERM", [] { ::raise(SIGTERM); }},
    {"SIGINT, sent twice",
     [] {
         ::raise(SIGINT);
         ::raise(SIGINT);
     }},
    {"SIGHUP", [] { ::raise(SIGHUP); }},
    {"the session", [] { QMetaObject::invokeMethod(qApp, &QCoreApplication::quit, Qt::QueuedConnection); }},
};

TEST_F(RecoveryTest, endsOnDemandWithoutAQuestionAndKeepsWhatWaits) {
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        std::signal(signal, SIG_DFL); // a run in the background ignores some
    for (const EndRow& row : endRows) {
        SCOPED_TRACE(row.name);
        letGo();
        std::optional<DocumentSafety> safety{std::in_place, documents, autosaves(), never};
        MoxDocumentWindow& window = windowWith({u"1"_qs});
        newWindow(); // without changes
        pageOf(window, 0).pending = u"waited"_qs;
        row.ends();
        EXPECT_EQ(QApplication::exec(), 0);
        EXPECT_TRUE(alerts.messages.isEmpty());
        EXPECT_EQ(window.document().dataSourcesManager().dataSources()[0]->title(), u"waited"_qs);
        EXPECT_TRUE(isKept(window));
        safety.reset();
        ASSERT_EQ(names().size(), 1);

        safety.emplace(documents, autosaves(), never);
        crash();
        ASSERT_TRUE(waitUntil([&] { return alerts.standing != nullptr; })) << "offered over the first window";
        EXPECT_EQ(std::exchange(alerts.messages, {}),
                  QStringList{u"Velquin was ended before changes were saved."_qs});
        alerts.plan = {1};
        alerts.answer(1);
        EXPECT_TRUE(names().isEmpty());
        alerts.messages.clear();
        safety.reset();
        crash();
    }
}

TEST(EndSignalsTest, leaveIgnoredSignalsAloneAndPutTheFormerBack) {
    const auto handlerOf = [](int signal) {
        struct sigaction now = {};
        ::sigaction(signal, nullptr, &now);
        return now.sa_handler;
    };
    std::signal(SIGHUP, SIG_IGN); // as nohup does
    const auto former = handlerOf(SIGTERM);
    {
        const EndSignals signals;
        EXPECT_EQ(handlerOf(SIGHUP), SIG_IGN);
        EXPECT_NE(handlerOf(SIGTERM), former);
    }
    EXPECT_EQ(handlerOf(SIGTERM), former);
    std::signal(SIGHUP, SIG_DFL);
}

} // namespace
