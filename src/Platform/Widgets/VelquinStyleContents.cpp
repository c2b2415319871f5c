// How the style draws what is inside standard widgets: labels, items of menus, headers, progress.
#include "Platform/Widgets/VelquinStyle.h"

#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/StylePainting.h"
#include "Platform/Widgets/StyleState.h"

#include <QFrame>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>

using StylePainting::drawBox;
using StylePainting::drawRing;
using StyleState::buttonRadius;
using StyleState::has;
using StyleState::inkOf;
using StyleState::narrowPopup;

namespace {

/// A tool's glyph and word, centred together with 6 px between them.
void drawToolLabel(QPainter& painter, const QStyleOptionToolButton& tool) {
    const ThemeColors& colors = currentColors();
    const bool on = has(&tool, QStyle::State_On);
    const bool lit = has(&tool, QStyle::State_MouseOver) || has(&tool, QStyle::State_Sunken);
    const QColor ink = inkOf(&tool, on ? colors.accent : lit ? colors.text : colors.text2);
    const bool word = !tool.text.isEmpty() && (tool.toolButtonStyle != Qt::ToolButtonIconOnly);
    const bool glyph = !tool.icon.isNull() && tool.toolButtonStyle != Qt::ToolButtonTextOnly;
    const int gap = word && glyph ? 6 : 0;
    const int iconWidth = glyph ? tool.iconSize.width() : 0;
    const int textWidth =
        word ? tool.fontMetrics.size(Qt::TextSingleLine | Qt::TextShowMnemonic, tool.text).width() : 0;
    int x = tool.rect.left() + std::max(0, (tool.rect.width() - iconWidth - gap - textWidth) / 2);
    if (glyph) {
        const QIcon::Mode mode = !has(&tool, QStyle::State_Enabled) ? QIcon::Disabled
                                 : lit                              ? QIcon::Active
                                                                    : QIcon::Normal;
        const int y = tool.rect.top() + (tool.rect.height() - tool.iconSize.height()) / 2;
        tool.icon.paint(&painter, QRect(QPoint(x, y), tool.iconSize), Qt::AlignCenter, mode,
                        on ? QIcon::On : QIcon::Off);
        x += iconWidth + gap;
    }
    if (word) {
        painter.setPen(ink);
        painter.setFont(tool.font);
        painter.drawText(QRect(x, tool.rect.top(), tool.rect.right() - x + 1, tool.rect.height()),
                         static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter) | Qt::TextShowMnemonic,
                         tool.text);
    }
}

void drawComboLabel(QPainter& painter, const QStyleOptionComboBox& box) {
    const ThemeColors& colors = currentColors();
    QRect room = box.rect.adjusted(8, 1, -22, -1);
    if (!box.currentIcon.isNull()) {
        const bool narrow = box.rect.width() < narrowPopup;
        const int x = box.rect.left() + (narrow ? 3 : 8);
        const QRect place(QPoint(x, box.rect.top() + (box.rect.height() - box.iconSize.height()) / 2),
                          box.iconSize);
        box.currentIcon.paint(&painter, place, Qt::AlignCenter,
                              has(&box, QStyle::State_Enabled) ? QIcon::Active : QIcon::Disabled);
        if (narrow)
            return;
        room.setLeft(place.right() + 6);
    }
    if (box.editable)
        return;
    painter.setPen(inkOf(&box, colors.text));
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                     box.fontMetrics.elidedText(box.currentText, Qt::ElideMiddle, room.width()));
}

void drawMenuBarItem(QPainter& painter, const QStyleOptionMenuItem& item) {
    const ThemeColors& colors = currentColors();
    painter.fillRect(item.rect, colors.bezel);
    if (has(&item, QStyle::State_Selected) && has(&item, QStyle::State_Enabled))
        drawBox(painter, QRectF(item.rect).adjusted(1, 2, -1, -2), buttonRadius,
                has(&item, QStyle::State_Sunken) ? colors.pressed : colors.hover, {});
    painter.setPen(inkOf(&item, colors.text));
    painter.drawText(item.rect,
                     static_cast<int>(Qt::AlignCenter) | Qt::TextShowMnemonic | Qt::TextDontClip |
                         Qt::TextSingleLine,
                     item.text);
}

void drawHeaderSection(QPainter& painter, const QStyleOptionHeader& header) {
    const ThemeColors& colors = currentColors();
    const double thin = StylePainting::hairline(painter);
    const QRectF rect(header.rect);
    painter.fillRect(rect, colors.tableHead);
    painter.fillRect(QRectF(rect.left(), rect.bottom() - thin, rect.width(), thin), colors.edge);
    const bool last =
        header.position == QStyleOptionHeader::End || header.position == QStyleOptionHeader::OnlyOneSection;
    if (header.orientation == Qt::Horizontal && !last)
        painter.fillRect(QRectF(rect.right() - thin, rect.top() + 7, thin, rect.height() - 14), colors.line);
}

