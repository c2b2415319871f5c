// What the model knows of a view controller: a title, a progress, and a view that widgets understand.
#pragma once

#include "Platform/Core/Observable.h"

#include <QList>
#include <QString>

class QWidget;

/// A value that the status line shows at its right end. An empty label stands for none.
struct Readout {
    QString label;
    QString value;

    bool operator==(const Readout&) const = default;
};
using Readouts = QList<Readout>;

/// Shown as the content of a tab. The model hands these out without knowing how they look.
class XViewController : public Observable {
    Q_OBJECT
    OBSERVED(QString, title, setTitle, {})
    OBSERVED(double, progress, setProgress, 0.0)
    /// Why the tab shows a warning; empty while all is well.
    OBSERVED(QString, fault, setFault, {})
    /// The message of the status line, and the read-outs at its right end, while the tab is selected.
    OBSERVED(QString, status, setStatus, {})
    OBSERVED(Readouts, readouts, setReadouts, {})

  public:
    using Observable::Observable;

    virtual QWidget* view() = 0;
    /// Called when the tab was selected.
    virtual void onBecameVisible() {}
};
