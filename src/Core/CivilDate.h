// Dates of the Gregorian calendar, extended without end in both directions.
#pragma once

#include <cstdint>

/// Years are counted astronomically: the year before 1 is 0.
struct CivilDate {
    std::int64_t year = 1970;
    int month = 1; ///< 1 to 12
    int day = 1;   ///< 1 to 31

    bool operator==(const CivilDate&) const = default;
};

/// A period after which the calendar repeats, weekdays included.
constexpr std::int64_t daysPer400Years = 146097;

/// Days since 1970-01-01. `month` need not be in its range (13 is January of the next year), nor `day` (0 is
/// the last day of the month before). |year| up to 10^12.
std::int64_t daysFromCivil(std::int64_t year, std::int64_t month, std::int64_t day);
/// The inverse; |days| up to 10^14.
CivilDate civilFromDays(std::int64_t days);
/// Sunday 1 to Saturday 7.
int weekdayOf(std::int64_t days);
