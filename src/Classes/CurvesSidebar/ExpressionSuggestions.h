// What may be meant by what is being typed into an expression.
#pragma once

#include <QString>
#include <QStringList>

#include <vector>

/// Columns first, in their order, then functions by name.
struct Suggestion {
    QString label; ///< what the list shows: a column's name in quotes, a function with its arguments
    QString help;  ///< one line: the column's variable, what the function does
    QString text;  ///< what takes the place of what was typed

    bool operator==(const Suggestion&) const = default;
};

struct Suggestions {
    qsizetype start = 0;  ///< of the text that is replaced
    qsizetype length = 0; ///< of the same
    std::vector<Suggestion> list;
};

/// For the name, or the opened quote, that ends at `cursor`. Unless they were `asked` for, nothing is
/// suggested for fewer than two letters of a name, nor for a name that already stands for a value. A column
/// whose name could not be told from another one's is meant by its variable.
Suggestions suggestionsFor(const QString& text, qsizetype cursor, const QStringList& columnNames, bool asked);
