// The settings page of a text file: what its controls do to the source, and what it says about it.
#include "EmbeddedPlugins/TextFile/XPTextFileConfig.h"
#include "EmbeddedPlugins/Common/NoticeBar.h"
#include "EmbeddedPlugins/Common/PreviewTableView.h"
#include "EmbeddedPlugins/SourceViews.h"
#include "EmbeddedPlugins/TextFile/FileWatcher.h"
#include "EmbeddedPlugins/TextFile/PreviewTableModel.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "Platform/Core/NotificationCenter.h"
#include "Platform/Widgets/FilePanels.h"
#include "Platform/Widgets/VelquinStyle.h"
#include "support/TableSource.h"
#include "support/TestSupport.h"
#include "widgetkit/WidgetFixtures.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {

/// A panel that stands until the test answers it.
class StandingPanel : public FilePanels {
  public:
    StandingPanel() { setShared(this); }
    ~StandingPanel() override { setShared(nullptr); }

    void choose(QWidget*, const FilePanel& panel, Chosen chosen) override {
        ++asked;
        startFolder = panel.startFolder;
        answer = std::move(chosen);
    }

    int asked = 0;
    QString startFolder;
    Chosen answer;
};

class TextFilePage : public testing::Test {
  protected:
    TextFilePage()
        : m_update(NotificationCenter::defaultCenter().observe(Notifications::dataSourceUpdated, &source,
                                                               [this](QObject*) { ++updates; })) {
        QObject::connect(&source, &Observable::keyChanged, &source,
                         [this](const KeyChange& change) { keys.append(QLatin1String(change.key)); });
        page->setPlugin(&source);
        page->view()->resize(800, 420);
        page->view()->show();
    }

    template <class Widget>
    Widget& control(const char* name) {
        return *page->view()->findChild<Widget*>(QLatin1String(name));
    }
    NoticeBar& notice() { return *page->noticeBar(); }
    QAbstractButton& noticeButton() { return *notice().findChildren<QAbstractButton*>().front(); }
    /// Lets the source read and the page look at what came of it.
    void settle() {
        ASSERT_TRUE(support::waitUntil([this] { return !source.isLoading() && !page->isSurveying(); }));
    }
    void openFile(const QByteArray& bytes, int delimiterType = 1, bool header = true) {
        source.setFilename(folder.write(QStringLiteral("sea.csv"), bytes));
        source.setDelimiterType(delimiterType);
        source.setExtractColumnNames(header);
        settle();
        updates = 0;
        keys.clear();
    }
    void enter(QLineEdit& field, const char* text) {
        field.setFocus();
        field.selectAll();
        QTest::keyClick(&field, Qt::Key_Delete);
        QTest::keyClicks(&field, QLatin1String(text));
        QTest::keyClick(&field, Qt::Key_Return);
    }

    support::ScratchFolder folder;
    XPTextFile source;
    int updates = 0;
    QStringList keys;
    std::unique_ptr<XPTextFileConfig> page = std::make_unique<XPTextFileConfig>();

  private:
    NotificationCenter::Registration m_update;
};

TEST_F(TextFilePage, saysWhatIsThereAndWhatWasRead) {
    settle();
    EXPECT_EQ(page->title(), QStringLiteral("[No file]"));
    EXPECT_EQ(page->fault(), QString()) << "no file chosen is no fault";
    EXPECT_EQ(notice().text(), QString());
    EXPECT_FALSE(control<QCheckBox>("headerBox").isEnabled()) << "numbers anywhere has no names";

    openFile("t,x\n1,2\n,\n3,\n4,5\n");
    EXPECT_EQ(page->title(), QStringLiteral("sea.csv"));
    EXPECT_EQ(page->status(), QStringLiteral("sea.csv: 4 rows, 1 of them empty, 1 unreadable cell"));
    ASSERT_EQ(page->readouts().size(), 1);
    EXPECT_TRUE(page->readouts()[0].value.startsWith(QStringLiteral("Read in ")));
    EXPECT_EQ(control<QLabel>("countLabel").text(), QStringLiteral("4 rows × 2 columns, 17 bytes"));
    EXPECT_EQ(page->progress(), 100);
    EXPECT_TRUE(control<QCheckBox>("headerBox").isEnabled());

    source.setData(support::makeTable({{1}}));
    EXPECT_EQ(page->status(), QStringLiteral("sea.csv: 1 row")) << "nothing of the table before";
    openFile("");
    EXPECT_EQ(page->status(), QStringLiteral("sea.csv: no rows"));
}

