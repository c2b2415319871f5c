// The table of options, and how each of them is read.
#include "CommandLine.h"

#include "Classes/Axes/XAxisManager.h"
#include "Classes/PlotView/XPointsLibrary.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <span>

using namespace Qt::StringLiterals;

namespace {

constexpr int leastSide = 16;        // points
constexpr int greatestSide = 16'384; // points, and device pixels
constexpr double leastScale = 0.25;
constexpr double greatestScale = 16;
constexpr int greatestWidthOrSize = 10'000; // points

/// Raised by an option's reader; becomes the UsageError.
struct WrongUsage {
    QString reason;
};

[[noreturn]] void wrongUsage(const QString& reason) {
    throw WrongUsage{reason};
}

struct DelimiterName {
    const char* name;
    int type;
};
constexpr DelimiterName delimiterNames[] = {{"numbers", 0}, {"comma", 1}, {"semicolon", 2},
                                            {"tab", 3},     {"space", 4}, {"blank", 5}};

template <class Number>
std::optional<Number> numberOf(const QString& text) {
    const QByteArray bytes = text.toUtf8();
    Number number{};
    const auto [end, error] = std::from_chars(bytes.begin(), bytes.end(), number);
    if (error != std::errc() || end != bytes.end())
        return std::nullopt;
    return number;
}

int integerBetween(const QString& option, const QString& text, int least, int greatest) {
    const std::optional<int> number = numberOf<int>(text);
    if (!number || *number < least || *number > greatest)
        wrongUsage(
            u"%1 takes a whole number from %2 to %3, not \"%4\""_qs.arg(option).arg(least).arg(greatest).arg(
                text));
    return *number;
}

double realBetween(const QString& option, const QString& text, double least, double greatest) {
    const std::optional<double> number = numberOf<double>(text);
    if (!number || !(*number >= least && *number <= greatest))
        wrongUsage(
            u"%1 takes a number from %2 to %3, not \"%4\""_qs.arg(option).arg(least).arg(greatest).arg(text));
    return *number;
}

QStringList delimiters() {
    QStringList names;
    for (const DelimiterName& delimiter : delimiterNames)
        names += QLatin1String(delimiter.name);
    return names;
}

QStringList axisKinds() {
    QStringList identifiers;
    for (const auto& kind : XAxisManager::sharedManager().axisTypes())
        identifiers += kind.typeId();
    return identifiers;
}

QStringList shapes() {
    QStringList names;
    for (const auto& shape : XPointsLibrary::sharedLibrary().pointDescriptions())
        names += shape.displayName().toLower();
    return names;
}

int delimiterTypeOf(const QString& text) {
    for (const DelimiterName& delimiter : delimiterNames) {
        if (text == QLatin1String(delimiter.name))
            return delimiter.type;
    }
    wrongUsage(u"--delimiter takes %1, not \"%2\""_qs.arg(delimiters().join(u", "_qs), text));
}

QString axisKindOf(const QString& option, const QString& text) {
    if (!axisKinds().contains(text))
        wrongUsage(u"%1 takes %2, not \"%3\""_qs.arg(option, axisKinds().join(u", "_qs), text));
    return text;
}

int shapeOf(const QString& text) {
    for (const auto& shape : XPointsLibrary::sharedLibrary().pointDescriptions()) {
        if (shape.displayName().compare(text, Qt::CaseInsensitive) == 0)
            return shape.identifier();
    }
    wrongUsage(u"--shape takes %1, not \"%2\""_qs.arg(shapes().join(u", "_qs), text));
}

RgbaColor colorOf(const QString& text) {
    const QString digits = text.mid(1);
    const bool isHexadecimal = std::all_of(digits.begin(), digits.end(), [](QChar digit) {
        return digit.unicode() < 128 && std::isxdigit(digit.toLatin1()) != 0;
    });
    const uint packed = digits.toUInt(nullptr, 16);
    if (!text.startsWith(u'#') || digits.size() != 6 || !isHexadecimal)
        wrongUsage(u"--color takes #rrggbb, not \"%1\""_qs.arg(text));
    const auto channel = [packed](int shift) {
        return static_cast<double>((packed >> shift) & 0xFFU) / 255.0;
    };
    return {channel(16), channel(8), channel(0), 1.0};
}

RangeRequest rangeOf(const QString& option, const QString& text) {
    const qsizetype colon = text.indexOf(u':');
    if (colon < 0)
        wrongUsage(u"%1 takes MIN:MAX, not \"%2\""_qs.arg(option, text));
    const auto side = [&](const QString& number) -> std::optional<double> {
        if (number.isEmpty())
            return std::nullopt;
        const std::optional<double> value = numberOf<double>(number);
        if (!value || !std::isfinite(*value))
            wrongUsage(u"%1 takes finite numbers, not \"%2\""_qs.arg(option, number));
        return value;
    };
    const RangeRequest range{side(text.left(colon)), side(text.mid(colon + 1))};
    if (range.minimum && range.maximum &&
        !(*range.minimum < *range.maximum && std::isfinite(*range.maximum - *range.minimum)))
        wrongUsage(u"%1 takes a range that grows, not \"%2\""_qs.arg(option, text));
    return range;
}

void setSize(CommandLine& line, const QString& text) {
    const qsizetype cross = text.indexOf(u'x');
    if (cross < 0)
        wrongUsage(u"--size takes WIDTHxHEIGHT, not \"%1\""_qs.arg(text));
    line.width = integerBetween(u"--size"_qs, text.left(cross), leastSide, greatestSide);
    line.height = integerBetween(u"--size"_qs, text.mid(cross + 1), leastSide, greatestSide);
}

QString snapshotPathOf(const QString& text) {
    const QString lower = text.toLower();
    for (const QString& ending : {u".png"_qs, u".jpg"_qs, u".jpeg"_qs, u".pdf"_qs, u".svg"_qs}) {
        if (lower.endsWith(ending))
            return text;
    }
    if (text != u"-"_qs)
        wrongUsage(
            u"--snapshot writes png, jpg, pdf or svg, by the ending of its file, not \"%1\""_qs.arg(text));
    return text;
}

/// What is read so far: the options, and the x that holds for the curves to come.
struct Reading {
    CommandLine line;
    std::optional<QString> x;

