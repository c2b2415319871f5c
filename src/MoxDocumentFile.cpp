// A document's way from its file into objects and back.
#include "MoxDocument.h"

#include "Classes/Axes/XAxisManager.h"
#include "Core/Assertions.h"
#include "Platform/Core/PropertyList.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 bytesToRecognise = 512;
constexpr qint64 greatestDocumentSize = 256LL * 1024 * 1024;

struct FileContent {
    QByteArray bytes;
    QString error; ///< empty when the file was read
};

FileContent contentOf(const QString& path) {
    const QFileInfo info(path);
    if (info.exists() && !info.isFile())
        return {{}, info.isDir() ? u"it is a directory"_qs : u"it is not a regular file"_qs};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {{}, file.errorString()};
    if (file.size() > greatestDocumentSize)
        return {{}, u"it is too large for a document"_qs};
    return {file.read(greatestDocumentSize), {}};
}

QString textOf(const AssertionFailure& failure) {
    return QString::fromUtf8(failure.what());
}

} // namespace

bool MoxDocument::isDocument(const QString& path) {
    if (path.endsWith(u".mox"_qs, Qt::CaseInsensitive))
        return true;
    QFile file(path);
    return QFileInfo(path).isFile() && file.open(QIODevice::ReadOnly) &&
           PropertyList::looksLikePropertyList(file.read(bytesToRecognise));
}

std::optional<QString> MoxDocument::readFromURL(const QString& path) {
    const FileContent content = contentOf(path);
    if (!content.error.isEmpty())
        return content.error;
    const PropertyList::ReadResult parsed = PropertyList::read(content.bytes);
    if (const auto reason = loadOrClose(parsed.value.value_or(QVariant())))
        return u"it is not a document: "_qs + (parsed.value ? *reason : parsed.error);
    m_filePath = path;
    m_onDisk = FileFingerprint::of(content.bytes);
    return std::nullopt;
}

std::optional<QString> MoxDocument::loadOrClose(const QVariant& root) {
    const bool isDictionary = root.typeId() == QMetaType::QVariantMap;
    const AssertionScope scope(AssertionPolicy::Throw);
    try {
        xAssert(isDictionary, "handle readFromURL failures!");
        loadFromPlist(root);
    } catch (const AssertionFailure& failure) {
        close(); // ends the reads that the data sources have begun
        return isDictionary ? textOf(failure) : u"its root is not a dictionary"_qs;
    }
    return std::nullopt;
}

void MoxDocument::loadFromPlist(const QVariant& root) {
    const DocumentValues values = DocumentFile::fromPlist(root);
    m_dataSourcesManager->loadFromPlist(values.datasources);
    for (const XDataSource& source : m_dataSourcesManager->dataSources())
        startObservingPlugin(source);
    XCurves loaded;
    for (const QVariant& saved : values.curves) {
        loaded.append(XCurve::make());
        loaded.last()->loadFromPlist(saved);
    }
    setCurves(loaded);
    for (std::size_t i = 0; i < values.datasourcesMap.size(); ++i) {
        const auto source = static_cast<std::size_t>(values.datasourcesMap[i]);
        loaded[static_cast<qsizetype>(i)]->setDataSource(m_dataSourcesManager->dataSourceAtIndex(source));
    }
    for (const XCurveHandle& curve : loaded)
        startObservingCurve(curve);
    applyPlotAreaOptions(values.plotAreaOptions);
    onFitToData();
}

std::optional<QString> MoxDocument::writeToURL(const QString& path) {
    return write(path, {});
}

MoxDocument::Saving MoxDocument::saveUnlessChanged() {
    bool changed = false;
    const auto unlessChanged = [&](int) -> std::optional<QString> {
        // A file that is gone is written again: nothing is there that could be lost, and somebody who moved
        // it away keeps what was moved.
        changed = m_onDisk && changeSince(*m_onDisk, m_filePath) == FileChange::Changed;
        return changed ? std::optional(QString()) : std::nullopt;
    };
    const std::optional<QString> failure = write(m_filePath, unlessChanged);
    if (changed)
        return {Saving::Outcome::ChangedOnDisk, {}};
    return {failure ? Saving::Outcome::Failed : Saving::Outcome::Saved, failure.value_or(QString())};
}

