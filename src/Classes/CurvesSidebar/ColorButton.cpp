// The swatch and its dialog.
#include "Classes/CurvesSidebar/ColorButton.h"

#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/StylePainting.h"

#include <QColorDialog>
#include <QPainter>

namespace {

constexpr int swatchMargin = 4;
constexpr double swatchRadius = 2;

} // namespace

ColorButton::ColorButton(QWidget* parent) : QPushButton(parent) {
    setAutoDefault(false);
    connect(this, &QAbstractButton::clicked, this, &ColorButton::chooseColor);
}

void ColorButton::setColor(const QColor& color) {
    m_color = color;
    update();
}

QColorDialog* ColorButton::dialog() const {
    return m_dialog;
}

void ColorButton::chooseColor() {
    if (m_dialog != nullptr)
        return;
    m_dialog = new QColorDialog(m_color, this);
    m_dialog->setOption(QColorDialog::DontUseNativeDialog);
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_dialog->setWindowTitle(accessibleName());
    connect(m_dialog, &QColorDialog::currentColorChanged, this, &ColorButton::colorTried);
    connect(m_dialog, &QDialog::finished, this,
            [this](int result) { Q_EMIT choiceEnded(result == QDialog::Accepted); });
    Q_EMIT choiceBegan();
    m_dialog->open();
}

void ColorButton::paintEvent(QPaintEvent* event) {
    QPushButton::paintEvent(event);
    QPainter painter(this);
    const QRectF swatch = QRectF(rect()).adjusted(swatchMargin, swatchMargin, -swatchMargin, -swatchMargin);
    painter.setOpacity(isEnabled() ? 1 : 0.5);
    StylePainting::drawBox(painter, swatch, swatchRadius, m_color, {});
    StylePainting::drawBox(painter, swatch, swatchRadius, {}, currentColors().edge);
}
