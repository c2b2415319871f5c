// Maps by the decimal logarithm and bounds what has none.
#include "Classes/Axes/XLogAxis.h"

#include "Core/PixelMath.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace {

constexpr double leastValue = 1e-200;
constexpr double greatestValue = 1e200;
constexpr double valueForNone = 1e-10; // the minimum when none above 0 is asked for

using LogBlock = std::array<double, LogTransform::mostAtOnce>;

QString shortText(double value) {
    return QString::asprintf("%g", value);
}

} // namespace

std::unique_ptr<XAxis> XLogAxis::copy() const {
    return std::unique_ptr<XAxis>(new XLogAxis(*this));
}

void XLogAxis::setRangeMinMax(double min, double max) {
    if (!std::isfinite(max))
        return;
    if (!(min > 0))
        min = valueForNone;
    if (std::isinf(min))
        return;
    min = std::max(min, leastValue);
    max = std::min(max, greatestValue);
    storeLogRange(min, max, m_transform.toLog(min), max > 0 ? m_transform.toLog(max) : 0);
}

void XLogAxis::storeLogRange(double min, double max, double minLog, double maxLog) {
    storeRange(min, max);
    m_minLogValue = minLog;
    m_maxLogValue = maxLog;
    resetCachedValues();
}

void XLogAxis::resetCachedValues() {
    setPixelsPerPoint(pixelLength() / (m_maxLogValue - m_minLogValue));
    cacheTicks(nullptr);
}

XValueRange XLogAxis::validValuesRange() const {
    return {std::numeric_limits<double>::min(), std::numeric_limits<double>::quiet_NaN()};
}

double XLogAxis::valueToPixel(double value) const {
    return (m_transform.toLog(value) - m_minLogValue) * pixelsPerPoint();
}

/// `valueToPixel` of at most LogTransform::mostAtOnce values, narrowed.
void XLogAxis::toPixels(std::span<const double> values, float* pixels) const {
    LogBlock logs;
    m_transform.toLogs(values, std::span(logs).first(values.size()));
    const double min = m_minLogValue;
    const double factor = pixelsPerPoint();
    for (std::size_t i = 0; i < values.size(); ++i)
        pixels[i] = static_cast<float>((logs[i] - min) * factor);
}

int XLogAxis::valuesToPixelsFromToCount(const double* from, float* to, std::size_t count) const {
    const std::span all(from, count);
    for (std::size_t at = 0; at < count; at += LogTransform::mostAtOnce)
        toPixels(all.subspan(at, std::min(LogTransform::mostAtOnce, count - at)), to + at);
    return static_cast<int>(count) - 1;
}

int XLogAxis::valueFromRangeTo(std::int64_t location, std::size_t length, float* to) const {
    LogBlock values;
    for (std::size_t at = 0; at < length; at += values.size()) {
        const std::span block = std::span(values).first(std::min(values.size(), length - at));
        for (std::size_t i = 0; i < block.size(); ++i)
            block[i] = static_cast<double>(location + static_cast<std::int64_t>(at + i));
        toPixels(block, to + at);
    }
    for (std::size_t i = 0; i < length; ++i)
        to[i] = isFinite(to[i]) ? to[i] : std::numeric_limits<float>::quiet_NaN();
    return static_cast<int>(length) - 1;
}

double XLogAxis::pixelToValue(int pixel) const {
    return m_transform.fromLog(pixelToLog(pixel));
}

XAxisTicks XLogAxis::ticks() const {
    if (XAxisTicks cached = cachedTicks())
        return cached;
    if (pixelLength() <= 0)
        return nullptr;
    XAxisTicks marks = makeTicks();
    if (minValue() == maxValue())
        marks = std::make_shared<const std::vector<XAxisTick>>(1, XAxisTick{minValue(), {}, {}, 0, 0});
    cacheTicks(marks);
    return marks;
}

XAxisTicks XLogAxis::makeTicks() const {
    return makeLogTicks(logSpan());
}

AttributedLabel XLogAxis::tickAttributedString(int exponent) const {
    return logDecadeLabel(exponent);
}

QString XLogAxis::humanReadableValue(double value) const {
    const double pixel = valueToPixel(value);
    if (const std::optional<double> mark = markNearPixel(pixel))
        return shortText(*mark);
    const double below = m_transform.fromLog(pixelToLog(pixel - 0.9));
    const double above = m_transform.fromLog(pixelToLog(pixel + 0.9));
    const double step = std::pow(10, std::round(std::log10(above - below)));
    const double rounded = std::round((above + below) / 2 / step) * step;
    return shortText(std::isfinite(rounded) ? rounded : value);
}

QString XLogAxis::humanReadableIntervalEnd(double start, double end) const {
    return shortText(end - start);
}

void XLogAxis::makeVisibleMarginForMinMax(bool atMin, bool atMax) {
    const double margin = (m_maxLogValue - m_minLogValue) / 20;
    const double minLog = m_minLogValue - margin;
    const double maxLog = m_maxLogValue + margin;
    const double min = m_transform.fromLog(minLog);
    const double max = m_transform.fromLog(maxLog);
    // A margin beyond the representable values would leave nothing to show.
    if (atMin && std::isfinite(m_transform.toLog(min))) {
        m_minLogValue = minLog;
        storeRange(min, maxValue());
    }
    if (atMax && std::isfinite(m_transform.toLog(max))) {
        m_maxLogValue = maxLog;
        storeRange(minValue(), max);
    }
    if (atMin || atMax)
        resetCachedValues();
}

void XLogAxis::moveOnPixels(float pixels) {
    const double delta = static_cast<double>(pixels) * (-(m_maxLogValue - m_minLogValue) / pixelLength());
    setRangeMinLogMaxLog(m_minLogValue + delta, m_maxLogValue + delta);
}

void XLogAxis::zoomWithFactorWithPixelsOrigin(double factor, int pixel) {
    const double center = pixelToLog(pixel);
    setRangeMinLogMaxLog(center - (center - m_minLogValue) * factor,
                         (m_maxLogValue - center) * factor + center);
}

// Refused where an end has no finite value.
void XLogAxis::setRangeMinLogMaxLog(double minLog, double maxLog) {
    const double min = m_transform.fromLog(minLog);
    const double max = m_transform.fromLog(maxLog);
    if (std::isfinite(min) && std::isfinite(max))
        setRangeMinMax(min, max);
}
