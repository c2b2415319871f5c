// Finds the word at the cursor, and what begins with it.
#include "Classes/CurvesSidebar/ExpressionSuggestions.h"

#include "Classes/ExpressionEvaluator/FunctionHelp.h"

#include <QRegularExpression>
#include <QSet>

namespace {

constexpr qsizetype fewestLetters = 2;
/// A table may have tens of thousands of columns: whoever looks for a later one types another letter.
constexpr std::size_t mostColumns = 200;
constexpr QChar quote = u'"';

bool isOfName(QChar letter) {
    return letter == u'_' || (letter.unicode() < 128 && letter.isLetterOrNumber());
}

bool isVariable(const QString& name) {
    static const QRegularExpression variable(QStringLiteral("^(c\\d+|row|pi|e)$"));
    return variable.match(name).hasMatch();
}

/// The first of columns with equal names is the one that the name means.
Suggestion column(const QString& name, qsizetype index, bool isFirst) {
    const QString variable = QStringLiteral("c%1").arg(index + 1);
    const bool isPlain = isFirst && !name.isEmpty() && !name.contains(quote);
    const QString quoted = quote + name + quote;
    return {quoted, variable, isPlain ? quoted : variable};
}

} // namespace

Suggestions suggestionsFor(const QString& text, qsizetype cursor, const QStringList& columnNames,
                           bool asked) {
    const QStringView before = QStringView(text).first(cursor);
    Suggestions found;
    const bool inQuotes = before.count(quote) % 2 == 1;
    if (inQuotes) {
        found.start = before.lastIndexOf(quote);
    } else {
        found.start = cursor;
        while (found.start > 0 && isOfName(before[found.start - 1]))
            --found.start;
    }
    const QString typed = before.sliced(found.start + (inQuotes ? 1 : 0)).toString();
    found.length = cursor - found.start;
    if (inQuotes && cursor < text.size() && text[cursor] == quote)
        ++found.length;
    if (!asked && !inQuotes && (typed.size() < fewestLetters || isVariable(typed) || typed[0].isDigit()))
        return found;

    // Equal names begin alike, so those that fit are all that need to be compared.
    QSet<QString> seen;
    for (qsizetype i = 0; i < columnNames.size() && found.list.size() < mostColumns; ++i) {
        const QString& name = columnNames[i];
        if (!name.startsWith(typed, Qt::CaseInsensitive))
            continue;
        const QString folded = name.toCaseFolded();
        found.list.push_back(column(name, i, !seen.contains(folded)));
        seen.insert(folded);
    }
    if (inQuotes)
        return found;
    const bool isCalled = cursor < text.size() && text[cursor] == u'(';
    for (const FunctionHelp& function : functionsOfExpressions()) {
        if (function.name.startsWith(typed))
            found.list.push_back({function.signature, function.help,
                                  isCalled ? function.name : function.name + QLatin1Char('(')});
    }
    return found;
}