TEST_F(TextFilePage, aChangeOfSettingsIsOneRead) {
    openFile("1;2\n3;4\n5;6\n", 1, false);
    auto& split = control<QComboBox>("delimiterBox");
    split.setFocus();
    QTest::keyClick(&split, Qt::Key_Down);
    settle();
    EXPECT_EQ(source.delimiterType(), 2);
    EXPECT_EQ(updates, 1);
    enter(control<QLineEdit>("skiplinesField"), "1");
    enter(control<QLineEdit>("everyNthLineField"), "2");
    settle();
    EXPECT_EQ(updates, 2) << "two settings in one turn";
    EXPECT_EQ(source.data()->debugDump(), "3.000,4.000,\n");

    source.setValueForKey("skiplines", 0); // as undoing does
    settle();
    EXPECT_EQ(updates, 3);
    EXPECT_EQ(control<QLineEdit>("skiplinesField").text(), QStringLiteral("0"));

    keys.clear();
    enter(control<QLineEdit>("skiplinesField"), "0");
    page->commitPendingEdits();
    EXPECT_EQ(keys, QStringList()) << "an equal value is no change";
}

TEST_F(TextFilePage, countsOfLinesAreNumbersOrNothing) {
    openFile("1\n2\n");
    auto& field = control<QLineEdit>("everyNthLineField");
    struct Row {
        const char* typed;
        int value;
        bool faulty;
    };
    for (const Row& row : {Row{"7", 7, false}, Row{"-1", 7, true}, Row{"x", 7, true},
                           Row{"99999999999", 7, true}, Row{"", 0, false}, Row{" 3 ", 3, false}}) {
        enter(field, row.typed);
        EXPECT_EQ(source.everyNthLine(), row.value) << row.typed;
        EXPECT_EQ(VelquinStyle::isFaulty(&field), row.faulty) << row.typed;
    }
    keys.clear();
    enter(field, "");
    EXPECT_EQ(keys.count(QStringLiteral("everyNthLine")), 1) << "an emptied field is one change";

    field.setFocus();
    QTest::keyClick(&field, Qt::Key_9);
    EXPECT_EQ(source.everyNthLine(), 0) << "not before it is entered";
    page->commitPendingEdits();
    EXPECT_NE(source.everyNthLine(), 0);
}

TEST_F(TextFilePage, aFileThatIsGoneIsSaidAndLocated) {
    openFile("1,2\n", 1, false);
    const QString there = source.filename();
    source.setFilename(folder.path(QStringLiteral("gone.csv")));
    settle();
    const QString text =
        QStringLiteral("“gone.csv” is no longer in %1. Its settings are kept.").arg(folder.path());
    EXPECT_EQ(notice().text(), text);
    EXPECT_EQ(page->fault(), text);
    EXPECT_EQ(page->status(), text);
    EXPECT_EQ(source.filename(), folder.path(QStringLiteral("gone.csv"))) << "nobody asked to change it";
    EXPECT_EQ(noticeButton().text(), QStringLiteral("Locate…"));

    StandingPanel panel;
    noticeButton().click();
    noticeButton().click();
    EXPECT_EQ(panel.asked, 1) << "one panel at a time";
    EXPECT_EQ(panel.startFolder, folder.path()) << "where the file was";
    panel.answer({});
    EXPECT_EQ(source.filename(), folder.path(QStringLiteral("gone.csv")));
    control<QPushButton>("browseButton").click();
    EXPECT_EQ(panel.asked, 2);
    panel.answer({there});
    settle();
    EXPECT_EQ(source.filename(), there);
    EXPECT_EQ(page->fault(), QString());
    EXPECT_EQ(notice().text(), QString());

    keys.clear();
    auto& box = *page->filenameCombobox();
    ASSERT_EQ(box.itemText(0), there);
    Q_EMIT box.activated(0);
    EXPECT_EQ(keys, QStringList()) << "the same file";
    Q_EMIT box.activated(1);
    EXPECT_TRUE(source.filename().endsWith(QStringLiteral("gone.csv")));
    settle();
    EXPECT_EQ(box.currentText(), source.filename());
    enter(*box.lineEdit(), "SEA.csv");
    EXPECT_EQ(source.filename(), QStringLiteral("SEA.csv"));
    enter(*box.lineEdit(), "sea.csv");
    EXPECT_EQ(source.filename(), QStringLiteral("sea.csv")) << "case counts in paths";
}

