// From options to a document: its data source's settings, its curves, its plot area.
#include "DocumentRequest.h"

#include "Classes/Axes/XAxisManager.h"
#include "Classes/PlotView/XPointsLibrary.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "MoxDocument.h"
#include "Platform/Core/PropertyList.h"

#include <QFile>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 bytesToRecognise = 512;
constexpr int delimiterNumbers = 0;

bool isDocument(const QString& path) {
    if (path.endsWith(u".mox"_qs, Qt::CaseInsensitive))
        return true;
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return false;
    return PropertyList::looksLikePropertyList(file.read(bytesToRecognise));
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

/// The column that VALUE names: its number, else its exact name. The reason when there is none.
std::variant<int, QString> columnOf(const QString& value, const QStringList& columnNames) {
    bool isInteger = false;
    const qlonglong number = value.toLongLong(&isInteger);
    if (isInteger) {
        if (number < 0 || number >= columnNames.size())
            return u"there is no column %1, the last is %2"_qs.arg(number).arg(columnNames.size() - 1);
        return static_cast<int>(number);
    }
    if (const qsizetype named = columnNames.indexOf(value); named >= 0)
        return static_cast<int>(named);
    return u"there is no column \"%1\""_qs.arg(value);
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
    const std::variant<int, QString> y = columnOf(request.y, columnNames);
    const std::variant<int, QString> x = request.x ? columnOf(*request.x, columnNames) : 0;
    for (const auto* column : {&y, &x}) {
        if (const auto* reason = std::get_if<QString>(column))
            return *reason;
    }
    const XCurveHandle curve = document.addNewCurve();
    curve->setX_data_index(std::get<int>(x));
    curve->setY_data_index(std::get<int>(y));
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
}

} // namespace

std::variant<std::unique_ptr<MoxDocument>, RequestFailure> openRequested(const QString& file,
                                                                         const CommandLine& line) {
    auto document = std::make_unique<MoxDocument>();
    if (file.isEmpty())
        return RequestFailure{u"\"\""_qs, u"the file's name is empty"_qs};
    if (isDocument(file)) {
        if (const std::optional<QString> reason = document->readFromFile(file))
            return RequestFailure{file, *reason};
        if (changesTheSource(line))
            applySourceOptions(*document, line);
    } else {
        document->addDatasourceWithSettings(QLatin1String(XPTextFile::identifier), textFileSettings(file, line));
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
