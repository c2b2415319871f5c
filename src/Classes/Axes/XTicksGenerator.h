// Where a time axis has its marks: the common walk from one calendar date to the next.
#pragma once

#include "Classes/Axes/Calendar.h"
#include "Classes/Axes/XAxisTick.h"

#include <cstddef>
#include <limits>
#include <optional>
#include <span>
#include <vector>

/// The range that wants marks, in seconds since 1970 (UTC) within the calendar's reach.
struct TimeScale {
    double min = 0;
    double max = 0;          ///< above `min`
    double tickDuration = 0; ///< seconds that 120 pixels cover; positive
};

/// A step between major marks, for as long as 120 pixels cover at most `upTo` seconds.
struct TimeTickStep {
    double upTo; ///< `anyDuration` in the last
    int count;   ///< of the generator's unit
    double secondaryTickDelta;
};

constexpr double anyDuration = std::numeric_limits<double>::infinity();

/// Makes one list of marks. This one steps by seconds; subclasses bring other steps.
class XTicksGenerator {
  public:
    XTicksGenerator(const TimeScale& scale, const Calendar& calendar);
    virtual ~XTicksGenerator() = default;
    XTicksGenerator(const XTicksGenerator&) = delete;
    XTicksGenerator& operator=(const XTicksGenerator&) = delete;

    /// Strictly ascending; empty rather than longer than `maxMarks`. To be asked once.
    /// Kept: a mark exactly on `min` is left out.
    virtual std::vector<XAxisTick> getTicks();

    static constexpr std::size_t maxMarks = 10000;

  protected:
    /// Sets the fields below, and makes `currentDateComponents` the date to start from, at or before `min`.
    virtual void calculateDeltas();
    /// The major mark after `minDate`; `minDate` itself when there is none.
    virtual std::int64_t nextDate();

    const TimeTickStep& chooseStep(std::span<const TimeTickStep> steps) const;
    void addMinorMark(double value); ///< where there is room for it
    /// A mark that is not above the last shows that values lie further apart than marks: no list then.
    void addMajorMark(const XAxisTick& mark);
    bool isFull() const { return m_crowded || m_marks.size() > maxMarks; }
    std::vector<XAxisTick> takeMarks(); ///< none if there are too many

    TimeScale scale;
    const Calendar& calendar;
    std::int64_t minDate = 0; ///< the mark that the walk has reached
    CalendarComponents currentDateComponents;
    CalendarComponents tickDeltaComponents;
    double secondaryTickDelta = 0; ///< seconds between minor marks; 0: none
    unsigned ticksPrecision;
    int subsecondPrecision = 0; ///< decimals of the seconds of the labels

  private:
    std::int64_t dateAfterSteps(std::int64_t count) const;
    std::int64_t firstDate();
    unsigned secondaryPrecision(const CalendarComponents& local);
    void addMinorMarks(std::int64_t next);

    std::vector<XAxisTick> m_marks;
    bool m_crowded = false;
    std::int64_t m_steps = 0; ///< from the start to `minDate`
    std::int64_t m_startDate = 0;
    // Of the last mark with a label.
    std::optional<std::int64_t> m_lastYear;
    std::optional<std::int64_t> m_lastMonth;
    std::optional<std::int64_t> m_lastDay;
};

/// The longest axis that has marks, in `tickDuration`s.
constexpr double maxTimeScale = 10000;

/// The marks of the generator that suits the scale: seconds, minutes, hours, days, months, years, or parts of
/// a second. Labels of days, months and years stand in the middle of the period that the mark begins.
XAxisTicks makeTimeTicks(const TimeScale& scale, const Calendar& calendar);
