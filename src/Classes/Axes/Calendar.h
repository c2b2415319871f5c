// A calendar, time zone and language together: instants to local fields, back, and to text.
#pragma once

#include "Core/CivilDate.h"

#include <QLocale>
#include <QString>

#include <cstdint>
#include <functional>

constexpr std::int64_t secondsPerDay = 86400;

/// Local date and time, or a calendar step of so many of each unit.
struct CalendarComponents {
    std::int64_t year = 0;
    std::int64_t month = 0;
    std::int64_t day = 0;
    std::int64_t hour = 0;
    std::int64_t minute = 0;
    std::int64_t second = 0;
};

/// Gregorian at all times. Instants are seconds since 1970-01-01 00:00:00 UTC, up to `limit` either way. A
/// value: it keeps the zone and the language that it was made with.
class Calendar {
  public:
    /// Seconds that the local time is ahead of UTC at an instant of the years 1 to 2500, daylight saving
    /// included. Asked for instants beyond, it is asked for one of the same date 400 years nearer, or more.
    using UtcOffset = std::function<std::int64_t(std::int64_t instant)>;

    Calendar(UtcOffset utcOffset, const QLocale& locale);
    /// The user's, as they are now.
    static Calendar current();

    const QLocale& locale() const { return m_locale; }

    static constexpr std::int64_t limit = 3'000'000'000'000'000'000; // some 95 thousand million years
    /// Whether the calendar reaches that far; false for NaN.
    static bool reaches(double seconds);

    CalendarComponents componentsOf(std::int64_t instant) const;
    /// Fields need not be in their ranges. A local time that daylight saving skips is as much later as the
    /// clock was put forward; of one that comes twice, the first. Clamped to `limit`.
    std::int64_t instantOf(const CalendarComponents& local) const;
    /// The same, asking the zone once where `guess` has that local time: the instant of a local time a few
    /// days before, and as many days of 24 hours.
    std::int64_t instantOf(const CalendarComponents& local, std::int64_t guess) const;
    /// Sunday 1 to Saturday 7.
    int weekdayOf(const CalendarComponents& local) const;

    /// By a pattern of yyyy (at least four digits), MMM and MMMM (short and long name), EEE (short name),
    /// d, dd, HH, mm, ss; every other character stands for itself.
    QString text(const CalendarComponents& local, const QString& pattern) const;

  private:
    std::int64_t offsetAt(std::int64_t instant) const;
    QString field(QChar letter, qsizetype width, const CalendarComponents& local) const;

    UtcOffset m_utcOffset;
    QLocale m_locale;
};
