// The settings file of the user, or a map in its place.
#include "Platform/Core/UserDefaults.h"

#include <QStandardPaths>

#include <utility>

UserDefaults& UserDefaults::standard() {
    static UserDefaults defaults(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
                                 QStringLiteral("/velquin/velquin.conf"));
    return defaults;
}

UserDefaults::UserDefaults(QString settingsFile) : m_settingsFile(std::move(settingsFile)) {}

QSettings& UserDefaults::file() const {
    if (!m_file)
        m_file = std::make_unique<QSettings>(m_settingsFile, QSettings::IniFormat);
    return *m_file;
}

void UserDefaults::useMemoryStore() {
    m_memory.emplace();
    m_readOnly = false;
}

void UserDefaults::setReadOnly(bool readOnly) {
    m_readOnly = readOnly;
}

QVariant UserDefaults::value(const QString& key) const {
    return m_memory ? m_memory->value(key) : file().value(key);
}

int UserDefaults::integer(const QString& key) const {
    return value(key).toInt();
}

QString UserDefaults::string(const QString& key) const {
    return value(key).toString();
}

QStringList UserDefaults::stringList(const QString& key) const {
    return value(key).toStringList();
}

bool UserDefaults::contains(const QString& key) const {
    return m_memory ? m_memory->contains(key) : file().contains(key);
}

void UserDefaults::set(const QString& key, const QVariant& value) {
    if (m_readOnly)
        return;
    if (m_memory)
        m_memory->insert(key, value);
    else
        file().setValue(key, value);
    Q_EMIT changed(key);
}

void UserDefaults::remove(const QString& key) {
    if (m_readOnly)
        return;
    if (m_memory)
        m_memory->remove(key);
    else
        file().remove(key);
    Q_EMIT changed(key);
}
