// How an expression is typed.
#include "Classes/CurvesSidebar/ExpressionField.h"

#include <QFontDatabase>
#include <QStyleOptionFrame>

namespace {

constexpr int fontPixels = 12;

} // namespace

ExpressionField::ExpressionField(QWidget* parent) : RowTextField(parent) {
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPixelSize(fontPixels);
    setFont(font);
}

void ExpressionField::setBed(int pixels) {
    m_bed = pixels;
    setMask(boxOf(rect()));
}

void ExpressionField::initStyleOption(QStyleOptionFrame* option) const {
    RowTextField::initStyleOption(option);
    option->rect = boxOf(option->rect);
}

void ExpressionField::resizeEvent(QResizeEvent* event) {
    RowTextField::resizeEvent(event);
    setMask(boxOf(rect()));
}
