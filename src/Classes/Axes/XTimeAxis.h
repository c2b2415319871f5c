// The time axis.
#pragma once

#include "Classes/Axes/Calendar.h"
#include "Classes/Axes/XAxis.h"

#include <functional>

/// A linear axis whose values are seconds since 1970-01-01 00:00:00 UTC, shown in the user's calendar, time
/// zone and language, which are asked for afresh whenever something is computed. Beyond the calendar's reach
/// there are no marks, and values read as plain seconds.
class XTimeAxis : public XAxis {
  public:
    using CalendarSource = std::function<Calendar()>;

    explicit XTimeAxis(CalendarSource calendar = Calendar::current);

    std::unique_ptr<XAxis> copy() const override;
    XAxisTicks ticks() const override;
    int labelLines() const override; ///< two: larger units that change stand on a second line
    /// The weekends, while 120 pixels cover at most 30 days.
    XAxisColorRanges colors() const override;
    QString humanReadableValue(double value) const override; ///< a date of about 15 pixels' accuracy
    /// A duration in its one or two largest units. A year has 365 days here.
    QString humanReadableIntervalEnd(double start, double end) const override;
    QString typedText(double value) const override; ///< a date with its time of day
    std::optional<double> valueOfTypedText(const QString& text) const override;

  protected:
    XTimeAxis(const XTimeAxis&) = default;

  private:
    bool isWithinCalendar() const;

    CalendarSource m_calendar;
};
