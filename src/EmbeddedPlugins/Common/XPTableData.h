// The one in-memory table: equally long contiguous columns of doubles and a list of column names.
#pragma once

#include "EmbeddedPlugins/Common/XValueRange.h"

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

/// Raised by what would grow the table beyond its memory limit, before anything is allocated.
struct TableTooLarge : std::runtime_error {
    TableTooLarge(std::uint64_t columns, std::uint64_t rows, std::uint64_t bytes);
    std::uint64_t neededBytes;
};

/// Filled by one producer thread, then only read, by any thread, through `shared_ptr<const XPTableData>`.
/// Slots up to `rowsNumber` that were never written hold a quiet NaN. Columns are counted from 0.
///
/// Capacity doubles up to a million rows and then grows by a million at a time. Capacity that no row has
/// reached is address space only: it is touched (filled with NaN) a block at a time, just before rows are
/// written there.
class XPTableData {
  public:
    /// The least value that counts as positive: the smallest normal double.
    static constexpr double smallestPositive = std::numeric_limits<double>::min();
    /// Rows that are ranged together, twice where need be: they stay in the nearest cache meanwhile.
    static constexpr std::size_t rowsPerBlock = 2048;

    XPTableData() = default;
    ~XPTableData();
    XPTableData(const XPTableData&) = delete;
    XPTableData& operator=(const XPTableData&) = delete;

    /// Bytes that the table may take; growth beyond throws TableTooLarge. Unlimited at first.
    void setMemoryLimit(std::uint64_t bytes);
    /// Counts bytes that are kept beside the columns, such as their names. Throws TableTooLarge.
    void addBytesBeside(std::uint64_t bytes);
    /// Throws TableTooLarge if a value at that place would take the table beyond its limit.
    void checkRoomFor(std::uint64_t col, std::uint64_t row) const;

    /// Grows the table if needed, stores the value. Throws TableTooLarge, leaving the table as it was.
    /// Fails the assertion "rc_addr failed!" when the system has no memory.
    void writeValueAtColRow(double value, std::uint64_t col, std::uint64_t row);
    void writeNullAtColRow(std::uint64_t col, std::uint64_t row);

    std::uint64_t columnsNumber() const;
    /// Highest row written, plus one. Kept: a table into which nothing was written has one row.
    std::uint64_t rowsNumber() const;
    /// Capacity of every column, in values.
    std::uint64_t rowsAllocated() const;

    /// The live storage of a column, `rowsNumber` values (none allocated: fewer), or null when `index` is not
    /// below `columnsNumber`. Valid until the next write that grows the table.
    const double* getColumnDataOfIndex(std::uint64_t index) const;
    /// The same with its length: empty for a bad index, and never longer than the storage.
    std::span<const double> column(std::uint64_t index) const;
    /// The same, for a producer that writes its rows in any order or from several threads at once, after it
    /// has written the last row. Forgets the ranges.
    std::span<double> writableColumn(std::uint64_t index);

    /// Least and greatest finite value of a column within `validRange`; a bound that is not finite is open.
    /// `number` is 1-based; 0 or less is the row number: {0, rowsNumber - 1}. {NaN, NaN} when nothing is
    /// found. Constant time once `summarizeColumns` ran for all values (both bounds open) and for positive
    /// values
    /// (`smallestPositive` and an open maximum); else a scan.
    XValueRange getRangeOfColumnIndexWithValidValuesInRange(std::int32_t number,
                                                            XValueRange validRange) const;

    /// Computes the ranges that fitting asks for (all values; positive values) of every column. The producer
    /// calls it last; a later write forgets them.
    void summarizeColumns();
    bool isSummarized() const { return m_summariesHold; }
    /// Least and greatest finite value of each `rowsPerBlock` rows of a column, {NaN, NaN} where there is
    /// none; for a bad index, and unless `summarizeColumns` ran, there are no blocks.
    std::span<const XValueRange> blockRanges(std::uint64_t index) const;

    void removeColumnsWithoutData();
    std::string debugDump() const;

    const std::vector<std::string>& columnNames() const; ///< UTF-8; not kept in step with the columns
    void setColumnNames(std::vector<std::string> names);

  private:
    struct FreeMemory {
        void operator()(double* values) const { std::free(values); } // NOLINT: grown by realloc
    };
    using Column = std::unique_ptr<double[], FreeMemory>;
    struct ColumnSummary {
        XValueRange all;
        XValueRange positive;
        std::vector<XValueRange> blocks;
    };

    static ColumnSummary summaryOf(std::span<const double> values);
    bool makeRoomFor(std::uint64_t col, std::uint64_t row);
    std::uint64_t capacityFor(std::uint64_t columns, std::uint64_t rows) const;
    bool resizeColumns(std::uint64_t columns, std::uint64_t rowCapacity);
    void fillRowsUpTo(std::uint64_t row);

    std::vector<Column> m_columns;
    std::uint64_t m_rowsAllocated = 0;
    std::uint64_t m_rowsFilled = 0; ///< rows that hold NaN or a value; the capacity above is untouched memory
    std::uint64_t m_rowsWritten = 0; ///< the highest row written
    std::uint64_t m_memoryLimit = std::numeric_limits<std::uint64_t>::max();
    std::uint64_t m_bytesBeside = 0;
    std::vector<ColumnSummary> m_summaries;
    bool m_summariesHold = false;
    std::vector<std::string> m_columnNames;
};

inline void XPTableData::writeValueAtColRow(double value, std::uint64_t col, std::uint64_t row) {
    if (row >= m_rowsFilled || col >= m_columns.size()) [[unlikely]] {
        if (!makeRoomFor(col, row))
            return;
    }
    m_columns[col][row] = value;
    if (row > m_rowsWritten)
        m_rowsWritten = row;
    m_summariesHold = false;
}