TEST_F(TextFilePage, aNoticeIsOneClickAndCanBeDismissed) {
    openFile("1,2\r\n3,4\r\n5,6\r\n", 1, false);
    source.setSkiplines(1);
    settle();
    EXPECT_EQ(notice().text(),
              QStringLiteral("Windows line ends: every second row is empty. Adjusting skips 2 "
                             "lines and takes one line in 2."));
    EXPECT_EQ(page->fault(), QString());
    keys.clear();
    noticeButton().click();
    EXPECT_EQ(keys.filter(QStringLiteral("ines")) + keys.filter(QStringLiteral("every")),
              (QStringList{QStringLiteral("skiplines"), QStringLiteral("everyNthLine")}))
        << "both within the click: one step to undo";
    settle();
    EXPECT_EQ(source.data()->debugDump(), "3.000,4.000,\n5.000,6.000,\n");
    EXPECT_EQ(notice().text(), QString());

    openFile("a;b\n1;2\n3;4\n5;6\n", 1, false);
    source.setSkiplines(0);
    source.setEveryNthLine(1);
    settle();
    EXPECT_EQ(noticeButton().text(), QStringLiteral("Split at Semicolon"));
    noticeButton().setFocus();
    QTest::keyClick(&noticeButton(), Qt::Key_Escape);
    EXPECT_TRUE(notice().text().startsWith(QStringLiteral("No numbers in “Column 1”.")))
        << "the next that holds";
    page->setPlugin(&source);
    settle();
    EXPECT_EQ(noticeButton().text(), QStringLiteral("Split at Semicolon")) << "forgotten with another source";
    noticeButton().click();
    settle();
    noticeButton().click();
    settle();
    EXPECT_EQ(source.columnNames().mid(1), (QStringList{QStringLiteral("a"), QStringLiteral("b")}));
    EXPECT_EQ(notice().text(), QString());
}

