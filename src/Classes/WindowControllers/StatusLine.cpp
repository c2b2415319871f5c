// Lays labels out in the status line.
#include "Classes/WindowControllers/StatusLine.h"

#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/StylePainting.h"
#include "Platform/Widgets/VelquinStyle.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

#include <algorithm>

namespace {

constexpr int heightAtUsualFont = 24;
constexpr int sideMargin = 12;
constexpr int labelGap = 6;
constexpr int columnGap = 16;
/// Room of a value at first.
constexpr auto usualValue = "-00000.000";

} // namespace

StatusLine::StatusLine(QWidget* parent)
    : QWidget(parent), m_layout(new QHBoxLayout(this)), m_messageLabel(addText(labelRole)) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    setAccessibleName(tr("Status line"));
    m_messageLabel->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_messageLabel->setFocusPolicy(Qt::StrongFocus);
    m_messageLabel->installEventFilter(this);
    m_messageLabel->setAccessibleName(tr("Message"));
    m_messageLabel->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_layout->setContentsMargins(sideMargin, 1, sideMargin, 0);
    m_layout->setSpacing(0);
    m_layout->addWidget(m_messageLabel, 1);
}

QSize StatusLine::sizeHint() const {
    return {0, heightAtUsualFont + std::max(0, fontMetrics().height() - 16)};
}

QLabel* StatusLine::addText(QPalette::ColorRole ink) {
    auto* text = new QLabel(this);
    text->setFont(VelquinStyle::smallFont(font()));
    text->setForegroundRole(ink);
    text->setTextFormat(Qt::PlainText);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return text;
}

void StatusLine::setMessage(const QString& message) {
    if (message == m_message)
        return;
    m_message = message;
    elide();
}

void StatusLine::elide() {
    const QString shown =
        m_messageLabel->fontMetrics().elidedText(m_message, Qt::ElideMiddle, m_messageLabel->width());
    if (shown != m_messageLabel->text())
        m_messageLabel->setText(shown);
    m_messageLabel->setToolTip(shown == m_message ? QString() : m_message);
    m_messageLabel->setAccessibleDescription(m_message);
}

void StatusLine::makeColumns(const Readouts& readouts) {
    for (const Column& column : m_columns) {
        delete column.label;
        delete column.value;
    }
    m_columns.clear();
    while (m_layout->count() > 1)
        delete m_layout->takeAt(1);
    for (const Readout& readout : readouts) {
        const Column column{addText(hintRole), addText(labelRole)};
        column.label->setText(readout.label);
        column.label->setVisible(!readout.label.isEmpty());
        column.value->setAccessibleName(readout.label);
        if (!readout.label.isEmpty())
            column.value->setMinimumWidth(
                column.value->fontMetrics().horizontalAdvance(QLatin1String(usualValue)));
        m_layout->addSpacing(columnGap);
        m_layout->addWidget(column.label);
        if (!readout.label.isEmpty())
            m_layout->addSpacing(labelGap);
        m_layout->addWidget(column.value);
        column.value->show();
        m_columns.push_back(column);
    }
}

void StatusLine::setReadouts(const Readouts& readouts) {
    const auto sameLabel = [](const Readout& a, const Readout& b) { return a.label == b.label; };
    if (!std::equal(readouts.begin(), readouts.end(), m_readouts.begin(), m_readouts.end(), sameLabel))
        makeColumns(readouts);
    m_readouts = readouts;
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        const Readout& readout = readouts[static_cast<qsizetype>(i)];
        QLabel* value = m_columns[i].value;
        if (value->text() != readout.value)
            value->setText(readout.value);
        if (!readout.label.isEmpty())
            value->setMinimumWidth(std::max(value->minimumWidth(), value->sizeHint().width()));
    }
}

void StatusLine::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    m_layout->activate();
    elide();
}

void StatusLine::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::FontChange)
        return;
    for (auto* text : findChildren<QLabel*>())
        text->setFont(VelquinStyle::smallFont(font()));
}

bool StatusLine::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        update();
    return QWidget::eventFilter(object, event);
}

void StatusLine::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const double line = StylePainting::hairline(painter);
    painter.fillRect(StylePainting::onDevicePixels(painter, QRectF(0, 0, width(), line)),
                     currentColors().line);
    if (m_messageLabel->hasFocus())
        StylePainting::drawRing(painter, m_messageLabel->geometry().adjusted(-6, 1, 6, -1), 3, 2,
                                currentColors().accent);
}
