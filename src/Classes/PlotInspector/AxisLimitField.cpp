// Reads what was typed through an axis of the document's kind.
#include "Classes/PlotInspector/AxisLimitField.h"

#include "Classes/Axes/XAxisManager.h"
#include "Classes/Axes/XTimeAxis.h"
#include "Classes/PlotView/FitToData.h"
#include "MoxDocument.h"
#include "Platform/Widgets/VelquinStyle.h"

#include <cmath>
#include <cstring>
#include <utility>

AxisLimitField::AxisLimitField(QWidget* parent) : RowTextField(parent) {
    connect(this, &QLineEdit::editingFinished, this, &AxisLimitField::commit);
    connect(this, &QLineEdit::textChanged, this, [this] {
        if (m_isRefused && text() == settledText())
            showLimit();
    });
}

void AxisLimitField::setDocument(MoxDocument* document, const AxisKeys& keys, RangeEnd end) {
    m_observation.end();
    m_document = document;
    m_end = end;
    m_keys = {keys.min, keys.max, keys.kind};
    if (end == RangeEnd::To)
        std::swap(m_keys[0], m_keys[1]);
    if (m_document != nullptr)
        m_observation =
            Observation(*m_document, m_keys, [this](const KeyChange& change) { keyChanged(change); });
    showLimit();
}

bool AxisLimitField::takesDates(const XAxisInfo& kind) {
    return dynamic_cast<const XTimeAxis*>(kind.makeAxis().get()) != nullptr;
}

void AxisLimitField::keyChanged(const KeyChange& change) {
    const bool isOwn = std::strcmp(change.key, m_keys[0]) == 0;
    if (m_isRefused && !isOwn)
        commit(); // it may be right now
    else if (isOwn || std::strcmp(change.key, m_keys[2]) == 0)
        showLimit();
    else
        updateFault();
}

void AxisLimitField::commit() {
    if (m_document == nullptr)
        return;
    const QString typed = text().trimmed();
    if (typed == settledText())
        return showLimit();
    std::optional<double> value;
    if (!typed.isEmpty()) {
        value = kind().makeAxis()->valueOfTypedText(typed);
        const QString reason = value                ? reasonAgainst(*value)
                               : takesDates(kind()) ? tr("This is neither a date nor a number of seconds")
                                                    : tr("This is not a number");
        VelquinStyle::setFault(*this, reason);
        if (!reason.isEmpty()) {
            m_isRefused = true;
            return Q_EMIT refused(reason);
        }
    }
    if (std::exchange(m_isRefused, false))
        Q_EMIT refused({});
    if (value != limit())
        m_document->setValueForKey(m_keys[0], QVariant::fromValue(value));
    showLimit();
}

void AxisLimitField::showLimit() {
    if (std::exchange(m_isRefused, false))
        Q_EMIT refused({});
    const QString settled = settledText();
    if (settled != text())
        setText(settled);
    VelquinStyle::setFault(*this, {}); // the plain tooltip is back before it changes
    setToolTip(hint());
    setPlaceholderText(m_document != nullptr ? tr("automatic") : QString());
    updateFault();
}

/// A limit that came with the document may not fit either.
void AxisLimitField::updateFault() {
    const std::optional<double> present = limit();
    VelquinStyle::setFault(*this, present ? reasonAgainst(*present) : QString());
}

QString AxisLimitField::settledText() const {
    const std::optional<double> present = limit();
    return present ? kind().makeAxis()->typedText(*present) : QString();
}

std::optional<double> AxisLimitField::valueOf(const char* key) const {
    return m_document == nullptr ? std::nullopt : m_document->valueForKey(key).value<std::optional<double>>();
}

const XAxisInfo& AxisLimitField::kind() const {
    const auto* kind = m_document->valueForKey(m_keys[2]).value<XAxisKind>();
    return kind != nullptr ? *kind : XAxisManager::sharedManager().axisTypes().front();
}

QString AxisLimitField::reasonAgainst(double value) const {
    if (std::abs(value) > farthestFitted)
        return tr("The plot reaches no further than %1").arg(farthestFitted);
    if (value < kind().makeAxis()->validValuesRange().minimum)
        return tr("This kind of axis shows only values above 0");
    const std::optional<double> other = valueOf(m_keys[1]);
    if (other && (m_end == RangeEnd::From ? value >= *other : value <= *other))
        return tr("The range must begin before it ends");
    return {};
}

QString AxisLimitField::hint() const {
    if (m_document == nullptr)
        return {};
    const QString what =
        takesDates(kind()) ? tr("A date such as 2026-11-21 14:05, or seconds since 1970") : tr("A number");
    return what + QLatin1Char('\n') + tr("Empty: the range follows the data");
}
