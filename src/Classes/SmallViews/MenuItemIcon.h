// Gives the rows of pop-ups the icons that the file browser shows.
#pragma once

#include <QStandardPaths>
#include <QString>

class QStandardItem;

/// 16 x 16; our own folder where the desktop has no picture. Main thread.
namespace MenuItemIcon {

void setIconByPath(QStandardItem& item, const QString& path);
/// Of the user's folder of that kind.
void setIconBySearchPathDirectory(QStandardItem& item, QStandardPaths::StandardLocation directory);

} // namespace MenuItemIcon
