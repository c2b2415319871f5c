// One document: an ordered list of data sources, an ordered list of curves, and the options of one plot.
#pragma once

#include "Classes/Axes/XAxisInfo.h"
#include "Classes/DataSourcesManager/XDataSourceProtocol.h"
#include "Classes/DataSourcesManager/XDataSourcesManager.h"
#include "Classes/PlotModel/DocumentFile.h"
#include "Classes/PlotModel/XCurve.h"
#include "Core/LegendPlacement.h"
#include "Platform/Core/FileFingerprint.h"
#include "Platform/Core/Observable.h"
#include "Platform/Core/PlacedFile.h"
#include "Platform/Core/UndoManager.h"

#include <QDateTime>
#include <QList>
#include <QSizeF>
#include <QString>

#include <map>
#include <memory>
#include <optional>
#include <vector>

class DocumentWindow;

using XCurves = QList<XCurveHandle>;
using XAxisKind = const XAxisInfo*; ///< an entry of the axis registry, which lives for ever

/// A document's content apart from its file, with what ties it to that.
struct UnsavedDocument {
    QVariantMap plist;
    QString filePath;                      ///< empty for one that never had a file
    std::optional<FileFingerprint> onDisk; ///< what that file held when it was last read or written
    QDateTime editedSince;
    QString workingFolder; ///< from which relative names of data files count
};

/// Reads and writes the document file, keeps the undo history and the edited mark. Main thread. Works without
/// a window; what the window must show goes through `DocumentWindow`.
class MoxDocument : public Observable {
    Q_OBJECT
    /// Replaced whole on every change, never changed in place.
    OBSERVED(XCurves, curves, setCurves, {})
    OBSERVED(std::optional<QString>, plotAreaTitle, setPlotAreaTitle, QString(QLatin1String("")))
    OBSERVED(std::optional<QString>, axisTitleX, setAxisTitleX, QString(QLatin1String("")))
    OBSERVED(std::optional<QString>, axisTitleY, setAxisTitleY, QString(QLatin1String("")))
    /// Fixed limits; absent ones follow the data.
    OBSERVED(std::optional<double>, axisMinX, setAxisMinX, {})
    OBSERVED(std::optional<double>, axisMaxX, setAxisMaxX, {})
    OBSERVED(std::optional<double>, axisMinY, setAxisMinY, {})
    OBSERVED(std::optional<double>, axisMaxY, setAxisMaxY, {})
    OBSERVED(XAxisKind, axisX_type, setAxisX_type, nullptr)
    OBSERVED(XAxisKind, axisY_type, setAxisY_type, nullptr)
    OBSERVED(bool, showOriginX, setShowOriginX, true)
    OBSERVED(bool, showOriginY, setShowOriginY, true)
    OBSERVED(bool, showHorizontalLines, setShowHorizontalLines, true)
    OBSERVED(bool, showVerticalLines, setShowVerticalLines, true)
    OBSERVED(bool, showLegend, setShowLegend, false)
    OBSERVED(int, legendAlignment, setLegendAlignment, 0) ///< edges that the legend keeps its distance to
    OBSERVED(QSizeF, legendMargins, setLegendMargins, QSizeF(0, 0))
    OBSERVED(bool, plotAreaOptionsVisible, setPlotAreaOptionsVisible, false) ///< not saved

  public:
    MoxDocument();
    ~MoxDocument() override;

    XDataSourcesManager& dataSourcesManager() { return *m_dataSourcesManager; }
    const XDataSourcesManager& dataSourcesManager() const { return *m_dataSourcesManager; }
    UndoManager& undoManager() { return m_undoManager; }

    /// Whether the file looks like a document: by its name, or as a property list.
    static bool isDocument(const QString& path);

    /// The window is told of every change from now on, and of what is there already by its own set-up. It is
    /// told last that the document closes.
    void setWindow(DocumentWindow* window) { m_window = window; }
    /// Sources, undo limit and observation of the document's own keys; called once the document is filled.
    void finishOpening();

