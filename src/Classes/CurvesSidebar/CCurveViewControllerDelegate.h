// What the owner of curve rows is asked and told by them.
#pragma once

#include <memory>

class XCurve;

/// Main thread. Everything is called from within a row's own controls: a row must not be destroyed before the
/// call returned.
class CCurveViewControllerDelegate {
  public:
    virtual ~CCurveViewControllerDelegate() = default;

    /// The user wants the curve to be removed.
    virtual void curveRemoved(const std::shared_ptr<XCurve>& curve) = 0;
    /// The user wants all rows folded, or none.
    virtual void foldAll(bool folded) = 0;

    /// All changes between these two are one gesture, to be undone in one step: a colour that is being
    /// chosen, steps of a number that follow each other closely. Strictly paired, never nested in one row.
    virtual void gestureBegan() {}
    virtual void gestureEnded() {}
    /// Instead of `gestureEnded`: the row has put everything back, there is nothing to undo.
    virtual void gestureCancelled() {}
};
