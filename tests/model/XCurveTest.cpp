// Curves: their saved form, what makes them be drawn again, their ranges and the hand-over with the renderer.
#include "Classes/PlotModel/XCurve.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/ExpressionEvaluator/XExpressionEvaluator.h"
#include "Classes/PlotView/XPointsLibrary.h"
#include "Core/Assertions.h"
#include "support/Numbers.h"
#include "support/TableSource.h"
#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Qt::StringLiterals;
using support::makeTable;

namespace {

using support::nan;

XCurveHandle loaded(const QVariantMap& saved) {
    XCurveHandle curve = XCurve::make();
    curve->loadFromPlist(saved);
    return curve;
}

TEST(XCurveSavedForm, loadUndoesSave) {
    const XCurveHandle curve = XCurve::make();
    curve->setTitle(u"Air"_qs);
    curve->setColor({0.1, 0.2, 1.0 / 3, 0.5});
    curve->setColorAlpha(0.1F);
    curve->setIsVisible(false);
    curve->setTicksShape(XPointsLibrary::sharedLibrary().pointDescriptionWithId(6));
    curve->setTicksSize(7);
    curve->setLineWidth(3);
    curve->setX_data_expression(u"c1*2"_qs);
    curve->setX_uses_expression(true);
    curve->setY_data_index(4);
    const QVariantMap saved = curve->plist();
    EXPECT_FALSE(saved.contains(u"X_data_index"_qs));
    EXPECT_EQ(saved.value(u"LineType"_qs).toInt(), 3);
    const XCurveHandle again = loaded(saved);
    EXPECT_EQ(again->plist(), saved);
    EXPECT_TRUE(again->x_uses_expression());
    EXPECT_EQ(again->color(), (RgbaColor{0.1, 0.2, 1.0 / 3, 0.5}));
}

TEST(XCurveSavedForm, keptOmissions) {
    const XCurveHandle curve = XCurve::make();
    curve->setPointsize_data_index(5);
    curve->setY_data_expression(u"c2"_qs); // not switched on
    const QVariantMap saved = curve->plist();
    for (const QString& key :
         {u"Pointsize_data_index"_qs, u"pointsize_data_index"_qs, u"Y_data_expression"_qs})
        EXPECT_FALSE(saved.contains(key)) << "kept: " << key.toStdString() << " is not saved";
}

struct LegacyRow {
    const char* name;
    QVariantMap saved;
    int shape;
    int size;
    int width;
};

class XCurveLegacy : public testing::TestWithParam<LegacyRow> {};

TEST_P(XCurveLegacy, loads) {
    const LegacyRow& row = GetParam();
    const XCurveHandle curve = loaded(row.saved);
    EXPECT_EQ(curve->ticksShape()->identifier(), row.shape) << row.name;
    EXPECT_EQ(curve->ticksSize(), row.size) << row.name;
    EXPECT_EQ(curve->lineWidth(), row.width) << row.name;
}

INSTANTIATE_TEST_SUITE_P(
    Rows, XCurveLegacy,
    testing::Values(
        LegacyRow{"an empty dictionary has no shape and no line", {}, 0, 0, 0},
        LegacyRow{"marker type 0", {{u"TicksType"_qs, 0}}, 0, 0, 0},
        LegacyRow{"marker type 1", {{u"TicksType"_qs, 1}}, 1, 2, 0},
        LegacyRow{"marker type 2", {{u"TicksType"_qs, 2}}, 1, 4, 0},
        LegacyRow{"marker type 9 keeps the size", {{u"TicksType"_qs, 9}, {u"TicksSize"_qs, 8}}, 1, 0, 0},
        LegacyRow{"unknown shape", {{u"TicksShape"_qs, 77}, {u"TicksSize"_qs, 3}}, 0, 3, 0},
        LegacyRow{"kept: the line type is the width itself", {{u"LineType"_qs, 3}}, 0, 0, 3},
        LegacyRow{"only the older width", {{u"LineWidth"_qs, 5}}, 0, 0, 5},
        LegacyRow{"widths beyond 32 bits are clamped",
                  {{u"LineType"_qs, 1e30}},
                  0,
                  0,
                  std::numeric_limits<int>::max()},
        LegacyRow{"negative width and size", {{u"LineType"_qs, -4}, {u"TicksSize"_qs, -9}}, 0, -9, -4}));

TEST(XCurveSavedForm, keptLegacyWidthIsSeenByObservers) {
    const XCurveHandle curve = XCurve::make();
    std::vector<int> seen;
    static constexpr const char* keys[] = {"lineWidth"};
    const Observation observation(*curve, keys,
                                  [&](const KeyChange& c) { seen.push_back(c.newValue.toInt()); });
    curve->loadFromPlist(QVariantMap{{u"LineType"_qs, 3}});
    EXPECT_EQ(seen, (std::vector<int>{4, 3})) << "kept: the legacy reading comes first";
}

TEST(XCurveSavedForm, fallbacks) {
    const support::LogRecorder log; // the malformed colour is logged
    const XCurveHandle curve = loaded({{u"Color"_qs, u"red"_qs}, {u"ColorAlpha"_qs, nan}, {u"Title"_qs, 3}});
    EXPECT_EQ(curve->color(), (RgbaColor{0, 0, 0, 1}));
    EXPECT_TRUE(std::isnan(curve->colorAlpha()));
    EXPECT_EQ(curve->title(), QString());
    EXPECT_FALSE(curve->isVisible());
    const support::AssertionRecorder assertions;
    curve->loadFromPlist(QVariantList{});
    EXPECT_EQ(assertions.texts(), std::vector<std::string>{"Wrong XCurve plist"});
}

TEST(XCurve, everyObservedKeyAsksForARedraw) {
    const XCurveHandle curve = XCurve::make();
    for (const char* key : {"color", "isVisible", "lineWidth", "ticksSize", "x_data_index",
                            "pointsize_data_expression", "dataSource"}) {
        curve->setNeedsRedraw(false);
        curve->setValueForKey(key, curve->valueForKey(key)); // equal values count
        EXPECT_TRUE(curve->needsRedraw()) << key;
    }
    curve->setNeedsRedraw(false);
    curve->setTitle(u"only text"_qs);
    EXPECT_FALSE(curve->needsRedraw());
}

TEST(XCurve, redrawsWhenItsOwnSourceHasNewData) {
    const auto source = std::make_shared<support::TableSource>();
    const auto other = std::make_shared<support::TableSource>();
    const XCurveHandle curve = XCurve::make();
    curve->setDataSource(source);
    curve->setNeedsRedraw(false);
    other->setData(makeTable({{1}}));
    EXPECT_FALSE(curve->needsRedraw());
    source->setData(makeTable({{1}}));
    EXPECT_TRUE(curve->needsRedraw());
    NotificationCenter::defaultCenter().post(Notifications::dataSourceWillBeRemoved, source.get());
    EXPECT_EQ(curve->dataSource(), nullptr);
}

TEST(XCurve, switchingPointSizeToAnExpressionKeepsTheLook) {
    const XCurveHandle curve = XCurve::make();
    curve->setTicksSize(6);
    curve->setPointsize_uses_expression(true);
    EXPECT_EQ(curve->pointsize_data_expression(), u"6"_qs);
    curve->setPointsize_uses_expression(false);
    curve->setPointsize_data_expression(u"c1"_qs);
    curve->setPointsize_uses_expression(true);
    EXPECT_EQ(curve->pointsize_data_expression(), u"c1"_qs);
}

TEST(XCurve, ranges) {
    const XCurveHandle curve = XCurve::make();
    EXPECT_EQ(curve->getRangeX(), (XValueRange{-10, 10})) << "without a data source";
    curve->setDataSource(
        std::make_shared<support::TableSource>(makeTable({{3, nan, -1, 8}, {nan, nan, nan, nan}})));
    EXPECT_EQ(curve->getRangeX(), (XValueRange{0, 3})) << "row numbers";
    curve->setY_data_index(1);
    EXPECT_EQ(curve->getRangeY(), (XValueRange{-1, 8}));
    curve->setY_data_index(2);
    EXPECT_TRUE(std::isnan(curve->getRangeY().minimum)) << "a column without numbers";
    curve->setY_data_index(9);
    EXPECT_TRUE(std::isnan(curve->getRangeY().maximum)) << "a column that is not there";
    curve->setY_uses_expression(true);
    EXPECT_EQ(curve->getRangeY(), (XValueRange{-10, 10})) << "not evaluated yet";
}

// --- Evaluation

bool evaluationsAreDone() {
    return support::waitUntil([] { return XExpressionEvaluator::sharedInstance().isIdle(); });
}

std::vector<double> valuesOf(const XTable& table) {
    const std::span<const double> column = table ? table->column(0) : std::span<const double>();
    return {column.begin(), column.begin() + (table ? static_cast<std::ptrdiff_t>(table->rowsNumber()) : 0)};
}

XCurveHandle curveOver(const std::vector<std::vector<double>>& columns) {
    const XCurveHandle curve = XCurve::make();
    curve->setDataSource(std::make_shared<support::TableSource>(makeTable(columns)));
    return curve;
}

TEST(XCurveEvaluation, oneResultServesAllThatShareTheText) {
    const XCurveHandle curve = curveOver({{1, 2, 3}});
    for (const char* key : {"x_data_expression", "y_data_expression"})
        curve->setValueForKey(key, QVariant::fromValue(std::optional(u"c1*2"_qs)));
    curve->setX_uses_expression(true);
    curve->setY_uses_expression(true);
    ASSERT_TRUE(evaluationsAreDone());
    EXPECT_EQ(valuesOf(curve->x_evaluated_data()), (std::vector<double>{2, 4, 6}));
    EXPECT_EQ(curve->x_evaluated_data(), curve->y_evaluated_data());
    EXPECT_EQ(curve->xExpressionProgress(), 100);
    EXPECT_EQ(curve->yExpressionProgress(), 0) << "kept: only the first shows the progress";
    EXPECT_EQ(curve->getRangeY(), (XValueRange{2, 6}));
    // x turns to another text while y still waits for the shared one
    curve->dataSource()->setData(makeTable({{5}}));
    curve->setX_data_expression(u"c1*3"_qs);
    ASSERT_TRUE(evaluationsAreDone());
    EXPECT_EQ(valuesOf(curve->y_evaluated_data()), std::vector<double>{10});
    EXPECT_EQ(valuesOf(curve->x_evaluated_data()), std::vector<double>{15});
}

TEST(XCurveEvaluation, aFaultIsToldAndTheOldResultStays) {
    const XCurveHandle curve = curveOver({{1, 2}});
    curve->setY_data_expression(u"c1+1"_qs);
    curve->setY_uses_expression(true);
    ASSERT_TRUE(evaluationsAreDone());
    curve->setY_data_expression(u"c1+"_qs);
    ASSERT_TRUE(evaluationsAreDone());
    EXPECT_FALSE(curve->yExpressionError().isEmpty());
    EXPECT_EQ(valuesOf(curve->y_evaluated_data()), (std::vector<double>{2, 3}));
    curve->setY_data_expression(u"c1-1"_qs);
    ASSERT_TRUE(evaluationsAreDone());
    EXPECT_EQ(curve->yExpressionError(), QString());
    curve->setY_data_expression(u"c1+"_qs);
    curve->setY_uses_expression(false);
    ASSERT_TRUE(evaluationsAreDone());
    EXPECT_EQ(curve->yExpressionError(), QString()) << "an expression that is switched off has no fault";
}

TEST(XCurveEvaluation, onlyTheNewestDataCount) {
    const XCurveHandle curve = curveOver({{0}});
    curve->setY_data_expression(u"c1"_qs);
    curve->setY_uses_expression(true);
    for (int i = 1; i <= 50; ++i)
        curve->dataSource()->setData(makeTable({{static_cast<double>(i)}}));
    ASSERT_TRUE(evaluationsAreDone());
    EXPECT_EQ(valuesOf(curve->y_evaluated_data()), std::vector<double>{50});
}

TEST(XCurveEvaluation, aCurveMayDieMeanwhile) {
    XCurveHandle curve = curveOver({std::vector<double>(200'000, 1.5)});
    curve->setY_data_expression(u"sin(c1)"_qs);
    curve->setY_uses_expression(true);
    const std::weak_ptr<XCurve> weak = curve;
    curve.reset();
    EXPECT_TRUE(weak.expired());
    EXPECT_TRUE(evaluationsAreDone());
}

TEST(XCurveRendering, aRemovedSourceTakesItsImageAlong) {
    const XCurveHandle curve = XCurve::make();
    curve->setDataSource(std::make_shared<support::TableSource>(makeTable({{1, 2}})));
    curve->acceptRendering({QImage(4, 4, QImage::Format_ARGB32_Premultiplied), nullptr, nullptr}, 0);
    std::static_pointer_cast<support::TableSource>(curve->dataSource())->setData(nullptr);
    EXPECT_FALSE(curve->renderedImage().isNull()) << "during a read the old image stays";
    curve->setDataSource(nullptr);
    EXPECT_TRUE(curve->renderedImage().isNull());
}

TEST(XCurveRendering, rowsAreTheLeastOfTheColumnsInUse) {
    const XCurveHandle curve = XCurve::make();
    EXPECT_EQ(curve->snapshot().rows(), 0U);
    curve->setDataSource(std::make_shared<support::TableSource>(makeTable({{1, 2, 3, 4, 5}})));
    EXPECT_EQ(curve->snapshot().rows(), 5U);
    curve->setY_evaluated_data(makeTable({{1, 2, 3}}));
    EXPECT_EQ(curve->snapshot().rows(), 5U) << "evaluated, but not in use";
    curve->setY_uses_expression(true);
    EXPECT_EQ(curve->snapshot().rows(), 3U);
}

} // namespace
