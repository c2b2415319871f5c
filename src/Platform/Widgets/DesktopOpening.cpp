// Hands addresses to the desktop, and tells when it has nothing for them.
#include "Platform/Widgets/DesktopOpening.h"

#include "Platform/Widgets/Alerts.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>

namespace {

QString tr(const char* text) {
    return QCoreApplication::translate("DesktopOpening", text);
}

} // namespace

void DesktopOpening::openWebPage(const QUrl& page, QWidget* window) {
    if (!QDesktopServices::openUrl(page))
        Alerts::shared().tell(window, tr("No web browser was found."),
                              tr("The page is at %1").arg(page.toDisplayString()));
}

void DesktopOpening::openFolder(const QString& path, QWidget* window) {
    const QString shown = QDir::toNativeSeparators(path);
    if (!QFileInfo(path).isDir())
        Alerts::shared().tell(window, tr("“%1” is not there.").arg(QFileInfo(path).fileName()),
                              tr("There is no folder %1").arg(shown));
    else if (!QDesktopServices::openUrl(QUrl::fromLocalFile(path)))
        Alerts::shared().tell(window, tr("No file browser was found."), tr("The folder is %1").arg(shown));
}
