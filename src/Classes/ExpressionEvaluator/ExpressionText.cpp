// Replaces column names and scans for variables and functions.
#include "Classes/ExpressionEvaluator/ExpressionText.h"

#include <QSet>
#include <QStringList>

#include <algorithm>
#include <array>
#include <charconv>

namespace {

constexpr QChar quote(u'"');

/// In these a row's value depends on the rows before it, or on the moment (time).
constexpr std::array<std::string_view, 8> orderedFunctions = {"mean",     "delta", "integrate",  "lowpass",
                                                              "highpass", "fir",   "percentile", "time"};

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isNameCharacter(char c) {
    return isDigit(c) || c == '_' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

/// The column, from 0, of a variable name with no leading zero.
std::optional<std::uint64_t> columnOfVariable(std::string_view name, std::uint64_t columnsNumber) {
    if (name.size() < 2 || name[0] != 'c' || name[1] == '0')
        return {};
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(name.data() + 1, name.data() + name.size(), number);
    const bool isNumber = error == std::errc() && end == name.data() + name.size();
    if (!isNumber || number > std::min(columnsNumber, expressionText::greatestColumnNumber))
        return {};
    return number - 1;
}

/// Every place that can be a column variable, also inside of other words: one too many does no harm.
std::vector<std::uint64_t> columnsIn(std::string_view text, std::uint64_t columnsNumber) {
    std::vector<std::uint64_t> columns;
    for (std::size_t start = text.find('c'); start < text.size(); start = text.find('c', start + 1)) {
        const auto* const end = std::find_if_not(text.begin() + start + 1, text.end(), isDigit);
        const auto length = static_cast<std::size_t>(end - (text.begin() + start));
        if (const auto column = columnOfVariable(text.substr(start, length), columnsNumber))
            columns.push_back(*column);
    }
    std::sort(columns.begin(), columns.end());
    columns.erase(std::unique(columns.begin(), columns.end()), columns.end());
    return columns;
}

/// Everything between two quotes that follow each other, in one case.
QSet<QString> textsBetweenQuotes(const QString& text) {
    QSet<QString> quoted;
    const QStringList parts = text.split(quote);
    for (qsizetype i = 1; i + 1 < parts.size(); ++i)
        quoted.insert(parts[i].toCaseFolded());
    return quoted;
}

bool dependsOnRowOrder(std::string_view text) {
    for (const auto* word = text.begin(); word != text.end();) {
        const auto* const end = std::find_if_not(word, text.end(), isNameCharacter);
        const std::string_view name(word, static_cast<std::size_t>(end - word));
        // The library sees a number, an operator and a function in "1andmean".
        if (std::any_of(orderedFunctions.begin(), orderedFunctions.end(),
                        [name](std::string_view ordered) { return name.ends_with(ordered); }))
            return true;
        word = end == text.end() ? end : std::max(end, word + 1);
    }
    return false;
}

/// The operator that `text` begins with, or nothing. The library sees "or" in "orange".
std::string_view logicalOperatorAt(std::string_view text) {
    for (const std::string_view name : {"&&", "||", "and", "or"}) {
        if (text.starts_with(name))
            return name;
    }
    return {};
}

/// Of a name or a number at the start of `text`, at least 1.
std::size_t wordLength(std::string_view text) {
    const auto* const end =
        std::find_if_not(text.begin() + 1, text.end(), [](char c) { return isNameCharacter(c) || c == '.'; });
    return static_cast<std::size_t>(end - text.begin());
}

/// Of a text in quotes, with backslashes before quotes that it contains, or of a comment up to the end of its
/// line.
std::size_t skippedLength(std::string_view text) {
    if (text[0] == '#')
        return std::min(text.find('\n'), text.size());
    for (std::size_t i = 1; i < text.size(); ++i) {
        if (text[i] == '\\')
            ++i;
        else if (text[i] == '"')
            return i + 1;
    }
    return text.size();
}

std::string_view trimmed(std::string_view text) {
    const std::size_t first = text.find_first_not_of(' ');
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(' ') + 1 - first);
}

} // namespace

QString expressionText::withColumnVariables(QString text, std::span<const std::string> columnNames,
                                            const std::stop_token& stop) {
    // Many columns and few names in the text are the rule: what stands in quotes is looked up, not searched
    // for.
    QSet<QString> quoted = textsBetweenQuotes(text);
    for (std::size_t i = 0; i < columnNames.size() && !quoted.isEmpty() && !stop.stop_requested(); ++i) {
        const QString name = QString::fromStdString(columnNames[i]);
        if (!name.contains(quote) && !quoted.contains(name.toCaseFolded()))
            continue;
        text.replace(quote + name + quote, QLatin1Char('c') + QString::number(i + 1), Qt::CaseInsensitive);
        quoted = textsBetweenQuotes(text);
    }
    return text;
}

std::optional<PreparedExpression> expressionText::prepare(const QString& text, std::uint64_t columnsNumber) {
    if (!std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 128; }))
        return {};
    PreparedExpression prepared;
    prepared.text = text.toStdString();
    prepared.columns = columnsIn(prepared.text, columnsNumber);
    prepared.usesRow = prepared.text.find("row") != std::string::npos;
    prepared.dependsOnRowOrder = dependsOnRowOrder(prepared.text);
    prepared.bareColumn = columnOfVariable(trimmed(prepared.text), columnsNumber);
    return prepared;
}

std::optional<std::string> expressionText::misplacedLogicalOperator(std::string_view text) {
    bool afterOperand = false;
    for (std::size_t i = 0; i < text.size();) {
        const std::string_view rest = text.substr(i);
        const std::string_view logical = logicalOperatorAt(rest);
        if (!logical.empty()) {
            if (!afterOperand)
                return "Unexpected operator \"" + std::string(logical) + "\" found at position " +
                       std::to_string(i) + ".";
            afterOperand = false;
            i += logical.size();
        } else if (isNameCharacter(rest[0]) || rest[0] == '.') {
            afterOperand = true;
            i += wordLength(rest);
        } else if (rest[0] == '"' || rest[0] == '#') { // a text, a comment
            afterOperand = afterOperand || rest[0] == '"';
            i += skippedLength(rest);
        } else {
            const bool closesOperand = std::string_view(")]}").find(rest[0]) != std::string_view::npos;
            const bool keepsOperand = std::string_view(" \t!'%").find(rest[0]) != std::string_view::npos;
            afterOperand = closesOperand || (keepsOperand && afterOperand);
            ++i;
        }
    }
    return {};
}

std::optional<std::string> expressionText::assignmentIn(std::string_view text) {
    for (std::size_t i = 0; i < text.size();) {
        const std::string_view rest = text.substr(i);
        if (rest[0] == '"' || rest[0] == '#') { // a text, a comment
            i += skippedLength(rest);
            continue;
        }
        const bool isComparison = rest.size() > 1 && rest[1] == '=' &&
                                  std::string_view("=<>!").find(rest[0]) != std::string_view::npos;
        if (rest[0] == '=' && !isComparison)
            return "Nothing can be assigned: \"=\" at position " + std::to_string(i) + " (\"==\" compares).";
        i += isComparison ? 2 : 1;
    }
    return {};
}
