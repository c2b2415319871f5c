// Draws the band, and takes the words off its tools when they have no room.
#include "Classes/GraphViewController/StripView.h"

#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/StylePainting.h"

#include <QEvent>
#include <QPainter>
#include <QToolButton>

#include <algorithm>

namespace {

constexpr int stripHeight = 34;
constexpr int usualTextHeight = 16;
constexpr int toolOfGlyph = 30;

constexpr auto wordsWidthProperty = "velquinWidthWithWords";

} // namespace

StripView::StripView(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

QSize StripView::sizeHint() const {
    const int width = QWidget::sizeHint().width();
    return {width, stripHeight + std::max(0, fontMetrics().height() - usualTextHeight)};
}

void StripView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange)
        updateGeometry();
}

void StripView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const ThemeColors& colors = currentColors();
    painter.fillRect(rect(), colors.window);
    const double thin = StylePainting::hairline(painter);
    painter.fillRect(QRectF(0, height() - thin, width(), thin), colors.line);
}

void ToolStrip::resizeEvent(QResizeEvent* event) {
    StripView::resizeEvent(event);
    const bool words = width() >= wordsFrom;
    for (auto* tool : findChildren<QToolButton*>()) {
        if (tool->text().isEmpty())
            continue;
        if (!tool->property(wordsWidthProperty).isValid())
            tool->setProperty(wordsWidthProperty, tool->minimumWidth());
        tool->setToolButtonStyle(words ? Qt::ToolButtonTextBesideIcon : Qt::ToolButtonIconOnly);
        tool->setMinimumWidth(words ? tool->property(wordsWidthProperty).toInt() : toolOfGlyph);
    }
}

void ToolGroup::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const ThemeColors& colors = currentColors();
    StylePainting::drawBox(painter, rect(), 4, colors.raised, colors.edge);
}
