// Keeps a row for each curve, and the card where it was dragged to.
#include "Classes/PlotView/XGraphLegend.h"

#include "Classes/PlotView/LegendDrawing.h"
#include "Classes/PlotView/PainterCanvas.h"
#include "Platform/Widgets/FlippedGeometry.h"

#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

XGraphLegend::XGraphLegend(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setCursor(Qt::OpenHandCursor);
    setToolTip(tr("Drag to move, click a name to edit it"));
    setAccessibleName(tr("Legend"));
}

XGraphLegend::~XGraphLegend() {
    // The rows speak to this part of the legend while they go.
    m_delegate = nullptr;
    qDeleteAll(std::exchange(m_curveViews, {}));
}

void XGraphLegend::setCurves(QList<XCurveHandle> curves) {
    m_curves = std::move(curves);
    makeViews();
    updateLayout();
}

void XGraphLegend::makeViews() {
    m_isMakingViews = true;
    for (XGraphLegendItemView* row : std::exchange(m_curveViews, {})) {
        row->setCurve(nullptr); // ends an editing session
        row->hide();
        row->deleteLater();
    }
    for (const XCurveHandle& curve : std::as_const(m_curves)) {
        auto* row = new XGraphLegendItemView(this, this);
        m_curveViews.insert(m_curveViews.begin(), row);
        row->setCurve(curve);
    }
    // The focus goes from the first curve to the last.
    for (std::size_t i = m_curveViews.size(); i > 1; --i)
        setTabOrder(m_curveViews[i - 1]->textLabel(), m_curveViews[i - 2]->textLabel());
    m_isMakingViews = false;
}

void XGraphLegend::updateLayout() {
    constexpr int spacing = static_cast<int>(LegendDrawing::spacing);
    int y = spacing;
    int maxWidth = 0;
    for (XGraphLegendItemView* row : m_curveViews) {
        if (row->frame().isEmpty())
            continue;
        row->setFrameOrigin({row->frame().x(), y});
        y += row->frame().height() + spacing;
        maxWidth = std::max(maxWidth, row->frame().width());
    }
    describe();
    if (m_delegate != nullptr)
        m_delegate->legendWantsResize(*this, {maxWidth, y});
    placeRows();
}

void XGraphLegend::describe() {
    QStringList titles;
    for (const XCurveHandle& curve : std::as_const(m_curves)) {
        if (LegendDrawing::isListed(*curve))
            titles += curve->title();
    }
    setAccessibleDescription(tr("%n curve(s): %1", nullptr, static_cast<int>(titles.size()))
                                 .arg(titles.join(QLatin1String(", "))));
}

void XGraphLegend::placeRows() {
    for (XGraphLegendItemView* row : m_curveViews) {
        if (!row->frame().isEmpty())
            row->setGeometry(FlippedGeometry::flipped(row->frame(), height()));
    }
}

QRect XGraphLegend::frame() const {
    return parentWidget() == nullptr ? geometry()
                                     : FlippedGeometry::flipped(geometry(), parentWidget()->height());
}

void XGraphLegend::setFrame(const QRect& frame) {
    setGeometry(parentWidget() == nullptr ? frame
                                          : FlippedGeometry::flipped(frame, parentWidget()->height()));
}

void XGraphLegend::itemWasUpdated(XGraphLegendItemView&) {
    if (!m_isMakingViews)
        updateLayout();
}

void XGraphLegend::titleWillChange() {
    if (m_delegate != nullptr)
        m_delegate->legendTitleWillChange(*this);
}

void XGraphLegend::titleChangesEnded(bool kept) {
    if (m_delegate != nullptr)
        m_delegate->legendTitleChangesEnded(*this, kept);
}

void XGraphLegend::titleWasLeft() {
    if (parentWidget() != nullptr)
        parentWidget()->setFocus(Qt::OtherFocusReason);
}

void XGraphLegend::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    PainterCanvas canvas(painter, height());
    LegendDrawing::drawBox(canvas, rect());
}

void XGraphLegend::resizeEvent(QResizeEvent*) {
    placeRows();
}

QPointF XGraphLegend::locationInSuperview(const QMouseEvent& event) const {
    return FlippedGeometry::flipped(mapToParent(event.position()), parentWidget()->height());
}

void XGraphLegend::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || parentWidget() == nullptr) {
        event->ignore();
        return;
    }
    m_dragOrigin = locationInSuperview(*event);
    m_wasMoved = false;
    setCursor(Qt::ClosedHandCursor);
}

void XGraphLegend::mouseMoveEvent(QMouseEvent* event) {
    if (!event->buttons().testFlag(Qt::LeftButton) || parentWidget() == nullptr)
        return;
    const QPointF location = locationInSuperview(*event);
    const QPoint moved = (location - m_dragOrigin).toPoint();
    m_dragOrigin += moved; // fractions of a point are kept for the next move
    m_wasMoved = true;
    setFrame(frame().translated(moved));
    if (m_delegate != nullptr)
        m_delegate->legendMoved(*this);
}

void XGraphLegend::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    setCursor(Qt::OpenHandCursor);
    if (m_wasMoved) {
        if (m_delegate != nullptr)
            m_delegate->legendMovingFinished(*this);
        return;
    }
    for (XGraphLegendItemView* row : m_curveViews) {
        if (!row->frame().isEmpty() && row->isOnTitle(row->mapFromParent(event->position().toPoint()))) {
            row->beginEditing();
            return;
        }
    }
}
