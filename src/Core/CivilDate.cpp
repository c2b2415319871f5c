// Counts days from the first of March, by eras of 400 years.
#include "Core/CivilDate.h"

namespace {

constexpr std::int64_t floorDiv(std::int64_t a, std::int64_t b) {
    return a / b - (a % b < 0 ? 1 : 0);
}

constexpr std::int64_t daysBefore1970 = 719468; // from 0000-03-01

} // namespace

// Years begin in March here: the leap day is their last, and months follow a pattern of 153 days in five.

std::int64_t daysFromCivil(std::int64_t year, std::int64_t month, std::int64_t day) {
    const std::int64_t months = month - 3; // since March
    year += floorDiv(months, 12);
    const std::int64_t monthOfYear = months - floorDiv(months, 12) * 12;
    const std::int64_t era = floorDiv(year, 400);
    const std::int64_t yearOfEra = year - era * 400;
    const std::int64_t dayOfYear = (153 * monthOfYear + 2) / 5 + day - 1;
    return era * daysPer400Years + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear -
           daysBefore1970;
}

CivilDate civilFromDays(std::int64_t days) {
    days += daysBefore1970;
    const std::int64_t era = floorDiv(days, daysPer400Years);
    const std::int64_t dayOfEra = days - era * daysPer400Years;
    const std::int64_t yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const std::int64_t monthOfYear = (5 * dayOfYear + 2) / 153;
    CivilDate date;
    date.day = static_cast<int>(dayOfYear - (153 * monthOfYear + 2) / 5 + 1);
    date.month = static_cast<int>(monthOfYear < 10 ? monthOfYear + 3 : monthOfYear - 9);
    date.year = yearOfEra + era * 400 + (date.month <= 2 ? 1 : 0);
    return date;
}

int weekdayOf(std::int64_t days) {
    const std::int64_t sinceSunday = days + 4; // 1970-01-01 was a Thursday
    return static_cast<int>(sinceSunday - floorDiv(sinceSunday, 7) * 7) + 1;
}
