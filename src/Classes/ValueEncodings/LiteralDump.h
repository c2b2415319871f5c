// Property-list values as text, for diagnostics.
#pragma once

#include <QString>
#include <QVariant>

namespace LiteralDump {

/// The value in literal syntax: @"text", @12.5, @[...], @{key: value}. Newlines and tabs of a text become \n
/// and \t; nothing else is escaped. Null values of a map are left out. Other types give nothing.
QString objcRepresentation(const QVariant& value);

/// A short text for log lines: texts and numbers as they are, anything else in literal syntax.
QString description(const QVariant& value);

} // namespace LiteralDump
