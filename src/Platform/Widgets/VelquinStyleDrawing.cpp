// How the style draws the frames, bodies and marks of standard widgets, and where their parts lie.
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/StylePainting.h"
#include "Platform/Widgets/StyleState.h"
#include "Platform/Widgets/VelquinStyle.h"

#include <QAbstractItemView>
#include <QAbstractScrollArea>
#include <QFrame>
#include <QPainter>
#include <QStyleOption>

#include <algorithm>

using StylePainting::drawBox;
using StylePainting::drawField;
using StylePainting::drawIcon;
using StylePainting::drawRing;
using StylePainting::FieldState;
using StyleState::buttonRadius;
using StyleState::chevronSide;
using StyleState::has;
using StyleState::inkOf;
using StyleState::narrowPopup;

namespace {

constexpr double fieldRadius = 3;

FieldState fieldState(const QStyleOption* option, const QWidget* widget) {
    return {has(option, QStyle::State_Enabled), has(option, QStyle::State_MouseOver),
            has(option, QStyle::State_HasFocus), VelquinStyle::isFaulty(widget)};
}

/// The veil that pointer or press lays over a control; none when it is disabled.
QColor veilOf(const QStyleOption* option) {
    if (!has(option, QStyle::State_Enabled))
        return {};
    if (has(option, QStyle::State_Sunken))
        return currentColors().pressed;
    return has(option, QStyle::State_MouseOver) ? currentColors().hover : QColor();
}

void drawInnerRing(QPainter& painter, const QStyleOption* option, const QWidget* widget) {
    if (has(option, QStyle::State_HasFocus) && VelquinStyle::focusRingInside(widget))
        drawRing(painter, option->rect, buttonRadius, 2, currentColors().accent);
}

void drawPushButton(QPainter& painter, const QStyleOption* option, const QWidget* widget) {
    const ThemeColors& colors = currentColors();
    const auto* button = qstyleoption_cast<const QStyleOptionButton*>(option);
    const bool isDefault = button != nullptr && button->features.testFlag(QStyleOptionButton::DefaultButton);
    if (isDefault && has(option, QStyle::State_Enabled)) {
        drawBox(painter, option->rect, buttonRadius, colors.accent, colors.accent);
        if (has(option, QStyle::State_Sunken))
            drawBox(painter, option->rect, buttonRadius, QColor::fromRgbF(0, 0, 0, 0.16F), {});
        else if (has(option, QStyle::State_MouseOver))
            drawBox(painter, option->rect, buttonRadius, QColor::fromRgbF(1, 1, 1, 0.10F), {});
    } else {
        const bool on = has(option, QStyle::State_On) && has(option, QStyle::State_Enabled);
        drawBox(painter, option->rect, buttonRadius, on ? colors.accentSoft : colors.raised, {});
        drawBox(painter, option->rect, buttonRadius, veilOf(option), on ? colors.accent : colors.edge);
    }
    drawInnerRing(painter, option, widget);
}

void drawTool(QPainter& painter, const QStyleOption* option, const QWidget* widget) {
    const ThemeColors& colors = currentColors();
    if (has(option, QStyle::State_On)) {
        const bool enabled = has(option, QStyle::State_Enabled);
        drawBox(painter, option->rect, buttonRadius, enabled ? colors.accentSoft : QColor(), {});
        drawBox(painter, option->rect, buttonRadius, veilOf(option), enabled ? colors.accent : colors.edge);
    } else if (!has(option, QStyle::State_AutoRaise)) {
        drawPushButton(painter, option, widget);
        return;
    } else {
        drawBox(painter, option->rect, buttonRadius, veilOf(option), {});
    }
    drawInnerRing(painter, option, widget);
}

void drawCheckIndicator(QPainter& painter, const QStyleOption* option, bool round) {
    const ThemeColors& colors = currentColors();
    const bool enabled = has(option, QStyle::State_Enabled);
    const bool mixed = has(option, QStyle::State_NoChange);
    const bool on = has(option, QStyle::State_On) || mixed;
    const QRectF box(QRectF(option->rect).center() - QPointF(8, 8), QSizeF(16, 16));
    const double radius = round ? 8 : fieldRadius;
    if (on) {
        drawBox(painter, box, radius, enabled ? colors.accent : colors.disabled, {});
        drawBox(painter, box, radius, veilOf(option), {});
        const QColor ink = enabled ? colors.onAccent : colors.window;
        if (round)
            drawBox(painter, QRectF(box.center() - QPointF(3, 3), QSizeF(6, 6)), 3, ink, {});
        else if (mixed)
            drawBox(painter, QRectF(box.center() - QPointF(4, 1), QSizeF(8, 2)), 1, ink, {});
        else
            drawIcon(painter, box, QStringLiteral("check"), ink);
        return;
    }
    drawBox(painter, box, radius, enabled ? colors.field : QColor(), {});
    drawBox(painter, box, radius, veilOf(option), enabled ? colors.edge2 : colors.edge);
}

/// The frame of a scroll area or of a group of controls.
void drawFrame(QPainter& painter, const QStyleOption* option, const QWidget* widget) {
    const ThemeColors& colors = currentColors();
    if (qobject_cast<const QAbstractScrollArea*>(widget) != nullptr) {
        const QWidget* focus = widget->focusProxy() != nullptr ? widget->focusProxy() : widget;
        drawBox(painter, option->rect, buttonRadius, colors.field, colors.edge);
        if (focus->hasFocus())
            drawRing(painter, option->rect, buttonRadius, 2, colors.accent);
        else if (VelquinStyle::isFaulty(widget))
            drawRing(painter, option->rect, buttonRadius, 1, colors.errorText);
        return;
    }
    drawBox(painter, option->rect, buttonRadius, colors.raised, colors.edge);
}

void drawItemPanel(QPainter& painter, const QStyleOption* option, const QWidget* widget) {
    const ThemeColors& colors = currentColors();
    const auto* item = qstyleoption_cast<const QStyleOptionViewItem*>(option);
    if (item != nullptr && item->backgroundBrush.style() != Qt::NoBrush)
        painter.fillRect(option->rect, item->backgroundBrush);
    // Cells of a table touch; rows of a list stand alone, with round corners.
    const bool cell = widget != nullptr && widget->inherits("QTableView");
    const double radius = cell ? 0 : buttonRadius;
    if (has(option, QStyle::State_Selected))
        drawBox(painter, option->rect, radius, colors.accentSoft, {});
    else if (has(option, QStyle::State_MouseOver) && has(option, QStyle::State_Enabled) && !cell)
        drawBox(painter, option->rect, radius, colors.hover, {});
    if (has(option, QStyle::State_HasFocus) && has(option, QStyle::State_KeyboardFocusChange))
        drawRing(painter, option->rect, radius, 2, colors.accent);
}

} // namespace

void VelquinStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                                 const QWidget* widget) const {
    const ThemeColors& colors = currentColors();
    const auto chevron = [&](const char16_t* name, double turn) {
        painter->save();
        painter->translate(QRectF(option->rect).center());
        painter->rotate(turn);
        drawIcon(*painter, QRectF(-8, -8, 16, 16), QString::fromUtf16(name), inkOf(option, colors.text2));
        painter->restore();
    };
    switch (element) {
    case PE_FrameFocusRect:
    case PE_FrameGroupBox:
    case PE_FrameStatusBarItem:
    case PE_PanelStatusBar:
        return;
    case PE_PanelButtonCommand:
        drawPushButton(*painter, option, widget);
        return;
    case PE_PanelButtonTool:
    case PE_FrameButtonTool:
        drawTool(*painter, option, widget);
        return;
    case PE_PanelLineEdit:
    case PE_FrameLineEdit: {
        const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
        if (frame == nullptr || frame->lineWidth > 0)
            drawField(*painter, option->rect, fieldState(option, widget));
        return;
    }
    case PE_Frame:
        drawFrame(*painter, option, widget);
        return;
    case PE_FrameMenu:
    case PE_PanelMenu:
    case PE_PanelTipLabel:
        drawBox(*painter, option->rect, 0, colors.raised, colors.edge);
        return;
    case PE_PanelMenuBar:
    case PE_PanelToolBar:
        painter->fillRect(option->rect, element == PE_PanelMenuBar ? colors.bezel : colors.window);
        return;
    case PE_IndicatorCheckBox:
    case PE_IndicatorItemViewItemCheck:
    case PE_IndicatorMenuCheckMark:
        drawCheckIndicator(*painter, option, false);
        return;
    case PE_IndicatorRadioButton:
        drawCheckIndicator(*painter, option, true);
        return;
    case PE_PanelItemViewItem:
        drawItemPanel(*painter, option, widget);
        return;
    case PE_IndicatorArrowDown:
        chevron(u"chev", 0);
        return;
    case PE_IndicatorArrowUp:
        chevron(u"chev", 180);
        return;
    case PE_IndicatorArrowRight:
        chevron(u"chevr", 0);
        return;
    case PE_IndicatorArrowLeft:
        chevron(u"chevr", 180);
        return;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void VelquinStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                      QPainter* painter, const QWidget* widget) const {
    const ThemeColors& colors = currentColors();
    switch (control) {
    case CC_ComboBox: {
        const auto* box = qstyleoption_cast<const QStyleOptionComboBox*>(option);
        const QRectF rect(option->rect);
        const bool narrow = rect.width() < narrowPopup;
        if (box != nullptr && box->editable) {
            drawField(*painter, rect, fieldState(option, widget));
        } else {
            drawBox(*painter, rect, buttonRadius, has(option, State_Enabled) ? colors.raised : QColor(), {});
            drawBox(*painter, rect, buttonRadius, veilOf(option), colors.edge);
            drawInnerRing(*painter, option, widget);
        }
        const double side = narrow ? 12 : chevronSide;
        const double right = rect.right() - (narrow ? 0 : 5);
        drawIcon(*painter, QRectF(right - side, rect.top(), side, rect.height()), QStringLiteral("chev"),
                 inkOf(option, colors.text2), static_cast<int>(side));
        return;
    }
    case CC_SpinBox:
        drawField(*painter, option->rect, fieldState(option, widget));
        return;
    case CC_ToolButton: // without an outline the toolkit draws no panel, but the ring is due
        QProxyStyle::drawComplexControl(control, option, painter, widget);
        drawInnerRing(*painter, option, widget);
        return;
    case CC_ScrollBar: {
        const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (bar == nullptr || bar->maximum <= bar->minimum)
            return;
        if (styleHint(SH_ScrollBar_Transient, option, widget, nullptr) == 0)
            painter->fillRect(option->rect, option->palette.color(QPalette::Base));
        QRectF thumb(subControlRect(control, option, SC_ScrollBarSlider, widget));
        const double spare = (bar->orientation == Qt::Vertical ? thumb.width() : thumb.height()) - 6;
        thumb = bar->orientation == Qt::Vertical ? thumb.adjusted(spare / 2, 2, -spare / 2, -2)
                                                 : thumb.adjusted(2, spare / 2, -2, -spare / 2);
        const bool lit = has(option, State_MouseOver) || has(option, State_Sunken);
        drawBox(*painter, thumb, 3, lit ? colors.edge2 : colors.edge, {});
        return;
    }
    default:
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
}

QRect VelquinStyle::subElementRect(SubElement element, const QStyleOption* option,
                                   const QWidget* widget) const {
    if (element == SE_LineEditContents) {
        const auto* frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
        const int margin = frame != nullptr && frame->lineWidth > 0 ? 5 : 0;
        return option->rect.adjusted(margin, margin > 0 ? 1 : 0, -margin, margin > 0 ? -1 : 0);
    }
    return QProxyStyle::subElementRect(element, option, widget);
}

QRect VelquinStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                   SubControl subControl, const QWidget* widget) const {
    const QRect rect = option->rect;
    if (control == CC_SpinBox) {
        if (subControl == SC_SpinBoxEditField)
            return rect.adjusted(5, 1, -5, -1);
        return subControl == SC_SpinBoxFrame ? rect : QRect();
    }
    if (control == CC_ComboBox) {
        if (subControl == SC_ComboBoxEditField)
            return rect.adjusted(5, 1, -22, -1);
        if (subControl == SC_ComboBoxArrow)
            return {rect.right() - 21, rect.top(), 22, rect.height()};
        return rect;
    }
    if (control == CC_ScrollBar) {
        const auto* bar = qstyleoption_cast<const QStyleOptionSlider*>(option);
        if (bar == nullptr || subControl == SC_ScrollBarAddLine || subControl == SC_ScrollBarSubLine)
            return {};
        const bool upright = bar->orientation == Qt::Vertical;
        const int length = upright ? rect.height() : rect.width();
        const qint64 range = qint64{bar->maximum} - bar->minimum;
        const qint64 page = std::max(1, bar->pageStep);
        const int least = std::min(length, pixelMetric(PM_ScrollBarSliderMin, option, widget));
        const int thumb =
            range <= 0 ? length : std::clamp(static_cast<int>(length * page / (range + page)), least, length);
        const int start = sliderPositionFromValue(bar->minimum, bar->maximum, bar->sliderPosition,
                                                  length - thumb, bar->upsideDown);
        const auto part = [&](int from, int to) {
            return upright ? QRect(rect.left(), rect.top() + from, rect.width(), to - from)
                           : QRect(rect.left() + from, rect.top(), to - from, rect.height());
        };
        switch (subControl) {
        case SC_ScrollBarSlider:
            return part(start, start + thumb);
        case SC_ScrollBarSubPage:
            return part(0, start);
        case SC_ScrollBarAddPage:
            return part(start + thumb, length);
        default:
            return rect;
        }
    }
    return QProxyStyle::subControlRect(control, option, subControl, widget);
}
