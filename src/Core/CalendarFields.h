// Timestamps to the fields of the local calendar and back, by the C library: the time zone of the process and
// its daylight-saving rules apply.
#pragma once

#include <cstdint>
#include <ctime>
#include <limits>
#include <optional>

/// A point in local time.
struct CalendarFields {
    std::int64_t year = 1970;
    int month = 1;      ///< 1 to 12
    int dayOfMonth = 1; ///< 1 to 31
    int hour = 0;       ///< 0 to 23
    int minute = 0;     ///< 0 to 59
    double second = 0;  ///< 0 to 60, with the fraction of the timestamp, which is negative before 1970
    int dayOfWeek = 1;  ///< Monday 1 to Sunday 7
    int dayOfYear = 1;  ///< 1 to 366
};

/// The fields of `timestamp`, in seconds since 1970-01-01 00:00:00 UTC, truncated toward zero. Nothing for
/// NaN and for times whose year the C library cannot hold. Any thread; the zone is the one in force at the
/// last `tzset`.
std::optional<CalendarFields> calendarFieldsOf(double timestamp);

/// One of the fields, NaN where there are none: `calendarField<&CalendarFields::hour>`.
template <auto member>
double calendarField(double timestamp) {
    const auto fields = calendarFieldsOf(timestamp);
    return fields ? static_cast<double>((*fields).*member) : std::numeric_limits<double>::quiet_NaN();
}

/// What `timestampOf` takes: fields that need not be in their ranges (month 13 is January of the next year).
struct CalendarDate {
    int year = 1970;
    int month = 1;
    int dayOfMonth = 1;
    int hour = 0;
    int minute = 0;

    bool operator==(const CalendarDate&) const = default;
};

/// The current local time, broken down.
std::tm currentLocalTime();

/// The timestamp of a local date, NaN where the fields leave the C library's range.
/// Kept: whether daylight saving is in force is taken from `now`, not from the date; a date in the other half
/// of the year is one hour off.
double timestampOf(const CalendarDate& date, const std::tm& now);
