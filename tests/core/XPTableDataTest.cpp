// The table: growth, NaN in every slot that was not written, ranges, compaction, refusal before allocation.
#include "EmbeddedPlugins/Common/XPTableData.h"
#include "support/Numbers.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace {

using support::nan;
constexpr double infinity = std::numeric_limits<double>::infinity();

/// NaN equals NaN.
void expectRange(XValueRange range, XValueRange expected, const char* what) {
    const auto same = [](double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); };
    EXPECT_TRUE(same(range.minimum, expected.minimum) && same(range.maximum, expected.maximum))
        << what << ": {" << range.minimum << ", " << range.maximum << '}';
}

TEST(XPTableData, GrowsByDoublingAndThenByAMillionRows) {
    XPTableData table;
    table.writeValueAtColRow(1, 2, 0);
    EXPECT_EQ(table.columnsNumber(), 3U);
    EXPECT_EQ(table.rowsAllocated(), 8U);
    std::vector<std::uint64_t> capacities;
    for (std::uint64_t row = 0; row < 2'100'000; ++row) {
        table.writeValueAtColRow(static_cast<double>(row), 0, row);
        if (capacities.empty() || capacities.back() != table.rowsAllocated())
            capacities.push_back(table.rowsAllocated());
    }
    std::vector<std::uint64_t> expected;
    for (std::uint64_t capacity = 8; capacity <= 1'048'576; capacity *= 2)
        expected.push_back(capacity);
    expected.insert(expected.end(), {2'048'576, 3'048'576});
    EXPECT_EQ(capacities, expected);

    const auto first = table.column(0);
    const auto second = table.column(1);
    ASSERT_EQ(first.size(), 2'100'000U);
    for (std::uint64_t row = 0; row < first.size(); ++row)
        ASSERT_TRUE(first[row] == static_cast<double>(row) && std::isnan(second[row])) << row;

    XPTableData late;
    late.writeValueAtColRow(5, 0, 100);
    EXPECT_EQ(late.rowsAllocated(), 101U);
    late.writeNullAtColRow(3, 7);
    EXPECT_TRUE(std::isnan(late.column(3)[100])) << "a column that comes late is NaN from its first row on";
    EXPECT_EQ(late.getColumnDataOfIndex(4), nullptr);
    EXPECT_TRUE(late.column(4).empty());
}

TEST(XPTableData, keptAnEmptyTableHasOneRow) {
    SCOPED_TRACE("kept: rowsNumber of an empty table is 1");
    XPTableData table;
    EXPECT_EQ(table.rowsNumber(), 1U);
    EXPECT_EQ(table.columnsNumber(), 0U);
    EXPECT_EQ(table.getColumnDataOfIndex(0), nullptr);
    expectRange(table.getRangeOfColumnIndexWithValidValuesInRange(1, {}), {nan, nan}, "no column");
    table.writeValueAtColRow(1, 0, 0);
    EXPECT_EQ(table.rowsNumber(), 1U);
}

TEST(XPTableData, RangesAreTheSameFromASummaryAndFromAScan) {
    const struct {
        const char* name;
        std::vector<double> values;
        XValueRange valid;
        XValueRange expected;
    } rows[] = {
        {"all values", {3, -1, nan, 7, infinity, -infinity}, {nan, nan}, {-1, 7}},
        {"an infinite bound is open", {3, -1, 7}, {-infinity, infinity}, {-1, 7}},
        {"positive", {3, -1, 0, 1e-310, 7}, {XPTableData::smallestPositive, nan}, {3, 7}},
        {"none positive", {-3, 0, nan}, {XPTableData::smallestPositive, nan}, {nan, nan}},
        {"limited above", {3, -1, 5, 5.5}, {nan, 5}, {-1, 5}},
        {"limited below", {3, -1, 5, 2}, {2, nan}, {2, 5}},
        {"only NaN", {nan, nan, nan, nan, nan}, {nan, nan}, {nan, nan}},
        {"greatest in the tail", {1, 2, 3, 4, 9}, {nan, nan}, {1, 9}},
        {"least in the second lane", {5, -2, 3, 4, 9, 8, 7, 6}, {nan, nan}, {-2, 9}},
    };
    for (const auto& row : rows) {
        XPTableData table;
        for (std::size_t i = 0; i < row.values.size(); ++i)
            table.writeValueAtColRow(row.values[i], 1, i);
        expectRange(table.getRangeOfColumnIndexWithValidValuesInRange(2, row.valid), row.expected, row.name);
        table.summarizeColumns();
        expectRange(table.getRangeOfColumnIndexWithValidValuesInRange(2, row.valid), row.expected, row.name);
        expectRange(table.getRangeOfColumnIndexWithValidValuesInRange(0, row.valid),
                    {0, static_cast<double>(row.values.size() - 1)}, "the row number");
        expectRange(table.getRangeOfColumnIndexWithValidValuesInRange(3, row.valid), {nan, nan},
                    "no such column");
    }
    XPTableData table;
    table.writeValueAtColRow(1, 0, 0);
    table.summarizeColumns();
    table.writeValueAtColRow(2, 0, 1);
    expectRange(table.getRangeOfColumnIndexWithValidValuesInRange(1, {}), {1, 2},
                "a write forgets the summary");
}

