// Places the list and draws a suggestion: the label, and its help in a column of its own.
#include "Classes/CurvesSidebar/CompletionList.h"

#include "Platform/Widgets/Appearance.h"

#include <QPainter>
#include <QStyledItemDelegate>

#include <algorithm>
#include <utility>

namespace {

constexpr int greatestRows = 8;
constexpr int greatestLabel = 240;
constexpr int greatestWidth = 520;
constexpr int margin = 8;
constexpr int columnGap = 12;
constexpr int windowMargin = 4;
constexpr int boxGap = 2;
constexpr int helpRole = Qt::UserRole;

class SuggestionDelegate : public QStyledItemDelegate {
  public:
    SuggestionDelegate(QObject* parent, const QFont& labelFont)
        : QStyledItemDelegate(parent), m_labelFont(labelFont) {}

    void setLabelsWidth(int width) { m_labelsWidth = width; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        option.widget->style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &option, painter, option.widget);
        const ThemeColors& colors = currentColors();
        const bool selected = option.state.testFlag(QStyle::State_Selected);
        QRect room = option.rect.adjusted(margin, 0, -margin, 0);
        const auto draw = [&](const QRect& rect, const QFont& font, const QColor& ink, int role) {
            painter->setFont(font);
            painter->setPen(ink);
            const QString text = index.data(role).toString();
            painter->drawText(rect, Qt::AlignLeft | Qt::AlignVCenter,
                              QFontMetrics(font).elidedText(text, Qt::ElideRight, rect.width()));
        };
        draw({room.left(), room.top(), std::min(m_labelsWidth, room.width()), room.height()}, m_labelFont,
             colors.text, Qt::DisplayRole);
        room.setLeft(room.left() + m_labelsWidth + columnGap);
        draw(room, option.font, selected ? colors.text2 : colors.text3, helpRole);
    }

  private:
    QFont m_labelFont;
    int m_labelsWidth = 0;
};

} // namespace

CompletionList::CompletionList(QWidget* window, const QFont& labelFont)
    : QListWidget(window), m_labelFont(labelFont) {
    setFocusPolicy(Qt::NoFocus);
    setUniformItemSizes(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollMode(ScrollPerItem);
    setAccessibleName(tr("Suggestions"));
    setItemDelegate(new SuggestionDelegate(this, labelFont));
}

void CompletionList::showAt(const QRect& box, const std::vector<Suggestion>& suggestions) {
    clear();
    int labels = 0;
    int helps = 0;
    const QFontMetrics labelMetrics(m_labelFont), helpMetrics(font());
    for (const Suggestion& suggestion : suggestions) {
        auto* item = new QListWidgetItem(suggestion.label, this);
        item->setData(helpRole, suggestion.help);
        // Widths are rounded, but what is elided is not.
        labels = std::max(labels, labelMetrics.horizontalAdvance(suggestion.label) + 1);
        helps = std::max(helps, helpMetrics.horizontalAdvance(suggestion.help) + 1);
    }
    labels = std::min(labels, greatestLabel);
    static_cast<SuggestionDelegate*>(itemDelegate())->setLabelsWidth(labels);
    setCurrentRow(0);

    ensurePolished();
    const int frame = 2 * frameWidth();
    const int rows = std::min(count(), greatestRows);
    const int scrollBar =
        count() > rows ? style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, this) : 0;
    const int wanted = labels + columnGap + helps + 2 * margin + scrollBar + frame;
    const QRect window =
        parentWidget()->rect().adjusted(windowMargin, windowMargin, -windowMargin, -windowMargin);
    const int width = std::clamp(wanted, std::min(box.width(), window.width()),
                                 std::max(box.width(), std::min(greatestWidth, window.width())));
    const int above = box.top() - window.top() - boxGap;
    const int below = window.bottom() - box.bottom() - boxGap;
    const int row = sizeHintForRow(0);
    const bool goesBelow = below >= rows * row + frame || below >= above;
    const int height = std::min(rows, std::max(1, ((goesBelow ? below : above) - frame) / row)) * row + frame;
    const int left =
        std::clamp(box.left(), window.left(), std::max(window.left(), window.right() + 1 - width));
    setGeometry(left, goesBelow ? box.bottom() + 1 + boxGap : box.top() - boxGap - height, width, height);
    show();
    raise();
}

void CompletionList::step(int rows) {
    setCurrentRow(std::clamp(currentRow() + rows, 0, count() - 1));
}
