// A row's set-up, its bindings to a curve, and what its buttons do.
#include "Classes/CurvesSidebar/CCurveViewController.h"

#include "Classes/CurvesSidebar/CCurveView.h"
#include "Classes/CurvesSidebar/ColorButton.h"
#include "Classes/CurvesSidebar/ExpressionField.h"
#include "Classes/CurvesSidebar/RowPopups.h"
#include "Classes/CurvesSidebar/RowTextField.h"
#include "Classes/CurvesSidebar/SpinField.h"
#include "Classes/HoverButton/XHoverButton.h"
#include "Classes/PlotView/XPointsLibrary.h"
#include "Classes/SmallViews/XMiniProgressIndicator.h"
#include "Classes/ValueEncodings/ColorEncoding.h"
#include "EmbeddedPlugins/TextEditor/XPTextEditor.h"
#include "Platform/Widgets/Binding.h"
#include "Platform/Widgets/Pictures.h"
#include "Platform/Widgets/VelquinStyle.h"
#include "ui_CurveView.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QMenu>
#include <QRandomGenerator>

#include <algorithm>
#include <cstring>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr int bedOfProgress = 3; ///< free pixels under the box of a column or its expression
constexpr int sizeOfNewPoints = 4;
constexpr QRect closeButtonFrame(4, 4, 13, 13);

/// The keys that are shown by more than the control that is bound to them.
constexpr const char* rowKeys[] = {"color",
                                   "title",
                                   "isVisible",
                                   "dataSource",
                                   "ticksShape",
                                   "x_data_index",
                                   "y_data_index",
                                   "x_uses_expression",
                                   "y_uses_expression",
                                   "pointsize_uses_expression",
                                   "xExpressionError",
                                   "yExpressionError",
                                   "pointsizeExpressionError"};

bool isOneOf(const char* key, std::initializer_list<const char*> keys) {
    return std::any_of(keys.begin(), keys.end(), [&](const char* k) { return std::strcmp(k, key) == 0; });
}

/// The curve's source as its place in the list, -1 for none.
ValueTransform placeIn(const QPointer<ArrangedObjects>& list) {
    return {[list](const QVariant& source) -> QVariant {
                if (list == nullptr)
                    return -1;
                const auto objects = list->objects();
                const auto found = std::find(objects.begin(), objects.end(), source.value<XDataSource>());
                return found == objects.end() ? -1 : static_cast<int>(found - objects.begin());
            },
            [list](const QVariant& place) -> std::optional<QVariant> {
                const auto index = static_cast<std::size_t>(place.toInt());
                if (list == nullptr || index >= list->objects().size())
                    return std::nullopt;
                return QVariant::fromValue(list->objects()[index]);
            },
            {}};
}

} // namespace

CCurveViewController::CCurveViewController(ArrangedObjects& dataSources,
                                           CCurveViewControllerDelegate* delegate, QObject* parent)
    : XViewController(parent), m_dataSources(&dataSources), m_delegate(delegate),
      m_graphPointsLibrary(XPointsLibrary::sharedLibrary()), m_ui(std::make_unique<Ui::CurveView>()),
      m_view(new CCurveView) {
    m_ui->setupUi(m_view);
    // A row may outlive its view for a moment, and then shows nothing any more.
    connect(m_view, &QObject::destroyed, this, [this] {
        m_curveObservation.end();
        m_registrations = {};
    });
    m_values = {
        {{u"x"_qs, m_ui->xRowPopupButton, m_ui->xRowTextField, m_ui->xUseExpressionButton,
          m_ui->xExpressionProgress, "x_uses_expression", "x_data_expression", "xExpressionError",
          "xExpressionProgress"},
         {u"y"_qs, m_ui->yRowPopupButton, m_ui->yRowTextField, m_ui->yUseExpressionButton,
          m_ui->yExpressionProgress, "y_uses_expression", "y_data_expression", "yExpressionError",
          "yExpressionProgress"},
         {tr("point size"), m_ui->pointSizeField, m_ui->pointSizeRowTextField,
          m_ui->pointsizeUseExpressionButton, m_ui->pointsizeExpressionProgress, "pointsize_uses_expression",
          "pointsize_data_expression", "pointsizeExpressionError", "pointsizeExpressionProgress"}}};
    awakeFromNib();
}

