// A pair of values, with a description for diagnostics.
#pragma once

#include <QString>
#include <QVariant>

#include <memory>

class XKeyValue {
  public:
    static std::shared_ptr<XKeyValue> keyValueWithKeyValue(const QVariant& key, const QVariant& value);

    /// "XKeyValue ADDRESS: KEY => VALUE".
    QString description() const;

    QVariant key;
    QVariant value;
};
