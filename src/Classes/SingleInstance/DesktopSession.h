// What the desktop must hear of a window and of a launch beyond what the toolkit tells it.
#pragma once

#include <QString>

class QWidget;
class QWindow;

/// Main thread, with an application object.
namespace DesktopSession {

/// Gives a window the class by which the desktop finds its entry, and with it its icon and name. For a window
/// that was just created and is not shown yet; X11 only, elsewhere the toolkit does it.
void setWindowClass(const QWindow& window);

/// Brings a window to the front in the name of a launch, so that the desktop does not take it for a window
/// that steals the focus; and lets the launcher's waiting cursor end. The words are the launcher's and may be
/// empty or senseless. Does nothing but the latter without a window.
void endLaunch(QWidget* window, const QString& activationToken, const QString& startupId);

} // namespace DesktopSession
