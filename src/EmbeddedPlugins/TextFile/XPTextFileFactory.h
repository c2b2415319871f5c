// Makes the two kinds of text data sources. Its definitions stand in XPTextFile.cpp, which assertions name.
#pragma once

#include "Classes/PluginsManager/XPluginFactory.h"

class XPTextFileFactory : public XPluginFactory {
  public:
    QMap<QString, QString> supportedPlugins() const override;
    /// Fails the assertion "Unknown plugin id for XPTextFileFactory: ..." for other identifiers.
    XDataSource createPluginOfIdentifier(const QString& identifier) const override;
};
