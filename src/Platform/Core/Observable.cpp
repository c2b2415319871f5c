// Setting by key through the meta-object, and the lifetime of observations.
#include "Platform/Core/Observable.h"

#include "Core/Assertions.h"

#include <QMetaProperty>

#include <algorithm>
#include <cstring>

namespace {

QMetaProperty propertyForKey(const Observable& object, const char* key) {
    const QMetaObject* meta = object.metaObject();
    const int index = meta->indexOfProperty(key);
    xAssert(index >= 0, "%@ has no key \"%@\"", meta->className(), key);
    return index < 0 ? QMetaProperty() : meta->property(index);
}

} // namespace

QVariant Observable::valueForKey(const char* key) const {
    const QMetaProperty property = propertyForKey(*this, key);
    return property.isValid() ? property.read(this) : QVariant();
}

void Observable::setValueForKey(const char* key, const QVariant& value) {
    const QMetaProperty property = propertyForKey(*this, key);
    if (property.isValid())
        xAssert(property.write(this, value), "The key \"%@\" takes no %@", key, value.typeName());
}

void Observable::announce(const char* key, QVariant oldValue, QVariant newValue) {
    Q_EMIT keyChanged(KeyChange{this, key, std::move(oldValue), std::move(newValue)});
}

Observation::Observation(Observable& object, std::span<const char* const> keys, Handler handler) {
    m_connection = QObject::connect(&object, &Observable::keyChanged, &object,
                                    [keys, handler = std::move(handler)](const KeyChange& change) {
                                        const bool observed =
                                            std::any_of(keys.begin(), keys.end(), [&](const char* key) {
                                                return std::strcmp(key, change.key) == 0;
                                            });
                                        if (observed)
                                            handler(change);
                                    });
}

Observation::~Observation() {
    end();
}

Observation::Observation(Observation&& other) noexcept
    : m_connection(std::exchange(other.m_connection, QMetaObject::Connection())) {}

Observation& Observation::operator=(Observation&& other) noexcept {
    if (this != &other) {
        end();
        m_connection = std::exchange(other.m_connection, QMetaObject::Connection());
    }
    return *this;
}

void Observation::end() {
    QObject::disconnect(m_connection);
    m_connection = QMetaObject::Connection();
}