TEST(XPTableData, RangesOfLongColumnsAreTheSameFromASummaryAndFromAScan) {
    std::mt19937 random(5);
    for (int i = 0; i < 100; ++i) {
        XPTableData table;
        double base = 0;
        for (std::uint64_t row = 0, rows = random() % 20'000; row < rows; ++row) {
            if (row % 1000 == 0) // stretches of one sign, of both, and without any value
                base = random() % 4 == 0 ? nan : static_cast<double>(random() % 9) - 4;
            table.writeValueAtColRow(base + static_cast<double>(random() % 2000) / 1000, 0, row);
        }
        const XValueRange all{nan, nan};
        const XValueRange positive{XPTableData::smallestPositive, nan};
        const auto ranges = [&] {
            return std::array{table.getRangeOfColumnIndexWithValidValuesInRange(1, all),
                              table.getRangeOfColumnIndexWithValidValuesInRange(1, positive)};
        };
        const auto scanned = ranges();
        table.summarizeColumns();
        const auto summarized = ranges();
        for (const std::size_t which : {0, 1})
            expectRange(summarized[which], scanned[which], which == 0 ? "all" : "positive");
        const auto values = table.column(0);
        const auto blocks = table.blockRanges(0);
        ASSERT_EQ(blocks.size(), (values.size() + XPTableData::rowsPerBlock - 1) / XPTableData::rowsPerBlock);
        for (std::size_t row = 0; row < values.size(); ++row) {
            const XValueRange& block = blocks[row / XPTableData::rowsPerBlock];
            const bool isWithin = values[row] >= block.minimum && values[row] <= block.maximum;
            ASSERT_TRUE(isWithin || std::isnan(values[row])) << row;
        }
        table.writeNullAtColRow(0, 0);
        EXPECT_TRUE(table.blockRanges(0).empty()) << "a write forgets the summary";
    }
}

TEST(XPTableData, DropsColumnsWithoutData) {
    const auto namesAfter = [](std::vector<std::string> names, std::uint64_t emptyColumn) {
        XPTableData table;
        for (std::uint64_t column = 0; column < 3; ++column)
            table.writeValueAtColRow(column == emptyColumn ? nan : static_cast<double>(column), column, 1);
        table.setColumnNames(std::move(names));
        table.summarizeColumns();
        table.removeColumnsWithoutData();
        EXPECT_EQ(table.columnsNumber(), 2U);
        EXPECT_EQ(table.rowsNumber(), 2U);
        const double second = emptyColumn == 2 ? 1 : 2;
        expectRange(table.getRangeOfColumnIndexWithValidValuesInRange(2, {}), {second, second}, "renumbered");
        return table.columnNames();
    };
    EXPECT_EQ(namesAfter({"a", "b", "c"}, 1), (std::vector<std::string>{"a", "c"}));
    EXPECT_EQ(namesAfter({"a", "b"}, 0), (std::vector<std::string>{"b", "Column 2"}));

    XPTableData allEmpty;
    allEmpty.writeNullAtColRow(1, 3);
    allEmpty.removeColumnsWithoutData();
    EXPECT_EQ(allEmpty.columnsNumber(), 0U);
    EXPECT_EQ(allEmpty.rowsNumber(), 4U);
}

TEST(XPTableData, keptTheDumpHasNoLineBreakAfterTheNames) {
    SCOPED_TRACE("kept: the first row continues the line of the names");
    XPTableData table;
    table.writeValueAtColRow(1.5, 0, 0);
    table.writeValueAtColRow(-2.0004, 1, 1);
    table.setColumnNames({"a", "b"});
    EXPECT_EQ(table.debugDump(), "a,b,1.500,nan,\nnan,-2.000,\n");
}

TEST(XPTableData, RefusesToGrowBeyondItsLimitAndStaysAsItWas) {
    XPTableData table;
    table.setMemoryLimit(3 * 100 * sizeof(double));
    for (std::uint64_t row = 0; row < 100; ++row) {
        for (std::uint64_t column = 0; column < 3; ++column)
            table.writeValueAtColRow(1, column, row);
    }
    EXPECT_EQ(table.rowsAllocated(), 100U) << "the capacity takes what the limit leaves";
    const std::pair<std::uint64_t, std::uint64_t> tooFar[] = {
        {0, 100}, {3, 0}, {10'000, 0}, {0, 1ULL << 62U}, {1ULL << 40U, 1ULL << 40U}, {~0ULL, 0}, {0, ~0ULL}};
    for (const auto& [column, row] : tooFar)
        EXPECT_THROW(table.writeValueAtColRow(2, column, row), TableTooLarge) << column << ", " << row;
    EXPECT_EQ(table.columnsNumber(), 3U);
    EXPECT_EQ(table.rowsNumber(), 100U);
    EXPECT_EQ(table.column(2)[99], 1);
}

} // namespace
