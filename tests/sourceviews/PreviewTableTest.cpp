// The preview: its texts, its columns, and that a table of any size costs no more than what is seen of it.
#include "Core/TextToDouble.h"
#include "EmbeddedPlugins/Common/PreviewTableView.h"
#include "EmbeddedPlugins/TextFile/PreviewTableModel.h"
#include "support/Numbers.h"
#include "support/TableSource.h"
#include "support/TestSupport.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

namespace {

using support::nan;

QStringList names(int count) {
    QStringList list{QStringLiteral("Row number")};
    while (list.size() < count)
        list.append(QStringLiteral("n%1").arg(list.size()));
    return list;
}

TEST(PreviewText, isShortAndReadsBack) {
    const std::pair<double, const char*> rows[] = {{0, "0"},
                                                   {-0.0, "-0"},
                                                   {5.0, "5"},
                                                   {0.1, "0.1"},
                                                   {100000, "100000"},
                                                   {1e16, "10000000000000000"},
                                                   {1e17, "1e+17"},
                                                   {1e-5, "0.00001"},
                                                   {1e-6, "1e-06"},
                                                   {-2.5, "-2.5"},
                                                   {1714568400, "1714568400"},
                                                   {nan, ""}};
    for (const auto& [value, text] : rows)
        EXPECT_EQ(previewText(value), QLatin1String(text));
    for (const double value : {0.1 + 0.2, 1.0 / 3, 5e-324, 1.7976931348623157e308, -123456.789})
        EXPECT_EQ(std::bit_cast<std::uint64_t>(textToDouble(previewText(value).toStdString())),
                  std::bit_cast<std::uint64_t>(value));
}

TEST(PreviewTableModel, showsRowNumbersValuesAndWhatIsMissing) {
    PreviewTableModel model;
    EXPECT_EQ(model.rowCount(), 0);
    model.setTable(support::makeTable({{1.5, nan}, {2}}), names(4)); // one name more than columns
    const QStringList expected{QStringLiteral("0|1.5|2|"), QStringLiteral("1|||")};
    ASSERT_EQ(model.rowCount(), 2);
    for (int row = 0; row < 2; ++row) {
        QStringList cells;
        for (int column = 0; column < model.columnCount(); ++column)
            cells.append(model.data(model.index(row, column)).toString());
        EXPECT_EQ(cells.join(QLatin1Char('|')), expected[row]);
    }
    EXPECT_EQ(model.headerData(0, Qt::Horizontal, PreviewTableModel::symbolRole), QStringLiteral("row"));
    EXPECT_EQ(model.headerData(2, Qt::Horizontal, PreviewTableModel::symbolRole), QStringLiteral("c2"));
    EXPECT_FALSE(model.flags(model.index(0, 1)).testFlag(Qt::ItemIsEditable));
    model.setTable(std::make_shared<XPTableData>(), names(1));
    EXPECT_EQ(model.rowCount(), 1) << "kept: a table into which nothing was written has a row";
}

/// As many rows as the model can have, and many columns; counts the cells that are asked for.
class EndlessModel : public PreviewTableModel {
  public:
    static constexpr int rows = std::numeric_limits<int>::max();

