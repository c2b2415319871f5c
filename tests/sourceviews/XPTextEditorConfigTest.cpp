// The settings page of the text editor: when text is handed over, and what keys do.
#include "EmbeddedPlugins/TextEditor/XPTextEditorConfig.h"
#include "EmbeddedPlugins/Common/PreviewTableView.h"
#include "EmbeddedPlugins/TextEditor/LongTextEdit.h"
#include "EmbeddedPlugins/TextEditor/XPTextEditor.h"
#include "Platform/Core/NotificationCenter.h"
#include "Platform/Widgets/VelquinStyle.h"
#include "support/TestSupport.h"
#include "widgetkit/WidgetFixtures.h"

#include <QApplication>
#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QSignalSpy>
#include <QSplitter>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

namespace {

class TextEditorPage : public testing::Test {
  protected:
    TextEditorPage()
        : m_update(NotificationCenter::defaultCenter().observe(Notifications::dataSourceUpdated, &source,
                                                               [this](QObject*) { ++updates; })) {
        QObject::connect(&source, &Observable::keyChanged, &source, [this](const KeyChange& change) {
            for (const char* key : source.contentKeys())
                contentChanges += qstrcmp(key, change.key) == 0 ? 1 : 0;
        });
        page.setPlugin(&source);
        page.view()->resize(920, 468);
        page.view()->show();
        text().setFocus();
    }

    LongTextEdit& text() { return *page.textView(); }
    void settle() {
        ASSERT_TRUE(support::waitUntil([this] { return !source.isLoading() && !text().isTakingText(); }));
        MainThread::runUntil([] { return true; });
    }

    XPTextEditor source;
    XPTextEditorConfig page;
    int updates = 0;
    int contentChanges = 0;

