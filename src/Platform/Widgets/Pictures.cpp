// Loads pictures from the resources, fills their colours in and renders them.
#include "Platform/Widgets/Pictures.h"

#include "Core/Assertions.h"
#include "Platform/Widgets/Appearance.h"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmapCache>
#include <QSvgRenderer>

#include <array>
#include <cmath>
#include <utility>

// Outside any namespace, as the macro demands: a static library's resources are not found by themselves.
static void loadResources() {
    Q_INIT_RESOURCE(velquin);
}

namespace Pictures {
namespace {

QString path(const QString& name) {
    static const bool loaded = (loadResources(), true);
    Q_UNUSED(loaded)
    return QStringLiteral(":/pictures/%1.svg").arg(name);
}

QByteArray coloured(const QString& name, const ThemeColors& colors, const QColor& ink) {
    QFile file(path(name));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QByteArray svg = file.readAll();
    const std::array<std::pair<const char*, QColor>, 10> entities{{
        {"&ink;", ink},
        {"&text2;", colors.text2},
        {"&text3;", colors.text3},
        {"&edge;", colors.edge},
        {"&edge2;", colors.edge2},
        {"&accent;", colors.accent},
        {"&accentSoft;", colors.accentSoft},
        {"&onAccent;", colors.onAccent},
        {"&field;", colors.field},
        {"&veil;", QColor(colors.hover.rgb())},
    }};
    for (const auto& [entity, color] : entities)
        svg.replace(entity, color.name().toLatin1());
    svg.replace("&veilOpacity;", QByteArray::number(colors.hover.alphaF(), 'f', 2));
    return svg;
}

/// `pixels` are device pixels; the pixmap's own ratio is left at 1.
QPixmap render(const QString& name, const ThemeColors& colors, const QColor& ink, QSize pixels) {
    const QString key = QStringLiteral("velquin/%1/%2x%3/%4/%5")
                            .arg(name)
                            .arg(pixels.width())
                            .arg(pixels.height())
                            .arg(ink.name(QColor::HexArgb), colors.window.name());
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap))
        return pixmap;
    QSvgRenderer renderer(coloured(name, colors, ink));
    if (!xAssert(renderer.isValid(), "No picture \"%@\"", name.toStdString()) || pixels.isEmpty())
        return {};
    pixmap = QPixmap(pixels);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setOpacity(ink.alphaF());
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    renderer.render(&painter, QRectF(QPointF(), QSizeF(pixels)));
    painter.end();
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

QPixmap renderAtRatio(const QString& name, const ThemeColors& colors, const QColor& ink, double ratio,
                      QSize wanted) {
    const QSizeF logical = wanted.isEmpty() ? Pictures::size(name) : wanted;
    const QSize pixels(static_cast<int>(std::lround(logical.width() * ratio)),
                       static_cast<int>(std::lround(logical.height() * ratio)));
    QPixmap pixmap = render(name, colors, ink, pixels);
    pixmap.setDevicePixelRatio(ratio);
    return pixmap;
}

/// Draws anew for every state and theme, so that a switch of the theme needs no new icons.
class ThemedIconEngine : public QIconEngine {
  public:
    explicit ThemedIconEngine(QString name) : m_name(std::move(name)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override {
        const double ratio = painter->device()->devicePixelRatioF();
        const QPixmap pixmap = scaledPixmap(rect.size() * ratio, mode, state, ratio);
        painter->drawPixmap(rect, pixmap);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return scaledPixmap(size, mode, state, 1);
    }
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal) override {
        const ThemeColors& colors = currentColors();
        const QColor& ink = mode == QIcon::Disabled ? colors.disabled
                            : state == QIcon::On    ? colors.accent
                            : mode == QIcon::Normal ? colors.text2
                                                    : colors.text;
        return render(m_name, colors, ink, size);
    }
    QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override { return size; }
    QString key() const override { return QStringLiteral("velquin"); }
    bool isNull() override { return false; }
    QIconEngine* clone() const override { return new ThemedIconEngine(m_name); }

  private:
    QString m_name;
};

QCursor cursor(const QString& name, QPoint hotSpot, double ratio) {
    return QCursor(renderAtRatio(name, currentColors(), Qt::black, ratio, {}), hotSpot.x(), hotSpot.y());
}

} // namespace

bool exists(const QString& name) {
    return !name.isEmpty() && QFile::exists(path(name));
}

QSize size(const QString& name) {
    return exists(name) ? QSvgRenderer(coloured(name, currentColors(), Qt::black)).defaultSize() : QSize();
}

QPixmap pixmap(const QString& name, double ratio, Theme theme, QSize size) {
    const ThemeColors& colors = themeColors(theme);
    return renderAtRatio(name, colors, colors.text2, ratio, size);
}

QPixmap tinted(const QString& name, const QColor& ink, double ratio, QSize size) {
    return renderAtRatio(name, currentColors(), ink, ratio, size);
}

QIcon icon(const QString& name) {
    xAssert(exists(name), "No picture \"%@\"", name.toStdString());
    return QIcon(new ThemedIconEngine(name));
}

QIcon applicationIcon() {
    QIcon icon;
    for (const int side : {16, 24, 32, 48, 64, 128, 256})
        icon.addPixmap(render(QStringLiteral("velquin"), currentColors(), Qt::black, QSize(side, side)));
    return icon;
}

QCursor zoomCursor(double ratio) {
    return cursor(QStringLiteral("cursor_zoom"), QPoint(10, 10), ratio);
}

QCursor rulerCursor(double ratio) {
    return cursor(QStringLiteral("cursor_ruler"), QPoint(11, 11), ratio);
}

} // namespace Pictures
