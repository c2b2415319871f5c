// Reads numbers and texts out of property-list values: anything unfit gives the stated fallback, never a
// fault.
#pragma once

#include <QString>
#include <QVariant>

#include <optional>

namespace PlistValues {

/// The value as an integer, truncated and clamped to 32 bits; 0 when it is missing or no number.
int integer(const QVariant& value);
/// 0 when missing or no number.
double real(const QVariant& value);
/// `real` narrowed to single precision; values beyond its range become infinite.
float singleReal(const QVariant& value);
/// false when missing or neither a boolean nor a number.
bool boolean(const QVariant& value);
/// Absent when missing or no string.
std::optional<QString> string(const QVariant& value);
/// Whether the value is an integer or a real number (not a boolean, not a text).
bool isNumber(const QVariant& value);

} // namespace PlistValues
