// The cells of a data source's table as text, for a view that asks only for those it shows.
#pragma once

#include "Classes/DataSourcesManager/XDataSourceProtocol.h"

#include <QAbstractTableModel>
#include <QString>
#include <QStringList>

/// The shortest text that reads back as the same number: plain decimals from 1e-5 up to 1e17, powers of ten
/// outside. Empty for NaN.
QString previewText(double value);

/// Column 0 is the row number; column k shows table column k - 1. Read-only.
///
/// Nothing here costs a step a row, whatever the table's length; a view must not either (QTableView does).
/// Rows beyond the range of int, which would take over 16 GB, are not shown.
class PreviewTableModel : public QAbstractTableModel {
    Q_OBJECT

  public:
    /// Of horizontal headers: how expressions call the column, "row" or "c1".
    static constexpr int symbolRole = Qt::UserRole;

    using QAbstractTableModel::QAbstractTableModel;

    /// Shows a table, which nobody writes to any more, under `columnNames`, "Row number" first. Without a
    /// table there are no rows.
    void setTable(XTable table, QStringList columnNames);

    /// Shows what the same source holds now: what is selected and where the view is stays, where it still is.
    void replaceTable(XTable table, QStringList columnNames);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role = Qt::DisplayRole) const override;

  private:
    QString textAt(int row, int column) const;

    XTable m_table;
    QStringList m_columnNames;
};
