// What makes data sources of some kinds.
#pragma once

#include "Classes/DataSourcesManager/XDataSourceProtocol.h"

#include <QMap>
#include <QString>

class XPluginFactory {
  public:
    XPluginFactory() = default;
    virtual ~XPluginFactory() = default;
    XPluginFactory(const XPluginFactory&) = delete;
    XPluginFactory& operator=(const XPluginFactory&) = delete;

    /// Plugin identifiers and the names of the kinds they stand for.
    virtual QMap<QString, QString> supportedPlugins() const = 0;
    /// A new plugin without settings; null for an identifier that is not supported.
    virtual XDataSource createPluginOfIdentifier(const QString& identifier) const = 0;
};
