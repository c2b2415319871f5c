// Translates events into gestures, and paints the scene with what lies over it.
#include "Classes/PlotView/XPlotView.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/PlotView/PainterCanvas.h"
#include "Classes/PlotView/QuickHelpCard.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/FlippedGeometry.h"
#include "Platform/Widgets/Pictures.h"
#include "Platform/Widgets/StylePainting.h"

#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr double keyPanPixels = 20;
constexpr double keyPanPixelsWithShift = 100;
constexpr double keyStepPixels = 1;
constexpr double keyStepPixelsWithControl = 10;
constexpr double keyZoomFactor = 0.8; // and its inverse
constexpr double unitsPerNotch = 120;

// The direction of an arrow key, y upwards; null for other keys.
QPointF arrowDirection(int key) {
    switch (key) {
    case Qt::Key_Left:
        return {-1, 0};
    case Qt::Key_Right:
        return {1, 0};
    case Qt::Key_Up:
        return {0, 1};
    case Qt::Key_Down:
        return {0, -1};
    default:
        return {};
    }
}

Qt::KeyboardModifiers modifiersOf(const QKeyEvent& event) {
    return event.modifiers() & ~Qt::KeypadModifier;
}

bool isZoomKey(int key) {
    return key == Qt::Key_Plus || key == Qt::Key_Equal || key == Qt::Key_Minus;
}

bool cameByKey(Qt::FocusReason reason) {
    return reason == Qt::TabFocusReason || reason == Qt::BacktabFocusReason ||
           reason == Qt::ShortcutFocusReason;
}

} // namespace

XPlotView::XPlotView(QWidget* parent)
    : QWidget(parent), m_scene([this] { sceneChanged(); }), m_quickHelp(new QuickHelpCard(this)) {
    setAttribute(Qt::WA_OpaquePaintEvent); // every paint covers all it was asked for
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAccessibleName(u"Plot"_s);
    announceChanges();
}

XPlotView::~XPlotView() = default;

// --- Between widget and scene
// ----------------------------------------------------------------------------------

// The pixel that a point of the widget lies in. Its row's lower edge has the row's number from the bottom.
QPointF XPlotView::viewPoint(QPointF position) const {
    return FlippedGeometry::flipped(position, height() - 1);
}

QRect XPlotView::widgetRect(const QRectF& rect) const {
    return FlippedGeometry::flipped(rect, height()).toAlignedRect();
}

void XPlotView::perform(PlotInteraction::Effects effects) {
    m_scene.overlay = m_interaction.overlay();
    m_scene.options.dimGrid = m_interaction.dimGrid();
    if (effects.testFlag(PlotInteraction::RangesEdited))
        m_scene.autoFitToData = false;
    if (effects.testFlag(PlotInteraction::Redraw))
        update();
    else if (effects.testFlag(PlotInteraction::RedrawMouseTicks))
        update(widgetRect(m_scene.layout().bottomStrip()));
    announceChanges();
    if (effects.testFlag(PlotInteraction::RulerReleased) && m_delegate != nullptr)
        m_delegate->updateStatus(std::nullopt);
}

void XPlotView::sceneChanged() {
    update();
    announceChanges();
}

void XPlotView::announceChanges() {
    const Announced last =
        std::exchange(m_announced, {{m_scene.axisX()->minValue(), m_scene.axisX()->maxValue(),
                                     m_scene.axisY()->minValue(), m_scene.axisY()->maxValue()},
                                    m_scene.curves().size(),
                                    m_scene.autoFitToData,
                                    m_interaction.message()});
    const bool sameRanges = std::ranges::equal(last.ranges, m_announced.ranges);
    if (!sameRanges || last.curves != m_announced.curves) {
        placeQuickHelp();
        describe();
    }
    if (!sameRanges)
        Q_EMIT rangesChanged();
    if (last.autoFitToData != m_announced.autoFitToData)
        Q_EMIT autoFitToDataChanged(m_announced.autoFitToData);
    if (last.message != m_announced.message)
        Q_EMIT messageChanged();
    updateReadouts();
}

