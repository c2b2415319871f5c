// Document in, outputs out: the batch mode.
#include "BatchRun.h"

#include "Classes/ExpressionEvaluator/XExpressionEvaluator.h"
#include "Classes/GraphViewController/DocumentPicture.h"
#include "CsvExport.h"
#include "DocumentRequest.h"
#include "MoxDocument.h"
#include "OutputFile.h"
#include "Platform/Core/MainThread.h"
#include "Platform/Core/PropertyList.h"
#include "Platform/Core/WholeWrite.h"

#include <QFileInfo>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

using Failure = std::optional<RequestFailure>;

Failure failureOf(const QString& file, const std::optional<QString>& reason) {
    return reason ? Failure(RequestFailure{file, *reason}) : std::nullopt;
}

Failure writeTable(const MoxDocument& document, const QString& file, const QString& output) {
    const auto& sources = document.dataSourcesManager().dataSources();
    if (sources.empty())
        return RequestFailure{file, u"the document has no data source"_qs};
    const XTable table = sources.front()->data();
    if (!table)
        return RequestFailure{file, u"the first data source has no data"_qs};
    return failureOf(output, writeOutput(output, [&](QIODevice& device) {
                         return CsvExport::writeTable(device, sources.front()->columnNames(), *table);
                     }));
}

Failure writeValues(const MoxDocument& document, const QString& output) {
    QList<CurveSnapshot> curves;
    for (const XCurveHandle& curve : document.curves())
        curves.append(curve->snapshot());
    return failureOf(output, writeOutput(output, [&](QIODevice& device) {
                         return CsvExport::writeValues(device, curves);
                     }));
}

Failure writeSnapshot(const MoxDocument& document, const CommandLine& line, const QString& output) {
    const PictureSize size{line.width, line.height, line.scale};
    const PictureFormat format = pictureFormatOfPath(output).value_or(PictureFormat::Png);
    PlotPictureOptions options = pictureOptionsOf(document);
    options.showLegend = line.legend;
    std::optional<QString> reason;
    const std::optional<QString> failed = writeOutput(output, [&](QIODevice& device) {
        reason = writePicture(device, format, options, size);
        return !reason;
    });
    return failureOf(output, failed && reason ? reason : failed);
}

Failure writeDocument(MoxDocument& document, const QString& output) {
    const QFileInfo info(output);
    if (output != u"-"_qs && (!info.exists() || info.isFile() || info.isDir()))
        return failureOf(output, document.writeToURL(output));
    return failureOf(output, writeOutput(output, [&](QIODevice& device) {
                         const QByteArray bytes = PropertyList::writeXml(document.plist());
                         return writeWhole(device, bytes.constData(), bytes.size());
                     }));
}

Failure writeOutputs(MoxDocument& document, const QString& file, const CommandLine& line) {
    Failure failure;
    for (qsizetype i = 0; i < line.tables.size() && !failure; ++i)
        failure = writeTable(document, file, line.tables[i]);
    for (qsizetype i = 0; i < line.values.size() && !failure; ++i)
        failure = writeValues(document, line.values[i]);
    for (qsizetype i = 0; i < line.snapshots.size() && !failure; ++i)
        failure = writeSnapshot(document, line, line.snapshots[i]);
    for (qsizetype i = 0; i < line.saves.size() && !failure; ++i)
        failure = writeDocument(document, line.saves[i]);
    return failure;
}

Failure run(const CommandLine& line) {
    const QString file = line.files.first();
    auto opened = openRequested(file, line);
    if (auto* failure = std::get_if<RequestFailure>(&opened))
        return *failure;
    MoxDocument& document = *std::get<std::unique_ptr<MoxDocument>>(opened);
    MainThread::runUntil([&] { return !document.isReading(); });
    if (Failure failure = firstReadFailure(document))
        return failure;
    if (Failure failure = applyRequest(document, file, line))
        return failure;
    MainThread::runUntil([] { return XExpressionEvaluator::sharedInstance().isIdle(); });
    if (Failure failure = firstEvaluationFailure(document, file))
        return failure;
    return writeOutputs(document, file, line);
}

} // namespace

void reportFailure(const QString& file, const QString& reason) {
    const QByteArray text = (file.isEmpty() ? reason : file + u": "_qs + reason).toLocal8Bit();
    std::fprintf(stderr, "velquin: %s\n", text.constData());
}

int runBatch(const CommandLine& line) {
    const Failure failure = run(line);
    if (!failure)
        return 0;
    reportFailure(failure->file, failure->reason);
    return failure->wrongUsage ? 2 : 1;
}
