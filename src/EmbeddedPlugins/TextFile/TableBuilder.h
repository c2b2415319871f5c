// Puts the fields and lines of a tokeniser into a table: header, skipped lines, conversion, positions.
#pragma once

#include "Core/ShortDecimal.h"
#include "Core/TextToDouble.h"
#include "EmbeddedPlugins/Common/XPTableData.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

/// Which lines of the input become rows.
struct LineSelection {
    int skiplines = 0;               ///< lines to drop, counted after the header
    int everyNthLine = 1;            ///< takes one line of N; below 2 every line
    bool extractColumnNames = false; ///< the very first line holds the column names
};

/// The sink of one read. Every line end counts, so a blank line advances the row and counts as a skipped
/// line. One thread. Throws what growing the table throws.
class TableBuilder {
  public:
    TableBuilder(XPTableData& table, LineSelection selection)
        : m_table(table), m_selection(selection), m_linesLeftToSkip(selection.skiplines),
          m_inHeader(selection.extractColumnNames) {}

    /// The bytes that the next fields are parts of, if no chunk before holds their beginning.
    /// `shortDecimal::window` bytes before them must be readable.
    void setChunk(std::string_view bytes) { m_chunk = bytes; }

    void field(std::string_view text) {
        if (m_inHeader) [[unlikely]] {
            headerField(text);
            return;
        }
        if (m_linesLeftToSkip > 0)
            return;
        double value = 0;
        if (!isInChunk(text) || !shortDecimal::read(text, value))
            value = textToDouble(text);
        if (m_currentCol >= m_columnsOfRowsBefore) [[unlikely]]
            holdBack(value);
        else
            m_table.writeValueAtColRow(value, m_currentCol, m_currentRow);
        ++m_currentCol;
    }

    void line(char terminator) {
        ++(terminator == '\n' ? m_lineFeeds : m_carriageReturns);
        if (m_inHeader) [[unlikely]] {
            headerLine();
        } else if (m_linesLeftToSkip > 0) {
            --m_linesLeftToSkip;
        } else {
            endRow();
            m_currentCol = 0;
            ++m_currentRow;
            if (m_selection.everyNthLine > 1)
                m_linesLeftToSkip = m_selection.everyNthLine - 1;
        }
    }

    /// The input has ended, perhaps without a line end.
    void finish() { endRow(); }

    /// The line of the input that is being read, from 1, for messages. A carriage return and a line feed are
    /// one line end here; line ends within quotes do not count.
    std::uint64_t currentLine() const { return std::max(m_lineFeeds, m_carriageReturns) + 1; }

  private:
    static std::uintptr_t address(const char* byte) { return reinterpret_cast<std::uintptr_t>(byte); }
    bool isInChunk(std::string_view text) const {
        // By address, since the text may lie in another buffer: pointers into two arrays have no order.
        return address(text.data()) - address(m_chunk.data()) < m_chunk.size();
    }
    /// A row that is wider than all before it makes every new column as long as the table. Its new values
    /// wait for its end, so that the table grows once, or is refused before it grows.
    void holdBack(double value) {
        m_heldBack.push_back(value);
        if (std::has_single_bit(m_heldBack.size()))
            m_table.checkRoomFor(m_currentCol, m_currentRow);
    }
    void endRow() {
        if (m_currentRow > 0 && m_heldBack.empty())
            return;
        for (std::size_t i = m_heldBack.size(); i-- > 0;) // the last column first
            m_table.writeValueAtColRow(m_heldBack[i], m_columnsOfRowsBefore + i, m_currentRow);
        m_heldBack.clear();
        m_columnsOfRowsBefore = m_table.columnsNumber();
    }
    void headerField(std::string_view text);
    void headerLine();

    XPTableData& m_table;
    LineSelection m_selection;
    int m_linesLeftToSkip;
    bool m_inHeader;
    std::string_view m_chunk;
    std::uint64_t m_currentCol = 0;
    std::uint64_t m_currentRow = 0;
    std::uint64_t m_columnsOfRowsBefore =
        std::numeric_limits<std::uint64_t>::max(); ///< the first row is free
    std::vector<double> m_heldBack;                ///< values of the current row from that column on
    std::uint64_t m_lineFeeds = 0;
    std::uint64_t m_carriageReturns = 0;
    std::vector<std::string> m_columnNames;
};
