// Shows a table of any length: all rows have one height, so that nothing is kept for any of them.
#pragma once

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QPoint>
#include <QPointer>
#include <QRect>
#include <QString>

#include <optional>
#include <vector>

class PreviewTableModel;
class QMenu;
class XMiniProgressIndicator;

/// Scrolls by whole rows and by pixels of columns. A rectangle of cells can be selected, with mouse or keys,
/// and copied as lines of tab-separated values. What it tells assistive technology is its current cell.
class PreviewTableView : public QAbstractScrollArea {
    Q_OBJECT

  public:
    /// Cells that are copied at most; longer selections are cut after a whole row.
    static constexpr qint64 mostCopiedCells = 500'000;

    explicit PreviewTableView(QWidget* parent = nullptr);

    void setModel(PreviewTableModel* model);

    /// Says what is missing, where there are no rows.
    void setEmptyText(const QString& text);
    /// 0 to 1 while data are read, NaN for an unknown part; nothing when no read runs.
    void setReading(std::optional<double> part);

    /// In logical pixels: max(100, width / columns), or more where numbers of the first and last rows need
    /// it.
    int columnWidth(int column) const;
    int headHeight() const;
    int rowHeight() const;
    /// Whole rows that fit in the view, at least 1.
    int rowsPerPage() const;
    int firstRow() const;
    /// Where a cell, or with row -1 a column's head, lies in the viewport. It may be outside.
    QRect cellRect(int row, int column) const;
    /// x is the column, y the row, -1 in the head; nothing beside the cells.
    std::optional<QPoint> cellAt(const QPoint& place) const;

    /// The selected cells, x as columns and y as rows; null without a selection.
    QRect selection() const;
    void setCurrentCell(const QPoint& cell, bool extend);

    Q_SLOT void selectAll();
    Q_SLOT void copy();

    QSize sizeHint() const override { return {480, 240}; }
    QSize minimumSizeHint() const override { return {120, 96}; }

  Q_SIGNALS:
    void refreshRequested();
    /// A copy was cut: `rows` of `selectedRows` are on the clipboard.
    void copyWasCut(int rows, int selectedRows);

  protected:
    bool event(QEvent* event) override;
    bool viewportEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void changeEvent(QEvent* event) override;

  private:
    static constexpr int padding = 10; ///< beside the text of a cell

    int rows() const;
    int columns() const;
    void tableChanged();
    void tableReplaced();
    void measureNumbers();
    void layOut();
    int columnAt(int x) const; ///< x in the whole table
    void scrollTo(const QPoint& cell);
    void dragTo(const QPoint& place);
    std::optional<QPoint> cellAfterKey(const QKeyEvent& event) const;
    void describeCurrentCell();
    void paintHead(QPainter& painter, int firstColumn, int lastColumn) const;
    void paintRow(QPainter& painter, int row, int firstColumn, int lastColumn) const;
    QMenu* makeMenu();

    QPointer<PreviewTableModel> m_model;
    XMiniProgressIndicator* m_progress;
    QString m_emptyText;
    QWidget* m_headRoom;             ///< keeps the scroll bar below the head
    std::vector<int> m_numberWidths; ///< what the sampled numbers of each column take
    std::vector<int> m_lefts{0};     ///< left edges of the columns and the right one of the last
    QPoint m_anchor{-1, -1};
    QPoint m_current{-1, -1}; ///< column, row; -1 without a cell
    QBasicTimer m_dragScroll;
    QPoint m_dragPlace;
};
