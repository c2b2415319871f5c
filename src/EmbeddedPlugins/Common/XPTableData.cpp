// Growth of the table's columns, ranges of their values, compaction and the diagnostic dump.
#include "EmbeddedPlugins/Common/XPTableData.h"

#include "Core/Assertions.h"
#include "Core/MissingValue.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstring>
#include <utility>

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double greatestFinite = std::numeric_limits<double>::max();

constexpr std::uint64_t firstCapacity = 8;
constexpr std::uint64_t lastDoubledCapacity = 999'999;
constexpr std::uint64_t linearStep = 1'000'000;
/// What a column counts for at the least: its bookkeeping takes about as much as so many rows.
constexpr std::uint64_t leastRowsCounted = 32;
/// Rows that are filled at a time: a page of each column, still in the cache when the values follow.
constexpr std::uint64_t fillBlock = 512;

/// The sum, or the greatest number when it is beyond.
std::uint64_t saturatedSum(std::uint64_t a, std::uint64_t b) {
    std::uint64_t sum = 0;
    return __builtin_add_overflow(a, b, &sum) ? std::numeric_limits<std::uint64_t>::max() : sum;
}

/// The product, or the greatest number when it is beyond.
std::uint64_t saturatedProduct(std::uint64_t a, std::uint64_t b) {
    std::uint64_t product = 0;
    return __builtin_mul_overflow(a, b, &product) ? std::numeric_limits<std::uint64_t>::max() : product;
}

/// The least range that holds both; either may be {NaN, NaN}, which holds nothing.
XValueRange united(XValueRange a, XValueRange b) {
    return {std::fmin(a.minimum, b.minimum), std::fmax(a.maximum, b.maximum)};
}

/// Two doubles that the processor compares at once.
using Pair = double __attribute__((vector_size(2 * sizeof(double))));

/// Least and greatest of the values within [lowest, highest], both finite, so that NaN and the infinities
/// drop out.
XValueRange rangeOfValuesWithin(std::span<const double> values, double lowest, double highest) {
    constexpr std::size_t chains = 4; // of comparisons that do not wait for each other
    constexpr std::size_t stride = 2 * chains;
    const Pair low = Pair{} + lowest;
    const Pair high = Pair{} + highest;
    const Pair none = Pair{} + infinity;
    Pair least[chains] = {none, none, none, none};
    Pair greatest[chains] = {-none, -none, -none, -none};
    const std::size_t whole = values.size() - values.size() % stride;
    for (std::size_t i = 0; i < whole; i += stride) {
        for (std::size_t chain = 0; chain < chains; ++chain) {
            Pair value;
            std::memcpy(&value, values.data() + i + 2 * chain, sizeof value);
            const auto kept = (value >= low) & (value <= high);
            const Pair below = kept ? value : none;
            const Pair above = kept ? value : -none;
            least[chain] = below < least[chain] ? below : least[chain];
            greatest[chain] = above > greatest[chain] ? above : greatest[chain];
        }
    }
    XValueRange range{infinity, -infinity};
    const auto take = [&range](double minimum, double maximum) {
        range.minimum = std::min(range.minimum, minimum);
        range.maximum = std::max(range.maximum, maximum);
    };
    for (std::size_t chain = 0; chain < chains; ++chain) {
        for (std::size_t lane = 0; lane < 2; ++lane)
            take(least[chain][lane], greatest[chain][lane]);
    }
    for (const double value : values.subspan(whole)) {
        if (value >= lowest && value <= highest)
            take(value, value);
    }
    return range.minimum == infinity ? XValueRange() : range;
}

} // namespace

TableTooLarge::TableTooLarge(std::uint64_t columns, std::uint64_t rows, std::uint64_t bytes)
    : std::runtime_error("a table of " + std::to_string(columns) + " x " + std::to_string(rows) +
                         " values would take more memory than there may be"),
      neededBytes(bytes) {}

XPTableData::~XPTableData() = default;

void XPTableData::setMemoryLimit(std::uint64_t bytes) {
    m_memoryLimit = bytes;
}

