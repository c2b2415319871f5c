// A pop-up whose box is smaller than its frame, and one that shows pictures.
#include "Classes/CurvesSidebar/RowPopups.h"

#include "Classes/PlotModel/XCurve.h"
#include "Classes/PlotView/XPointsLibrary.h"
#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/Pictures.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QStyleOptionComboBox>
#include <QToolTip>

#include <algorithm>

namespace {

constexpr int besideText = 30; ///< margins and chevron
constexpr int besideItems = 8; ///< what a list is wider than its items
constexpr int widestList = 420;
constexpr int mostMeasured = 1000; ///< items; beyond, the list is as wide as the box

QString pictureOf(const XGraphPointDescription& shape) {
    return QLatin1String("shape_") + shape.displayName().toLower();
}

void widenList(const QComboBox& box) {
    if (box.count() <= mostMeasured)
        box.view()->setMinimumWidth(std::min(box.view()->sizeHintForColumn(0) + besideItems, widestList));
}

} // namespace

RowPopup::RowPopup(QWidget* parent) : QComboBox(parent) {
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
}

void RowPopup::showPopup() {
    view()->setTextElideMode(Qt::ElideMiddle);
    widenList(*this);
    QComboBox::showPopup();
}

bool RowPopup::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QComboBox::event(event);
    QStyleOptionComboBox option;
    initStyleOption(&option);
    const bool isElided = fontMetrics().horizontalAdvance(currentText()) > option.rect.width() - besideText;
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), isElided ? currentText() : toolTip(),
                       this);
    return true;
}

void ColumnPopup::setChoices(const QStringList& names) {
    if (names == m_names)
        return;
    m_names = names;
    clear();
    addItems(names);
}

void ColumnPopup::initStyleOption(QStyleOptionComboBox* option) const {
    RowPopup::initStyleOption(option);
    option->rect = boxOf(option->rect);
}

void ColumnPopup::resizeEvent(QResizeEvent* event) {
    RowPopup::resizeEvent(event);
    setMask(boxOf(rect()));
}

ShapePopup::ShapePopup(QWidget* parent) : QComboBox(parent) {
    for (const XGraphPointDescription& shape : XPointsLibrary::sharedLibrary().pointDescriptions())
        addItem(Pictures::icon(pictureOf(shape)), shape.displayName(),
                QVariant::fromValue(XPointShape(&shape)));
}

void ShapePopup::showPopup() {
    widenList(*this);
    QComboBox::showPopup();
}

void ShapePopup::initStyleOption(QStyleOptionComboBox* option) const {
    QComboBox::initStyleOption(option);
    const auto* const shape = currentData().value<XPointShape>();
    if (shape != nullptr && shape->identifier() == 0) // nothing is drawn, and it says so quietly
        option->currentIcon = Pictures::tinted(pictureOf(*shape), currentColors().text3, devicePixelRatioF());
}
