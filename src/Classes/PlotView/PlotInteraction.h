// What mouse and keys do to a plot, without a widget: panning, zooming, measuring.
#pragma once

#include "Classes/PlotView/PlotOverlay.h"
#include "Platform/Core/XViewController.h"

#include <QFlags>
#include <QPointF>
#include <QString>

class XAxis;
struct PlotLayout;

/// What gestures work on: the axes with their lengths, and where they lie in the view.
struct PlotAxes {
    XAxis& x;
    XAxis& y;
    const PlotLayout& layout;
};

/// A state machine of plain values. Points are pixels of the view, y upwards. An edit that would leave an
/// axis without a finite range, or one too narrow for its pixels to differ, leaves that axis as it was; so
/// does one that the axis can carry out only in part, at the end of the values it can show.
class PlotInteraction {
  public:
    enum class WheelZooms { BothAxes, XOnly, YOnly };

    /// What an event asks of the view.
    enum Effect {
        NoEffect = 0,
        RedrawMouseTicks = 1, ///< the strip under the plot
        Redraw = 2,
        RangesEdited = 4,  ///< by the user: the axes no longer follow the data
        RulerReleased = 8, ///< the measurement is over
    };
    Q_DECLARE_FLAGS(Effects, Effect)

    const PlotOverlay& overlay() const { return m_overlay; }
    bool dimGrid() const { return m_dimGrid; } ///< whether grid and origin lines are hidden
    bool stickyRuler() const { return m_stickyRuler; }
    /// Whether `escape` has anything to end.
    bool canEscape() const {
        return m_drag != Drag::None || !m_overlay.selection.isEmpty() || m_overlay.crossHair;
    }

    /// Another mode than the present one ends a drag and drops selection and measurement.
    Effects setMouseMode(int mode);
    /// Whether a measurement stays when the button is released; unset, one that stayed goes.
    Effects setStickyRuler(bool sticky);
    WheelZooms wheelZooms = WheelZooms::BothAxes;

    Effects enter(QPointF point);
    Effects leave();
    Effects move(QPointF point); ///< without a button
    Effects press(const PlotAxes& axes, QPointF point);
    Effects drag(const PlotAxes& axes, QPointF point);
    Effects release(const PlotAxes& axes);
    /// Zooms about the point: a tenth for each notch (120 units of angle, fractions count), at most by half.
    /// Shift zooms y alone, Alt x alone; without them `wheelZooms` says which.
    Effects wheel(const PlotAxes& axes, QPointF point, double notches, Qt::KeyboardModifiers modifiers) const;
    /// Alt hides the grid while something is selected. No effect otherwise.
    Effects modifiersChanged(Qt::KeyboardModifiers modifiers);
    Effects focusLost(); ///< as if every modifier had been released
    /// Ends a drag, takes a measurement away, or else the cross-hair. Ranges stay.
    Effects escape();

    /// Steps from the mouse, or the middle of the plot, and drags while `confirm` has begun to.
    Effects moveCrossHair(const PlotAxes& axes, QPointF pixels);
    /// Begins a drag at the cross-hair, or ends it.
    Effects confirm(const PlotAxes& axes);

    /// As a drag by so many pixels does.
    static Effects panBy(const PlotAxes& axes, QPointF pixels);
    /// About the centre; below 1 zooms in.
    static Effects zoomBy(const PlotAxes& axes, double factor);
    static Effects alignX(const PlotAxes& axes);

    /// What the drag will do.
    QString message() const;
    /// The values under the mouse, or the distances measured; none while the mouse is off the plot.
    Readouts readouts(const PlotAxes& axes) const;

  private:
    enum class Drag { None, Mouse, Keys };

    bool selects() const;
    Effects endSelection();
    QPointF crossHairOr(const PlotAxes& axes) const;

    PlotOverlay m_overlay;
    QPointF m_lastPoint; ///< of the drag
    Drag m_drag = Drag::None;
    bool m_stickyRuler = false;
    bool m_dimGrid = false;
};

Q_DECLARE_OPERATORS_FOR_FLAGS(PlotInteraction::Effects)
