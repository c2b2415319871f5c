// Kinds of data sources by identifier.
#include "Classes/PluginsManager/XPluginsManager.h"

#include "Core/Assertions.h"

XPluginsManager& XPluginsManager::sharedInstance() {
    // Never destroyed: plugins that outlive main may still ask for it.
    static auto* const instance = new XPluginsManager; // NOLINT(cppcoreguidelines-owning-memory)
    return *instance;
}

void XPluginsManager::setFactories(const Factories& factories) {
    sharedInstance().loadPlugins(factories);
}

void XPluginsManager::loadPlugins(const Factories& factories) {
    m_pluginFactories.clear();
    m_pluginTypes.clear();
    for (const auto& factory : factories) {
        const QMap<QString, QString> supported = factory->supportedPlugins();
        for (auto kind = supported.cbegin(); kind != supported.cend(); ++kind) {
            m_pluginFactories.insert(kind.key(), factory);
            m_pluginTypes.insert(kind.key(), kind.value());
        }
    }
}

XDataSource XPluginsManager::createPluginOfTypeSettings(const QString& identifier,
                                                        const std::optional<QVariantMap>& settings) {
    const auto factory = m_pluginFactories.value(identifier);
    if (!xAssert(factory != nullptr, "Unknown plugin type \"%@\"", identifier.toStdString()))
        return nullptr;
    XDataSource plugin = factory->createPluginOfIdentifier(identifier);
    if (!xAssert(plugin != nullptr, "Failed to create plugin of type \"%@\"", identifier.toStdString()))
        return nullptr;
    if (settings) {
        plugin->setPlist(*settings);
        plugin->read();
    }
    return plugin;
}
