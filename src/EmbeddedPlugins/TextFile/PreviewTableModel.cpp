// Writes single cells when they are asked for.
#include "EmbeddedPlugins/TextFile/PreviewTableModel.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <span>

QString previewText(double value) {
    if (std::isnan(value))
        return {};
    constexpr double leastPlain = 1e-5;
    constexpr double firstPower = 1e17;
    const double size = std::abs(value);
    const bool plain = value == 0 || (size >= leastPlain && size < firstPower);
    char digits[64];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), value,
                                   plain ? std::chars_format::fixed : std::chars_format::scientific);
    return QString::fromLatin1(digits, end.ptr - digits);
}

void PreviewTableModel::setTable(XTable table, QStringList columnNames) {
    beginResetModel();
    m_table = std::move(table);
    m_columnNames = std::move(columnNames);
    endResetModel();
}

void PreviewTableModel::replaceTable(XTable table, QStringList columnNames) {
    Q_EMIT layoutAboutToBeChanged();
    m_table = std::move(table);
    m_columnNames = std::move(columnNames);
    Q_EMIT layoutChanged();
}

int PreviewTableModel::rowCount(const QModelIndex& parent) const {
    if (parent.isValid() || m_table == nullptr)
        return 0;
    constexpr std::uint64_t most = std::numeric_limits<int>::max();
    return static_cast<int>(std::min(m_table->rowsNumber(), most));
}

int PreviewTableModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_columnNames.size());
}

QVariant PreviewTableModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    if (role == Qt::TextAlignmentRole)
        return QVariant::fromValue(Qt::Alignment(Qt::AlignRight | Qt::AlignVCenter));
    return role == Qt::DisplayRole ? QVariant(textAt(index.row(), index.column())) : QVariant();
}

QString PreviewTableModel::textAt(int row, int column) const {
    if (column == 0)
        return QString::number(row);
    const std::span<const double> values = m_table->column(static_cast<std::uint64_t>(column) - 1);
    const auto place = static_cast<std::size_t>(row);
    return place < values.size() ? previewText(values[place]) : QString();
}

QVariant PreviewTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || section < 0 || section >= m_columnNames.size())
        return {};
    if (role == Qt::DisplayRole || role == Qt::ToolTipRole)
        return m_columnNames.at(section);
    if (role == symbolRole)
        return section == 0 ? QStringLiteral("row") : QStringLiteral("c%1").arg(section);
    return {};
}