void XPTableData::addBytesBeside(std::uint64_t bytes) {
    const std::uint64_t beside = saturatedSum(m_bytesBeside, bytes);
    const std::uint64_t columnBytes =
        saturatedProduct(saturatedProduct(m_columns.size(), m_rowsAllocated), sizeof(double));
    if (const std::uint64_t all = saturatedSum(columnBytes, beside); all > m_memoryLimit)
        throw TableTooLarge(m_columns.size(), rowsNumber(), all);
    m_bytesBeside = beside;
}

void XPTableData::writeNullAtColRow(std::uint64_t col, std::uint64_t row) {
    writeValueAtColRow(missing, col, row);
}

std::uint64_t XPTableData::columnsNumber() const {
    return m_columns.size();
}

std::uint64_t XPTableData::rowsNumber() const {
    return m_rowsWritten + 1;
}

std::uint64_t XPTableData::rowsAllocated() const {
    return m_rowsAllocated;
}

void XPTableData::checkRoomFor(std::uint64_t col, std::uint64_t row) const {
    constexpr auto unreachable = std::numeric_limits<std::uint64_t>::max();
    if (col == unreachable || row == unreachable)
        throw TableTooLarge(col, row, unreachable);
    const std::uint64_t columns = std::max<std::uint64_t>(col + 1, m_columns.size());
    const std::uint64_t rows = std::max(row, m_rowsWritten) + 1;
    const std::uint64_t bytes = saturatedSum(
        saturatedProduct(saturatedProduct(columns, std::max(rows, leastRowsCounted)), sizeof(double)),
        m_bytesBeside);
    if (bytes > m_memoryLimit || bytes == unreachable)
        throw TableTooLarge(columns, rows, bytes);
}

/// Throws TableTooLarge; false when the system has no memory. Everything written so far stays either way.
bool XPTableData::makeRoomFor(std::uint64_t col, std::uint64_t row) {
    checkRoomFor(col, row);
    const std::uint64_t columns = std::max<std::uint64_t>(col + 1, m_columns.size());

    if (row >= m_rowsAllocated || columns > m_columns.size()) {
        const bool resized = resizeColumns(columns, capacityFor(columns, row + 1));
        if (!xAssert(resized, "rc_addr failed!"))
            return false;
    }
    if (row >= m_rowsFilled)
        fillRowsUpTo(row);
    return true;
}

/// The row capacity after a write makes `rows` rows necessary.
std::uint64_t XPTableData::capacityFor(std::uint64_t columns, std::uint64_t rows) const {
    std::uint64_t capacity = m_rowsAllocated == 0 ? firstCapacity : m_rowsAllocated;
    if (rows <= capacity)
        return capacity;
    capacity = m_rowsAllocated <= lastDoubledCapacity ? m_rowsAllocated * 2 : m_rowsAllocated + linearStep;
    // Close to the limit the capacity takes what is left, so that a table is refused by its rows alone.
    capacity = std::min(capacity, (m_memoryLimit - m_bytesBeside) / sizeof(double) / columns);
    return std::max(capacity, rows);
}

bool XPTableData::resizeColumns(std::uint64_t columns, std::uint64_t rowCapacity) {
    if (rowCapacity > m_rowsAllocated) {
        for (Column& column : m_columns) {
            // The system moves pages instead of values where a column is large.
            void* grown = std::realloc(column.get(), rowCapacity * sizeof(double)); // NOLINT(*-no-malloc)
            if (grown == nullptr)
                return false;
            static_cast<void>(column.release()); // NOLINT(bugprone-unused-return-value): freed by realloc
            column.reset(static_cast<double*>(grown));
        }
        m_rowsAllocated = rowCapacity;
    }
    while (m_columns.size() < columns) {
        Column column(
            static_cast<double*>(std::malloc(m_rowsAllocated * sizeof(double)))); // NOLINT(*-no-malloc)
        if (column == nullptr)
            return false;
        std::fill_n(column.get(), m_rowsFilled, missing);
        m_columns.push_back(std::move(column));
    }
    return true;
}

void XPTableData::fillRowsUpTo(std::uint64_t row) {
    const std::uint64_t end = std::min(m_rowsAllocated, (row / fillBlock + 1) * fillBlock);
    for (const Column& column : m_columns)
        std::fill(column.get() + m_rowsFilled, column.get() + end, missing);
    m_rowsFilled = end;
}

const double* XPTableData::getColumnDataOfIndex(std::uint64_t index) const {
    return index < m_columns.size() ? m_columns[index].get() : nullptr;
}

