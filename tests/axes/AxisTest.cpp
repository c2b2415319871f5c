// The linear axis: its mapping, marks, texts and range edits.
#include "Classes/Axes/XAxisManager.h"
#include "Classes/Axes/XEmptyAxis.h"

#include "support/Numbers.h"
#include "support/TestSupport.h"

#include <QFile>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using support::inf;
using support::nan;

struct Scale {
    double min;
    double max;
    int length;
};

XAxis& set(XAxis& axis, Scale scale) {
    axis.setRangeMinMax(scale.min, scale.max);
    axis.setPixelLength(scale.length);
    return axis;
}

// Marks as text: "0 . . 5" is a mark at 0, two minor ones, a mark at 5.
std::string marksText(const XAxisTicks& ticks) {
    if (!ticks)
        return "none";
    std::string text;
    for (const XAxisTick& tick : *ticks)
        text += (text.empty() ? "" : " ") +
                (tick.level == 0 ? tick.title.value_or(QString()).toStdString() : ".");
    return text;
}

TEST(LinearTicks, standAtOneTwoOrFiveTimesAPowerOfTen) {
    struct Row {
        const char* name;
        Scale scale;
        const char* marks;
    };
    const Row rows[] = {
        {"r of exactly 5: fives", {0, 10, 300}, "0 . . . . 5 . . . . 10 . . . . 15 . . . ."},
        {"r of 3: twos, anchored on zero", {-3, 7, 500}, "-4 . -2 . 0 . 2 . 4 . 6 . 8 ."},
        {"r of exactly 2: ones",
         {0, 2, 150},
         "0 . . . . . . . . . 1 . . . . . . . . . 2 . . . . . . . . . 3 . . . . . . . . ."},
        {"anchored on the start, cut to the power of ten of the width",
         {103, 109, 300},
         "103 . 105 . 107 . 109 . 111 ."},
        {"decimals", {0.1, 0.7, 300}, "0.1 . 0.3 . 0.5 . 0.7 ."},
        {"no minus before zero", {-0.3, 0.3, 300}, "-0.4 . -0.2 . 0 . 0.2 . 0.4 ."},
        {"shorter than a step: an empty list", {1, 2, 20}, ""},
        {"an empty range", {5, 5, 300}, "none"},
        {"a reversed range", {5, 4, 300}, "none"},
        {"an open range", {nan, 4, 300}, "none"},
        {"an infinite range", {0, inf, 300}, "none"},
        {"a range whose width overflows", {-1.7e308, 1.7e308, 300}, "none"},
        {"no room", {0, 10, 0}, "none"},
        {"a negative length", {0, 10, -300}, "none"},
        {"two representable values", {1e16, 1e16 + 2, 3000}, "none"},
    };
    for (const Row& row : rows) {
        XAxis axis;
        EXPECT_EQ(marksText(set(axis, row.scale).ticks()), row.marks) << row.name;
    }
}

