// Structural edits with undo, change tracking, and the document's life.
#include "MoxDocument.h"

#include "Classes/Axes/XAxisManager.h"
#include "Classes/PlotModel/CurveKeys.h"
#include "Classes/PluginsManager/XPluginsManager.h"
#include "Core/Assertions.h"
#include "Core/NewCurveColor.h"
#include "DocumentWindow.h"
#include "EmbeddedPlugins/TextEditor/XPTextEditor.h"
#include "EmbeddedPlugins/TextFile/XPTextFile.h"
#include "Platform/Core/NotificationCenter.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int maxLevelsOfUndo = 10;

/// The document's own keys that mark it edited. Kept: the legend's margins are not among them.
constexpr const char* documentKeys[] = {
    "plotAreaTitle", "axisTitleX",        "axisTitleY",          "axisMinX",   "axisMaxX",
    "axisMinY",      "axisMaxY",          "axisX_type",          "axisY_type", "showOriginX",
    "showOriginY",   "showVerticalLines", "showHorizontalLines", "showLegend", "legendAlignment"};

} // namespace

MoxDocument::MoxDocument() : m_dataSourcesManager(std::make_unique<XDataSourcesManager>()) {
    m_axisX_type = m_axisY_type = XAxisManager::sharedManager().axisInfoWithId(u"numeric"_qs);
    connect(this, &MoxDocument::editedChanged, this, &MoxDocument::updateEditedSince);
    connect(&m_undoManager, &UndoManager::changed, this, &MoxDocument::editedChanged);
}

MoxDocument::~MoxDocument() {
    close();
}

void MoxDocument::finishOpening() {
    m_undoManager.setLevelsOfUndo(maxLevelsOfUndo);
    m_ownObservation = Observation(*this, documentKeys, [this](const KeyChange&) { updateChangeCount(); });
}

void MoxDocument::close() {
    if (m_closed)
        return;
    m_closed = true;
    if (DocumentWindow* window = std::exchange(m_window, nullptr))
        window->documentWillClose();
    while (!m_dataSourcesManager->dataSources().empty())
        removeDataSourceAtIndex(0);
    while (!curves().isEmpty())
        removeCurve(curves().first());
    m_ownObservation.end();
    m_undoManager.removeAllActions();
}

// --- Data sources
// ----------------------------------------------------------------------------------------------

XDataSource MoxDocument::addDatasourceOfType(const QString& identifier) {
    XDataSource source =
        XPluginsManager::sharedInstance().createPluginOfTypeSettings(identifier, std::nullopt);
    if (source)
        addDataSourceAtIndex(source, static_cast<int>(m_dataSourcesManager->dataSources().size()));
    return source;
}

XDataSource MoxDocument::addDatasourceWithSettings(const QString& identifier, const QVariantMap& settings) {
    XDataSource source =
        XPluginsManager::sharedInstance().createPluginOfTypeSettings(identifier, std::nullopt);
    if (source) {
        source->setPlist(settings); // unread so far: adding it reads it, once
        addDataSourceAtIndex(source, static_cast<int>(m_dataSourcesManager->dataSources().size()));
    }
    return source;
}

void MoxDocument::addTextFileDatasource() {
    addDatasourceOfType(QLatin1String(XPTextFile::identifier));
}
void MoxDocument::addTextEditorDatasource() {
    addDatasourceOfType(QLatin1String(XPTextEditor::identifier));
}

void MoxDocument::fileDropped(const QString& path) {
    addDatasourceWithSettings(QLatin1String(XPTextFile::identifier), {{u"Filename"_qs, path}});
}

void MoxDocument::textDropped(const QString& text) {
    addDatasourceWithSettings(QLatin1String(XPTextEditor::identifier), {{u"Text"_qs, text}});
}

void MoxDocument::pasteText(const QString& text) {
    if (m_dataSourcesManager->dataSources().empty() && !text.isEmpty())
        textDropped(text);
}