std::span<const double> XPTableData::column(std::uint64_t index) const {
    const double* values = getColumnDataOfIndex(index);
    return values == nullptr ? std::span<const double>()
                             : std::span(values, std::min(rowsNumber(), m_rowsFilled));
}

std::span<double> XPTableData::writableColumn(std::uint64_t index) {
    m_summariesHold = false;
    if (index >= m_columns.size())
        return {};
    return {m_columns[index].get(), std::min(rowsNumber(), m_rowsFilled)};
}

XValueRange XPTableData::getRangeOfColumnIndexWithValidValuesInRange(std::int32_t number,
                                                                     XValueRange validRange) const {
    if (number <= 0)
        return {0.0, static_cast<double>(rowsNumber() - 1)};
    const auto index = static_cast<std::uint64_t>(number) - 1;
    const bool openAbove = !std::isfinite(validRange.maximum);
    const bool openBelow = !std::isfinite(validRange.minimum);
    if (m_summariesHold && index < m_summaries.size() && openAbove) {
        if (openBelow)
            return m_summaries[index].all;
        if (validRange.minimum == smallestPositive)
            return m_summaries[index].positive;
    }
    return rangeOfValuesWithin(column(index), openBelow ? -greatestFinite : validRange.minimum,
                               openAbove ? greatestFinite : validRange.maximum);
}

void XPTableData::summarizeColumns() {
    m_summaries.clear();
    m_summaries.reserve(m_columns.size());
    for (std::uint64_t index = 0; index < m_columns.size(); ++index)
        m_summaries.push_back(summaryOf(column(index)));
    m_summariesHold = true;
}

XPTableData::ColumnSummary XPTableData::summaryOf(std::span<const double> values) {
    ColumnSummary summary;
    summary.blocks.reserve(values.size() / rowsPerBlock + 1);
    for (std::size_t at = 0; at < values.size(); at += rowsPerBlock) {
        const auto block = values.subspan(at, std::min<std::size_t>(rowsPerBlock, values.size() - at));
        const XValueRange all = rangeOfValuesWithin(block, -greatestFinite, greatestFinite);
        summary.blocks.push_back(all);
        summary.all = united(summary.all, all);
        if (all.minimum >= smallestPositive)
            summary.positive = united(summary.positive, all);
        else if (all.maximum >= smallestPositive)
            summary.positive =
                united(summary.positive, rangeOfValuesWithin(block, smallestPositive, all.maximum));
    }
    return summary;
}

std::span<const XValueRange> XPTableData::blockRanges(std::uint64_t index) const {
    return m_summariesHold && index < m_summaries.size() ? m_summaries[index].blocks
                                                         : std::span<const XValueRange>();
}

void XPTableData::removeColumnsWithoutData() {
    if (m_columns.empty())
        return;
    std::vector<Column> kept;
    std::vector<std::string> names;
    for (std::size_t index = 0; index < m_columns.size(); ++index) {
        const auto values = column(index);
        if (std::all_of(values.begin(), values.end(), [](double value) { return std::isnan(value); }))
            continue;
        kept.push_back(std::move(m_columns[index]));
        names.push_back(index < m_columnNames.size() ? m_columnNames[index]
                                                     : "Column " + std::to_string(kept.size()));
    }
    m_columns = std::move(kept);
    m_columnNames = std::move(names);
    m_summariesHold = false;
}

std::string XPTableData::debugDump() const {
    std::string dump;
    for (const std::string& name : m_columnNames)
        dump += name + ",";
    // Kept: no line break after the names, so the first row continues their line.
    for (std::uint64_t row = 0; row < rowsNumber(); ++row) {
        for (const Column& column : m_columns) {
            std::array<char, 400> text; // the longest finite double has 309 digits before the point
            const auto end = std::to_chars(text.data(), text.data() + text.size(), column[row],
                                           std::chars_format::fixed, 3);
            dump.append(text.data(), end.ptr);
            dump += ',';
        }
        dump += '\n';
    }
    return dump;
}

const std::vector<std::string>& XPTableData::columnNames() const {
    return m_columnNames;
}

void XPTableData::setColumnNames(std::vector<std::string> names) {
    m_columnNames = std::move(names);
}
