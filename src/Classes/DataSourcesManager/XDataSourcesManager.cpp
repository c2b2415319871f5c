// Data sources in and out of a document's list.
#include "Classes/DataSourcesManager/XDataSourcesManager.h"

#include "Classes/PluginsManager/XPluginsManager.h"
#include "Core/Assertions.h"
#include "Platform/Core/NotificationCenter.h"

#include <utility>

namespace {
QString identifierKey() {
    return QStringLiteral("PluginIdentifier");
}
QString settingsKey() {
    return QStringLiteral("Settings");
}
} // namespace

XDataSource XDataSourcesManager::dataSourceAtIndex(std::size_t index) const {
    if (!xAssert(index < dataSources().size(), "Bad index %ld for dataSourceAtIndex", index))
        return nullptr;
    return dataSources()[index];
}

void XDataSourcesManager::addDataSourceAtIndex(XDataSource source, std::size_t index) {
    m_arrayController.insertObjectAtIndex(std::move(source), index);
}

void XDataSourcesManager::removeDataSourceAtIndex(std::size_t index) {
    if (xAssert(index < dataSources().size(), "Bad index %ld for removeDataSourceAtIndex", index))
        m_arrayController.removeObjectAtIndex(index);
}

QVariantList XDataSourcesManager::plist() const {
    QVariantList entries;
    for (const XDataSource& source : dataSources()) {
        QVariantMap entry{{identifierKey(), source->pluginIdentifier()}};
        if (const auto settings = source->plist())
            entry.insert(settingsKey(), *settings);
        entries.append(entry);
    }
    return entries;
}

void XDataSourcesManager::loadFromPlist(const QVariant& plist) {
    if (!xAssert(plist.typeId() == QMetaType::QVariantList, "dataSources plist is not NSArray!"))
        return;
    std::size_t index = 0;
    for (const QVariant& each : plist.toList()) {
        const QVariantMap entry = each.toMap();
        const QVariant settings = entry.value(settingsKey());
        const XDataSource source = XPluginsManager::sharedInstance().createPluginOfTypeSettings(
            entry.value(identifierKey()).toString(),
            settings.typeId() == QMetaType::QVariantMap ? std::optional(settings.toMap()) : std::nullopt);
        if (source == nullptr)
            continue;
        addDataSourceAtIndex(source, index++);
        NotificationCenter::defaultCenter().post(Notifications::dataSourceWasAdded, source.get());
    }
}
