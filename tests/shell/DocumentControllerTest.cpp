// The life of documents: opening, saving, the questions before closing and quitting, closing in the middle of
// something.
#include "WindowFixture.h"

#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>

using namespace Qt::StringLiterals;

namespace {

enum Button { Save, Discard, Cancel };

class DocumentControllerTest : public WindowFixture {
  protected:
    QString savedDocument(const QString& name = u"d.mox"_qs) {
        MoxDocument document;
        document.textDropped(u"1 2"_qs);
        EXPECT_EQ(document.writeToURL(folder.path(name)), std::nullopt);
        return folder.path(name);
    }
};

struct CloseRow {
    const char* name;
    QList<int> answers;
    const char* chosen; ///< in the save panel; null when it must not come, empty when it is cancelled
    bool closes;
};

TEST_F(DocumentControllerTest, closingAChangedDocumentAsks) {
    const CloseRow rows[] = {
        {"cancel", {Cancel}, nullptr, false},
        {"discard", {Discard}, nullptr, true},
        {"save", {Save}, "a.mox", true},
        {"save, but no name is chosen", {Save}, "", false},
        {"save fails", {Save, 0}, "nosuch/a.mox", false},
        {"save fails, another name", {Save, 1}, "nosuch/a.mox", false},
    };
    for (const CloseRow& row : rows) {
        SCOPED_TRACE(row.name);
        const QPointer<MoxDocumentWindow> window = &windowWith({u"1"_qs});
        const QString name = window->documentName();
        alerts.plan = row.answers;
        alerts.messages.clear();
        panels.asked = 0;
        const bool isChosen = row.chosen != nullptr && qstrlen(row.chosen) > 0;
        panels.paths = isChosen ? QStringList{folder.path(QLatin1String(row.chosen))} : QStringList();
        window->close();
        EXPECT_EQ(alerts.messages.first(), u"Save changes to “%1”?"_qs.arg(name));
        EXPECT_EQ(panels.asked > 0, row.chosen != nullptr);
        EXPECT_EQ(isGone(window), row.closes);
        if (isChosen) {
            EXPECT_EQ(QFileInfo::exists(folder.path(QLatin1String(row.chosen))), row.closes);
        }
        if (row.answers.size() > 1) {
            EXPECT_EQ(alerts.messages.last(), u"“a.mox” was not saved."_qs);
            EXPECT_TRUE(alerts.reason.endsWith(u". Your changes are still open here."_qs))
                << alerts.reason.toStdString();
        }
        if (window != nullptr)
            window->closeNow();
    }
}

TEST_F(DocumentControllerTest, anAnswerThatComesLaterClosesToo) {
    const QPointer<MoxDocumentWindow> window = &windowWith({u"1"_qs});
    window->close();
    window->close(); // the question stands
    EXPECT_EQ(alerts.messages.size(), 1);
    EXPECT_FALSE(isGone(window));
    EXPECT_TRUE(alerts.reason.startsWith(u"Without saving, your changes since "_qs));
    alerts.answer(Discard);
    EXPECT_TRUE(isGone(window));
    EXPECT_TRUE(documents.windows().isEmpty());
}

TEST_F(DocumentControllerTest, quittingAsksForEachAndOneCancelKeepsAll) {
    windowWith({u"1"_qs});
    newWindow(); // unchanged: no question
    windowWith({u"3"_qs});
    alerts.plan = {Discard, Cancel};
    documents.quit();
    EXPECT_EQ(alerts.messages.size(), 2);
    EXPECT_EQ(documents.windows().size(), 3);
    alerts.plan = {Discard, Discard};
    documents.quit();
    EXPECT_EQ(alerts.messages.size(), 4);
    EXPECT_TRUE(documents.windows().isEmpty());
}

TEST_F(DocumentControllerTest, otherWindowsMayCloseWhileQuittingAsks) {
    MoxDocumentWindow& answered = newWindow(); // unchanged: no question
    MoxDocumentWindow& asked = windowWith({u"1"_qs});
    newWindow();
    documents.quit();
    ASSERT_EQ(alerts.messages.size(), 1);
    documents.windows().last()->closeNow();
    answered.closeNow();
    ASSERT_EQ(documents.windows(), QList{&asked});
    alerts.answer(Discard);
    EXPECT_TRUE(documents.windows().isEmpty());
}

TEST_F(DocumentControllerTest, theTitleCarriesTheEditedMark) {
    MoxDocumentWindow& window = windowWith({u"1"_qs});
    EXPECT_TRUE(window.isWindowModified());
    panels.paths = {folder.path(u"a[*].mox"_qs)};
    trigger(window, "save");
    EXPECT_EQ(panels.proposedName, u"Untitled.mox"_qs);
    EXPECT_FALSE(window.isWindowModified());
    EXPECT_EQ(window.windowTitle(), u"a[*][*].mox[*] — Velquin"_qs);
    EXPECT_EQ(documents.recentDocuments(), QStringList{folder.path(u"a[*].mox"_qs)});
    window.document().setShowLegend(true);
    EXPECT_TRUE(window.isWindowModified());
    EXPECT_TRUE(window.document().editedSince().has_value());
    trigger(window, "save");
    EXPECT_FALSE(window.isWindowModified());
    EXPECT_EQ(panels.asked, 1) << "the second time it has a file";
}

TEST_F(DocumentControllerTest, savingTakesWhatWasTypedFirst) {
    MoxDocumentWindow& window = windowWith({u"1"_qs});
    QLineEdit& field = pageOf(window, 0).field();
    QObject::connect(&field, &QLineEdit::editingFinished, &window,
                     [&] { window.document().setPlotAreaTitle(field.text()); });
    window.activateWindow();
    field.setFocus();
    ASSERT_TRUE(support::waitUntil([&] { return field.hasFocus(); }));
    panels.paths = {folder.path(u"a.mox"_qs)};
    for (const QByteArray suffix : {"1", "2"}) { // without a file and with one
        QTest::keyClicks(&field, QLatin1String(suffix));
        pageOf(window, 0).pending = u"Gauge"_qs + QLatin1String(suffix);
        window.save();
        const QByteArray saved = support::ScratchFolder::read(folder.path(u"a.mox"_qs));
        EXPECT_TRUE(saved.contains(field.text().toUtf8() + "</string>")) << saved.toStdString();
        EXPECT_TRUE(saved.contains("Gauge" + suffix)) << saved.toStdString();
        EXPECT_TRUE(field.hasFocus());
    }
    QTest::keyClicks(&field, u"3"_qs);
    alerts.plan = {Discard};
    window.close();
    EXPECT_EQ(alerts.messages.size(), 1) << "what was typed last is a change";
}

TEST_F(DocumentControllerTest, aFileIsOneDocumentAndTakesTheUntouchedWindowsPlace) {
    const QString path = savedDocument();
    const QPointer<MoxDocumentWindow> untouched = &newWindow();
    panels.paths = {path};
    documents.openWithPanel(*untouched);
    EXPECT_TRUE(isGone(untouched));
    ASSERT_EQ(documents.windows().size(), 1);
    MoxDocumentWindow* window = documents.windows().first();
    EXPECT_EQ(tabsOf(*window), u"1 2"_qs);
    EXPECT_TRUE(window->isPlotSelected());
    EXPECT_FALSE(window->isWindowModified());

    documents.openFile(folder.path(u"./d.mox"_qs), window);
    EXPECT_EQ(documents.windows().size(), 1) << "by another name of the same file";
    documents.openFile(folder.write(u"a b.csv"_qs, "1 2\n"), window);
    ASSERT_EQ(documents.windows().size(), 2) << "a data file is a new document";
    EXPECT_EQ(documents.windows().last()->documentName(), u"a b"_qs);
    EXPECT_FALSE(documents.windows().last()->isWindowModified()) << "just looked at";

    MoxDocumentWindow& other = *documents.windows().last();
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(path)});
    QDropEvent drop(QPointF(600, 400), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&other, &drop);
    EXPECT_EQ(other.dataSourceTabCount(), 1) << "a document is opened, not read as numbers";
    panels.paths = {path};
    alerts.plan = {0, 0};
    other.saveAs();
    EXPECT_TRUE(other.document().filePath().isEmpty()) << "two windows never share a file";

    const support::AssertionRecorder assertions;
    const support::LogRecorder log;
    documents.openFile(folder.write(u"bad.mox"_qs, "garbage"), window);
    EXPECT_EQ(alerts.messages,
              (QStringList{u"“d.mox” was not saved."_qs, u"“bad.mox” cannot be opened."_qs}));
    EXPECT_TRUE(alerts.reason.startsWith(u"It is not a document: "_qs)) << alerts.reason.toStdString();
    EXPECT_EQ(documents.windows().size(), 2) << "no half-open window";
}