void XPlotView::describe() {
    const auto range = [](const XAxis& axis) {
        const auto text = [&axis](double value) {
            return axis.humanReadableValue(value).replace(u'\n', u' ');
        };
        return u"from %1 to %2"_s.arg(text(axis.minValue()), text(axis.maxValue()));
    };
    const qsizetype count = m_scene.curves().size();
    const QString curves = count == 0   ? u"No curves"_s
                           : count == 1 ? u"1 curve"_s
                                        : u"%1 curves"_s.arg(count);
    setAccessibleDescription(
        u"%1, x %2, y %3"_s.arg(curves, range(*m_scene.axisX()), range(*m_scene.axisY())));
}

void XPlotView::updateReadouts() {
    if (Readouts now = m_interaction.readouts(axes()); now != m_readouts) {
        m_readouts = std::move(now);
        Q_EMIT readoutsChanged();
    }
}

void XPlotView::placeQuickHelp() {
    const bool wanted = m_scene.curves().isEmpty();
    m_quickHelp->setStyles(m_scene.styles());
    m_quickHelp->placeOn(wanted ? widgetRect(m_scene.calculateMargins().plotRect()) : QRect(), wanted);
}

void XPlotView::updateCursor() {
    m_cursorRatio = devicePixelRatioF();
    if (mouseMode() == zoomMouseMode)
        setCursor(Pictures::zoomCursor(m_cursorRatio));
    else if (mouseMode() == rulerMouseMode)
        setCursor(Pictures::rulerCursor(m_cursorRatio));
    else
        setCursor(Qt::ArrowCursor);
}

// --- Commands
// --------------------------------------------------------------------------------------------------

void XPlotView::setMouseMode(int mode) {
    if (mode == mouseMode())
        return;
    perform(m_interaction.setMouseMode(mode));
    updateCursor();
    Q_EMIT mouseModeChanged(mode);
}

void XPlotView::setStickyRuler(bool sticky) {
    if (sticky == stickyRuler())
        return;
    perform(m_interaction.setStickyRuler(sticky));
    Q_EMIT stickyRulerChanged(sticky);
}

void XPlotView::panBy(QPointF pixels) {
    perform(PlotInteraction::panBy(axes(), pixels));
}

void XPlotView::zoomBy(double factor) {
    perform(PlotInteraction::zoomBy(axes(), factor));
}

void XPlotView::alignXAxis() {
    perform(PlotInteraction::alignX(axes()));
}

void XPlotView::updateStyles(const QVariantMap& changes) {
    m_scene.updateStyles(changes);
    placeQuickHelp();
    Q_EMIT stylesChanged();
}

// --- Painting
// --------------------------------------------------------------------------------------------------

void XPlotView::paintEvent(QPaintEvent* event) {
    m_scene.setDevicePixelRatio(devicePixelRatioF()); // the window may have moved to another screen
    if (m_cursorRatio != devicePixelRatioF())
        updateCursor();
    QPainter painter(this);
    PainterCanvas canvas(painter, height());
    m_scene.draw(canvas, FlippedGeometry::flipped(QRectF(event->rect()), height()));
    if (hasFocus() && m_showsFocus)
        StylePainting::drawRing(painter, rect(), 0, 2, currentColors().accent);
    if (const QRectF strip = m_scene.requestedDirtyRect(); !strip.isEmpty())
        update(widgetRect(strip));
}

void XPlotView::resizeEvent(QResizeEvent*) {
    m_scene.setBounds(size());
    placeQuickHelp();
}

// --- Mouse
// -----------------------------------------------------------------------------------------------------

void XPlotView::enterEvent(QEnterEvent* event) {
    perform(m_interaction.enter(viewPoint(event->position())));
}

void XPlotView::leaveEvent(QEvent*) {
    perform(m_interaction.leave());
}

void XPlotView::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        perform(m_interaction.press(axes(), viewPoint(event->position())));
    else
        QWidget::mousePressEvent(event);
}

void XPlotView::mouseMoveEvent(QMouseEvent* event) {
    const QPointF point = viewPoint(event->position());
    if (!event->buttons().testFlag(Qt::LeftButton))
        return perform(m_interaction.move(point));
    const PlotInteraction::Effects dragged = m_interaction.drag(axes(), point);
    perform(dragged | m_interaction.modifiersChanged(event->modifiers()));
}

