// Opens web pages and folders in the desktop's own programs.
#pragma once

#include <QString>
#include <QUrl>

class QWidget;

/// What the desktop opens nothing for is told over `window`, with the address, so that the user can open it
/// in another way. Main thread.
namespace DesktopOpening {

void openWebPage(const QUrl& page, QWidget* window);
void openFolder(const QString& path, QWidget* window);

} // namespace DesktopOpening