void MoxDocument::addDataSourceAtIndex(const XDataSource& dataSource, int wantedIndex) {
    const auto count = static_cast<int>(m_dataSourcesManager->dataSources().size());
    int index = std::min(wantedIndex, count);
    // A tab that outlived its source shifts those behind it.
    const int newTabIndex = m_window == nullptr ? index : m_window->dataSourceTabCount() - (count - index);
    if (!xAssert(newTabIndex == wantedIndex, "Datasources/tabs order broken: newTabIndex=%d, index=%ld",
                 newTabIndex, wantedIndex)) {
        index = count;
        if (m_window != nullptr)
            m_window->removeTabsWithoutSource();
    }
    if (m_window != nullptr) {
        if (count == 0)
            m_window->removeDropHereTab();
        m_window->insertDataSourceTab(dataSource, index);
    }
    m_dataSourcesManager->addDataSourceAtIndex(dataSource, static_cast<std::size_t>(index));
    dataSource->read();
    m_undoManager.registerUndo([this, index] { removeDataSourceAtIndex(index); });
    m_undoManager.setActionName(u"Add Datasource"_qs);
    NotificationCenter::defaultCenter().post(Notifications::dataSourceWasAdded, dataSource.get());
    startObservingPlugin(dataSource);
}

void MoxDocument::removeDataSourceAtIndex(int index) {
    const XDataSource source = m_dataSourcesManager->dataSourceAtIndex(static_cast<std::size_t>(index));
    if (!source)
        return;
    m_undoManager.beginUndoGrouping();
    source->clean();
    m_undoManager.registerUndo([this, source, index] { addDataSourceAtIndex(source, index); });
    for (const XCurveHandle& curve : curves()) {
        if (curve->dataSource() == source)
            curve->setDataSource(nullptr);
    }
    m_undoManager.setActionName(u"Remove Datasource"_qs); // after the curves, which name their own steps
    m_dataSourcesManager->removeDataSourceAtIndex(static_cast<std::size_t>(index));
    if (m_window != nullptr && !m_dontDeleteTab)
        m_window->removeDataSourceTab(source);
    NotificationCenter::defaultCenter().post(Notifications::dataSourceWasRemoved, source.get());
    source->clean(); // an observer may have started a read
    if (m_window != nullptr && m_dataSourcesManager->dataSources().empty()) {
        m_window->addDropHereTab();
        m_window->selectDataSourceTab(0);
    }
    m_undoManager.endUndoGrouping();
    stopObservingPlugin(source);
}

void MoxDocument::onReloadData() {
    for (const XDataSource& source : m_dataSourcesManager->dataSources())
        source->read();
}

bool MoxDocument::isReading() const {
    const auto& sources = m_dataSourcesManager->dataSources();
    return std::any_of(sources.begin(), sources.end(),
                       [](const XDataSource& source) { return source->isLoading(); });
}

// --- Curves
// ----------------------------------------------------------------------------------------------------

void MoxDocument::insertCurveAtIndex(const XCurveHandle& curve, int index) {
    XCurves changed = curves();
    const int position = changed.isEmpty() ? 0 : std::clamp(index, 0, static_cast<int>(changed.size()));
    changed.insert(position, curve);
    m_undoManager.registerUndo([this, curve] { removeCurve(curve); });
    m_undoManager.setActionName(u"Add Curve"_qs);
    if (m_window != nullptr)
        m_window->insertCurveAtIndex(curve, position);
    setCurves(changed);
    startObservingCurve(curve);
    updateChangeCount();
}

void MoxDocument::removeCurve(const XCurveHandle& curve) {
    const auto index = static_cast<int>(curves().indexOf(curve));
    if (!xAssert(index >= 0, "document.curves doesn't contain curve %@",
                 curve ? curve->title().toStdString() : std::string("(null)")))
        return;
    m_undoManager.registerUndo([this, curve, index] { insertCurveAtIndex(curve, index); });
    m_undoManager.setActionName(u"Remove Curve"_qs);
    stopObservingCurve(curve);
    if (m_window != nullptr)
        m_window->removeCurveAtIndex(index);
    XCurves changed = curves();
    changed.removeAt(index);
    setCurves(changed);
    updateChangeCount();
}

