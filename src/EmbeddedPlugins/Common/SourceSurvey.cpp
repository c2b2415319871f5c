// Tokenises the head of a file at every splitter, and counts the missing values of a table.
#include "EmbeddedPlugins/Common/SourceSurvey.h"

#include "Core/TextToDouble.h"
#include "libparsers/csv.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <string>

namespace {

using Line = std::vector<std::string>;

constexpr std::array<const char*, 6> delimitersOfType{nullptr, ",", ";", "\t", " ", " \t"};
/// In the order of trust: what stands in a file for another reason comes later.
constexpr std::array<int, 4> splitters{3, 2, 1, 4};
constexpr std::size_t linesToSplit = 200;

bool isNumber(const std::string& field) {
    return !std::isnan(textToDouble(field));
}

bool hasLetter(const std::string& field) {
    return std::any_of(field.begin(), field.end(), [](char c) {
        const auto lower = static_cast<unsigned char>(c | 0x20);
        return (lower >= 'a' && lower <= 'z') || static_cast<unsigned char>(c) >= 0x80;
    });
}

/// Lines that hold anything.
std::vector<Line> splitLines(std::string_view head, const char* delimiters) {
    std::vector<Line> lines;
    Line line;
    CSVParser parser(delimiters);
    parser.mFieldCallback = [&line](const char* field) { line.emplace_back(field); };
    parser.mLineCallback = [&lines, &line] {
        const bool blank = line.size() == 1 && line.front().empty();
        if (!blank && lines.size() < linesToSplit)
            lines.push_back(line);
        line.clear();
    };
    parser.parse(head.data(), head.size());
    parser.finishParsing();
    return lines;
}

/// The first line, which may hold names, counts only where it is alone.
bool mostFallIntoNumbers(const std::vector<Line>& lines) {
    const auto begin = lines.begin() + (lines.size() > 1 ? 1 : 0);
    const auto fitting = std::count_if(begin, lines.end(), [](const Line& line) {
        return std::count_if(line.begin(), line.end(), isNumber) >= 2;
    });
    return 2 * fitting > lines.end() - begin;
}

/// Whether some field of the first line is a word over a number of the second.
bool firstNamesSecond(const std::vector<Line>& lines) {
    if (lines.size() < 2)
        return false;
    const Line &first = lines[0], &second = lines[1];
    for (std::size_t i = 0; i < std::min(first.size(), second.size()); ++i) {
        if (hasLetter(first[i]) && !isNumber(first[i]) && isNumber(second[i]))
            return true;
    }
    return false;
}

TextKind kindOf(std::string_view head) {
    if (head.starts_with("\xFF\xFE") || head.starts_with("\xFE\xFF"))
        return TextKind::Utf16;
    std::array<std::size_t, 2> zeros{}; // at even and at odd places
    for (std::size_t i = 0; i < head.size(); ++i)
        zeros[i % 2] += head[i] == '\0' ? 1 : 0;
    if (zeros[0] + zeros[1] == 0)
        return TextKind::Utf8;
    // Every digit and separator of UTF-16 has one zero byte, all at the same side.
    const auto [few, many] = std::minmax(zeros[0], zeros[1]);
    return few == 0 && 2 * many > head.size() / 2 ? TextKind::Utf16 : TextKind::ZeroBytes;
}

bool hasWindowsLineEnds(std::string_view head) {
    std::size_t lineFeeds = 0, pairs = 0;
    for (std::size_t i = 0; i < head.size(); ++i) {
        if (head[i] != '\n')
            continue;
        ++lineFeeds;
        pairs += i > 0 && head[i - 1] == '\r' ? 1 : 0;
    }
    return pairs > 0 && 10 * pairs >= 9 * lineFeeds;
}

/// The values of the rows counted so far that are missing, a block of rows at a time.
class MissingCounter {
  public:
    explicit MissingCounter(const XPTableData& table)
        : m_table(table), m_filled(table.columnsNumber()),
          m_missing(std::clamp<std::uint64_t>(valuesPerBlock / std::max<std::size_t>(m_filled.size(), 1), 16,
                                              valuesPerBlock / 128)) {}

