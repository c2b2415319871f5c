// The tables of steps, and the first date of each walk.
#include "Classes/Axes/TicksGenerators.h"

#include "Classes/Axes/XTimeAxisTick.h"
#include "Core/ClampToInt.h"

#include <algorithm>
#include <cmath>
#include <memory>

namespace {

constexpr double secondsPerYear = 365 * secondsPerDay;

constexpr TimeTickStep minuteSteps[] = {{120, 1, 60},   {300, 2, 60},    {600, 5, 60},
                                        {900, 10, 300}, {1800, 15, 300}, {anyDuration, 30, 600}};
constexpr TimeTickStep hourSteps[] = {{7200, 1, 3600},  {10800, 2, 3600}, {21600, 3, 3600},
                                      {28800, 6, 3600}, {43200, 8, 7200}, {anyDuration, 12, 10800}};
constexpr TimeTickStep monthSteps[] = {{5184000, 1, 2592000},
                                       {7776000, 2, 2592000},
                                       {10368000, 3, 2592000},
                                       {15552000, 4, 2592000},
                                       {anyDuration, 6, 2592000}};

constexpr int everyOtherDay[] = {3, 5, 7, 9, 11, 13, 15, 17, 19, 21, 23, 25, 27, 29};
constexpr int everyFifthDay[] = {5, 10, 15, 20, 25};
constexpr int everyTenthDay[] = {10, 20};
constexpr int middleOfMonth[] = {15};

struct FixedDays {
    double upTo;
    std::span<const int> days;
    double secondaryTickDelta;
};
const FixedDays fixedDaySteps[] = {{172800, {}, 0},
                                   {432000, everyOtherDay, secondsPerDay},
                                   {864000, everyFifthDay, secondsPerDay},
                                   {1296000, everyTenthDay, secondsPerDay},
                                   {anyDuration, middleOfMonth, 5 * secondsPerDay}};

void clearTimeOfDay(CalendarComponents& date) {
    date.hour = 0;
    date.minute = 0;
    date.second = 0;
}

std::int64_t roundedDown(std::int64_t year, std::int64_t step) {
    return year - ((year % step) + step) % step;
}

template <class Generator>
std::vector<XAxisTick> marksOf(const TimeScale& scale, const Calendar& calendar) {
    return Generator(scale, calendar).getTicks();
}

// The generator for so long a time in 120 pixels, and by how much its labels stand beside their marks.
struct GeneratorChoice {
    double above;
    std::vector<XAxisTick> (*marks)(const TimeScale&, const Calendar&);
    double tickTitleOffset;
};
constexpr GeneratorChoice choices[] = {{secondsPerYear, marksOf<XYearTicksGenerator>, 15439500},
                                       {30 * secondsPerDay, marksOf<XMonthTicksGenerator>, 1269000},
                                       {secondsPerDay, marksOf<XDayTicksGenerator>, 43200},
                                       {3600, marksOf<XHourTicksGenerator>, 0},
                                       {60, marksOf<XMinuteTicksGenerator>, 0}};

std::vector<XAxisTick> marksFor(const TimeScale& scale, const Calendar& calendar) {
    if (!(scale.max - scale.min <= maxTimeScale * scale.tickDuration))
        return {};
    for (const GeneratorChoice& choice : choices) {
        if (scale.tickDuration > choice.above) {
            std::vector<XAxisTick> marks = choice.marks(scale, calendar);
            for (XAxisTick& mark : marks)
                mark.tickTitleOffset = choice.tickTitleOffset;
            return marks;
        }
    }
    return scale.tickDuration >= 1 ? marksOf<XTicksGenerator>(scale, calendar)
                                   : marksOf<XMillisecondTicksGenerator>(scale, calendar);
}

} // namespace

XAxisTicks makeTimeTicks(const TimeScale& scale, const Calendar& calendar) {
    return std::make_shared<const std::vector<XAxisTick>>(marksFor(scale, calendar));
}

void XMinuteTicksGenerator::calculateDeltas() {
    const TimeTickStep& step = chooseStep(minuteSteps);
    ticksPrecision = TickPrecision::minute;
    currentDateComponents.minute = 0;
    currentDateComponents.second = 0;
    tickDeltaComponents.minute = step.count;
    secondaryTickDelta = step.secondaryTickDelta;
}

