// The legend over the plot: a white card that lists the curves and can be dragged.
#pragma once

#include "Classes/PlotView/XGraphLegendItemView.h"

#include <QList>
#include <QPointF>
#include <QRect>
#include <QWidget>

#include <vector>

class XGraphLegend;

class XGraphLegendDelegate {
  public:
    XGraphLegendDelegate() = default;
    virtual ~XGraphLegendDelegate() = default;
    XGraphLegendDelegate(const XGraphLegendDelegate&) = delete;
    XGraphLegendDelegate& operator=(const XGraphLegendDelegate&) = delete;

    virtual void legendWantsResize(XGraphLegend& legend, QSize size) = 0;
    virtual void legendMoved(XGraphLegend& legend) = 0;
    /// Once, when the button is released after a drag.
    virtual void legendMovingFinished(XGraphLegend& legend) = 0;
    /// An editing session of a title makes its first change; what follows until its end is one step.
    /// `kept` is false when the user took the session's changes back: the title is what it was.
    virtual void legendTitleWillChange(XGraphLegend& legend) = 0;
    virtual void legendTitleChangesEnded(XGraphLegend& legend, bool kept) = 0;
};

/// A child of the plot view. Never resizes or places itself, but for following the mouse: its delegate does.
class XGraphLegend : public QWidget, private XGraphLegendItemViewDelegate {
    Q_OBJECT

  public:
    explicit XGraphLegend(QWidget* parent = nullptr);
    ~XGraphLegend() override;

    /// Not owned; null for none.
    void setDelegate(XGraphLegendDelegate* delegate) { m_delegate = delegate; }
    const QList<XCurveHandle>& curves() const { return m_curves; }
    void setCurves(QList<XCurveHandle> curves);
    /// The rows in reverse order of the curves: upwards from the box's foot.
    const std::vector<XGraphLegendItemView*>& curveViews() const { return m_curveViews; }

    /// Points, y upwards, in the view that holds the legend.
    QRect frame() const;
    void setFrame(const QRect& frame);

  protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

  private:
    void makeViews();
    void updateLayout();
    void placeRows();
    void describe();
    QPointF locationInSuperview(const QMouseEvent& event) const;

    void itemWasUpdated(XGraphLegendItemView& row) override;
    void titleWillChange() override;
    void titleChangesEnded(bool kept) override;
    void titleWasLeft() override;

    QList<XCurveHandle> m_curves;
    std::vector<XGraphLegendItemView*> m_curveViews;
    XGraphLegendDelegate* m_delegate = nullptr;
    QPointF m_dragOrigin; ///< y upwards, in the view that holds the legend
    bool m_wasMoved = false;
    bool m_isMakingViews = false;
};
