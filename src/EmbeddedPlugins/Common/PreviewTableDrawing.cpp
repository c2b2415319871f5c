// How the table is drawn: what is visible of it and nothing else.
#include "EmbeddedPlugins/Common/PreviewTableView.h"
#include "EmbeddedPlugins/TextFile/PreviewTableModel.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/StylePainting.h"
#include "Platform/Widgets/VelquinStyle.h"

#include <QPainter>
#include <QScrollBar>

#include <algorithm>

void PreviewTableView::paintEvent(QPaintEvent*) {
    QPainter painter(viewport());
    painter.fillRect(viewport()->rect(), currentColors().field);
    const int first = std::max(0, columnAt(horizontalScrollBar()->value()));
    const int last = std::min(columns() - 1, columnAt(horizontalScrollBar()->value() + viewport()->width()));
    const int shownRows =
        columns() == 0 ? 0 : std::min(rows() - firstRow(), viewport()->height() / rowHeight() + 1);
    for (int i = 0; i < shownRows; ++i)
        paintRow(painter, firstRow() + i, first, last);
    paintHead(painter, first, last);
    if (rows() == 0) {
        painter.setFont(font());
        painter.setPen(currentColors().text3);
        const QRect body = viewport()->rect().adjusted(padding, headHeight(), -padding, 0);
        painter.drawText(body, static_cast<int>(Qt::AlignCenter) | Qt::TextWordWrap, m_emptyText);
    }
}

void PreviewTableView::paintHead(QPainter& painter, int firstColumn, int lastColumn) const {
    const ThemeColors& colors = currentColors();
    const double thin = StylePainting::hairline(painter);
    const int height = headHeight();
    painter.fillRect(0, 0, viewport()->width(), height, colors.tableHead);
    painter.fillRect(QRectF(0, height - thin, viewport()->width(), thin), colors.edge);
    QFont bold = font();
    bold.setBold(true);
    const QFont small = VelquinStyle::smallFont(font());
    const QFontMetrics boldMetrics(bold);
    const int lines = boldMetrics.height() + QFontMetrics(small).height();
    for (int column = firstColumn; column <= lastColumn; ++column) {
        const QRect cell = cellRect(-1, column);
        if (column > 0)
            painter.fillRect(QRectF(cell.left(), 7, thin, height - 14), colors.line);
        QRect room = cell.adjusted(padding, (height - lines) / 2, -padding, 0);
        room.setHeight(boldMetrics.height());
        const auto text = [&](int role) {
            return m_model->headerData(column, Qt::Horizontal, role).toString();
        };
        painter.setFont(bold);
        painter.setPen(colors.text);
        painter.drawText(room, Qt::AlignRight | Qt::AlignVCenter,
                         boldMetrics.elidedText(text(Qt::DisplayRole), Qt::ElideMiddle, room.width()));
        painter.setFont(small);
        painter.setPen(colors.text3);
        painter.drawText(room.translated(0, boldMetrics.height()), Qt::AlignRight | Qt::AlignTop,
                         text(PreviewTableModel::symbolRole));
    }
}

void PreviewTableView::paintRow(QPainter& painter, int row, int firstColumn, int lastColumn) const {
    const ThemeColors& colors = currentColors();
    const double thin = StylePainting::hairline(painter);
    const QRect selected = selection();
    painter.setFont(font());
    for (int column = firstColumn; column <= lastColumn; ++column) {
        const QRect cell = cellRect(row, column);
        const bool isSelected = selected.contains(column, row);
        if (isSelected)
            painter.fillRect(cell, colors.accentSoft);
        const QRect room = cell.adjusted(padding, 0, -padding, 0);
        const QString text = m_model->data(m_model->index(row, column)).toString();
        painter.setPen(column == 0 && !isSelected ? colors.text3 : colors.text);
        painter.drawText(room, Qt::AlignRight | Qt::AlignVCenter,
                         fontMetrics().elidedText(text, Qt::ElideRight, room.width()));
    }
    const double foot = cellRect(row, 0).bottom() + 1;
    painter.fillRect(QRectF(0, foot - thin, viewport()->width(), thin), colors.rowLine);
}
