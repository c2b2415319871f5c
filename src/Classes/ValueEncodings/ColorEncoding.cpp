// Reads and writes the four reals of a colour.
#include "Classes/ValueEncodings/ColorEncoding.h"

#include "Classes/ValueEncodings/LiteralDump.h"
#include "Core/ColorName.h"
#include "Platform/Core/Log.h"

QVariantList ColorEncoding::plist(const RgbaColor& color) {
    return {color.red, color.green, color.blue, color.alpha};
}

RgbaColor ColorEncoding::colorFromPlist(const QVariant& value) {
    constexpr const char* method = "+[ColorEncoding colorFromPlist:]";
    if (value.typeId() != QMetaType::QVariantList) {
        logMethod(method,
                  QStringLiteral("NSColor plist is not an array: '%1'").arg(LiteralDump::description(value)));
        return {};
    }
    const QVariantList components = value.toList();
    if (components.size() != 4) {
        logMethod(method, QStringLiteral("Wrong NSColor plist: %1").arg(LiteralDump::description(value)));
        return {};
    }
    return {.red = components[0].toDouble(),
            .green = components[1].toDouble(),
            .blue = components[2].toDouble(),
            .alpha = components[3].toDouble()};
}

QString ColorEncoding::colorName(const RgbaColor& color) {
    const std::string_view name = ::colorName(color);
    return QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()));
}
