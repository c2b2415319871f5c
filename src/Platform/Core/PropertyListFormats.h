// The two forms of a property list that are read: inner interface of PropertyList.
#pragma once

#include "Platform/Core/PropertyList.h"

#include <stdexcept>

namespace PropertyList {

/// Deeper values are refused, so that nobody's recursion over a value can exhaust the stack.
inline constexpr int maximumDepth = 512;

/// Why bytes are no property list; thrown inside the readers, never beyond `read`.
struct Malformed : std::runtime_error {
    using std::runtime_error::runtime_error;
};

QVariant readXml(const QByteArray& bytes);
QVariant readBinary(const QByteArray& bytes);

} // namespace PropertyList
