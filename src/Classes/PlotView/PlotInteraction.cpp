// Edits of one axis at a time, and the states between press and release.
#include "Classes/PlotView/PlotInteraction.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/PlotView/PlotLayout.h"
#include "Core/ClampToInt.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// --- Edits of one axis
// -----------------------------------------------------------------------------------------

// Whether neighbouring pixels have values that differ by more than rounding does, and find their way back.
bool resolvesPixel(const XAxis& axis, int pixel) {
    constexpr double leastSteps = 16;
    const double from = axis.pixelToValue(pixel);
    const double to = axis.pixelToValue(pixel + 1);
    const double magnitude = std::max(std::abs(from), std::abs(to));
    // What is not a number fails, too.
    return std::abs(axis.valueToPixel(from) - pixel) < 0.1 &&
           std::abs(to - from) > leastSteps * (std::numeric_limits<double>::epsilon() * magnitude +
                                               std::numeric_limits<double>::min());
}

bool isUsable(const XAxis& axis) {
    const int length = axis.pixelLength();
    return length > 0 && std::isfinite(axis.minValue()) && std::isfinite(axis.maxValue()) &&
           std::isfinite(axis.maxValue() - axis.minValue()) && resolvesPixel(axis, 0) &&
           resolvesPixel(axis, length / 3) && resolvesPixel(axis, length - 1);
}

bool ascends(const XAxis& axis) {
    return axis.minValue() < axis.maxValue();
}

// Carries out an edit, and takes it back unless it `holds` afterwards. A range that runs backwards may be
// edited, but not turned over.
template <typename Edit, typename Holds>
void editRange(XAxis& axis, const Edit& edit, const Holds& holds) {
    if (!isUsable(axis))
        return;
    const double min = axis.minValue();
    const double max = axis.maxValue();
    edit(axis);
    if (!isUsable(axis) || ascends(axis) != (min < max) || !holds(axis))
        axis.setRangeMinMax(min, max);
}

void pan(XAxis& axis, double pixels) {
    const double min = axis.minValue();
    const double max = axis.maxValue();
    const int length = axis.pixelLength();
    editRange(
        axis, [pixels](XAxis& edited) { edited.moveOnPixels(static_cast<float>(pixels)); },
        // At the end of its values an axis moves one end alone.
        [=](const XAxis& moved) {
            return std::abs(moved.valueToPixel(min) - pixels) < 0.5 &&
                   std::abs(moved.valueToPixel(max) - length - pixels) < 0.5;
        });
}

void zoom(XAxis& axis, double factor, int pixel) {
    const double center = axis.pixelToValue(pixel);
    editRange(
        axis, [=](XAxis& edited) { edited.zoomWithFactorWithPixelsOrigin(factor, pixel); },
        [=](const XAxis& zoomed) { return std::abs(zoomed.valueToPixel(center) - pixel) < 1; });
}

void select(XAxis& axis, double oneEnd, double otherEnd) {
    const double min = axis.minValue();
    const double max = axis.maxValue();
    axis.setRangeMinMax(std::min(oneEnd, otherEnd), std::max(oneEnd, otherEnd));
    if (!isUsable(axis) || !ascends(axis))
        axis.setRangeMinMax(min, max);
}

// --- Points
// ----------------------------------------------------------------------------------------------------

int pixelOn(double location, int margin) {
    return clampToInt(location - margin);
}

QPointF dataAt(const PlotAxes& axes, QPointF point) {
    return {axes.x.pixelToValue(pixelOn(point.x(), axes.layout.marginLeft)),
            axes.y.pixelToValue(pixelOn(point.y(), axes.layout.marginBottom))};
}

// How far an axis moves when it is dragged to a point outside the plot, which lies in `margin` ... `edge`.
double scrollBeyond(double location, int margin, int edge, double length) {
    if (location > edge)
        return length - location;
    return location < margin ? margin - location : 0;
}

void scrollAtEdges(const PlotAxes& axes, QPointF point) {
    const PlotLayout& layout = axes.layout;
    const auto scroll = [](XAxis& axis, double pixels) {
        if (pixels != 0)
            pan(axis, pixels);
    };
    scroll(axes.x, scrollBeyond(point.x(), layout.marginLeft, layout.rightEdge, layout.bounds.width()));
    scroll(axes.y, scrollBeyond(point.y(), layout.marginBottom, layout.topEdge, layout.bounds.height()));
}

QString oneLine(QString text) {
    return text.replace(u'\n', u' ');
}

constexpr PlotInteraction::Effects edited() {
    return PlotInteraction::Redraw | PlotInteraction::RangesEdited;
}

} // namespace

// --- Modes
// -----------------------------------------------------------------------------------------------------

