// Numbers as users type them.
#pragma once

#include <QLocale>
#include <QString>

#include <optional>

namespace TypedNumber {

/// The shortest text that reads back as this number, with a decimal point.
QString text(double number);
/// With a decimal point or in the way of `locale`, blanks around it aside. Nothing for what is no finite
/// number.
std::optional<double> value(const QString& text, const QLocale& locale = QLocale());

} // namespace TypedNumber
