// What the first bytes of a data file, and the table read from it, say about the settings they were read
// with.
#pragma once

#include "EmbeddedPlugins/Common/XPTableData.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stop_token>
#include <string_view>
#include <vector>

/// Encodings that can be told by looking; what else is no UTF-8 still has its digits where they belong.
enum class TextKind { Utf8, Utf16, ZeroBytes };

/// What the head of a file looks like. Delimiter types are those of XPDataReader.
struct HeadSurvey {
    static constexpr std::size_t bytes = std::size_t{64} << 10U; ///< enough of a file to look at

    TextKind kind = TextKind::Utf8;
    bool windowsLineEnds = false; ///< at least nine in ten lines end in CR LF
    /// The splitter at which most lines fall into two numbers or more; absent when there is none.
    std::optional<int> fittingDelimiter;
    /// By delimiter type from 1 on: whether the first line names what the second one holds.
    std::array<bool, 6> firstLineNames{};
};

/// `isWhole` says that nothing follows `head`; otherwise its last line, cut off, is left out. Any thread.
HeadSurvey surveyHead(std::string_view head, bool isWhole);

struct TableSurvey {
    std::uint64_t rows = 0; ///< 0 when the table has no column
    std::uint64_t columns = 0;
    std::uint64_t emptyRows = 0;             ///< without any value
    std::uint64_t unreadableCells = 0;       ///< without a value, in rows that have one
    bool alternateRowsEmpty = false;         ///< of every two rows, with few exceptions, one is empty
    std::vector<std::uint64_t> emptyColumns; ///< from 0
};

/// Reads every value once; nothing when it was stopped. Any thread.
std::optional<TableSurvey> surveyTable(const XPTableData& table, const std::stop_token& stop);
