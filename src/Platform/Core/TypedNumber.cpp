// The point comes first: a number that is shown and edited must not turn into one with grouped digits.
#include "Platform/Core/TypedNumber.h"

#include <cmath>

QString TypedNumber::text(double number) {
    return QString::number(number, 'g', QLocale::FloatingPointShortest);
}

std::optional<double> TypedNumber::value(const QString& text, const QLocale& locale) {
    const QString typed = text.trimmed();
    bool isNumber = false;
    double number = typed.toDouble(&isNumber);
    if (!isNumber)
        number = locale.toDouble(typed, &isNumber);
    if (!isNumber || !std::isfinite(number))
        return {};
    return number;
}
