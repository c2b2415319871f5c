// The document file's values: what is refused, what falls back, what a round trip keeps.
#include "Classes/PlotModel/DocumentFile.h"

#include "Core/Assertions.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

QVariantMap root(const QVariant& map, int curves, int sources) {
    QVariantList curveEntries;
    QVariantList sourceEntries;
    for (int i = 0; i < curves; ++i)
        curveEntries.append(QVariantMap{});
    for (int i = 0; i < sources; ++i)
        sourceEntries.append(QVariantMap{});
    return {{u"Datasources"_qs, sourceEntries}, {u"Curves"_qs, curveEntries}, {u"DatasourcesMap"_qs, map}};
}

QVariantMap without(const QString& key) {
    QVariantMap plist = root(QVariantList{}, 0, 0);
    plist.remove(key);
    return plist;
}

struct RefusedRow {
    const char* reason;
    QVariant root;
};

class DocumentFileRefuses : public testing::TestWithParam<RefusedRow> {};

TEST_P(DocumentFileRefuses, withTheReason) {
    const support::AssertionRecorder assertions(AssertionPolicy::Throw);
    EXPECT_THROW(DocumentFile::fromPlist(GetParam().root), AssertionFailure);
    EXPECT_EQ(assertions.texts(), std::vector<std::string>{GetParam().reason});
}

INSTANTIATE_TEST_SUITE_P(
    Rows, DocumentFileRefuses,
    testing::Values(
        RefusedRow{"its root is not a dictionary", QVariantList{}},
        RefusedRow{"Bad documentPlist structure: no Datasources key", QVariantMap{}},
        RefusedRow{"Bad documentPlist structure: no Curves key", without(u"Curves"_qs)},
        RefusedRow{"Bad documentPlist structure: no DatasourcesMap key", without(u"DatasourcesMap"_qs)},
        RefusedRow{"DatasourcesMap is no array", root(u"0"_qs, 1, 1)},
        RefusedRow{"DatasourcesMap has 2 entries for 1 curves", root(QVariantList{0, 0}, 1, 1)},
        RefusedRow{"DatasourcesMap names data source 1 of 1", root(QVariantList{1}, 1, 1)},
        RefusedRow{"DatasourcesMap names data source -1 of 1", root(QVariantList{-1}, 1, 1)},
        RefusedRow{"DatasourcesMap names data source 2147483647 of 1", root(QVariantList{1e300}, 1, 1)},
        RefusedRow{"DatasourcesMap holds an entry that is no number", root(QVariantList{u"x"_qs}, 1, 1)}));

TEST(DocumentFile, optionsSurviveARoundTripAndAbsentOnesStayAbsent) {
    DocumentValues values;
    values.datasources = QVariantList{};
    values.plotAreaOptions.title = u"Tide"_qs;
    values.plotAreaOptions.axisMinX = -0.0;
    values.plotAreaOptions.axisMaxY = std::numeric_limits<double>::infinity();
    values.plotAreaOptions.showLegend = false;
    values.plotAreaOptions.legendMargins = QSizeF(10, 2.5);
    const DocumentValues again = DocumentFile::fromPlist(DocumentFile::toPlist(values));
    EXPECT_EQ(again.plotAreaOptions, values.plotAreaOptions);
    EXPECT_FALSE(again.plotAreaOptions.axisTitleX.has_value());
    EXPECT_FALSE(again.plotAreaOptions.showOriginX.has_value());
}

TEST(DocumentFile, malformedOptionsReadAsTheirAccessorsDo) {
    QVariantMap plist = root(QVariantList{}, 0, 0);
    plist.insert(u"PlotAreaOptions"_qs, QVariantMap{{u"title"_qs, 5},
                                                    {u"axisMinX"_qs, u"abc"_qs},
                                                    {u"showOriginX"_qs, 1},
                                                    {u"legendAlignment"_qs, 1e99},
                                                    {u"legendMargins"_qs, QVariantList{1}}});
    const PlotAreaOptions options = DocumentFile::fromPlist(plist).plotAreaOptions;
    EXPECT_EQ(options.title, std::nullopt);
    EXPECT_EQ(options.axisMinX, 0);
    EXPECT_EQ(options.showOriginX, true);
    EXPECT_EQ(options.legendAlignment, std::numeric_limits<int>::max());
    EXPECT_EQ(options.legendMargins, std::nullopt);
}

} // namespace