  private:
    NotificationCenter::Registration m_update;
};

TEST_F(TextEditorPage, typedTextIsReadOnceAfterTheLastKey) {
    page.setTransferDelay(0);
    QTest::keyClicks(&text(), QStringLiteral("1 2 3"));
    EXPECT_EQ(source.textData(), std::nullopt);
    ASSERT_TRUE(support::waitUntil([this] { return updates > 0; }));
    settle();
    EXPECT_EQ(source.textData(), QStringLiteral("1 2 3"));
    EXPECT_EQ(updates, 1);
    EXPECT_EQ(contentChanges, 1);
    EXPECT_EQ(page.status(), QStringLiteral("Editor: 1 row"));
}

TEST_F(TextEditorPage, waitingTextIsHandedOverOnRequestAndOnlyOnce) {
    page.setTransferDelay(3'600'000);
    QTest::keyClicks(&text(), QStringLiteral("7"));
    settle();
    EXPECT_EQ(updates, 0);
    page.commitPendingEdits();
    EXPECT_EQ(source.textData(), QStringLiteral("7"));
    settle();
    EXPECT_EQ(updates, 1);
    page.commitPendingEdits();
    settle();
    EXPECT_EQ(updates, 1) << "nothing waits";
    EXPECT_EQ(contentChanges, 1);

    QTest::keyClicks(&text(), QStringLiteral("89"));
    text().moveCursor(QTextCursor::Left);
    page.handOverQuietly();
    EXPECT_EQ(source.textData(), QStringLiteral("789"));
    settle();
    EXPECT_EQ(text().textCursor().position(), 2) << "whoever types goes on typing";
    EXPECT_TRUE(text().document()->isUndoAvailable());

    source.setTextData(QStringLiteral("from elsewhere"));
    EXPECT_EQ(text().toPlainText(), QStringLiteral("from elsewhere"));
    contentChanges = 0;
    page.commitPendingEdits();
    EXPECT_EQ(contentChanges, 0) << "the source has it already";
}

TEST_F(TextEditorPage, settingsReadAgain) {
    source.setTextData(QStringLiteral("x y\n1 2\n3 4"));
    page.setTransferDelay(3'600'000);
    source.setDelimiterType(4);
    source.setExtractColumnNames(true);
    settle();
    EXPECT_EQ(updates, 1) << "two settings in one turn";
    EXPECT_EQ(source.columnNames(),
              QStringList({QStringLiteral("Row number"), QStringLiteral("x"), QStringLiteral("y")}));

    auto& title = *page.view()->findChild<QLineEdit*>(QStringLiteral("titleField"));
    const auto enter = [&](const char* typed) {
        title.selectAll();
        QTest::keyClick(&title, Qt::Key_Delete);
        QTest::keyClicks(&title, QLatin1String(typed));
        QTest::keyClick(&title, Qt::Key_Return);
    };
    contentChanges = 0;
    enter("Calibration");
    EXPECT_EQ(page.title(), QStringLiteral("Calibration"));
    EXPECT_EQ(contentChanges, 1);
    enter(" ");
    EXPECT_EQ(source.title(), QStringLiteral("Calibration")) << "a tab needs a title";
    EXPECT_TRUE(VelquinStyle::isFaulty(&title));
}

TEST_F(TextEditorPage, aLongTextComesInPiecesAsOneStep) {
    page.setTransferDelay(0);
    QString lines;
    for (int i = 0; lines.size() <= LongTextEdit::longText + 3 * LongTextEdit::piece; ++i)
        lines += QStringLiteral("%1 😀\n").arg(i);
    text().setPlainText(QStringLiteral("ab"));
    text().moveCursor(QTextCursor::Start);
    text().moveCursor(QTextCursor::Right);
    QGuiApplication::clipboard()->setText(lines);
    QSignalSpy pieces(&text(), &LongTextEdit::textTaken);
    text().paste();
    EXPECT_TRUE(text().isTakingText());
    EXPECT_TRUE(text().isReadOnly());
    settle();
    EXPECT_GT(pieces.size(), LongTextEdit::longText / LongTextEdit::piece) << "no timer takes it at once";
    EXPECT_FALSE(text().isReadOnly());
    const QString whole = QLatin1Char('a') + lines + QLatin1Char('b');
    EXPECT_TRUE(text().toPlainText() == whole);
    ASSERT_TRUE(support::waitUntil([&] { return source.textData() == whole; }));
    settle();
    EXPECT_EQ(updates, 1) << "read when all of it is in";
    text().undo();
    EXPECT_EQ(text().toPlainText(), QStringLiteral("ab"));

    const QString oneLine(LongTextEdit::longText + 5, QLatin1Char('1'));
    contentChanges = 0;
    source.setTextData(oneLine + QLatin1Char('\n'));
    EXPECT_TRUE(text().isTakingText());
    source.setTextData(QStringLiteral("another")); // while it comes in
    settle();
    EXPECT_FALSE(text().isReadOnly());
    EXPECT_EQ(text().toPlainText(), QStringLiteral("another"));
    source.setTextData(lines);
    page.commitPendingEdits();
    settle();
    EXPECT_TRUE(text().toPlainText() == lines);
    EXPECT_EQ(contentChanges, 3) << "showing is no edit";

    auto* files = new QMimeData;
    files->setUrls({QUrl::fromLocalFile(QStringLiteral("/tmp/a.csv"))});
    QGuiApplication::clipboard()->setMimeData(files);
    text().paste();
    EXPECT_TRUE(text().toPlainText() == lines) << "a file is no text";
    QGuiApplication::clipboard()->setText(lines);

    text().clear();
    text().paste();
    page.commitPendingEdits(); // as closing does, in the middle of it
    EXPECT_TRUE(source.textData() == lines);
    settle();
}

TEST_F(TextEditorPage, tabIsTypedAndF6Leaves) {
    QTest::keyClicks(&text(), QStringLiteral("1"));
    QTest::keyClick(&text(), Qt::Key_Tab);
    QTest::keyClicks(&text(), QStringLiteral("2"));
    EXPECT_EQ(text().toPlainText(), QStringLiteral("1\t2"));
    QTest::keyClick(&text(), Qt::Key_F6);
    EXPECT_EQ(page.view()->focusWidget(), page.dataTable());
    EXPECT_EQ(page.editorFont().family(), QStringLiteral("Courier New"));
    EXPECT_EQ(text().font().pixelSize(), 13);
}

TEST_F(TextEditorPage, narrowHalvesStack) {
    const auto& halves = *page.view()->findChild<QSplitter*>(QStringLiteral("halves"));
    const auto parts = [&](int width, int height) {
        page.view()->resize(width, height);
        QCoreApplication::sendPostedEvents();
        const QList<int> sizes = halves.sizes();
        return std::pair(halves.orientation(), qRound(100.0 * sizes[0] / (sizes[0] + sizes[1])));
    };
    EXPECT_EQ(parts(860, 700), std::pair(Qt::Horizontal, 50));
    EXPECT_EQ(parts(859, 700), std::pair(Qt::Vertical, 40));
    EXPECT_EQ(parts(920, 700), std::pair(Qt::Horizontal, 50));
}

} // namespace
