// How a row shows its curve: colours, names, choices, faults, folding and the menu.
#include "Classes/CurvesSidebar/CCurveView.h"
#include "Classes/CurvesSidebar/CCurveViewController.h"
#include "Classes/CurvesSidebar/ColorButton.h"
#include "Classes/CurvesSidebar/ExpressionField.h"
#include "Classes/CurvesSidebar/RowPopups.h"
#include "Classes/CurvesSidebar/RowTextField.h"
#include "Classes/CurvesSidebar/SpinField.h"
#include "Classes/HoverButton/XHoverButton.h"
#include "Classes/SmallViews/XMiniProgressIndicator.h"
#include "Classes/ValueEncodings/ColorEncoding.h"
#include "Platform/Widgets/Pictures.h"
#include "Platform/Widgets/VelquinStyle.h"
#include "ui_CurveView.h"

#include <QApplication>
#include <QMenu>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QColor shownColor(const RgbaColor& color) {
    const auto channel = [](double value) { return static_cast<float>(std::clamp(value, 0.0, 1.0)); };
    return QColor::fromRgbF(channel(color.red), channel(color.green), channel(color.blue));
}

} // namespace

QString CCurveViewController::shownTitle() const {
    return m_curve->title().isEmpty() ? m_ui->curveName->placeholderText() : m_curve->title();
}

void CCurveViewController::showLook() {
    if (!m_curve)
        return;
    const RgbaColor color = m_curve->color();
    const bool isVisible = m_curve->isVisible();
    m_ui->curveName->setPlaceholderText(tr("%1 curve").arg(ColorEncoding::colorName(color)));
    m_ui->curveName->setQuiet(!isVisible);
    m_ui->visibleButton->setIcon(Pictures::icon(isVisible ? u"eye"_qs : u"eye_off"_qs));
    m_ui->colorButton->setColor(shownColor(color));
    CCurveView::Marks marks = m_view->marks();
    marks.color = shownColor(color);
    marks.isHidden = !isVisible;
    m_view->setMarks(marks);
    showNames();
}

/// A column beyond those that there are is named by its number, and stays chosen.
void CCurveViewController::showColumns() {
    m_ui->xRowPopupButton->setPlaceholderText(tr("Column %1").arg(m_curve ? m_curve->x_data_index() : 0));
    m_ui->yRowPopupButton->setPlaceholderText(tr("Column %1").arg(m_curve ? m_curve->y_data_index() : 0));
}

void CCurveViewController::showValues() {
    if (!m_curve)
        return;
    const bool hasPoints = m_curve->ticksShape() != nullptr && m_curve->ticksShape()->identifier() != 0;
    m_ui->pointSizeField->setEnabled(hasPoints);
    m_ui->pointSizeRowTextField->setEnabled(hasPoints);
    for (const Value& value : m_values) {
        const bool uses = m_curve->valueForKey(value.usesKey).toBool();
        const bool isColumn = qobject_cast<ColumnPopup*>(value.plain) != nullptr;
        value.useExpression->setImage(uses ? u"expression_enabled"_qs : u"expression_disabled"_qs);
        value.useExpression->setChecked(uses);
        value.useExpression->setToolTip(!uses      ? tr("Use an expression")
                                        : isColumn ? tr("Use a column")
                                                   : tr("Use a number"));
    }
    showSettings();
    showFaults();
    showNames();
}

void CCurveViewController::showFaults() {
    if (!m_curve)
        return;
    CCurveView::Marks marks = m_view->marks();
    QString first;
    for (std::size_t i = 0; i < m_values.size(); ++i) {
        const Value& value = m_values[i];
        const QString reason = m_curve->valueForKey(value.errorKey).toString();
        VelquinStyle::setFault(*value.expression, reason);
        marks.isFaulty[i] = !reason.isEmpty();
        if (!reason.isEmpty())
            value.progress->setPercentage(0); // what ended with an error does not go on
        if (first.isEmpty() && !reason.isEmpty())
            first = tr("%1, %2: %3").arg(shownTitle(), value.name, reason);
    }
    m_view->setMarks(marks);
    if (first == fault())
        return;
    setFault(first);
    Q_EMIT faultChanged(first);
}

