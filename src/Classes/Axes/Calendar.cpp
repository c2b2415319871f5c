// Asks the C library for the distance to UTC, and does the rest in whole seconds and days.
#include "Classes/Axes/Calendar.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <utility>

namespace {

constexpr std::int64_t secondsPer400Years = daysPer400Years * secondsPerDay;
// No zone is further from UTC, whichever side of the date line it is on.
constexpr std::int64_t farthestOffset = 26LL * 3600;
constexpr std::int64_t yearOne = -62135596800;
constexpr std::int64_t year2500 = 16725225600;
constexpr std::int64_t farthestYear = 95'100'000'000; // a little beyond the limit

std::int64_t floorDiv(std::int64_t a, std::int64_t b) {
    return a / b - (a % b < 0 ? 1 : 0);
}

std::int64_t daysOf(const CalendarComponents& local) {
    return daysFromCivil(std::clamp(local.year, -farthestYear, farthestYear), local.month, local.day);
}

/// As if the local time were UTC's.
std::int64_t secondsOf(const CalendarComponents& local) {
    return daysOf(local) * secondsPerDay + local.hour * 3600 + local.minute * 60 + local.second;
}

std::int64_t systemUtcOffset(std::int64_t instant) {
    const std::time_t time = instant;
    std::tm local{};
    return localtime_r(&time, &local) ? local.tm_gmtoff : 0;
}

} // namespace

Calendar::Calendar(UtcOffset utcOffset, const QLocale& locale)
    : m_utcOffset(std::move(utcOffset)), m_locale(locale) {}

Calendar Calendar::current() {
    tzset();
    return {systemUtcOffset, QLocale()};
}

bool Calendar::reaches(double seconds) {
    return std::abs(seconds) <= static_cast<double>(limit);
}

// Zones know the years that people know: before them they stand still, after them they repeat.
std::int64_t Calendar::offsetAt(std::int64_t instant) const {
    if (instant >= year2500)
        instant -= ((instant - year2500) / secondsPer400Years + 1) * secondsPer400Years;
    return m_utcOffset(std::max(instant, yearOne));
}

CalendarComponents Calendar::componentsOf(std::int64_t instant) const {
    const std::int64_t local = std::clamp(instant, -limit, limit) + offsetAt(instant);
    const std::int64_t days = floorDiv(local, secondsPerDay);
    const std::int64_t second = local - days * secondsPerDay;
    const CivilDate date = civilFromDays(days);
    return {date.year, date.month, date.day, second / 3600, second / 60 % 60, second % 60};
}

// The zone is asked as rarely as can be: beyond its table, after 2037, an answer takes half a microsecond.

std::int64_t Calendar::instantOf(const CalendarComponents& local) const {
    const std::int64_t time = secondsOf(local);
    const std::int64_t before = offsetAt(time - farthestOffset);
    if (offsetAt(time - before) == before)
        return std::clamp(time - before, -limit, limit);
    const std::int64_t after = offsetAt(time + farthestOffset);
    return std::clamp(time - (offsetAt(time - after) == after ? after : before), -limit, limit);
}

std::int64_t Calendar::instantOf(const CalendarComponents& local, std::int64_t guess) const {
    return guess + offsetAt(guess) == secondsOf(local) ? std::clamp(guess, -limit, limit) : instantOf(local);
}

int Calendar::weekdayOf(const CalendarComponents& local) const {
    return ::weekdayOf(daysOf(local));
}

QString Calendar::field(QChar letter, qsizetype width, const CalendarComponents& local) const {
    const auto month = static_cast<int>(local.month);
    if (letter == u'E')
        return m_locale.dayName((weekdayOf(local) + 5) % 7 + 1, QLocale::ShortFormat);
    if (letter == u'M')
        return m_locale.monthName(month, width > 3 ? QLocale::LongFormat : QLocale::ShortFormat);
    std::int64_t number = local.second;
    switch (letter.unicode()) {
    case u'y':
        number = local.year;
        break;
    case u'd':
        number = local.day;
        break;
    case u'H':
        number = local.hour;
        break;
    case u'm':
        number = local.minute;
        break;
    default:
        break;
    }
    const QString digits = QString::number(std::abs(number)).rightJustified(width, u'0');
    return number < 0 ? u'-' + digits : digits;
}

QString Calendar::text(const CalendarComponents& local, const QString& pattern) const {
    QString text;
    for (qsizetype i = 0; i < pattern.size();) {
        const QChar letter = pattern[i];
        qsizetype width = 1;
        while (i + width < pattern.size() && pattern[i + width] == letter)
            ++width;
        if (QStringLiteral("yMEdHms").contains(letter))
            text += field(letter, width, local);
        else
            text += QString(width, letter);
        i += width;
    }
    return text;
}
