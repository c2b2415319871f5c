// What the model knows of a view controller: a title, a progress, and a view that widgets understand.
#pragma once

#include "Platform/Core/Observable.h"

class QWidget;

/// Shown as the content of a tab. The model hands these out without knowing how they look.
class XViewController : public Observable {
    Q_OBJECT
    OBSERVED(QString, title, setTitle, {})
    OBSERVED(double, progress, setProgress, 0.0)

  public:
    using Observable::Observable;

    virtual QWidget* view() = 0;
    /// Called when the tab was selected.
    virtual void onBecameVisible() {}
};
