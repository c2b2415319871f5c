// Reads the settings portal of the desktop.
#include "Platform/Widgets/DesktopSettings.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusPendingCallWatcher>

namespace {

constexpr auto portalService = QLatin1String("org.freedesktop.portal.Desktop");
constexpr auto portalPath = QLatin1String("/org/freedesktop/portal/desktop");
constexpr auto settingsInterface = QLatin1String("org.freedesktop.portal.Settings");

constexpr auto appearance = QLatin1String("org.freedesktop.appearance");
constexpr auto gnomeInterface = QLatin1String("org.gnome.desktop.interface");
constexpr auto gnomeSound = QLatin1String("org.gnome.desktop.sound");
constexpr auto kdeGlobals = QLatin1String("org.kde.kdeglobals.KDE");

/// A variant within a variant is what some portals send.
QVariant unwrapped(QVariant value) {
    while (value.userType() == qMetaTypeId<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

void DesktopSettings::take(const QString& nameSpace, const QString& key, const QVariant& value) {
    if (nameSpace == appearance && key == QLatin1String("color-scheme")) {
        const int scheme = value.toInt(); // 0 no preference, 1 dark, 2 light
        prefersDark = scheme == 1 ? std::optional(true) : scheme == 2 ? std::optional(false) : std::nullopt;
    } else if (nameSpace == gnomeInterface && key == QLatin1String("enable-animations")) {
        animations = value.toBool();
    } else if (nameSpace == gnomeSound && key == QLatin1String("event-sounds")) {
        eventSounds = value.toBool();
    } else if (nameSpace == kdeGlobals && key == QLatin1String("AnimationDurationFactor")) {
        animations = value.toDouble() > 0;
    }
}

DesktopSettingsWatcher::DesktopSettingsWatcher(QObject* parent) : QObject(parent) {}

void DesktopSettingsWatcher::start() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected())
        return;
    bus.connect(portalService, portalPath, settingsInterface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QDBusMessage)));
    QDBusMessage question = QDBusMessage::createMethodCall(portalService, portalPath, settingsInterface,
                                                           QStringLiteral("ReadAll"));
    question << QStringList{appearance, gnomeInterface, gnomeSound, kdeGlobals};
    auto* call = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, &DesktopSettingsWatcher::answered);
}

void DesktopSettingsWatcher::answered(QDBusPendingCallWatcher* call) {
    call->deleteLater();
    const QDBusMessage message = call->reply();
    if (message.type() != QDBusMessage::ReplyMessage || message.signature() != QLatin1String("a{sa{sv}}"))
        return;
    const auto settings =
        qdbus_cast<QMap<QString, QVariantMap>>(message.arguments().constFirst().value<QDBusArgument>());
    for (auto space = settings.begin(); space != settings.end(); ++space) {
        for (auto entry = space->begin(); entry != space->end(); ++entry)
            m_settings.take(space.key(), entry.key(), unwrapped(entry.value()));
    }
    Q_EMIT changed(m_settings);
}

void DesktopSettingsWatcher::settingChanged(const QDBusMessage& signal) {
    const QVariantList arguments = signal.arguments(); // name space, key, value
    if (arguments.size() != 3)
        return;
    const DesktopSettings before = m_settings;
    m_settings.take(arguments[0].toString(), arguments[1].toString(), unwrapped(arguments[2]));
    if (m_settings != before)
        Q_EMIT changed(m_settings);
}