std::optional<QString> MoxDocument::write(const QString& path, const PlacedFile::LastWord& lastWord) {
    const QByteArray bytes = PropertyList::writeXml(plist());
    const PlacedFile::Result result = PlacedFile::write(path, bytes, {.lastWord = lastWord});
    if (!result.isWritten())
        return result.reason;
    m_filePath = path;
    m_onDisk = FileFingerprint::of(bytes);
    m_changedWithoutUndo = false;
    m_undoManager.setClean();
    Q_EMIT editedChanged();
    return std::nullopt;
}

UnsavedDocument MoxDocument::unsaved() const {
    return {plist(), m_filePath, m_onDisk, m_editedSince.value_or(QDateTime::currentDateTime()),
            m_workingFolder.isEmpty() ? QDir::currentPath() : m_workingFolder};
}

std::optional<QString> MoxDocument::restore(const UnsavedDocument& kept) {
    if (auto reason = loadOrClose(kept.plist))
        return reason;
    m_filePath = kept.filePath;
    m_onDisk = kept.onDisk;
    setWorkingFolder(kept.workingFolder);
    m_editedSince = kept.editedSince;
    updateChangeCount();
    return std::nullopt;
}

QVariantMap MoxDocument::plist() const {
    DocumentValues values;
    values.datasources = m_dataSourcesManager->plist();
    const auto& sources = m_dataSourcesManager->dataSources();
    for (const XCurveHandle& curve : curves()) {
        values.curves.append(curve->plist());
        // Kept: a curve without a data source takes no place in the map, so that later curves move up when
        // read.
        const auto found = std::find(sources.begin(), sources.end(), curve->dataSource());
        if (curve->dataSource() && found != sources.end())
            values.datasourcesMap.push_back(found - sources.begin());
    }
    values.plotAreaOptions = plotAreaOptions();
    return DocumentFile::toPlist(values);
}

PlotAreaOptions MoxDocument::plotAreaOptions() const {
    return {.title = plotAreaTitle(),
            .axisTitleX = axisTitleX(),
            .axisTitleY = axisTitleY(),
            .axisMaxX = axisMaxX(),
            .axisMinX = axisMinX(),
            .axisMaxY = axisMaxY(),
            .axisMinY = axisMinY(),
            .axisX_type = axisX_type() ? std::optional(axisX_type()->typeId()) : std::nullopt,
            .axisY_type = axisY_type() ? std::optional(axisY_type()->typeId()) : std::nullopt,
            .showOriginX = showOriginX(),
            .showOriginY = showOriginY(),
            .showHorizontalLines = showHorizontalLines(),
            .showVerticalLines = showVerticalLines(),
            .showLegend = showLegend(),
            .legendAlignment = legendAlignment(),
            .legendMargins = legendMargins()};
}

void MoxDocument::applyPlotAreaOptions(const PlotAreaOptions& options) {
    setPlotAreaTitle(options.title);
    setAxisTitleX(options.axisTitleX);
    setAxisTitleY(options.axisTitleY);
    setAxisMaxX(options.axisMaxX);
    setAxisMinX(options.axisMinX);
    setAxisMaxY(options.axisMaxY);
    setAxisMinY(options.axisMinY);
    const XAxisManager& kinds = XAxisManager::sharedManager();
    setAxisX_type(kinds.axisInfoWithId(options.axisX_type.value_or(QString())));
    setAxisY_type(kinds.axisInfoWithId(options.axisY_type.value_or(QString())));
    const auto setIfPresent = [this](const auto& value, auto setter) {
        if (value)
            (this->*setter)(*value);
    };
    setIfPresent(options.showOriginX, &MoxDocument::setShowOriginX);
    setIfPresent(options.showOriginY, &MoxDocument::setShowOriginY);
    setIfPresent(options.showHorizontalLines, &MoxDocument::setShowHorizontalLines);
    setIfPresent(options.showVerticalLines, &MoxDocument::setShowVerticalLines);
    setIfPresent(options.showLegend, &MoxDocument::setShowLegend);
    setIfPresent(options.legendAlignment, &MoxDocument::setLegendAlignment);
    setIfPresent(options.legendMargins, &MoxDocument::setLegendMargins);
}
