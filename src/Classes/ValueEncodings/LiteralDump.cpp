// One rendering a kind of value, recursively.
#include "Classes/ValueEncodings/LiteralDump.h"

#include <array>
#include <charconv>

namespace {

bool isNull(const QVariant& value) {
    return !value.isValid() || value.typeId() == QMetaType::Nullptr;
}

/// A number's own text: booleans are 1 and 0, reals have the digits that they need. Empty for other types.
QString numberText(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::Bool:
        return value.toBool() ? QStringLiteral("1") : QStringLiteral("0");
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return value.toString();
    case QMetaType::Double:
    case QMetaType::Float: {
        std::array<char, 32> text{};
        const bool isFloat = value.typeId() == QMetaType::Float;
        char* const last = text.data() + text.size();
        const char* end = isFloat ? std::to_chars(text.data(), last, value.toFloat()).ptr
                                  : std::to_chars(text.data(), last, value.toDouble()).ptr;
        return QString::fromLatin1(text.data(), end - text.data());
    }
    default:
        return {};
    }
}

QString textLiteral(QString text) {
    text.replace(u'\n', QStringLiteral("\\n")).replace(u'\t', QStringLiteral("\\t"));
    return QStringLiteral("@\"%1\"").arg(text);
}

QString listLiteral(const QVariantList& list) {
    QString literal = QStringLiteral("@[");
    for (qsizetype i = 0; i < list.size(); ++i)
        literal += (i > 0 ? QStringLiteral(", \n") : QStringLiteral("\n")) +
                   LiteralDump::objcRepresentation(list[i]);
    return literal + u']';
}

QString mapLiteral(const QVariantMap& map) {
    QStringList entries;
    for (auto entry = map.begin(); entry != map.end(); ++entry) {
        if (!isNull(entry.value()))
            entries += textLiteral(entry.key()) + QStringLiteral(": ") +
                       LiteralDump::objcRepresentation(entry.value());
    }
    return QStringLiteral("@{%1}").arg(entries.join(QStringLiteral(", ")));
}

} // namespace

QString LiteralDump::objcRepresentation(const QVariant& value) {
    switch (value.typeId()) {
    case QMetaType::QString:
        return textLiteral(value.toString());
    case QMetaType::QVariantList:
        return listLiteral(value.toList());
    case QMetaType::QVariantMap:
        return mapLiteral(value.toMap());
    default: {
        const QString number = numberText(value);
        return number.isEmpty() ? QString() : u'@' + number;
    }
    }
}

QString LiteralDump::description(const QVariant& value) {
    if (isNull(value))
        return QStringLiteral("(null)");
    if (value.typeId() == QMetaType::QString)
        return value.toString();
    const QString number = numberText(value);
    return number.isEmpty() ? objcRepresentation(value) : number;
}
