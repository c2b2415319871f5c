// Layout, selection, mouse and keys of the table.
#include "EmbeddedPlugins/Common/PreviewTableView.h"

#include "Classes/SmallViews/XMiniProgressIndicator.h"
#include "EmbeddedPlugins/TextFile/PreviewTableModel.h"
#include "Platform/Widgets/VelquinStyle.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QScrollBar>
#include <QToolTip>

#include <algorithm>
#include <cmath>

namespace {

constexpr int plainRowHeight = 22;
constexpr int plainHeadHeight = 38;
constexpr int leastColumnWidth = 100;
constexpr int dragScrollMilliseconds = 40;
constexpr int cellsToMeasure = 20'000;

int tallerBy(const QWidget& widget) {
    return std::max(0, widget.fontMetrics().height() - 16);
}

} // namespace

PreviewTableView::PreviewTableView(QWidget* parent)
    : QAbstractScrollArea(parent), m_progress(new XMiniProgressIndicator(this)), m_headRoom(new QWidget) {
    setFocusPolicy(Qt::StrongFocus);
    setFrameShape(QFrame::StyledPanel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    VelquinStyle::setOverlayScrollBars(*this);
    addScrollBarWidget(m_headRoom, Qt::AlignTop);
    m_progress->setAccessibleName(tr("Progress of reading"));
    m_progress->hide();
    connect(verticalScrollBar(), &QScrollBar::valueChanged, viewport(), qOverload<>(&QWidget::update));
    connect(horizontalScrollBar(), &QScrollBar::valueChanged, viewport(), qOverload<>(&QWidget::update));
}

void PreviewTableView::setModel(PreviewTableModel* model) {
    if (m_model != nullptr)
        disconnect(m_model, nullptr, this, nullptr);
    m_model = model;
    if (m_model != nullptr) {
        connect(m_model, &QAbstractItemModel::modelReset, this, &PreviewTableView::tableChanged);
        connect(m_model, &QAbstractItemModel::layoutChanged, this, &PreviewTableView::tableReplaced);
    }
    tableChanged();
}

void PreviewTableView::setReading(std::optional<double> part) {
    m_progress->setVisible(part.has_value());
    m_progress->setPercentage(static_cast<float>(std::isnan(part.value_or(0)) ? 0 : part.value_or(0) * 100));
}

void PreviewTableView::setEmptyText(const QString& text) {
    if (text == m_emptyText)
        return;
    m_emptyText = text;
    viewport()->update();
}

// ---- Layout

int PreviewTableView::rows() const {
    return m_model == nullptr ? 0 : m_model->rowCount();
}

int PreviewTableView::columns() const {
    return m_model == nullptr ? 0 : m_model->columnCount();
}

int PreviewTableView::rowHeight() const {
    return plainRowHeight + tallerBy(*this);
}

int PreviewTableView::headHeight() const {
    return plainHeadHeight + 2 * tallerBy(*this);
}

int PreviewTableView::rowsPerPage() const {
    return std::max(1, (viewport()->height() - headHeight()) / rowHeight());
}

int PreviewTableView::firstRow() const {
    return verticalScrollBar()->value();
}

int PreviewTableView::columnWidth(int column) const {
    const auto place = static_cast<std::size_t>(column);
    return m_lefts[place + 1] - m_lefts[place];
}

int PreviewTableView::columnAt(int x) const {
    return static_cast<int>(std::upper_bound(m_lefts.begin(), m_lefts.end(), x) - m_lefts.begin()) - 1;
}

QRect PreviewTableView::cellRect(int row, int column) const {
    const int left = m_lefts[static_cast<std::size_t>(column)] - horizontalScrollBar()->value();
    if (row < 0)
        return {left, 0, columnWidth(column), headHeight()};
    // Far rows lie outside the range of int; just outside the view will do for them.
    const int top = std::clamp(row - firstRow(), -1, viewport()->height() / rowHeight() + 1);
    return {left, headHeight() + top * rowHeight(), columnWidth(column), rowHeight()};
}

std::optional<QPoint> PreviewTableView::cellAt(const QPoint& place) const {
    const int column = columnAt(place.x() + horizontalScrollBar()->value());
    const int row = place.y() < headHeight() ? -1 : firstRow() + (place.y() - headHeight()) / rowHeight();
    if (column < 0 || column >= columns() || row >= rows())
        return std::nullopt;
    return QPoint(column, row);
}

void PreviewTableView::tableChanged() {
    m_anchor = m_current = QPoint(-1, -1);
    tableReplaced();
}

/// The selection stays, cut to the cells that there are.
void PreviewTableView::tableReplaced() {
    const QPoint last(columns() - 1, rows() - 1);
    for (QPoint* cell : {&m_anchor, &m_current})
        *cell = QPoint(std::min(cell->x(), last.x()), std::min(cell->y(), last.y()));
    if (last.x() < 0 || last.y() < 0)
        m_anchor = m_current = QPoint(-1, -1);
    measureNumbers();
    layOut();
    viewport()->update();
}

/// The room that numbers need in each column, judged by the first and the last rows.
void PreviewTableView::measureNumbers() {
    m_numberWidths.assign(static_cast<std::size_t>(columns()), 0);
    if (columns() == 0 || rows() == 0)
        return;
    QFont bold(font());
    bold.setBold(true);
    const QString rowHead = m_model->headerData(0, Qt::Horizontal).toString();
    const int samples = std::clamp(cellsToMeasure / columns(), 2, 64);
    const int digit = fontMetrics().horizontalAdvance(QLatin1Char('0'));
    for (int column = 0; column < columns(); ++column) {
        qsizetype longest = 0;
        for (int i = 0; i < std::min(samples, rows()); ++i) {
            const int row = i < samples / 2 ? i : rows() - 1 - (i - samples / 2);
            const QVariant text = m_model->data(m_model->index(row, column));
            longest = std::max(longest, text.toString().size());
        }
        m_numberWidths[static_cast<std::size_t>(column)] = static_cast<int>(longest) * digit + 2 * padding;
    }
    // The head of the rows is no name from a file: it has to be read whole.
    m_numberWidths[0] =
        std::max(m_numberWidths[0], QFontMetrics(bold).horizontalAdvance(rowHead) + 2 * padding);
}

void PreviewTableView::layOut() {
    const int common = columns() == 0 ? 0 : std::max(leastColumnWidth, viewport()->width() / columns());
    m_lefts.assign(1, 0);
    for (const int needed : m_numberWidths)
        m_lefts.push_back(m_lefts.back() + std::max(common, needed));
    m_headRoom->setFixedHeight(headHeight());
    verticalScrollBar()->setRange(0, std::max(0, rows() - rowsPerPage()));
    verticalScrollBar()->setPageStep(rowsPerPage());
    horizontalScrollBar()->setRange(0, std::max(0, m_lefts.back() - viewport()->width()));
    horizontalScrollBar()->setPageStep(viewport()->width());
    horizontalScrollBar()->setSingleStep(leastColumnWidth / 4);
    m_progress->setGeometry(2, 1, width() - 4, 2);
}

void PreviewTableView::resizeEvent(QResizeEvent*) {
    layOut();
}

void PreviewTableView::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange) {
        measureNumbers();
        layOut();
    }
}

