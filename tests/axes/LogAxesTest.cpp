// The logarithmic axes: their mapping, marks, texts and range edits.
#include "Classes/Axes/XPseudoLogAxis.h"
#include "support/Numbers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using support::inf;
using support::nan;

enum Kind { Log, Pseudo };

struct LogScale {
    double min;
    double max;
    int length;
};

std::unique_ptr<XLogAxis> make(Kind kind, LogScale scale) {
    std::unique_ptr<XLogAxis> axis;
    if (kind == Log)
        axis = std::make_unique<XLogAxis>();
    else
        axis = std::make_unique<XPseudoLogAxis>();
    axis->setRangeMinMax(scale.min, scale.max);
    axis->setPixelLength(scale.length);
    return axis;
}

// Marks as text: "10^3 . ." is the mark of a decade with two minor ones; one without a label is "-".
std::string logMarksText(const XAxisTicks& ticks) {
    if (!ticks)
        return "none";
    std::string text;
    for (const XAxisTick& tick : *ticks) {
        std::string mark = tick.level == 0 ? "-" : ".";
        if (tick.title)
            mark = tick.title->toStdString();
        if (const auto& label = tick.attributedTitle)
            mark =
                (label->text.left(label->superscriptStart) + u'^' + label->text.mid(label->superscriptStart))
                    .toStdString();
        text += (text.empty() ? "" : " ") + mark;
    }
    return text;
}

std::string decades(const std::vector<const char*>& labels) {
    std::string text;
    for (const char* label : labels)
        text += (text.empty() ? "" : " ") + std::string(label) + " . . . . . . . . .";
    return text;
}

