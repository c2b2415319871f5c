// The plot page while data files change: what it offers, and what a file that is read by itself leaves alone.
#include "Classes/Axes/XAxis.h"
#include "Classes/GraphViewController/ChangedFilesBar.h"
#include "Classes/WindowControllers/DataSourceTab.h"
#include "EmbeddedPlugins/TextFile/FileWatcher.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "shell/PageFixture.h"
#include "widgetkit/WidgetFixtures.h"

#include <QAbstractButton>
#include <QFile>

namespace {

using namespace Qt::StringLiterals;

class ChangedFiles : public PageFixture {
  protected:
    ChangedFiles() { FileWatcher::setShared(&watcher); }

    XPTextFile& addFile(const QString& name, const QByteArray& bytes) {
        const XDataSource source = document.addDatasourceWithSettings(
            QLatin1String(XPTextFile::identifier), {{u"Filename"_s, folder.write(name, bytes)}});
        EXPECT_TRUE(support::waitUntil([this] { return !document.isReading(); }));
        return dynamic_cast<XPTextFile&>(*source);
    }
    void append(const QString& name, const QByteArray& bytes) {
        QFile file(folder.path(name));
        ASSERT_TRUE(file.open(QIODevice::Append) && file.write(bytes) == bytes.size());
    }
    ChangedFilesBar& bar() { return part<ChangedFilesBar>("changedFilesBar"); }
    bool says(const QString& text) {
        return support::waitUntil([&] { return bar().text() == text; });
    }
    std::pair<double, double> rangeX() { return {scene().axisX()->minValue(), scene().axisX()->maxValue()}; }

    FileWatcher watcher;
};

TEST_F(ChangedFiles, areOfferedBesideThePlotUntilTheyAreRead) {
    XPTextFile& sea = addFile(u"sea.csv"_s, "1 2\n");
    XPTextFile& air = addFile(u"air.csv"_s, "1 2\n");
    const auto buttons = bar().findChildren<QAbstractButton*>();
    ASSERT_EQ(buttons.size(), 2);
    EXPECT_EQ(bar().height(), 0);
    const QRect plot = plotView().geometry();

    append(u"sea.csv"_s, "3 4\n");
    ASSERT_TRUE(says(u"“sea.csv” changed on the disk."_s));
    append(u"air.csv"_s, "3 4\n");
    ASSERT_TRUE(says(u"2 data files changed on the disk."_s));
    ASSERT_TRUE(support::waitUntil([this] { return bar().height() > 60; }));
    EXPECT_EQ(plotView().geometry(), plot) << "the plot stays as it is";
    EXPECT_FALSE(part("plotViewContainer").isAncestorOf(&bar())) << "what snapshots take";
    EXPECT_EQ(bar().accessibleName(), bar().text());

    QTest::keyClick(buttons[0], Qt::Key_Escape);
    EXPECT_EQ(bar().text(), QString());
    append(u"air.csv"_s, "5 6\n");
    ASSERT_TRUE(says(u"“air.csv” changed on the disk."_s)) << "the next change, of that file alone";
    air.read();
    EXPECT_TRUE(says({})) << "read by another road";

    append(u"sea.csv"_s, "5 6\n");
    append(u"air.csv"_s, "7 8\n");
    ASSERT_TRUE(says(u"2 data files changed on the disk."_s));
    buttons[0]->click();
    EXPECT_TRUE(says({}));
    EXPECT_TRUE(support::waitUntil([&] { return !sea.isLoading() && !air.isLoading(); }));
    EXPECT_EQ(sea.data()->rowsNumber(), 3U);
    EXPECT_EQ(air.data()->rowsNumber(), 4U);

    append(u"sea.csv"_s, "7 8\n");
    ASSERT_TRUE(says(u"“sea.csv” changed on the disk."_s));
    document.removeDataSourceAtIndex(0);
    EXPECT_EQ(bar().text(), QString());
}

TEST_F(ChangedFiles, readByThemselvesLeaveTheViewAndTheDocumentAlone) {
    XPTextFile& sea = addFile(u"sea.csv"_s, "1 10\n2 20\n");
    const XCurveHandle curve = addCurve();
    curve->setX_data_index(1);
    curve->setY_data_index(2);
    const auto grow = [&](const QByteArray& bytes) {
        const std::uint64_t rows = sea.data()->rowsNumber();
        append(u"sea.csv"_s, bytes);
        ASSERT_TRUE(support::waitUntil([&] { return sea.data()->rowsNumber() > rows && !sea.isLoading(); }));
    };
    controller.setMouseMode(1);
    forgetChanges();
    sea.setLive(true);
    ASSERT_TRUE(controller.isFittedToData());
    grow("3 30\n");
    EXPECT_GT(rangeX().second, 3) << "fitted: the new row is in sight";
    EXPECT_LT(rangeX().second, 4);
    EXPECT_FALSE(document.isDocumentEdited());
    EXPECT_FALSE(document.undoManager().canUndo());

    plotView().panBy({50, 0});
    const auto panned = rangeX();
    grow("4 40\n");
    EXPECT_EQ(rangeX(), panned);
    EXPECT_FALSE(controller.isFittedToData());
    EXPECT_EQ(controller.mouseMode(), 1);

    document.setAxisMaxX(2.5);
    controller.fitToData();
    grow("5 50\n");
    EXPECT_EQ(rangeX().second, 2.5) << "a limit of the document's stays";
    EXPECT_GT(scene().axisY()->maxValue(), 50);
    EXPECT_EQ(bar().text(), QString());
}

TEST_F(ChangedFiles, readByThemselvesAreNoNewsButKeepWhatWasSaidTrue) {
    const auto source = std::make_shared<XPTextFile>();
    source->setFilename(folder.write(u"sea.csv"_s, "1 2\n"));
    XPTextFile::setConfigViewMaker([](XPTextFile&) { return std::make_unique<FakePage>(); });
    DataSourceTab tab(source);
    XPTextFile::setConfigViewMaker({});
    QStringList told;
    QObject::connect(&tab, &DataSourceTab::newsCame, [&](const QString& news) { told += news; });
    QObject::connect(&tab, &DataSourceTab::newsOutdated,
                     [&](const QString& before, const QString& news) { told += before + u" > "_s + news; });
    source->read();
    ASSERT_TRUE(support::waitUntil([&] { return !source->isLoading(); }));
    tab.viewController()->setStatus(u"1 row"_s);
    source->setLive(true);
    append(u"sea.csv"_s, "3 4\n");
    ASSERT_TRUE(support::waitUntil([&] { return source->data()->rowsNumber() == 2; }));
    tab.viewController()->setStatus(u"2 rows"_s);
    EXPECT_EQ(told, (QStringList{u"1 row"_s, u"1 row > 2 rows"_s}));
}

} // namespace