TEST_F(TextFilePage, aFileThatChangedIsOfferedOrReadByItself) {
    FileWatcher watcher;
    FileWatcher::setShared(&watcher);
    auto& box = control<QCheckBox>("liveBox");
    EXPECT_FALSE(box.isEnabled()) << "no file yet";
    openFile("a;b\n1;2\n3;4\n5;6\n", 1, false);
    EXPECT_TRUE(box.isEnabled());
    const auto append = [this](const QByteArray& bytes) {
        QFile file(source.filename());
        ASSERT_TRUE(file.open(QIODevice::Append) && file.write(bytes) == bytes.size());
    };
    const QString text = QStringLiteral("“sea.csv” changed on the disk.");
    const auto isSaid = [&] { return notice().text() == text; };
    append("7;8\n");
    ASSERT_TRUE(support::waitUntil(isSaid)) << "before what concerns its lines";
    EXPECT_EQ(noticeButton().text(), QStringLiteral("Reload"));
    EXPECT_EQ(page->fault(), QString());
    QTest::keyClick(&noticeButton(), Qt::Key_Escape);
    EXPECT_EQ(noticeButton().text(), QStringLiteral("Split at Semicolon"));
    append("9;0\n");
    ASSERT_TRUE(support::waitUntil(isSaid)) << "another change";
    noticeButton().click();
    settle();
    EXPECT_EQ(source.data()->rowsNumber(), 6U);
    EXPECT_FALSE(isSaid());

    PreviewTableView& table = *page->dataTable();
    table.setCurrentCell({1, 1}, false);
    table.setCurrentCell({1, 4}, true);
    keys.clear();
    box.click();
    EXPECT_TRUE(source.isLive());
    QString texts;
    QObject::connect(page.get(), &Observable::keyChanged, page.get(), [&](const KeyChange& change) {
        if (change.key == std::string_view("status"))
            texts += change.newValue.toString() + QLatin1Char('|');
    });
    append("1;1\n");
    ASSERT_TRUE(support::waitUntil([this] { return source.data()->rowsNumber() == 7; }));
    settle();
    EXPECT_EQ(table.selection(), QRect(QPoint(1, 1), QPoint(1, 4)));
    EXPECT_FALSE(texts.contains(QStringLiteral("Reading"))) << "no flicker: " << texts.toStdString();
    for (const char* saved : source.kvoKeys())
        EXPECT_FALSE(keys.contains(QLatin1String(saved))) << saved << ": nothing to undo";
    source.setLive(false);
    EXPECT_FALSE(box.isChecked());
    source.read();
    EXPECT_EQ(page->status(), QStringLiteral("Reading sea.csv…")) << "what the user asked for is said";
    settle();

    const QString aside = folder.path(QStringLiteral("aside"));
    ASSERT_TRUE(QFile::rename(source.filename(), aside));
    ASSERT_TRUE(support::waitUntil([this] { return !page->fault().isEmpty(); }));
    ASSERT_TRUE(QFile::rename(aside, source.filename()));
    ASSERT_TRUE(support::waitUntil([this] { return page->fault().isEmpty(); })) << "back, and said so";
    EXPECT_TRUE(page->status().startsWith(QStringLiteral("sea.csv: 7 rows")));

    // A smaller file cuts the selection; a table of other columns does not keep it.
    table.setCurrentCell({1, 1}, false);
    table.setCurrentCell({1, 4}, true);
    source.setLive(true);
    folder.write(QStringLiteral("sea.csv"), "1;2\n3;4\n");
    ASSERT_TRUE(support::waitUntil([this] { return source.data()->rowsNumber() == 2; }));
    EXPECT_EQ(table.selection(), QRect(QPoint(1, 1), QPoint(1, 1)));
    source.setDelimiterType(2);
    settle();
    EXPECT_EQ(table.selection(), QRect());
}

TEST_F(TextFilePage, everyControlHasANameAndATooltip) {
    openFile("a,b\r\n1,2\r\n");
    for (const QWidget* widget : page->view()->findChildren<QWidget*>()) {
        const bool reached = widget->focusPolicy() != Qt::NoFocus && widget->focusProxy() == nullptr &&
                             widget->isVisibleTo(page->view()) &&
                             qobject_cast<const QComboBox*>(widget->parentWidget()) == nullptr;
        const bool told = !widget->toolTip().isEmpty() && !widget->accessibleName().isEmpty();
        EXPECT_TRUE(told || !reached)
            << widget->metaObject()->className() << " " << widget->objectName().toStdString();
    }
}

TEST_F(TextFilePage, pagesAndSourcesGoInAnyOrder) {
    openFile(QByteArray("1,2\n").repeated(200'000));
    source.read();
    ASSERT_TRUE(support::waitUntil([this] { return source.progress() > 0 || !source.isLoading(); }));
    page.reset(); // in the middle of a read
    ASSERT_TRUE(support::waitUntil([this] { return !source.isLoading(); }));

    installSourceViews();
    auto shortLived = std::make_unique<XPTextFile>();
    shortLived->setFilename(source.filename());
    const std::unique_ptr<XViewController> late = shortLived->configViewController();
    shortLived->read();
    shortLived.reset();
    finishDeletions();
    late->view()->findChild<QAbstractButton*>(QStringLiteral("reloadButton"))->click();
    delete late->view();
    EXPECT_EQ(late->view(), nullptr) << "gone with the widget that showed it";
    XPTextFile::setConfigViewMaker({});
}

} // namespace
