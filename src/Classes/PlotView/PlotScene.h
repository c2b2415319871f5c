// Everything a plot view shows and knows, without a widget: axes, curves, options, drawing and the render
// queue.
#pragma once

#include "Classes/PlotModel/XCurve.h"
#include "Classes/PlotView/PlotDrawing.h"
#include "Classes/PlotView/PlotLayout.h"
#include "Classes/PlotView/PlotOverlay.h"
#include "Classes/PlotView/PlotStyles.h"
#include "Platform/Core/NotificationCenter.h"
#include "Platform/Core/OperationQueue.h"

#include <QList>
#include <QPointF>
#include <QSizeF>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

class PlotCanvas;

/// What the owner of a plot sets; whoever changes it asks for a redraw. A title that is drawn elsewhere is
/// left absent here. A limit that is not finite follows the data.
struct PlotOptions {
    PlotDrawing::Titles titles;
    double axisMinX = 0;
    double axisMaxX = 0;
    double axisMinY = 0;
    double axisMaxY = 0;
    bool showOriginX = false;
    bool showOriginY = false;
    bool showHorizontalLines = false;
    bool showVerticalLines = false;
    bool showLegend = false;
    bool dimGrid = false; ///< hides grid and origin lines
};

/// Main thread. Curves are drawn from images that render tasks make in the background: an image that is
/// missing or was made for other axes has a task queued by the next drawing, and meanwhile the old one is
/// shown, stretched onto the present axes.
class PlotScene {
  public:
    /// How curves reach the canvas.
    enum class CurveOutput { Images, Vector };
    using CurvePainter = std::function<void(PlotCanvas& canvas, const XCurve& curve)>;

    static constexpr double curveOpacity = 0.9;

    /// `setNeedsDisplay` is called whenever what is shown has changed.
    explicit PlotScene(std::function<void()> setNeedsDisplay = {});
    ~PlotScene();
    PlotScene(const PlotScene&) = delete;
    PlotScene& operator=(const PlotScene&) = delete;

    PlotOptions options;
    PlotOverlay overlay; ///< drawn over the plot; nothing unless a view fills it in
    /// Whether the axes follow the data; an edit of their ranges by the user ends that.
    bool autoFitToData = true;

    const XAxisHandle& axisX() const { return m_axisX; }
    const XAxisHandle& axisY() const { return m_axisY; }
    /// The new axis takes over the old one's range; all images are discarded.
    void setAxisX(XAxisHandle axis) { replaceAxis(m_axisX, std::move(axis)); }
    void setAxisY(XAxisHandle axis) { replaceAxis(m_axisY, std::move(axis)); }

    const QList<XCurveHandle>& curves() const { return m_curves; }
    void setCurves(QList<XCurveHandle> curves);
    const PlotStyles& styles() const { return m_styles; }
    void updateStyles(const QVariantMap& changes);

    void setBounds(QSizeF bounds); ///< points
    void setDevicePixelRatio(double ratio);
    /// How long a render task waits for a newer one that replaces it.
    void setRenderGrace(std::chrono::milliseconds grace) { m_renderGrace = grace; }
    /// Draws visible curves in place of the scene, which then makes no images.
    void setCurvePainter(CurvePainter painter) { m_curvePainter = std::move(painter); }

    /// Lays out for the present bounds and gives the axes their lengths.
    const PlotLayout& calculateMargins();
    const PlotLayout& layout() const { return m_layout; }

    /// Ranges around the visible curves' data, with a visible margin; turns `autoFitToData` on.
    void fitToData();
    /// One axis alone, whose limits were changed; the other keeps what it shows, and so does
    /// `autoFitToData`.
    void fitAxisX();
    void fitAxisY();
    void discardPrerenderedImages();
    /// Render tasks that are queued, running or handing over.
    std::size_t renderTaskCount() const { return m_renderTasksQueue.operationCount(); }
    /// Lays out and queues a task for every visible curve whose image is missing or stale; false if there was
    /// one.
    bool requestRenderings();

    void draw(PlotCanvas& canvas, const QRectF& dirtyRect, CurveOutput output = CurveOutput::Images);
    /// What the last drawing asks to be drawn again: the strip of the y axis after the mouse's mark on the x
    /// axis. Drawing exactly that strip leaves the x axis out and asks for nothing more.
    const QRectF& requestedDirtyRect() const { return m_requestedDirtyRect; }
    /// Draws the images there are and queues tasks for those that are missing or stale.
    void renderData(PlotCanvas& canvas, CurveOutput output);
    /// Returns whether the image is up to date.
    bool drawPrerenderedImageOfCurve(PlotCanvas& canvas, const XCurve& curve) const;
    void addRenderTaskForCurve(const XCurveHandle& curve);
    void drawQuickHelp(PlotCanvas& canvas) const; ///< draws nothing
    void drawLegend(PlotCanvas& canvas) const;    ///< draws nothing: the legend is a view of its own

    /// A data point in view coordinates.
    QPointF getViewCoordinatesForData(QPointF data) const;

  private:
    void fitAxis(XAxis& axis, XValueRange (XCurve::*range)() const, double fixedMin, double fixedMax) const;
    void replaceAxis(XAxisHandle& place, XAxisHandle axis);
    void assignAxes();
    void observeValueForKeyPath(const KeyChange& change);
    void dataSourceUpdated();
    void setNeedsDisplay() const;
    bool isCurrent(const XCurve& curve, const RenderedCurve& rendering) const;
    void drawCurveAsVector(PlotCanvas& canvas, const XCurve& curve) const;
    void drawGrid(PlotCanvas& canvas) const;
    void drawAxes(PlotCanvas& canvas, const QRectF& dirtyRect);
    void drawOverlay(PlotCanvas& canvas) const;

    XAxisHandle m_axisX;
    XAxisHandle m_axisY;
    QList<XCurveHandle> m_curves;
    std::vector<Observation> m_curveObservations;
    PlotStyles m_styles;
    FontTextMeasure m_measure;
    PlotLayout m_layout;
    QSizeF m_bounds;
    QRectF m_requestedDirtyRect;
    double m_devicePixelRatio = 1;
    std::chrono::milliseconds m_renderGrace{100};
    CurvePainter m_curvePainter;
    NotificationCenter::Registration m_updateRegistration;
    /// Render tasks hold it weakly: what they announce after the scene went reaches nobody.
    std::shared_ptr<const std::function<void()>> m_setNeedsDisplay;
    OperationQueue m_renderTasksQueue; ///< last: its end waits for tasks that use the rest
};
