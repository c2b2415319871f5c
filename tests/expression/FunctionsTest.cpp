// The functions of expressions, each over a few rows, and the time zone's rules.
#include "expression/Evaluation.h"

#include "Core/CalendarFields.h"
#include "Core/SignalFilters.h"
#include "support/Numbers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <list>
#include <random>

namespace {

using support::inf;
using support::nan;

auto same(const Values& expected) {
    return testing::Pointwise(testing::NanSensitiveDoubleEq(), expected);
}

/// The process's time zone for a scope.
class TimeZone {
  public:
    explicit TimeZone(const char* name) : m_previous(getenv("TZ") ? getenv("TZ") : "UTC") { set(name); }
    ~TimeZone() { set(m_previous.c_str()); }

  private:
    static void set(const char* name) {
        setenv("TZ", name, 1); // NOLINT(concurrency-mt-unsafe): no evaluation is running
        tzset();
    }
    std::string m_previous;
};

struct Row {
    const char* name;
    const char* expression;
    Values c1;
    Values expected;
};

void check(const std::vector<Row>& rows) {
    for (const Row& row : rows) {
        const auto outcome = evaluated(QString::fromLatin1(row.expression), tableOf({row.c1}));
        EXPECT_THAT(valuesOf(outcome), same(row.expected)) << row.name << ": " << row.expression;
        EXPECT_TRUE(outcome.failures.empty()) << row.name << ": " << outcome.failures.front();
    }
}

TEST(SignalFunctions, OverAFewRows) {
    check({
        {"a gap takes a place", "mean(c1,3)", {1, 2, nan, 4, 5}, {1, 1.5, 1.5, 3, 4.5}},
        {"only gaps", "mean(c1,2)", {nan, inf, 3, nan, -inf}, {nan, nan, 3, 3, nan}},
        {"the first size holds", "mean(c1,2+row)", {2, 4, 6, 8}, {2, 3, 5, 7}},
        {"the greatest size", "mean(c1,100000)", {1, 3}, {1, 2}},
        {"each occurrence has its own state", "mean(c1,1)-mean(c1,3)", {1, 2, 6}, {0, 0.5, 3}},
        {"twice the same call", "delta(c1)+delta(c1)", {1, 4, 9}, {nan, 6, 10}},
        {"nested", "delta(integrate(c1))", {1, 2, 3}, {nan, 2, 3}},
        {"a gap does not break the chain", "delta(c1)", {1, nan, 4, inf, 6}, {nan, nan, 3, nan, 2}},
        {"starts late", "delta(c1)", {nan, nan, 4, 5}, {nan, nan, nan, 1}},
        {"gaps repeat the sum", "integrate(c1)", {nan, 1, nan, 2, inf}, {0, 1, 1, 3, 3}},
        {"smoothing", "lowpass(c1,0.5)", {2, 4, 4}, {2, 3, 3.5}},
        {"a gap repeats the output", "lowpass(c1,0.5)", {nan, 2, nan, 4}, {nan, 2, 2, 3}},
        {"weights out of range", "lowpass(c1,1)", {2, 4, 4}, {nan, nan, nan}},
        {"a bad weight leaves the state", "lowpass(c1, row==1 ? -1 : 0.5)", {2, 100, 4}, {2, nan, 3}},
        {"differences decay", "highpass(c1,0.5)", {2, 4, 4}, {0, 1, 0.5}},
        {"a gap repeats the output", "highpass(c1,0.5)", {nan, 2, 4, nan, 6}, {0, 0, 1, 1, 1.5}},
        {"weight not a number", "highpass(c1,nan)", {2, 4}, {nan, nan}},
        {"the newest value meets b1", "fir(c1,1,0,0)", {1, 2, 3, 4, 5}, {nan, nan, nan, 4, 5}},
        {"kept: b2 meets the oldest value", "fir(c1,0,1,0)", {1, 2, 3, 4, 5}, {nan, nan, nan, 2, 3}},
        {"older gaps add nothing, a new one is one",
         "fir(c1,1,1,1)",
         {1, nan, 3, 4, nan, 6},
         {nan, nan, nan, 7, nan, 10}},
        {"coefficients of each row", "fir(c1,row)", {5, 6, 7}, {nan, 6, 14}},
        {"kept: without coefficients", "fir(c1)+1", {1, 2}, {nan, nan}},
        {"sign of the first", "mod(c1,3)", {-7, 7, nan, inf}, {-1, 1, nan, nan}},
        {"divisor 0", "mod(c1,0)", {1}, {nan}},
    });
}

TEST(SignalFunctions, Percentiles) {
    check({
        {"median", "percentile(c1,50,4)", {5, 1, 3, 2}, {5, 3, 3, 2.5}},
        {"greatest of the last finite ones",
         "percentile(c1,100,3)",
         {5, nan, 1, 3, inf, 2},
         {5, 5, 5, 5, 5, 3}},
        {"interpolated", "percentile(c1,25,5)", {1, 2, 3, 4, 5}, {1, 1.25, 1.5, 1.75, 2}},
        {"p is truncated", "percentile(c1,50.9,3)", {1, 2, 9}, {1, 1.5, 2}},
        {"the window shrinks", "percentile(c1,100,row<2?3:1)", {9, 5, 1}, {9, 9, 1}},
        {"kept: size 0 empties the window", "percentile(c1,50,row==1?0:3)", {1, 2, 3}, {1, nan, 3}},
        {"size 0 without a finite value", "percentile(c1,50,row==1?0.5:3)", {1, nan, 3}, {1, 1, 2}},
        {"kept: a negative size keeps all", "percentile(c1,0,-1)", {1, 2, 3, 4}, {1, 1, 1, 1}},
        {"size not a number keeps all", "percentile(c1,0,nan)", {1, 2, 3}, {1, 1, 1}},
        {"huge sizes", "percentile(c1,50,1e300)+percentile(c1,50,1/0)", {1, 3}, {2, 4}},
        {"below 0", "percentile(c1,-50,3)", {5, 1, 3, 2}, {5, 1, 1, 1}},
        {"above 100", "percentile(c1,1e300,3)", {5, 1, 3, 2}, {5, 5, 5, 3}},
        {"just above 100", "percentile(c1,101,3)+percentile(c1,-1,3)", {5, 1, 3, 2}, {10, 6, 6, 4}},
        {"p not a number", "percentile(c1,nan,3)", {1, 2}, {nan, nan}},
    });
}

/// The window in its plainest form.
struct PlainPercentileWindow {
    std::list<double> arrivals;
    std::list<double> sorted;

