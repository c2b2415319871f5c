#include "Classes/PlotView/PlotStyles.h"

using namespace Qt::StringLiterals;

namespace {

QColor grey(double level) {
    return QColor::fromRgbF(static_cast<float>(level), static_cast<float>(level), static_cast<float>(level));
}

} // namespace

PlotStyles::PlotStyles() {
    const QColor background = Qt::white;
    QColor clear = background;
    clear.setAlpha(0);
    m_entries = {{u"BackgroundColor"_s, background},
                 {u"AxisColor"_s, grey(0.3)},
                 {u"GridColor"_s, grey(0.7)},
                 {u"SecondaryGridColor"_s, grey(0.9)},
                 {u"TickColor"_s, grey(0.5)},
                 {u"TickColor_weekend"_s, QColor::fromRgbF(0.7F, 0, 0)},
                 {u"LabelColor"_s, QColor(Qt::black)},
                 {u"TitleColor"_s, QColor(0x55, 0x55, 0x55)},
                 {u"MouseTickPaddingSizeX"_s, 50},
                 {u"MouseTickPaddingSizeY"_s, 20},
                 {u"MouseTickPaddingGradient"_s,
                  QVariant::fromValue(QGradientStops{{0.0, background}, {0.2, background}, {1.0, clear}})}};
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
