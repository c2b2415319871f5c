// Colours as property-list values, and by name.
#pragma once

#include "Core/RgbaColor.h"

#include <QString>
#include <QVariant>

namespace ColorEncoding {

/// Red, green, blue and alpha as four reals, with all their digits.
QVariantList plist(const RgbaColor& color);

/// The colour of a list of four numbers. Anything else is logged and gives opaque black.
RgbaColor colorFromPlist(const QVariant& value);

/// A human name ("Dark green").
QString colorName(const RgbaColor& color);

} // namespace ColorEncoding
