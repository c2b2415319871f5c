// Short movements of widgets, all of them instant when the desktop wants none.
#pragma once

#include <QEasingCurve>

#include <functional>

class QObject;
class QVariantAnimation;
class QWidget;

namespace Animation {

/// Calls `step` with 0 to 1 over the time, then `done`. Without animations: `step(1)` and `done` at once, and
/// null. Ends silently with `owner`; `stop` on the returned object, which
/// deletes itself, ends it silently as well.
QVariantAnimation* run(QObject& owner, int milliseconds, QEasingCurve::Type easing,
                       std::function<void(double)> step, std::function<void()> done = {});

/// Fades a widget from its opacity to another one, both 0 to 1. A later fade of the same widget takes over;
/// the earlier one's `done` is not called then.
void fade(QWidget& widget, double to, int milliseconds, std::function<void()> done = {});

double opacity(const QWidget& widget);
void setOpacity(QWidget& widget, double opacity);

} // namespace Animation
