// One row of the legend: a sample of a curve, and its title, which can be edited in place.
#pragma once

#include "Classes/PlotModel/XCurve.h"

#include <QRect>
#include <QWidget>

class InPlaceField;
class QLineEdit;
class XGraphLegendItemView;

class XGraphLegendItemViewDelegate {
  public:
    XGraphLegendItemViewDelegate() = default;
    virtual ~XGraphLegendItemViewDelegate() = default;
    XGraphLegendItemViewDelegate(const XGraphLegendItemViewDelegate&) = delete;
    XGraphLegendItemViewDelegate& operator=(const XGraphLegendItemViewDelegate&) = delete;

    virtual void itemWasUpdated(XGraphLegendItemView& row) = 0;
    /// Before the first change that an editing session makes, and when that session has ended; `kept` is
    /// false when the user took the changes back: the title is what it was.
    virtual void titleWillChange() = 0;
    virtual void titleChangesEnded(bool kept) = 0;
    /// The title was left by a key.
    virtual void titleWasLeft() = 0;
};

/// Drops out of the layout, by an empty frame, while its curve is hidden or has no title, unless that title
/// is being edited.
class XGraphLegendItemView : public QWidget {
    Q_OBJECT

  public:
    /// The delegate outlives the row's use of it.
    XGraphLegendItemView(XGraphLegendItemViewDelegate* delegate, QWidget* parent);
    ~XGraphLegendItemView() override;

    const XCurveHandle& curve() const { return m_curve; }
    void setCurve(XCurveHandle curve);

    /// Points, y upwards, in the legend.
    const QRect& frame() const { return m_frame; }
    void setFrameOrigin(QPoint origin) { m_frame.moveTopLeft(origin); }

    /// Whether the title is being edited.
    bool inFocus() const;
    bool isOnTitle(QPoint position) const;
    void beginEditing();
    QLineEdit* textLabel() const;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void updateUI();
    void placeLabel();
    void titleEdited(const QString& text);
    void editingEnded(bool kept);

    XGraphLegendItemViewDelegate* m_delegate;
    XCurveHandle m_curve;
    Observation m_observation;
    InPlaceField* m_textLabel;
    QRect m_frame;
    QString m_titleBefore;     ///< its first change
    bool m_hasChanged = false; ///< in the present editing session
};
