// Draws a recent file.
#include "Classes/DropHere/RecentFileButton.h"

#include "Platform/Widgets/Appearance.h"
#include "Platform/Widgets/StylePainting.h"

#include <QDir>
#include <QFileInfo>
#include <QPainter>

#include <algorithm>

namespace {

QString withTilde(const QString& folder) {
    const QString home = QDir::homePath();
    if (folder == home)
        return QStringLiteral("~");
    return folder.startsWith(home + QLatin1Char('/')) ? QLatin1Char('~') + folder.mid(home.size()) : folder;
}

} // namespace

RecentFileButton::RecentFileButton(const QString& path, QWidget* parent)
    : QAbstractButton(parent), m_path(path) {
    const QFileInfo file(path);
    const bool exists = file.exists();
    setText(file.fileName());
    m_remark = exists ? withTilde(file.path()) : tr("missing");
    setEnabled(exists);
    setToolTip(path);
    setAccessibleName(text());
    setAccessibleDescription(m_remark);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize RecentFileButton::sizeHint() const {
    return {480, 26 + std::max(0, fontMetrics().height() - 16)};
}

void RecentFileButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const ThemeColors& colors = currentColors();
    const bool hovered = isEnabled() && underMouse();
    if (hovered || isDown())
        StylePainting::drawBox(painter, rect(), 4, isDown() ? colors.pressed : colors.hover, {});
    const auto ink = [this, &colors](const QColor& enabled) {
        return isEnabled() ? enabled : colors.disabled;
    };
    StylePainting::drawIcon(painter, QRectF(8, 0, 16, height()), QStringLiteral("file"), ink(colors.text3));

    const QRect room = rect().adjusted(32, 0, -8, 0);
    const QFontMetrics metrics = fontMetrics();
    // Elision wants a pixel more than the advance, which is rounded.
    const int nameWidth = std::min(metrics.horizontalAdvance(text()) + 1, room.width() * 2 / 3);
    painter.setPen(ink(colors.text));
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter,
                     metrics.elidedText(text(), Qt::ElideMiddle, nameWidth));
    const int remarkWidth = room.width() - nameWidth - 16;
    painter.setPen(ink(colors.text3));
    painter.drawText(room, Qt::AlignRight | Qt::AlignVCenter,
                     metrics.elidedText(m_remark, Qt::ElideMiddle, remarkWidth));
}
