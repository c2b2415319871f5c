// From options to a document: its data source's settings, its curves, its plot area.
#include "DocumentRequest.h"

#include "Classes/Axes/XAxisManager.h"
#include "Classes/PlotView/XPointsLibrary.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "MoxDocument.h"

#include <QFileInfo>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

constexpr int delimiterNumbers = 0;
constexpr qsizetype longestQuotedExpression = 200;

/// One line must stay one line, whatever was asked for.
QString shortened(const QString& expression) {
    const QString line = expression.simplified();
    return line.size() <= longestQuotedExpression ? line : line.left(longestQuotedExpression) + u"…"_qs;
}

QVariantMap textFileSettings(const QString& path, const CommandLine& line) {
    // Absolute, so that a saved document finds its data from everywhere.
    return {{u"Filename"_qs, QFileInfo(path).absoluteFilePath()},
            {u"DelimiterType"_qs, line.delimiterType.value_or(delimiterNumbers)},
            {u"ExtractColumnNames"_qs, line.header},
            {u"Skiplines"_qs, line.skipLines.value_or(0)},
            {u"EveryNthLine"_qs, line.everyNthLine.value_or(1)}};
}

bool changesTheSource(const CommandLine& line) {
    return line.delimiterType || line.header || line.skipLines || line.everyNthLine;
}

/// Options for the text file of a document that is there already.
void applySourceOptions(MoxDocument& document, const CommandLine& line) {
    for (const XDataSource& source : document.dataSourcesManager().dataSources()) {
        auto* file = qobject_cast<XPTextFile*>(source.get());
        if (file == nullptr)
            continue;
        if (line.delimiterType)
            file->setDelimiterType(*line.delimiterType);
        if (line.header)
            file->setExtractColumnNames(true);
        if (line.skipLines)
            file->setSkiplines(*line.skipLines);
        if (line.everyNthLine)
            file->setEveryNthLine(*line.everyNthLine);
        file->read();
        return;
    }
}

bool asksForHeaderOfNumbers(const MoxDocument& document, const CommandLine& line) {
    const auto& sources = document.dataSourcesManager().dataSources();
    const auto* file = sources.empty() ? nullptr : qobject_cast<const XPTextFile*>(sources.front().get());
    return line.header && file != nullptr && file->delimiterType() == delimiterNumbers;
}

/// What VALUE stands for: a column by its number or its exact name, else an expression.
struct Value {
    std::optional<int> column = {};
    QString expression = {};
    std::optional<QString> fault = {}; ///< a column number beyond the columns
};

Value valueOf(const QString& text, const QStringList& columnNames) {
    static const QRegularExpression integer(u"^\\s*[+-]?[0-9]+\\s*$"_qs);
    if (integer.match(text).hasMatch()) {
        bool fits = false;
        const qlonglong number = text.toLongLong(&fits);
        if (fits && number >= 0 && number < columnNames.size())
            return {.column = static_cast<int>(number)};
        return {
            .fault =
                u"there is no column %1, the last is %2"_qs.arg(shortened(text)).arg(columnNames.size() - 1)};
    }
    if (const qsizetype named = columnNames.indexOf(text); named >= 0)
        return {.column = static_cast<int>(named)};
    return {.expression = text};
}

/// Sizes come from expressions alone, so a column is written as one.
QString sizeExpressionOf(const Value& value) {
    if (!value.column)
        return value.expression;
    return *value.column == 0 ? u"row"_qs : u"c%1"_qs.arg(*value.column);
}

void dress(XCurve& curve, const CurveRequest& request) {
    if (request.lineWidth)
        curve.setLineWidth(*request.lineWidth);
    if (request.shapeIdentifier)
        curve.setTicksShape(XPointsLibrary::sharedLibrary().pointDescriptionWithId(*request.shapeIdentifier));
    if (request.shapeSize)
        curve.setTicksSize(*request.shapeSize);
    if (request.color)
        curve.setColor(*request.color);
    if (request.opacity)
        curve.setColorAlpha(*request.opacity);
    if (request.title)
        curve.setTitle(*request.title);
}