XCurveHandle MoxDocument::addNewCurve() {
    XCurveHandle curve = XCurve::make();
    if (!m_dataSourcesManager->dataSources().empty())
        curve->setDataSource(m_dataSourcesManager->dataSourceAtIndex(0));
    curve->setY_data_index(1);
    curve->setColor(findBestColor());
    insertCurveAtIndex(curve, static_cast<int>(curves().size()));
    return curve;
}

RgbaColor MoxDocument::findBestColor() const {
    std::vector<RgbaColor> colors;
    for (const XCurveHandle& curve : curves())
        colors.push_back(curve->color());
    return ::findBestColor(colors);
}

void MoxDocument::placeLegend(const LegendAnchor& anchor) {
    setLegendMargins({anchor.marginX, anchor.marginY});
    setLegendAlignment(anchor.alignment); // which marks the document edited
}

// --- Change tracking
// -------------------------------------------------------------------------------------------

template <class Object>
void MoxDocument::observeForUndo(const std::shared_ptr<Object>& object, std::span<const char* const> keys) {
    const std::weak_ptr<Object> weak = object;
    m_observations[object.get()] = Observation(*object, keys, [this, weak](const KeyChange& change) {
        const std::shared_ptr<Object> changed = weak.lock();
        if (!changed)
            return;
        m_undoManager.registerUndo([changed, key = change.key, oldValue = change.oldValue] {
            changed->setValueForKey(key, oldValue);
        });
        m_undoManager.setActionName(u"Setting "_qs + QLatin1String(change.key));
    });
}

void MoxDocument::startObservingCurve(const XCurveHandle& curve) {
    observeForUndo(curve, curveUndoKeys);
}
void MoxDocument::stopObservingCurve(const XCurveHandle& curve) {
    m_observations.erase(curve.get());
}
void MoxDocument::setWorkingFolder(const QString& folder) {
    m_workingFolder = folder;
    for (const XDataSource& source : m_dataSourcesManager->dataSources()) {
        if (auto* file = qobject_cast<XPTextFile*>(source.get()))
            file->setWorkingFolder(folder);
    }
}

void MoxDocument::startObservingPlugin(const XDataSource& plugin) {
    if (auto* file = qobject_cast<XPTextFile*>(plugin.get()))
        file->setWorkingFolder(m_workingFolder);
    observeForUndo(plugin, plugin->kvoKeys());
    m_contentObservations[plugin.get()] =
        Observation(*plugin, plugin->contentKeys(), [this](const KeyChange&) { updateChangeCount(); });
}
void MoxDocument::stopObservingPlugin(const XDataSource& plugin) {
    m_observations.erase(plugin.get());
    m_contentObservations.erase(plugin.get());
}

void MoxDocument::updateChangeCount() {
    m_changedWithoutUndo = true;
    Q_EMIT editedChanged();
}

bool MoxDocument::isDocumentEdited() const {
    return m_changedWithoutUndo || !m_undoManager.isClean();
}

void MoxDocument::updateEditedSince() {
    if (!isDocumentEdited())
        m_editedSince.reset();
    else if (!m_editedSince)
        m_editedSince = QDateTime::currentDateTime();
}

void MoxDocument::setUnedited() {
    m_changedWithoutUndo = false;
    m_undoManager.removeAllActions();
    m_undoManager.setClean();
    Q_EMIT editedChanged();
}

// --- Window
// ----------------------------------------------------------------------------------------------------

void MoxDocument::onFitToData() {
    if (m_window != nullptr)
        m_window->fitToData();
}

void MoxDocument::windowDidBecomeMain() {
    NotificationCenter::defaultCenter().post(Notifications::documentDidBecomeActive, this);
}

void MoxDocument::windowDidResignMain() {
    NotificationCenter::defaultCenter().post(Notifications::documentDidBecomeInactive, this);
}
