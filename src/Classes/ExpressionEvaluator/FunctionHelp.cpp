// Asks the parser library, with our functions registered, what it knows.
#include "Classes/ExpressionEvaluator/FunctionHelp.h"

#include "Classes/ExpressionEvaluator/EvaluatorFunctions.h"
#include "Classes/ExpressionEvaluator/ExpressionErrors.h"

#include <muparserx/mpParser.h>

#include <QStringList>

#include <algorithm>
#include <array>
#include <map>
#include <string_view>

namespace {

/// Of the library, for texts and arrays: no column of numbers comes of them.
constexpr std::array<std::string_view, 10> notForNumbers{"eye",     "ones",   "parserid", "size",    "sizeof",
                                                         "str2dbl", "strlen", "tolower",  "toupper", "zeros"};

/// Names of arguments where letters in their order would not tell enough.
const std::map<std::string_view, const char*>& argumentNames() {
    static const std::map<std::string_view, const char*> names{
        {"mean", "x, n"},
        {"lowpass", "x, a"},
        {"highpass", "x, a"},
        {"percentile", "x, p, n"},
        {"fir", "x, b1, b2, ..."},
        {"mktimestamp", "year, month, day, hour, minute, second"},
        {"atan2", "y, x"},
        {"year", "t"},
        {"month", "t"},
        {"dayofmonth", "t"},
        {"dayofweek", "t"},
        {"dayofyear", "t"},
        {"hour", "t"},
        {"minute", "t"},
        {"second", "t"},
    };
    return names;
}

QString arguments(const std::string& name, int count) {
    if (const auto own = argumentNames().find(name); own != argumentNames().end())
        return QString::fromLatin1(own->second);
    static const QStringList letters{QStringLiteral("x"), QStringLiteral("y"), QStringLiteral("z")};
    return count < 0 ? QStringLiteral("x, y, ...")
                     : letters.first(std::min<qsizetype>(count, letters.size())).join(QLatin1String(", "));
}

FunctionHelp helpOf(const std::string& name, const mup::ICallback& function) {
    FunctionHelp help{QString::fromStdString(name), {}, QString::fromLatin1(function.GetDesc())};
    help.signature = QStringLiteral("%1(%2)").arg(help.name, arguments(name, function.GetArgc()));
    // The library begins some of its own texts with a signature.
    const qsizetype dash = help.help.indexOf(QLatin1String(" - "));
    if (dash >= 0 && help.help.startsWith(help.name + QLatin1Char('(')))
        help.help.remove(0, dash + 3);
    if (!help.help.isEmpty())
        help.help[0] = help.help[0].toUpper();
    while (help.help.endsWith(QLatin1Char('.')))
        help.help.chop(1);
    return help;
}

std::vector<FunctionHelp> ask() {
    expressionErrors::prepareLibrary();
    mup::ParserX parser(mup::pckALL_NON_COMPLEX);
    defineEvaluatorFunctions(parser);
    std::vector<FunctionHelp> functions;
    for (const auto& [name, token] : parser.GetFunDef()) {
        if (std::find(notForNumbers.begin(), notForNumbers.end(), name) == notForNumbers.end())
            functions.push_back(helpOf(name, *token->AsICallback()));
    }
    return functions;
}

} // namespace

const std::vector<FunctionHelp>& functionsOfExpressions() {
    static const std::vector<FunctionHelp> functions = ask();
    return functions;
}
