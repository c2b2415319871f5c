// Eight rows of a stack at once, and the search for a great rectangle.
#include "Core/FullPixels.h"

#include <bit>
#include <cstring>
#include <limits>
#include <numeric>

namespace {

constexpr FullPixels::RowBits allColumns = 0xff;
constexpr int mostBands = 64;
constexpr int rowsAtOnce = 8;
constexpr std::uint64_t everyRow = 0x0101010101010101; ///< times the bits of one

int parts(int whole, int part) {
    return (whole + part - 1) / part;
}

} // namespace

FullPixels::FullPixels(int width, int height)
    : m_width(width), m_height(height), m_lastRow(std::max(0, height - 1)),
      m_bandHeight(std::max(1, parts(height, mostBands))), m_bands(std::max(1, parts(height, m_bandHeight))),
      m_bandsPerRow(1.0 / m_bandHeight * (1 + 1e-12)),
      m_rowBits(static_cast<std::size_t>(parts(width, stackWidth)) * static_cast<std::size_t>(height)),
      m_fullBands(static_cast<std::size_t>(parts(width, stackWidth))) {}

void FullPixels::update(int stack) {
    const RowBits* const bits = bitsOf(stack);
    Bands full = 0;
    for (int band = 0; band < m_bands; ++band) {
        const PixelRange range = rows(band);
        if (std::all_of(bits + range.first, bits + range.end, [](RowBits row) { return row == allColumns; }))
            full |= Bands{1} << static_cast<unsigned>(band);
    }
    m_fullBands[static_cast<std::size_t>(stack)] = full;
    m_isAnyFull = m_isAnyFull || full != 0;
}

void FullPixels::clear() {
    if (m_isTouched) {
        std::fill(m_rowBits.begin(), m_rowBits.end(), RowBits{0});
        std::fill(m_fullBands.begin(), m_fullBands.end(), Bands{0});
    }
    m_isTouched = m_isAnyFull = false;
}

/// Whether the columns, as far as they lie in the stack, are full from the first row to the last.
bool FullPixels::areRowsFull(int stack, PixelRange columns, int first, int last) const {
    const int left = std::max(columns.first - stack * stackWidth, 0);
    const int right = std::min(columns.end - stack * stackWidth, stackWidth);
    const auto needed = static_cast<RowBits>((allColumns << left) & (allColumns >> (stackWidth - right)));
    const RowBits* const bits = bitsOf(stack);
    int row = first;
    for (; row + rowsAtOnce - 1 <= last; row += rowsAtOnce) {
        std::uint64_t rows = 0;
        std::memcpy(&rows, bits + row, sizeof rows);
        if ((needed * everyRow & ~rows) != 0)
            return false;
    }
    for (; row <= last; ++row) {
        if ((needed & ~bits[row]) != 0)
            return false;
    }
    return true;
}

ClipBox FullPixels::greatBox(double margin) const {
    constexpr double beyond = std::numeric_limits<double>::infinity();
    Box box = greatestBox();
    if (box.columns.isEmpty())
        return {1, 1, 0, 0};
    grow(box);
    return {box.columns.first == 0 ? -beyond : box.columns.first + margin,
            box.rows.first == 0 ? -beyond : box.rows.first + margin,
            box.columns.end == m_width ? beyond : box.columns.end - margin,
            box.rows.end == m_height ? beyond : box.rows.end - margin};
}

/// Of full bands.
FullPixels::Box FullPixels::greatestBox() const {
    Box greatest{{0, 0}, {0, 0}};
    std::int64_t greatestArea = 0;
    for (int begin = 0; begin < stacks(); ++begin) {
        const int left = columns(begin).first;
        Bands common = allBands();
        for (int end = begin; end < stacks(); ++end) {
            common &= m_fullBands[static_cast<std::size_t>(end)];
            const std::int64_t mostRows = std::int64_t{std::popcount(common)} * m_bandHeight;
            if (mostRows * (m_width - left) <= greatestArea)
                break;
            const int right = columns(end).end;
            for (Bands rest = common; rest != 0;) {
                const int first = std::countr_zero(rest);
                const int count = std::countr_one(rest >> first);
                rest &= ~(~Bands{0} >> (mostBands - count) << first);
                const int low = rows(first).first;
                const int high = rows(first + count - 1).end;
                const std::int64_t area = std::int64_t{high - low} * (right - left);
                if (area > greatestArea) {
                    greatestArea = area;
                    greatest = {{left, right}, {low, high}};
                }
            }
        }
    }
    return greatest;
}

/// By the full rows below and above it, then by the full columns of the stacks beside it.
void FullPixels::grow(Box& box) const {
    const int firstStack = box.columns.first / stackWidth;
    const int endStack = parts(box.columns.end, stackWidth);
    const auto isRowFull = [&](int row) {
        for (int stack = firstStack; stack < endStack; ++stack) {
            if (bitsOf(stack)[row] != allColumns)
                return false;
        }
        return true;
    };
    while (box.rows.first > 0 && isRowFull(box.rows.first - 1))
        --box.rows.first;
    while (box.rows.end < m_height && isRowFull(box.rows.end))
        ++box.rows.end;
    const auto fullColumns = [&](int stack) {
        const RowBits* const bits = bitsOf(stack);
        return std::accumulate(bits + box.rows.first, bits + box.rows.end, allColumns,
                               [](RowBits some, RowBits more) { return static_cast<RowBits>(some & more); });
    };
    if (firstStack > 0)
        box.columns.first -= std::countl_one(fullColumns(firstStack - 1));
    if (endStack < stacks())
        box.columns.end = std::min(m_width, box.columns.end + std::countr_one(fullColumns(endStack)));
}
