// Documents without a window: opening and saving, structural edits with undo, and the edited mark.
#include "MoxDocument.h"

#include "Classes/Axes/XAxisManager.h"
#include "Classes/PluginsManager/XPluginsManager.h"
#include "EmbeddedPlugins/TextEditor/XPTextEditor.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "EmbeddedPlugins/TextFile/XPTextFileFactory.h"
#include "Platform/Core/MainThread.h"
#include "Platform/Core/PropertyList.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

class MoxDocumentTest : public testing::Test {
  protected:
    static void SetUpTestSuite() { XPluginsManager::setFactories({std::make_shared<XPTextFileFactory>()}); }
    void SetUp() override { m_document->finishOpening(); }

    MoxDocument& document() { return *m_document; }
    XDataSource addText(const QString& text) {
        return document().addDatasourceWithSettings(QLatin1String(XPTextEditor::identifier),
                                                    {{u"Text"_qs, text}});
    }
    /// Ends the event-loop turn, so that the next change is an undo step of its own.
    void nextTurn() { document().undoManager().closeTurnGroup(); }
    std::vector<XDataSource> sources() {
        const auto& list = document().dataSourcesManager().dataSources();
        return {list.begin(), list.end()};
    }

  private:
    std::unique_ptr<MoxDocument> m_document = std::make_unique<MoxDocument>();
};

TEST_F(MoxDocumentTest, aNewDocumentIsEmptyAndClean) {
    EXPECT_EQ(document().axisX_type()->typeId(), u"numeric"_qs);
    EXPECT_TRUE(document().showOriginX() && document().showHorizontalLines());
    EXPECT_FALSE(document().showLegend());
    EXPECT_FALSE(document().axisMinX().has_value());
    EXPECT_EQ(document().plotAreaTitle(), QString(u""_qs));
    EXPECT_FALSE(document().isDocumentEdited());
}

TEST_F(MoxDocumentTest, keptTheMapLeavesOutCurvesWithoutASource) {
    addText(u"1 2"_qs);
    addText(u"3 4"_qs);
    for (int i = 0; i < 3; ++i)
        document().addNewCurve();
    document().curves()[1]->setDataSource(nullptr);
    document().curves()[2]->setDataSource(sources()[1]);
    MoxDocument again;
    again.loadFromPlist(document().plist());
    const auto& loadedSources = again.dataSourcesManager().dataSources();
    EXPECT_EQ(again.curves()[1]->dataSource(), loadedSources[1])
        << "kept: the second curve takes the third's entry";
    EXPECT_EQ(again.curves()[2]->dataSource(), nullptr);
}

TEST_F(MoxDocumentTest, savingAndOpeningGivesTheSameFile) {
    const support::ScratchFolder folder;
    addText(u"1 2\n3 4\n"_qs);
    document().addNewCurve()->setColor({0.1, 1.0 / 3, 0.7, 1});
    document().setAxisMinX(0.1);
    document().setAxisX_type(XAxisManager::sharedManager().axisInfoWithId(u"zen"_qs));
    document().setLegendMargins(QSizeF(3.5, 4));
    EXPECT_TRUE(document().isDocumentEdited());
    ASSERT_EQ(document().writeToURL(folder.path(u"a.mox"_qs)), std::nullopt);
    EXPECT_FALSE(document().isDocumentEdited());

    MoxDocument again;
    ASSERT_EQ(again.readFromURL(folder.path(u"a.mox"_qs)), std::nullopt);
    again.finishOpening();
    EXPECT_FALSE(again.isDocumentEdited());
    EXPECT_EQ(again.axisMinX(), 0.1);
    EXPECT_EQ(again.axisMaxX(), std::nullopt);
    EXPECT_EQ(again.axisX_type()->typeId(), u"zen"_qs);
    ASSERT_EQ(again.writeToURL(folder.path(u"b.mox"_qs)), std::nullopt);
    EXPECT_EQ(support::ScratchFolder::read(folder.path(u"a.mox"_qs)),
              support::ScratchFolder::read(folder.path(u"b.mox"_qs)));
}