void drawProgressContents(QPainter& painter, const QStyleOptionProgressBar& bar) {
    const ThemeColors& colors = currentColors();
    if (bar.maximum <= bar.minimum) { // of unknown length: nothing here moves by itself
        painter.setOpacity(0.5);
        painter.fillRect(bar.rect, colors.accent);
        painter.setOpacity(1);
        return;
    }
    const double part = static_cast<double>(bar.progress - bar.minimum) / (bar.maximum - bar.minimum);
    QRectF done(bar.rect);
    done.setWidth(done.width() * std::clamp(part, 0.0, 1.0));
    painter.fillRect(StylePainting::onDevicePixels(painter, done), colors.accent);
}

} // namespace

void VelquinStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const {
    const ThemeColors& colors = currentColors();
    switch (element) {
    case CE_ShapedFrame: {
        const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
        if (frame == nullptr || (frame->frameShape != QFrame::HLine && frame->frameShape != QFrame::VLine))
            break;
        const double thin = StylePainting::hairline(*painter);
        const QRectF rect(option->rect);
        const QSizeF size =
            frame->frameShape == QFrame::HLine ? QSizeF(rect.width(), thin) : QSizeF(thin, rect.height());
        painter->fillRect(QRectF(rect.topLeft(), size), colors.line);
        return;
    }
    case CE_FocusFrame:
        drawRing(*painter, option->rect, buttonRadius + 3, 2, colors.accent);
        return;
    case CE_PushButtonLabel:
        if (const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option)) {
            QStyleOptionButton label(*button);
            const bool isDefault = button->features.testFlag(QStyleOptionButton::DefaultButton);
            const QColor ink = isDefault               ? colors.onAccent
                               : has(option, State_On) ? colors.accent
                                                       : colors.text;
            label.palette.setColor(QPalette::ButtonText, inkOf(option, ink));
            QProxyStyle::drawControl(element, &label, painter, widget);
        }
        return;
    case CE_ToolButtonLabel:
        if (const auto* tool = qstyleoption_cast<const QStyleOptionToolButton*>(option))
            drawToolLabel(*painter, *tool);
        return;
    case CE_ComboBoxLabel:
        if (const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option))
            drawComboLabel(*painter, *box);
        return;
    case CE_MenuBarEmptyArea:
        painter->fillRect(option->rect, colors.bezel);
        return;
    case CE_MenuBarItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option))
            drawMenuBarItem(*painter, *item);
        return;
    case CE_MenuItem:
        if (const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option)) {
            QStyleOptionMenuItem plain(*item);
            if (item->menuItemType == QStyleOptionMenuItem::Separator && item->text.isEmpty()) {
                const QRectF middle(option->rect.left(), option->rect.center().y(), option->rect.width(),
                                    StylePainting::hairline(*painter));
                painter->fillRect(StylePainting::onDevicePixels(*painter, middle), colors.line);
                return;
            }
            if (has(option, State_Selected) && has(option, State_Enabled))
                drawBox(*painter, QRectF(option->rect).adjusted(4, 0, -4, 0), buttonRadius, colors.accentSoft,
                        {});
            plain.state.setFlag(State_Selected, false);
            QProxyStyle::drawControl(element, &plain, painter, widget);
        }
        return;
    case CE_HeaderSection:
        if (const auto* header = qstyleoption_cast<const QStyleOptionHeader*>(option))
            drawHeaderSection(*painter, *header);
        return;
    case CE_HeaderEmptyArea: {
        QStyleOptionHeader rest;
        rest.rect = option->rect;
        rest.orientation = Qt::Horizontal;
        rest.position = QStyleOptionHeader::End;
        drawHeaderSection(*painter, rest);
        return;
    }
    case CE_Splitter:
        if (std::min(option->rect.width(), option->rect.height()) <= 1) {
            painter->fillRect(option->rect, colors.line);
        } else { // a wide one shows a grip
            const bool upright = has(option, State_Horizontal);
            const QSizeF grip = upright ? QSizeF(2, 24) : QSizeF(24, 2);
            const QPointF half(grip.width() / 2, grip.height() / 2);
            drawBox(*painter, QRectF(QRectF(option->rect).center() - half, grip), 1, colors.edge, {});
        }
        return;
    case CE_ProgressBarGroove:
        painter->fillRect(option->rect, colors.line);
        return;
    case CE_ProgressBarContents:
        if (const auto* bar = qstyleoption_cast<const QStyleOptionProgressBar*>(option))
            drawProgressContents(*painter, *bar);
        return;
    default:
        break;
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}
