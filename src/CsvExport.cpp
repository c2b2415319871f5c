// Numbers to text in large blocks, column by column cell.
#include "CsvExport.h"

#include "Platform/Core/WholeWrite.h"

#include <QIODevice>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <span>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

/// A column of cells: stored values, or the row number itself.
struct Cells {
    std::optional<std::span<const double>> stored; ///< absent: the row number
    std::uint64_t rows = 0;

    std::optional<double> at(std::uint64_t row) const {
        if (row >= rows)
            return std::nullopt;
        if (!stored)
            return static_cast<double>(row);
        const double value = row < stored->size() ? (*stored)[row] : std::nan("");
        return std::isnan(value) ? std::nullopt : std::optional(value);
    }
};

/// Collects text and hands it on in blocks.
class BlockWriter {
  public:
    explicit BlockWriter(QIODevice& device) : m_device(device) { m_block.reserve(blockSize + longestNumber); }

    void put(char c) { m_block.push_back(c); }
    void put(const QByteArray& text) { m_block.append(text.data(), static_cast<std::size_t>(text.size())); }
    void put(double value) {
        char digits[longestNumber];
        const auto [end, error] = std::to_chars(std::begin(digits), std::end(digits), value);
        m_block.append(digits, static_cast<std::size_t>(end - digits));
    }
    /// Whether the device still takes what it is given.
    bool endLine() {
        put('\n');
        return m_block.size() < blockSize || flush();
    }
    bool flush() {
        const bool taken = writeWhole(m_device, m_block.data(), static_cast<qint64>(m_block.size()));
        m_block.clear();
        return taken;
    }

  private:
    static constexpr std::size_t blockSize = 1U << 20U;
    static constexpr std::size_t longestNumber = 32;

    QIODevice& m_device;
    std::string m_block;
};

QByteArray quoted(const QString& name) {
    QByteArray text = name.toUtf8();
    const bool needsQuotes =
        text.contains(',') || text.contains('"') || text.contains('\n') || text.contains('\r');
    if (!needsQuotes)
        return text;
    text.replace("\"", "\"\"");
    return '"' + text + '"';
}

bool writeCells(QIODevice& device, const QStringList& header, const std::vector<Cells>& columns) {
    BlockWriter writer(device);
    std::uint64_t rows = 0;
    for (qsizetype i = 0; i < header.size(); ++i) {
        if (i > 0)
            writer.put(',');
        writer.put(quoted(header[i]));
    }
    if (!writer.endLine())
        return false;
    for (const Cells& column : columns)
        rows = std::max(rows, column.rows);
    for (std::uint64_t row = 0; row < rows; ++row) {
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (i > 0)
                writer.put(',');
            if (const std::optional<double> value = columns[i].at(row))
                writer.put(*value);
        }
        if (!writer.endLine())
            return false;
    }
    return writer.flush();
}

Cells curveCells(const CurveSnapshot& curve, bool usesExpression, const XTable& evaluated, int index) {
    const std::uint64_t rows = curve.rows();
    if (usesExpression && evaluated)
        return {evaluated->column(0), rows};
    const bool isColumn = !usesExpression && index >= 1 && curve.table &&
                          static_cast<std::uint64_t>(index) <= curve.table->columnsNumber();
    if (isColumn)
        return {curve.table->column(static_cast<std::uint64_t>(index) - 1), rows};
    return {std::nullopt, rows};
}

} // namespace

bool CsvExport::writeTable(QIODevice& device, const QStringList& columnNames, const XPTableData& table) {
    std::vector<Cells> columns{{std::nullopt, table.rowsNumber()}};
    for (std::uint64_t i = 0; i < table.columnsNumber(); ++i)
        columns.push_back({table.column(i), table.rowsNumber()});
    return writeCells(device, columnNames, columns);
}

bool CsvExport::writeValues(QIODevice& device, const QList<CurveSnapshot>& curves) {
    QStringList header;
    std::vector<Cells> columns;
    for (qsizetype i = 0; i < curves.size(); ++i) {
        const CurveSnapshot& curve = curves[i];
        header << u"x%1"_qs.arg(i + 1) << u"y%1"_qs.arg(i + 1);
        columns.push_back(curveCells(curve, curve.xUsesExpression, curve.xEvaluated, curve.xIndex));
        columns.push_back(curveCells(curve, curve.yUsesExpression, curve.yEvaluated, curve.yIndex));
        if (curve.pointsizeUsesExpression && curve.pointsizeEvaluated) {
            header << u"size%1"_qs.arg(i + 1);
            columns.push_back({curve.pointsizeEvaluated->column(0), curve.rows()});
        }
    }
    return writeCells(device, header, columns);
}