CCurveViewController::~CCurveViewController() {
    endGesture();
    delete m_view.data();
}

QWidget* CCurveViewController::view() {
    return m_view;
}

// Set-up

void CCurveViewController::awakeFromNib() {
    auto& center = NotificationCenter::defaultCenter();
    std::size_t next = 0;
    for (const char* name : {Notifications::dataSourceWasRemoved, Notifications::dataSourceWasAdded,
                             Notifications::dataSourceUpdated})
        m_registrations[next++] = center.observe(name, nullptr, [this](QObject*) { dataSourceUpdated(); });

    for (const Value& value : m_values) {
        if (qobject_cast<ColumnPopup*>(value.plain) != nullptr) {
            value.expression->setGeometry(ExpressionField::frameOver(value.plain->geometry()));
            value.expression->setBed(bedOfProgress);
        }
        value.expression->hide();
        value.useExpression->setImage(
            u"expression_disabled"_qs); // the view may be shown before it has a curve
        value.progress->raise();
    }
    createCloseButton();
    m_view->setSharers(m_ui->lineWidthField, m_ui->opacityField);
    m_view->takeFrames();
    VelquinStyle::setFocusRingInside(*m_view);
    m_ui->dataSourcesPopupButton->setModel(m_dataSources);
    m_ui->dataSourcesPopupButton->setPlaceholderText(tr("No data source"));
    m_ui->randomColorButton->setIcon(Pictures::icon(u"dice"_qs));
    m_ui->nextShapeButton->setIcon(Pictures::icon(u"next"_qs));
    connectControls();
    createActions();
    dataSourceUpdated();
}

void CCurveViewController::createCloseButton() {
    m_deleteButton = new XHoverButton(m_view);
    m_deleteButton->setImage(u"tab_close"_qs);
    m_deleteButton->setAlternateImage(u"tab_close_pressed"_qs);
    m_deleteButton->setFocusPolicy(Qt::NoFocus);
    m_deleteButton->setGeometry(closeButtonFrame);
    m_deleteButton->setToolTip(tr("Remove this curve"));
    m_deleteButton->setObjectName("deleteButton");
    connect(m_deleteButton, &QAbstractButton::clicked, this, &CCurveViewController::onDeleteCurve);
}

void CCurveViewController::connectControls() {
    connect(m_ui->foldButton, &QAbstractButton::clicked, this, [this] { setFolded(!isFolded()); });
    connect(m_ui->visibleButton, &QAbstractButton::clicked, this, [this] {
        if (m_curve)
            m_curve->setIsVisible(!m_curve->isVisible());
    });
    connect(m_ui->randomColorButton, &QAbstractButton::clicked, this, &CCurveViewController::randomizeColor);
    connect(m_ui->nextShapeButton, &QAbstractButton::clicked, this, &CCurveViewController::randomizePoints);
    connect(m_ui->xUseExpressionButton, &QAbstractButton::clicked, this,
            &CCurveViewController::onChangeXRowType);
    connect(m_ui->yUseExpressionButton, &QAbstractButton::clicked, this,
            &CCurveViewController::onChangeYRowType);
    connect(m_ui->pointsizeUseExpressionButton, &QAbstractButton::clicked, this,
            &CCurveViewController::onChangePointSizeRowType);
    connect(m_ui->shapePopupButton, &QComboBox::activated, this, [this] { shapeChosen(); });
    for (const SpinField* field : numberFields()) {
        connect(field, &SpinField::burstBegan, this, [this] { beginGesture(); });
        connect(field, &SpinField::burstEnded, this, [this] { endGesture(); });
    }
    connect(m_ui->colorButton, &ColorButton::choiceBegan, this, [this] {
        m_colorBeforeChoice = m_curve ? m_curve->color() : RgbaColor();
        beginGesture();
    });
    connect(m_ui->colorButton, &ColorButton::colorTried, this, &CCurveViewController::chooseColor);
    connect(m_ui->colorButton, &ColorButton::choiceEnded, this, &CCurveViewController::endColorChoice);
}