    std::uint64_t blockRows() const { return m_missing.size(); }

    void count(std::uint64_t begin, std::uint64_t end) {
        std::fill(m_missing.begin(), m_missing.end(), 0);
        for (std::uint64_t col = 0; col < m_filled.size(); ++col) {
            const std::span<const double> values = m_table.column(col);
            std::uint64_t filled = 0;
            for (std::uint64_t row = begin; row < end; ++row) {
                const bool missing = row >= values.size() || std::isnan(values[row]);
                m_missing[row - begin] += missing ? 1 : 0;
                filled += missing ? 0 : 1;
            }
            m_filled[col] += filled;
        }
        for (std::uint64_t row = begin; row < end; ++row)
            endRow(row, m_missing[row - begin]);
    }

    TableSurvey survey(std::uint64_t rows) const {
        TableSurvey result = m_result;
        result.rows = rows;
        result.columns = m_filled.size();
        // One pair may differ, such as a line of names and the empty row after it: short files have few
        // others.
        const std::uint64_t pairs = rows / 2, alike = m_halfEmptyPairs + (pairs >= 3 ? 1 : 0);
        result.alternateRowsEmpty = pairs > 0 && 10 * alike >= 9 * pairs;
        for (std::uint64_t col = 0; col < m_filled.size(); ++col) {
            if (m_filled[col] == 0)
                result.emptyColumns.push_back(col);
        }
        return result;
    }

  private:
    static constexpr std::uint64_t valuesPerBlock = std::uint64_t{1} << 20U;

    void endRow(std::uint64_t row, std::uint64_t missing) {
        const bool empty = missing == m_filled.size();
        if (empty)
            ++m_result.emptyRows;
        else
            m_result.unreadableCells += missing;
        if (row % 2 == 1 && empty != m_rowBeforeWasEmpty)
            ++m_halfEmptyPairs;
        m_rowBeforeWasEmpty = empty;
    }

    const XPTableData& m_table;
    std::vector<std::uint64_t> m_filled;  ///< values by column
    std::vector<std::uint64_t> m_missing; ///< by row of the block
    std::uint64_t m_halfEmptyPairs = 0;
    bool m_rowBeforeWasEmpty = false;
    TableSurvey m_result;
};

} // namespace

HeadSurvey surveyHead(std::string_view head, bool isWhole) {
    HeadSurvey survey;
    survey.kind = kindOf(head);
    if (survey.kind != TextKind::Utf8)
        return survey;
    if (!isWhole)
        head = head.substr(0, head.find_last_of("\r\n") + 1);
    survey.windowsLineEnds = hasWindowsLineEnds(head);
    for (std::size_t type = 1; type < delimitersOfType.size(); ++type)
        survey.firstLineNames[type] = firstNamesSecond(splitLines(head, delimitersOfType[type]));
    const auto* const fitting = std::find_if(splitters.begin(), splitters.end(), [head](int type) {
        return mostFallIntoNumbers(splitLines(head, delimitersOfType[static_cast<std::size_t>(type)]));
    });
    if (fitting != splitters.end())
        survey.fittingDelimiter = *fitting;
    return survey;
}

std::optional<TableSurvey> surveyTable(const XPTableData& table, const std::stop_token& stop) {
    const std::uint64_t rows = table.columnsNumber() == 0 ? 0 : table.rowsNumber();
    MissingCounter counter(table);
    for (std::uint64_t begin = 0; begin < rows; begin += counter.blockRows()) {
        if (stop.stop_requested())
            return std::nullopt;
        counter.count(begin, std::min(rows, begin + counter.blockRows()));
    }
    return counter.survey(rows);
}
