// Follows curves and axes, and queues a rendering for each curve that needs one.
#include "Classes/PlotView/PlotScene.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/PlotView/CurveRenderer.h"
#include "Classes/PlotView/FitToData.h"
#include "Classes/PlotView/MouseTicks.h"
#include "Classes/PlotView/PlotCanvas.h"
#include "Classes/PlotView/RulerDrawing.h"
#include "Classes/PlotView/SelectionDrawing.h"
#include "Classes/PlotView/XPlotViewRenderTask.h"
#include "Core/ClampToInt.h"

#include <QPainter>

#include <cstring>
#include <utility>

namespace {

constexpr std::size_t renderTasksAtOnce = 4;

constexpr const char* curveKVOkeys[] = {"needsRedraw", "x_evaluated_data", "y_evaluated_data"};

bool hasData(const XCurve& curve) {
    return curve.snapshot().rows() > 0;
}

} // namespace

PlotScene::PlotScene(std::function<void()> setNeedsDisplay)
    : m_axisX(std::make_shared<XAxis>()), m_axisY(std::make_shared<XAxis>()),
      m_setNeedsDisplay(std::make_shared<const std::function<void()>>(std::move(setNeedsDisplay))),
      m_renderTasksQueue(renderTasksAtOnce) {
    m_axisX->setRangeMinMax(0, 5000);
    // Kept: the second range goes to the x axis, too, and the y axis starts without one. The first fit sets
    // both.
    m_axisX->setRangeMinMax(0, 0.3);
    m_updateRegistration = NotificationCenter::defaultCenter().observe(
        Notifications::dataSourceUpdated, nullptr, [this](QObject*) { dataSourceUpdated(); });
}

PlotScene::~PlotScene() {
    m_updateRegistration.end();
    m_curveObservations.clear();
    m_setNeedsDisplay.reset();
    m_renderTasksQueue.cancelAll();
}

void PlotScene::setNeedsDisplay() const {
    if (m_setNeedsDisplay && *m_setNeedsDisplay)
        (*m_setNeedsDisplay)();
}

// --- Axes, curves, styles
// --------------------------------------------------------------------------------------

void PlotScene::replaceAxis(XAxisHandle& place, XAxisHandle axis) {
    if (!axis || axis == place)
        return;
    axis->setRangeMinMax(place->minValue(), place->maxValue());
    axis->setPixelLength(place->pixelLength()); // gestures may come before the next layout
    place = std::move(axis);
    m_renderTasksQueue.cancelAll(); // what is under way was made for an axis of another kind
    discardPrerenderedImages();
    assignAxes();
    setNeedsDisplay();
}

/// A curve without an image gets the present axes, which say what values its ranges may hold.
void PlotScene::assignAxes() {
    for (const XCurveHandle& curve : std::as_const(m_curves)) {
        if (!curve->renderedImage().isNull())
            continue;
        curve->setAxis_X(m_axisX);
        curve->setAxis_Y(m_axisY);
    }
}

void PlotScene::setCurves(QList<XCurveHandle> curves) {
    m_curveObservations.clear();
    m_curves = std::move(curves);
    for (const XCurveHandle& curve : std::as_const(m_curves))
        m_curveObservations.emplace_back(*curve, curveKVOkeys,
                                         [this](const KeyChange& change) { observeValueForKeyPath(change); });
    assignAxes();
    setNeedsDisplay();
}

void PlotScene::observeValueForKeyPath(const KeyChange& change) {
    if (autoFitToData && std::strcmp(change.key, "needsRedraw") != 0) {
        fitToData();
        return;
    }
    if (const auto* curve = qobject_cast<const XCurve*>(change.object);
        curve != nullptr && curve->needsRedraw())
        setNeedsDisplay();
}

void PlotScene::dataSourceUpdated() {
    if (autoFitToData)
        fitToData();
}

void PlotScene::updateStyles(const QVariantMap& changes) {
    m_styles.update(changes);
    setNeedsDisplay();
}

void PlotScene::discardPrerenderedImages() {
    for (const XCurveHandle& curve : std::as_const(m_curves))
        curve->discardRenderedImage();
}

// --- Layout and ranges
// -----------------------------------------------------------------------------------------

void PlotScene::setBounds(QSizeF bounds) {
    m_bounds = bounds;
    calculateMargins();
}

void PlotScene::setDevicePixelRatio(double ratio) {
    if (ratio == m_devicePixelRatio)
        return;
    m_devicePixelRatio = ratio; // images of another ratio are stale from now on
    setNeedsDisplay();
}

const PlotLayout& PlotScene::calculateMargins() {
    m_layout = ::calculateMargins(m_bounds, *m_axisX, *m_axisY, m_measure);
    m_axisX->setPixelLength(m_layout.selfWidth);
    m_axisY->setPixelLength(m_layout.selfHeight);
    return m_layout;
}

