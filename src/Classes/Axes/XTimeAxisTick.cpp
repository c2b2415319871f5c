// Chooses the pattern of a label by how fine the marks are.
#include "Classes/Axes/XTimeAxisTick.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int maxDecimals = 9; // nanoseconds

QString patternOf(unsigned precision) {
    switch (precision) {
    case TickPrecision::year:
    case TickPrecision::yearChanged:
        return QStringLiteral("yyyy");
    case TickPrecision::month:
    case TickPrecision::monthChanged:
        return QStringLiteral("MMM");
    case TickPrecision::day:
        return QStringLiteral("EEE dd");
    case TickPrecision::hour:
    case TickPrecision::minute:
        return QStringLiteral("HH:mm");
    case TickPrecision::secondOfSeries:
        return QStringLiteral("ss");
    case TickPrecision::yearChanged | TickPrecision::monthChanged:
        return QStringLiteral("MMM yyyy");
    case TickPrecision::dayAlone:
        return QStringLiteral("dd");
    case TickPrecision::dayChanged:
        return QStringLiteral("EEE MMM dd");
    case TickPrecision::yearChanged | TickPrecision::dayChanged:
        return QStringLiteral("EEE MMM dd yyyy");
    default:
        return QStringLiteral("HH:mm:ss");
    }
}

} // namespace

XTimeAxisTick::XTimeAxisTick(const Calendar& calendar, double date, const CalendarComponents& local,
                             unsigned precision, unsigned secondaryPrecision) {
    value = date;
    title = calendar.text(local, patternOf(precision));
    if (secondaryPrecision != TickPrecision::none)
        *title += u'\n' + calendar.text(local, patternOf(secondaryPrecision));
}

XTimeAxisTick::XTimeAxisTick(const Calendar& calendar, double date, unsigned precision,
                             unsigned secondaryPrecision, int subsecondPrecision) {
    value = date;
    title = getStringForDate(calendar, date, precision, subsecondPrecision);
    if (secondaryPrecision != TickPrecision::none)
        *title += u'\n' + getStringForDate(calendar, date, secondaryPrecision, subsecondPrecision);
}

QString XTimeAxisTick::getStringForDate(const Calendar& calendar, double date, unsigned precision,
                                        int subsecondPrecision) {
    double seconds = std::floor(date);
    long fraction = 0;
    const bool showsSeconds =
        precision == TickPrecision::second || precision == TickPrecision::secondOfSeries;
    if (showsSeconds && subsecondPrecision > 0) {
        const auto parts = static_cast<float>(std::pow(10, std::min(subsecondPrecision, maxDecimals)));
        const auto nanoseconds = static_cast<float>(std::floor((date - seconds) * 1e9));
        fraction = std::lround(nanoseconds / (1e9F / parts));
        // A mark that only rounding keeps below the next second.
        if (static_cast<float>(fraction) >= parts) {
            fraction = 0;
            seconds += 1;
        }
    }
    const CalendarComponents local = calendar.componentsOf(static_cast<std::int64_t>(seconds));
    const QString text = calendar.text(local, patternOf(precision));
    return fraction == 0 ? text : text + u'.' + QString::number(fraction);
}
