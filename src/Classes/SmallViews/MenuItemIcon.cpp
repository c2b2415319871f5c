// Asks the desktop's icon theme for the pictures of folders.
#include "Classes/SmallViews/MenuItemIcon.h"

#include "Platform/Widgets/Pictures.h"

#include <QFileIconProvider>
#include <QFileInfo>
#include <QStandardItem>

namespace {

constexpr QSize iconSize(16, 16);

/// By the names that file browsers use for the folders every desktop has.
QString themeName(QStandardPaths::StandardLocation directory) {
    switch (directory) {
    case QStandardPaths::DesktopLocation:
        return QStringLiteral("user-desktop");
    case QStandardPaths::DocumentsLocation:
        return QStringLiteral("folder-documents");
    case QStandardPaths::PicturesLocation:
        return QStringLiteral("folder-pictures");
    default:
        return QStringLiteral("folder");
    }
}

bool hasPicture(const QIcon& icon) {
    return !icon.isNull() && !icon.pixmap(iconSize).isNull();
}

} // namespace

void MenuItemIcon::setIconByPath(QStandardItem& item, const QString& path) {
    const QIcon icon = QFileIconProvider().icon(QFileInfo(path));
    item.setIcon(hasPicture(icon) ? icon : Pictures::icon(QStringLiteral("folder")));
}

void MenuItemIcon::setIconBySearchPathDirectory(QStandardItem& item,
                                                QStandardPaths::StandardLocation directory) {
    const QIcon icon = QIcon::fromTheme(themeName(directory));
    if (hasPicture(icon))
        item.setIcon(icon);
    else
        setIconByPath(item, QStandardPaths::writableLocation(directory));
}
