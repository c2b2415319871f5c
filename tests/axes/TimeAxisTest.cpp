// The time axis: the calendar, the marks of each kind of step, texts and weekends.
#include "Classes/Axes/TicksGenerators.h"
#include "Classes/Axes/TypedTime.h"
#include "Classes/Axes/XTimeAxis.h"
#include "Classes/Axes/XTimeAxisTick.h"
#include "support/Numbers.h"

#include <QTimeZone>

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <random>

namespace {

using support::nan;

constexpr double minute = 60;
constexpr double hour = 3600;
constexpr double day = 86400;
constexpr double year = 365 * day;

const char* const zones[] = {"UTC",
                             "Europe/Berlin",
                             "America/New_York",
                             "Australia/Lord_Howe",
                             "Asia/Kathmandu",
                             "America/Sao_Paulo",
                             "Pacific/Apia"};

Calendar calendarIn(const char* zoneName, const QLocale& locale = QLocale::c()) {
    const QTimeZone zone{QByteArray(zoneName)};
    EXPECT_TRUE(zone.isValid()) << zoneName;
    return {[zone](std::int64_t instant) {
                return zone.offsetFromUtc(QDateTime::fromSecsSinceEpoch(instant, Qt::UTC));
            },
            locale};
}

double at(const char* zone, const CalendarComponents& local) {
    return static_cast<double>(calendarIn(zone).instantOf(local));
}

std::unique_ptr<XTimeAxis> axisIn(const char* zone, double min, double max, int length) {
    auto axis = std::make_unique<XTimeAxis>([zone] { return calendarIn(zone); });
    axis->setRangeMinMax(min, max);
    axis->setPixelLength(length);
    return axis;
}

// "12:00/Mon Jan 05 2026 . 13:00": a label of two lines, a minor mark, a label.
std::string timeMarksText(const XAxisTicks& ticks, std::size_t longest = 10000) {
    if (!ticks)
        return "none";
    std::string text;
    for (const XAxisTick& tick : *ticks)
        text += (text.empty() ? "" : "  ") +
                (tick.level == 0 ? QString(*tick.title).replace(u'\n', u'/').toStdString() : ".");
    return text.substr(0, longest);
}

std::string localText(const Calendar& calendar, std::int64_t instant) {
    return calendar.text(calendar.componentsOf(instant), QStringLiteral("yyyy-MMM-dd EEE HH:mm:ss"))
        .toStdString();
}

TEST(CivilDate, agreesWithTheStandardCalendar) {
    for (std::int64_t days = -4'000'000; days < 4'000'000; days += 97) {
        const std::chrono::sys_days expected{std::chrono::days(days)};
        const std::chrono::year_month_day date(expected);
        const CivilDate civil = civilFromDays(days);
        ASSERT_EQ(civil.year, static_cast<int>(date.year()));
        ASSERT_EQ(civil.month, static_cast<int>(static_cast<unsigned>(date.month())));
        ASSERT_EQ(civil.day, static_cast<int>(static_cast<unsigned>(date.day())));
        ASSERT_EQ(daysFromCivil(civil.year, civil.month, civil.day), days);
        ASSERT_EQ(daysFromCivil(civil.year - 2, civil.month + 24, civil.day), days);
        ASSERT_EQ(daysFromCivil(civil.year + 2, civil.month - 24, civil.day), days);
        ASSERT_EQ(weekdayOf(days), static_cast<int>(std::chrono::weekday(expected).c_encoding()) + 1);
    }
    for (const std::int64_t far : {-90'000'000'000'000, 90'000'000'000'000}) {
        const CivilDate date = civilFromDays(far);
        EXPECT_EQ(daysFromCivil(date.year, date.month, date.day), far);
    }
}

TEST(Calendar, movesLocalTimesThatDoNotExistForwardAndTakesTheFirstOfTwo) {
    struct Row {
        const char* name;
        const char* zone;
        CalendarComponents local;
        const char* expected;
        std::int64_t utcOffset;
    };
    const Row rows[] = {
        {"spring", "Europe/Berlin", {2026, 3, 29, 2, 30, 0}, "2026-Mar-29 Sun 03:30:00", 7200},
        {"autumn", "Europe/Berlin", {2026, 10, 25, 2, 30, 0}, "2026-Oct-25 Sun 02:30:00", 7200},
        {"half an hour", "Australia/Lord_Howe", {2026, 10, 4, 2, 10, 0}, "2026-Oct-04 Sun 02:40:00", 39600},
        {"midnight", "America/Sao_Paulo", {2018, 11, 4, 0, 0, 0}, "2018-Nov-04 Sun 01:00:00", -7200},
        {"a day", "Pacific/Apia", {2011, 12, 30, 0, 0, 0}, "2011-Dec-31 Sat 00:00:00", 50400},
        {"quarters", "Asia/Kathmandu", {2026, 1, 1, 0, 0, 0}, "2026-Jan-01 Thu 00:00:00", 20700},
        {"fields beyond", "America/New_York", {2026, 14, 30, 25, 61, 61}, "2027-Mar-03 Wed 02:02:01", -18000},
        {"far away", "Europe/Berlin", {123456789, 7, 1, 12, 0, 0}, "123456789-Jul-01 Sat 12:00:00", 7200},
        {"before year 1", "UTC", {-43, 3, 15, 0, 0, 0}, "-0043-Mar-15 Fri 00:00:00", 0},
    };
    for (const Row& row : rows) {
        const Calendar calendar = calendarIn(row.zone);
        const std::int64_t instant = calendar.instantOf(row.local);
        EXPECT_EQ(localText(calendar, instant), row.expected) << row.name;
        const CalendarComponents c = calendar.componentsOf(instant);
        EXPECT_EQ(daysFromCivil(c.year, c.month, c.day) * 86400 + c.hour * 3600 + c.minute * 60 + c.second -
                      instant,
                  row.utcOffset)
            << row.name;
    }
}

TEST(Calendar, undoesItselfInEveryZone) {
    std::mt19937_64 random(3);
    std::uniform_int_distribution<std::int64_t> recent(-2'000'000'000, 4'000'000'000),
        any(-Calendar::limit + 100'000'000'000'000, Calendar::limit - 100'000'000'000'000);
    for (const char* zone : zones) {
        const Calendar calendar = calendarIn(zone);
        for (int i = 0; i < 2000; ++i) {
            const std::int64_t instant = i % 4 ? recent(random) : any(random);
            const std::int64_t back = calendar.instantOf(calendar.componentsOf(instant));
            ASSERT_TRUE(back == instant ||
                        (back < instant && localText(calendar, back) == localText(calendar, instant)))
                << zone << ' ' << instant;
        }
    }
}

TEST(Calendar, followsTheZoneAndTheLanguageAtEachUse) {
    const QByteArray before = qgetenv("TZ");
    const QLocale locale;
    const CalendarComponents newYear{2026, 1, 1, 0, 0, 0};
    qputenv("TZ", "Asia/Kathmandu");
    EXPECT_EQ(Calendar::current().instantOf(newYear), 1767225600 - 20700);
    qputenv("TZ", "XYZ+3:30");
    EXPECT_EQ(Calendar::current().instantOf(newYear), 1767225600 + 12600);
    QLocale::setDefault(QLocale(QLocale::German));
    EXPECT_EQ(Calendar::current().text(newYear, QStringLiteral("EEE d MMMM yyyy")), u"Do. 1 Januar 2026");
    QLocale::setDefault(locale);
    qputenv("TZ", before);
    tzset();
}

TEST(TimeTicks, followTheCalendar) {
    struct Row {
        const char* name;
        const char* zone;
        CalendarComponents from;
        double span;
        int length;
        const char* marks;
    };
    const Row rows[] = {
        {"years",
         "UTC",
         {2019, 6, 1},
         4 * year,
         400,
         ".  .  2020  .  .  .  2021  .  .  .  2022  .  .  .  2023"},
        {"decades",
         "UTC",
         {1972, 1, 1},
         25 * year,
         240,
         ".  .  .  .  .  .  .  1980  .  .  .  .  .  .  .  .  .  1990"},
        {"five decades", "UTC", {1972, 1, 1}, 125 * year, 240, ".  .  2000  .  .  .  .  2050  .  .  .  ."},
        {"before year 1", "UTC", {-25, 1, 1}, 40 * year, 400, ".  .  .  .  -0020  .  ."},
        {"months", "UTC", {2025, 10, 15}, 120 * day, 400, "Nov/2025  Dec  Jan/2026  Feb"},
        {"half years", "UTC", {2025, 2, 1}, 600 * day, 240, ".  .  .  .  Jul/2025  .  .  .  .  .  Jan/2026"},
        {"every day", "UTC", {2026, 1, 30, 6}, 3 * day, 300, "Sat 31/Jan 2026  Sun 01/Feb  Mon 02"},
        {"fixed days", "UTC", {2024, 2, 24}, 8 * day, 240, "Sun 25/Feb 2024  .  Tue 27  .  .  Fri 01/Mar  ."},
        {"fifth days", "UTC", {2026, 1, 9, 1}, 12 * day, 240, "Sat 10/Jan 2026  .  .  .  .  Thu 15"},
        {"tenth days", "UTC", {2026, 1, 9, 1}, 22 * day, 240, "Sat 10/Jan 2026  ."},
        {"middle of the month",
         "UTC",
         {2026, 1, 9, 1},
         40 * day,
         240,
         ".  Thu 15/Jan 2026  .  .  Sun 01/Feb  .  .  Sun 15"},
        {"days over a skipped midnight",
         "America/Sao_Paulo",
         {2018, 11, 3, 12},
         2 * day,
         200,
         "Sun 04/Nov 2018  Mon 05"},
        {"days over a skipped day",
         "Pacific/Apia",
         {2011, 12, 28, 12},
         3 * day,
         300,
         "Thu 29/Dec 2011  Sat 31  Sun 01/Jan 2012"},
        {"hours", "UTC", {2026, 1, 5, 22, 30}, 2 * hour, 200, "23:00/Mon Jan 05 2026  00:00/Tue Jan 06"},
        {"120 pixels of exactly a day: hours",
         "UTC",
         {2026, 1, 5, 1},
         2 * day,
         240,
         ".  .  .  12:00/Mon Jan 05 2026"},
        {"hours after daylight saving began",
         "Europe/Berlin",
         {2026, 3, 29, 1, 10},
         3 * hour,
         300,
         "03:00/Sun Mar 29 2026  04:00  05:00"},
        {"an hour that comes twice",
         "Europe/Berlin",
         {2026, 10, 25, 1, 10},
         3 * hour,
         300,
         "02:00/Sun Oct 25 2026  02:00  03:00"},
        {"minutes from the full hour of a quarter zone",
         "Asia/Kathmandu",
         {2026, 1, 5, 10, 50},
         40 * minute,
         240,
         ".  11:00/Mon Jan 05 2026  .  .  11:15"},
        {"seconds", "UTC", {2026, 1, 5, 10, 59, 57}, 6, 400, "10:59:58/Mon Jan 05 2026  10:59:59  11:00:00"},
        {"half minutes",
         "UTC",
         {2026, 1, 5, 10, 59, 25},
         80,
         200,
         "10:59:30/Mon Jan 05 2026  .  .  11:00:00"},
        {"tenths of a second",
         "UTC",
         {2026, 1, 5, 10, 59, 59},
         1,
         480,
         "10:59:59/Mon Jan 05 2026  .  10:59:59.2/Mon Jan 05 2026  .  59.4  .  59.6  .  59.8  .  00  ."},
        {"kept: a mark exactly on the start is left out",
         "UTC",
         {2026, 1, 5},
         2 * day,
         200,
         "Tue 06/Jan 2026"},
        {"kept: 29 February has no mark in a leap year",
         "UTC",
         {2024, 2, 26},
         5 * day,
         130,
         "Tue 27/Feb 2024  .  .  Fri 01/Mar"},
    };
    for (const Row& row : rows) {
        const double min = at(row.zone, row.from);
        const std::string expected(row.marks);
        EXPECT_EQ(timeMarksText(axisIn(row.zone, min, min + row.span, row.length)->ticks(), expected.size()),
                  expected)
            << row.name;
    }
    const auto days = axisIn("UTC", 0, 10 * day, 600);
    EXPECT_EQ(days->ticks()->front().tickTitleOffset, 43200); // in the middle of the day
    EXPECT_EQ(days->labelLines(), 2);
    EXPECT_EQ(timeMarksText(days->copy()->ticks()), timeMarksText(days->ticks()));
}

TEST(TimeTicks, haveStepsForEveryDuration) {
    struct Row {
        double duration; // in 120 pixels
        double step, minorStep;
    };
    const Row rows[] = {
        {0.0012, 0.001, 0.0001},
        {0.0025, 0.002, 0.001},
        {0.004, 0.005, 0.001},
        {0.5, 0.5, 0.1},
        {2, 1, 0},
        {5, 2, 1},
        {10, 5, 1},
        {15, 10, 5},
        {30, 15, 5},
        {60, 30, 10},
        {120, minute, 0},
        {300, 2 * minute, minute},
        {600, 5 * minute, minute},
        {900, 10 * minute, 5 * minute},
        {1800, 15 * minute, 5 * minute},
        {3600, 30 * minute, 10 * minute},
        {7200, hour, 0},
        {3 * hour, 2 * hour, hour},
        {6 * hour, 3 * hour, hour},
        {8 * hour, 6 * hour, hour},
        {12 * hour, 8 * hour, 2 * hour},
        {day, 12 * hour, 3 * hour},
        {2 * day, day, 0},
    };
    for (const Row& row : rows) {
        const double start = -row.duration / 4; // before 1970 begins
        const XAxisTicks ticks = axisIn("UTC", start, start + 10 * row.duration, 1200)->ticks();
        double last = 0, step = 0, minorStep = 0;
        for (const XAxisTick& tick : *ticks) {
            if (tick.level == 1 && last > 0 && minorStep == 0 && step == 0)
                minorStep = tick.value - last;
            if (tick.level == 0 && last > 0 && step == 0)
                step = tick.value - last;
            last = tick.level == 0 ? tick.value : last;
        }
        EXPECT_NEAR(step, row.step, 3e-7) << row.duration;
        EXPECT_NEAR(minorStep, row.minorStep, 3e-7) << row.duration;
    }
}

TEST(TimeTicks, haveTheirFormats) {
    const double date = at("UTC", {2026, 3, 7, 9, 5, 12}) + 0.05;
    struct Row {
        unsigned code;
        int decimals;
        const char* text;
    };
    const Row rows[] = {{1, 0, "2026"},
                        {2, 0, "Mar"},
                        {4, 0, "Sat 07"},
                        {8, 0, "09:05"},
                        {16, 0, "09:05"},
                        {32, 0, "09:05:12"},
                        {64, 0, "12"},
                        {128, 0, "2026"},
                        {256, 0, "Mar"},
                        {384, 0, "Mar 2026"},
                        {512, 0, "07"},
                        {768, 0, "Sat Mar 07"},
                        {896, 0, "Sat Mar 07 2026"},
                        {3, 0, "09:05:12"},
                        {64, 1, "12"},
                        {32, 3, "09:05:12.50"},
                        {8, 2, "09:05"},
                        {64, 2, "12.5"}};
    for (const Row& row : rows)
        EXPECT_EQ(
            XTimeAxisTick::getStringForDate(calendarIn("UTC"), date, row.code, row.decimals).toStdString(),
            row.text)
            << row.code << (row.code == 64 ? " kept: the fraction has no leading zeros" : "");
    EXPECT_EQ(XTimeAxisTick::getStringForDate(calendarIn("UTC"), 4.9999999, 64, 2), u"05"); // never "04.100"
    EXPECT_LT(XTimeAxisTick::getStringForDate(calendarIn("UTC"), 0.3, 64, 300).size(), 20);
}

// Whatever the range, the zone and the length: bounded, strictly ascending lists; and the mapping undone.
TEST(XTimeAxis, holdsItsPropertiesOnRandomRanges) {
    std::mt19937_64 random(4);
    std::uniform_real_distribution<double> mantissa(-10, 10), spans(-7, 12);
    std::uniform_int_distribution<int> exponent(-323, 307), length(1, 5000), ulps(1, 40), shape(0, 5);
    int listed = 0;
    for (int i = 0; i < 4000; ++i) {
        const int s = shape(random);
        const double start =
            s < 2 ? mantissa(random) * std::pow(10, exponent(random)) : mantissa(random) * 4e8;
        double end = s == 1 ? mantissa(random) * std::pow(10, exponent(random)) : start;
        for (int n = s == 0 || s == 2 ? ulps(random) : 0; n > 0; --n)
            end = std::nextafter(end, 1e308);
        if (s > 2)
            end = start + std::pow(10, spans(random));
        const int pixels = i % 40 == 0 ? std::numeric_limits<int>::max() : i % 40 == 1 ? -5 : length(random);
        const auto axis =
            axisIn(zones[i % std::size(zones)], std::min(start, end), std::max(start, end), pixels);
        if (const XAxisTicks ticks = axis->ticks(); ticks && !ticks->empty()) {
            ++listed;
            ASSERT_LE(ticks->size(), 10'000U) << i;
            for (std::size_t k = 1; k < ticks->size(); ++k)
                ASSERT_LT((*ticks)[k - 1].value, (*ticks)[k].value) << i;
        }
        if (const XAxisColorRanges bands = axis->colors()) {
            ASSERT_LE(bands->size(), 10'000U);
        }
        ASSERT_LT(axis->humanReadableValue(start).size(), 60) << i;
        ASSERT_LT(axis->humanReadableIntervalEnd(start, end).size(), 80) << i;
        const double width = axis->maxValue() - axis->minValue();
        const double resolution = std::max(std::abs(axis->minValue()), std::abs(axis->maxValue())) * 1e-14;
        if (pixels > 0 && std::isfinite(width) && width / pixels > std::max(resolution, 1e-300)) {
            ASSERT_NEAR(axis->valueToPixel(axis->pixelToValue(pixels / 3)), pixels / 3, 0.5) << i;
        }
    }
    EXPECT_GT(listed, 1500);
    EXPECT_GT(axisIn("UTC", -1e-300, 1e-300, 600)->ticks()->size(), 5U); // steps far below a second
    for (const double bad : {nan, 1e300, -1e300, 0.0})
        EXPECT_EQ(axisIn("UTC", 0, bad, 300)->ticks(), nullptr);
}

TEST(XTimeAxis, readsValuesAndIntervals) {
    const double date = at("Europe/Berlin", {2026, 7, 9, 14, 5, 9});
    struct ValueRow {
        double in15Pixels;
        const char* text;
    };
    const ValueRow values[] = {{1, "14:05:09\n9 July 2026"}, {61, "14:05\n9 July 2026"},
                               {3601, "14:00\n9 July 2026"}, {day + 1, "9 July 2026"},
                               {31 * day, "July 2026"},      {year + 1, "2026"}};
    for (const ValueRow& row : values)
        EXPECT_EQ(axisIn("Europe/Berlin", date, date + row.in15Pixels * 20, 300)
                      ->humanReadableValue(date)
                      .toStdString(),
                  row.text);

    struct IntervalRow {
        double seconds;
        const char* text;
    };
    const IntervalRow intervals[] = {
        {11 * year, "11 years"},
        {10 * year + 3 * day, "10 years 3 days"},
        {3 * year, "3 years 0 days"},
        {3 * year - day, "1094 days"},
        {8 * day, "8 days"},
        {7 * day + 5 * hour, "7 days 5 hours"},
        {2.5 * day, "2 days 12 hours"},
        {47 * hour, "47 hours 0 minutes"},
        {119 * minute, "119 minutes 0 sec"},
        {125.9, "2 minutes 5 sec"},
        {90, "90 sec"},
        {-1.2345, "1.23 sec"},
        {0.012345, "0.0123 sec"},
        {0, "0 sec"},
        {1e300, "3.17097919837646e+292 years"},
    };
    for (const IntervalRow& row : intervals)
        EXPECT_EQ(axisIn("UTC", 0, 1, 300)->humanReadableIntervalEnd(row.seconds, 0).toStdString(), row.text);
}

struct TypedRow {
    const char* text;
    const char* shown; ///< what the value reads as; null: refused
};

TEST(TypedTime, readsWhatUsersWriteAndWhatAxesShow) {
    const Calendar german = calendarIn("Europe/Berlin", QLocale(QLocale::German, QLocale::Germany));
    const TypedRow rows[] = {
        {"2026-11-21", "2026-11-21"},
        {" 2026-11-21  14:05 ", "2026-11-21 14:05"},
        {"2026-11-21T14:05:30", "2026-11-21 14:05:30"},
        {"2026/1/2 4:05:30,25", "2026-01-02 04:05:30.25"},
        {"2026-11-21 00:00:00.000001", "2026-11-21 00:00:00.000001"},
        {"2026-11", "2026-11-01"},
        {"21.11.2026 14:05", "2026-11-21 14:05"},
        {"14:05:30 21 November 2026", "2026-11-21 14:05:30"},
        {"März 2026", "2026-03-01"},
        {"Dez. 3, 2026", "2026-12-03"},
        {"2026-11-21 14:05Z", "2026-11-21 15:05"},
        {"2026-07-01T00:30:00+05:30", "2026-06-30 21:00"},
        {"0", "1970-01-01 01:00"},
        {"1,5", "1970-01-01 01:00:01.5"},
        {"-1e11", "-1e+11"},                      // before the years of four digits
        {"2026-03-29 02:30", "2026-03-29 03:30"}, // skipped
        {"2026-02-30", nullptr},
        {"2026-11-21 24:05", nullptr},
        {"2026-11-21 14:65", nullptr},
        {"14:05", nullptr},
        {"21 November", nullptr},
        {"yesterday", nullptr},
        {"", nullptr},
        {"inf", nullptr},
    };
    for (const TypedRow& row : rows) {
        const std::optional<double> value = TypedTime::value(QString::fromUtf8(row.text), german);
        const std::string shown = value ? TypedTime::text(*value, german).toStdString() : "refused";
        EXPECT_EQ(shown, row.shown != nullptr ? row.shown : "refused") << row.text;
    }
    const Calendar american = calendarIn("UTC", QLocale(QLocale::English, QLocale::UnitedStates));
    EXPECT_EQ(TypedTime::value(QStringLiteral("11/2/2026"), american),
              TypedTime::value(QStringLiteral("2026-11-02"), american));
    EXPECT_EQ(TypedTime::text(1e300, german), QStringLiteral("1e+300"));
    EXPECT_EQ(TypedTime::text(59.9999999, american), QStringLiteral("1970-01-01 00:01"));
}

TEST(XTimeAxis, bandsTheWeekends) {
    // Thursday to Tuesday, over the end of daylight saving: the Sunday has 25 hours.
    const double min = at("Europe/Berlin", {2026, 10, 22, 12});
    const XAxisColorRanges bands = axisIn("Europe/Berlin", min, min + 5 * day, 600)->colors();
    ASSERT_EQ(bands->size(), 2U); // the one before the range, and the one in it
    EXPECT_EQ(bands->at(0).start, at("Europe/Berlin", {2026, 10, 17}));
    EXPECT_EQ(bands->at(1).start, at("Europe/Berlin", {2026, 10, 24}));
    EXPECT_EQ(bands->at(1).end - bands->at(1).start, 49 * hour);
    EXPECT_EQ(bands->at(1).colorName, u"TickColor_weekend");
    // Two that the range begins in the middle of.
    for (const int dayOfMonth : {24, 25}) {
        const double start = at("UTC", {2026, 10, dayOfMonth, 12});
        const auto list = axisIn("UTC", start, start + day / 4, 600)->colors();
        EXPECT_TRUE(list && list->back().start <= start && list->back().end > start) << dayOfMonth;
    }
    EXPECT_NE(axisIn("UTC", 0, 30 * day, 120)->colors(), nullptr);
    EXPECT_EQ(axisIn("UTC", 0, 30 * day + 1, 120)->colors(), nullptr); // wider than weekends can be seen
    EXPECT_EQ(axisIn("UTC", 5, 5, 120)->colors(), nullptr);
}

} // namespace
