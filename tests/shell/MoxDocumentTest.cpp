// Documents without a window: what is refused, what is undone, and the edited mark.
#include "MoxDocument.h"

#include "Classes/Axes/XAxisManager.h"
#include "Classes/PluginsManager/XPluginsManager.h"
#include "EmbeddedPlugins/TextEditor/XPTextEditor.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "EmbeddedPlugins/TextFile/XPTextFileFactory.h"
#include "Platform/Core/PropertyList.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

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

TEST(MoxDocument, refusesWhatIsNoDocumentWithAReasonAndWithoutACrash) {
    XPluginsManager::setFactories({std::make_shared<XPTextFileFactory>()});
    const QVariantMap unknownKind{{u"PluginIdentifier"_qs, u"nosuchkind"_qs}};
    const std::pair<QByteArray, const char*> rows[] = {
        {QByteArray("bplist00\xff\xfe\x00garbage", 19), "not a document"},
        {PropertyList::writeXml(QVariantMap{{u"Datasources"_qs, QVariantList{}}}), "no Curves key"},
        {PropertyList::writeXml(QVariantMap{{u"Datasources"_qs, QVariantList{unknownKind}},
                                            {u"Curves"_qs, QVariantList{}},
                                            {u"DatasourcesMap"_qs, QVariantList{}}}),
         "Unknown plugin type \"nosuchkind\""}};
    const support::ScratchFolder folder;
    for (const auto& [bytes, expected] : rows) {
        const support::AssertionRecorder assertions;
        const support::LogRecorder log;
        MoxDocument document;
        const auto reason = document.readFromURL(folder.write(u"bad.mox"_qs, bytes));
        ASSERT_TRUE(reason.has_value()) << expected;
        EXPECT_TRUE(reason->contains(QLatin1String(expected))) << reason->toStdString();
        EXPECT_FALSE(assertions.texts().empty()) << expected;
        EXPECT_TRUE(document.dataSourcesManager().dataSources().empty()) << expected;
    }
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
    EXPECT_EQ(document().undoManager().undoActionName(), u"Setting ticksSize"_qs);
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

TEST_F(MoxDocumentTest, settingsOfASourceAreUndoneAndItsRemovalIsNamed) {
    const auto source = std::dynamic_pointer_cast<XPTextFile>(document().addDatasourceWithSettings(
        QLatin1String(XPTextFile::identifier), {{u"Filename"_qs, u""_qs}}));
    nextTurn();
    source->setSkiplines(3);
    document().undoManager().undo();
    EXPECT_EQ(source->skiplines(), 0);
    document().removeDataSourceAtIndex(0);
    EXPECT_EQ(document().undoManager().undoActionName(), u"Remove Datasource"_qs);
}

TEST_F(MoxDocumentTest, closingEndsReads) {
    addText(QString(u"1 2 3\n"_qs).repeated(100'000));
    EXPECT_TRUE(document().isReading());
    document().close();
    EXPECT_TRUE(sources().empty());
}

} // namespace