// Whatever the range: a bounded list, strictly ascending, that starts at or below it and ends above it; and
// the mapping undone.
TEST(XAxis, holdsItsPropertiesOnRandomRanges) {
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> mantissa(-10, 10);
    std::uniform_int_distribution<int> exponent(-323, 307), length(1, 20000), ulps(1, 40), kind(0, 2);
    int listed = 0;
    for (int i = 0; i < 5000; ++i) {
        const double start = mantissa(random) * std::pow(10, exponent(random));
        double end = start;
        switch (kind(random)) {
        case 0: // a few representable values wide
            for (int n = ulps(random); n > 0; --n)
                end = std::nextafter(end, inf);
            break;
        case 1: // any other number
            end = mantissa(random) * std::pow(10, exponent(random));
            break;
        default: // of the same order
            end = start + std::abs(start) * std::abs(mantissa(random));
        }
        XAxis axis;
        set(axis, {std::min(start, end), std::max(start, end), length(random)});
        const std::string range = std::to_string(i);
        if (const XAxisTicks ticks = axis.ticks(); ticks && !ticks->empty()) {
            ++listed;
            ASSERT_LE(ticks->size(), 100'100U) << range;
            ASSERT_LE(ticks->front().value, axis.minValue()) << range;
            ASSERT_GE(ticks->back().value, axis.maxValue()) << range;
            for (std::size_t k = 1; k < ticks->size(); ++k)
                ASSERT_LT((*ticks)[k - 1].value, (*ticks)[k].value) << range;
        }
        ASSERT_LT(std::abs(axis.pixelPrecision()), 400) << range;
        ASSERT_LT(std::abs(axis.tickPrecision()), 400) << range;
        ASSERT_FALSE(axis.humanReadableValue(start).isEmpty()) << range;

        // Pixels can be told apart only where the values between them can.
        const double resolution = std::max(std::abs(axis.minValue()), std::abs(axis.maxValue())) * 1e-14;
        const double width = axis.maxValue() - axis.minValue();
        if (std::isfinite(width) && width / axis.pixelLength() > std::max(resolution, 1e-300)) {
            const int pixel = axis.pixelLength() / 3;
            ASSERT_NEAR(axis.valueToPixel(axis.pixelToValue(pixel)), pixel, 0.5) << range;
        }
    }
    EXPECT_GT(listed, 1000);
}

TEST(XAxis, convertsColumnsAndRowNumbers) {
    XAxis axis;
    set(axis, {10, 20, 100});
    const double values[] = {10, 20, nan, inf, -inf, 1e300, 15.5};
    float pixels[7] = {};
    EXPECT_EQ(axis.valuesToPixelsFromToCount(values, pixels, 7), 6);
    const float expected[] = {0, 100, NAN, NAN, NAN, NAN, 55};
    for (int i = 0; i < 7; ++i)
        EXPECT_TRUE(pixels[i] == expected[i] || (std::isnan(pixels[i]) && std::isnan(expected[i]))) << i;

    float rows[3] = {};
    EXPECT_EQ(axis.valueFromRangeTo(9, 3, rows), 2);
    EXPECT_THAT(std::vector<float>(rows, rows + 3), ::testing::ElementsAre(-10, 0, 10));
    EXPECT_EQ(axis.valueFromRangeTo(0, 0, nullptr), -1);
    EXPECT_EQ(axis.valuesToPixelsFromToCount(nullptr, nullptr, 0), -1);

    set(axis, {5, 5, 100});
    EXPECT_EQ(axis.valuesToPixelsFromToCount(values, pixels, 7), 6);
    for (const float pixel : pixels)
        EXPECT_TRUE(std::isnan(pixel)); // an empty range has no pixels
}

TEST(XAxis, editsItsRange) {
    struct Row {
        const char* name;
        Scale before;
        void (*edit)(XAxis&);
        XValueRange after;
    };
    const Row rows[] = {
        {"a move to the right shows lower values",
         {0, 10, 100},
         [](XAxis& a) { a.moveOnPixels(20); },
         {-2, 8}},
        {"zooming in keeps the value under the pixel",
         {0, 10, 100},
         [](XAxis& a) { a.zoomWithFactorWithPixelsOrigin(0.5, 20); },
         {1, 6}},
        {"a margin at the start only",
         {0, 20, 100},
         [](XAxis& a) { a.makeVisibleMarginForMinMax(true, false); },
         {-1, 20}},
        {"a margin at both ends",
         {0, 20, 100},
         [](XAxis& a) { a.makeVisibleMarginForMinMax(true, true); },
         {-1, 21}},
        {"align: a pixel is a unit or more", {0.4, 99.7, 50}, [](XAxis& a) { a.alignRanges(); }, {0, 100}},
        {"align: a step of a hundred pixels a unit",
         {150, 255, 10500},
         [](XAxis& a) { a.alignRanges(); },
         {100, 200}},
        {"kept: align derives its step from pixels a unit, so a narrow range collapses",
         {0.2, 0.3, 500},
         [](XAxis& a) { a.alignRanges(); },
         {0, 0}},
        {"align: beyond the integers",
         {-1e12, 1e12, 2'000'000'000},
         [](XAxis& a) { a.alignRanges(); },
         {-1e12, 1e12}},
        {"align: steps beyond the integers",
         {3e10, 3e10 + 1, 10},
         [](XAxis& a) { a.alignRanges(); },
         {21474836470, 21474836470}},
    };
    for (const Row& row : rows) {
        XAxis axis;
        row.edit(set(axis, row.before));
        EXPECT_DOUBLE_EQ(axis.minValue(), row.after.minimum) << row.name;
        EXPECT_DOUBLE_EQ(axis.maxValue(), row.after.maximum) << row.name;
    }
}

TEST(XAxis, keepsItsMarksUntilSomethingChanges) {
    XAxis axis;
    set(axis, {0, 10, 300});
    const XAxisTicks before = axis.ticks();
    axis.setRangeMinMax(0, 10);
    axis.setPixelLength(300);
    EXPECT_EQ(axis.ticks(), before);
    EXPECT_EQ(axis.copy()->ticks() == before, false); // a copy makes its own
    axis.setPixelLength(301);
    EXPECT_NE(axis.ticks(), before);
}

TEST(XAxis, readsValuesAtThePrecisionOfAPixel) {
    struct Row {
        const char* name;
        Scale scale;
        double value;
        const char* text;
    };
    const Row rows[] = {
        {"a mark within a pixel gives its own value", {0, 10, 300}, 4.98, "5"},
        {"a minor mark counts too", {0, 10, 300}, 7.01, "7"},
        {"else the roundest value near by", {0, 10, 300}, 5.5312, "5.5"},
        {"a pixel of twenty units: whole hundreds", {0, 10000, 500}, 1234.5, "1200"},
        {"zero has no sign", {-1, 1, 300}, -0.0001, "0"},
        {"no marks", {1, 2, 20}, 1.52, "1.5"},
    };
    for (const Row& row : rows) {
        XAxis axis;
        EXPECT_EQ(set(axis, row.scale).humanReadableValue(row.value).toStdString(), row.text) << row.name;
    }
    XAxis axis;
    EXPECT_EQ(set(axis, {0, 10, 300}).humanReadableIntervalEnd(7, 2), u"5");
}

TEST(XAxis, knowsItsPrecisions) {
    XAxis axis;
    EXPECT_EQ(axis.pixelPrecision(), 0) << "kept: an axis that was never set reports 0";
    EXPECT_EQ(axis.tickPrecision(), 0);
    struct Row {
        Scale scale;
        int pixel, tick;
    };
    const Row rows[] = {{{0, 10000, 500}, 1, 4}, {{0, 1, 500}, -3, 0},  {{0, 0.05, 500}, -5, -3},
                        {{0, 0, 500}, 0, 0},     {{1, 0, 500}, 0, 0},   {{-1.7e308, 1.7e308, 9}, 0, 0},
                        {{0, 10, 0}, 0, 1},      {{nan, 10, 500}, 0, 0}};
    for (const Row& row : rows) {
        set(axis, row.scale);
        EXPECT_EQ(axis.pixelPrecision(), row.pixel) << row.scale.max;
        EXPECT_EQ(axis.tickPrecision(), row.tick) << row.scale.max;
    }
}

TEST(XAxisManager, namesTheKindsInTheirOrder) {
    const XAxisManager& manager = XAxisManager::sharedManager();
    std::string kinds;
    for (const XAxisInfo& info : manager.axisTypes())
        kinds += (info.typeId() + u'=' + info.title() + u';').toStdString();
    EXPECT_EQ(kinds, "numeric=Numeric;log=Logarithmic;pseudolog=Pseudo log;timeline=Timeline;zen=No ticks;");
    for (const QString& unknown :
         {QString(), QStringLiteral("Numeric"), QStringLiteral("of a newer version")})
        EXPECT_EQ(manager.axisInfoWithId(unknown), &manager.axisTypes().front()) << unknown.toStdString();

    const std::unique_ptr<XAxis> zen = manager.createAxisWithTypeId(QStringLiteral("zen"));
    set(*zen, {0, 10, 300});
    EXPECT_EQ(zen->ticks(), nullptr);
    EXPECT_EQ(zen->copy()->ticks(), nullptr); // a copy is of the same class
    EXPECT_EQ(zen->valueToPixel(5), 150);
}

TEST(XAxis, dumpsItsMarksAsSourceText) {
    const support::ScratchFolder folder;
    const QString planted = folder.write(QStringLiteral("planted"), "precious");
    const QString path = QStringLiteral("/tmp/axis_0.000000_1.000000_170px.h");
    QFile::remove(path);
    ASSERT_TRUE(QFile::link(planted, path)); // nobody redirects it
    XAxis axis;
    set(axis, {0, 1, 170}).dumpTestInfo();
    const QByteArray text = support::ScratchFolder::read(path);
    EXPECT_TRUE(QFile::remove(path));
    EXPECT_EQ(support::ScratchFolder::read(planted), "precious");
    EXPECT_TRUE(text.startsWith("@{@\"length\": @170, @\"max\": @1, @\"min\": @0, @\"ticks\": @["))
        << text.constData();
    // A minor mark has no title entry.
    EXPECT_TRUE(text.contains(
        "@{@\"level\": @0, @\"title\": @\"0\", @\"value\": @0}, \n@{@\"level\": @1, @\"value\": @0.1}"))
        << text.constData();
    EXPECT_TRUE(text.endsWith("@\"title\": @\"\"}\n\n"));
}

} // namespace