/// Adds one curve; returns the reason when a column is missing.
std::optional<QString> addCurve(MoxDocument& document, const CurveRequest& request,
                                const QStringList& columnNames) {
    const Value x = valueOf(request.x.value_or(u"0"_qs), columnNames);
    const Value y = valueOf(request.y, columnNames);
    const Value size = request.pointSize ? valueOf(*request.pointSize, columnNames) : Value{};
    for (const Value* value : {&x, &y, &size}) {
        if (value->fault)
            return value->fault;
    }
    const XCurveHandle curve = document.addNewCurve();
    const auto take = [&curve](const Value& value, auto setIndex, auto setExpression,
                               auto setUsesExpression) {
        if (value.column)
            return ((*curve).*setIndex)(*value.column);
        ((*curve).*setExpression)(value.expression);
        ((*curve).*setUsesExpression)(true);
    };
    take(x, &XCurve::setX_data_index, &XCurve::setX_data_expression, &XCurve::setX_uses_expression);
    take(y, &XCurve::setY_data_index, &XCurve::setY_data_expression, &XCurve::setY_uses_expression);
    if (request.pointSize) {
        curve->setPointsize_data_expression(sizeExpressionOf(size));
        curve->setPointsize_uses_expression(true);
    }
    dress(*curve, request);
    return std::nullopt;
}

void applyPlotArea(MoxDocument& document, const CommandLine& line) {
    const XAxisManager& kinds = XAxisManager::sharedManager();
    if (line.title)
        document.setPlotAreaTitle(line.title);
    if (line.xTitle)
        document.setAxisTitleX(line.xTitle);
    if (line.yTitle)
        document.setAxisTitleY(line.yTitle);
    if (line.xAxis)
        document.setAxisX_type(kinds.axisInfoWithId(*line.xAxis));
    if (line.yAxis)
        document.setAxisY_type(kinds.axisInfoWithId(*line.yAxis));
    if (line.xRange) {
        document.setAxisMinX(line.xRange->minimum);
        document.setAxisMaxX(line.xRange->maximum);
    }
    if (line.yRange) {
        document.setAxisMinY(line.yRange->minimum);
        document.setAxisMaxY(line.yRange->maximum);
    }
    if (line.legend)
        document.setShowLegend(true);
}

} // namespace

std::variant<std::unique_ptr<MoxDocument>, RequestFailure>
openRequested(const QString& file, const CommandLine& line, const QDir& workingFolder) {
    auto document = std::make_unique<MoxDocument>();
    if (file.isEmpty())
        return RequestFailure{u"\"\""_qs, u"the file's name is empty"_qs};
    document->setWorkingFolder(workingFolder.absolutePath());
    if (MoxDocument::isDocument(file)) {
        if (const std::optional<QString> reason = document->readFromURL(file))
            return RequestFailure{file, *reason};
        if (changesTheSource(line))
            applySourceOptions(*document, line);
    } else {
        document->addDatasourceWithSettings(QLatin1String(XPTextFile::identifier),
                                            textFileSettings(file, line));
    }
    if (asksForHeaderOfNumbers(*document, line))
        return RequestFailure{file, u"--header does not go with --delimiter numbers"_qs, true};
    document->finishOpening();
    return document;
}

std::optional<RequestFailure> firstReadFailure(const MoxDocument& document) {
    for (const XDataSource& source : document.dataSourcesManager().dataSources()) {
        if (source->readError().isEmpty())
            continue;
        const auto* file = qobject_cast<const XPTextFile*>(source.get());
        return RequestFailure{file != nullptr && !file->filename().isEmpty() ? file->filename()
                                                                             : source->title(),
                              source->readError()};
    }
    return std::nullopt;
}

std::optional<RequestFailure> firstEvaluationFailure(const MoxDocument& document, const QString& file) {
    for (const XCurveHandle& curve : document.curves()) {
        const std::pair<std::optional<QString>, QString> evaluations[] = {
            {curve->x_data_expression(), curve->xExpressionError()},
            {curve->y_data_expression(), curve->yExpressionError()},
            {curve->pointsize_data_expression(), curve->pointsizeExpressionError()}};
        for (const auto& [expression, error] : evaluations) {
            if (!error.isEmpty())
                return RequestFailure{
                    file, u"expression \"%1\": %2"_qs.arg(shortened(expression.value_or(QString())), error)};
        }
    }
    return std::nullopt;
}

std::optional<RequestFailure> applyRequest(MoxDocument& document, const QString& file,
                                           const CommandLine& line) {
    const auto& sources = document.dataSourcesManager().dataSources();
    if (!line.curves.empty() && sources.empty())
        return RequestFailure{file, u"the document has no data source to take a curve from"_qs};
    for (const CurveRequest& request : line.curves) {
        if (const std::optional<QString> reason = addCurve(document, request, sources.front()->columnNames()))
            return RequestFailure{file, *reason};
    }
    applyPlotArea(document, line);
    return std::nullopt;
}