    CurveRequest& lastCurve(const QString& option) {
        if (line.curves.empty())
            wrongUsage(u"%1 stands before any --y"_qs.arg(option));
        return line.curves.back();
    }
};

struct Option {
    const char* name;
    const char* argument; ///< null for a switch
    const char* help;
    void (*read)(Reading& reading, const QString& option, const QString& argument);
    QStringList (*choices)() = nullptr;
};

// One list for parsing and for all that users read of it; an empty name begins a group.
constexpr Option options[] = {
    {"", nullptr, "Data of a FILE that is no document:", nullptr},
    {"--delimiter", "KIND",
     "numbers (anywhere in a line; the default), comma, semicolon, tab, space or blank",
     [](Reading& r, const QString&, const QString& text) { r.line.delimiterType = delimiterTypeOf(text); },
     delimiters},
    {"--header", nullptr, "the first line holds the names of the columns",
     [](Reading& r, const QString&, const QString&) { r.line.header = true; }},
    {"--skip", "N", "leave out the first N lines (after the header)",
     [](Reading& r, const QString& o, const QString& text) {
         r.line.skipLines = integerBetween(o, text, 0, std::numeric_limits<int>::max());
     }},
    {"--every", "N", "take every N-th line",
     [](Reading& r, const QString& o, const QString& text) {
         r.line.everyNthLine = integerBetween(o, text, 0, std::numeric_limits<int>::max());
     }},
    {"", nullptr,
     "Curves (VALUE: a column number, 0 the row number, else a column name, else an expression):", nullptr},
    {"--x", "VALUE", "x of the curves after it; the row number if there is none",
     [](Reading& r, const QString&, const QString& text) { r.x = text; }},
    {"--y", "VALUE", "adds a curve",
     [](Reading& r, const QString&, const QString& text) {
         CurveRequest curve;
         curve.x = r.x;
         curve.y = text;
         r.line.curves.push_back(std::move(curve));
     }},
    {"--line-width", "N", "points, 0 for no line; this and the following dress the curve before them",
     [](Reading& r, const QString& o, const QString& text) {
         r.lastCurve(o).lineWidth = integerBetween(o, text, 0, greatestWidthOrSize);
     }},
    {"--shape", "NAME", "none, circle, ring, square, diamond, x or plus",
     [](Reading& r, const QString& o, const QString& text) {
         r.lastCurve(o).shapeIdentifier = shapeOf(text);
     },
     shapes},
    {"--shape-size", "N", "half the shape's width in points",
     [](Reading& r, const QString& o, const QString& text) {
         r.lastCurve(o).shapeSize = integerBetween(o, text, 0, greatestWidthOrSize);
     }},
    {"--point-size", "VALUE", "half the width of each point's shape",
     [](Reading& r, const QString& o, const QString& text) { r.lastCurve(o).pointSize = text; }},
    {"--color", "#RRGGBB", "colour of line and points",
     [](Reading& r, const QString& o, const QString& text) { r.lastCurve(o).color = colorOf(text); }},
    {"--opacity", "A", "from 0.01 to 1",
     [](Reading& r, const QString& o, const QString& text) {
         r.lastCurve(o).opacity = static_cast<float>(realBetween(o, text, 0.01, 1));
     }},
    {"--curve-title", "TEXT", "name in the legend",
     [](Reading& r, const QString& o, const QString& text) { r.lastCurve(o).title = text; }},
    {"", nullptr, "Plot area:", nullptr},
    {"--title", "TEXT", "title over the plot",
     [](Reading& r, const QString&, const QString& text) { r.line.title = text; }},
    {"--x-title", "TEXT", "title under the x axis",
     [](Reading& r, const QString&, const QString& text) { r.line.xTitle = text; }},
    {"--y-title", "TEXT", "title along the y axis",
     [](Reading& r, const QString&, const QString& text) { r.line.yTitle = text; }},
    {"--x-axis", "KIND", "numeric, log, pseudolog, timeline or zen (no ticks)",
     [](Reading& r, const QString& o, const QString& text) { r.line.xAxis = axisKindOf(o, text); },
     axisKinds},
    {"--y-axis", "KIND", "the same for y",
     [](Reading& r, const QString& o, const QString& text) { r.line.yAxis = axisKindOf(o, text); },
     axisKinds},
    {"--x-range", "MIN:MAX", "fixed range; an empty side follows the data",
     [](Reading& r, const QString& o, const QString& text) { r.line.xRange = rangeOf(o, text); }},
    {"--y-range", "MIN:MAX", "the same for y",
     [](Reading& r, const QString& o, const QString& text) { r.line.yRange = rangeOf(o, text); }},
    {"--legend", nullptr, "show the titles of the curves; pictures have no legend without it",
     [](Reading& r, const QString&, const QString&) { r.line.legend = true; }},
    {"", nullptr, "Outputs, for one FILE, without a window (\"-\" is standard output):", nullptr},
    {"--snapshot", "FILE", "a picture: png, jpg, pdf or svg, by its ending",
     [](Reading& r, const QString&, const QString& text) { r.line.snapshots += snapshotPathOf(text); }},
    {"--size", "WxH", "its size in points (920x550)",
     [](Reading& r, const QString&, const QString& text) { setSize(r.line, text); }},
    {"--scale", "N", "its device pixels per point (1)",
     [](Reading& r, const QString& o, const QString& text) {
         r.line.scale = realBetween(o, text, leastScale, greatestScale);
     }},
    {"--table", "FILE", "the first data source as comma-separated values",
     [](Reading& r, const QString&, const QString& text) { r.line.tables += text; }},
    {"--values", "FILE", "the curves' values, row by row",
     [](Reading& r, const QString&, const QString& text) { r.line.values += text; }},
    {"--save", "FILE", "the document",
     [](Reading& r, const QString&, const QString& text) { r.line.saves += text; }},
    {"", nullptr, "Other:", nullptr},
    {"--help", nullptr, "show this text",
     [](Reading& r, const QString&, const QString&) { r.line.help = true; }},
    {"--version", nullptr, "show the version",
     [](Reading& r, const QString&, const QString&) { r.line.version = true; }},
};

const Option& optionNamed(const QString& name) {
    for (const Option& option : options) {
        if (option.read != nullptr && name == QLatin1String(option.name))
            return option;
    }
    wrongUsage(u"there is no option %1"_qs.arg(name));
}

/// Reads the option at `arguments[index]` and its argument; returns the index after them.
qsizetype readOption(Reading& reading, const QStringList& arguments, qsizetype index) {
    QString name = arguments[index++];
    std::optional<QString> argument;
    if (const qsizetype equals = name.indexOf(u'='); equals > 0) {
        argument = name.mid(equals + 1);
        name.truncate(equals);
    }
    const Option& option = optionNamed(name);
    if (option.argument == nullptr) {
        if (argument)
            wrongUsage(u"%1 takes no argument"_qs.arg(name));
    } else if (!argument) {
        if (index >= arguments.size())
            wrongUsage(u"%1 needs an argument"_qs.arg(name));
        argument = arguments[index++];
    }
    option.read(reading, name, argument.value_or(QString()));
    return index;
}

void checkTogether(const CommandLine& line) {
    if (line.hasOutputs() && line.files.size() != 1)
        wrongUsage(u"an output takes exactly one FILE, not %1"_qs.arg(line.files.size()));
    if (line.width * line.scale > greatestSide || line.height * line.scale > greatestSide)
        wrongUsage(u"--size times --scale is over %1 device pixels"_qs.arg(greatestSide));
    const qsizetype toStandardOutput =
        (line.snapshots + line.tables + line.values + line.saves).count(u"-"_qs);
    if (toStandardOutput > 1)
        wrongUsage(u"only one output can go to standard output"_qs);
}

} // namespace

std::variant<CommandLine, UsageError> parseCommandLine(const QStringList& arguments) {
    Reading reading;
    try {
        bool onlyFiles = false;
        for (qsizetype i = 0; i < arguments.size();) {
            const QString& argument = arguments[i];
            if (onlyFiles || !argument.startsWith(u'-') || argument == u"-"_qs) {
                reading.line.files += argument;
                ++i;
            } else if (argument == u"--"_qs) {
                onlyFiles = true;
                ++i;
            } else {
                i = readOption(reading, arguments, i);
            }
        }
        if (!reading.line.help && !reading.line.version)
            checkTogether(reading.line);
    } catch (const WrongUsage& wrong) {
        return UsageError{wrong.reason};
    }
    return reading.line;
}

QList<OptionGroup> commandLineOptions() {
    QList<OptionGroup> groups;
    for (const Option& option : options) {
        if (option.read == nullptr)
            groups.append({QLatin1String(option.help), {}});
        else
            groups.last().options.append({QLatin1String(option.name), QLatin1String(option.argument),
                                          QLatin1String(option.help),
                                          option.choices != nullptr ? option.choices() : QStringList()});
    }
    return groups;
}
