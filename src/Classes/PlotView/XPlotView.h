// The widget that shows a plot scene, and hands it what mouse and keyboard do.
#pragma once

#include "Classes/PlotView/PlotInteraction.h"
#include "Classes/PlotView/PlotScene.h"
#include "Platform/Core/XViewController.h"

#include <QWidget>

#include <optional>

class QuickHelpCard;

class XPlotViewDelegate {
  public:
    XPlotViewDelegate() = default;
    virtual ~XPlotViewDelegate() = default;
    XPlotViewDelegate(const XPlotViewDelegate&) = delete;
    XPlotViewDelegate& operator=(const XPlotViewDelegate&) = delete;

    /// Absent when a measurement has ended.
    virtual void updateStatus(const std::optional<QString>& status) = 0;
};

/// Repaints when the scene asks, lays it out for its own size and renders again when the screen's device
/// pixel ratio changes. Options, axes and curves are the scene's; change styles through `updateStyles`.
class XPlotView : public QWidget {
    Q_OBJECT

  public:
    using WheelZooms = PlotInteraction::WheelZooms;

    explicit XPlotView(QWidget* parent = nullptr);
    ~XPlotView() override;

    PlotScene& scene() { return m_scene; }
    const PlotScene& scene() const { return m_scene; }
    /// Not owned; null for none.
    void setDelegate(XPlotViewDelegate* delegate) { m_delegate = delegate; }

    /// 0 pans, 1 zooms into a rectangle, 2 measures.
    int mouseMode() const { return m_interaction.overlay().mouseMode; }
    void setMouseMode(int mode);
    /// Whether a measurement stays when the button is released.
    bool stickyRuler() const { return m_interaction.stickyRuler(); }
    void setStickyRuler(bool sticky);
    /// Which axes the wheel zooms while neither Shift (y alone) nor Alt (x alone) is held.
    WheelZooms wheelZooms() const { return m_interaction.wheelZooms; }
    void setWheelZooms(WheelZooms which) { m_interaction.wheelZooms = which; }

    /// Moves what is shown to the right and upwards.
    void panBy(QPointF pixels);
    /// About the centre; a factor below 1 zooms in.
    void zoomBy(double factor);
    void fitToData() { m_scene.fitToData(); }
    void alignXAxis();
    void updateStyles(const QVariantMap& changes);

    /// For the left end of the status line: what the drag will do.
    QString message() const { return m_interaction.message(); }
    /// For its right end: x and y under the mouse, or Δx and Δy measured; nothing while the mouse is off the
    /// plot.
    Readouts readouts() const { return m_readouts; }

    QSize minimumSizeHint() const override { return {100, 100}; }

  Q_SIGNALS:
    void mouseModeChanged(int mode);
    void stickyRulerChanged(bool sticky);
    void autoFitToDataChanged(bool on); ///< whether the axes follow the data
    void rangesChanged();               ///< of an axis, by anyone
    void stylesChanged();
    void messageChanged();
    void readoutsChanged();

  protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

  private:
    /// What the outside was last told.
    struct Announced {
        double ranges[4] = {};
        qsizetype curves = -1;
        bool autoFitToData = true;
        QString message;
    };

    PlotAxes axes() { return {*m_scene.axisX(), *m_scene.axisY(), m_scene.layout()}; }
    QPointF viewPoint(QPointF position) const;
    QRect widgetRect(const QRectF& rect) const;
    void perform(PlotInteraction::Effects effects);
    void sceneChanged();
    void announceChanges();
    void describe();
    void updateReadouts();
    void updateCursor();
    void placeQuickHelp();
    bool handlesKey(const QKeyEvent& event) const;
    PlotInteraction::Effects pressKey(const QKeyEvent& event);

    PlotScene m_scene;
    PlotInteraction m_interaction;
    XPlotViewDelegate* m_delegate = nullptr;
    QuickHelpCard* m_quickHelp;
    Readouts m_readouts;
    Announced m_announced;
    double m_cursorRatio = 0;
    bool m_showsFocus = false; ///< the focus came by a key
};
