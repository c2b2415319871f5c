// The process-wide registry of the kinds of data sources.
#pragma once

#include "Classes/PluginsManager/XPluginFactory.h"

#include <QMap>
#include <QString>
#include <QVariantMap>

#include <memory>
#include <optional>
#include <vector>

/// One instance for the life of the process, never copied, never destroyed. Main thread.
class XPluginsManager {
  public:
    using Factories = std::vector<std::shared_ptr<const XPluginFactory>>;

    static XPluginsManager& sharedInstance();

    /// The program's fixed list of factories, handed in once at its start; plugins that exist stay as they
    /// are.
    static void setFactories(const Factories& factories);

    XPluginsManager(const XPluginsManager&) = delete;
    XPluginsManager& operator=(const XPluginsManager&) = delete;

    /// The offered kinds: identifier and name.
    const QMap<QString, QString>& pluginTypes() const { return m_pluginTypes; }

    /// A new plugin; with settings, it has them and its read has begun. Fails the assertion
    /// "Unknown plugin type "...""  and gives null for an identifier that no factory knows.
    XDataSource createPluginOfTypeSettings(const QString& identifier,
                                           const std::optional<QVariantMap>& settings);

  private:
    XPluginsManager() = default;
    ~XPluginsManager() = default;
    void loadPlugins(const Factories& factories);

    QMap<QString, std::shared_ptr<const XPluginFactory>> m_pluginFactories;
    QMap<QString, QString> m_pluginTypes;
};