TEST_F(DocumentControllerTest, aDocumentOpensWithoutItsDataFile) {
    MoxDocument document;
    document.fileDropped(folder.path(u"gone.csv"_qs));
    ASSERT_EQ(document.writeToURL(folder.path(u"d.mox"_qs)), std::nullopt);
    documents.openFile(folder.path(u"d.mox"_qs), nullptr);
    ASSERT_EQ(documents.windows().size(), 1);
    const MoxDocument& opened = documents.windows().first()->document();
    ASSERT_TRUE(support::waitUntil([&] { return !opened.isReading(); }));
    EXPECT_FALSE(opened.dataSourcesManager().dataSources().front()->readError().isEmpty());
    EXPECT_FALSE(opened.isDocumentEdited()) << "its file's name is not touched";
}

TEST_F(DocumentControllerTest, aReadThatIsGivenUpIsToldOnceAndKeepsTheData) {
    MoxDocumentWindow& window = windowWith({u"1 2"_qs});
    const XDataSource source = window.document().dataSourcesManager().dataSources().front();
    ASSERT_TRUE(support::waitUntil([&] { return source->data() != nullptr && !source->isLoading(); }));
    dynamic_cast<XPTextEditor&>(*source).setMemoryLimit(1);
    alerts.plan = {0};
    trigger(window, "reload");
    ASSERT_TRUE(support::waitUntil([&] { return !source->isLoading(); }));
    EXPECT_EQ(alerts.messages, QStringList{u"“Editor” was not read to the end."_qs});
    EXPECT_TRUE(alerts.reason.startsWith(u"Line 1: "_qs)) << alerts.reason.toStdString();
    EXPECT_TRUE(alerts.reason.endsWith(u". The data read before are kept."_qs))
        << alerts.reason.toStdString();
    EXPECT_NE(source->data(), nullptr);
}

