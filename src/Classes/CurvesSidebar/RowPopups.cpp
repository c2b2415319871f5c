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

namespace {

constexpr int besideText = 30; ///< margins and chevron
constexpr int besideItems = 8; ///< what a list is wider than its items

QString pictureOf(const XGraphPointDescription& shape) {
    return QLatin1String("shape_") + shape.displayName().toLower();
}

} // namespace

ColumnPopup::ColumnPopup(QWidget* parent) : QComboBox(parent) {
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
}

void ColumnPopup::setChoices(const QStringList& names) {
    if (names == m_names)
        return;
    m_names = names;
    clear();
    addItems(names);
}

void ColumnPopup::initStyleOption(QStyleOptionComboBox* option) const {
    QComboBox::initStyleOption(option);
    option->rect = boxOf(option->rect);
}

void ColumnPopup::resizeEvent(QResizeEvent* event) {
    QComboBox::resizeEvent(event);
    setMask(boxOf(rect()));
}

bool ColumnPopup::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip &&
        fontMetrics().horizontalAdvance(currentText()) > boxOf(rect()).width() - besideText) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), currentText(), this);
        return true;
    }
    return QComboBox::event(event);
}

ShapePopup::ShapePopup(QWidget* parent) : QComboBox(parent) {
    for (const XGraphPointDescription& shape : XPointsLibrary::sharedLibrary().pointDescriptions())
        addItem(Pictures::icon(pictureOf(shape)), shape.displayName(),
                QVariant::fromValue(XPointShape(&shape)));
}

void ShapePopup::showPopup() {
    view()->setMinimumWidth(view()->sizeHintForColumn(0) + besideItems);
    QComboBox::showPopup();
}

void ShapePopup::initStyleOption(QStyleOptionComboBox* option) const {
    QComboBox::initStyleOption(option);
    const auto shape = currentData().value<XPointShape>();
    if (shape != nullptr && shape->identifier() == 0) // nothing is drawn, and it says so quietly
        option->currentIcon = Pictures::tinted(pictureOf(*shape), currentColors().text3, devicePixelRatioF());
}
