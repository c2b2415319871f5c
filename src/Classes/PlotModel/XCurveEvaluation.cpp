// Where a curve's values come from: evaluations it starts and takes over, once for x, y and point size, and
// ranges.
#include "Classes/PlotModel/XCurve.h"

#include "Classes/Axes/XAxis.h"
#include "Classes/ExpressionEvaluator/XExpressionEvaluator.h"
#include "Platform/Core/MainThread.h"

#include <algorithm>
#include <utility>

namespace {

constexpr XValueRange rangeWithoutData{-10, 10};

} // namespace

/// The three values that a curve draws differ only in where their settings are kept.
struct XCurve::RoleSettings {
    bool usesExpression;
    const std::optional<QString>& expression;
    const XTable& evaluated;
    int index;
};

/// The evaluator's delegate: carries what arrives on its threads to the curve on the main thread, if there is
/// still a curve.
class XCurve::EvaluationRelay : public XExpressionEvaluatorDelegate {
  public:
    explicit EvaluationRelay(std::weak_ptr<XCurve> curve) : m_curve(std::move(curve)) {}

    void progressChangedPercentage(const QString& expression, float percentage, quint64 generation) override {
        perform([=](XCurve& curve) { curve.progressChanged(expression, percentage, generation); });
    }
    void expressionEvaluatedData(const QString& expression, XTable result, quint64 generation) override {
        perform([=](XCurve& curve) { curve.expressionEvaluated(expression, result, generation); });
    }
    void expressionFailed(const QString& expression, const QString& reason, quint64 generation) override {
        perform([=](XCurve& curve) { curve.expressionFailed(expression, reason, generation); });
    }

  private:
    template <class Work>
    void perform(Work work) {
        MainThread::perform([weak = m_curve, work = std::move(work)] {
            if (const std::shared_ptr<XCurve> curve = weak.lock())
                work(*curve);
        });
    }

    const std::weak_ptr<XCurve> m_curve;
};

std::shared_ptr<XCurve> XCurve::make() {
    std::shared_ptr<XCurve> curve(new XCurve, [](XCurve* dying) {
        if (MainThread::isCurrent())
            delete dying;
        else
            MainThread::perform([dying] { delete dying; });
    });
    curve->m_relay = std::make_shared<EvaluationRelay>(curve);
    return curve;
}

XCurve::~XCurve() {
    XExpressionEvaluator::sharedInstance().cancelAllOperationsForDelegate(m_relay.get());
}

XCurve::RoleSettings XCurve::settings(Role role) const {
    switch (role) {
    case Role::X:
        return {x_uses_expression(), x_data_expression(), x_evaluated_data(), x_data_index()};
    case Role::Y:
        return {y_uses_expression(), y_data_expression(), y_evaluated_data(), y_data_index()};
    case Role::Pointsize:
        break;
    }
    return {pointsize_uses_expression(), pointsize_data_expression(), pointsize_evaluated_data(),
            pointsize_data_index()};
}

// Starting

bool XCurve::startEvaluatingX() {
    return startEvaluating(Role::X);
}
bool XCurve::startEvaluatingY() {
    return startEvaluating(Role::Y);
}
bool XCurve::startEvaluatingPointsize() {
    return startEvaluating(Role::Pointsize);
}

bool XCurve::startEvaluating(Role role) {
    const RoleSettings of = settings(role);
    if (!of.usesExpression || !of.expression) {
        setEvaluationError(role, QString());
        return false;
    }
    m_generations[static_cast<std::size_t>(role)] =
        XExpressionEvaluator::sharedInstance().startEvaluateExpressionWithDataDelegate(
            *of.expression, lockedTable(), m_relay);
    return true;
}