void XPlotView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        perform(m_interaction.release(axes()));
    else
        QWidget::mouseReleaseEvent(event);
}

void XPlotView::wheelEvent(QWheelEvent* event) {
    const QPoint angle = event->angleDelta();
    // With Alt held some platforms turn the wheel's axes over.
    const bool sideways = event->modifiers().testFlag(Qt::AltModifier)
                              ? std::abs(angle.x()) > std::abs(angle.y())
                              : angle.y() == 0;
    if (const int delta = sideways ? angle.x() : angle.y(); delta != 0)
        perform(m_interaction.wheel(axes(), viewPoint(event->position()), delta / unitsPerNotch,
                                    event->modifiers()));
    event->accept();
}

// --- Keys
// ------------------------------------------------------------------------------------------------------

bool XPlotView::event(QEvent* event) {
    // What the plot does itself is no shortcut while it has the focus; Alt does not open the menu bar while
    // it dims the grid.
    if (event->type() == QEvent::ShortcutOverride && handlesKey(*static_cast<QKeyEvent*>(event))) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

bool XPlotView::handlesKey(const QKeyEvent& event) const {
    const int key = event.key();
    const Qt::KeyboardModifiers modifiers = modifiersOf(event);
    const bool selects = mouseMode() == zoomMouseMode || mouseMode() == rulerMouseMode;
    if (!arrowDirection(key).isNull())
        return modifiers == Qt::NoModifier ||
               modifiers == (selects ? Qt::ControlModifier : Qt::ShiftModifier);
    if (isZoomKey(key))
        return (modifiers & ~Qt::ShiftModifier) == Qt::NoModifier;
    if (key == Qt::Key_Return || key == Qt::Key_Enter)
        return selects && modifiers == Qt::NoModifier;
    if (key == Qt::Key_Alt)
        return !m_interaction.overlay().selection.isEmpty();
    if (key == Qt::Key_Escape)
        return m_interaction.canEscape() && modifiers == Qt::NoModifier;
    return key == Qt::Key_Home && modifiers == Qt::NoModifier;
}

PlotInteraction::Effects XPlotView::pressKey(const QKeyEvent& event) {
    const Qt::KeyboardModifiers modifiers = modifiersOf(event);
    switch (event.key()) {
    case Qt::Key_Alt:
        return m_interaction.modifiersChanged(Qt::AltModifier);
    case Qt::Key_Escape:
        return m_interaction.escape();
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return m_interaction.confirm(axes());
    case Qt::Key_Home:
        fitToData();
        return PlotInteraction::Redraw;
    case Qt::Key_Minus:
        return PlotInteraction::zoomBy(axes(), 1 / keyZoomFactor);
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return PlotInteraction::zoomBy(axes(), keyZoomFactor);
    default:
        break;
    }
    const QPointF direction = arrowDirection(event.key());
    if (mouseMode() == zoomMouseMode || mouseMode() == rulerMouseMode)
        return m_interaction.moveCrossHair(
            axes(),
            direction * (modifiers.testFlag(Qt::ControlModifier) ? keyStepPixelsWithControl : keyStepPixels));
    // The plot goes the other way, to show what lies there.
    return PlotInteraction::panBy(
        axes(), -direction * (modifiers.testFlag(Qt::ShiftModifier) ? keyPanPixelsWithShift : keyPanPixels));
}

void XPlotView::keyPressEvent(QKeyEvent* event) {
    if (handlesKey(*event))
        perform(pressKey(*event));
    else
        QWidget::keyPressEvent(event);
}

void XPlotView::keyReleaseEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Alt && handlesKey(*event))
        perform(m_interaction.modifiersChanged(Qt::NoModifier));
    else
        QWidget::keyReleaseEvent(event);
}

void XPlotView::focusInEvent(QFocusEvent* event) {
    m_showsFocus =
        cameByKey(event->reason()) || (m_showsFocus && event->reason() == Qt::ActiveWindowFocusReason);
    update();
}

void XPlotView::focusOutEvent(QFocusEvent*) {
    perform(m_interaction.focusLost());
    update();
}