void XHourTicksGenerator::calculateDeltas() {
    const TimeTickStep& step = chooseStep(hourSteps);
    ticksPrecision = TickPrecision::hour;
    clearTimeOfDay(currentDateComponents);
    tickDeltaComponents.hour = step.count;
    secondaryTickDelta = step.secondaryTickDelta;
}

void XDayTicksGenerator::calculateDeltas() {
    const auto* const step = std::ranges::find_if(
        fixedDaySteps, [this](const FixedDays& row) { return scale.tickDuration <= row.upTo; });
    ticksPrecision = TickPrecision::day;
    clearTimeOfDay(currentDateComponents);
    currentDateComponents.day = 1;
    fixedDays = step->days;
    secondaryTickDelta = step->secondaryTickDelta;
    (fixedDays.empty() ? tickDeltaComponents.day : tickDeltaComponents.month) = 1;
}

std::int64_t XDayTicksGenerator::nextDate() {
    if (fixedDays.empty())
        return XTicksGenerator::nextDate();
    CalendarComponents date = currentDateComponents;
    date.month += m_months;
    const bool february = (date.month - 1) % 12 == 1;
    while (m_nextFixedDay < fixedDays.size()) {
        date.day = fixedDays[m_nextFixedDay++];
        if (!february || date.day != 29)
            return calendar.instantOf(date);
    }
    m_nextFixedDay = 0;
    ++m_months;
    date.month += tickDeltaComponents.month;
    date.day = 1;
    return calendar.instantOf(date);
}

void XMonthTicksGenerator::calculateDeltas() {
    const TimeTickStep& step = chooseStep(monthSteps);
    ticksPrecision = TickPrecision::month;
    clearTimeOfDay(currentDateComponents);
    currentDateComponents.day = 1;
    currentDateComponents.month = 1;
    tickDeltaComponents.month = step.count;
    secondaryTickDelta = step.secondaryTickDelta;
}

void XYearTicksGenerator::calculateDeltas() {
    ticksPrecision = TickPrecision::year;
    clearTimeOfDay(currentDateComponents);
    currentDateComponents.day = 1;
    currentDateComponents.month = 1;
    // The calendar's reach keeps this far within 64 bits.
    const double power = std::trunc(std::log10(scale.tickDuration / secondsPerYear));
    auto years = static_cast<std::int64_t>(std::pow(10, std::clamp(power, 0.0, 15.0)));
    const auto count = static_cast<double>(years);
    const double pixelsPerSecond = 120 / scale.tickDuration;
    double minorYears = years < 10 ? 0.25 : count / 10;
    std::int64_t start = years;
    if (std::trunc(count * secondsPerYear * pixelsPerSecond) < 60) {
        minorYears = count;
        start = 10 * years;
        years *= 5;
    }
    currentDateComponents.year = roundedDown(currentDateComponents.year, start);
    tickDeltaComponents.year = years;
    secondaryTickDelta = minorYears * secondsPerYear;
}

std::vector<XAxisTick> XMillisecondTicksGenerator::getTicks() {
    int exponent = clampToInt(std::round(std::log10(scale.tickDuration)));
    double step = std::pow(10, exponent);
    const double count = std::trunc(scale.tickDuration / step);
    int subdivisions = 5;
    if (count >= 5) {
        step *= 5;
    } else if (count >= 2) {
        step *= 2;
        subdivisions = 2;
    } else if (count >= 1) {
        subdivisions = 10;
    } else {
        step /= 2;
        --exponent;
    }
    // A step that is lost in the rounding of its sum leads nowhere.
    if (!(scale.min + step > scale.min) || !(scale.max - step < scale.max))
        return {};
    // Near 1970 steps may be so small that their count from a whole second is no exact number.
    const double base = std::abs(scale.min) < 1 ? 0 : std::floor(scale.min);
    const double first = std::round((scale.min - base) / step);
    unsigned secondary = TickPrecision::yearChanged | TickPrecision::dayChanged;
    ticksPrecision = TickPrecision::second;
    subsecondPrecision = -exponent;
    for (int i = 0; !isFull(); ++i) {
        const double value = base + (first + i) * step;
        if (!(value <= scale.max))
            break;
        addMajorMark(XTimeAxisTick(calendar, value, ticksPrecision, secondary, subsecondPrecision));
        if (value > scale.min)
            ticksPrecision = TickPrecision::secondOfSeries;
        for (int k = 1; k < subdivisions; ++k)
            addMinorMark(value + k * (step / subdivisions));
        if (value > scale.min)
            secondary = TickPrecision::none;
    }
    return takeMarks();
}
