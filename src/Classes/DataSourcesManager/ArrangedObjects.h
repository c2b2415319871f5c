// The ordered data sources of a document as a list model, which combo boxes and tab bars can show.
#pragma once

#include "Classes/DataSourcesManager/XDataSourceProtocol.h"

#include <QAbstractListModel>

#include <span>
#include <vector>

/// The display text of a row is the title of its data source, and follows it. Main thread.
class ArrangedObjects : public QAbstractListModel {
    Q_OBJECT

  public:
    using QAbstractListModel::QAbstractListModel;

    std::span<const XDataSource> objects() const { return m_objects; }
    /// Inserts before `index`; an index beyond the end appends.
    void insertObjectAtIndex(XDataSource object, std::size_t index);
    void removeObjectAtIndex(std::size_t index); ///< nothing for a bad index

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;

  private:
    void titleChanged(const Observable* object);

    std::vector<XDataSource> m_objects;
    std::vector<Observation> m_titles; ///< one for each object
};
