// Counts steps from the start of the walk, so that no mark drifts.
#include "Classes/Axes/XTicksGenerator.h"

#include "Classes/Axes/XTimeAxisTick.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr TimeTickStep secondSteps[] = {{2, 1, 1},   {5, 2, 1},   {10, 5, 1},
                                        {15, 10, 5}, {30, 15, 5}, {anyDuration, 30, 10}};

// Seconds in the units that always have as many; 0 for a step that needs the calendar.
std::int64_t fixedLength(const CalendarComponents& delta) {
    const bool ofCalendar = delta.year != 0 || delta.month != 0 || delta.day != 0;
    return ofCalendar ? 0 : delta.hour * 3600 + delta.minute * 60 + delta.second;
}

} // namespace

XTicksGenerator::XTicksGenerator(const TimeScale& timeScale, const Calendar& userCalendar)
    : scale(timeScale), calendar(userCalendar),
      currentDateComponents(calendar.componentsOf(static_cast<std::int64_t>(std::floor(scale.min)))),
      ticksPrecision(TickPrecision::second) {}

void XTicksGenerator::calculateDeltas() {
    const TimeTickStep& step = chooseStep(secondSteps);
    currentDateComponents.minute = 0;
    currentDateComponents.second = 0;
    tickDeltaComponents.second = step.count;
    secondaryTickDelta = step.secondaryTickDelta;
}

const TimeTickStep& XTicksGenerator::chooseStep(std::span<const TimeTickStep> steps) const {
    const auto found = std::ranges::find_if(
        steps, [this](const TimeTickStep& step) { return scale.tickDuration <= step.upTo; });
    return found == steps.end() ? steps.back() : *found;
}

// Counted from the start, so that a date that the calendar had to move leaves those after it in place.
std::int64_t XTicksGenerator::dateAfterSteps(std::int64_t count) const {
    if (const std::int64_t length = fixedLength(tickDeltaComponents))
        return m_startDate + count * length;
    CalendarComponents date = currentDateComponents;
    date.year += count * tickDeltaComponents.year;
    date.month += count * tickDeltaComponents.month;
    date.day += count * tickDeltaComponents.day;
    return calendar.instantOf(date);
}

std::int64_t XTicksGenerator::firstDate() {
    m_startDate = calendar.instantOf(currentDateComponents);
    const std::int64_t length = fixedLength(tickDeltaComponents);
    const auto min = static_cast<std::int64_t>(std::floor(scale.min));
    if (length > 0 && min > m_startDate)
        m_steps = (min - m_startDate) / length;
    return dateAfterSteps(m_steps);
}

std::int64_t XTicksGenerator::nextDate() {
    // Where a zone crossed the date line a day is missing: its mark falls on the next.
    for (int tries = 0; tries < 3; ++tries)
        if (const std::int64_t date = dateAfterSteps(++m_steps); date > minDate)
            return date;
    return minDate;
}

std::vector<XAxisTick> XTicksGenerator::getTicks() {
    calculateDeltas();
    minDate = firstDate();
    while (static_cast<double>(minDate) < scale.max && !isFull()) {
        if (const auto date = static_cast<double>(minDate); date > scale.min) {
            const CalendarComponents local = calendar.componentsOf(minDate);
            const auto rounded = static_cast<std::int64_t>(date); // differs beyond 2^53 seconds
            addMajorMark(XTimeAxisTick(calendar, date,
                                       rounded == minDate ? local : calendar.componentsOf(rounded),
                                       ticksPrecision, secondaryPrecision(local)));
        }
        const std::int64_t next = nextDate();
        if (next == minDate)
            break;
        addMinorMarks(next);
        minDate = next;
    }
    return takeMarks();
}

// The larger units that differ from those of the mark before; all of them for the first mark.
unsigned XTicksGenerator::secondaryPrecision(const CalendarComponents& local) {
    unsigned code = TickPrecision::none;
    if (ticksPrecision > TickPrecision::year && local.year != m_lastYear) {
        code |= TickPrecision::yearChanged;
        m_lastYear = local.year;
    }
    if (ticksPrecision > 3 && local.month != m_lastMonth) {
        code |= TickPrecision::monthChanged;
        m_lastMonth = local.month;
    }
    if (ticksPrecision > TickPrecision::day && local.day != m_lastDay) {
        code |= TickPrecision::dayChanged;
        m_lastDay = local.day;
    }
    return code;
}

void XTicksGenerator::addMinorMarks(std::int64_t next) {
    if (!(secondaryTickDelta > 0))
        return;
    const auto end = static_cast<double>(next) - secondaryTickDelta / 2;
    for (int i = 1; !isFull(); ++i) {
        const double value = static_cast<double>(minDate) + i * secondaryTickDelta;
        if (!(value < end))
            return;
        if (value > scale.min)
            addMinorMark(value);
    }
}

void XTicksGenerator::addMajorMark(const XAxisTick& mark) {
    if (m_marks.empty() || mark.compare(m_marks.back()) > 0)
        m_marks.push_back(mark);
    else
        m_crowded = true;
}

void XTicksGenerator::addMinorMark(double value) {
    if (m_marks.empty() || value > m_marks.back().value)
        m_marks.push_back({value, {}, {}, 1, 0});
}

std::vector<XAxisTick> XTicksGenerator::takeMarks() {
    if (isFull())
        m_marks.clear();
    return std::move(m_marks);
}