struct RefusedFile {
    const char* name;
    QByteArray bytes;
    const char* reasonPart;
};

class MoxDocumentRefuses : public testing::TestWithParam<RefusedFile> {};

QByteArray plistBytes(const QVariant& value) {
    return PropertyList::writeXml(value);
}

TEST_P(MoxDocumentRefuses, withAReasonAndWithoutACrash) {
    XPluginsManager::setFactories({std::make_shared<XPTextFileFactory>()});
    const support::ScratchFolder folder;
    const support::AssertionRecorder assertions;
    const support::LogRecorder log;
    MoxDocument document;
    const auto reason = document.readFromURL(folder.write(u"bad.mox"_qs, GetParam().bytes));
    ASSERT_TRUE(reason.has_value()) << GetParam().name;
    EXPECT_TRUE(reason->contains(QLatin1String(GetParam().reasonPart))) << reason->toStdString();
    EXPECT_FALSE(assertions.texts().empty());
    EXPECT_TRUE(document.dataSourcesManager().dataSources().empty());
}

INSTANTIATE_TEST_SUITE_P(
    Rows, MoxDocumentRefuses,
    testing::Values(
        RefusedFile{"empty", "", "not a document"},
        RefusedFile{"truncated", plistBytes(QVariantMap{{u"Curves"_qs, QVariantList{}}}).left(200),
                    "not a document"},
        RefusedFile{"binary garbage", QByteArray("bplist00\xff\xfe\x00garbage", 19), "not a document"},
        RefusedFile{"not a dictionary", plistBytes(QVariantList{1, 2}), "not a dictionary"},
        RefusedFile{"nested 200,000 deep",
                    "<?xml version=\"1.0\"?><plist version=\"1.0\">" +
                        QByteArray("<array>").repeated(200'000),
                    "not a document"},
        RefusedFile{"no curves", plistBytes(QVariantMap{{u"Datasources"_qs, QVariantList{}}}),
                    "no Curves key"},
        RefusedFile{"sources no array",
                    plistBytes(QVariantMap{{u"Datasources"_qs, 1},
                                           {u"Curves"_qs, QVariantList{}},
                                           {u"DatasourcesMap"_qs, QVariantList{}}}),
                    "dataSources plist is not NSArray!"},
        RefusedFile{
            "unknown plugin",
            plistBytes(QVariantMap{
                {u"Datasources"_qs, QVariantList{QVariantMap{{u"PluginIdentifier"_qs, u"nosuchkind"_qs}}}},
                {u"Curves"_qs, QVariantList{}},
                {u"DatasourcesMap"_qs, QVariantList{}}}),
            "Unknown plugin type \"nosuchkind\""},
        RefusedFile{"curve no dictionary",
                    plistBytes(QVariantMap{{u"Datasources"_qs, QVariantList{}},
                                           {u"Curves"_qs, QVariantList{u"x"_qs}},
                                           {u"DatasourcesMap"_qs, QVariantList{}}}),
                    "Wrong XCurve plist"}));

TEST_F(MoxDocumentTest, structuralEditsAreUndoneAndRedone) {
    const XDataSource source = addText(u"1 2"_qs);
    nextTurn();
    const XCurveHandle curve = document().addNewCurve();
    nextTurn();
    curve->setLineWidth(4);
    EXPECT_EQ(document().undoManager().undoActionName(), u"Setting lineWidth"_qs);
    nextTurn();
    document().removeDataSourceAtIndex(0);
    EXPECT_EQ(document().undoManager().undoActionName(), u"Remove Datasource"_qs);
    EXPECT_EQ(curve->dataSource(), nullptr);
    document().undoManager().undo();
    EXPECT_EQ(curve->dataSource(), source);
    EXPECT_EQ(sources(), std::vector<XDataSource>{source});
    document().undoManager().undo();
    EXPECT_EQ(curve->lineWidth(), 1);
    document().undoManager().undo();
    EXPECT_TRUE(document().curves().isEmpty());
    document().undoManager().redo();
    document().undoManager().redo();
    EXPECT_EQ(curve->lineWidth(), 4);
    document().undoManager().redo();
    EXPECT_TRUE(sources().empty());
    EXPECT_EQ(curve->dataSource(), nullptr);
}

TEST_F(MoxDocumentTest, undoRestoresAbsenceAndSourceSettings) {
    const auto source = std::dynamic_pointer_cast<XPTextFile>(document().addDatasourceWithSettings(
        QLatin1String(XPTextFile::identifier), {{u"Filename"_qs, u""_qs}}));
    const XCurveHandle curve = document().addNewCurve();
    nextTurn();
    curve->setX_data_expression(u"row"_qs);
    nextTurn();
    source->setSkiplines(3);
    document().undoManager().undo();
    EXPECT_EQ(source->skiplines(), 0);
    document().undoManager().undo();
    EXPECT_EQ(curve->x_data_expression(), std::nullopt);
}

TEST_F(MoxDocumentTest, whatMarksTheDocumentEdited) {
    const support::ScratchFolder folder;
    const auto save = [&] { ASSERT_EQ(document().writeToURL(folder.path(u"d.mox"_qs)), std::nullopt); };
    document().setLegendMargins(QSizeF(1, 2));
    EXPECT_FALSE(document().isDocumentEdited())
        << "kept: the legend's margins alone do not mark the document";
    document().setLegendAlignment(9);
    EXPECT_TRUE(document().isDocumentEdited());
    EXPECT_FALSE(document().undoManager().canUndo()) << "the document's own keys make no step";
    save();
    const XCurveHandle curve = document().addNewCurve();
    save();
    nextTurn();
    const bool couldUndo = document().undoManager().canUndo();
    curve->setPointsize_data_expression(u"c1"_qs);
    curve->setPointsize_data_index(2);
    EXPECT_FALSE(document().isDocumentEdited()) << "kept: the point-size keys make no undo step";
    curve->setTicksSize(2);
    EXPECT_TRUE(couldUndo && document().isDocumentEdited());
    document().undoManager().undo();
    EXPECT_FALSE(document().isDocumentEdited()) << "back at what was saved";

    const XDataSource source = addText(u"1"_qs);
    nextTurn();
    const std::pair<const char*, QVariant> contents[] = {
        {"textData", QVariant::fromValue(std::optional(u"2"_qs))}, {"title", u"Sums"_qs}};
    for (const auto& [key, value] : contents) {
        save();
        source->setValueForKey(key, value);
        EXPECT_TRUE(document().isDocumentEdited()) << key;
        EXPECT_EQ(document().undoManager().undoActionName(), u"Add Datasource"_qs) << key << " makes no step";
    }
}

TEST_F(MoxDocumentTest, onlyTenLevelsAreKept) {
    const XCurveHandle curve = document().addNewCurve();
    for (int width = 2; width <= 20; ++width) {
        nextTurn();
        curve->setLineWidth(width);
    }
    int undone = 0;
    for (; document().undoManager().canUndo(); ++undone)
        document().undoManager().undo();
    EXPECT_EQ(undone, 10);
    EXPECT_EQ(curve->lineWidth(), 10);
}

TEST_F(MoxDocumentTest, pasteCountsOnlyWithoutASource) {
    document().pasteText(u"1 2"_qs);
    document().pasteText(u"3 4"_qs);
    EXPECT_EQ(sources().size(), 1U);
}

TEST_F(MoxDocumentTest, closingEndsReads) {
    addText(QString(u"1 2 3\n"_qs).repeated(100'000));
    EXPECT_TRUE(document().isReading());
    document().close();
    EXPECT_TRUE(sources().empty());
}

} // namespace
