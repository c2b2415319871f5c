// The cells, and the group that keeps one of them on.
#include "Classes/SmallViews/PlacePicker.h"

#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/StylePainting.h"
#include "Platform/Widgets/VelquinStyle.h"

#include <QButtonGroup>
#include <QGridLayout>
#include <QPainter>
#include <QRadioButton>

#include <algorithm>

namespace {

constexpr int columns = 3;
constexpr QSize cellSize{24, 16};
constexpr int gap = 2;
constexpr double radius = 2;
constexpr int ringRoom = 4; ///< between the focus ring and the fill

class PlaceCell : public QRadioButton {
  public:
    PlaceCell(const QString& name, QWidget* parent) : QRadioButton(parent) {
        setFixedSize(cellSize);
        setToolTip(name);
        setAccessibleName(name);
    }

  protected:
    bool hitButton(const QPoint& position) const override { return rect().contains(position); }

    void paintEvent(QPaintEvent*) override {
        using namespace StylePainting;
        QPainter painter(this);
        const ThemeColors& colors = currentColors();
        const QColor edge = !isEnabled() ? colors.line : isChecked() ? colors.accent : colors.edge2;
        drawBox(painter, rect(), radius, isEnabled() ? colors.field : QColor(), edge);
        const int inset = hasFocus() ? ringRoom : 0;
        if (isChecked())
            drawBox(painter, rect().adjusted(inset, inset, -inset, -inset), hasFocus() ? 1 : radius,
                    isEnabled() ? colors.accent : colors.disabled, {});
        if (isEnabled() && (underMouse() || isDown()))
            drawBox(painter, rect(), radius, isDown() ? colors.pressed : colors.hover, {});
        if (hasFocus())
            drawRing(painter, rect(), radius, 2, colors.accent);
    }
};

} // namespace

PlacePicker::PlacePicker(QWidget* parent) : QWidget(parent), m_cells(new QButtonGroup(this)) {
    VelquinStyle::setFocusRingInside(*this);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setSpacing(gap);
    const QString names[count] = {tr("Top left"),    tr("Top middle"),    tr("Top right"),
                                  tr("Middle left"), tr("Middle"),        tr("Middle right"),
                                  tr("Bottom left"), tr("Bottom middle"), tr("Bottom right")};
    for (int place = 0; place < count; ++place) {
        auto* cell = new PlaceCell(names[place], this);
        m_cells->addButton(cell, place);
        grid->addWidget(cell, place / columns, place % columns);
    }
    connect(m_cells, &QButtonGroup::idClicked, this, &PlacePicker::placeChosen);
    connect(m_cells, &QButtonGroup::idToggled, this, &PlacePicker::chooseTabStop);
    chooseTabStop();
}

/// The cell that is on, or the first.
void PlacePicker::chooseTabStop() {
    const int stop = std::max(0, place());
    for (int each = 0; each < count; ++each)
        m_cells->button(each)->setFocusPolicy(each == stop ? Qt::StrongFocus : Qt::ClickFocus);
}

int PlacePicker::place() const {
    return m_cells->checkedId();
}

void PlacePicker::setPlace(int place) {
    if (QAbstractButton* cell = m_cells->button(place)) {
        cell->setChecked(true);
    } else if (QAbstractButton* checked = m_cells->checkedButton()) {
        m_cells->setExclusive(false);
        checked->setChecked(false);
        m_cells->setExclusive(true);
    }
}
