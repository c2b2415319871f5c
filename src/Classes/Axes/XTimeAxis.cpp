// Marks from the calendar, bands of weekends, and values as dates.
#include "Classes/Axes/XTimeAxis.h"

#include "Classes/Axes/TypedTime.h"
#include "Classes/Axes/XTicksGenerator.h"
#include "Core/ClampToInt.h"
#include "Core/NumberText.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

namespace {

constexpr double minute = 60;
constexpr double hour = 3600;
constexpr double day = secondsPerDay;
constexpr double month = 30 * day;
constexpr double year = 365 * day;
constexpr std::size_t maxBands = XTicksGenerator::maxMarks;

// The date format for so many seconds in 15 pixels.
QString valuePattern(double seconds) {
    if (seconds > year)
        return QStringLiteral("yyyy");
    if (seconds > month)
        return QStringLiteral("MMMM yyyy");
    if (seconds > day)
        return QStringLiteral("d MMMM yyyy");
    if (seconds > hour)
        return QStringLiteral("HH:00\nd MMMM yyyy");
    if (seconds > minute)
        return QStringLiteral("HH:mm\nd MMMM yyyy");
    return QStringLiteral("HH:mm:ss\nd MMMM yyyy");
}

QString secondsText(double seconds) {
    const int precision = seconds > 0 ? clampToInt(std::round(std::log10(seconds)) - 2) : 0;
    return QString::fromStdString(stringFromDoubleWithPrecision(seconds, precision)) + QStringLiteral(" sec");
}

} // namespace

XTimeAxis::XTimeAxis(CalendarSource calendar) : m_calendar(std::move(calendar)) {}

std::unique_ptr<XAxis> XTimeAxis::copy() const {
    return std::unique_ptr<XAxis>(new XTimeAxis(*this));
}

int XTimeAxis::labelLines() const {
    return 2;
}

bool XTimeAxis::isWithinCalendar() const {
    return Calendar::reaches(minValue()) && Calendar::reaches(maxValue()) && maxValue() > minValue() &&
           pixelLength() > 0;
}

XAxisTicks XTimeAxis::ticks() const {
    if (XAxisTicks cached = cachedTicks())
        return cached;
    const double tickDuration = pixelLengthToValue(120);
    if (!isWithinCalendar() || !(tickDuration > 0))
        return nullptr;
    XAxisTicks marks = makeTimeTicks({minValue(), maxValue(), tickDuration}, m_calendar());
    cacheTicks(marks);
    return marks;
}

XAxisColorRanges XTimeAxis::colors() const {
    if (XAxisColorRanges cached = XAxis::colors())
        return cached;
    if (!isWithinCalendar() || !(pixelLengthToValue(120) <= month))
        return nullptr;
    const Calendar calendar = m_calendar();
    CalendarComponents saturday = calendar.componentsOf(static_cast<std::int64_t>(std::floor(minValue())));
    saturday = {saturday.year, saturday.month, saturday.day - calendar.weekdayOf(saturday), 0, 0, 0};
    std::vector<XAxisColorRange> weekends;
    std::int64_t start = calendar.instantOf(saturday);
    while (weekends.size() < maxBands && static_cast<double>(start) < maxValue()) {
        CalendarComponents monday = saturday;
        monday.day += 2;
        const std::int64_t end = calendar.instantOf(monday, start + 2 * secondsPerDay);
        weekends.push_back(
            {static_cast<double>(start), static_cast<double>(end), QStringLiteral("TickColor_weekend")});
        saturday.day += 7;
        start = calendar.instantOf(saturday, end + 5 * secondsPerDay);
    }
    auto bands = std::make_shared<const std::vector<XAxisColorRange>>(std::move(weekends));
    cacheColors(bands);
    return bands;
}

QString XTimeAxis::humanReadableValue(double value) const {
    if (!Calendar::reaches(value))
        return QString::asprintf("%g", value);
    const Calendar calendar = m_calendar();
    return calendar.text(calendar.componentsOf(static_cast<std::int64_t>(std::floor(value))),
                         valuePattern(pixelLengthToValue(15)));
}

QString XTimeAxis::humanReadableIntervalEnd(double start, double end) const {
    const double seconds = std::abs(end - start);
    const auto count = [](double whole) { return QString::number(whole, 'g', 15); };
    const double years = std::trunc(seconds / year);
    const double days = std::trunc(seconds / day);
    const double hours = std::trunc(seconds / hour);
    const double minutes = std::trunc(seconds / minute);
    if (!std::isfinite(seconds))
        return secondsText(seconds);
    if (years > 10)
        return QStringLiteral("%1 years").arg(count(years));
    if (years >= 3)
        return QStringLiteral("%1 years %2 days").arg(count(years), count(days - 365 * years));
    if (days > 7)
        return QStringLiteral("%1 days").arg(count(days));
    if (days >= 2)
        return QStringLiteral("%1 days %2 hours").arg(count(days), count(hours - 24 * days));
    if (hours >= 2)
        return QStringLiteral("%1 hours %2 minutes").arg(count(hours), count(minutes - 60 * hours));
    if (minutes >= 2)
        return QStringLiteral("%1 minutes %2 sec")
            .arg(count(minutes), count(std::trunc(seconds - 60 * minutes)));
    return secondsText(seconds);
}

QString XTimeAxis::typedText(double value) const {
    return TypedTime::text(value, m_calendar());
}

std::optional<double> XTimeAxis::valueOfTypedText(const QString& text) const {
    return TypedTime::value(text, m_calendar());
}