void PlotScene::fitAxis(XAxis& axis, XValueRange (XCurve::*range)() const, double fixedMin,
                        double fixedMax) const {
    std::vector<XValueRange> ranges;
    for (const XCurveHandle& curve : std::as_const(m_curves)) {
        if (curve->isVisible() && hasData(*curve))
            ranges.push_back(((*curve).*range)());
    }
    const FittedRange fitted = fitRange(ranges, fixedMin, fixedMax);
    axis.setRangeMinMax(fitted.range.minimum, fitted.range.maximum);
    axis.makeVisibleMarginForMinMax(fitted.marginAtMin, fitted.marginAtMax);
}

void PlotScene::fitAxisX() {
    fitAxis(*m_axisX, &XCurve::getRangeX, options.axisMinX, options.axisMaxX);
    setNeedsDisplay();
}

void PlotScene::fitAxisY() {
    fitAxis(*m_axisY, &XCurve::getRangeY, options.axisMinY, options.axisMaxY);
    setNeedsDisplay();
}

void PlotScene::fitToData() {
    fitAxis(*m_axisX, &XCurve::getRangeX, options.axisMinX, options.axisMaxX);
    autoFitToData = true;
    fitAxisY();
}

QPointF PlotScene::getViewCoordinatesForData(QPointF data) const {
    return {m_axisX->valueToPixel(data.x()) + m_layout.marginLeft,
            m_axisY->valueToPixel(data.y()) + m_layout.marginBottom};
}

// --- Curves
// ----------------------------------------------------------------------------------------------------

bool PlotScene::isCurrent(const XCurve& curve, const RenderedCurve& rendering) const {
    return !curve.needsRedraw() && !rendering.image.isNull() && rendering.axisX && rendering.axisY &&
           rendering.axisX->isEqualToAxis(*m_axisX) && rendering.axisY->isEqualToAxis(*m_axisY) &&
           qFuzzyCompare(rendering.image.devicePixelRatio(), m_devicePixelRatio);
}

bool PlotScene::requestRenderings() {
    calculateMargins();
    bool upToDate = true;
    for (const XCurveHandle& curve : std::as_const(m_curves)) {
        if (!curve->isVisible() || !hasData(*curve) || m_layout.plotRect().isEmpty() ||
            isCurrent(*curve, curve->rendering()))
            continue;
        addRenderTaskForCurve(curve);
        upToDate = false;
    }
    return upToDate;
}

bool PlotScene::drawPrerenderedImageOfCurve(PlotCanvas& canvas, const XCurve& curve) const {
    const RenderedCurve rendering = curve.rendering();
    if (rendering.image.isNull() || !rendering.axisX || !rendering.axisY)
        return false;

    // Where the ranges that the image was made for lie now, in whole points. What rounding left just below a
    // whole number counts as that number.
    const auto whole = [](double pixels) { return clampToInt(pixels + 1e-6); };
    const auto place = [&whole](const XAxis& now, const XAxis& then) {
        const double start = now.valueToPixel(then.minValue());
        return std::pair(whole(start), whole(now.valueToPixel(then.maxValue()) - start));
    };
    const auto [x, width] = place(*m_axisX, *rendering.axisX);
    const auto [y, height] = place(*m_axisY, *rendering.axisY);
    if (width > 0 && height > 0) {
        canvas.save();
        canvas.clip(m_layout.plotRect());
        canvas.image(QRectF(static_cast<double>(x) + m_layout.marginLeft,
                            static_cast<double>(y) + m_layout.marginBottom, width, height),
                     rendering.image, curveOpacity);
        canvas.restore();
    }
    return isCurrent(curve, rendering);
}

void PlotScene::addRenderTaskForCurve(const XCurveHandle& curve) {
    const std::weak_ptr<const std::function<void()>> announce = m_setNeedsDisplay;
    RenderTarget target;
    target.setNeedsDisplay = [announce] {
        if (const auto callback = announce.lock(); callback && *callback)
            (*callback)();
    };
    target.devicePixelRatio = m_devicePixelRatio;
    target.grace = m_renderGrace;
    auto task = std::make_shared<XPlotViewRenderTask>(curve, *m_axisX, *m_axisY, std::move(target));

    m_renderTasksQueue.addUnderLock([&](std::span<const std::shared_ptr<Operation>> listed) {
        bool needed = true;
        for (const std::shared_ptr<Operation>& operation : listed) {
            const auto other = std::dynamic_pointer_cast<XPlotViewRenderTask>(operation);
            // One that was cancelled, or is done but still listed, brings no image any more.
            if (!other || other->curve() != curve || other->isCancelled() || other->hasHandedBack())
                continue;
            if (other->compareWithTask(*task))
                needed = false;
            else
                other->cancel();
        }
        return needed ? std::shared_ptr<Operation>(task) : nullptr;
    });
}

