// The one-dimensional coordinate model: values to pixels and back, ticks, value texts and range edits.
#pragma once

#include "Classes/Axes/XAxisTick.h"
#include "EmbeddedPlugins/Common/XValueRange.h"

#include <QString>

#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>
#include <span>

/// A linear axis, and the base of all others. Pixel 0 is `minValue`, pixel `pixelLength` is `maxValue`; pixels grow
/// with the value. Knows nothing of the screen. Changed on one thread; other threads use copies.
/// Callers and the base class itself go through the virtual operations, so that a subclass's mapping holds everywhere.
class XAxis {
  public:
    XAxis() = default;
    virtual ~XAxis() = default;
    XAxis& operator=(const XAxis&) = delete;

    /// A new axis of the same class with the same range and length; caches are not copied.
    virtual std::unique_ptr<XAxis> copy() const;

    double minValue() const { return m_minValue; }
    double maxValue() const { return m_maxValue; }
    int pixelLength() const { return m_pixelLength; }
    void setPixelLength(int length);
    /// Stores both ends unless both are equal to the present ones. No check that min < max.
    virtual void setRangeMinMax(double min, double max);

    /// The values that may be shown; a bound that is NaN is open.
    virtual XValueRange validValuesRange() const;
    /// Equal range (NaN is never equal) and length.
    bool isEqualToAxis(const XAxis& other) const;

    virtual double valueToPixel(double value) const; ///< neither rounded nor clamped
    /// Converts `count` values; not finite becomes NaN. Returns count - 1, or -1 for none.
    virtual int valuesToPixelsFromToCount(const double* from, float* to, std::size_t count) const;
    /// Converts the integers location ... location + length - 1 as values. Returns length - 1, or -1 for none.
    virtual int valueFromRangeTo(std::int64_t location, std::size_t length, float* to) const;
    virtual double pixelToValue(int pixel) const;
    virtual double pixelLengthToValue(int pixels) const;

    virtual XAxisTicks ticks() const;
    virtual XAxisColorRanges colors() const;
    int tickPrecision() const;
    int pixelPrecision() const;

    virtual QString humanReadableValue(double value) const;
    virtual QString humanReadableIntervalEnd(double start, double end) const;

    virtual void makeVisibleMarginForMinMax(bool atMin, bool atMax);
    virtual void moveOnPixels(float pixels);
    virtual void zoomWithFactorWithPixelsOrigin(double factor, int pixel);
    virtual void alignRanges();
    void dumpTestInfo() const;

    virtual void resetCachedValues();

  protected:
    XAxis(const XAxis& other); ///< range, length and factors; no caches
};