// ---- Selection

QRect PreviewTableView::selection() const {
    if (m_current.x() < 0)
        return {};
    const QPoint first(std::min(m_anchor.x(), m_current.x()), std::min(m_anchor.y(), m_current.y()));
    const QPoint last(std::max(m_anchor.x(), m_current.x()), std::max(m_anchor.y(), m_current.y()));
    return {first, last};
}

void PreviewTableView::setCurrentCell(const QPoint& cell, bool extend) {
    if (rows() == 0 || columns() == 0)
        return;
    m_current = QPoint(std::clamp(cell.x(), 0, columns() - 1), std::clamp(cell.y(), 0, rows() - 1));
    if (!extend || m_anchor.x() < 0)
        m_anchor = m_current;
    scrollTo(m_current);
    describeCurrentCell();
    viewport()->update();
}

void PreviewTableView::scrollTo(const QPoint& cell) {
    if (cell.y() < firstRow())
        verticalScrollBar()->setValue(cell.y());
    else if (cell.y() - firstRow() >= rowsPerPage())
        verticalScrollBar()->setValue(cell.y() - rowsPerPage() + 1);
    const QRect place = cellRect(-1, cell.x());
    if (place.left() < 0)
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() + place.left());
    else if (place.right() >= viewport()->width())
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() +
                                        std::min(place.left(), place.right() + 1 - viewport()->width()));
}

