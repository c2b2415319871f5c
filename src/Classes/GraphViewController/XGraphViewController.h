// The plot page of a document's window: the plot with its titles and its legend, the curves beside it, and
// the tools over it.
#pragma once

#include "Classes/CurvesSidebar/CCurveViewControllerDelegate.h"
#include "Classes/GraphViewController/SnapshotWriter.h"
#include "Classes/PlotView/PlotPage.h"
#include "Classes/PlotView/PlotPicture.h"
#include "Classes/PlotView/XGraphLegend.h"
#include "Classes/PlotView/XPlotView.h"
#include "Platform/Core/NotificationCenter.h"
#include "Platform/Core/XViewController.h"

#include <QPointer>
#include <QTimer>

#include <functional>
#include <memory>
#include <vector>

class CCurveViewController;
class MoxDocument;
class PlotTitleField;
class QAbstractButton;
class QAction;
class QButtonGroup;
class QPainter;
class XAxisInfo;

namespace Ui {
class XGraphViewController;
}

/// Keeps the plot view in step with the document's curves and plot-area options. Main thread.
class XGraphViewController : public XViewController,
                             private CCurveViewControllerDelegate,
                             private XPlotViewDelegate,
                             private XGraphLegendDelegate {
    Q_OBJECT

  public:
    explicit XGraphViewController(QObject* parent = nullptr);
    ~XGraphViewController() override;

    /// Attaches to a document, whose plot is fitted to its data, or detaches with null. Fails the assertion
    /// "XGraphViewController already has a document!" when another one is attached.
    void setDocument(MoxDocument* document);
    MoxDocument* document() const { return m_document; }

    QWidget* view() override { return m_view; }
    void onBecameVisible() override;

    XPlotView& plotView();
    const XPlotView& plotView() const;
    XGraphLegend& graphLegend() const { return *m_graphLegend; }
    /// Also takes the place that the document has for the legend now: the window follows these keys.
    void setLegendVisible(bool visible);

    // The list of curves as a data source.
    int itemsCount() const; ///< the document's curves
    /// A new row of the document's curve at that index.
    std::shared_ptr<XViewController> viewControllerForItem(int index);

    /// Told by the document before it stores its new list of curves.
    void insertCurveAtIndex(const XCurveHandle& curve, int index);
    void removeCurveAtIndex(int index);

    /// Nothing without a data source.
    void onAddCurve();
    bool canAddCurve() const;
    void fitToData();
    void alignXAxis();
    void dumpXAxisTestCase() const;

    /// 0 pans, 1 zooms into a rectangle, 2 measures.
    int mouseMode() const { return plotView().mouseMode(); }
    void setMouseMode(int mode);
    void toggleStickyRuler();
    bool isFittedToData() const { return plotView().scene().autoFitToData; }
    bool blackBackground() const { return m_blackBackground; }
    void setBlackBackground(bool black);
    XPlotView::WheelZooms wheelZooms() const { return plotView().wheelZooms(); }
    void setWheelZooms(XPlotView::WheelZooms which);

    /// The command of the button at the end of the tools.
    void setInspectorAction(QAction& action);

    /// Make room for a title, even if it is empty, and put the keyboard there.
    void editPlotTitle();
    void editAxisXTitle();
    void editAxisYTitle();

    /// 0 saves a file, 1 copies to the clipboard, 2 shows the folder.
    int snapshotButtonMode() const { return m_snapshotButtonMode; }
    /// What the button would do now.
    void onMakeSnapshot();
    void onMakeSnapshotToFile();
    void onMakeSnapshotToClipboard();
    void onRevealSnapshotsFolder();
    void onMakeSnapshotToPDF(); ///< a diagnostic
    /// Where `onMakeSnapshotToPDF` writes: "/tmp/snapshot.pdf" unless set.
    void setPdfPath(const QString& path) { m_pdfPath = path; }
    /// The plot with its titles and its legend as they are on the screen, in its pixels. Null when there is
    /// no memory for it.
    QImage getSnapshot();
    /// Alt held reveals, else Control held copies.
    void flagsChanged(Qt::KeyboardModifiers modifiers);
    /// Asks what the picture is to be, and writes it; `name` is proposed for the file.
    void onExportPicture(const QString& name);
    /// What a picture of the plot shows now, in the present ranges.
    PlotPictureOptions pictureOptions() const;
    SnapshotWriter& snapshotWriter() { return m_snapshotWriter; }

  Q_SIGNALS:
    /// The user wants to change where snapshots go.
    void preferencesRequested();
    /// Mouse mode, sticky ruler, fitting, black background, wheel zooms, or whether a curve can be added.
    void commandStatesChanged();

  protected:
    bool eventFilter(QObject* object, QEvent* event) override;

  private:
    void setUpSidebar();
    void setUpTools();
    void setUpTitles();
    void setUpPlotView();
    void attach();
    void detach();
    void observeValueForKeyPath(const KeyChange& change);
    void takeAxis(const XAxisInfo* kind, void (PlotScene::*setAxis)(XAxisHandle));
    void takeCurves();
    void takeOptions();
    void followData(); ///< while the plot is fitted, whatever else it shows now is fitted too
    void setCurves();
    void removeRows();
    void endBursts();
    void focusRow(std::size_t index);
    void curvesChanged();
    void orderFocus();
    void dataSourcesChanged();
    QString titleText(const std::optional<QString>& (MoxDocument::*key)() const) const;
    TitleLayout titleRooms() const; ///< in the container, y upwards
    void updateLayout();
    void updateTools();
    void updateStatusLine();
    void stylesChanged();
    void edit(PlotTitleField& field, bool& inFocus);
    void editTitleAt(QPoint position); ///< in the container
    void setLegendLocation();

    void setUpSnapshots();
    void noticeModifiers(QObject* object, QEvent* event);
    void setSnapshotMode(int mode);
    void showSnapshotMode(int mode);
    void paintContainer(QPainter& painter, PageOutput output);
    void blinkContainer(bool isBack);
    void copySnapshot(const QImage& image);
    void revealSnapshotsFolder();
    void withSnapshotsFolder(const QString& failure, const std::function<void(const QString& folder)>& use);
    void tellSnapshotFailure(const QString& message, const QString& reason);
    void saySnapshot(const QString& news);

    std::shared_ptr<CCurveViewController> makeRow();
    std::vector<CCurveViewController*> rows() const;

    void curveRemoved(const XCurveHandle& curve) override;
    void foldAll(bool folded) override;
    void gestureBegan() override;
    void gestureEnded() override;
    void gestureCancelled() override;
    void updateStatus(const std::optional<QString>& status) override;
    void legendWantsResize(XGraphLegend& legend, QSize size) override;
    void legendMoved(XGraphLegend& legend) override;
    void legendMovingFinished(XGraphLegend& legend) override;
    void legendTitleWillChange(XGraphLegend& legend) override;
    void legendTitleChangesEnded(XGraphLegend& legend, bool kept) override;

    std::unique_ptr<Ui::XGraphViewController> m_ui;
    QPointer<QWidget> m_view; ///< goes with the widget that shows it, if that goes first
    XGraphLegend* m_graphLegend = nullptr;
    QButtonGroup* m_mouseModes = nullptr;
    MoxDocument* m_document = nullptr;
    Observation m_observation;
    std::vector<Observation> m_curveObservations; ///< of what is drawn, not how
    std::vector<NotificationCenter::Registration> m_registrations;
    bool m_plotArea_inFocus = false;
    bool m_axisXTitle_inFocus = false;
    bool m_axisYTitle_inFocus = false;
    bool m_blackBackground = false;
    int m_snapshotButtonMode = 0;
    QString m_pdfPath = QStringLiteral("/tmp/snapshot.pdf");
    QTimer m_snapshotNews; ///< until the status line says something else
    SnapshotWriter m_snapshotWriter;
    bool m_legendVisible = false;
};
