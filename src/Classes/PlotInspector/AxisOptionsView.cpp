// Ties the controls to the keys of their axis.
#include "Classes/PlotInspector/AxisOptionsView.h"

#include "Classes/Axes/XAxisManager.h"
#include "MoxDocument.h"
#include "Platform/Widgets/Binding.h"
#include "Platform/Widgets/ThemeColors.h"
#include "ui_AxisOptionsView.h"

#include <utility>

namespace {

constexpr int rangeRow = 3;

QVariant dataOf(const XAxisInfo& kind) {
    return QVariant::fromValue<XAxisKind>(&kind);
}

} // namespace

AxisOptionsView::AxisOptionsView(QWidget* parent)
    : QWidget(parent), m_ui(std::make_unique<Ui::AxisOptionsView>()) {
    m_ui->setupUi(this);
    QFont bold = m_ui->head->font();
    bold.setBold(true);
    m_ui->head->setFont(bold);
    for (QLabel* label : {m_ui->titleLabel, m_ui->kindLabel, m_ui->rangeLabel, m_ui->toLabel})
        label->setForegroundRole(labelRole);
    for (const XAxisInfo& kind : XAxisManager::sharedManager().axisTypes())
        m_ui->kindBox->addItem(kind.title(), dataOf(kind));
    for (const AxisLimitField* field : {m_ui->fromField, m_ui->toField})
        connect(field, &AxisLimitField::refused, this, &AxisOptionsView::refused);
    setDocument(nullptr);
}

AxisOptionsView::~AxisOptionsView() = default;

void AxisOptionsView::setAxis(const AxisKeys& keys, const Names& names) {
    m_keys = keys;
    m_kindKey = {keys.kind};
    m_ui->head->setText(names.axis);
    m_ui->originBox->setText(names.origin);
    m_ui->gridLinesBox->setText(names.gridLines);
    const std::pair<QWidget*, QString> accessible[] = {
        {m_ui->titleField, tr("%1 title")},     {m_ui->kindBox, tr("%1 kind")},
        {m_ui->fromField, tr("%1 range from")}, {m_ui->toField, tr("%1 range to")},
        {m_ui->originBox, names.origin},        {m_ui->gridLinesBox, names.gridLines}};
    for (const auto& [control, name] : accessible)
        control->setAccessibleName(name.contains(QLatin1String("%1")) ? name.arg(names.axis) : name);
}

void AxisOptionsView::setDocument(MoxDocument* document) {
    m_ui->fromField->setDocument(document, m_keys, RangeEnd::From);
    m_ui->toField->setDocument(document, m_keys, RangeEnd::To);
    m_kind.end();
    if (document == nullptr) {
        for (QWidget* control : std::initializer_list<QWidget*>{m_ui->titleField, m_ui->kindBox,
                                                                m_ui->originBox, m_ui->gridLinesBox})
            unbind(control);
        m_ui->titleField->clear();
        m_ui->kindBox->setCurrentIndex(-1);
        m_ui->originBox->setChecked(false);
        m_ui->gridLinesBox->setChecked(false);
        arrangeRange(false);
        return;
    }
    bind(m_ui->titleField, *document, m_keys.title);
    bindCurrentData(m_ui->kindBox, *document, m_keys.kind);
    bind(m_ui->originBox, *document, m_keys.origin);
    bind(m_ui->gridLinesBox, *document, m_keys.gridLines);
    const auto arrange = [this](const QVariant& kind) {
        const auto* present = kind.value<XAxisKind>();
        arrangeRange(present != nullptr && AxisLimitField::takesDates(*present));
    };
    m_kind =
        Observation(*document, m_kindKey, [arrange](const KeyChange& change) { arrange(change.newValue); });
    arrange(document->valueForKey(m_keys.kind));
}

/// Dates have a line each, numbers stand side by side.
void AxisOptionsView::arrangeRange(bool dates) {
    QGridLayout& grid = *m_ui->grid;
    for (QWidget* widget : std::initializer_list<QWidget*>{m_ui->fromField, m_ui->toLabel, m_ui->toField})
        grid.removeWidget(widget);
    grid.addWidget(m_ui->fromField, rangeRow, 1, 1, dates ? 3 : 1);
    if (dates) {
        grid.addWidget(m_ui->toLabel, rangeRow + 1, 0);
        grid.addWidget(m_ui->toField, rangeRow + 1, 1, 1, 3);
    } else {
        grid.addWidget(m_ui->toLabel, rangeRow, 2);
        grid.addWidget(m_ui->toField, rangeRow, 3);
    }
    m_ui->toLabel->setIndent(dates ? m_ui->rangeLabel->indent() : 0);
}
