// A labelled mark of the calendar.
#pragma once

#include "Classes/Axes/Calendar.h"
#include "Classes/Axes/XAxisTick.h"

/// Which format a label has. The secondary ones name, on a second line, the larger units that changed.
namespace TickPrecision {
inline constexpr unsigned none = 0;
inline constexpr unsigned year = 1;
inline constexpr unsigned month = 2;
inline constexpr unsigned day = 4;
inline constexpr unsigned hour = 8;
inline constexpr unsigned minute = 16;
inline constexpr unsigned second = 32;
inline constexpr unsigned secondOfSeries = 64; ///< the seconds alone
inline constexpr unsigned yearChanged = 128;
inline constexpr unsigned monthChanged = 256;
inline constexpr unsigned dayAlone = 512;
inline constexpr unsigned dayChanged = 768; ///< and the month with it
} // namespace TickPrecision

/// Adds no fields: a list of marks holds it as an XAxisTick.
struct XTimeAxisTick : XAxisTick {
    /// `date`, which is whole, in seconds since 1970 (UTC); `local` is the local time then.
    XTimeAxisTick(const Calendar& calendar, double date, const CalendarComponents& local, unsigned precision,
                  unsigned secondaryPrecision);
    /// With parts of a second: `subsecondPrecision` is the count of decimals of the seconds. Within the
    /// calendar's reach.
    XTimeAxisTick(const Calendar& calendar, double date, unsigned precision, unsigned secondaryPrecision,
                  int subsecondPrecision);

    /// Kept: the fraction has no leading zeros, so 12.05 seconds with two decimals reads "12.5".
    static QString getStringForDate(const Calendar& calendar, double date, unsigned precision,
                                    int subsecondPrecision);
};
