// The data sources of one document, in the order of their tabs, and their form in the document's file.
#pragma once

#include "Classes/DataSourcesManager/ArrangedObjects.h"

#include <QVariant>

/// Main thread.
class XDataSourcesManager {
  public:
    std::span<const XDataSource> dataSources() const { return m_arrayController.objects(); }
    /// Fails the assertion "Bad index %ld for dataSourceAtIndex" and gives null for an index beyond the list.
    XDataSource dataSourceAtIndex(std::size_t index) const;
    /// Posts nothing: the document that adds a source to its tabs does.
    void addDataSourceAtIndex(XDataSource source, std::size_t index);
    /// Fails the assertion "Bad index %ld for removeDataSourceAtIndex" for an index beyond the list.
    void removeDataSourceAtIndex(std::size_t index);

    /// An entry for each source: "PluginIdentifier", and "Settings" unless it has none.
    QVariantList plist() const;
    /// Adds a source for each entry, which starts reading if the entry has settings, and posts
    /// "kDataSourceWasAdded_Notification" for each. An entry of an unknown kind fails an assertion and is
    /// left out.
    void loadFromPlist(const QVariant& plist);

    /// The list for the user interface.
    ArrangedObjects& arrayController() { return m_arrayController; }

  private:
    ArrangedObjects m_arrayController;
};
