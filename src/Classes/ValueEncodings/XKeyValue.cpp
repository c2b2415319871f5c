// Makes and describes pairs.
#include "Classes/ValueEncodings/XKeyValue.h"

#include "Classes/ValueEncodings/LiteralDump.h"

std::shared_ptr<XKeyValue> XKeyValue::keyValueWithKeyValue(const QVariant& key, const QVariant& value) {
    auto pair = std::make_shared<XKeyValue>();
    pair->key = key;
    pair->value = value;
    return pair;
}

QString XKeyValue::description() const {
    return QStringLiteral("XKeyValue 0x%1: %2 => %3")
        .arg(reinterpret_cast<quintptr>(this), 0, 16)
        .arg(LiteralDump::description(key), LiteralDump::description(value));
}
