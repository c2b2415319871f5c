// Conversions of property-list values with fallbacks.
#include "Classes/PlotModel/PlistValues.h"

#include <algorithm>
#include <cmath>
#include <limits>

bool PlistValues::isNumber(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Float:
    case QMetaType::Double:
        return true;
    default:
        return false;
    }
}

double PlistValues::real(const QVariant& value) {
    if (isNumber(value) || value.typeId() == QMetaType::Bool || value.typeId() == QMetaType::QString)
        return value.toDouble(); // 0 for a text that is no number
    return 0;
}

int PlistValues::integer(const QVariant& value) {
    constexpr double least = std::numeric_limits<int>::min();
    constexpr double greatest = std::numeric_limits<int>::max();
    const double number = real(value);
    return std::isnan(number) ? 0 : static_cast<int>(std::clamp(number, least, greatest));
}

float PlistValues::singleReal(const QVariant& value) {
    const double number = real(value);
    constexpr double greatest = std::numeric_limits<float>::max();
    if (std::isfinite(number) && std::abs(number) > greatest)
        return std::copysign(std::numeric_limits<float>::infinity(), static_cast<float>(number > 0 ? 1 : -1));
    return static_cast<float>(number);
}

bool PlistValues::boolean(const QVariant& value) {
    if (value.typeId() == QMetaType::Bool)
        return value.toBool();
    return isNumber(value) && real(value) != 0;
}

std::optional<QString> PlistValues::string(const QVariant& value) {
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    return value.toString();
}