/// `oldValue` of the key that changed; it names an evaluation to cancel if it is an expression.
void XCurve::restartEvaluating(Role role, const QVariant& oldValue) {
    if (oldValue.metaType() == QMetaType::fromType<std::optional<QString>>()) {
        const auto old = oldValue.value<std::optional<QString>>();
        // Another value of this curve may be waiting for the same text.
        const bool isShared = std::any_of(std::begin(allRoles), std::end(allRoles), [&](Role other) {
            return other != role && settings(other).usesExpression && settings(other).expression == old;
        });
        if (old && !isShared)
            XExpressionEvaluator::sharedInstance().cancelEvaluatingExpressionWithDelegate(*old,
                                                                                          m_relay.get());
    }
    startEvaluating(role);
}

// Taking over

/// Whether what arrived for that text is what the role waits for, or newer: texts that several roles share
/// are evaluated once, and an old result never replaces a newer one.
bool XCurve::isEvaluating(Role role, const QString& expression, quint64 generation) const {
    const RoleSettings of = settings(role);
    return of.usesExpression && of.expression == expression &&
           generation >= m_generations[static_cast<std::size_t>(role)];
}

void XCurve::expressionEvaluated(const QString& expression, const XTable& result, quint64 generation) {
    for (const Role role : allRoles) {
        if (isEvaluating(role, expression, generation)) {
            setEvaluationError(role, QString());
            setEvaluated(role, result);
        }
    }
}

void XCurve::expressionFailed(const QString& expression, const QString& reason, quint64 generation) {
    for (const Role role : allRoles) {
        if (isEvaluating(role, expression, generation))
            setEvaluationError(role, reason);
    }
}

/// Kept: of values that share a text only the first shows the progress, switched to its expression or not.
/// What an evaluation says that was started again meanwhile comes too late.
void XCurve::progressChanged(const QString& expression, float percentage, quint64 generation) {
    const auto* const first = std::find_if(std::begin(allRoles), std::end(allRoles), [&](Role role) {
        return settings(role).expression == expression;
    });
    if (first != std::end(allRoles) && generation >= m_generations[static_cast<std::size_t>(*first)])
        setEvaluationProgress(*first, percentage);
}

void XCurve::setDataX(XTable evaluated) {
    setEvaluated(Role::X, std::move(evaluated));
}
void XCurve::setDataY(XTable evaluated) {
    setEvaluated(Role::Y, std::move(evaluated));
}
void XCurve::setDataPointsize(XTable evaluated) {
    setEvaluated(Role::Pointsize, std::move(evaluated));
}

void XCurve::setEvaluated(Role role, XTable evaluated) {
    switch (role) {
    case Role::X:
        setX_evaluated_data(std::move(evaluated));
        break;
    case Role::Y:
        setY_evaluated_data(std::move(evaluated));
        break;
    case Role::Pointsize:
        setPointsize_evaluated_data(std::move(evaluated));
        break;
    }
    setNeedsRedraw(true);
}

void XCurve::setEvaluationError(Role role, const QString& reason) {
    switch (role) {
    case Role::X:
        return setXExpressionError(reason);
    case Role::Y:
        return setYExpressionError(reason);
    case Role::Pointsize:
        return setPointsizeExpressionError(reason);
    }
}

void XCurve::setEvaluationProgress(Role role, float percentage) {
    switch (role) {
    case Role::X:
        return setXExpressionProgress(percentage);
    case Role::Y:
        return setYExpressionProgress(percentage);
    case Role::Pointsize:
        return setPointsizeExpressionProgress(percentage);
    }
}

// Ranges

XTable XCurve::lockedTable() const {
    return dataSource() ? dataSource()->data() : nullptr; // `data` takes the source's lock
}

XValueRange XCurve::range(Role role, const XAxisHandle& axis) const {
    const RoleSettings of = settings(role);
    const XTable table = of.usesExpression ? of.evaluated : lockedTable();
    if (!table)
        return rangeWithoutData;
    const XValueRange valid = axis ? axis->validValuesRange() : XValueRange{};
    return table->getRangeOfColumnIndexWithValidValuesInRange(of.usesExpression ? 1 : of.index, valid);
}

XValueRange XCurve::getRangeX() const {
    return range(Role::X, axis_X());
}
XValueRange XCurve::getRangeY() const {
    return range(Role::Y, axis_Y());
}
