// The logarithmic axis.
#pragma once

#include "Classes/Axes/LogTicks.h"
#include "Classes/Axes/XAxis.h"

#include <span>

/// Maps log10 of the value evenly onto pixels; only values above 0 have a place. Range edits work in
/// transformed units. `pixelLengthToValue` has no meaning here: take the difference of two `pixelToValue`.
/// Subclasses bring another transform with its marks and labels.
class XLogAxis : public XAxis {
  public:
    XLogAxis() : XLogAxis(logTransform) {}

    std::unique_ptr<XAxis> copy() const override;

    double minLogValue() const { return m_minLogValue; } ///< `minValue`, transformed
    double maxLogValue() const { return m_maxLogValue; }

    /// Ignored unless `max` is finite and `min` is not infinite. A minimum that is not above 0 becomes 1e-10;
    /// both are kept within 1e-200 ... 1e200. Unlike on a linear axis, an unchanged range drops the marks.
    void setRangeMinMax(double min, double max) override;
    XValueRange validValuesRange() const override; ///< from the smallest normal double on

    double valueToPixel(double value) const override;
    /// Without a test for finite values: one at or below 0 becomes minus infinity or NaN.
    int valuesToPixelsFromToCount(const double* from, float* to, std::size_t count) const override;
    int valueFromRangeTo(std::int64_t location, std::size_t length, float* to) const override; ///< 0 is NaN
    double pixelToValue(int pixel) const override;

    /// One unlabelled mark when both ends are equal.
    XAxisTicks ticks() const override;
    virtual AttributedLabel tickAttributedString(int exponent) const;
    QString humanReadableValue(double value) const override; ///< "%g"
    QString humanReadableIntervalEnd(double start,
                                     double end) const override; ///< "%g" of end - start, signed

    void makeVisibleMarginForMinMax(bool atMin, bool atMax) override; ///< 5 % of the transformed width
    void moveOnPixels(float pixels) override;
    void zoomWithFactorWithPixelsOrigin(double factor, int pixel) override;

    void resetCachedValues() override;

  protected:
    explicit XLogAxis(const LogTransform& transform) : m_transform(transform) {}
    XLogAxis(const XLogAxis&) = default;

    /// As they are; resets the caches.
    void storeLogRange(double min, double max, double minLog, double maxLog);
    LogSpan logSpan() const { return {m_minLogValue, m_maxLogValue, pixelsPerPoint()}; }
    virtual XAxisTicks makeTicks() const;

  private:
    void toPixels(std::span<const double> values, float* pixels) const;
    double pixelToLog(double pixel) const { return pixel / pixelsPerPoint() + m_minLogValue; }
    void setRangeMinLogMaxLog(double minLog, double maxLog);

    const LogTransform& m_transform;
    double m_minLogValue = 0;
    double m_maxLogValue = 0;
};