void CCurveViewController::createActions() {
    const auto addKey = [this](const QKeySequence& keys, auto slot) {
        auto* action = new QAction(m_view);
        action->setShortcut(keys);
        action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
        connect(action, &QAction::triggered, this, slot);
        m_view->addAction(action);
    };
    addKey(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_Delete), &CCurveViewController::onDeleteCurve);
    addKey(QKeySequence(Qt::SHIFT | Qt::Key_F10),
           [this] { openMenu(m_view->mapToGlobal(m_ui->curveName->geometry().bottomLeft())); });
    m_view->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(m_view, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& position) { openMenu(m_view->mapToGlobal(position)); });
}

// The curve

void CCurveViewController::setCurve(XCurveHandle curve) {
    endGesture();
    m_curveObservation.end();
    unbindControls();
    m_curve = std::move(curve);
    if (m_curve) {
        m_curveObservation =
            Observation(*m_curve, rowKeys, [this](const KeyChange& change) { curveChanged(change.key); });
        dataSourceUpdated();
        bindControls(*m_curve);
    }
    m_view->setEnabled(m_curve != nullptr);
    dataSourceUpdated();
    showLook();
    showValues();
}

void CCurveViewController::bindControls(XCurve& curve) {
    bind(m_ui->curveName, curve, "title");
    bind(m_ui->dataSourcesPopupButton, curve, "dataSource", placeIn(m_dataSources));
    bind(m_ui->xRowPopupButton, curve, "x_data_index");
    bind(m_ui->yRowPopupButton, curve, "y_data_index");
    bind(m_ui->lineWidthField, curve, "lineWidth");
    bind(m_ui->opacityField, curve, "colorAlpha", percentOfOne());
    bindCurrentData(m_ui->shapePopupButton, curve, "ticksShape");
    bind(m_ui->pointSizeField, curve, "ticksSize");
    for (const Value& value : m_values) {
        bind(value.expression, curve, value.expressionKey);
        follow(value.progress, curve, value.progressKey, [progress = value.progress](const QVariant& done) {
            progress->setPercentage(done.toFloat());
        });
    }
}

void CCurveViewController::unbindControls() {
    for (QWidget* control : controlsInTabOrder())
        unbind(control);
    for (const Value& value : m_values)
        unbind(value.progress);
}

void CCurveViewController::curveChanged(const char* key) {
    if (isOneOf(key, {"color", "title", "isVisible"}))
        showLook();
    else if (isOneOf(key, {"dataSource"}))
        dataSourceUpdated();
    else if (isOneOf(key, {"x_data_index", "y_data_index"}))
        showColumns();
    else if (isOneOf(key, {"xExpressionError", "yExpressionError", "pointsizeExpressionError"}))
        showFaults();
    else
        showValues();
}

void CCurveViewController::dataSourceUpdated() {
    const XDataSource source = m_curve ? m_curve->dataSource() : nullptr;
    m_availableColumns = source ? source->columnNames() : QStringList();
    for (const Value& value : m_values) {
        if (auto* popup = qobject_cast<ColumnPopup*>(value.plain)) {
            popup->setChoices(m_availableColumns);
            popup->setEnabled(!m_availableColumns.isEmpty());
        }
        value.expression->setColumnNames(m_availableColumns.mid(1));
    }
    showColumns();
    CCurveView::Marks marks = m_view->marks();
    const bool isEditor = source && source->pluginIdentifier() == QLatin1String(XPTextEditor::identifier);
    marks.sourceGlyph = isEditor ? u"editor"_qs : u"file"_qs;
    m_view->setMarks(marks);
}

// What the controls do

void CCurveViewController::onChangeXRowType() {
    changeType(Which::X);
}
void CCurveViewController::onChangeYRowType() {
    changeType(Which::Y);
}
void CCurveViewController::onChangePointSizeRowType() {
    changeType(Which::PointSize);
}