void PreviewTableView::describeCurrentCell() {
    const QString name = m_model->headerData(m_current.x(), Qt::Horizontal).toString();
    const QString text = m_model->data(m_model->index(m_current.y(), m_current.x())).toString();
    setAccessibleDescription(
        tr("%1, row %2: %3")
            .arg(name, QString::number(m_current.y()), text.isEmpty() ? tr("no number") : text));
}

void PreviewTableView::selectAll() {
    if (rows() == 0 || columns() == 0)
        return;
    m_anchor = QPoint(0, 0);
    m_current = QPoint(columns() - 1, rows() - 1);
    viewport()->update();
}

void PreviewTableView::copy() {
    const QRect cells = selection();
    if (cells.isNull())
        return;
    const int copied =
        static_cast<int>(std::clamp<qint64>(mostCopiedCells / cells.width(), 1, cells.height()));
    QString text;
    for (int row = cells.top(); row < cells.top() + copied; ++row) {
        for (int column = cells.left(); column <= cells.right(); ++column) {
            text += m_model->data(m_model->index(row, column)).toString();
            text += column == cells.right() ? QLatin1Char('\n') : QLatin1Char('\t');
        }
    }
    if (cells.height() == 1)
        text.chop(1); // a single line is pasted into a field
    QGuiApplication::clipboard()->setText(text);
    if (copied < cells.height())
        Q_EMIT copyWasCut(copied, cells.height());
}

// ---- Mouse and keys

void PreviewTableView::mousePressEvent(QMouseEvent* event) {
    const std::optional<QPoint> cell = cellAt(event->position().toPoint());
    const bool selects = event->button() == Qt::LeftButton ||
                         (event->button() == Qt::RightButton && cell && !selection().contains(*cell));
    if (!selects || !cell)
        return;
    if (cell->y() >= 0) {
        setCurrentCell(*cell, event->modifiers().testFlag(Qt::ShiftModifier));
    } else if (rows() > 0) { // the whole column
        m_anchor = QPoint(cell->x(), 0);
        m_current = QPoint(cell->x(), rows() - 1);
        viewport()->update();
    }
}

void PreviewTableView::mouseMoveEvent(QMouseEvent* event) {
    if (!event->buttons().testFlag(Qt::LeftButton) || m_current.x() < 0)
        return;
    m_dragPlace = event->position().toPoint();
    const QRect body = viewport()->rect().adjusted(0, headHeight(), 0, 0);
    if (body.contains(m_dragPlace))
        m_dragScroll.stop();
    else if (!m_dragScroll.isActive())
        m_dragScroll.start(dragScrollMilliseconds, this);
    dragTo(m_dragPlace);
}

/// Extends the selection to the place, or to the cell beyond the edge that the place lies behind.
void PreviewTableView::dragTo(const QPoint& place) {
    const int column =
        columnAt(std::clamp(place.x(), -1, viewport()->width()) + horizontalScrollBar()->value());
    const int below = place.y() - headHeight();
    const int offset = below < 0 ? -1 : std::min(below / rowHeight(), rowsPerPage());
    setCurrentCell(QPoint(column, firstRow() + offset), true);
}

void PreviewTableView::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_dragScroll.timerId())
        dragTo(m_dragPlace);
    else
        QAbstractScrollArea::timerEvent(event);
}

void PreviewTableView::mouseReleaseEvent(QMouseEvent*) {
    m_dragScroll.stop();
}

bool PreviewTableView::event(QEvent* event) {
    // Before a menu's shortcut of the same keys.
    if (event->type() == QEvent::ShortcutOverride) {
        auto* key = static_cast<QKeyEvent*>(event);
        if (key->matches(QKeySequence::Copy) || key->matches(QKeySequence::SelectAll))
            key->accept();
    }
    return QAbstractScrollArea::event(event);
}

