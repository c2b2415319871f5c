// The linear mapping, and edits of a range that end finite or not at all.
#include "Classes/Axes/XAxis.h"

#include "Classes/Axes/LinearTicks.h"
#include "Classes/ValueEncodings/LiteralDump.h"
#include "Core/ClampToInt.h"
#include "Core/NumberText.h"
#include "Platform/Core/PlacedFile.h"
#include "Platform/Core/TypedNumber.h"

#include <QVariantMap>

#include <cmath>
#include <utility>

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

// What is not a finite float has no place among pixels.
float toPixel(double pixel) {
    const auto narrowed = static_cast<float>(pixel);
    return std::isfinite(narrowed) ? narrowed : std::numeric_limits<float>::quiet_NaN();
}

// The decimal exponent of a value width, `extraDigits` further when it is below one.
int precisionOf(double width, double extraDigits) {
    double exponent = std::log10(width);
    if (!std::isfinite(exponent))
        return 0;
    if (exponent < 0)
        exponent -= extraDigits;
    return clampToInt(exponent);
}

QString numberText(double value, int precision) {
    return QString::fromStdString(stringFromDoubleWithPrecision(value, precision));
}

} // namespace

XAxis::XAxis(const XAxis& other)
    : m_minValue(other.m_minValue), m_maxValue(other.m_maxValue), m_pixelsPerPoint(other.m_pixelsPerPoint),
      m_pointsPerPixel(other.m_pointsPerPixel), m_pixelLength(other.m_pixelLength),
      m_tickPrecision(notComputed), m_pixelPrecision(notComputed) {}

std::unique_ptr<XAxis> XAxis::copy() const {
    return std::unique_ptr<XAxis>(new XAxis(*this));
}

void XAxis::setPixelLength(int length) {
    if (length == m_pixelLength)
        return;
    m_pixelLength = length;
    resetCachedValues();
}

void XAxis::setRangeMinMax(double min, double max) {
    if (min == m_minValue && max == m_maxValue)
        return;
    storeRange(min, max);
    resetCachedValues();
}

void XAxis::storeRange(double min, double max) {
    m_minValue = min;
    m_maxValue = max;
}

void XAxis::resetCachedValues() {
    m_tickPrecision = notComputed;
    m_pixelPrecision = notComputed;
    m_pixelsPerPoint = m_pixelLength / (m_maxValue - m_minValue);
    m_pointsPerPixel = (m_maxValue - m_minValue) / m_pixelLength;
    const std::lock_guard lock(m_lock);
    m_ticks.reset();
    m_colors.reset();
}

XValueRange XAxis::validValuesRange() const {
    return {notANumber, notANumber};
}

bool XAxis::isEqualToAxis(const XAxis& other) const {
    return m_minValue == other.m_minValue && m_maxValue == other.m_maxValue &&
           m_pixelLength == other.m_pixelLength;
}

double XAxis::valueToPixel(double value) const {
    return (value - m_minValue) * m_pixelsPerPoint;
}

int XAxis::valuesToPixelsFromToCount(const double* from, float* to, std::size_t count) const {
    // The one loop over every value of a curve: the mapping is written out so that it can be vectorised.
    const double min = m_minValue;
    const double factor = m_pixelsPerPoint;
    for (std::size_t i = 0; i < count; ++i)
        to[i] = toPixel((from[i] - min) * factor);
    return static_cast<int>(count) - 1;
}

int XAxis::valueFromRangeTo(std::int64_t location, std::size_t length, float* to) const {
    for (std::size_t i = 0; i < length; ++i)
        to[i] = toPixel((static_cast<double>(location + static_cast<std::int64_t>(i)) - m_minValue) *
                        m_pixelsPerPoint);
    return static_cast<int>(length) - 1;
}

double XAxis::pixelToValue(int pixel) const {
    return pixel * m_pointsPerPixel + m_minValue;
}

double XAxis::pixelLengthToValue(int pixels) const {
    return pixels * m_pointsPerPixel;
}

XAxisTicks XAxis::cachedTicks() const {
    const std::lock_guard lock(m_lock);
    return m_ticks;
}

void XAxis::cacheTicks(XAxisTicks ticks) const {
    const std::lock_guard lock(m_lock);
    m_ticks = std::move(ticks);
}

XAxisTicks XAxis::ticks() const {
    if (XAxisTicks cached = cachedTicks())
        return cached;
    if (m_pixelLength <= 0)
        return nullptr;
    LinearTicks scale = makeLinearTicks(m_minValue, m_maxValue, pixelToValue(150) - pixelToValue(0));
    cacheTicks(scale.ticks);
    return scale.ticks;
}