bool PlotInteraction::selects() const {
    return m_overlay.mouseMode == zoomMouseMode || m_overlay.mouseMode == rulerMouseMode;
}

PlotInteraction::Effects PlotInteraction::endSelection() {
    const bool measured = m_overlay.mouseMode == rulerMouseMode;
    m_overlay.selection.end = m_overlay.selection.origin;
    m_dimGrid = false;
    return measured ? Redraw | RulerReleased : Effects(Redraw);
}

PlotInteraction::Effects PlotInteraction::setMouseMode(int mode) {
    if (mode == m_overlay.mouseMode)
        return NoEffect;
    const Effects effects = endSelection();
    m_drag = Drag::None;
    m_overlay.crossHair.reset();
    m_overlay.mouseMode = mode;
    return effects;
}

PlotInteraction::Effects PlotInteraction::setStickyRuler(bool sticky) {
    m_stickyRuler = sticky;
    const bool left =
        m_overlay.mouseMode == rulerMouseMode && m_drag == Drag::None && !m_overlay.selection.isEmpty();
    return !sticky && left ? endSelection() : NoEffect;
}

// --- Mouse
// -----------------------------------------------------------------------------------------------------

PlotInteraction::Effects PlotInteraction::enter(QPointF point) {
    m_overlay.mouseInside = true;
    m_overlay.mouseLocation = point;
    return RedrawMouseTicks;
}

PlotInteraction::Effects PlotInteraction::leave() {
    m_overlay.mouseInside = false;
    return Redraw;
}

PlotInteraction::Effects PlotInteraction::move(QPointF point) {
    if (!m_overlay.mouseInside && m_overlay.selection.isEmpty())
        return NoEffect;
    const QPointF step = point - m_overlay.mouseLocation;
    m_overlay.mouseLocation = point;
    if (m_overlay.crossHair && m_drag == Drag::None && !step.isNull()) {
        m_overlay.crossHair.reset();
        return Redraw;
    }
    return RedrawMouseTicks;
}

PlotInteraction::Effects PlotInteraction::press(const PlotAxes& axes, QPointF point) {
    m_drag = Drag::Mouse;
    m_lastPoint = point;
    m_overlay.mouseLocation = point;
    m_overlay.crossHair.reset();
    if (!selects())
        return NoEffect;
    m_dimGrid = false;
    m_overlay.selection.origin = m_overlay.selection.end = dataAt(axes, point);
    return Redraw;
}

PlotInteraction::Effects PlotInteraction::drag(const PlotAxes& axes, QPointF point) {
    if (m_drag == Drag::None)
        return NoEffect;
    const QPointF step = point - std::exchange(m_lastPoint, point);
    m_overlay.mouseLocation = point;
    if (m_overlay.mouseMode == panMouseMode)
        return panBy(axes, step);
    if (!selects())
        return NoEffect;
    m_overlay.selection.end = dataAt(axes, point);
    scrollAtEdges(axes, point);
    return edited();
}

PlotInteraction::Effects PlotInteraction::release(const PlotAxes& axes) {
    if (std::exchange(m_drag, Drag::None) == Drag::None || !selects())
        return NoEffect;
    const PlotSelection selection = m_overlay.selection;
    if (m_overlay.mouseMode == rulerMouseMode && m_stickyRuler) {
        m_dimGrid = false;
        return Redraw;
    }
    if (m_overlay.mouseMode == zoomMouseMode && std::abs(selection.width()) > 0 &&
        std::abs(selection.height()) > 0) {
        select(axes.x, selection.origin.x(), selection.end.x());
        select(axes.y, selection.origin.y(), selection.end.y());
    }
    return endSelection();
}

PlotInteraction::Effects PlotInteraction::wheel(const PlotAxes& axes, QPointF point, double notches,
                                                Qt::KeyboardModifiers modifiers) const {
    const double factor = std::clamp(notches * -0.1 + 1, 0.5, 1.5);
    const bool shift = modifiers.testFlag(Qt::ShiftModifier);
    const bool alt = modifiers.testFlag(Qt::AltModifier);
    const bool chosen = shift || alt;
    if (chosen ? !shift : wheelZooms != WheelZooms::YOnly)
        zoom(axes.x, factor, pixelOn(point.x(), axes.layout.marginLeft));
    if (chosen ? !alt : wheelZooms != WheelZooms::XOnly)
        zoom(axes.y, factor, pixelOn(point.y(), axes.layout.marginBottom));
    return edited();
}

// --- Keys
// ------------------------------------------------------------------------------------------------------

PlotInteraction::Effects PlotInteraction::modifiersChanged(Qt::KeyboardModifiers modifiers) {
    const bool alt = modifiers.testFlag(Qt::AltModifier);
    if (m_overlay.selection.isEmpty() || m_dimGrid == alt)
        return NoEffect;
    m_dimGrid = alt;
    return Redraw;
}