TEST_F(DocumentControllerTest, recentDocumentsAreFewAndInOrder) {
    for (int i = 0; i < 12; ++i)
        documents.noteRecentDocument(u"/d/%1.mox"_qs.arg(i));
    documents.noteRecentDocument(u"/d/5.mox"_qs);
    EXPECT_EQ(documents.recentDocuments().size(), 10);
    EXPECT_EQ(documents.recentDocuments().mid(0, 2), (QStringList{u"/d/5.mox"_qs, u"/d/11.mox"_qs}));
    documents.clearRecentDocuments();
    EXPECT_TRUE(documents.recentDocuments().isEmpty());
}

TEST_F(DocumentControllerTest, windowsCloseInTheMiddleOfReadsEvaluationsAndRenderings) {
    const QString table = QString(u"1 2\n"_qs).repeated(200'000);
    for (const bool byTab : {false, true}) {
        const QPointer<MoxDocumentWindow> window = &windowWith({table});
        const XCurveHandle curve = window->document().addNewCurve();
        curve->setX_data_expression(u"row/2"_qs);
        curve->setX_uses_expression(true);
        ASSERT_TRUE(support::waitUntil([&] { return curve->snapshot().rows() > 0; }));
        window->document().onReloadData();
        alerts.plan = {0, Discard};
        if (byTab)
            window->dataSourcesTabBar().tabs()[0]->onClose();
        else
            alerts.plan = {Discard};
        window->close();
        EXPECT_TRUE(isGone(window));
    }
}

} // namespace
