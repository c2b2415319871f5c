// Instants as users type them: dates with times of day, or plain seconds.
#pragma once

#include <QString>

#include <optional>

class Calendar;

namespace TypedTime {

/// "2026-11-21 14:05:30.25" in the calendar's zone, without what is zero at its end: "2026-11-21 14:05",
/// "2026-11-21". To the microsecond. Plain seconds where the year would not have four digits.
QString text(double seconds, const Calendar& calendar);

/// Seconds since 1970-01-01 00:00:00 UTC. Takes the form above, the forms in which axes write dates ("21
/// November 2026", "Nov 2026", the time of day in front or behind), day and month before the year in the
/// order of `locale`, and a "Z" or an offset behind the time for another zone than the calendar's. A number
/// alone is seconds, a month alone its first day. Nothing for anything else.
std::optional<double> value(const QString& text, const Calendar& calendar);

} // namespace TypedTime
