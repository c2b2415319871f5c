// A curve's reactions to its own keys and to its data source, its ranges and its hand-over with the renderer.
#include "Classes/PlotModel/XCurve.h"

#include "Classes/PlotModel/CurveKeys.h"
#include "Classes/PlotView/XPointsLibrary.h"
#include "Core/Assertions.h"
#include "Platform/Core/MainThread.h"

#include <QRandomGenerator>

#include <algorithm>
#include <cstring>

namespace {

constexpr int initialShapeIdentifier = 1;

bool isOneOf(const char* key, std::initializer_list<const char*> keys) {
    return std::any_of(keys.begin(), keys.end(), [&](const char* k) { return std::strcmp(k, key) == 0; });
}

RgbaColor randomColor() {
    return RgbaColor::fromHsb(QRandomGenerator::global()->bounded(100) / 100.0, 0.7, 0.7);
}

/// Rows of the column that a curve takes from `evaluated` or from `table`.
std::uint64_t columnRows(bool usesExpression, const XTable& evaluated, const XTable& table) {
    const XTable& used = usesExpression && evaluated ? evaluated : table;
    return used ? used->rowsNumber() : 0;
}

} // namespace

std::uint64_t CurveSnapshot::rows() const {
    if (!table)
        return 0;
    std::uint64_t least = std::min(columnRows(xUsesExpression, xEvaluated, table),
                                   columnRows(yUsesExpression, yEvaluated, table));
    if (pointsizeUsesExpression && pointsizeEvaluated)
        least = std::min(least, pointsizeEvaluated->rowsNumber());
    return least;
}

XCurve::XCurve() : m_color(randomColor()) {
    m_ticksShape = XPointsLibrary::sharedLibrary().pointDescriptionWithId(initialShapeIdentifier);
    auto& center = NotificationCenter::defaultCenter();
    m_removalRegistration = center.observe(Notifications::dataSourceWillBeRemoved, nullptr,
                                           [this](QObject* sender) { dataSourceWillRemoved(sender); });
    m_updateRegistration = center.observe(Notifications::dataSourceUpdated, nullptr,
                                          [this](QObject* sender) { dataSourceUpdated(sender); });
    m_selfObservation =
        Observation(*this, curveSelfObservedKeys, [this](const KeyChange& change) { ownKeyChanged(change); });
}

RgbaColor XCurve::color() const {
    const std::scoped_lock lock(m_lock);
    return m_color;
}

void XCurve::setColor(RgbaColor color) {
    RgbaColor old;
    {
        const std::scoped_lock lock(m_lock);
        old = std::exchange(m_color, color);
    }
    announce("color", QVariant::fromValue(old), QVariant::fromValue(color));
}

void XCurve::setPointsize_uses_expression(bool uses) {
    if (uses && !m_pointsize_uses_expression && m_pointsize_data_expression.value_or(QString()).isEmpty())
        setPointsize_data_expression(QString::number(ticksSize())); // the curve keeps its look
    assign(m_pointsize_uses_expression, uses, "pointsize_uses_expression");
}

void XCurve::setNeedsRedraw(bool needsRedraw) {
    if (needsRedraw)
        ++m_changeCount;
    assign(m_needsRedraw, needsRedraw, "needsRedraw");
}

void XCurve::setDatasource(XDataSource dataSource) {
    m_dataSource = std::move(dataSource);
}

// Changes
void XCurve::ownKeyChanged(const KeyChange& change) {
    const bool all = isOneOf(change.key, {"dataSource"});
    if (all || isOneOf(change.key, {"x_uses_expression", "x_data_expression"}))
        restartEvaluating(Role::X, change.oldValue);
    if (all || isOneOf(change.key, {"y_uses_expression", "y_data_expression"}))
        restartEvaluating(Role::Y, change.oldValue);
    if (all || isOneOf(change.key, {"pointsize_uses_expression", "pointsize_data_expression"}))
        restartEvaluating(Role::Pointsize, change.oldValue);
    if (all && !dataSource())
        discardRenderedImage(); // its data are gone, and so is its picture
    setNeedsRedraw(true);
}

void XCurve::dataSourceUpdated(QObject* sender) {
    if (sender == nullptr || sender != dataSource().get())
        return;
    bool started = false;
    for (const Role role : allRoles)
        started = startEvaluating(role) || started;
    xAssert(MainThread::isCurrent(), "This should be called in main thread!");
    if (!started)
        setNeedsRedraw(true);
}

void XCurve::dataSourceWillRemoved(QObject* sender) {
    if (sender != nullptr && sender == dataSource().get())
        setDataSource(nullptr);
}

// Rendering
CurveSnapshot XCurve::snapshot() const {
    CurveSnapshot taken;
    taken.table = lockedTable();
    taken.xEvaluated = x_evaluated_data();
    taken.yEvaluated = y_evaluated_data();
    taken.pointsizeEvaluated = pointsize_evaluated_data();
    taken.xUsesExpression = x_uses_expression();
    taken.yUsesExpression = y_uses_expression();
    taken.pointsizeUsesExpression = pointsize_uses_expression();
    taken.xIndex = x_data_index();
    taken.yIndex = y_data_index();
    taken.color = color();
    taken.colorAlpha = colorAlpha();
    taken.lineWidth = lineWidth();
    taken.ticksSize = ticksSize();
    taken.ticksShape = ticksShape();
    taken.changeCount = m_changeCount;
    return taken;
}

bool XCurve::acceptRendering(RenderedCurve rendering, quint64 changeCountOfSnapshot) {
    {
        const std::scoped_lock lock(m_lock);
        m_renderedImage = std::move(rendering.image);
    }
    setAxis_X(std::move(rendering.axisX));
    setAxis_Y(std::move(rendering.axisY));
    const bool current = m_changeCount == changeCountOfSnapshot;
    if (current)
        setNeedsRedraw(false);
    return current;
}

RenderedCurve XCurve::rendering() const {
    const std::scoped_lock lock(m_lock);
    return {m_renderedImage, m_axis_X, m_axis_Y};
}

QImage XCurve::renderedImage() const {
    const std::scoped_lock lock(m_lock);
    return m_renderedImage;
}

void XCurve::discardRenderedImage() {
    const std::scoped_lock lock(m_lock);
    m_renderedImage = QImage();
}