void CCurveViewController::showNames() {
    const QString of = shownTitle();
    const auto name = [&of](QWidget* control, const QString& text) {
        control->setAccessibleName(text.arg(of));
    };
    name(m_deleteButton, tr("Remove this curve, %1"));
    name(m_ui->curveName, tr("Name in the legend of %1"));
    name(m_ui->foldButton, tr("Show or hide the settings of %1"));
    name(m_ui->visibleButton, m_curve->isVisible() ? tr("Hide the curve %1") : tr("Show the curve %1"));
    name(m_ui->dataSourcesPopupButton, tr("Data source of %1"));
    name(m_ui->colorButton, tr("Colour of %1"));
    name(m_ui->randomColorButton, tr("Another colour for %1"));
    name(m_ui->lineWidthField, tr("Line width of %1"));
    name(m_ui->opacityField, tr("Opacity of %1"));
    name(m_ui->shapePopupButton, tr("Point shape of %1"));
    name(m_ui->nextShapeButton, tr("Next shape for %1"));
    for (const Value& value : m_values) {
        const bool isColumn = qobject_cast<ColumnPopup*>(value.plain) != nullptr;
        const QString plain = isColumn ? tr("%1 column of %2") : tr("Point size of %2");
        value.plain->setAccessibleName(isColumn ? plain.arg(value.name, of) : plain.arg(of));
        value.expression->setAccessibleName(tr("Expression for %1 of %2").arg(value.name, of));
        value.useExpression->setAccessibleName(tr("Use an expression for %1 of %2").arg(value.name, of));
        value.progress->setAccessibleName(tr("Evaluation of %1 of %2").arg(value.name, of));
    }
}

// Folding and the menu

bool CCurveViewController::isFolded() const {
    return m_view != nullptr && m_view->isFolded();
}

void CCurveViewController::setFolded(bool folded) {
    if (folded == isFolded())
        return;
    const QWidget* focus = QApplication::focusWidget();
    if (folded && focus != m_ui->curveName && focus != m_ui->visibleButton && m_view->isAncestorOf(focus))
        m_ui->foldButton->setFocus();
    m_view->setFolded(folded);
    showSettings();
    Q_EMIT heightChanged();
}

/// Of a column or number and its expression one is there, and none of the settings while the row is folded.
void CCurveViewController::showSettings() {
    const bool open = !isFolded();
    for (QWidget* setting : std::initializer_list<QWidget*>{
             m_ui->dataSourcesPopupButton, m_ui->colorButton, m_ui->randomColorButton, m_ui->lineWidthField,
             m_ui->opacityField, m_ui->shapePopupButton, m_ui->nextShapeButton})
        setting->setVisible(open);
    for (const Value& value : m_values) {
        const bool uses = m_curve && m_curve->valueForKey(value.usesKey).toBool();
        QWidget* shown = uses ? value.expression : value.plain;
        QWidget* other = uses ? value.plain : value.expression;
        shown->setVisible(open);
        if (other->hasFocus())
            shown->setFocus();
        other->hide();
        value.progress->setVisible(open && uses);
        value.useExpression->setVisible(open);
    }
    m_ui->foldButton->setIcon(Pictures::icon(open ? u"chev"_qs : u"chevr"_qs));
}

QMenu* CCurveViewController::makeMenu() {
    auto* menu = new QMenu(m_view);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    const bool isVisible = m_curve && m_curve->isVisible();
    const bool folded = isFolded();
    menu->addAction(isVisible ? tr("Hide") : tr("Show"), m_ui->visibleButton, &QAbstractButton::click);
    menu->addAction(folded ? tr("Unfold") : tr("Fold"), this, [this, folded] { setFolded(!folded); });
    menu->addAction(folded ? tr("Unfold All") : tr("Fold All"), this, [this, folded] {
        if (m_delegate != nullptr)
            m_delegate->foldAll(!folded);
    });
    menu->addSeparator();
    menu->addAction(tr("Remove Curve"), this, &CCurveViewController::onDeleteCurve);
    return menu;
}

void CCurveViewController::openMenu(const QPoint& globalPosition) {
    makeMenu()->popup(globalPosition);
}
