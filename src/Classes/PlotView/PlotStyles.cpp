// The colours and paddings of both styles.
#include "Classes/PlotView/PlotStyles.h"

using namespace Qt::StringLiterals;

namespace {

QColor grey(double level) {
    return QColor::fromRgbF(static_cast<float>(level), static_cast<float>(level), static_cast<float>(level));
}

// The background, fading away.
QVariant fadeOf(const QColor& background) {
    QColor clear = background;
    clear.setAlpha(0);
    return QVariant::fromValue(QGradientStops{{0.0, background}, {0.2, background}, {1.0, clear}});
}

} // namespace

PlotStyles::PlotStyles() : m_entries(defaultStyles()) {}

QVariantMap PlotStyles::defaultStyles() {
    return {{u"BackgroundColor"_s, QColor(Qt::white)},
            {u"AxisColor"_s, grey(0.3)},
            {u"GridColor"_s, grey(0.7)},
            {u"SecondaryGridColor"_s, grey(0.9)},
            {u"TickColor"_s, grey(0.5)},
            {u"TickColor_weekend"_s, QColor::fromRgbF(0.7F, 0, 0)},
            {u"LabelColor"_s, QColor(Qt::black)},
            {u"TitleColor"_s, QColor(0x55, 0x55, 0x55)},
            {u"SelectionColor"_s, QColor(Qt::black)},
            {u"MouseTickPaddingSizeX"_s, 50},
            {u"MouseTickPaddingSizeY"_s, 20},
            {u"MouseTickPaddingGradient"_s, fadeOf(Qt::white)}};
}

QVariantMap PlotStyles::blackBackgroundStyles() {
    QVariantMap styles = defaultStyles();
    styles.insert({{u"BackgroundColor"_s, QColor(Qt::black)},
                   {u"AxisColor"_s, QColor(Qt::white)},
                   {u"GridColor"_s, grey(0.5)},
                   {u"SecondaryGridColor"_s, grey(1.0 / 3)},
                   {u"TickColor_weekend"_s, QColor(0xFF, 0x7A, 0x6E)},
                   {u"LabelColor"_s, QColor(Qt::white)},
                   {u"TitleColor"_s, QColor(0xC8, 0xC8, 0xC8)},
                   {u"SelectionColor"_s, QColor(Qt::white)},
                   {u"MouseTickPaddingGradient"_s, fadeOf(Qt::black)}});
    return styles;
}

void PlotStyles::update(const QVariantMap& changes) {
    m_entries.insert(changes);
}

QColor PlotStyles::color(const QString& key) const {
    return m_entries.value(key).value<QColor>();
}

double PlotStyles::number(const QString& key) const {
    return m_entries.value(key).toDouble();
}

QGradientStops PlotStyles::gradient(const QString& key) const {
    return m_entries.value(key).value<QGradientStops>();
}

bool PlotStyles::isDark() const {
    return color(u"BackgroundColor"_s).lightnessF() < 0.5F;
}
