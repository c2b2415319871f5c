// Frames of the controls, the spine, and the glyphs and letters before the lines.
#include "Classes/CurvesSidebar/CCurveView.h"

#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/StylePainting.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr int designedWidth = 248;
constexpr int designedHeight = 165;
constexpr int foldedHeight = 27;
constexpr int designedFont = 16; ///< height of a line of text that fits the designed frames
constexpr int lineHeight = 27;   ///< from box to box
constexpr int lastLine = 5;
constexpr int rightMargin = 8;
constexpr int boxesLeft = 84; ///< of the numbers
constexpr int boxTop = 25;    ///< of the first line below the title
constexpr int boxHeight = 24;
constexpr double leftShare = 0.46;
constexpr int sharersGap = 4;
constexpr int spineWidth = 3;
constexpr double leastSpineContrast = 2;

/// WCAG 2 relative luminance.
double luminance(const QColor& color) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    const auto channels = color.toRgb();
    return 0.2126 * linear(static_cast<double>(channels.redF())) +
           0.7152 * linear(static_cast<double>(channels.greenF())) +
           0.0722 * linear(static_cast<double>(channels.blueF()));
}

double contrast(const QColor& a, const QColor& b) {
    const auto [dark, light] = std::minmax({luminance(a), luminance(b)});
    return (light + 0.05) / (dark + 0.05);
}

QColor mixed(const QColor& ink, const QColor& ground, double part) {
    const auto channel = [part](int over, int under) {
        return static_cast<int>(std::lround(part * over + (1 - part) * under));
    };
    return {channel(ink.red(), ground.red()), channel(ink.green(), ground.green()),
            channel(ink.blue(), ground.blue())};
}

} // namespace

CCurveView::CCurveView(QWidget* parent) : CFlippedView(parent) {
    setAutoFillBackground(true);
    connect(&Appearance::instance(), &Appearance::themeChanged, this, qOverload<>(&QWidget::update));
}

void CCurveView::takeFrames() {
    m_controls.clear();
    const auto children = findChildren<QWidget*>(Qt::FindDirectChildrenOnly);
    for (QWidget* child : children)
        m_controls.push_back({child, child->geometry()});
    resize(width(), neededHeight());
    layOut();
}

void CCurveView::setSharers(QWidget* left, QWidget* right) {
    m_leftSharer = left;
    m_rightSharer = right;
}

void CCurveView::setMarks(const Marks& marks) {
    if (marks == m_marks)
        return;
    m_marks = marks;
    update();
}

void CCurveView::setFolded(bool folded) {
    m_isFolded = folded;
    resize(width(), neededHeight());
}

int CCurveView::neededHeight() const {
    return m_isFolded ? foldedHeight + tallerBy() : designedHeight + (lastLine + 1) * tallerBy();
}

int CCurveView::tallerBy() const {
    return std::max(0, fontMetrics().height() - designedFont);
}

QRect CCurveView::frameOf(const Placed& placed) const {
    const QRect& designed = placed.designed;
    const int taller = tallerBy();
    const int line = std::clamp((designed.top() + designed.bottom() + 1) / 2 / lineHeight, 0, lastLine);
    const int wider = width() - designedWidth;
    QRect frame = designed.translated(0, line * taller);

    // Boxes and the title grow with the font, glyphs stay in the middle, progress stays under its box.
    const bool isText = designed.height() >= 18 && designed.width() != designed.height();
    if (isText)
        frame.setHeight(designed.height() + taller);
    else
        frame.translate(0, designed.height() > 2 ? taller / 2 : taller);

    const int numbers = width() - rightMargin - boxesLeft;
    const int left = static_cast<int>(std::lround(leftShare * numbers));
    if (placed.control == m_leftSharer) {
        frame.setWidth(left);
    } else if (placed.control == m_rightSharer) {
        frame.moveLeft(boxesLeft + left + sharersGap);
        frame.setWidth(numbers - left - sharersGap);
    } else if (designed.left() > designedWidth / 2) {
        frame.translate(wider, 0);
    } else if (designed.right() > designedWidth / 2) {
        frame.setWidth(std::max(0, designed.width() + wider));
    }
    return frame;
}

void CCurveView::layOut() {
    for (const Placed& placed : m_controls)
        placed.control->setGeometry(frameOf(placed));
}

void CCurveView::resizeEvent(QResizeEvent* event) {
    CFlippedView::resizeEvent(event);
    layOut();
}

void CCurveView::changeEvent(QEvent* event) {
    CFlippedView::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        resize(width(), neededHeight());
}

void CCurveView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const ThemeColors& colors = currentColors();
    const double thin = StylePainting::hairline(painter);
    const double foot = height() - thin;
    painter.fillRect(QRectF(0, foot, width(), thin), colors.line);

    const QColor spine = m_marks.isHidden ? mixed(m_marks.color, colors.window, 0.35) : m_marks.color;
    painter.fillRect(QRectF(0, 0, spineWidth, foot), spine);
    if (contrast(spine, colors.window) < leastSpineContrast)
        painter.fillRect(QRectF(spineWidth - thin, 0, thin, foot), colors.edge2);
    if (m_isFolded)
        return;

    const int taller = tallerBy();
    const auto place = [&](int line) {
        return QRectF(8, boxTop + (line - 1) * lineHeight + line * taller, 16, boxHeight + taller);
    };
    const auto ink = [&](std::size_t value, const QColor& plain) {
        return m_marks.isFaulty[value] ? colors.errorText : plain;
    };
    if (!m_marks.sourceGlyph.isEmpty())
        StylePainting::drawIcon(painter, place(1), m_marks.sourceGlyph, colors.text3);
    painter.setPen(ink(0, colors.text2));
    painter.drawText(place(2), Qt::AlignCenter, QStringLiteral("x"));
    painter.setPen(ink(1, colors.text2));
    painter.drawText(place(3), Qt::AlignCenter, QStringLiteral("y"));
    StylePainting::drawIcon(painter, place(4), QStringLiteral("line"), colors.text3);
    StylePainting::drawIcon(painter, place(5), QStringLiteral("points"), ink(2, colors.text3));
}
