// What the desktop wishes: dark windows or light ones, movement and sounds or none.
#pragma once

#include <QDBusMessage>
#include <QMap>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <optional>

class QDBusPendingCallWatcher;

struct DesktopSettings {
    std::optional<bool> prefersDark; ///< absent when the desktop does not say
    bool animations = true;
    bool eventSounds = true;

    bool operator==(const DesktopSettings&) const = default;

    /// Settings by name space and key, as the desktop portal gives them; what is unknown changes nothing.
    void take(const QString& nameSpace, const QString& key, const QVariant& value);
};

/// Asks the desktop portal on the session bus, and again whenever a setting changes. The answer comes from
/// the event loop: nothing waits for a slow or absent bus.
class DesktopSettingsWatcher : public QObject {
    Q_OBJECT

  public:
    explicit DesktopSettingsWatcher(QObject* parent = nullptr);

    void start();

  Q_SIGNALS:
    void changed(const DesktopSettings& settings);

  private:
    Q_SLOT void settingChanged(const QDBusMessage& signal);
    void answered(QDBusPendingCallWatcher* call);

    DesktopSettings m_settings;
};