void PreviewTableView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy)) {
        copy();
        return;
    }
    if (event->matches(QKeySequence::SelectAll)) {
        selectAll();
        return;
    }
    const std::optional<QPoint> cell = cellAfterKey(*event);
    if (!cell)
        QAbstractScrollArea::keyPressEvent(event);
    else if (m_current.x() < 0)
        setCurrentCell(QPoint(0, firstRow()), false);
    else
        setCurrentCell(*cell, event->modifiers().testFlag(Qt::ShiftModifier));
}

/// Where a key of movement leads, perhaps beyond an edge; nothing for other keys.
std::optional<QPoint> PreviewTableView::cellAfterKey(const QKeyEvent& event) const {
    const bool far = event.modifiers().testFlag(Qt::ControlModifier);
    const QPoint end(columns() - 1, rows() - 1);
    const auto below = [&](int count) { return std::min(m_current.y(), end.y() - count) + count; };
    QPoint cell = m_current;
    switch (event.key()) {
    case Qt::Key_Up:
        cell.setY(far ? 0 : cell.y() - 1);
        break;
    case Qt::Key_Down:
        cell.setY(far ? end.y() : below(1));
        break;
    case Qt::Key_Left:
        cell.setX(far ? 0 : cell.x() - 1);
        break;
    case Qt::Key_Right:
        cell.setX(far ? end.x() : cell.x() + 1);
        break;
    case Qt::Key_PageUp:
        cell.setY(cell.y() - rowsPerPage());
        break;
    case Qt::Key_PageDown:
        cell.setY(below(rowsPerPage()));
        break;
    case Qt::Key_Home:
        cell = QPoint(0, far ? 0 : cell.y());
        break;
    case Qt::Key_End:
        cell = QPoint(end.x(), far ? end.y() : cell.y());
        break;
    default:
        return std::nullopt;
    }
    return cell;
}

void PreviewTableView::focusInEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusInEvent(event);
    update(); // the frame shows the focus
}

void PreviewTableView::focusOutEvent(QFocusEvent* event) {
    QAbstractScrollArea::focusOutEvent(event);
    update();
}

QMenu* PreviewTableView::makeMenu() {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* copyAction = menu->addAction(tr("Copy"), this, &PreviewTableView::copy);
    copyAction->setShortcut(QKeySequence::Copy); // shown alone: the keys are the view's own
    copyAction->setEnabled(!selection().isNull());
    QAction* all = menu->addAction(tr("Select All"), this, &PreviewTableView::selectAll);
    all->setShortcut(QKeySequence::SelectAll);
    all->setEnabled(rows() > 0);
    menu->addSeparator();
    menu->addAction(tr("Refresh Preview"), this, &PreviewTableView::refreshRequested);
    return menu;
}

void PreviewTableView::contextMenuEvent(QContextMenuEvent* event) {
    const bool atCell = event->reason() == QContextMenuEvent::Keyboard && m_current.x() >= 0;
    const QPoint place = atCell ? viewport()->mapToGlobal(cellRect(m_current.y(), m_current.x()).center())
                                : event->globalPos();
    makeMenu()->popup(place);
}

bool PreviewTableView::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QAbstractScrollArea::viewportEvent(event);
    const auto* help = static_cast<const QHelpEvent*>(event);
    const std::optional<QPoint> cell = cellAt(help->pos());
    const QString text =
        !cell ? toolTip()
        : cell->y() < 0
            ? tr("%1, in expressions %2")
                  .arg(m_model->headerData(cell->x(), Qt::Horizontal).toString(),
                       m_model->headerData(cell->x(), Qt::Horizontal, PreviewTableModel::symbolRole)
                           .toString())
            : m_model->data(m_model->index(cell->y(), cell->x())).toString();
    QToolTip::showText(help->globalPos(), text, viewport(),
                       cell ? cellRect(cell->y(), cell->x()) : viewport()->rect());
    return true;
}