TEST(LogTicks, standAtDecades) {
    struct Row {
        const char* name;
        Kind kind;
        LogScale scale;
        std::string marks;
    };
    const Row rows[] = {
        {"wide decades, from two before the start",
         Log,
         {1, 1000, 600},
         decades({"10^-2", "10^-1", "10^0", "10^1", "10^2", "10^3"})},
        {"narrow decades: every tenth", Log, {1, 1e30, 300}, "10^0 10^10 10^20 10^30"},
        {"decades of exactly 50 pixels are narrow", Log, {1, 1e4, 200}, "10^0 10^1 10^2 10^3 10^4"},
        {"a start that is no decade", Log, {2e7, 3e36, 290}, "10^0 10^10 10^20 10^30"},
        {"equal ends: one mark without a label", Log, {7, 7, 300}, "-"},
        {"a reversed range", Log, {100, 1, 300}, "none"},
        {"no room", Log, {1, 100, 0}, "none"},
        {"a negative length", Log, {1, 100, -500}, "none"},
        {"wide decades of both signs around the linear marks",
         Pseudo,
         {-50, 50, 600},
         ". . . . . . . . . -10^2 . . . . . . . . . -10^1 " // they run downwards
         ". . . . -5 . . . . . . . . 5 . . . . " +
             decades({"+10^1", "+10^2"})},
        {"narrow decades: n pixels a step of 40",
         Pseudo,
         {1e2, 1e10, 320},
         "+10^2 +10^3 +10^4 +10^5 +10^6 +10^7 +10^8 +10^9 +10^10"},
        {"a step under 20 pixels is doubled, and starts evenly",
         Pseudo,
         {1e3, 1e11, 152},
         "+10^2 +10^4 +10^6 +10^8 +10^10"},
        {"a step over 100 pixels is halved", Pseudo, {1e10, 1e30, 210}, "+10^10 +10^15 +10^20 +10^25 +10^30"},
        {"kept: zero is +10 with a raised 0 where decades are narrow",
         Pseudo,
         {-1e3, 1e3, 180},
         "-10^3 -10^2 -10^1 +10^0 +10^1 +10^2 +10^3"},
        {"equal ends", Pseudo, {0, 0, 300}, "-"},
        {"an infinite range", Pseudo, {0, inf, 300}, "none"},
        {"an open range", Pseudo, {nan, 10, 300}, "none"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(logMarksText(make(row.kind, row.scale)->ticks()), row.marks) << row.name;
}

TEST(LogTicks, haveNineEvenStepsADecade) {
    for (const Kind kind : {Log, Pseudo}) {
        const XAxisTicks ticks = make(kind, {20, 1000, 600})->ticks();
        const auto ten = std::ranges::find(*ticks, 10.0, &XAxisTick::value);
        for (int j = 1; j <= 9; ++j)
            EXPECT_DOUBLE_EQ(ten[j].value, 10 + 9 * j) << "kept: minor marks at 1.9, 2.8, ... 9.1";
    }
    const XAxisTicks ticks = make(Pseudo, {-1000, -20, 600})->ticks();
    const auto ten = std::ranges::find(*ticks, -10.0, &XAxisTick::value);
    EXPECT_DOUBLE_EQ(std::prev(ten)->value, -19);
}

TEST(LogTicks, ofTheLinearBandFollowTheVisiblePart) {
    struct Row {
        const char* name;
        LogScale scale;
        double mark, next; // neighbouring major marks within the range
    };
    const Row rows[] = {
        {"one unit", {4, 5, 500}, 4.2, 4.4},
        {"a millionth", {4, 4.000001, 500}, 4.0000002, 4.0000004},
        {"next to zero", {0, 1e-9, 500}, 2e-10, 4e-10},
        {"counted from zero, wherever the range begins", {3.45, 3.83, 190}, 3.6, 3.8},
    };
    for (const Row& row : rows) {
        const XAxisTicks ticks = make(Pseudo, row.scale)->ticks();
        EXPECT_LT(ticks->size(), 200U) << row.name;
        std::vector<double> majors;
        for (const XAxisTick& tick : *ticks)
            if (tick.level == 0 && tick.value > row.scale.min && tick.value < row.scale.max)
                majors.push_back(tick.value);
        const double tolerance = (row.next - row.mark) * 1e-3;
        const auto first =
            std::ranges::find_if(majors, [&](double v) { return std::abs(v - row.mark) < tolerance; });
        ASSERT_TRUE(first != majors.end() && first + 1 != majors.end()) << row.name;
        EXPECT_NEAR(first[1], row.next, tolerance) << row.name;
    }
    // 0.1 added three times to -0.3 is not zero.
    const XAxisTicks nearZero = make(Pseudo, {-0.35, 0.35, 500})->ticks();
    for (const XAxisTick& tick : *nearZero)
        EXPECT_GT(std::abs(tick.value), 1e-3) << "kept: zero has no mark where decades are wide";
    // A part that is narrower than a step has its minor marks all the same.
    const XAxisTicks end = make(Pseudo, {8, 1e4, 310})->ticks();
    EXPECT_NE(std::ranges::find(*end, 9.0, &XAxisTick::value), end->end());
}

TEST(LogAxes, mapValuesBothWays) {
    struct Row {
        Kind kind;
        LogScale scale;
        double value, pixel;
    };
    const Row rows[] = {
        {Log, {1, 1000, 600}, 10, 200},          {Log, {1, 1000, 600}, 0.1, -200},
        {Pseudo, {-10, 10, 200}, 5, 150},        {Pseudo, {-10, 10, 200}, -50, -100 * std::log10(5)},
        {Pseudo, {-1000, 1000, 600}, -100, 100}, {Pseudo, {-1000, 1000, 600}, 10, 400},
    };
    for (const Row& row : rows) {
        const auto axis = make(row.kind, row.scale);
        EXPECT_NEAR(axis->valueToPixel(row.value), row.pixel, 1e-9);
        if (row.pixel == std::round(row.pixel)) {
            EXPECT_NEAR(axis->pixelToValue(static_cast<int>(row.pixel)), row.value, 1e-9);
        }
        EXPECT_EQ(axis->copy()->valueToPixel(row.value), axis->valueToPixel(row.value));
        EXPECT_EQ(logMarksText(axis->copy()->ticks()), logMarksText(axis->ticks()));
    }
    float pixels[4] = {};
    const double values[] = {100, 0, -5, 1};
    const auto log = make(Log, {1, 100, 200});
    EXPECT_EQ(log->valuesToPixelsFromToCount(values, pixels, 4), 3);
    EXPECT_TRUE(pixels[0] == 200 && !std::isfinite(pixels[1]) && !std::isfinite(pixels[2]) && pixels[3] == 0);
    EXPECT_EQ(log->valueFromRangeTo(0, 2, pixels), 1);
    EXPECT_TRUE(std::isnan(pixels[0]) && pixels[1] == 0); // row 0 has no logarithm
    const auto pseudo = make(Pseudo, {-10, 10, 200});
    EXPECT_EQ(pseudo->valueFromRangeTo(0, 2, pixels), 1);
    EXPECT_TRUE(pixels[0] == 100 && pixels[1] == 110);
    EXPECT_EQ(pseudo->valuesToPixelsFromToCount(values, pixels, 0), -1);
    EXPECT_EQ(log->validValuesRange().minimum, std::numeric_limits<double>::min());
    EXPECT_TRUE(std::isnan(log->validValuesRange().maximum) &&
                std::isnan(pseudo->validValuesRange().minimum));
}

TEST(LogAxes, mapManyValuesAsTheyMapOne) {
    std::mt19937_64 random(5);
    std::uniform_real_distribution<double> share(-0.2, 1.2), exponent(-3, 9);
    const auto same = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    for (const Kind kind : {Log, Pseudo}) {
        // Deep in, some pixels lie between neighbouring logarithms.
        for (const LogScale scale : {LogScale{0.3, 7e6, 1234}, {9.5e8, 9.5e8 + 1e-3, 4000}}) {
            const auto axis = make(kind, scale);
            std::vector<double> values = {0,    -0.0,   -10,    10,    std::nextafter(10, 0), nan, inf,
                                          -inf, 5e-324, 1e-300, -1e300};
            const XAxisTicks ticks = axis->ticks();
            for (const XAxisTick& tick : *ticks)
                values.push_back(tick.value);
            while (values.size() < 2 * LogTransform::mostAtOnce + 3) {
                values.push_back(scale.min + (scale.max - scale.min) * share(random));
                values.push_back((random() % 2 == 0 ? 1 : -1) * std::pow(10, exponent(random)));
            }
            std::vector<float> pixels(values.size());
            axis->valuesToPixelsFromToCount(values.data(), pixels.data(), values.size());
            for (std::size_t i = 0; i < values.size(); ++i)
                ASSERT_TRUE(same(pixels[i], static_cast<float>(axis->valueToPixel(values[i])))) << values[i];
            axis->valueFromRangeTo(-5, pixels.size(), pixels.data());
            for (std::size_t i = 0; i < pixels.size(); ++i) {
                const auto one = static_cast<float>(axis->valueToPixel(static_cast<double>(i) - 5));
                ASSERT_TRUE(same(pixels[i], std::isfinite(one) ? one : nan)) << i;
            }
        }
    }
}

TEST(LogAxes, takeAndEditRanges) {
    const auto nothing = [](XAxis&) {};
    struct Row {
        const char* name;
        Kind kind;
        LogScale before;
        void (*edit)(XAxis&);
        XValueRange after;
    };
    const Row rows[] = {
        {"a start at 0", Log, {0, 100, 300}, nothing, {1e-10, 100}},
        {"a start below 0", Log, {-5, 100, 300}, nothing, {1e-10, 100}},
        {"a start that is no number", Log, {nan, 100, 300}, nothing, {1e-10, 100}},
        {"extremes", Log, {1e-300, 1e300, 300}, nothing, {1e-200, 1e200}},
        {"an infinite end", Log, {1, 9, 300}, [](XAxis& a) { a.setRangeMinMax(2, inf); }, {1, 9}},
        {"an infinite start", Log, {1, 9, 300}, [](XAxis& a) { a.setRangeMinMax(inf, 5); }, {1, 9}},
        {"an end that is no number", Log, {1, 9, 300}, [](XAxis& a) { a.setRangeMinMax(2, nan); }, {1, 9}},
        {"an end below 0", Log, {1, -9, 300}, nothing, {1, -9}},
        {"any range", Pseudo, {-1e300, 1e300, 300}, nothing, {-1e300, 1e300}},
        {"a move by a decade", Log, {1, 100, 200}, [](XAxis& a) { a.moveOnPixels(100); }, {0.1, 10}},
        {"a move into the band", Pseudo, {10, 1000, 200}, [](XAxis& a) { a.moveOnPixels(200); }, {-10, 10}},
        {"zooming keeps the value under the pixel",
         Log,
         {1, 1e4, 400},
         [](XAxis& a) { a.zoomWithFactorWithPixelsOrigin(0.5, 200); },
         {10, 1000}},
        {"zooming out of the band",
         Pseudo,
         {-10, 10, 200},
         [](XAxis& a) { a.zoomWithFactorWithPixelsOrigin(3, 100); },
         {-1000, 1000}},
        {"zooming beyond the numbers is refused",
         Pseudo,
         {-1e200, 1e200, 200},
         [](XAxis& a) { a.zoomWithFactorWithPixelsOrigin(3, 100); },
         {-1e200, 1e200}},
        {"a margin is a share of the decades",
         Log,
         {1, 1e20, 200},
         [](XAxis& a) { a.makeVisibleMarginForMinMax(true, true); },
         {0.1, 1e21}},
        {"a margin at one end",
         Pseudo,
         {-10, 10, 200},
         [](XAxis& a) { a.makeVisibleMarginForMinMax(false, true); },
         {-10, std::pow(10, 1.1)}},
        {"no margin beyond the numbers",
         Pseudo,
         {1, 1e308, 200},
         [](XAxis& a) { a.makeVisibleMarginForMinMax(true, true); },
         {-std::pow(10, 15.295), 1e308}},
    };
    for (const Row& row : rows) {
        const auto axis = make(row.kind, row.before);
        row.edit(*axis);
        const auto near = [](double a, double b) { return std::abs(a - b) <= 1e-9 * std::abs(b); };
        EXPECT_TRUE(near(axis->minValue(), row.after.minimum)) << row.name << ' ' << axis->minValue();
        EXPECT_TRUE(near(axis->maxValue(), row.after.maximum)) << row.name << ' ' << axis->maxValue();
    }
    const auto axis = make(Log, {1, 100, 200});
    const XAxisTicks before = axis->ticks();
    EXPECT_EQ(axis->ticks(), before);
    axis->setRangeMinMax(1, 100);
    EXPECT_NE(axis->ticks(), before); // even an equal range makes new marks
}

TEST(LogAxes, readValues) {
    struct Row {
        const char* name;
        Kind kind;
        LogScale scale;
        double value;
        const char* text;
    };
    const Row rows[] = {
        {"a mark within a pixel", Log, {1, 1000, 600}, 99.5, "100"},
        {"the roundest value near by", Log, {1, 1000, 600}, 234.5, "230"},
        {"a minor mark", Log, {1, 1000, 600}, 19.02, "19"},
        {"large numbers", Log, {1, 1e30, 300}, 3e7, "3e+07"},
        {"negative numbers", Pseudo, {-1000, 1000, 600}, -437, "-440"},
        {"an end of nothing", Pseudo, {5, 5, 300}, 7, "7"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(make(row.kind, row.scale)->humanReadableValue(row.value).toStdString(), row.text)
            << row.name;
    EXPECT_EQ(make(Log, {1, 1000, 600})->humanReadableIntervalEnd(150, 20), u"-130") << "kept: signed";
}

// Whatever the range: a bounded list, strictly ascending; and the mapping undone.
TEST(LogAxes, holdTheirPropertiesOnRandomRanges) {
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> mantissa(-10, 10), decade(-4, 6);
    std::uniform_int_distribution<int> exponent(-323, 307), length(1, 20000), ulps(1, 40), shape(0, 3);
    int listed = 0;
    for (int i = 0; i < 3000; ++i) {
        const int s = shape(random);
        const double start = mantissa(random) * std::pow(10, s == 3 ? decade(random) : exponent(random));
        double end = s == 1 ? mantissa(random) * std::pow(10, exponent(random)) : start;
        for (int n = s == 0 ? ulps(random) : 0; n > 0; --n)
            end = std::nextafter(end, inf);
        if (s >= 2)
            end = start + std::abs(start) * std::pow(10, decade(random));
        const Kind kind = i % 2 ? Log : Pseudo;
        const int pixels = i % 50 == 0 ? std::numeric_limits<int>::max() : length(random);
        const auto axis = make(kind, {std::min(start, end), std::max(start, end), pixels});
        if (const XAxisTicks ticks = axis->ticks()) {
            ++listed;
            ASSERT_LE(ticks->size(), 10'000U) << i;
            for (std::size_t k = 1; k < ticks->size(); ++k)
                ASSERT_LT((*ticks)[k - 1].value, (*ticks)[k].value) << i;
        }
        ASSERT_FALSE(axis->humanReadableValue(start).isEmpty());
        const double width = axis->maxLogValue() - axis->minLogValue();
        const double resolution =
            std::max(std::abs(axis->minLogValue()), std::abs(axis->maxLogValue())) * 1e-13;
        if (std::isfinite(width) && width / pixels > std::max(resolution, 1e-290)) {
            ASSERT_NEAR(axis->valueToPixel(axis->pixelToValue(pixels / 3)), pixels / 3, 0.5) << i;
        }
    }
    EXPECT_GT(listed, 1000);
}

} // namespace
