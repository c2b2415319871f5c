// The steps of a time axis other than seconds: parts of a second, minutes, hours, days, months, years.
#pragma once

#include "Classes/Axes/XTicksGenerator.h"

class XMinuteTicksGenerator : public XTicksGenerator {
  public:
    using XTicksGenerator::XTicksGenerator;

  protected:
    void calculateDeltas() override; ///< from the full hour
};

class XHourTicksGenerator : public XTicksGenerator {
  public:
    using XTicksGenerator::XTicksGenerator;

  protected:
    /// From midnight. A step is so many hours long: after a change of daylight saving, marks stand an hour
    /// beside those of other days.
    void calculateDeltas() override;
};

/// Every day, or the first and some fixed days of each month.
class XDayTicksGenerator : public XTicksGenerator {
  public:
    using XTicksGenerator::XTicksGenerator;

  protected:
    void calculateDeltas() override; ///< from the first of the month
    /// Kept: of the fixed days, 29 February has no mark in leap years either.
    std::int64_t nextDate() override;

    std::span<const int> fixedDays; ///< of the month; none: every day

  private:
    std::size_t m_nextFixedDay = 0;
    std::int64_t m_months = 0; ///< from the start
};

class XMonthTicksGenerator : public XTicksGenerator {
  public:
    using XTicksGenerator::XTicksGenerator;

  protected:
    void calculateDeltas() override; ///< from 1 January
};

/// Powers of ten of years, or five times as many.
class XYearTicksGenerator : public XTicksGenerator {
  public:
    using XTicksGenerator::XTicksGenerator;

  protected:
    void calculateDeltas() override;
};

/// 1, 2 or 5 times a power of ten of a second, for up to a second in 120 pixels. The marks up to the first
/// one above `min` have the full date; the others the second and its fraction.
class XMillisecondTicksGenerator : public XTicksGenerator {
  public:
    using XTicksGenerator::XTicksGenerator;

    std::vector<XAxisTick> getTicks() override;
};
