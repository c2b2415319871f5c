// Follows one curve, and edits its title in a field over the drawing.
#include "Classes/PlotView/XGraphLegendItemView.h"

#include "Classes/PlotView/InPlaceField.h"
#include "Classes/PlotView/LegendDrawing.h"
#include "Classes/PlotView/PainterCanvas.h"
#include "Platform/Widgets/ThemeColors.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr const char* shownKeys[] = {"title",      "color",     "colorAlpha",
                                     "ticksShape", "ticksSize", "pointsize_uses_expression",
                                     "lineWidth",  "isVisible"};

constexpr int fieldMargin = 2; ///< of a line edit, at either side of its text
constexpr int cursorRoom = 2;  ///< behind the text, for the insertion mark
constexpr int leastField = 12;

/// The row draws the title until it is edited, as pictures do.
class LegendTitleField : public InPlaceField {
  public:
    explicit LegendTitleField(QWidget* parent) : InPlaceField(parent) {
        setFont(plotFont(TextRole::TickLabel));
        // The card is white in every theme.
        setPalette(themePalette(Theme::Light));
        setTextMargins(0, 0, 0, 0);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        connect(this, &InPlaceField::editingBegan, this,
                [this] { setAttribute(Qt::WA_TransparentForMouseEvents, false); });
        connect(this, &InPlaceField::editingEnded, this,
                [this] { setAttribute(Qt::WA_TransparentForMouseEvents); });
    }

  protected:
    void paintAtRest(PlotCanvas&) override {}
};

} // namespace

XGraphLegendItemView::XGraphLegendItemView(XGraphLegendItemViewDelegate* delegate, QWidget* parent)
    : QWidget(parent), m_delegate(delegate), m_textLabel(new LegendTitleField(this)) {
    m_textLabel->setToolTip(tr("Name in the legend"));
    connect(m_textLabel, &QLineEdit::textEdited, this, &XGraphLegendItemView::titleEdited);
    connect(m_textLabel, &InPlaceField::editingBegan, this, [this] { update(); });
    connect(m_textLabel, &InPlaceField::editingEnded, this, &XGraphLegendItemView::editingEnded);
    // What the menu does, undoing maybe, is a step of its own.
    connect(m_textLabel, &InPlaceField::interrupted, this, [this] { editingEnded(true); });
    connect(m_textLabel, &InPlaceField::left, this, [this] { m_delegate->titleWasLeft(); });
}

XGraphLegendItemView::~XGraphLegendItemView() {
    setCurve(nullptr);
}

void XGraphLegendItemView::setCurve(XCurveHandle curve) {
    m_observation.end();
    if (std::exchange(m_hasChanged, false))
        m_delegate->titleChangesEnded(true);
    m_curve = std::move(curve);
    if (!m_curve)
        return;
    m_observation = Observation(*m_curve, shownKeys, [this](const KeyChange&) { updateUI(); });
    updateUI();
}

QLineEdit* XGraphLegendItemView::textLabel() const {
    return m_textLabel;
}

bool XGraphLegendItemView::inFocus() const {
    return m_textLabel->isEditing();
}

bool XGraphLegendItemView::isOnTitle(QPoint position) const {
    return rect().contains(position) && position.x() >= m_textLabel->x();
}

void XGraphLegendItemView::beginEditing() {
    m_textLabel->setFocus(Qt::MouseFocusReason);
    m_textLabel->selectAll();
}

void XGraphLegendItemView::titleEdited(const QString& text) {
    if (!m_curve || text == m_curve->title())
        return;
    if (!std::exchange(m_hasChanged, true)) {
        m_titleBefore = m_curve->title();
        m_delegate->titleWillChange();
    }
    m_curve->setTitle(text);
}

void XGraphLegendItemView::editingEnded(bool kept) {
    if (std::exchange(m_hasChanged, false)) {
        if (!kept)
            m_curve->setTitle(m_titleBefore);
        m_delegate->titleChangesEnded(kept);
    }
    updateUI();
}

void XGraphLegendItemView::updateUI() {
    if (!m_curve)
        return;
    const bool isListed = inFocus() || LegendDrawing::isListed(*m_curve);
    m_textLabel->setReadOnly(!isListed);
    m_textLabel->setFocusPolicy(isListed ? Qt::StrongFocus : Qt::NoFocus);
    if (isListed)
        placeLabel();
    else
        m_frame = {};
    setVisible(isListed);
    update();
    m_delegate->itemWasUpdated(*this);
}

void XGraphLegendItemView::placeLabel() {
    const QString title = m_curve->title();
    if (m_textLabel->text() != title)
        m_textLabel->setText(title);
    m_textLabel->setAccessibleName(tr("Title of %1 in the legend").arg(title));
    const FontTextMeasure measure;
    const double textWidth = LegendDrawing::titleRect({}, title, measure).width();
    const int width = std::max(leastField, static_cast<int>(std::ceil(textWidth)));
    constexpr int height = static_cast<int>(LegendDrawing::rowHeight);
    constexpr int x = static_cast<int>(LegendDrawing::titleX);
    m_textLabel->setGeometry(x - fieldMargin, 0, width + 2 * fieldMargin + cursorRoom, height);
    m_frame.setSize({x + width + static_cast<int>(LegendDrawing::spacing), height});
    resize(m_frame.size());
}

void XGraphLegendItemView::paintEvent(QPaintEvent*) {
    if (!m_curve)
        return;
    QPainter painter(this);
    PainterCanvas canvas(painter, height());
    LegendDrawing::drawSample(canvas, {LegendDrawing::spacing, 0}, *m_curve);
    if (!inFocus())
        LegendDrawing::drawTitle(canvas, {0, 0}, m_curve->title(), FontTextMeasure());
}