    void push(double x, std::size_t size) {
        arrivals.push_back(x);
        sorted.insert(std::lower_bound(sorted.begin(), sorted.end(), x), x);
        while (arrivals.size() > size) {
            sorted.erase(std::lower_bound(sorted.begin(), sorted.end(), arrivals.front()));
            arrivals.pop_front();
        }
    }
};

TEST(SignalFunctions, PercentilesOfLongWindowsAgreeWithASortedList) {
    std::mt19937 random(7); // NOLINT: the same every time
    MovingPercentile filter;
    PlainPercentileWindow plain;
    for (int i = 0; i < 12'000; ++i) {
        const double x = static_cast<double>(random() % 500) - 250; // many equal values
        const std::size_t size = i < 6000 ? 5000 : 40;
        plain.push(x, size);
        const double median = filter.push(x, 50, static_cast<double>(size));
        const auto middle =
            std::next(plain.sorted.begin(), static_cast<std::ptrdiff_t>((plain.sorted.size() - 1) / 2));
        ASSERT_EQ(median, plain.sorted.size() % 2 == 1 ? *middle : (*middle + *std::next(middle)) / 2) << i;
        ASSERT_EQ(filter.push(nan, 100, 3), plain.sorted.back()) << i;
    }
}

TEST(TimeFunctions, InUniversalTime) {
    const TimeZone zone("UTC");
    check({
        {"epoch",
         "year(c1)*1e6+month(c1)*1e4+dayofmonth(c1)*100+dayofweek(c1)",
         {0, 946684799, 946684800},
         {1970010104, 1999123105, 2000010106}},
        {"hours", "hour(c1)*100+minute(c1)", {0, -1, 45296, -0.5}, {0, 2359, 1234, 0}},
        {"the fraction stays", "second(c1)", {59.75, -0.5, -1, 61}, {59.75, -0.5, 59, 1}},
        {"Sunday is 7", "dayofweek(c1)", {259200, 259199}, {7, 6}},
        {"day of the year", "dayofyear(c1)", {0, 978220800}, {1, 366}},
        {"not a time", "year(c1)", {nan, inf, -inf, 1e18, -1e300}, {nan, nan, nan, nan, nan}},
        {"before year 1", "year(c1)", {-62198755200}, {-1}},
        {"from fields", "mktimestamp(2000,1,1,0,0,c1)", {0.5, -1}, {946684800.5, 946684799}},
        {"one minute, then another",
         "mktimestamp(1970,1,1,0,c1,1)",
         {1, 1, 2, nan, 1},
         {61, 61, 121, nan, 61}},
        {"fields are normalised", "mktimestamp(1999,13,c1,24,60,0)", {1, 0}, {946774800, 946688400}},
        {"gaps stay gaps", "mktimestamp(c1,1,1,0,0,0)", {nan, 1970, nan}, {nan, 0, nan}},
        {"beyond the calendar", "mktimestamp(c1,1,1,0,0,0)", {1e18, -2147483648.0}, {nan, nan}},
        {"there and back",
         "mktimestamp(year(c1),month(c1),dayofmonth(c1),hour(c1),minute(c1),second(c1))-c1",
         {0, 1e9, 1700000000.25, -1e9},
         {0, 0, 0, 0}},
    });
}

TEST(TimeFunctions, DaylightSaving) {
    const TimeZone zone("Europe/Berlin");
    check({
        // 2023-03-26 01:00 UTC: 02:00 becomes 03:00; 2023-10-29 01:00 UTC: 03:00 becomes 02:00.
        {"gap and fold",
         "hour(c1)*100+minute(c1)",
         {1679792399, 1679792400, 1698537600, 1698541200},
         {159, 300, 200, 200}},
        {"midnight is local", "dayofmonth(c1)*10+dayofweek(c1)", {1672527600, 1672527599}, {17, 316}},
    });

    const CalendarDate winter{.year = 2023, .month = 1, .dayOfMonth = 1};
    const CalendarDate summer{.year = 2023, .month = 7, .dayOfMonth = 1};
    std::tm now{};
    now.tm_isdst = 0;
    EXPECT_EQ(timestampOf(winter, now), 1672527600);
    EXPECT_EQ(timestampOf(summer, now), 1688166000) << "kept: the flag of now, one hour off";
    now.tm_isdst = 1;
    EXPECT_EQ(timestampOf(winter, now), 1672524000) << "kept: the flag of now, one hour off";
    EXPECT_EQ(timestampOf(summer, now), 1688162400);
}

TEST(TimeFunctions, TheClockStartsWithTheEvaluation) {
    const auto seconds =
        valuesOf(evaluated(u"time()"_qs, tableOf({many(1000, [](double row) { return row; })})));
    ASSERT_EQ(seconds.size(), 1000U);
    EXPECT_TRUE(std::is_sorted(seconds.begin(), seconds.end()));
    EXPECT_GE(seconds.front(), 0);
    EXPECT_LT(seconds.back(), 60);
}

} // namespace
