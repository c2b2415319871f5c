// Calls the C library's calendar with arguments that it can hold.
#include "Core/CalendarFields.h"

#include <cmath>
#include <limits>

namespace {

constexpr int firstYear = 1900; // of struct tm

} // namespace

std::optional<CalendarFields> calendarFieldsOf(double timestamp) {
    constexpr double timeLimit = 0x1p63;
    double wholeSeconds = 0;
    const double fraction = std::modf(timestamp, &wholeSeconds);
    if (!(wholeSeconds > -timeLimit && wholeSeconds < timeLimit)) // NaN, too
        return {};
    const auto time = static_cast<std::time_t>(wholeSeconds);
    std::tm local{};
    if (localtime_r(&time, &local) == nullptr)
        return {};
    return CalendarFields{.year = std::int64_t{local.tm_year} + firstYear,
                          .month = local.tm_mon + 1,
                          .dayOfMonth = local.tm_mday,
                          .hour = local.tm_hour,
                          .minute = local.tm_min,
                          .second = local.tm_sec + fraction,
                          .dayOfWeek = local.tm_wday == 0 ? 7 : local.tm_wday,
                          .dayOfYear = local.tm_yday + 1};
}

std::tm currentLocalTime() {
    const std::time_t time = std::time(nullptr);
    std::tm local{};
    localtime_r(&time, &local);
    return local;
}

double timestampOf(const CalendarDate& date, const std::tm& now) {
    constexpr int least = std::numeric_limits<int>::min();
    if (date.year < least + firstYear || date.month == least)
        return std::numeric_limits<double>::quiet_NaN();
    std::tm fields = now;
    fields.tm_year = date.year - firstYear;
    fields.tm_mon = date.month - 1;
    fields.tm_mday = date.dayOfMonth;
    fields.tm_hour = date.hour;
    fields.tm_min = date.minute;
    fields.tm_sec = 0;
    fields.tm_wday = 0;
    fields.tm_yday = 0;
    return static_cast<double>(std::mktime(&fields));
}