PlotInteraction::Effects PlotInteraction::focusLost() {
    return modifiersChanged(Qt::NoModifier);
}

PlotInteraction::Effects PlotInteraction::escape() {
    if (std::exchange(m_drag, Drag::None) != Drag::None || !m_overlay.selection.isEmpty())
        return endSelection();
    if (!m_overlay.crossHair)
        return NoEffect;
    m_overlay.crossHair.reset();
    return Redraw;
}

QPointF PlotInteraction::crossHairOr(const PlotAxes& axes) const {
    if (m_overlay.crossHair)
        return *m_overlay.crossHair;
    const QRectF plot = axes.layout.plotRect();
    if (m_overlay.mouseInside && plot.contains(m_overlay.mouseLocation))
        return m_overlay.mouseLocation;
    return {std::floor(plot.center().x()), std::floor(plot.center().y())};
}

PlotInteraction::Effects PlotInteraction::moveCrossHair(const PlotAxes& axes, QPointF pixels) {
    if (!selects() || m_drag == Drag::Mouse)
        return NoEffect;
    const PlotLayout& layout = axes.layout;
    const QPointF point = crossHairOr(axes) + pixels;
    const QPointF mouse = m_overlay.mouseLocation;
    const Effects effects = drag(axes, point) | Redraw;
    m_overlay.mouseLocation = mouse;
    m_overlay.crossHair = QPointF(
        std::clamp<double>(point.x(), layout.marginLeft, std::max(layout.marginLeft, layout.rightEdge)),
        std::clamp<double>(point.y(), layout.marginBottom, std::max(layout.marginBottom, layout.topEdge)));
    return effects;
}

PlotInteraction::Effects PlotInteraction::confirm(const PlotAxes& axes) {
    if (!selects() || m_drag == Drag::Mouse)
        return NoEffect;
    if (m_drag == Drag::Keys)
        return release(axes);
    const QPointF point = crossHairOr(axes);
    const QPointF mouse = m_overlay.mouseLocation;
    const Effects effects = press(axes, point);
    m_drag = Drag::Keys;
    m_overlay.mouseLocation = mouse;
    m_overlay.crossHair = point;
    return effects;
}

// --- Commands
// --------------------------------------------------------------------------------------------------

PlotInteraction::Effects PlotInteraction::panBy(const PlotAxes& axes, QPointF pixels) {
    pan(axes.x, pixels.x());
    pan(axes.y, pixels.y());
    return edited();
}

PlotInteraction::Effects PlotInteraction::zoomBy(const PlotAxes& axes, double factor) {
    zoom(axes.x, factor, axes.layout.selfWidth / 2);
    zoom(axes.y, factor, axes.layout.selfHeight / 2);
    return edited();
}

PlotInteraction::Effects PlotInteraction::alignX(const PlotAxes& axes) {
    editRange(
        axes.x, [](XAxis& axis) { axis.alignRanges(); }, [](const XAxis&) { return true; });
    return Redraw;
}

// --- Status line
// -----------------------------------------------------------------------------------------------

QString PlotInteraction::message() const {
    const bool selected = !m_overlay.selection.isEmpty();
    switch (m_overlay.mouseMode) {
    case panMouseMode:
        return u"Drag to pan, wheel to zoom"_s;
    case zoomMouseMode:
        return selected ? u"Release to zoom in, Esc to cancel"_s : u"Drag a rectangle to zoom in"_s;
    case rulerMouseMode:
        return selected ? u"Hold Alt to dim the grid, Esc to cancel"_s : u"Drag to measure"_s;
    default:
        return {};
    }
}

Readouts PlotInteraction::readouts(const PlotAxes& axes) const {
    const PlotSelection& selection = m_overlay.selection;
    if (m_overlay.mouseMode == rulerMouseMode && !selection.isEmpty())
        return {{u"Δx"_s, oneLine(axes.x.humanReadableIntervalEnd(selection.origin.x(), selection.end.x()))},
                {u"Δy"_s, oneLine(axes.y.humanReadableIntervalEnd(selection.origin.y(), selection.end.y()))}};
    const std::optional<QPointF> pointer = m_overlay.pointer();
    const PlotLayout& layout = axes.layout;
    if (!pointer || pointer->x() < layout.marginLeft || pointer->x() > layout.rightEdge ||
        pointer->y() < layout.marginBottom || pointer->y() > layout.topEdge)
        return {};
    const QPointF value = dataAt(axes, *pointer);
    return {{u"x"_s, oneLine(axes.x.humanReadableValue(value.x()))},
            {u"y"_s, oneLine(axes.y.humanReadableValue(value.y()))}};
}
