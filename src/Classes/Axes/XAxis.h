// The one-dimensional coordinate model: values to pixels and back, ticks, value texts and range edits.
#pragma once

#include "Classes/Axes/XAxisTick.h"
#include "EmbeddedPlugins/Common/XValueRange.h"

#include <QString>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <mutex>
#include <optional>
#include <span>

/// A linear axis, and the base of all others. Pixel 0 is `minValue`, pixel `pixelLength` is `maxValue`;
/// pixels grow with the value. Knows nothing of the screen. Changed on one thread; other threads use copies.
/// Callers and the base class itself go through the virtual operations, so that a subclass's mapping holds
/// everywhere.
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
    /// Converts the integers location ... location + length - 1 as values. Returns length - 1, or -1 for
    /// none.
    virtual int valueFromRangeTo(std::int64_t location, std::size_t length, float* to) const;
    virtual double pixelToValue(int pixel) const;
    virtual double pixelLengthToValue(int pixels) const;

    /// Ascending; the first may lie before the range and the last behind it. Null: no marks at all.
    virtual XAxisTicks ticks() const;
    virtual XAxisColorRanges colors() const; ///< ascending; null: none
    virtual int labelLines() const;          ///< lines of text in a label; 0: it shows none
    /// Powers of ten of the last digit worth showing: between the present marks, and of one pixel. 0 for a
    /// range without a logarithm. Kept: 0, too, on an axis whose range and length were never set.
    int tickPrecision() const;
    int pixelPrecision() const;

    /// The roundest value within about a pixel of `value`, a mark's own value if one is that close, as text.
    virtual QString humanReadableValue(double value) const;
    /// The distance between two values, as text.
    virtual QString humanReadableIntervalEnd(double start, double end) const;

    /// A value as it is shown for editing, and the value that was typed: nothing for a text that is none.
    virtual QString typedText(double value) const;
    virtual std::optional<double> valueOfTypedText(const QString& text) const;

    /// Widens the range by a twentieth at the chosen ends.
    virtual void makeVisibleMarginForMinMax(bool atMin, bool atMax);
    /// A positive count moves the range toward lower values, as a drag to the right does.
    virtual void moveOnPixels(float pixels);
    /// Scales the range about the value at `pixel`, which stays there; a factor below 1 zooms in.
    virtual void zoomWithFactorWithPixelsOrigin(double factor, int pixel);
    /// Rounds both ends. Kept: the step is derived from pixels per unit, so a range much narrower than its
    /// length may collapse.
    virtual void alignRanges();
    /// Writes range, length and marks as source text to "/tmp/axis_<min>_<max>_<length>px.h".
    void dumpTestInfo() const;

    virtual void resetCachedValues();

  protected:
    XAxis(const XAxis& other); ///< range, length and factors; no caches

    double pixelsPerPoint() const { return m_pixelsPerPoint; } ///< pixels a unit
    double pointsPerPixel() const { return m_pointsPerPixel; } ///< units a pixel
    XAxisTicks cachedTicks() const;
    void cacheTicks(XAxisTicks ticks) const;
    void cacheColors(XAxisColorRanges colors) const;
    /// For subclasses with a mapping of their own; neither resets the caches.
    void storeRange(double min, double max);
    void setPixelsPerPoint(double pixelsPerUnit) { m_pixelsPerPoint = pixelsPerUnit; }
    /// The value of a mark, of any level, less than a pixel away.
    std::optional<double> markNearPixel(double pixel) const;

  private:
    static constexpr int notComputed = std::numeric_limits<int>::min();

    double m_minValue = 0;
    double m_maxValue = 0;
    double m_pixelsPerPoint = 0;
    double m_pointsPerPixel = 0;
    int m_pixelLength = 0;

    mutable int m_tickPrecision = 0;
    mutable int m_pixelPrecision = 0;
    mutable std::mutex m_lock; ///< of the two lists
    mutable XAxisTicks m_ticks;
    mutable XAxisColorRanges m_colors;
};