void CCurveViewController::changeType(Which which) {
    const Value& value = m_values[static_cast<std::size_t>(which)];
    if (!m_curve)
        return;
    m_curve->setValueForKey(value.usesKey, !m_curve->valueForKey(value.usesKey).toBool());
    if (value.expression->isVisible()) // who switches an expression on means to type one
        value.expression->setFocus(Qt::OtherFocusReason);
}

void CCurveViewController::randomizeColor() {
    if (!m_curve)
        return;
    const RgbaColor color = m_curve->color();
    const RgbaColor::Hsb hsb = color.hsb();
    double hue = hsb.hue + 0.2 + QRandomGenerator::global()->bounded(100) / 1000.0;
    if (hue > 1)
        hue -= 1;
    m_curve->setColor(RgbaColor::fromHsb(hue, hsb.saturation, hsb.brightness, color.alpha));
}

void CCurveViewController::randomizePoints() {
    if (!m_curve)
        return;
    const XPointShape next = m_graphPointsLibrary.nextPointDescription(m_curve->ticksShape());
    m_curve->setTicksShape(next);
    m_curve->setTicksSize(next->identifier() != 0 ? sizeOfNewPoints : 0);
}

/// Points of no size cannot be seen: a marker that is chosen gets the size that `randomizePoints` gives.
void CCurveViewController::shapeChosen() {
    if (m_curve && m_curve->ticksShape()->identifier() != 0 && m_curve->ticksSize() == 0 &&
        !m_curve->pointsize_uses_expression())
        m_curve->setTicksSize(sizeOfNewPoints);
}

void CCurveViewController::onDeleteCurve() {
    if (m_delegate != nullptr && m_curve)
        m_delegate->curveRemoved(XCurveHandle(m_curve));
}

void CCurveViewController::chooseColor(const QColor& color) {
    if (!m_curve)
        return;
    const auto channel = [](float value) { return static_cast<double>(value); };
    m_curve->setColor(
        {channel(color.redF()), channel(color.greenF()), channel(color.blueF()), m_colorBeforeChoice.alpha});
}

void CCurveViewController::endColorChoice(bool accepted) {
    if (!accepted && m_curve)
        m_curve->setColor(m_colorBeforeChoice);
    endGesture(!accepted);
}

void CCurveViewController::beginGesture() {
    if (!std::exchange(m_isInGesture, true) && m_delegate != nullptr)
        m_delegate->gestureBegan();
}

void CCurveViewController::endGesture(bool cancelled) {
    if (!std::exchange(m_isInGesture, false) || m_delegate == nullptr)
        return;
    if (cancelled)
        m_delegate->gestureCancelled();
    else
        m_delegate->gestureEnded();
}

std::array<SpinField*, 3> CCurveViewController::numberFields() const {
    return {m_ui->lineWidthField, m_ui->opacityField, m_ui->pointSizeField};
}

void CCurveViewController::takeFocus() {
    m_ui->curveName->setFocus(Qt::TabFocusReason);
}

void CCurveViewController::endBursts() {
    for (SpinField* field : numberFields())
        field->endBurst();
}

std::vector<QWidget*> CCurveViewController::controlsInTabOrder() const {
    return {m_ui->curveName,
            m_ui->foldButton,
            m_ui->visibleButton,
            m_ui->dataSourcesPopupButton,
            m_ui->xRowPopupButton,
            m_ui->xRowTextField,
            m_ui->xUseExpressionButton,
            m_ui->yRowPopupButton,
            m_ui->yRowTextField,
            m_ui->yUseExpressionButton,
            m_ui->colorButton,
            m_ui->randomColorButton,
            m_ui->lineWidthField,
            m_ui->opacityField,
            m_ui->shapePopupButton,
            m_ui->nextShapeButton,
            m_ui->pointSizeField,
            m_ui->pointSizeRowTextField,
            m_ui->pointsizeUseExpressionButton};
}

QWidget* CCurveViewController::chainTabOrderAfter(QWidget* previous) {
    for (QWidget* control : controlsInTabOrder()) {
        if (previous != nullptr)
            QWidget::setTabOrder(previous, control);
        previous = control;
    }
    return previous;
}
