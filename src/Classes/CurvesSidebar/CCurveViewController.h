// One row of the list of curves: everything a user may set of a curve.
#pragma once

#include "Classes/CurvesSidebar/CCurveViewControllerDelegate.h"
#include "Classes/DataSourcesManager/ArrangedObjects.h"
#include "Classes/PlotModel/XCurve.h"
#include "Platform/Core/NotificationCenter.h"
#include "Platform/Core/XViewController.h"

#include <QPointer>
#include <QStringList>

#include <array>
#include <memory>
#include <vector>

class CCurveView;
class ExpressionField;
class QMenu;
class SpinField;
class XHoverButton;
class XMiniProgressIndicator;
class XPointsLibrary;

namespace Ui {
class CurveView;
}

/// Shows a curve and writes what the user changes, never anything else: a value that a control cannot show
/// stays as it is. Its view is 165 high, 27 when folded. Main thread.
class CCurveViewController : public XViewController {
    Q_OBJECT

  public:
    /// The document's list of sources and the delegate must outlive the row.
    CCurveViewController(ArrangedObjects& dataSources, CCurveViewControllerDelegate* delegate,
                         QObject* parent = nullptr);
    ~CCurveViewController() override;

    QWidget* view() override;

    ArrangedObjects* dataSourcesArrayController() const { return m_dataSources; }
    /// "Row number" and the columns of the curve's data source.
    const QStringList& availableColumns() const { return m_availableColumns; }
    const XPointsLibrary& graphPointsLibrary() const { return m_graphPointsLibrary; }
    CCurveViewControllerDelegate* delegate() const { return m_delegate; }

    const XCurveHandle& curve() const { return m_curve; }
    void setCurve(XCurveHandle curve);

    bool isFolded() const;
    void setFolded(bool folded);

    /// Puts the row's controls after `previous` in the tab order; returns the last of them. Whoever arranges
    /// rows chains them from the top.
    QWidget* chainTabOrderAfter(QWidget* previous);
    /// Puts the keyboard into the first of the row's controls.
    void takeFocus();
    /// Steps of a number no longer wait for another: what comes next is a gesture of its own.
    void endBursts();
    /// The row's menu: hide, fold, fold all, remove; it deletes itself when it closes.
    QMenu* makeMenu();

    /// Renews the choices of sources and of columns.
    void dataSourceUpdated();
    void onChangeXRowType();
    void onChangeYRowType();
    void onChangePointSizeRowType();
    void randomizeColor();
    void randomizePoints();
    void onDeleteCurve();

  Q_SIGNALS:
    /// The view has another height: the list must be laid out again.
    void heightChanged();
    /// Why an expression of the curve cannot be evaluated, for the status line; empty when all can.
    void faultChanged(const QString& reason);

  private:
    /// The controls of x, of y and of the point size, and the curve's keys they stand for.
    struct Value {
        QString name;
        QWidget* plain; ///< shown while no expression is used: a column, a number
        ExpressionField* expression;
        XHoverButton* useExpression;
        XMiniProgressIndicator* progress;
        const char* usesKey;
        const char* expressionKey;
        const char* errorKey;
        const char* progressKey;
    };
    enum class Which { X, Y, PointSize };

    void awakeFromNib();
    void createCloseButton();
    void createActions();
    void connectControls();
    void bindControls(XCurve& curve);
    void unbindControls();
    void curveChanged(const char* key);
    void changeType(Which which);
    void shapeChosen();
    void chooseColor(const QColor& color);
    void endColorChoice(bool accepted);
    void beginGesture();
    void endGesture(bool cancelled = false);
    std::array<SpinField*, 3> numberFields() const;
    std::vector<QWidget*> controlsInTabOrder() const;

    void showLook();
    void showColumns();
    void showValues();
    void showFaults();
    void showNames();
    void showSettings();
    void openMenu(const QPoint& globalPosition);
    QString shownTitle() const;

    QPointer<ArrangedObjects> m_dataSources;
    CCurveViewControllerDelegate* m_delegate;
    const XPointsLibrary& m_graphPointsLibrary;
    std::unique_ptr<Ui::CurveView> m_ui;
    QPointer<CCurveView> m_view; ///< goes with the widget that shows it, if that goes first
    XHoverButton* m_deleteButton = nullptr;
    std::array<Value, 3> m_values;
    QStringList m_availableColumns;
    XCurveHandle m_curve;
    RgbaColor m_colorBeforeChoice;
    bool m_isInGesture = false;
    Observation m_curveObservation;
    std::array<NotificationCenter::Registration, 3> m_registrations;
};
