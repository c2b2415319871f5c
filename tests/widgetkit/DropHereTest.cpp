// The drop page: what is dropped on it, and the other ways that end at the same door.
#include "Classes/DropHere/DroppedData.h"
#include "Classes/DropHere/RecentFileButton.h"
#include "Classes/DropHere/XDropHereDelegate.h"
#include "Classes/DropHere/XDropHereView.h"
#include "Classes/DropHere/XDropHereViewController.h"
#include "support/TestSupport.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

namespace {

class DropRecorder : public XDropHereDelegate {
  public:
    void fileDroppedOnDropzone(const QString& path, XDropHereView&) override {
        got += QStringLiteral("file %1;").arg(path);
    }
    void textDroppedOnDropzone(const QString& text, XDropHereView&) override {
        got += QStringLiteral("text %1;").arg(text);
    }

    QString got;
};

struct DropRow {
    const char* name;
    std::vector<const char*> urls;
    const char* text;
    Qt::DropActions actions;
    const char* got;
};

class DropPage : public testing::Test {
  protected:
    static void fill(QMimeData& data, const DropRow& row) {
        QList<QUrl> urls;
        for (const char* url : row.urls)
            urls.append(QUrl(QString::fromUtf8(url)));
        if (!urls.isEmpty())
            data.setUrls(urls);
        if (row.text != nullptr)
            data.setText(QString::fromUtf8(row.text));
    }
    bool enter(const QMimeData& data, Qt::DropActions actions) {
        QDragEnterEvent event(QPoint(9, 9), actions, &data, Qt::LeftButton, Qt::NoModifier);
        event.ignore();
        QCoreApplication::sendEvent(page.dropzone(), &event);
        return event.isAccepted() && event.dropAction() == Qt::CopyAction;
    }
    void drop(const QMimeData& data, Qt::DropActions actions) {
        QDropEvent event(QPointF(9, 9), actions, &data, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(page.dropzone(), &event);
    }

    DropRecorder delegate;
    XDropHereViewController page{&delegate};
};

TEST_F(DropPage, takesFilesAndTexts) {
    const DropRow rows[] = {
        {"a file, by its path",
         {"file:///data/two%20words%20%C3%BC.csv"},
         nullptr,
         Qt::CopyAction,
         "file /data/two words ü.csv;"},
        {"the first of several", {"file:///a.csv", "file:///b.csv"}, nullptr, Qt::CopyAction, "file /a.csv;"},
        {"a URL counts before a text", {"file:///a.csv"}, "1 2", Qt::CopyAction, "file /a.csv;"},
        {"a text", {}, "1 2\n3 4", Qt::CopyAction | Qt::MoveAction, "text 1 2\n3 4;"},
        {"no local file is text",
         {"https://example.org/a.csv"},
         nullptr,
         Qt::CopyAction,
         "text https://example.org/a.csv;"},
        {"neither", {}, nullptr, Qt::CopyAction, ""},
        {"may not be copied", {"file:///a.csv"}, nullptr, Qt::MoveAction, ""},
    };
    for (const DropRow& row : rows) {
        SCOPED_TRACE(row.name);
        QMimeData data;
        fill(data, row);
        delegate.got.clear();
        const bool taken = qstrlen(row.got) > 0;
        EXPECT_EQ(enter(data, row.actions), taken);
        EXPECT_EQ(page.dropzone()->isDragging(), taken);
        drop(data, row.actions);
        EXPECT_EQ(delegate.got, QString::fromUtf8(row.got));
        EXPECT_FALSE(page.dropzone()->isDragging());
    }

    QMimeData data;
    data.setText(QStringLiteral("1"));
    enter(data, Qt::CopyAction);
    QDragLeaveEvent leave;
    QCoreApplication::sendEvent(page.dropzone(), &leave);
    EXPECT_FALSE(page.dropzone()->isDragging());
}

TEST_F(DropPage, aDropThatNobodyTakesIsAnError) {
    const support::AssertionRecorder recorder;
    page.setDocument(nullptr);
    for (const DropRow& row : {DropRow{"", {"file:///a"}, nullptr, Qt::CopyAction, ""},
                               DropRow{"", {}, "1", Qt::CopyAction, ""}}) {
        QMimeData data;
        fill(data, row);
        enter(data, row.actions);
        drop(data, row.actions);
    }
    EXPECT_EQ(recorder.texts(),
              (std::vector<std::string>{"Delegate doesn't respond to fileDropped:onDropzone:",
                                        "Delegate doesn't respond to textDropped:onDropzone:"}));
    EXPECT_EQ(recorder.failures().front().sourcePath, "Classes/DropHere/XDropHereView");
}

TEST_F(DropPage, listsRecentFilesAndOpensThem) {
    const support::ScratchFolder folder;
    const QString there = folder.write(QStringLiteral("a b.csv"), "1");
    const QString gone = folder.path(QStringLiteral("gone.csv"));
    page.setRecentFiles({gone});
    page.setRecentFiles({there, gone, gone, gone, there, there});
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const auto rows = page.view()->findChildren<RecentFileButton*>();
    ASSERT_EQ(rows.size(), 5) << "the first five, and no former ones";
    EXPECT_EQ(rows[1]->accessibleDescription(), QStringLiteral("missing"));
    QTest::mouseClick(rows[1], Qt::LeftButton);
    EXPECT_EQ(delegate.got, QString());
    QTest::mouseClick(rows[0], Qt::LeftButton);
    EXPECT_EQ(delegate.got, QStringLiteral("file %1;").arg(there));
}

} // namespace