XAxisColorRanges XAxis::colors() const {
    const std::lock_guard lock(m_lock);
    return m_colors;
}

void XAxis::cacheColors(XAxisColorRanges colors) const {
    const std::lock_guard lock(m_lock);
    m_colors = std::move(colors);
}

int XAxis::labelLines() const {
    return 1;
}

int XAxis::tickPrecision() const {
    if (m_tickPrecision == notComputed) {
        const XAxisTicks marks = cachedTicks(); // as they stand: asking for a precision makes no marks
        const double count = marks && !marks->empty() ? static_cast<double>(marks->size()) : 1;
        m_tickPrecision = precisionOf((m_maxValue - m_minValue) / count, 2);
    }
    return m_tickPrecision;
}

int XAxis::pixelPrecision() const {
    if (m_pixelPrecision == notComputed)
        m_pixelPrecision = precisionOf((m_maxValue - m_minValue) / m_pixelLength, 1);
    return m_pixelPrecision;
}

std::optional<double> XAxis::markNearPixel(double pixel) const {
    const XAxisTicks marks = ticks();
    if (!marks)
        return {};
    std::size_t low = 0;
    std::size_t high = marks->size();
    while (high - low > 1) {
        const std::size_t middle = (low + high) / 2;
        const double distance = pixel - valueToPixel((*marks)[middle].value);
        if (std::abs(distance) < 1)
            return (*marks)[middle].value;
        (distance < 0 ? high : low) = middle;
    }
    return {};
}

QString XAxis::humanReadableValue(double value) const {
    const double pixel = valueToPixel(value);
    if (const std::optional<double> mark = markNearPixel(pixel))
        return numberText(*mark, pixelPrecision());
    const double below = (pixel - 0.9) * m_pointsPerPixel + m_minValue;
    const double above = (pixel + 0.9) * m_pointsPerPixel + m_minValue;
    const double step = std::pow(10, std::round(std::log10(above - below)));
    const double rounded = std::round((above + below) / 2 / step) * step;
    return numberText(std::isfinite(rounded) ? rounded : value, pixelPrecision());
}

QString XAxis::humanReadableIntervalEnd(double start, double end) const {
    return humanReadableValue(std::abs(start - end));
}

QString XAxis::typedText(double value) const {
    return TypedNumber::text(value);
}

std::optional<double> XAxis::valueOfTypedText(const QString& text) const {
    return TypedNumber::value(text);
}

void XAxis::makeVisibleMarginForMinMax(bool atMin, bool atMax) {
    const double margin = (m_maxValue - m_minValue) / 20;
    if (atMin)
        m_minValue -= margin;
    if (atMax)
        m_maxValue += margin;
    resetCachedValues();
}

void XAxis::moveOnPixels(float pixels) {
    const double delta = static_cast<double>(pixels) * (-(m_maxValue - m_minValue) / m_pixelLength);
    setRangeMinMax(m_minValue + delta, m_maxValue + delta);
}

void XAxis::zoomWithFactorWithPixelsOrigin(double factor, int pixel) {
    const double center = pixelToValue(pixel);
    setRangeMinMax(center - (center - m_minValue) * factor, center + (m_maxValue - center) * factor);
}

void XAxis::alignRanges() {
    const double pixelsPerUnit = m_pixelLength / (m_maxValue - m_minValue);
    if (pixelsPerUnit <= 1.0) {
        setRangeMinMax(std::round(m_minValue), std::round(m_maxValue));
        return;
    }
    const double step = std::pow(10, std::round(std::log10(pixelsPerUnit)));
    setRangeMinMax(clampToInt(m_minValue / step) * step, clampToInt(m_maxValue / step) * step);
}

void XAxis::dumpTestInfo() const {
    QVariantList marks;
    if (const XAxisTicks list = ticks())
        for (const XAxisTick& tick : *list)
            marks << QVariantMap{{QStringLiteral("title"), tick.title ? QVariant(*tick.title) : QVariant()},
                                 {QStringLiteral("value"), tick.value},
                                 {QStringLiteral("level"), tick.level}};
    const QVariantMap info{{QStringLiteral("title"), QString()},
                           {QStringLiteral("min"), m_minValue},
                           {QStringLiteral("max"), m_maxValue},
                           {QStringLiteral("length"), m_pixelLength},
                           {QStringLiteral("ticks"), marks}};
    // A diagnostic: a failure is ignored.
    PlacedFile::writeInSharedFolder(
        QString::asprintf("/tmp/axis_%f_%f_%dpx.h", m_minValue, m_maxValue, m_pixelLength),
        (LiteralDump::objcRepresentation(info) + QStringLiteral("\n\n")).toUtf8());
}
