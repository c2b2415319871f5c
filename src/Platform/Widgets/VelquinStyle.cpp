// Measures, hints and the behaviour that the style gives to widgets.
#include "Platform/Widgets/VelquinStyle.h"

#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/Pictures.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAbstractScrollArea>
#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QFocusFrame>
#include <QLineEdit>
#include <QScrollBar>
#include <QStyleFactory>
#include <QStyleOption>

#include <algorithm>

namespace {

constexpr auto ringInsideProperty = "velquinRingInside";
constexpr auto faultProperty = "velquinFault";
constexpr auto plainToolTipProperty = "velquinPlainToolTip";
constexpr auto overlayProperty = "velquinOverlayScrollBars";

constexpr int fieldHeight = 24;
constexpr int buttonHeight = 26;
constexpr int menuBarHeight = 26;
constexpr int rowHeight = 22;
constexpr int separatorHeight = 9;
constexpr int scrollThumb = 6;

/// By how much the system's font raises all heights.
int tallerBy(const QStyleOption* option) {
    return option == nullptr ? 0 : std::max(0, option->fontMetrics.height() - 16);
}

bool overlays(const QWidget* widget) {
    for (; widget != nullptr && !widget->isWindow(); widget = widget->parentWidget()) {
        if (widget->property(overlayProperty).toBool())
            return true;
    }
    return false;
}

/// Whether the ring of this widget is drawn around it, and not by itself.
bool wantsRingOutside(const QWidget* widget) {
    if (widget == nullptr || VelquinStyle::focusRingInside(widget))
        return false;
    if (const auto* box = qobject_cast<const QComboBox*>(widget))
        return !box->isEditable();
    return qobject_cast<const QAbstractButton*>(widget) != nullptr;
}

} // namespace

VelquinStyle::VelquinStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {
    setObjectName(QStringLiteral("velquin"));
}

QStyle* VelquinStyle::create() {
    return new VelquinStyle;
}

void VelquinStyle::setFocusRingInside(QWidget& container, bool inside) {
    container.setProperty(ringInsideProperty, inside);
}

bool VelquinStyle::focusRingInside(const QWidget* widget) {
    for (; widget != nullptr; widget = widget->isWindow() ? nullptr : widget->parentWidget()) {
        if (widget->property(ringInsideProperty).toBool())
            return true;
    }
    return false;
}

void VelquinStyle::setFault(QWidget& field, const QString& reason) {
    const bool faulty = isFaulty(&field);
    if (!faulty && reason.isEmpty())
        return;
    if (!faulty)
        field.setProperty(plainToolTipProperty, field.toolTip());
    const QString toolTip = reason.isEmpty() ? field.property(plainToolTipProperty).toString() : reason;
    field.setProperty(faultProperty, !reason.isEmpty());
    field.setToolTip(toolTip);
    field.setAccessibleDescription(reason);
    field.update();
}

bool VelquinStyle::isFaulty(const QWidget* field) {
    return field != nullptr && field->property(faultProperty).toBool();
}

void VelquinStyle::setOverlayScrollBars(QWidget& area) {
    area.setProperty(overlayProperty, true);
}

QFont VelquinStyle::smallFont(const QFont& font) {
    QFont small(font);
    small.setPixelSize(std::max(11, QFontInfo(font).pixelSize() - 1));
    return small;
}

void VelquinStyle::polish(QApplication* application) {
    QProxyStyle::polish(application);
    connect(application, &QApplication::focusChanged, this,
            [this](QWidget*, QWidget* now) { followFocus(now); });
}

void VelquinStyle::polish(QWidget* widget) {
    QProxyStyle::polish(widget);
    const auto* box = qobject_cast<QComboBox*>(widget);
    auto* spinBox = qobject_cast<QAbstractSpinBox*>(widget);
    const bool field = qobject_cast<QLineEdit*>(widget) != nullptr;
    if (box != nullptr || spinBox != nullptr || field || qobject_cast<QAbstractButton*>(widget) != nullptr ||
        qobject_cast<QScrollBar*>(widget) != nullptr)
        widget->setAttribute(Qt::WA_Hover);
    if (spinBox != nullptr)
        spinBox->setButtonSymbols(QAbstractSpinBox::NoButtons);
    if (box != nullptr || spinBox != nullptr) {
        // The wheel scrolls the list under the pointer and must not change what it passes over.
        widget->setFocusPolicy(Qt::StrongFocus);
        widget->installEventFilter(this);
    }
    if (auto* view = qobject_cast<QAbstractItemView*>(widget))
        view->viewport()->setAttribute(Qt::WA_Hover);
}

bool VelquinStyle::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::Wheel) {
        const auto* widget = qobject_cast<QWidget*>(object);
        // A number is turned where the keyboard is; a choice is made by keys or from its list.
        if (widget != nullptr && (!widget->hasFocus() || qobject_cast<const QComboBox*>(widget) != nullptr)) {
            event->ignore();
            return true;
        }
    }
    return QProxyStyle::eventFilter(object, event);
}

void VelquinStyle::followFocus(QWidget* now) {
    if (!wantsRingOutside(now)) {
        if (m_ring != nullptr)
            m_ring->setWidget(nullptr);
        return;
    }
    if (m_ring == nullptr)
        m_ring = new QFocusFrame;
    m_ring->setWidget(now);
}

int VelquinStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
    case PM_DefaultFrameWidth: // inside the outline there is room for the second pixel of the focus ring
        return qobject_cast<const QAbstractScrollArea*>(widget) != nullptr ? 2 : 1;
    case PM_IndicatorWidth:
    case PM_IndicatorHeight:
    case PM_ExclusiveIndicatorWidth:
    case PM_ExclusiveIndicatorHeight:
    case PM_ButtonIconSize:
    case PM_SmallIconSize:
    case PM_ToolBarIconSize:
    case PM_TabBarIconSize:
    case PM_ListViewIconSize:
        return 16;
    case PM_MessageBoxIconSize:
        return 32;
    case PM_CheckBoxLabelSpacing:
    case PM_RadioButtonLabelSpacing:
    case PM_LayoutHorizontalSpacing:
    case PM_LayoutVerticalSpacing:
        return 8;
    case PM_FocusFrameHMargin:
    case PM_FocusFrameVMargin:
        return 3;
    case PM_ButtonDefaultIndicator:
    case PM_ButtonShiftHorizontal:
    case PM_ButtonShiftVertical:
    case PM_MenuHMargin:
    case PM_MenuBarVMargin:
    case PM_MenuBarPanelWidth:
    case PM_MenuBarItemSpacing:
    case PM_ToolBarFrameWidth:
        return 0;
    case PM_MenuBarHMargin:
    case PM_MenuVMargin:
        return 4;
    case PM_MenuPanelWidth:
    case PM_SplitterWidth:
    case PM_ToolTipLabelFrameWidth:
        return 1;
    case PM_ScrollBarExtent:
        return overlays(widget) ? scrollThumb : scrollThumb + 4;
    case PM_ScrollBarSliderMin:
        return 24;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int VelquinStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                            QStyleHintReturn* returnData) const {
    switch (hint) {
    case SH_EtchDisabledText:
    case SH_DitherDisabledText:
    case SH_ComboBox_Popup:
    case SH_DialogButtonBox_ButtonsHaveIcons:
        return 0;
    case SH_MessageBox_TextInteractionFlags: // addresses and reasons can be copied
        return int{Qt::TextSelectableByMouse | Qt::LinksAccessibleByMouse};
    case SH_FocusFrame_AboveWidget:
    case SH_ItemView_ShowDecorationSelected:
        return 1;
    case SH_ScrollBar_Transient:
        return overlays(widget) ? 1 : 0;
    case SH_Table_GridLineColor:
        return static_cast<int>(currentColors().rowLine.rgba());
    case SH_Widget_Animation_Duration:
        return Appearance::instance().animations() ? 100 : 0;
    default:
        return QProxyStyle::styleHint(hint, option, widget, returnData);
    }
}

QSize VelquinStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                                     const QWidget* widget) const {
    const int extra = tallerBy(option);
    QSize result = QProxyStyle::sizeFromContents(type, option, size, widget);
    switch (type) {
    case CT_LineEdit:
        return {size.width() + 12, fieldHeight + extra};
    case CT_SpinBox:
        return {size.width() + 14, fieldHeight + extra};
    case CT_ComboBox:
        return {size.width() + 30, fieldHeight + extra};
    case CT_PushButton:
        return {std::max(size.width() + 26, 64), buttonHeight + extra};
    case CT_ToolButton: {
        const auto* button = qstyleoption_cast<const QStyleOptionToolButton*>(option);
        const bool iconOnly =
            button == nullptr || button->text.isEmpty() || button->toolButtonStyle == Qt::ToolButtonIconOnly;
        // The toolkit's 4 px between glyph and word become 6; 11 px on either side.
        return {iconOnly ? size.width() + 14 : size.width() + 16, buttonHeight + extra};
    }
    case CT_MenuBarItem:
        return {size.width() + 18, menuBarHeight + extra};
    case CT_MenuItem: {
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        const bool separator = item != nullptr && item->menuItemType == QStyleOptionMenuItem::Separator;
        return separator && item->text.isEmpty() ? QSize(result.width(), separatorHeight)
                                                 : result.expandedTo(QSize(0, fieldHeight + extra));
    }
    case CT_ItemViewItem:
        return result.expandedTo(QSize(0, rowHeight + extra));
    default:
        return result;
    }
}

QIcon VelquinStyle::standardIcon(StandardPixmap pixmap, const QStyleOption* option,
                                 const QWidget* widget) const {
    const ThemeColors& colors = currentColors();
    const double ratio = widget != nullptr ? widget->devicePixelRatioF() : qGuiApp->devicePixelRatio();
    const auto alert = [&](const char16_t* name, const QColor& ink) {
        return QIcon(Pictures::tinted(QString::fromUtf16(name), ink, ratio, QSize(32, 32)));
    };
    switch (pixmap) {
    case SP_MessageBoxWarning:
        return alert(u"warn", colors.warnText);
    case SP_MessageBoxCritical:
        return alert(u"error", colors.errorText);
    case SP_MessageBoxInformation:
    case SP_MessageBoxQuestion:
        return alert(u"info", colors.text2);
    case SP_DirIcon: // of a desktop without a theme of icons
    case SP_DirClosedIcon:
    case SP_DirOpenIcon:
    case SP_DirHomeIcon:
        return Pictures::icon(QStringLiteral("folder"));
    case SP_LineEditClearButton:
        return Pictures::icon(QStringLiteral("tab_close"));
    default:
        return QProxyStyle::standardIcon(pixmap, option, widget);
    }
}
