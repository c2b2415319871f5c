// Finds out which steps of a number belong together.
#include "Classes/CurvesSidebar/SpinField.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSignalBlocker>

#include <utility>

namespace {

constexpr int besideNumber = 9; ///< in a field's box

} // namespace

SpinField::SpinField(QWidget* parent) : QSpinBox(parent) {
    setKeyboardTracking(false);
    setButtonSymbols(NoButtons);
    m_pause.setSingleShot(true);
    m_pause.setInterval(pauseMilliseconds);
    connect(&m_pause, &QTimer::timeout, this, &SpinField::endBurst);
    connect(lineEdit(), &QLineEdit::textEdited, this, [this] {
        endBurst();
        m_isTyped = true;
    });
    connect(this, &QAbstractSpinBox::editingFinished, this, [this] {
        m_isTyped = false;
        lineEdit()->setText(lineEdit()->text()); // the same, but what was committed is the document's to undo
    });
}

void SpinField::stepBy(int steps) {
    if (m_isTyped) { // a number of its own, before the steps
        interpretText();
        m_isTyped = false;
    }
    if (!std::exchange(m_isInBurst, true))
        Q_EMIT burstBegan();
    QSpinBox::stepBy(steps);
    m_pause.start();
}

void SpinField::endBurst() {
    m_pause.stop();
    if (std::exchange(m_isInBurst, false))
        Q_EMIT burstEnded();
}

void SpinField::keyPressEvent(QKeyEvent* event) {
    // The key of a command comes next, undo for one, and the burst must be a step by then.
    if (event->key() == Qt::Key_Control || event->key() == Qt::Key_Meta)
        endBurst();
    if (m_isTyped && event->key() == Qt::Key_Escape) {
        m_isTyped = false;
        const QSignalBlocker silent(this);
        const int shown = value(); // typing has changed the text alone
        setValue(shown == minimum() ? maximum() : minimum());
        setValue(shown);
        selectAll();
    } else {
        QSpinBox::keyPressEvent(event);
    }
}

void SpinField::focusOutEvent(QFocusEvent* event) {
    QSpinBox::focusOutEvent(event);
    endBurst();
}

void SpinField::contextMenuEvent(QContextMenuEvent* event) {
    if (event->reason() == QContextMenuEvent::Keyboard)
        event->ignore(); // the row's
    else
        QSpinBox::contextMenuEvent(event);
}

void SpinField::resizeEvent(QResizeEvent* event) {
    QSpinBox::resizeEvent(event);
    fitUnit();
}

void SpinField::changeEvent(QEvent* event) {
    QSpinBox::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        fitUnit();
}

void SpinField::fitUnit() {
    if (m_unit.isEmpty())
        m_unit = suffix();
    // The text may reach to the outline at the right: numbers are never cut.
    const QRect text = lineEdit()->geometry();
    lineEdit()->setGeometry(text.x(), text.y(), width() - 1 - text.x(), text.height());
    const QString widest = textFromValue(maximum()) + m_unit;
    const bool fits = fontMetrics().horizontalAdvance(widest) <= width() - besideNumber;
    const QString fitting = fits ? m_unit : m_unit.trimmed();
    if (fitting != suffix())
        setSuffix(fitting);
}
