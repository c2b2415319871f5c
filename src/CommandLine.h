// What the program was asked to do: its command line as values.
#pragma once

#include "Core/RgbaColor.h"

#include <QString>
#include <QStringList>

#include <optional>
#include <variant>
#include <vector>

/// A curve to add: where its values come from, and how it is dressed where that was said.
struct CurveRequest {
    std::optional<QString> x; ///< column number, column name or expression; absent: the row number
    QString y;
    std::optional<int> lineWidth;       ///< points, 0 for no line
    std::optional<int> shapeIdentifier; ///< of the points library
    std::optional<int> shapeSize;       ///< points, half the shape's width
    std::optional<QString> pointSize;   ///< column number, column name or expression
    std::optional<RgbaColor> color;
    std::optional<float> opacity; ///< above 0, up to 1
    std::optional<QString> title;
};

/// A fixed range; an absent side is automatic.
struct RangeRequest {
    std::optional<double> minimum;
    std::optional<double> maximum;
};

struct CommandLine {
    QStringList files;

    // The text-file data source of a FILE that is no document.
    std::optional<int> delimiterType; ///< 0 to 5
    bool header = false;
    std::optional<int> skipLines;
    std::optional<int> everyNthLine;

    std::vector<CurveRequest> curves;

    // The plot area.
    std::optional<QString> title;
    std::optional<QString> xTitle;
    std::optional<QString> yTitle;
    std::optional<QString> xAxis; ///< identifier of an axis kind
    std::optional<QString> yAxis;
    std::optional<RangeRequest> xRange;
    std::optional<RangeRequest> yRange;
    bool legend = false; ///< shown, and drawn into pictures

    // Outputs; "-" is standard output.
    QStringList snapshots;
    QStringList tables;
    QStringList values;
    QStringList saves;
    int width = 920; ///< points
    int height = 550;
    double scale = 1; ///< device pixels per point

    bool help = false;
    bool version = false;

    bool hasOutputs() const { return !(snapshots + tables + values + saves).isEmpty(); }
};

/// Wrong usage, in one line without the program's name.
struct UsageError {
    QString reason;
};

/// Reads the arguments (without the program's name). Only --x, --y and a curve's dressing depend on their
/// order.
std::variant<CommandLine, UsageError> parseCommandLine(const QStringList& arguments);

/// An option as users are told of it.
struct OptionDescription {
    QString name;        ///< with its dashes
    QString argument;    ///< what its argument stands for; empty for a switch
    QString help;        ///< one line
    QStringList choices; ///< every argument it takes, where they can be listed
};

struct OptionGroup {
    QString title; ///< ends with a colon
    QList<OptionDescription> options;
};

/// The table by which arguments are read.
QList<OptionGroup> commandLineOptions();
