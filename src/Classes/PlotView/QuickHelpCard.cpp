// Paints the card and its three hints.
#include "Classes/PlotView/QuickHelpCard.h"

#include "Classes/PlotView/PlotStyles.h"
#include "Platform/Widgets/Pictures.h"
#include "Platform/Widgets/StylePainting.h"

#include <QPainter>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

struct Hint {
    const char* picture;
    const char* caption;
};

constexpr Hint hints[] = {
    {"quick_help_drop", "Drop a data file\nanywhere in the window"},
    {"quick_help_curve", "Add a curve, choose\nits x and y columns"},
    {"quick_help_move", "Drag to pan, turn\nthe wheel to zoom"},
};
constexpr int hintsNumber = std::size(hints);
constexpr QSize pictureSize(112, 72);
constexpr int cardWidth = 560;
constexpr int side = 16;
constexpr int top = 20;
constexpr int pictureGap = 14;
constexpr int bottom = 24;
constexpr int captionGap = 8;
constexpr int clearance = 8; // around the card

int lineHeight(const QFontMetrics& metrics) {
    return std::max(18, metrics.height());
}

} // namespace

QuickHelpCard::QuickHelpCard(QWidget* parent) : QWidget(parent) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    QStringList captions;
    for (const Hint& hint : hints)
        captions << QString::fromLatin1(hint.caption).replace(u'\n', u' ');
    setAccessibleName(captions.join(u". "_s));
    hide();
}

void QuickHelpCard::setStyles(const PlotStyles& styles) {
    m_paper = styles.color(u"BackgroundColor"_s);
    m_edge = styles.color(u"SecondaryGridColor"_s);
    m_theme = styles.isDark() ? Theme::Dark : Theme::Light;
    update();
}

QSize QuickHelpCard::leastSize() const {
    int widest = pictureSize.width();
    for (const Hint& hint : hints)
        widest =
            std::max(widest, fontMetrics().size(Qt::TextDontClip, QString::fromLatin1(hint.caption)).width());
    return {2 * side + hintsNumber * (widest + captionGap),
            top + pictureSize.height() + pictureGap + 2 * lineHeight(fontMetrics()) + bottom};
}

void QuickHelpCard::placeOn(const QRect& plot, bool wanted) {
    const QRect room = plot.adjusted(clearance, clearance, -clearance, -clearance);
    const QSize least = leastSize();
    const bool fits = least.width() <= room.width() && least.height() <= room.height();
    if (wanted && fits) {
        QRect card({}, QSize(std::min(room.width(), std::max(cardWidth, least.width())), least.height()));
        card.moveCenter(room.center());
        setGeometry(card);
    }
    setVisible(wanted && fits);
}

void QuickHelpCard::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    StylePainting::drawBox(painter, rect(), 8, m_paper, m_edge);
    painter.setPen(themeColors(m_theme).text2);
    const int line = lineHeight(painter.fontMetrics());
    const double columnWidth = (width() - 2.0 * side) / hintsNumber;
    for (int i = 0; i < hintsNumber; ++i) {
        const int left = side + qRound(i * columnWidth);
        const int right = side + qRound((i + 1) * columnWidth);
        const int middle = (left + right) / 2;
        painter.drawPixmap(middle - pictureSize.width() / 2, top,
                           Pictures::pixmap(QLatin1String(hints[i].picture), devicePixelRatioF(), m_theme));
        int y = top + pictureSize.height() + pictureGap;
        for (const QString& text : QString::fromLatin1(hints[i].caption).split(u'\n')) {
            painter.drawText(QRect(left, y, right - left, line), Qt::AlignCenter, text);
            y += line;
        }
    }
}