    int rowCount(const QModelIndex&) const override { return rows; }
    QVariant data(const QModelIndex& index, int role) const override {
        ++asked;
        return role == Qt::DisplayRole
                   ? QVariant(QStringLiteral("%1.%2").arg(index.row()).arg(index.column()))
                   : QVariant();
    }
    mutable int asked = 0;
};

class PreviewTable : public testing::Test {
  protected:
    PreviewTable() {
        model.setTable(nullptr, names(10'000));
        view.resize(604, 302);
        view.setModel(&model);
        view.show();
    }
    /// Presses at, moves to, and releases at the middle of cells.
    void drag(QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = {}) {
        QTest::mousePress(view.viewport(), Qt::LeftButton, modifiers,
                          view.cellRect(from.y(), from.x()).center());
        const QPoint end = view.cellRect(to.y(), to.x()).center();
        QMouseEvent move(QEvent::MouseMove, end, view.viewport()->mapToGlobal(end), Qt::NoButton,
                         Qt::LeftButton, modifiers);
        QCoreApplication::sendEvent(view.viewport(), &move);
        QTest::mouseRelease(view.viewport(), Qt::LeftButton, modifiers, end);
    }

    EndlessModel model;
    PreviewTableView view;
};

TEST_F(PreviewTable, asksForWhatIsSeenAlone) {
    constexpr int last = EndlessModel::rows - 1;
    EXPECT_LE(model.asked, 2 * 10'000) << "to measure the columns";
    const int visible = (view.rowsPerPage() + 1) * (600 / 100 + 2);
    for (const int row : {0, 1'000'000'000, last}) {
        view.setCurrentCell(QPoint(9'999, row), false);
        model.asked = 0;
        view.grab();
        EXPECT_GT(model.asked, view.rowsPerPage()) << row;
        EXPECT_LE(model.asked, visible) << row;
    }
    const QRect place = view.cellRect(last, 9'999);
    EXPECT_TRUE(view.viewport()->rect().contains(place)) << "the last cell is reached";
    EXPECT_EQ(view.cellAt(place.center()), QPoint(9'999, last));
    EXPECT_EQ(view.firstRow(), last - view.rowsPerPage() + 1);
    EXPECT_EQ(view.accessibleDescription(), QStringLiteral("n9999, row 2147483646: 2147483646.9999"));
}

TEST_F(PreviewTable, keysLeadToCellsAndStopAtTheEdges) {
    constexpr int last = EndlessModel::rows - 1;
    const int page = view.rowsPerPage();
    struct Row {
        QPoint from;
        int key;
        Qt::KeyboardModifiers modifiers;
        QPoint to;
    };
    const Row rows[] = {
        {{3, 5}, Qt::Key_Down, {}, {3, 6}},
        {{3, last}, Qt::Key_Down, {}, {3, last}},
        {{3, 5}, Qt::Key_Down, Qt::ControlModifier, {3, last}},
        {{3, 0}, Qt::Key_Up, {}, {3, 0}},
        {{0, 5}, Qt::Key_Left, {}, {0, 5}},
        {{3, 5}, Qt::Key_Right, {}, {4, 5}},
        {{3, 5}, Qt::Key_Right, Qt::ControlModifier, {9'999, 5}},
        {{3, 5}, Qt::Key_PageDown, {}, {3, 5 + page}},
        {{3, last - 1}, Qt::Key_PageDown, {}, {3, last}},
        {{3, 5}, Qt::Key_PageUp, {}, {3, std::max(0, 5 - page)}},
        {{3, 5}, Qt::Key_Home, {}, {0, 5}},
        {{3, 5}, Qt::Key_End, Qt::ControlModifier, {9'999, last}},
    };
    for (const Row& row : rows) {
        view.setCurrentCell(row.from, false);
        QTest::keyClick(&view, static_cast<Qt::Key>(row.key), row.modifiers);
        EXPECT_EQ(view.selection(), QRect(row.to, row.to)) << row.key << " " << row.modifiers;
        view.setCurrentCell(row.from, false);
        QTest::keyClick(&view, static_cast<Qt::Key>(row.key), row.modifiers | Qt::ShiftModifier);
        EXPECT_EQ(view.selection(), QRect(row.from, row.from) | QRect(row.to, row.to))
            << row.key << " extends";
    }
    QTest::keyClick(&view, Qt::Key_A, Qt::ControlModifier);
    EXPECT_EQ(view.selection(), QRect(QPoint(0, 0), QPoint(9'999, last)));
}

TEST_F(PreviewTable, theMouseSelectsAndCopies) {
    drag({1, 2}, {2, 3});
    EXPECT_EQ(view.selection(), QRect(1, 2, 2, 2));
    QTest::keyClick(&view, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("2.1\t2.2\n3.1\t3.2\n"));
    drag({1, 4}, {1, 4}, Qt::ShiftModifier);
    EXPECT_EQ(view.selection(), QRect(1, 2, 1, 3));

    drag({3, 1}, {3, 1});
    view.copy();
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("1.3")) << "no line end in a field";

    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.cellRect(-1, 2).center());
    EXPECT_EQ(view.selection(), QRect(QPoint(2, 0), QPoint(2, EndlessModel::rows - 1)));
    view.setCurrentCell(QPoint(1, 0), false);
    view.setCurrentCell(QPoint(5, EndlessModel::rows - 1), true);
    QSignalSpy cuts(&view, &PreviewTableView::copyWasCut);
    view.copy();
    ASSERT_EQ(cuts.size(), 1);
    EXPECT_EQ(cuts[0][0].toInt(), PreviewTableView::mostCopiedCells / 5);
    EXPECT_EQ(QGuiApplication::clipboard()->text().count(QLatin1Char('\n')), cuts[0][0].toInt());
}

TEST(PreviewTableView, columnsShareTheWidthOfTheTable) {
    struct Row {
        int width, names, expected;
    };
    PreviewTableModel model;
    PreviewTableView view;
    view.setModel(&model);
    view.show();
    const int frame = view.width() - view.viewport()->width();
    for (const Row& row : {Row{240, 3, 100}, Row{600, 3, 200}, Row{601, 6, 100}, Row{600, 1, 600}}) {
        view.resize(row.width + frame, 200);
        model.setTable(support::makeTable({{1, 2}}), names(row.names));
        EXPECT_EQ(view.columnWidth(row.names - 1), row.expected) << row.width << "/" << row.names;
        EXPECT_EQ(view.horizontalScrollBar()->maximum(), std::max(0, row.names * row.expected - row.width));
    }
    model.setTable(support::makeTable({{1, -1.7976931348623157e308}}), names(2));
    view.resize(200 + frame, 200);
    EXPECT_EQ(view.columnWidth(0), 100);
    EXPECT_GT(view.columnWidth(1),
              view.fontMetrics().horizontalAdvance(QStringLiteral("-1.7976931348623157e+308")))
        << "no number is cut";
}

} // namespace