    /// Loads a document file into this fresh document; data sources start reading. On failure returns the
    /// reason and leaves the document closed.
    std::optional<QString> readFromURL(const QString& path);
    /// Writes the file atomically. On failure returns the reason; the old file and the edited mark stay.
    std::optional<QString> writeToURL(const QString& path);
    /// As above, but leaves the file alone that somebody else changed since it was read or written here.
    struct Saving {
        enum class Outcome { Saved, ChangedOnDisk, Failed };
        Outcome outcome;
        QString reason; ///< of a failure
    };
    Saving saveUnlessChanged();

    /// What would be lost now.
    UnsavedDocument unsaved() const;
    /// Takes what was kept of another document into this fresh one: edited, without history. On failure
    /// returns the reason and leaves the document closed.
    std::optional<QString> restore(const UnsavedDocument& kept);

    /// The file the document was read from or written to; empty for a new one.
    const QString& filePath() const { return m_filePath; }
    QVariantMap plist() const;
    void loadFromPlist(const QVariant& root);

    /// Creates a data source of that kind without settings and appends it.
    XDataSource addDatasourceOfType(const QString& identifier);
    void addTextFileDatasource();
    void addTextEditorDatasource();
    /// A source of that kind with those settings, appended and read.
    XDataSource addDatasourceWithSettings(const QString& identifier, const QVariantMap& settings);
    /// A text-file source of that path; a text source of that text.
    void fileDropped(const QString& path);
    void textDropped(const QString& text);
    /// Takes the text as a source while the document has none; otherwise does nothing.
    void pasteText(const QString& text);
    /// An index out of step with the tabs fails an assertion; then the stale tabs go and the source is
    /// appended.
    void addDataSourceAtIndex(const XDataSource& dataSource, int wantedIndex);
    void removeDataSourceAtIndex(int index);
    /// While set, the tab bar itself is removing the tab of the source that is removed.
    void setDontDeleteTab(bool dont) { m_dontDeleteTab = dont; }
    /// Tells every data source to read again.
    void onReloadData();

    void insertCurveAtIndex(const XCurveHandle& curve, int index);
    void removeCurve(const XCurveHandle& curve);
    XCurveHandle addNewCurve();
    RgbaColor findBestColor() const;

    /// For the user who drags the legend or chooses its place: both keys, which cannot be undone.
    void placeLegend(const LegendAnchor& anchor);

    void onFitToData();
    void windowDidBecomeMain();
    void windowDidResignMain();

    /// Whether there are changes that were not saved.
    bool isDocumentEdited() const;
    /// When the first change was made that was not saved; absent while there is none.
    const std::optional<QDateTime>& editedSince() const { return m_editedSince; }
    /// What the document holds now needs no saving and cannot be undone.
    void setUnedited();
    /// Removes sources and curves and forgets the history. The document is not used afterwards.
    void close();

    /// Whether a data source is still reading.
    bool isReading() const;

    /// Relative names of data files count from that folder; from the process's own until it is set.
    void setWorkingFolder(const QString& folder);

  Q_SIGNALS:
    void editedChanged();

  private:
    void startObservingCurve(const XCurveHandle& curve);
    void stopObservingCurve(const XCurveHandle& curve);
    void startObservingPlugin(const XDataSource& plugin);
    void stopObservingPlugin(const XDataSource& plugin);
    template <class Object>
    void observeForUndo(const std::shared_ptr<Object>& object, std::span<const char* const> keys);
    std::optional<QString> loadOrClose(const QVariant& root);
    std::optional<QString> write(const QString& path, const PlacedFile::LastWord& lastWord);
    PlotAreaOptions plotAreaOptions() const;
    void applyPlotAreaOptions(const PlotAreaOptions& options);
    void updateChangeCount();
    void updateEditedSince();

    std::unique_ptr<XDataSourcesManager> m_dataSourcesManager;
    UndoManager m_undoManager;
    DocumentWindow* m_window = nullptr;
    std::map<const Observable*, Observation> m_observations;
    std::map<const Observable*, Observation> m_contentObservations;
    Observation m_ownObservation;
    QString m_filePath;
    QString m_workingFolder;
    std::optional<FileFingerprint> m_onDisk; ///< what the file held then
    std::optional<QDateTime> m_editedSince;
    bool m_dontDeleteTab = false;
    bool m_changedWithoutUndo = false;
    bool m_closed = false;
};