void PlotScene::drawCurveAsVector(PlotCanvas& canvas, const XCurve& curve) const {
    canvas.save();
    canvas.clip(m_layout.plotRect());
    canvas.group(m_layout.plotRect(), curveOpacity,
                 [snapshot = curve.snapshot(), x = XAxisHandle(m_axisX->copy()),
                  y = XAxisHandle(m_axisY->copy())](QPainter& painter) {
                     CurveRenderer::paintVector(painter, snapshot, *x, *y);
                 });
    canvas.restore();
}

void PlotScene::renderData(PlotCanvas& canvas, CurveOutput output) {
    if (m_layout.plotRect().isEmpty())
        return;
    for (const XCurveHandle& curve : std::as_const(m_curves)) {
        if (!curve->isVisible())
            continue;
        if (m_curvePainter)
            m_curvePainter(canvas, *curve);
        else if (output == CurveOutput::Vector)
            drawCurveAsVector(canvas, *curve);
        else if (!drawPrerenderedImageOfCurve(canvas, *curve))
            addRenderTaskForCurve(curve);
    }
}

// --- Drawing
// ---------------------------------------------------------------------------------------------------

void PlotScene::drawGrid(PlotCanvas& canvas) const {
    if (options.dimGrid)
        return;
    for (const int level : {1, 0}) {
        if (options.showVerticalLines)
            PlotDrawing::drawGridLines(canvas, AxisInView::x(*m_axisX, m_layout), level, m_styles);
        if (options.showHorizontalLines)
            PlotDrawing::drawGridLines(canvas, AxisInView::y(*m_axisY, m_layout), level, m_styles);
    }
}

void PlotScene::drawQuickHelp(PlotCanvas&) const {}

void PlotScene::drawLegend(PlotCanvas&) const {}

void PlotScene::drawAxes(PlotCanvas& canvas, const QRectF& dirtyRect) {
    const AxisInView x = AxisInView::x(*m_axisX, m_layout);
    const AxisInView y = AxisInView::y(*m_axisY, m_layout);
    const std::optional<QPointF> pointer =
        overlay.selection.isEmpty() ? overlay.pointer() : std::optional<QPointF>();
    if (dirtyRect == m_requestedDirtyRect) {
        m_requestedDirtyRect = {};
    } else {
        PlotDrawing::drawAxis(canvas, x, m_styles, m_measure);
        if (pointer)
            PlotDrawing::drawMouseTick(canvas, x, m_layout.bottomStrip(), pointer->x(), m_styles, m_measure);
        if (overlay.selection.isEmpty())
            m_requestedDirtyRect = m_layout.leftStrip();
    }
    PlotDrawing::drawAxis(canvas, y, m_styles, m_measure);
    if (pointer)
        PlotDrawing::drawMouseTick(canvas, y, m_layout.leftStrip(), pointer->y(), m_styles, m_measure);
}

void PlotScene::drawOverlay(PlotCanvas& canvas) const {
    if (overlay.mouseMode == zoomMouseMode)
        PlotDrawing::drawSelection(canvas, m_layout, *m_axisX, *m_axisY, overlay.selection, m_styles);
    else if (overlay.mouseMode == rulerMouseMode)
        PlotDrawing::drawRuler(canvas, m_layout, *m_axisX, *m_axisY, overlay.selection, m_styles, m_measure);
    if (overlay.crossHair)
        PlotDrawing::drawCrossHair(canvas, m_layout, *overlay.crossHair, m_styles);
}

void PlotScene::draw(PlotCanvas& canvas, const QRectF& dirtyRect, CurveOutput output) {
    calculateMargins();
    const QRectF bounds(QPointF(0, 0), m_bounds);
    canvas.save();
    canvas.clip(dirtyRect);
    canvas.save();
    canvas.clip(bounds); // labels alone may reach out of the view
    PlotDrawing::drawBackground(canvas, m_layout, m_styles);
    PlotDrawing::drawFrame(canvas, m_layout, m_styles);
    drawGrid(canvas);
    if (!options.dimGrid)
        PlotDrawing::drawOrigins(canvas, m_layout, *m_axisX, *m_axisY, options.showOriginX,
                                 options.showOriginY, m_styles);
    if (m_curves.isEmpty())
        drawQuickHelp(canvas);
    else
        renderData(canvas, output);
    canvas.restore();
    if (output == CurveOutput::Vector) // the writer of scalable graphics ignores clips
        PlotDrawing::coverAround(canvas, dirtyRect.united(bounds), m_layout.plotRect(), m_styles);
    drawAxes(canvas, dirtyRect);
    drawOverlay(canvas);
    PlotDrawing::drawAxisTitles(canvas, m_layout, options.titles, m_styles, m_measure);
    canvas.restore();
}
